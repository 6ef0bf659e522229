/* A client written in C: the header compiles strictly as C99, and a process that supplies the platform's services in C, with no
 * C++ run time in it, gets its answers from the shared library. */
#include <libchnsw.h>
#include <platform/elemdb.h>
#include <platform/evtrc.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/memacct.h>
#include <platform/portidx.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* ---- a small switch: 10 slots of type 32, two ports ---- */

static struct ficon_pmap_port_entry port_to_pn[FICON_PMAP_PORT_ENTRIES];
static uint16_t port_to_vsan[FICON_PMAP_PORT_ENTRIES];
static int registered;
static int reports;

static void make_switch(void) {
  int i;
  for (i = 0; i < FICON_PMAP_PORT_ENTRIES; ++i) {
    port_to_pn[i].pn = FICON_PMAP_NO_NUMBER;
    port_to_pn[i].pa = FICON_PMAP_NO_NUMBER;
  }
  port_to_pn[513].pn = 7; /* line card 2, port 5 */
  port_to_pn[513].pa = 0x20;
  port_to_pn[513].vsans[0] = 10;
  port_to_vsan[513] = 10;
  port_to_pn[1016].pn = 8; /* line card 4, port 0 */
  port_to_pn[1016].pa = 0x20;
  port_to_pn[1016].vsans[0] = 20;
  port_to_vsan[1016] = 20;
}

int memacct_init(const char* library, uint32_t library_id, const char* const* type_names, uint32_t count) {
  registered = strcmp(library, "libchnsw") == 0 && library_id == LIBCHNSW_MEM_LIB_ID && count == LIBCHNSW_MEM_TYPES_MAX &&
               strcmp(type_names[5], "LIBCHNSW_MEM_portpn") == 0;
  return 0;
}

void* memacct_alloc(uint32_t library_id, uint32_t type, uint32_t size) {
  (void)library_id;
  (void)type;
  return malloc(size);
}

void memacct_uninit(uint32_t library_id) {
  (void)library_id;
}

int get_platform_info(struct ficon_platform_info* info) {
  memset(info, 0, sizeof *info);
  info->num_slots = 10;
  return 0;
}

int hwinv_get_chassis_type(int32_t* chassis_type) {
  *chassis_type = 32;
  return 0;
}

int elemdb_lookup_element(struct elemdb_request* request) {
  uint32_t key;
  if (request->table != FICON_ELEMDB_TABLE_PMAP || request->key_length != sizeof key) return 1;
  memcpy(&key, request->key, sizeof key);
  if (key == FICON_PMAP_ELEM_PORTPN && request->value_length == sizeof port_to_pn) {
    memcpy(request->value, port_to_pn, sizeof port_to_pn);
    return 0;
  }
  if (key == FICON_PMAP_ELEM_PORTVSAN && request->value_length == sizeof port_to_vsan) {
    memcpy(request->value, port_to_vsan, sizeof port_to_vsan);
    return 0;
  }
  return 1;
}

const char evtrc_dbg_modname[] = "header_c_test";

int evtrc_hist_event_subtype_check(uint32_t id, uint32_t subtype) {
  (void)id;
  (void)subtype;
  return 0;
}

int evtrc_hist_event(uint32_t id, uint32_t length, const void* record) {
  (void)length;
  (void)record;
  if (id == FICON_EVT_HIST_ID) ++reports;
  return 0;
}

int evtrc_chk_int(int flag, int a, int b, int level) {
  (void)flag;
  (void)a;
  (void)b;
  (void)level;
  return 0;
}

void dbgout(int level, const char* module, int zero, const char* format, ...) {
  (void)level;
  (void)module;
  (void)zero;
  (void)format;
}

int if_index_get_type(uint32_t if_index, uint8_t* type) {
  *type = (uint8_t)(if_index >> 24);
  return 0;
}

int if_index_get_slot(uint32_t if_index, uint8_t* slot) {
  *slot = (uint8_t)(if_index >> 8);
  return 0;
}

