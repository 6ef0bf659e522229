/* libchnsw: one answer to the question which port number (PN), port address (PA), slot and interface of a FICON switch
 * belong together.
 *
 * What all operations share
 *
 * Status     Operations return 0 on success and one of the FICON_RC_ codes below, a status of a platform service passed
 *            through unchanged, or one of the few plain numbers that a comment names. An output is written only where its
 *            comment says so.
 * NULL       A result address is tested for NULL only where the comment says so; anywhere else NULL is a caller error.
 * Numbers    PN and PA run from 0 to MAX_FICON_PORTS - 1. FICON_PMAP_NO_NUMBER (512) marks a missing number inside tables.
 *            FICON_PORT_CUP (254) is the control unit port, FICON's own port inside the switch: the translations between
 *            PA and PN treat it apart.
 * VSAN       0 to 4095 by the Fibre Channel standards; tables hold 16 bits, 0 is an empty slot. Operations take 32 bits,
 *            by value or through a pointer whose NULL means that no VSAN is given.
 * Interface  A 32-bit index of the platform, opaque here; 0 is none.
 * Index      Position in the port map, 0 to 1279: line card x 254 + port for physical ports (0 to 1023), the rest for
 *            numbers without a physical port. Line cards, and ports on them, count from 0; slots too, unless a comment
 *            says otherwise.
 * Variants   _withpvsan: VSAN through a pointer. _vsan: VSAN by value. _fast: reads the cached tables as they are, after
 *            ficon_pmap_prepare_fastpath; every other form fetches the tables it needs on every call. _withpmap,
 *            _with2pmaps: the caller may pass its own table(s); NULL means the cached ones. _b0: counts from 0.
 * Bytes      Records are in the byte order of the machine.
 * Ownership  The tables behind the exported pointers belong to the library: allocated on first use, refilled in place,
 * freed at unload. Buffers made for a caller are the caller's, who releases them with free(). Reports    Errors go to the
 * event history, to the debug output and, as a line that begins with "FICON_ERR: ", to standard output; traces go to the
 * first two only. Threads    None and no locks: callers serialise their calls. */
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

/* ---- Cached tables and what selects their size: zero or NULL when the library is loaded ---- */

extern uint16_t* ficon_pmap_port_to_vsan;                   /* [1280] index -> VSAN that the port is in now */
extern struct ficon_pmap_port_entry* ficon_pmap_port_to_pn; /* [1280] index -> PN, PA, bound VSANs */
extern uint16_t* ficon_pmap_pa_to_pn;                       /* [MAX_FICON_PORTS] PA -> PN */
extern uint32_t* ficon_pmap_pn_to_logif;                    /* [MAX_FICON_PORTS] PN -> bound interface, 0 = none */
extern uint8_t ficon_port_to_vsan_array[32];                /* copied for clients; the library never reads it */
extern int32_t MAX_FICON_PORTS;                             /* highest port number + 1; 0 until known */
extern int32_t fastpath_got_vsan_port;                      /* 1: the fast path has the port-to-VSAN table */
extern struct ficon_platform_info* libchnsw_pinfo;          /* the platform record; NULL until first asked for */

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
 * The fetches ask the element database on every call and refill the cached table in place. A missing element leaves the
 * table as it was (zeros at first) and is not an error.
 * Results: 0; FICON_RC_NO_MEMORY, the table stays NULL; FICON_RC_PLATFORM (papn, pnif) when the number of ports is unknown.
 */

/* Fetches ficon_pmap_port_to_vsan and ficon_port_to_vsan_array. vsan is ignored: all VSANs are fetched. */
int32_t ficon_get_pmap_portvsan(uint32_t vsan);

/* Fetches ficon_pmap_port_to_pn. */
int32_t ficon_get_pmap_portpn(void);

/* Fetches ficon_pmap_pa_to_pn. */
int32_t ficon_get_pmap_papn(void);

/* Fetches ficon_pmap_pn_to_logif. */
int32_t ficon_get_pmap_pnif(void);

/* Stores the change counter of the port map in *counter (required, not tested), 0 when it cannot be read. Always returns 0.
 * A value that moved means that cached tables are stale. */
int32_t ficon_cmi_get_pmap_change_counter(uint32_t* counter);

/* Fetches what the _fast forms read. vsan is passed on to ficon_get_pmap_portvsan. Returns 0 or the first failing status.
 */
int32_t ficon_pmap_prepare_fastpath(uint32_t vsan);

/* The highest port number of this chassis, asked from the platform anew. Returns 0 for an unknown chassis; -1 when the
 * platform information and -2 when the chassis type cannot be read, both reported. */
