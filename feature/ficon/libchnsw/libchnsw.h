/* libchnsw: one answer to the question which port number (PN), port address (PA), slot and interface of a FICON switch
 * belong together; and the messages between the switch's FICON manager and its clients.
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

#include <platform/char_convert.h>
#include <platform/msgq.h>
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
  FICON_RC_INVALID_ARG = 0x40850003,    /* a required address is NULL, an argument is out of range, a message lacks it */
  FICON_RC_NO_PAYLOAD = 0x40850008,     /* a received message has no payload */
  FICON_RC_PLATFORM = 0x4085000A,       /* the platform failed, or nothing was found */
  FICON_RC_PA_RANGE = 0x40850018,       /* port address not below MAX_FICON_PORTS */
  FICON_RC_PN_RANGE = 0x40850019,       /* port number not below the bound */
  FICON_RC_LAG_MEMBER = 0x4085001A,     /* the port is in a port-channel */
  FICON_RC_CONVERT = 0x40850020,        /* text conversion is not available, or failed */
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

/* Messages: where requests and replies go. */
enum { FICON_MGR_SERVICE_POINT = 101 }; /* the FICON manager's */
#define FICON_MGR_NODE 0xFE000001u      /* with FICON_MGR_SERVICE_POINT */
#define FICON_REPLY_NODE 0xFE000000u    /* with service point 0 */

/* Messages: opcodes. */
enum {
  FICON_OP_REPLY = 0,
  FICON_OP_GET_PORTMAP = 7858,
  FICON_OP_GET_ENABLED_VSANS = 7859,
  FICON_OP_GET_RNID = 7869,
  FICON_OP_VSAN_INSTALL = 7882,
  FICON_OP_QUERY_IFVSAN_STATE = 7888
};

/* Messages: types of values in TLV arrays. */
enum {
  FICON_TLV_ENABLE = 1,
  FICON_TLV_PORTMAP = 9,
  FICON_TLV_UPDOWN = 10,
  FICON_TLV_RNID = 15,
  FICON_TLV_ENABLED_VSANS = 16,
  FICON_TLV_VSAN_STATE_CHANGE = 24
};

/* Messages: special values of fields. */
enum {
  FICON_CMI_KIND_PORTMAP = 18,      /* kind of a port map request */
  FICON_RNID_SIZE = 512,            /* rnid_size of every RNID request */
  FICON_RNID_FORMAT_CONVERTED = 2,  /* rnid_format that asks for converted text */
  FICON_RNID_DESCRIPTOR_BYTES = 32, /* node descriptor */
  FICON_VSAN_BITMAP_BYTES = 512     /* one bit for each VSAN, 0 to 4095 */
};

/* Code pages of a host: EBCDIC by their registered numbers (CCSID), and plain ASCII. */
enum { FICON_CODEPAGE_ASCII = 1 };

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

/* Records of messages. All integers are in the byte order of the machine; only interface indexes have an order of their own,
 * wire order: that of hton_if_index, and of ntoh_if_index in the query of an interface's VSAN state and in VSAN install, in
 * both directions. Packed records have no padding and may stand at any address. */

/* Header that a request record may start with, 112 bytes.
 *
 *   offset  0      4      8          12      52      112
 *           | code | kind | reserved | text1 | text2 |
 */
struct ficon_cmi_hdr {
  uint32_t code;
  uint32_t kind;
  uint32_t reserved;
  char text1[40]; /* without a NUL when all 40 are used */
  char text2[60]; /* without a NUL when all 60 are used */
} __attribute__((packed));

/* Port map request and answer: the value of a TLV of type FICON_TLV_PORTMAP, 130 bytes.
 *
 *   offset  0        112        116      120        122        124        125    130
 *           | header | if_index | result | number_a | number_b | selector | zero |
 */
struct ficon_portmap_req {
  struct ficon_cmi_hdr header; /* of requests */
  uint32_t if_index;           /* in wire order */
  uint32_t result;             /* of answers */
  uint16_t number_a;
  uint16_t number_b;
  uint8_t selector; /* of requests */
  uint8_t zero[5];
} __attribute__((packed));

/* Interface VSAN state query and answer: a whole payload, and the caller's own record, 20 bytes.
 *
 *   offset  0        4       8       12         16      20
 *           | result | state | arg_a | if_index | arg_b |
 */
struct ficon_ifvsan_query {
  uint32_t result; /* of answers */
  uint32_t state;  /* of answers */
  uint32_t arg_a;
  uint32_t if_index; /* in wire order in a payload */
  uint32_t arg_b;
};