int if_index_get_port(uint32_t if_index, uint8_t* port) {
  *port = (uint8_t)if_index;
  return 0;
}

int if_index_phy_fc_port_init(uint32_t* if_index, uint8_t slot, uint8_t port, int zero) {
  (void)zero;
  *if_index = 0x01000000u | (uint32_t)slot << 8 | port;
  return 0;
}

int portidx_port_by_if_index(uint32_t if_index, uint16_t* port_index) {
  *port_index = (uint16_t)if_index;
  return 0;
}

int lagmap_get_port(struct lagmap_port_query* query) {
  query->channel = 0;
  return 0;
}

/* ---- checks ---- */

static int failures;

#define CHECK(condition)                                                      \
  do {                                                                        \
    if (!(condition)) {                                                       \
      ++failures;                                                             \
      fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
    }                                                                         \
  } while (0)

static void check_frame(void) {
  struct ficon_platform_info info;
  CHECK(registered);
  CHECK(strcmp(__libchnsw_mem_type_t_find(LIBCHNSW_MEM_pnif), "LIBCHNSW_MEM_pnif") == 0);
  CHECK(__libchnsw_mem_type_t_str2enum("libchnsw_mem_vsanlist") == LIBCHNSW_MEM_vsanlist);
  CHECK(ficon_get_platform_info(&info) == 0);
  CHECK(info.num_slots == 10);
  CHECK(libchnsw_pinfo != NULL && libchnsw_pinfo->num_slots == 10);
}

static void check_numbers(void) {
  const uint32_t vsan = 20;
  uint16_t pn = 0xEEEE;
  uint16_t pa = 0xEEEE;
  uint32_t flag = 0;
  CHECK(ficon_pmap_get_pa_to_pn(0x20, &pn) == FICON_RC_PA_RANGE); /* nobody has asked for the number of ports */
  CHECK(ficon_get_max_ficon_ports() == 254);
  CHECK(MAX_FICON_PORTS == 254);
  CHECK(ficon_pmap_get_pa_to_pn(0x20, &pn) == FICON_RC_MULTI_IF);
  CHECK(pn == 0xEEEE);
  CHECK(ficon_pmap_get_pa_vsan_to_pn(0x20, 10, &pn) == 0);
  CHECK(pn == 7);
  CHECK(ficon_pmap_get_pa_to_pn_withpvsan(0x20, &vsan, &pn, &flag, 0) == 0);
  CHECK(pn == 8 && flag == 1);
  CHECK(ficon_pmap_get_pn_to_pa(7, &pa) == 0);
  CHECK(pa == 0x20);
  CHECK(reports > 0);
}

static void check_interfaces(void) {
  uint32_t if_index = 0;
  uint32_t index = 0;
  uint8_t slot = 0xEE;
  struct ficon_pmap_port_entry entry;
  CHECK(ficon_pmap_get_pa_vsan_to_if(0x20, 20, &if_index) == 0);
  CHECK(if_index == 0x01000600);
  CHECK(ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, &index, NULL, NULL, 0) == 0);
  CHECK(entry.pn == 8 && entry.pa == 0x20 && entry.vsans[0] == 20 && index == 1016);
  CHECK(ficonm_platform_lc_to_slot_b0(4, &slot) == 0);
  CHECK(slot == 6);
  CHECK(ficonm_platform_slot_to_pn(2, 5) == 7);
}

static void check_fast_path(void) {
  uint16_t pn = 0;
  CHECK(ficon_pmap_prepare_fastpath(10) == 0);
  CHECK(fastpath_got_vsan_port == 1);
  CHECK(ficon_pmap_port_to_pn != NULL && ficon_pmap_port_to_pn[513].pn == 7);
  CHECK(ficon_pmap_port_to_vsan != NULL && ficon_pmap_port_to_vsan[1016] == 20);
  CHECK(ficon_pmap_get_pa_vsan_to_pn_fast(0x20, 20, &pn) == 0);
  CHECK(pn == 8);
}

int main(void) {
  make_switch();
  check_frame();
  check_numbers();
  check_interfaces();
  check_fast_path();
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
