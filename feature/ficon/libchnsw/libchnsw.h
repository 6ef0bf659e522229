/* libchnsw: one answer to the question which port number (PN), port address (PA), slot and interface of a FICON switch
 * belong together.
 *
 * What all operations share:
 *
 * Status: operations return 0 on success and one of the FICON_RC_ codes below, a status of a platform service passed
 * through unchanged, or one of the few plain numbers that a comment names. An output is written only where its comment
 * says so; with every other result it stays untouched.
 *
 * NULL: an address is tested for NULL only where a comment says so. Anywhere else NULL is a caller error.
 *
 * Numbers: PN and PA run from 0 to MAX_FICON_PORTS - 1. FICON_PMAP_NO_NUMBER (512) marks a missing number inside tables.
 * FICON_PORT_CUP (254, X'FE') is the control unit port, by which a host reaches the switch itself; PA and PN treat it
 * apart.
 *
 * VSAN: 0 to 4095 in the Fibre Channel standards (FC-FS, virtual fabric identifier). Tables hold 16 bits; 0 is an empty
 * slot.
 * Operations take 32 bits, by value or through a pointer whose NULL means that no VSAN is given.
 *
 * Interface: a 32-bit index of the platform, opaque here; 0 is none.
 *
 * Index: position in the port map, 0 to 1279: line card x 254 + port for physical ports (0 to 1023), the others for numbers
 * without a physical port. Line cards, slots and ports count from 0 unless a comment says otherwise.
 *
 * Variants: _withpvsan takes the VSAN through a pointer, _vsan by value. _fast reads the cached tables as they are, after
 * ficon_pmap_prepare_fastpath; every other form fetches the tables it needs on every call. _withpmap and _with2pmaps let
 * the caller pass its own table(s), NULL means the cached one. _b0 counts from 0.
 *
 * Bytes: records are in the byte order of the machine.
 *
 * Ownership: the tables behind the exported pointers belong to the library, which allocates them on first use, refills
 * them in place and frees them at unload. Buffers made for a caller are the caller's, who releases them with free().
 *
 * Reports: errors go to the event history, to the debug output and, as a line that begins with "FICON_ERR: ", to standard
 * output; traces go to the first two only. A refused allocation prints a line that begins with "Warning!" on standard
 * output.
 *
 * Threads: none and no locks. Callers serialise their calls. */
#ifndef LIBCHNSW_H
#define LIBCHNSW_H

#include <platform/platform_info.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* Status codes. */
enum {
  FICON_RC_BASE = 0x40850000,           /* platform information unavailable */
  FICON_RC_INVALID_ARG = 0x40850003,    /* a required address is NULL, or an argument is out of range */
  FICON_RC_PLATFORM = 0x4085000A,       /* the platform failed, or nothing was found */
  FICON_RC_PA_RANGE = 0x40850018,       /* port address not below MAX_FICON_PORTS */
  FICON_RC_PN_RANGE = 0x40850019,       /* port number not below the bound */
  FICON_RC_LAG_MEMBER = 0x4085001A,     /* the port is in a port-channel */
  FICON_RC_NOT_ASSOCIATED = 0x4085003E, /* the logical interface has no port number */
  FICON_RC_NO_IF = 0x4085004A,          /* no interface answers for the port number */
  FICON_RC_MULTI_IF = 0x40850052        /* more than one answers */
};

/* Plain statuses outside that family. */
enum {
  FICON_RC_NO_MEMORY = 1,   /* a tracked allocation was refused */
  FICON_RC_NOT_FC_PORT = 11 /* not a Fibre Channel port, or not a physical one */
};

/* Sizes and special numbers of the port map. */
enum {
  FICON_PMAP_PORT_ENTRIES = 1280, /* entries of the port tables */
  FICON_PMAP_PHYS_ENTRIES = 1024, /* the first of them: physical ports */
  FICON_PMAP_PORTS_PER_LC = 254,  /* indexes per line card */
  FICON_PMAP_VSAN_SLOTS = 8,      /* VSANs that one entry can be bound to */
  FICON_PMAP_NO_NUMBER = 512,     /* no port number or port address */
  FICON_PMAP_LOGICAL_PNS = 14,    /* default port numbers without a physical port */
  FICON_PORT_CUP = 254            /* control unit port */
};

