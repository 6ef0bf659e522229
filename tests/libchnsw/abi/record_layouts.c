/* Sizes and offsets of every record that crosses the boundary. Compiles or does not, here and for a 32-bit big-endian processor. */
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
AT(ficon_platform_info, byte4, 4);
AT(ficon_platform_info, byte5, 5);
AT(ficon_platform_info, byte6, 6);
AT(ficon_platform_info, byte7, 7);

SIZE(ficon_hist_record, 516);
AT(ficon_hist_record, subtype, 0);
AT(ficon_hist_record, text, 4);

SIZE(ficon_host_time, 8);
AT(ficon_host_time, seconds, 0);
AT(ficon_host_time, microseconds, 4);

SIZE(ficon_vsan_tstmp_rec, 40);
AT(ficon_vsan_tstmp_rec, not_read_0, 0);
AT(ficon_vsan_tstmp_rec, ref_host_sec, 12);
AT(ficon_vsan_tstmp_rec, ref_host_usec, 16);
AT(ficon_vsan_tstmp_rec, not_read_20, 20);
AT(ficon_vsan_tstmp_rec, ref_tod, 24);
AT(ficon_vsan_tstmp_rec, not_read_32, 32);

/* Six words on the switch; a word that is a pointer is as wide as one. */
#define WORD sizeof(void*)
SIZE(elemdb_request, WORD == 4 ? 24 : 40);
AT(elemdb_request, first, 0);
AT(elemdb_request, table, 4);
AT(elemdb_request, key_length, 8);
AT(elemdb_request, key, WORD == 4 ? 12 : 16);
AT(elemdb_request, value_length, WORD == 4 ? 16 : 24);
AT(elemdb_request, value, WORD == 4 ? 20 : 32);

SIZE(msgq_addr, 8);
AT(msgq_addr, node, 0);
AT(msgq_addr, service_point, 4);
_Static_assert(_Alignof(struct msgq_addr) == 1, "addresses stand anywhere");

SIZE(ficon_cmi_hdr, 112);
AT(ficon_cmi_hdr, code, 0);
AT(ficon_cmi_hdr, kind, 4);
AT(ficon_cmi_hdr, reserved, 8);
AT(ficon_cmi_hdr, text1, 12);
AT(ficon_cmi_hdr, text2, 52);

SIZE(ficon_portmap_req, 130);
AT(ficon_portmap_req, header, 0);
AT(ficon_portmap_req, if_index, 112);
AT(ficon_portmap_req, result, 116);
AT(ficon_portmap_req, number_a, 120);
AT(ficon_portmap_req, number_b, 122);
AT(ficon_portmap_req, selector, 124);
AT(ficon_portmap_req, zero, 125);

SIZE(ficon_ifvsan_query, 20);
AT(ficon_ifvsan_query, result, 0);
AT(ficon_ifvsan_query, state, 4);
AT(ficon_ifvsan_query, arg_a, 8);
AT(ficon_ifvsan_query, if_index, 12);
AT(ficon_ifvsan_query, arg_b, 16);

SIZE(ficon_rnid_rec, 60);
AT(ficon_rnid_rec, if_index, 0);
AT(ficon_rnid_rec, rnid_port, 4);
AT(ficon_rnid_rec, rnid_size, 6);
AT(ficon_rnid_rec, rnid_word8, 8);
AT(ficon_rnid_rec, codepage, 12);
AT(ficon_rnid_rec, rnid_format, 16);
AT(ficon_rnid_rec, result, 20);
AT(ficon_rnid_rec, rnid_word24, 24);
AT(ficon_rnid_rec, descriptor, 28);

SIZE(ficon_node_descriptor, 32);
AT(ficon_node_descriptor, flags, 0);
AT(ficon_node_descriptor, type, 4);
AT(ficon_node_descriptor, model, 10);
AT(ficon_node_descriptor, manufacturer, 13);
AT(ficon_node_descriptor, plant, 16);
AT(ficon_node_descriptor, sequence, 18);
AT(ficon_node_descriptor, tag, 30);

SIZE(vsan_block, 516);
AT(vsan_block, bytes, 0);
AT(vsan_block, bitmap, 4);

SIZE(ficon_vsan_install_msg, 521);
AT(ficon_vsan_install_msg, install_byte0, 0);
AT(ficon_vsan_install_msg, vsans, 1);
AT(ficon_vsan_install_msg, count, 517);