int32_t ficon_cmi_get_max_portnumber(void);

/* MAX_FICON_PORTS, made known on first use. Returns 0 or -1 while the platform cannot tell, 1 for an unknown chassis. */
int32_t ficon_get_max_ficon_ports(void);

/* ---- Port address and port number ----
 * pa, pn: 0 to MAX_FICON_PORTS - 1; a negative number is not rejected, it is just not found.
 * *pn, *pa: the number found. It is the searched number itself when nothing carries it, and for FICON_PORT_CUP.
 * *flag: 1, but 0 when several ports in the VSAN carry the number and none is bound to it; then the number of the lowest
 *   index is handed back together with FICON_RC_MULTI_IF.
 * fast: non-zero reads the cached tables.
 * Results: 0; FICON_RC_INVALID_ARG, number or flag address NULL, nothing written; the status of a failed fetch;
 *   FICON_RC_PA_RANGE, FICON_RC_PN_RANGE, number not below MAX_FICON_PORTS; FICON_RC_PLATFORM, not found, or
 *   FICON_PORT_CUP; FICON_RC_MULTI_IF, several ports carry it. */

uint32_t ficon_pmap_get_pa_to_pn_withpvsan(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag, int32_t fast);
uint32_t ficon_pmap_get_pa_to_pn(int32_t pa, uint16_t* pn);
uint32_t ficon_pmap_get_pa_vsan_to_pn(int32_t pa, uint32_t vsan, uint16_t* pn);
uint32_t ficon_pmap_get_pa_to_pn_fast(int32_t pa, uint16_t* pn);
uint32_t ficon_pmap_get_pa_vsan_to_pn_fast(int32_t pa, uint32_t vsan, uint16_t* pn);

/* The same the other way round. What differs: entries bound to no VSAN count too, and no trace is made. */
uint32_t ficon_pmap_get_pn_to_pa_withpvsan(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag, int32_t fast);
uint32_t ficon_pmap_get_pn_to_pa(int32_t pn, uint16_t* pa);
uint32_t ficon_pmap_get_pn_vsan_to_pa(int32_t pn, uint32_t vsan, uint16_t* pa);
uint32_t ficon_pmap_get_pn_to_pa_fast(int32_t pn, uint16_t* pa);
uint32_t ficon_pmap_get_pn_vsan_to_pa_fast(int32_t pn, uint32_t vsan, uint16_t* pa);

/* ---- Default port numbering ---- */

/* Lays out the default port numbers of this chassis.
 * count: entries in the array, at least 1280. The caller provides as many as the layout of its chassis reaches, up to 3318
 *   on an 18-slot chassis; only the lower bound is tested.
 * entries: all reset to "no number", then numbered.
 * pa_count, pa_to_pn: port number per port address; an entry gets the lowest port address whose number it carries.
 *   pa_count 0: no port addresses.
 * Returns the first of the 14 port numbers without a physical port; 0 for an unknown chassis; -1 when the platform
 * information and -2 when the chassis type cannot be read; -3 when count is below 1280. The entries are reset always. */
int32_t ficon_port_to_pn_init(int32_t count, struct ficon_pmap_port_entry* entries, int32_t pa_count,
                              const uint16_t* pa_to_pn);

/* Whether entries hold the default port numbers; only pn is looked at. The array must reach as far as the layout of the
 * chassis, up to 1778 entries, and at least to 1038.
 * Returns 1 or 0 (0 also for a chassis without a known default, 13 and 18 slots included), -1, -2 as above. */
int32_t ficon_port_to_pn_is_default(const struct ficon_pmap_port_entry* entries);

/* The default port numbers of one slot, or the 14 without a physical port.
 * slot: counted from 1; not used when logical is non-zero.
 * pns: 254 numbers (logical: 256), FICON_PMAP_NO_NUMBER where there is none.
 * Returns 0; FICON_RC_BASE when the platform cannot be asked, or the status of a slot without a line card, pns untouched.
 */
uint32_t ficon_get_default_pn(uint32_t slot, uint32_t logical, uint16_t* pns);

/* ---- Slots and line cards, both counted from 0 ----
 * Results: 0; FICON_RC_PLATFORM, the platform cannot be asked; FICON_RC_INVALID_ARG, no such slot or line card, or a
 *   supervisor's slot. Outputs are written on 0 only. */

int32_t ficonm_platform_slot_to_lc_b0(uint8_t slot, uint8_t* lc);
int32_t ficonm_platform_lc_to_slot_b0(uint8_t lc, uint8_t* slot);