/* Element database: table selector and keys of the port map. */
enum {
  FICON_ELEMDB_TABLE_PMAP = 2,
  FICON_PMAP_ELEM_PAPN = 1,          /* 16-bit PN per PA */
  FICON_PMAP_ELEM_PNIF = 2,          /* 32-bit interface per PN */
  FICON_PMAP_ELEM_PORTPN = 3,        /* 1280 ficon_pmap_port_entry */
  FICON_PMAP_ELEM_VSAN_ARRAY = 4,    /* 32 bytes, not interpreted */
  FICON_PMAP_ELEM_PORTVSAN = 5,      /* 1280 16-bit VSANs */
  FICON_PMAP_ELEM_CHANGE_COUNTER = 6 /* 32-bit counter that moves with every change */
};

/* Element database: table selector of the time-stamp references, keyed by 32-bit VSAN number. */
enum { FICON_ELEMDB_TABLE_TSTMP = 1 };

/* Texts of a TOD clock value. */
enum {
  FICON_TOD_FMT_DAY_FIRST = 0, /* "Mon Jan 5 09:07:03.123 2015" */
  FICON_TOD_FMT_YEAR_FIRST = 1 /* "2015 Mon Jan 5 09:07:03.123" */
};

/* Event history: identifier, and subtypes which are also the debug flags. */
enum { FICON_EVT_HIST_ID = 0x730000, FICON_EVT_ERROR = 102, FICON_EVT_DEBUG = 103 };

/* Memory accounting: the library's identifier and its memory types. */
enum {
  LIBCHNSW_MEM_LIB_ID = 206,
  LIBCHNSW_MEM_vsaninstall = 0,
  LIBCHNSW_MEM_ifindex = 1,
  LIBCHNSW_MEM_papn = 2,
  LIBCHNSW_MEM_pnif = 3,
  LIBCHNSW_MEM_vsanlist = 4,
  LIBCHNSW_MEM_portpn = 5,
  LIBCHNSW_MEM_TYPES_MAX = 6
};

/* One entry of the port map, 20 bytes.
 *
 *   offset  0        2        4                                20
 *           | pn     | pa     | vsans[0] ... vsans[7]          |
 */
struct ficon_pmap_port_entry {
  uint16_t pn;                           /* port number, or FICON_PMAP_NO_NUMBER */
  uint16_t pa;                           /* port address, or FICON_PMAP_NO_NUMBER */
  uint16_t vsans[FICON_PMAP_VSAN_SLOTS]; /* VSANs that this pair is bound to; 0 = empty slot */
};

/* One report or trace as the event history receives it. The length reported with it is 5 + strlen(text). */
struct ficon_hist_record {
  uint32_t subtype; /* FICON_EVT_ERROR or FICON_EVT_DEBUG */
  char text[512];   /* NUL-terminated, cut to 511 characters */
};

/* Host time: seconds since 1970-01-01 00:00:00 UTC and microseconds within the second. */
struct ficon_host_time {
  int32_t seconds;
  int32_t microseconds;
};

/* The time-stamp reference of a VSAN in the element database, 40 bytes: a host time and the TOD clock value of the same
 * instant.
 *
 *   offset  0          12             16              20         24        32         40
 *           | not read | ref_host_sec | ref_host_usec | not read | ref_tod | not read |
 */
struct ficon_vsan_tstmp_rec {
  uint8_t not_read_0[12];
  int32_t ref_host_sec;
  int32_t ref_host_usec;
  uint8_t not_read_20[4];
  uint64_t ref_tod;
  uint8_t not_read_32[8];
};

/* ---- Cached tables and what selects their size: zero or NULL when the library is loaded ---- */

extern uint16_t* ficon_pmap_port_to_vsan;                   /* [1280] index -> VSAN that the port is in now */
extern struct ficon_pmap_port_entry* ficon_pmap_port_to_pn; /* [1280] index -> PN, PA, bound VSANs */
extern uint16_t* ficon_pmap_pa_to_pn;                       /* [MAX_FICON_PORTS] PA -> PN */
extern uint32_t* ficon_pmap_pn_to_logif;                    /* [MAX_FICON_PORTS] PN -> bound interface, 0 = none */
extern uint8_t ficon_port_to_vsan_array[32];                /* copied for clients; the library never reads it */
extern int32_t MAX_FICON_PORTS;                             /* highest port number + 1; 0 until known */
extern int32_t fastpath_got_vsan_port;                      /* 1: the fast path has the port-to-VSAN table */
extern struct ficon_platform_info* libchnsw_pinfo;          /* the platform record; NULL until first asked for */
extern uint64_t SECONDS_BTWN_EPOCHS;                        /* 2208988800, from 1900 to 1970; for clients */