SIZE(ficon_if_swap_req, 528);
AT(ficon_if_swap_req, swap_word0, 0);
AT(ficon_if_swap_req, if_index_a, 4);
AT(ficon_if_swap_req, if_index_b, 8);
AT(ficon_if_swap_req, vsans, 12);

SIZE(ficon_if_swap_resp, 536);
AT(ficon_if_swap_resp, swap_status, 0);
AT(ficon_if_swap_resp, swap_word4, 4);
AT(ficon_if_swap_resp, if_index_a, 8);
AT(ficon_if_swap_resp, if_index_b, 12);
AT(ficon_if_swap_resp, zero, 16);

SIZE(ficon_vsan_state_change, 8);
AT(ficon_vsan_state_change, word0, 0);
AT(ficon_vsan_state_change, word1, 4);
SIZE(ficon_updown_notice, 8); /* of which a value has 6 */
AT(ficon_updown_notice, word0, 0);
AT(ficon_updown_notice, byte4, 4);
AT(ficon_updown_notice, byte5, 5);
SIZE(ficon_enable_notice, 8); /* of which a value has 5 */
AT(ficon_enable_notice, word0, 0);
AT(ficon_enable_notice, byte4, 4);

SIZE(lagmap_port_query, 8);
AT(lagmap_port_query, if_index, 0);
AT(lagmap_port_query, channel, 4);

_Static_assert(sizeof(ficon_port_to_vsan_array) == 32, "32 bytes of storage, not a pointer");
_Static_assert(sizeof(MAX_FICON_PORTS) == 4 && sizeof(fastpath_got_vsan_port) == 4, "32-bit words");

_Static_assert(FICON_RC_BASE == 0x40850000, "statuses");
_Static_assert(FICON_RC_INVALID_ARG == 0x40850003, "statuses");
_Static_assert(FICON_RC_NO_PAYLOAD == 0x40850008, "statuses");
_Static_assert(FICON_RC_PLATFORM == 0x4085000A, "statuses");
_Static_assert(FICON_RC_PA_RANGE == 0x40850018, "statuses");
_Static_assert(FICON_RC_PN_RANGE == 0x40850019, "statuses");
_Static_assert(FICON_RC_LAG_MEMBER == 0x4085001A, "statuses");
_Static_assert(FICON_RC_CONVERT == 0x40850020, "statuses");
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
_Static_assert(FICON_MGR_NODE == 0xFE000001 && FICON_MGR_SERVICE_POINT == 101, "addresses");
_Static_assert(FICON_REPLY_NODE == 0xFE000000, "addresses");
_Static_assert(FICON_OP_REPLY == 0 && FICON_OP_GET_PORTMAP == 7858 && FICON_OP_GET_ENABLED_VSANS == 7859, "opcodes");
_Static_assert(FICON_OP_GET_RNID == 7869 && FICON_OP_VSAN_INSTALL == 7882, "opcodes");
_Static_assert(FICON_OP_QUERY_IFVSAN_STATE == 7888, "opcodes");
_Static_assert(FICON_TLV_ENABLE == 1 && FICON_TLV_PORTMAP == 9 && FICON_TLV_UPDOWN == 10, "types of values");
_Static_assert(FICON_TLV_RNID == 15 && FICON_TLV_ENABLED_VSANS == 16, "types of values");
_Static_assert(FICON_TLV_VSAN_STATE_CHANGE == 24, "types of values");
_Static_assert(FICON_CMI_KIND_PORTMAP == 18 && FICON_RNID_SIZE == 512, "special values");
_Static_assert(FICON_RNID_FORMAT_CONVERTED == 2 && FICON_CODEPAGE_ASCII == 1, "special values");
_Static_assert(FICON_RNID_DESCRIPTOR_BYTES == 32 && FICON_VSAN_BITMAP_BYTES == 512, "sizes");
_Static_assert(CHAR_CONVERT_TO_HOST == 0 && CHAR_CONVERT_FROM_HOST == 1, "modes of conversion");
_Static_assert(FICON_EVT_HIST_ID == 0x730000 && FICON_EVT_ERROR == 102 && FICON_EVT_DEBUG == 103, "event history");
_Static_assert(LIBCHNSW_MEM_LIB_ID == 206, "memory accounting");
_Static_assert(LIBCHNSW_MEM_vsaninstall == 0 && LIBCHNSW_MEM_ifindex == 1 && LIBCHNSW_MEM_papn == 2, "memory accounting");
_Static_assert(LIBCHNSW_MEM_pnif == 3 && LIBCHNSW_MEM_vsanlist == 4 && LIBCHNSW_MEM_portpn == 5, "memory accounting");