/* RNID (Request Node Identification Data, FC-LS) request, answer and notification: the value of a TLV of type
 * FICON_TLV_RNID, 60 bytes.
 *
 *   offset  0          4           6           8            12         16            20       24            28           60
 *           | if_index | rnid_port | rnid_size | rnid_word8 | codepage | rnid_format | result | rnid_word24 | descriptor |
 */
struct ficon_rnid_rec {
  uint32_t if_index; /* in wire order */
  uint16_t rnid_port;
  uint16_t rnid_size;
  uint32_t rnid_word8;
  uint32_t codepage; /* of the descriptor's text, in answers */
  uint32_t rnid_format;
  uint32_t result; /* of answers */
  uint32_t rnid_word24;
  uint8_t descriptor[FICON_RNID_DESCRIPTOR_BYTES];
};

/* Node descriptor (FC-SB), 32 bytes. Its texts are in the host's code page, padded as the host does it.
 *
 *   offset  0       4      10      13             16      18         30    32
 *           | flags | type | model | manufacturer | plant | sequence | tag |
 */
struct ficon_node_descriptor {
  uint8_t flags[4];
  char type[6];
  char model[3];
  char manufacturer[3];
  char plant[2];
  char sequence[12];
  uint8_t tag[2];
};

/* A set of VSANs, 516 bytes: VSAN v is bit 0x80 >> (v mod 8) of byte v / 8. */
struct vsan_block {
  uint32_t bytes; /* FICON_VSAN_BITMAP_BYTES */
  uint8_t bitmap[FICON_VSAN_BITMAP_BYTES];
};

/* Request of a swap step: a whole payload, 12 bytes, or 528 with the set of VSANs.
 *
 *   offset  0            4            8            12      528
 *           | swap_word0 | if_index_a | if_index_b | vsans |
 */
struct ficon_if_swap_req {
  uint32_t swap_word0;
  uint32_t if_index_a; /* in wire order */
  uint32_t if_index_b; /* in wire order */
  struct vsan_block vsans;
};

/* Response to a swap step: a whole payload, 536 bytes.
 *
 *   offset  0             4            8            12           16     536
 *           | swap_status | swap_word4 | if_index_a | if_index_b | zero |
 */
struct ficon_if_swap_resp {
  uint32_t swap_status;
  uint32_t swap_word4;
  uint32_t if_index_a; /* in wire order */
  uint32_t if_index_b; /* in wire order */
  uint8_t zero[520];
};

/* VSAN install: a whole payload, 521 bytes, then count interface indexes in wire order.
 *
 *   offset  0               1       517     521
 *           | install_byte0 | vsans | count | indexes ...
 */
struct ficon_vsan_install_msg {
  uint8_t install_byte0;
  struct vsan_block vsans;
  uint32_t count;
} __attribute__((packed));

/* Notices. Their first word is handed on as it stands. */

struct ficon_vsan_state_change { /* FICON_TLV_VSAN_STATE_CHANGE, 8 bytes */
  uint32_t word0;
  uint32_t word1;
};

struct ficon_updown_notice { /* FICON_TLV_UPDOWN, 6 bytes used */
  uint32_t word0;
  uint8_t byte4;
  uint8_t byte5;
};