/* ---- Memory types and platform information ---- */

/* The name of memory type id. Returns a constant text, or NULL for an id outside 0 to 6. */
const char* __libchnsw_mem_type_t_find(int32_t id);

/* The memory type called name, in any case. Returns its id; 0 also for an unknown name, which cannot be told apart from the
 * first type. */
int32_t __libchnsw_mem_type_t_str2enum(const char* name);

/* Copies the platform record to *info (required, not tested). The platform is asked once, then the cached copy answers.
 * Returns 0; the platform's status when it cannot tell; FICON_RC_NO_MEMORY when the copy cannot be cached, although *info
 * was filled. */
int32_t ficon_get_platform_info(struct ficon_platform_info* info);

/* ---- Port map: tables ----
 *
 * The fetches ask the element database on every call and refill the cached table in place. A missing element leaves the
 * table as it was, zeros at first, and is not an error.
 *
 * Results: 0; FICON_RC_NO_MEMORY, the table stays NULL and the next call tries again. */

/* Fetches ficon_port_to_vsan_array, then ficon_pmap_port_to_vsan.
 * vsan: ignored, the tables hold every VSAN. */
int32_t ficon_get_pmap_portvsan(uint32_t vsan);

/* Fetches ficon_pmap_port_to_pn. */
int32_t ficon_get_pmap_portpn(void);

/* Fetch ficon_pmap_pa_to_pn and ficon_pmap_pn_to_logif, with as many elements as ficon_get_max_ficon_ports tells (one on an
 * unknown chassis).
 * Also FICON_RC_PLATFORM: the platform cannot be asked; nothing was fetched. */
int32_t ficon_get_pmap_papn(void);
int32_t ficon_get_pmap_pnif(void);

/* The change counter of the port map. When it moved, cached tables are stale.
 * counter: out, required; 0 when the counter cannot be read.
 * Always returns 0. */
int32_t ficon_cmi_get_pmap_change_counter(uint32_t* counter);

/* Fetches what the _fast forms read: ficon_pmap_pn_to_logif, ficon_pmap_port_to_pn, ficon_pmap_port_to_vsan; then sets
 * fastpath_got_vsan_port.
 * vsan: passed on to ficon_get_pmap_portvsan.
 * Returns 0, or the first failing status with fastpath_got_vsan_port untouched. */
int32_t ficon_pmap_prepare_fastpath(uint32_t vsan);

/* The highest port number of this chassis, asked from the platform on every call.
 * Returns it; 0 for an unknown chassis; -1 when the platform information and -2 when the chassis type cannot be read, both
 * reported. */
int32_t ficon_cmi_get_max_portnumber(void);

/* MAX_FICON_PORTS, made known on first use. A positive value stays as long as the library is loaded, also the 1 of an
 * unknown chassis; 0 or -1, when the platform cannot be asked, is asked again by the next call. */
int32_t ficon_get_max_ficon_ports(void);

/* ---- Port address and port number ----
 *
 * pa, pn: the number to translate, 0 to MAX_FICON_PORTS - 1. A negative one is not rejected, nothing carries it.
 * vsan: chooses among several ports that carry the number.
 * *pn, *pa: out, required. The number found; the searched number itself when no entry counts, and for FICON_PORT_CUP.
 * *flag: out, required. 1; 0 when several ports in the VSAN carry the number and none is bound to it, the one case in
 *   which a number (of the lowest index) is handed back with FICON_RC_MULTI_IF. Forms without a flag hand that number
 *   back too.
 * fast: non-zero reads the cached tables.
 *
 * Results: 0, one port answers.
 *   FICON_RC_INVALID_ARG: address of the number or the flag is NULL; neither is written. With all others the flag is.
 *   The status of a fetch that failed; FICON_RC_PA_RANGE, FICON_RC_PN_RANGE: not below MAX_FICON_PORTS; no number written.
 *   FICON_RC_PLATFORM: no entry counts, or FICON_PORT_CUP; also, no number written, when none of several is in the VSAN.
 *   FICON_RC_MULTI_IF: several ports answer. */