/* The port map entry and index of a slot's port.
 * slot: the low 8 bits count. port: 0 to 253, not tested. *entry, *index: required, not tested.
 * port_to_pn: the table to read, NULL for the cached one as it is; it is not fetched. */
int32_t ficonm_platform_slot_to_pnpa_index_withpmap(uint32_t slot, uint32_t port, struct ficon_pmap_port_entry* entry,
                                                    uint32_t* index, const struct ficon_pmap_port_entry* port_to_pn);
int32_t ficonm_platform_slot_to_pnpa_index(uint32_t slot, uint32_t port, struct ficon_pmap_port_entry* entry,
                                           uint32_t* index);
int32_t ficonm_platform_slot_to_pnpa(uint32_t slot, uint32_t port, struct ficon_pmap_port_entry* entry);

/* The port number alone. Returns FICON_PMAP_NO_NUMBER on any failure. */
uint16_t ficonm_platform_slot_to_pn(uint32_t slot, uint32_t port);

/* ---- Port number and index to interface ----
 * pn: below MAX_FICON_PORTS. A negative one is not rejected: callers do not pass it.
 * *if_index: the interface bound to the number, else the one port that carries it and is bound to any VSAN; ports in a
 *   port-channel do not count. 0 when none or several answer.
 * *flag: as above; the interface of the lowest index is then handed back with FICON_RC_MULTI_IF.
 * Results: 0; FICON_RC_INVALID_ARG, an address is NULL, nothing written; the status of a failed fetch; FICON_RC_PN_RANGE,
 *   nothing written; FICON_RC_NO_IF; FICON_RC_MULTI_IF. */

uint32_t ficon_pmap_get_pn_to_if_withpvsan(int32_t pn, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag,
                                           int32_t fast);
uint32_t ficon_pmap_get_pn_vsan_to_if_fast(int32_t pn, uint32_t vsan, uint32_t* if_index);
uint32_t ficon_pmap_get_pn_to_if_fast(int32_t pn, uint32_t* if_index);
uint32_t ficon_pmap_get_pn_vsan_to_if(int32_t pn, uint32_t vsan, uint32_t* if_index);
uint32_t ficon_pmap_get_pn_to_if(int32_t pn, uint32_t* if_index);

/* The interface of a port map index: built from slot and port up to 1023, looked up by pn from 1024 to 1279.
 * index: only the upper bound is tested. pn_to_if: table by port number, NULL to fetch the cached one.
 * Results: 0; FICON_RC_INVALID_ARG, index above 1279, or pn is FICON_PMAP_NO_NUMBER where it is needed;
 *   FICON_RC_PLATFORM, no interface bound to pn (0 is stored); statuses of the slot, the interface service, the fetch. */
uint32_t ficon_pmap_get_index_to_if_withpmap(int32_t index, uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if);
uint32_t ficon_pmap_get_index_to_if(int32_t index, uint32_t pn, uint32_t* if_index);

/* The physical interface of a port map index, 0 to 1023, if it is there and in no port-channel.
 * Results: 0; FICON_RC_INVALID_ARG, index above 1023, nothing written; FICON_RC_NO_IF, no such port, and
 * FICON_RC_LAG_MEMBER, both with 0 stored; FICON_RC_PLATFORM, port-channel service failed, the interface stays stored;
 * statuses of the slot, the interface service and the port index service (0 stored). */
uint32_t ficon_pmap_get_index_to_phyif(int32_t index, uint32_t* if_index);

/* ---- Interface to port number, address and index ----
 * *entry: a physical port's whole entry; of a logical interface, or a port in a port-channel, only pn and pa are written.
 * *index: the port map index.
 * pn_to_if, port_to_pn: tables to use, NULL to fetch the cached ones. skip_lag_check: non-zero answers a port-channel's
 *   member like any port.
 * Results: 0; FICON_RC_INVALID_ARG, entry NULL; FICON_RC_NOT_FC_PORT; FICON_RC_NOT_ASSOCIATED; FICON_RC_LAG_MEMBER, a
 * member that has no number of its own; statuses of the fetches, the interface services and the slot. A port-channel
 * service that fails makes the result 0 with nothing written: clients rely on this leniency. */

int32_t ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, struct ficon_pmap_port_entry* entry, uint32_t* index,
                                                   const uint32_t* pn_to_if, const struct ficon_pmap_port_entry* port_to_pn,
                                                   int32_t skip_lag_check);
int32_t ficon_pmap_get_if_to_pnpa_index_withpmap(uint32_t if_index, struct ficon_pmap_port_entry* entry, uint32_t* index,
                                                 const uint32_t* pn_to_if, int32_t skip_lag_check);