struct ficon_enable_notice { /* FICON_TLV_ENABLE, 5 bytes used */
  uint32_t word0;
  uint8_t byte4;
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
extern ficon_convert_fn convert_fnptr;                      /* the converter; NULL until found */

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

/* ---- Code pages ---- */

/* The entry "convert" of "libchar_convert.so", loaded on first use and kept as long as the library is.
 * Returns it, or NULL with a line on standard output: the object or its entry cannot be found. The next call tries again. */
ficon_convert_fn ficon_get_convert_fn_ptr(void);

/* Converts a text in place, byte by byte.
 * mode: CHAR_CONVERT_FROM_HOST or CHAR_CONVERT_TO_HOST. codepage: of the host.
 * buffer: in and out; untouched unless the result is 0. length: up to 100 bytes. A negative one is not rejected: the
 *   converter gets it, and nothing is copied back.
 * What the converter leaves unwritten comes back as NULs.
 * Returns 0; FICON_RC_INVALID_ARG, longer than 100; FICON_RC_CONVERT, no converter (told on standard output) or it failed.
 * The converter is looked for in any case. */
uint32_t convert_codepage(uint32_t mode, uint32_t codepage, char* buffer, int32_t length);

/* The name of a code page, for people. Returns a constant text, "unrecognized" for any number without a name. */
const char* ficon_get_codepage_name(uint32_t codepage);

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

/* ---- Manager messages ----
 *
 * Senders build one message, hand it to the transport and return at once; the answer comes as a received message, which its
 * parser reads.
 *
 * handle: an open end of the transport, tested for NULL only where FICON_RC_INVALID_ARG says so.
 * send_arg: handed to the transport, which brings it back with the answer.
 * message: received, and still the caller's afterwards.
 * if_index: as clients have it; senders and parsers turn it to and from wire order.
 *
 * Results of senders: what msgq_send returned; the transport's error (msgq_errno_get) when that was -1.
 * Results of parsers: the result that the manager put into the answer, which is 0 when all is well.
 *   FICON_RC_INVALID_ARG: message is NULL, or it holds nothing of this kind. FICON_RC_NO_PAYLOAD: it holds nothing at all.
 *   With these two no output is written, but by ficon_parse_vsan_install. Lengths of values are not compared with those of
 *   records. */

/* Fills a header, which the caller has cleared: reserved is not written.
 * header: out; NULL does nothing. code, kind: what the message is about, to the manager.
 * text1, text2: cut to 40 and 60 bytes, then without a NUL; shorter ones are filled up with NULs; NULL leaves the field
 *   alone. */
void ficon_init_cmi_hdr(struct ficon_cmi_hdr* header, uint32_t code, const char* text1, const char* text2, uint32_t kind);

/* ---- Manager messages: port map and VSANs ---- */

/* Asks for the port map entry of an interface.
 * text1, text2, code: for the header. selector, number_a, number_b: the manager's; handed on as they are.
 * Also FICON_RC_INVALID_ARG, no handle; a status of the TLV array. */
int32_t ficon_send_get_portmap_nonblock(msgq* handle, const char* text1, const char* text2, uint32_t code, uint8_t selector,
                                        uint32_t if_index, uint16_t number_a, uint16_t number_b, uintptr_t send_arg);

/* if_index, number_a, number_b: out, NULL for those that are not wanted; written whatever the manager's result is. */
uint32_t ficon_parse_get_portmap(msgq_message* message, uint32_t* if_index, uint16_t* number_a, uint16_t* number_b);

/* Asks for the list of enabled VSANs. The handle is not tested. */
int32_t ficon_send_get_enabled_vsans(msgq* handle, uintptr_t send_arg);

/* list: out, the bytes as the manager sent them, in a buffer that the caller frees; NULL when it is not wanted. How many
 *   there are is not told: the list itself has to.
 * Returns 0; FICON_RC_NO_MEMORY with *list untouched; as above. */
uint32_t ficon_parse_get_enabled_vsans(msgq_message* message, void** list);

/* Asks for the state of an interface in a VSAN. The handle is not tested.
 * query: in; arg_a, arg_b and if_index are sent. NULL: FICON_RC_INVALID_ARG. */
int32_t ficon_send_query_ifvsan_state(msgq* handle, const struct ficon_ifvsan_query* query, uintptr_t send_arg);

/* query: out; NULL is FICON_RC_INVALID_ARG, and so is a payload below 20 bytes. */
uint32_t ficon_parse_query_ifvsan(msgq_message* message, struct ficon_ifvsan_query* query);

/* ---- Manager messages: VSAN install ---- */

/* Tells the manager to install FICON on a set of VSANs, for a list of interfaces.
 * if_indexes: in, count elements; NULL is FICON_RC_INVALID_ARG, also when count is 0.
 * single_vsan: non-zero, vsan alone makes the set; 0, vsans does.
 * handle: not tested.
 * vsan: 0 to 4095, not tested: any other writes outside the bitmap, or sets another VSAN's bit.
 * vsans: in; bytes is not read. Tested for NULL when single_vsan is set, although it is read only when it is not.
 * Returns 0; FICON_RC_INVALID_ARG; FICON_RC_NO_MEMORY, also for a message whose length 32 bits cannot hold; errno, and not
 *   the transport's error, when it could not be sent. */
uint32_t ficon_send_vsan_install(msgq* handle, uint32_t count, const uint32_t* if_indexes, uint8_t install_byte0,
                                 int32_t single_vsan, int32_t vsan, const struct vsan_block* vsans);

/* Reads it. The message must have come from ficon_send_vsan_install; neither it nor its length is tested.
 * count, install_byte0: out, required, written before anything is tested.
 * if_indexes: out, *count elements in a buffer that the caller frees; NULL in it with FICON_RC_NO_MEMORY. An address of NULL
 *   is FICON_RC_INVALID_ARG.
 * single_vsan: out, required; 1 when the set holds exactly one VSAN, which is then in *vsan; else both are 0.
 * vsans: out, required. These three are not written unless the result is 0.
 * Returns 0; FICON_RC_INVALID_ARG; FICON_RC_NO_MEMORY. */
uint32_t ficon_parse_vsan_install(msgq_message* message, uint32_t* count, uint32_t** if_indexes, uint32_t* install_byte0,
                                  int32_t* single_vsan, int32_t* vsan, struct vsan_block* vsans);

/* ---- Manager messages: RNID ---- */

/* Asks for the node descriptor of the device behind an interface.
 * rnid_format: FICON_RNID_FORMAT_CONVERTED to have its texts converted by the parser.
 * Also FICON_RC_INVALID_ARG, no handle; a status of the TLV array. */
int32_t ficon_send_get_rnid_nonblock(msgq* handle, uint32_t if_index, uint16_t rnid_port, uint32_t rnid_word8,
                                     uint32_t rnid_format, uint32_t rnid_word24, uintptr_t send_arg);

/* All outputs may be NULL, and are written whatever the manager's result is.
 * descriptor: out, 32 bytes. Its texts are converted when the answer's rnid_format is FICON_RNID_FORMAT_CONVERTED; one that
 *   cannot be stays as it came, which no result tells. */
uint32_t ficon_parse_get_rnid(msgq_message* message, uint32_t* if_index, uint16_t* rnid_port, uint32_t* rnid_word8,
                              uint32_t* codepage, uint32_t* rnid_format, uint32_t* rnid_word24, void* descriptor);

/* The same record, sent by the manager unasked. */
uint32_t ficon_parse_rnid_notification(msgq_message* message, uint32_t* if_index, uint16_t* rnid_port, uint32_t* rnid_word8,
                                       uint32_t* rnid_format, uint32_t* rnid_word24, void* descriptor);

/* Converts the five texts of a node descriptor in place from the host's code page.
 * descriptor: in and out, required; 32 bytes at any address.
 * Returns the status of convert_codepage for the sequence number; what happened to the other four is not told. */
uint32_t ficon_format_rnid(uint32_t codepage, void* descriptor);

/* ---- Manager messages: interface swap ----
 *
 * The manager swaps the identities of two interfaces in three steps; it asks, the client parses and responds.
 *
 * Parsers: outputs may be NULL. The message must be a request of the manager; neither it nor its length is tested. All
 * return 0.
 * Responses go back on request, whose address is handed to the transport; whether they arrive is not told. All return 0. */

uint32_t ficon_if_swap_chk_lock_parse(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                      uint32_t* if_index_b);
uint32_t ficon_if_swap_chk_lock_parse_with_vsan(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                                uint32_t* if_index_b, struct vsan_block* vsans);
uint32_t ficon_if_swap_chk_lock_send_resp(msgq* handle, msgq_message* request, uint32_t swap_word4, uint32_t if_index_a,
                                          uint32_t if_index_b, uint32_t swap_status);

/* response: in, required, sent as it is. */
uint32_t ficon_if_swap_chk_lock_send_resp_with_reasoncode(msgq* handle, msgq_message* request,
                                                          const struct ficon_if_swap_resp* response);

uint32_t ficon_if_swap_do_swap_parse(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                     uint32_t* if_index_b);
uint32_t ficon_if_swap_do_swap_parse_with_vsan(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                               uint32_t* if_index_b, struct vsan_block* vsans);
uint32_t ficon_if_swap_do_swap_send_resp(msgq* handle, msgq_message* request, uint32_t swap_word4, uint32_t if_index_a,
                                         uint32_t if_index_b, uint32_t swap_status);

uint32_t ficon_if_swap_unlock_parse(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                    uint32_t* if_index_b);
uint32_t ficon_if_swap_unlock_parse_with_vsan(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                              uint32_t* if_index_b, struct vsan_block* vsans);
uint32_t ficon_if_swap_unlock_send_resp(msgq* handle, msgq_message* request, uint32_t swap_word4, uint32_t if_index_a,
                                        uint32_t if_index_b, uint32_t swap_status);

/* ---- Manager messages: notices ----
 *
 * notice: out, NULL when it is not wanted; bytes beyond those used are not written. Parsers return 0 when it is there. */

uint32_t ficon_parse_vsan_state_change_payload(msgq_message* message, struct ficon_vsan_state_change* notice);
uint32_t ficon_parse_updown_payload(msgq_message* message, struct ficon_updown_notice* notice);
uint32_t ficon_parse_enable_payload(msgq_message* message, struct ficon_enable_notice* notice);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