/* Address to number. Entries bound to no VSAN do not count. When one entry counts, the answer is that of the lowest
 * index that carries the address, counted or not. */
uint32_t ficon_pmap_get_pa_to_pn_withpvsan(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag, int32_t fast);
uint32_t ficon_pmap_get_pa_to_pn(int32_t pa, uint16_t* pn);
uint32_t ficon_pmap_get_pa_vsan_to_pn(int32_t pa, uint32_t vsan, uint16_t* pn);
uint32_t ficon_pmap_get_pa_to_pn_fast(int32_t pa, uint16_t* pn);
uint32_t ficon_pmap_get_pa_vsan_to_pn_fast(int32_t pa, uint32_t vsan, uint16_t* pn);

/* Number to address. Every entry that carries the number counts, and no trace is made. */
uint32_t ficon_pmap_get_pn_to_pa_withpvsan(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag, int32_t fast);
uint32_t ficon_pmap_get_pn_to_pa(int32_t pn, uint16_t* pa);
uint32_t ficon_pmap_get_pn_vsan_to_pa(int32_t pn, uint32_t vsan, uint16_t* pa);
uint32_t ficon_pmap_get_pn_to_pa_fast(int32_t pn, uint16_t* pa);
uint32_t ficon_pmap_get_pn_vsan_to_pa_fast(int32_t pn, uint32_t vsan, uint16_t* pa);

/* ---- Default port numbering: the numbers that a chassis has until others are configured ---- */

/* Lays out the default port numbers of this chassis.
 * count: entries of the array, at least 1280. Only that is tested: the array must reach as far as the layout of its
 *   chassis does, 3318 entries on one with 18 slots, 2556 with 13, 1556 with 9, whatever count says.
 * entries: out. All are reset to "no number", also when the result is negative; then pn is laid out.
 * pa_count: elements of pa_to_pn; 0 or less, no port addresses.
 * pa_to_pn: port number per port address. Each entry gets the lowest address whose number it carries; an entry without a
 *   number takes part with FICON_PMAP_NO_NUMBER.
 * Returns the first of the 14 port numbers without a physical port; 0 for an unknown chassis; -1 when the platform
 * information and -2 when the chassis type cannot be read; -3 when count is below 1280.
 * On a chassis with 10 slots two lines are printed on standard output. */
int32_t ficon_port_to_pn_init(int32_t count, struct ficon_pmap_port_entry* entries, int32_t pa_count,
                              const uint16_t* pa_to_pn);

/* Whether entries hold the default port numbers; only pn is looked at.
 * entries: in, 1038 at least; 1778 on a chassis with 9 slots.
 * Returns 1 or 0; -1 and -2 as above. The test does not follow the layout everywhere: on chassis with 9, 10, 13 and 18
 * slots what ficon_port_to_pn_init laid out does not count as default. */
int32_t ficon_port_to_pn_is_default(const struct ficon_pmap_port_entry* entries);

/* The default port numbers of one slot, or the 14 without a physical port.
 * slot: counted from 1; slot - 1 is cut to 8 bits. Not used when logical is set.
 * logical: non-zero asks for the numbers without a physical port.
 * pns: out, 254 elements (256 when logical is set), FICON_PMAP_NO_NUMBER where there is no number: all of them on an
 *   unknown chassis and for a card without default numbers.
 * Returns 0; FICON_RC_BASE when the platform cannot be asked; a status of ficonm_platform_slot_to_lc_b0. */
uint32_t ficon_get_default_pn(uint32_t slot, uint32_t logical, uint16_t* pns);

/* ---- Slots and line cards, both counted from 0 ----
 *
 * Results: 0. FICON_RC_PLATFORM: the platform cannot be asked. FICON_RC_INVALID_ARG: no such slot or line card, or the
 * slot is a supervisor's. */

int32_t ficonm_platform_slot_to_lc_b0(uint8_t slot, uint8_t* lc);
int32_t ficonm_platform_lc_to_slot_b0(uint8_t lc, uint8_t* slot);

/* The port map entry and index of a slot's port.
 * slot: the low 8 bits count.
 * port: 0 to 253, not tested.
 * entry, index: out, required. port_to_pn: the table to read; NULL for the cached one as it is, which must have been
 *   fetched.
 * The index is not tested against the table: from line card 5 on, ports lie behind its 1280 entries, and what is copied
 * from there is whatever follows. */
