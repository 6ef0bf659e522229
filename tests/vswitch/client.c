/* A client of libchnsw.so and of the platform's services, as any process of the switch is one: plain C, and what it prints is
 * what the tests read.
 *
 *   pa ADDRESS [VSAN]     status and port number, as the library has them
 *   time VSAN SECONDS MICROSECONDS   status and text of the VSAN's time stamp at a host time
 *   text CODEPAGE BYTES   status and the switch's text for a host's bytes
 *   services INDEX        what every service says about an interface index, and about the chassis
 *   type                  chassis type once, and again after every line on standard input
 *   read CHANGES          reads the port-to-number table until it changed so often; fails when its entries are not of one map
 *   allocate TYPE COUNT   COUNT allocations, "granted" or "refused"
 *   report SUBTYPE TEXT   one event history record, if it is not filtered, and one debug text, if its flag is on */
#include <errno.h>
#include <libchnsw.h>
#include <platform/elemdb.h>
#include <platform/evtrc.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/memacct.h>
#include <platform/portidx.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static uint32_t number(const char* text) {
  return (uint32_t)strtoul(text, NULL, 0);
}

static int translate_address(const char* pa, const char* vsan) {
  uint16_t pn = 0xFFFF;
  uint32_t status;
  ficon_get_max_ficon_ports();
  status = vsan == NULL ? ficon_pmap_get_pa_to_pn((int32_t)number(pa), &pn)
                        : ficon_pmap_get_pa_vsan_to_pn((int32_t)number(pa), number(vsan), &pn);
  printf("status 0x%08x pn %u\n", (unsigned)status, (unsigned)pn);
  return 0;
}

static int tell_time(const char* vsan, const char* seconds, const char* microseconds) {
  const struct ficon_host_time at = {(int32_t)number(seconds), (int32_t)number(microseconds)};
  const char* text = "no text";
  const uint32_t status = ficon_cmi_get_vsan_tstmp_given_time(number(vsan), &text, FICON_TOD_FMT_DAY_FIRST, &at);
  printf("status 0x%08x %s\n", (unsigned)status, text);
  return 0;
}

static int convert_text(const char* codepage, char* bytes) {
  const uint32_t status = convert_codepage(CHAR_CONVERT_FROM_HOST, number(codepage), bytes, (int32_t)strlen(bytes));
  printf("status 0x%08x %s\n", (unsigned)status, bytes);
  return 0;
}

static void ask_about_chassis(void) {
  struct ficon_platform_info info;
  int32_t type = -1;
  int status;
  memset(&info, 0, sizeof info);
  errno = 0;
  status = get_platform_info(&info);
  printf("get_platform_info 0x%x errno %d slots %u\n", (unsigned)status, errno, (unsigned)info.num_slots);
  errno = 0;
  status = hwinv_get_chassis_type(&type);
  printf("hwinv_get_chassis_type 0x%x errno %d type %d\n", (unsigned)status, errno, (int)type);
}

static void ask_about_interface(uint32_t if_index) {
  struct lagmap_port_query query = {if_index, 0};
  uint8_t byte = 0xEE;
  uint16_t port_index = 0xEEEE;
  uint32_t built = 0;
  printf("type 0x%x\n", (unsigned)if_index_get_type(if_index, &byte));
  printf("slot 0x%x\n", (unsigned)if_index_get_slot(if_index, &byte));
  printf("port 0x%x\n", (unsigned)if_index_get_port(if_index, &byte));
  printf("init 0x%x\n", (unsigned)if_index_phy_fc_port_init(&built, 0, 0, 0));
  printf("portidx 0x%x\n", (unsigned)portidx_port_by_if_index(if_index, &port_index));
  printf("lagmap 0x%x\n", (unsigned)lagmap_get_port(&query));
}

static void ask_about_element(void) {
  uint32_t key = FICON_PMAP_ELEM_CHANGE_COUNTER;
  uint32_t counter = 0;
  struct elemdb_request request = {1, FICON_ELEMDB_TABLE_PMAP, sizeof key, &key, sizeof counter, &counter};
  int status;
  errno = 0;
  status = elemdb_lookup_element(&request);
  printf("elemdb 0x%x errno %d counter %u\n", (unsigned)status, errno, (unsigned)counter);
}

static int ask_everything(const char* if_index) {
  ask_about_chassis();
  ask_about_interface(number(if_index));
  ask_about_element();
  return 0;
}

static int tell_type(void) {
  int c;
  do {
    int32_t type = -1;
    hwinv_get_chassis_type(&type);
    printf("%d\n", (int)type);
    fflush(stdout);
    while ((c = getchar()) != EOF && c != '\n') continue;
  } while (c != EOF);
  return 0;
}

static int of_one_map(const struct ficon_pmap_port_entry* entries) {
  int i;
  for (i = 0; i < FICON_PMAP_PORT_ENTRIES; ++i)
    if (entries[i].pn != entries[0].pn || entries[i].pa != entries[0].pn || entries[i].vsans[7] != entries[0].pn) return 0;
  return 1;
}

/* A writer that stands still would keep it here, so it does not wait for longer than a minute. */
static int read_until_changed(uint32_t changes) {
  const time_t latest = time(NULL) + 60;
  uint32_t seen = 0;
  uint16_t last = 0;
  while (seen < changes && time(NULL) < latest) {
    if (ficon_get_pmap_portpn() != 0 || !of_one_map(ficon_pmap_port_to_pn)) return 1;
    seen += ficon_pmap_port_to_pn[0].pn != last;
    last = ficon_pmap_port_to_pn[0].pn;
  }
  printf("%u changes\n", (unsigned)seen);
  return 0;
}

static int allocate(uint32_t type, uint32_t count) {
  while (count-- != 0) {
    void* block = memacct_alloc(LIBCHNSW_MEM_LIB_ID, type, 100);
    puts(block != NULL ? "granted" : "refused");
    free(block);
  }
  return 0;
}

static int report(uint32_t subtype, const char* text) {
  struct ficon_hist_record record;
  record.subtype = subtype;
  strncpy(record.text, text, sizeof record.text - 1);
  record.text[sizeof record.text - 1] = '\0';
  if (evtrc_hist_event_subtype_check(FICON_EVT_HIST_ID, subtype) == 0)
    evtrc_hist_event(FICON_EVT_HIST_ID, (uint32_t)strlen(record.text) + 5, &record);
  if (evtrc_chk_int((int)subtype, 0, 0, 1)) dbgout(1, evtrc_dbg_modname, 0, "%s of %u", text, (unsigned)subtype);
  return 0;
}

int main(int count, char** words) {
  const char* command = count > 1 ? words[1] : "";
  if (strcmp(command, "pa") == 0 && count > 2) return translate_address(words[2], count > 3 ? words[3] : NULL);
  if (strcmp(command, "time") == 0 && count > 4) return tell_time(words[2], words[3], words[4]);
  if (strcmp(command, "text") == 0 && count > 3) return convert_text(words[2], words[3]);
  if (strcmp(command, "services") == 0 && count > 2) return ask_everything(words[2]);
  if (strcmp(command, "type") == 0) return tell_type();
  if (strcmp(command, "read") == 0 && count > 2) return read_until_changed(number(words[2]));
  if (strcmp(command, "allocate") == 0 && count > 3) return allocate(number(words[2]), number(words[3]));
  if (strcmp(command, "report") == 0 && count > 3) return report(number(words[2]), words[3]);
  fprintf(stderr, "unknown command\n");
  return 2;
}