int32_t ficon_pmap_get_if_to_pnpa_withpmap(uint32_t if_index, struct ficon_pmap_port_entry* entry, const uint32_t* pn_to_if,
                                           int32_t skip_lag_check);

/* One number alone, stored on 0 only. After the lenient outcome above it is FICON_PMAP_NO_NUMBER, or index 0. */
int32_t ficon_pmap_get_if_to_pn_withpmap(uint32_t if_index, uint16_t* pn, const uint32_t* pn_to_if, int32_t skip_lag_check);
int32_t ficon_pmap_get_if_to_pn(uint32_t if_index, uint16_t* pn);
int32_t ficon_pmap_get_if_to_pa(uint32_t if_index, uint16_t* pa);
int32_t ficon_pmap_get_if_to_index(uint32_t if_index, uint32_t* index);
int32_t ficon_pmap_get_if_to_index_with2pmaps(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                                              const struct ficon_pmap_port_entry* port_to_pn, int32_t skip_lag_check);

/* ---- Iteration, address to interface ---- */

/* The next numbered physical interface: the next index if it is numbered, else the first port of the next line card and no
 * further. Results: 0; FICON_RC_NOT_FC_PORT, no physical index; FICON_RC_INVALID_ARG, the given interface has no number;
 * FICON_RC_PLATFORM, no next one; statuses of the look-up, the fetch, the slot and the interface service. */
int32_t ficon_pmap_get_next_if(uint32_t if_index, uint32_t* next_if_index);

/* The last numbered physical interface of the same line card. Results as above, but there always is one. */
int32_t ficon_pmap_get_last_if(uint32_t if_index, uint32_t* last_if_index);

/* Address to port number, then port number to interface: statuses of both, *if_index written by the second only. */
uint32_t ficon_pmap_get_pa_to_if(int32_t pa, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_vsan_to_if(int32_t pa, uint32_t vsan, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_to_if_fast(int32_t pa, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_vsan_to_if_fast(int32_t pa, uint32_t vsan, uint32_t* if_index);

/* ---- Port number to physical interface ----
 * pn_bound: port numbers must be below it; a negative number is not rejected. pn_to_if: table by port number, NULL to
 * fetch. *if_index: the interface bound to the number, else the one physical port that carries it, members of port-channels
 *   included. 0 with status 0 when an entry without a physical port carries the number.
 * *flag, results: as for port number to interface; reports name a failed fetch. */

uint32_t ficon_pmap_get_pn_to_phyif_withpvsan(int32_t pn, const uint32_t* vsan, int32_t pn_bound, uint32_t* if_index,
                                              const uint32_t* pn_to_if, uint32_t* flag);
uint32_t ficon_pmap_get_pn_to_phyif(int32_t pn, uint32_t* if_index, int32_t pn_bound, const uint32_t* pn_to_if);
uint32_t ficon_pmap_get_pn_vsan_to_phyif(int32_t pn, uint32_t vsan, uint32_t* if_index, int32_t pn_bound,
                                         const uint32_t* pn_to_if);

/* Address to port number first. The cached interface table is used as it is, and fetched only if it never was. */
uint32_t ficon_pmap_get_pa_to_phyif(int32_t pa, uint32_t* if_index);
uint32_t ficon_pmap_get_pa_vsan_to_phyif(int32_t pa, uint32_t vsan, uint32_t* if_index);

/* ---- Logical interfaces, per-VSAN information, slot and port ---- */

/* Every port number that is bound to an interface, ascending. pns, if_indexes: room for MAX_FICON_PORTS each; *count:
 * numbers stored. Returns 0, or the status of the failed fetch with nothing written. */
uint32_t ficon_pmap_get_pn_logif(uint16_t* pns, uint32_t* if_indexes, uint32_t* count);

/* Every physical port that is in a VSAN now, in index order, as four arrays of *count elements: PN, PA, interface, and 1 or
 * 0 for whether the port is bound to the VSAN. The caller frees all four, also when *count is 0. An array whose allocation
 * was refused is NULL, the others are filled all the same. Ports without an interface and members of port-channels are left
 * out. Returns 0, or the status of the failed fetch with nothing written. */
uint32_t ficon_pmap_get_info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes, uint32_t** bound,
                                     uint32_t* count);

/* Slot and port of a physical interface, both counted as the platform counts; *flag is 0. For a logical interface *flag is
 * 1 and slot and port stay untouched. Results: 0; FICON_RC_NOT_FC_PORT; statuses of the interface services. */
int32_t ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