int32_t ficonm_platform_slot_to_pnpa_index_withpmap(uint32_t slot, uint32_t port, struct ficon_pmap_port_entry* entry,
                                                    uint32_t* index, const struct ficon_pmap_port_entry* port_to_pn);
int32_t ficonm_platform_slot_to_pnpa_index(uint32_t slot, uint32_t port, struct ficon_pmap_port_entry* entry,
                                           uint32_t* index);
int32_t ficonm_platform_slot_to_pnpa(uint32_t slot, uint32_t port, struct ficon_pmap_port_entry* entry);

/* The port number alone. Returns FICON_PMAP_NO_NUMBER on any failure. */
uint16_t ficonm_platform_slot_to_pn(uint32_t slot, uint32_t port);

/* ---- Port number and index to interface ----
 *
 * pn: below MAX_FICON_PORTS and not negative; only the upper bound is tested, a negative one reads in front of a table.
 * vsan: chooses among several ports that carry the number. It is not looked at when an interface is bound to the number.
 * *if_index: out, required. The interface bound to the number; else the port that carries it, is bound to any VSAN and
 *   is in no port-channel; 0 when none or several answer.
 * *flag: out, required. 1; 0 when several ports in the VSAN answer and none is bound to it, the one case in which an
 *   interface (of the lowest index) is handed back with FICON_RC_MULTI_IF. Forms without a flag hand that interface back
 *   too.
 * fast: non-zero reads the cached tables.
 *
 * Results: 0, one interface answers.
 *   FICON_RC_INVALID_ARG: address of the interface or the flag is NULL; neither is written. With all others the flag is.
 *   The status of a fetch that failed; FICON_RC_PN_RANGE: not below MAX_FICON_PORTS; no interface written.
 *   FICON_RC_NO_IF: none answers. FICON_RC_MULTI_IF: several do. */

uint32_t ficon_pmap_get_pn_to_if_withpvsan(int32_t pn, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag,
                                           int32_t fast);
uint32_t ficon_pmap_get_pn_vsan_to_if_fast(int32_t pn, uint32_t vsan, uint32_t* if_index);
uint32_t ficon_pmap_get_pn_to_if_fast(int32_t pn, uint32_t* if_index);
uint32_t ficon_pmap_get_pn_vsan_to_if(int32_t pn, uint32_t vsan, uint32_t* if_index);
uint32_t ficon_pmap_get_pn_to_if(int32_t pn, uint32_t* if_index);

/* The interface of a port map index: built from slot and port up to 1023, looked up by number from 1024 on.
 * index: up to 1279; only the upper bound is tested.
 * pn: the number to look up, below the size of the table, not tested; not used for a physical port.
 * if_index: out, required. 0 when no interface is bound to the number.
 * pn_to_if: interface per port number; NULL to fetch the cached one.
 * Returns 0; FICON_RC_INVALID_ARG, index above 1279, or pn is FICON_PMAP_NO_NUMBER where it is looked up;
 * FICON_RC_PLATFORM, no interface bound to the number; statuses of the fetch (reported), the slot and the interface
 *   service. */
uint32_t ficon_pmap_get_index_to_if_withpmap(int32_t index, uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if);
uint32_t ficon_pmap_get_index_to_if(int32_t index, uint32_t pn, uint32_t* if_index);

/* The physical interface of a port map index, if the port is there and in no port-channel.
 * index: up to 1023; only the upper bound is tested.
 * if_index: out, required. 0 with FICON_RC_NO_IF, FICON_RC_LAG_MEMBER and a status of the port index service.
 * Returns 0; FICON_RC_INVALID_ARG, index above 1023; FICON_RC_NO_IF, no such port; FICON_RC_LAG_MEMBER, the port is in a
 * port-channel; FICON_RC_PLATFORM, the port-channel service failed, reported, and the interface is written all the same;
 * statuses of the slot, the interface service (reported) and the port index service. */
uint32_t ficon_pmap_get_index_to_phyif(int32_t index, uint32_t* if_index);

