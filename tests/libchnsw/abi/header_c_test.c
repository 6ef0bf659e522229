/* A client written in C: the header compiles strictly as C99, and a process that supplies the platform's services in C, with no
 * C++ run time in it, gets its answers from the shared library. */
#include <libchnsw.h>
#include <platform/elemdb.h>
#include <platform/evtrc.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/memacct.h>
#include <platform/msgq.h>
#include <platform/portidx.h>
#include <platform/tlv_aligned_array.h>
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

uint32_t hton_if_index(uint32_t if_index) {
  return if_index ^ 0x00FF00FFu;
}

uint32_t ntoh_if_index(uint32_t if_index) {
  return if_index ^ 0x00FF00FFu;
}

/* ---- messages: what was sent last is what is received next; a TLV array is a count of bytes and one value ---- */

struct msgq_message {
  uint32_t size;
  unsigned char payload[1024];
};

static struct msgq_message last;
static struct msgq_addr last_to;
static uint32_t last_opcode;
static uintptr_t last_send_arg;

int msgq_send(msgq* handle, const struct msgq_addr* to, uint32_t opcode, const void* payload, uint32_t length,
              uintptr_t send_arg, msgq_message* answered, uint32_t zero) {
  (void)answered;
  if (handle == NULL || zero != 0 || length > sizeof last.payload) return -1;
  last_to = *to;
  last_opcode = opcode;
  last_send_arg = send_arg;
  last.size = length;
  memset(last.payload, 0, sizeof last.payload);
  if (length != 0) memcpy(last.payload, payload, length);
  return 0;
}

void* msgq_payload_get(msgq_message* message) {
  return message->payload;
}

uint32_t msgq_payload_size(msgq_message* message) {
  return message->size;
}

int msgq_errno_get(msgq* handle) {
  return handle == NULL ? 22 : 0;
}

int tlv_aligned_array_add_tlv(void* array, uint32_t capacity, uint16_t type, uint16_t length, const void* value, int flag) {
  unsigned char* bytes = array;
  const uint32_t used = 8u + length;
  if (flag != 1 || capacity < used) return 1;
  memcpy(bytes, &used, 4);
  memcpy(bytes + 4, &type, 2);
  memcpy(bytes + 6, &length, 2);
  memcpy(bytes + 8, value, length);
  return 0;
}

uint32_t tlv_aligned_array_size_get(const void* array, int flag) {
  uint32_t used;
  (void)flag;
  memcpy(&used, array, sizeof used);
  return used;
}

int tlv_aligned_array_get_num_tlvs(const void* array, int flag) {
  return tlv_aligned_array_size_get(array, flag) == 0 ? 0 : 1;
}

int tlv_aligned_array_get_next_tlv(const void* array, uint16_t* type, uint16_t* length, void** value, int flag,
                                   uint32_t* cursor) {
  (void)array; /* there is but one */
  if (flag != 1 || *cursor != 0) return 1;
  memcpy(type, last.payload + 4, 2);
  memcpy(length, last.payload + 6, 2);
  *value = last.payload + 8;
  *cursor = 1;
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

static void check_portmap_message(msgq* handle) {
  uint32_t if_index = 0;
  uint16_t number_a = 0;
  uint16_t number_b = 0;
  CHECK(ficon_send_get_portmap_nonblock(NULL, NULL, NULL, 0, 0, 0, 0, 0, 0) == FICON_RC_INVALID_ARG);
  CHECK(ficon_send_get_portmap_nonblock(handle, "a", "b", 5, 6, 0x01000205, 7, 8, 99) == 0);
  CHECK(last_to.node == 0xFE000001 && last_to.service_point == 101);
  CHECK(last_opcode == 7858 && last_send_arg == 99 && last.size == 138);
  CHECK(ficon_parse_get_portmap(&last, &if_index, &number_a, &number_b) == 0);
  CHECK(if_index == 0x01000205 && number_a == 7 && number_b == 8);
  CHECK(ficon_parse_get_rnid(&last, &if_index, NULL, NULL, NULL, NULL, NULL, NULL) == FICON_RC_INVALID_ARG);
}

static void check_vsan_messages(msgq* handle) {
  static struct vsan_block vsans;
  const uint32_t sent[2] = {0x01000205, 0x01000600};
  uint32_t* read = NULL;
  uint32_t count = 0;
  uint32_t byte0 = 0;
  int32_t single = 0;
  int32_t vsan = 0;
  CHECK(ficon_send_get_enabled_vsans(NULL, 0) == 22);
  CHECK(ficon_send_vsan_install(handle, 2, sent, 3, 1, 4095, &vsans) == 0);
  CHECK(last_opcode == 7882 && last.size == 529);
  CHECK(last.payload[516] == 0x01);
  CHECK(ficon_parse_vsan_install(&last, &count, &read, &byte0, &single, &vsan, &vsans) == 0);
  CHECK(count == 2 && byte0 == 3 && single == 1 && vsan == 4095 && vsans.bytes == 512);
  CHECK(read != NULL && read[0] == sent[0] && read[1] == sent[1]);
  free(read);
}

static void check_responses(msgq* handle) {
  CHECK(ficon_if_swap_unlock_send_resp(handle, &last, 1, 2, 3, 4) == 0);
  CHECK(last_to.node == 0xFE000000 && last_to.service_point == 0);
  CHECK(last_opcode == 0 && last.size == sizeof(struct ficon_if_swap_resp));
}

static void check_messages(void) {
  static char end;
  msgq* const handle = (msgq*)(void*)&end;
  check_portmap_message(handle);
  check_vsan_messages(handle);
  check_responses(handle);
}

static int convert_nothing(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
                           uint32_t* output_space, uint32_t codepage) {
  (void)mode;
  (void)counter;
  if (codepage != 37 || *output_space < 5 || input_length != 5) return 0;
  memcpy(*output, input, 5);
  (*output)[0] = 'h';
  return 1;
}

static void check_code_pages(void) {
  char text[] = "HELLO";
  CHECK(strcmp(ficon_get_codepage_name(FICON_CODEPAGE_ASCII), "ascii") == 0);
  convert_fnptr = convert_nothing;
  CHECK(ficon_get_convert_fn_ptr() == convert_nothing);
  CHECK(convert_codepage(CHAR_CONVERT_FROM_HOST, 37, text, 5) == 0);
  CHECK(strcmp(text, "hELLO") == 0);
  CHECK(convert_codepage(CHAR_CONVERT_FROM_HOST, 273, text, 5) == FICON_RC_CONVERT);
}

int main(void) {
  make_switch();
  check_frame();
  check_numbers();
  check_interfaces();
  check_fast_path();
  check_messages();
  check_code_pages();
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
