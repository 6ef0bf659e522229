/* Sizes and offsets of every record that crosses the boundary. Compiles or does not, here and for the switch's processor. */
#include <libchnsw.h>
#include <platform/elemdb.h>
#include <platform/lagmap.h>
#include <stddef.h>

#define AT(record, field, offset) _Static_assert(offsetof(struct record, field) == (offset), #record "." #field)
#define SIZE(record, bytes) _Static_assert(sizeof(struct record) == (bytes), "size of " #record)

SIZE(ficon_pmap_port_entry, 20);
AT(ficon_pmap_port_entry, pn, 0);
AT(ficon_pmap_port_entry, pa, 2);
AT(ficon_pmap_port_entry, vsans, 4);
_Static_assert(sizeof(((struct ficon_pmap_port_entry*)0)->vsans) == 8 * 2, "eight VSAN slots of 16 bits");
_Static_assert(sizeof(struct ficon_pmap_port_entry[1280]) == 25600, "entries follow each other without a gap");

SIZE(ficon_platform_info, 8);
AT(ficon_platform_info, byte0, 0);
AT(ficon_platform_info, byte1, 1);
AT(ficon_platform_info, num_slots, 2);
AT(ficon_platform_info, byte3, 3);
AT(ficon_platform_info, byte7, 7);

SIZE(ficon_hist_record, 516);
AT(ficon_hist_record, subtype, 0);
AT(ficon_hist_record, text, 4);

SIZE(ficon_host_time, 8);
AT(ficon_host_time, seconds, 0);
AT(ficon_host_time, microseconds, 4);

SIZE(ficon_vsan_tstmp_rec, 40);
AT(ficon_vsan_tstmp_rec, ref_host_sec, 12);
AT(ficon_vsan_tstmp_rec, ref_host_usec, 16);
AT(ficon_vsan_tstmp_rec, ref_tod, 24);

/* Six words on the switch; a word that is a pointer is as wide as one. */
#define WORD sizeof(void*)
SIZE(elemdb_request, WORD == 4 ? 24 : 40);
AT(elemdb_request, first, 0);
AT(elemdb_request, table, 4);
AT(elemdb_request, key_length, 8);
AT(elemdb_request, key, WORD == 4 ? 12 : 16);
AT(elemdb_request, value_length, WORD == 4 ? 16 : 24);
AT(elemdb_request, value, WORD == 4 ? 20 : 32);

SIZE(lagmap_port_query, 8);
AT(lagmap_port_query, if_index, 0);
AT(lagmap_port_query, channel, 4);

_Static_assert(sizeof(ficon_port_to_vsan_array) == 32, "32 bytes of storage, not a pointer");
_Static_assert(sizeof(MAX_FICON_PORTS) == 4 && sizeof(fastpath_got_vsan_port) == 4, "32-bit words");

_Static_assert(FICON_RC_BASE == 0x40850000, "statuses");
_Static_assert(FICON_RC_INVALID_ARG == 0x40850003, "statuses");
_Static_assert(FICON_RC_PLATFORM == 0x4085000A, "statuses");
_Static_assert(FICON_RC_PA_RANGE == 0x40850018, "statuses");
_Static_assert(FICON_RC_PN_RANGE == 0x40850019, "statuses");
_Static_assert(FICON_RC_LAG_MEMBER == 0x4085001A, "statuses");
_Static_assert(FICON_RC_NOT_ASSOCIATED == 0x4085003E, "statuses");
_Static_assert(FICON_RC_NO_IF == 0x4085004A, "statuses");
_Static_assert(FICON_RC_MULTI_IF == 0x40850052, "statuses");

_Static_assert(FICON_PMAP_PORT_ENTRIES == 1280 && FICON_PMAP_PHYS_ENTRIES == 1024, "port indexes");
_Static_assert(FICON_PMAP_PORTS_PER_LC == 254 && FICON_PMAP_LOGICAL_PNS == 14, "port indexes");
_Static_assert(FICON_PMAP_NO_NUMBER == 512 && FICON_PORT_CUP == 254, "special numbers");
_Static_assert(FICON_ELEMDB_TABLE_PMAP == 2 && FICON_ELEMDB_TABLE_TSTMP == 1, "elements");
_Static_assert(FICON_PMAP_ELEM_PAPN == 1 && FICON_PMAP_ELEM_PNIF == 2 && FICON_PMAP_ELEM_PORTPN == 3, "elements");
_Static_assert(FICON_PMAP_ELEM_VSAN_ARRAY == 4 && FICON_PMAP_ELEM_PORTVSAN == 5, "elements");
_Static_assert(FICON_PMAP_ELEM_CHANGE_COUNTER == 6, "elements");
_Static_assert(FICON_EVT_HIST_ID == 0x730000 && FICON_EVT_ERROR == 102 && FICON_EVT_DEBUG == 103, "event history");
_Static_assert(LIBCHNSW_MEM_LIB_ID == 206, "memory accounting");