/* ---- Interface to port number, address and index ----
 *
 * *entry: out, required and tested. A physical port's whole entry. Of a logical interface, and of a port in a
 *   port-channel, only pn and pa; pn also with FICON_RC_NOT_ASSOCIATED and FICON_RC_LAG_MEMBER when the interface has a
 *   number that no entry carries.
 * *index: out, required. The port map index.
 * pn_to_if, port_to_pn: the tables to use, NULL to fetch the cached ones. pn_to_if is searched up to MAX_FICON_PORTS,
 *   which nothing here makes known when both tables are passed.
 * skip_lag_check: non-zero answers a member of a port-channel like any port.
 *
 * Results: 0.
 *   FICON_RC_INVALID_ARG: entry is NULL.
 *   FICON_RC_NOT_FC_PORT: an interface of another type. FICON_RC_NOT_ASSOCIATED: a logical interface without a number.
 *   FICON_RC_LAG_MEMBER: a port in a port-channel that has no number of its own.
 *   Statuses of the fetches, the interface services and the slot, all reported.
 *
 * When the port-channel service fails, the result is 0 although nothing was written: preset what you read. */

int32_t ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, struct ficon_pmap_port_entry* entry, uint32_t* index,
                                                   const uint32_t* pn_to_if, const struct ficon_pmap_port_entry* port_to_pn,
                                                   int32_t skip_lag_check);
int32_t ficon_pmap_get_if_to_pnpa_index_withpmap(uint32_t if_index, struct ficon_pmap_port_entry* entry, uint32_t* index,
                                                 const uint32_t* pn_to_if, int32_t skip_lag_check);
int32_t ficon_pmap_get_if_to_pnpa_withpmap(uint32_t if_index, struct ficon_pmap_port_entry* entry, const uint32_t* pn_to_if,
                                           int32_t skip_lag_check);

/* One number alone, written on 0 only; FICON_PMAP_NO_NUMBER when the port-channel service failed. */
int32_t ficon_pmap_get_if_to_pn_withpmap(uint32_t if_index, uint16_t* pn, const uint32_t* pn_to_if, int32_t skip_lag_check);
int32_t ficon_pmap_get_if_to_pn(uint32_t if_index, uint16_t* pn);
int32_t ficon_pmap_get_if_to_pa(uint32_t if_index, uint16_t* pa);

/* The index alone; untouched when the port-channel service failed. */
int32_t ficon_pmap_get_if_to_index(uint32_t if_index, uint32_t* index);
int32_t ficon_pmap_get_if_to_index_with2pmaps(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                                              const struct ficon_pmap_port_entry* port_to_pn, int32_t skip_lag_check);

/* ---- Iteration ----
 *
 * if_index: a physical interface that has a port number and a port address.
 * Results: 0. FICON_RC_NOT_FC_PORT: its index is above 1023. FICON_RC_INVALID_ARG: it has no number or no address.
 * Statuses of ficon_pmap_get_if_to_pnpa_index_with2pmaps, the fetch, the slot and the interface service. */

/* The next numbered interface: that of the next index, or else of the first port of the next line card. What stands
 * behind an empty position on the same card is not searched.
 * Also FICON_RC_PLATFORM: there is no next one. */
int32_t ficon_pmap_get_next_if(uint32_t if_index, uint32_t* next_if_index);

/* The last numbered interface of the same line card. On line card 4 the entries without a physical port count as its
 * positions from 8 on, so the interface found there need not exist. */
int32_t ficon_pmap_get_last_if(uint32_t if_index, uint32_t* last_if_index);

/* ---- Port address to interface ----
 *
 * Address to number, then number to interface: the arguments and results of both. if_index is written by the second
 * only. */

uint32_t ficon_pmap_get_pa_to_if(int32_t pa, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_vsan_to_if(int32_t pa, uint32_t vsan, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_to_if_fast(int32_t pa, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_vsan_to_if_fast(int32_t pa, uint32_t vsan, uint32_t* if_index);

/* ---- Port number to physical interface ----
 *
 * pn: below pn_bound and not negative; only the upper bound is tested.
 * vsan, *flag: as for port number to interface.
 * *if_index: out, required. The interface bound to the number; else the physical port that carries it, also one in a
 *   port-channel or bound to no VSAN; 0 with result 0 when an entry without a physical port carries the number; 0 when
 *   none or several answer.
 * pn_to_if: interface per port number; NULL to fetch the cached one.
 *
 * Results: as for port number to interface. A failed fetch is reported, but for that of the port-to-VSAN table. */

uint32_t ficon_pmap_get_pn_to_phyif_withpvsan(int32_t pn, const uint32_t* vsan, int32_t pn_bound, uint32_t* if_index,
                                              const uint32_t* pn_to_if, uint32_t* flag);
uint32_t ficon_pmap_get_pn_to_phyif(int32_t pn, uint32_t* if_index, int32_t pn_bound, const uint32_t* pn_to_if);
uint32_t ficon_pmap_get_pn_vsan_to_phyif(int32_t pn, uint32_t vsan, uint32_t* if_index, int32_t pn_bound,
                                         const uint32_t* pn_to_if);

/* Address to number first, with its results. The cached interface table is used as it is, and fetched only if it never
 * was. */
uint32_t ficon_pmap_get_pa_to_phyif(int32_t pa, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_vsan_to_phyif(int32_t pa, uint32_t vsan, uint32_t* if_index);

/* ---- Logical interfaces, a VSAN's ports, slot and port ---- */

/* Every port number that is bound to an interface, ascending.
 * pns, if_indexes: out, room for MAX_FICON_PORTS elements each. count: out, elements written.
 * Returns 0, or the status of the fetch, reported. */
uint32_t ficon_pmap_get_pn_logif(uint16_t* pns, uint32_t* if_indexes, uint32_t* count);

/* Every physical port that is in a VSAN now and has an interface outside port-channels, by ascending index.
 * pns, pas, if_indexes, bound: out, four arrays of *count elements: number, address, interface, and 1 or 0 for whether
 *   the port is bound to the VSAN. The caller frees all four, also when *count is 0. One whose allocation was refused is
 *   NULL, which no result tells; the others are filled all the same.
 * count: out.
 * Returns 0, or the status of a fetch, reported. */
uint32_t ficon_pmap_get_info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes, uint32_t** bound,
                                     uint32_t* count);

/* Slot and port of a physical interface, as the platform's interface services count them.
 * slot, port: out, of a physical interface only. slot is written also when the port cannot be found.
 * flag: out, 0 for a physical interface, also when its slot or port cannot be found; 1 for a logical one.
 * Returns 0; FICON_RC_NOT_FC_PORT, an interface of another type; statuses of the interface services. All are reported. */
int32_t ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag);

/* ---- Time of day ----
 *
 * tod: a TOD clock value (z/Architecture Principles of Operation, Timing): 64 bits since 1900-01-01 00:00:00 UTC, of
 *   which bit 51, counted from the left, is a microsecond. No leap seconds. The largest value is in 2042.
 * text_out: out, may be NULL. The address of the library's one text, which the next call overwrites; at most 31 characters.
 * format: FICON_TOD_FMT_DAY_FIRST or FICON_TOD_FMT_YEAR_FIRST. With any other the text stays what it was.
 *
 * Microseconds are not padded: ".3" is 3 microseconds, not 300,000. */

/* Writes the text of a TOD clock value. */
void ficon_get_TOD_format(uint64_t tod, const char** text_out, int32_t format);

/* The same with FICON_TOD_FMT_DAY_FIRST. */
void ficon_get_TOD(uint64_t tod, const char** text_out);

/* The TOD clock value of the host's time now, or of a given time.
 * reference: in, required. A host time whose TOD clock value is known; zero seconds and zero microseconds: none is
 *   known, and the host's time is taken to be right.
 * reference_tod: that value; not used without a reference.
 * now: in, required. The time to convert.
 * Returns the value; 0 when the host's clock cannot be read. By a reference, the difference of the microseconds is added
 *   in units of 1/4096 microsecond, so the fraction of a second follows the reference's, off by 244 microseconds at
 *   most. */
uint64_t ficon_cmi_compute_host_tstmp(const struct ficon_host_time* reference, uint64_t reference_tod);
uint64_t ficon_cmi_compute_host_tstmp_given_time(const struct ficon_host_time* reference, uint64_t reference_tod,
                                                 const struct ficon_host_time* now);

/* The text of a VSAN's time now, or of a given time, by the VSAN's reference, which is read anew.
 * now: in, required, read before the reference.
 * Returns 0, also when the host's clock cannot be read (the text is then that of 0); FICON_RC_PLATFORM when the VSAN has no
 * record or its record cannot be read, with text_out untouched and no text written. */
uint32_t ficon_cmi_get_vsan_tstmp(uint32_t vsan, const char** text_out, int32_t format);
uint32_t ficon_cmi_get_vsan_tstmp_given_time(uint32_t vsan, const char** text_out, int32_t format,
                                             const struct ficon_host_time* now);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
