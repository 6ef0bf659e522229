// The cached port map tables, fetched from the element database, and the number of ports.
#include "port_map_tables.h"

#include <cerrno>
#include <cstddef>
#include <cstring>

#include <platform/elemdb.h>

#include "chassis.h"
#include "report.h"

static_assert(sizeof(ficon_pmap_port_entry) == 20);
static_assert(offsetof(ficon_pmap_port_entry, pn) == 0);
static_assert(offsetof(ficon_pmap_port_entry, pa) == 2);
static_assert(offsetof(ficon_pmap_port_entry, vsans) == 4);

// Six words on a 32-bit machine.
static_assert(offsetof(elemdb_request, first) == 0);
static_assert(offsetof(elemdb_request, table) == 4);
static_assert(offsetof(elemdb_request, key_length) == 8);
static_assert(sizeof(void*) != 4 || offsetof(elemdb_request, key) == 12);
static_assert(sizeof(void*) != 4 || offsetof(elemdb_request, value_length) == 16);
static_assert(sizeof(void*) != 4 || offsetof(elemdb_request, value) == 20);
static_assert(sizeof(void*) != 4 || sizeof(elemdb_request) == 24);

namespace {

struct table_row {
  uint32_t key;
  uint32_t memory_type;
  int warning_line;
};

// Oddity: the port-to-VSAN table is accounted under the port-to-PN type; there is no type of its own.
constexpr table_row kPortToVsan = {FICON_PMAP_ELEM_PORTVSAN, LIBCHNSW_MEM_portpn, 1420};
constexpr table_row kPortToPn = {FICON_PMAP_ELEM_PORTPN, LIBCHNSW_MEM_portpn, 1453};
constexpr table_row kPaToPn = {FICON_PMAP_ELEM_PAPN, LIBCHNSW_MEM_papn, 1491};
constexpr table_row kPnToLogif = {FICON_PMAP_ELEM_PNIF, LIBCHNSW_MEM_pnif, 1530};

// Returns 0 when the element was found.
int look_up_element(uint32_t key, void* value, uint32_t length) {
  elemdb_request request = {1, FICON_ELEMDB_TABLE_PMAP, sizeof key, &key, length, value};
  return elemdb_lookup_element(&request);
}

// Fetches one table into its buffer, which is made on first use. A missing element is not an error: the buffer stays as it
// was.
template <typename element>
int32_t fetch_table(const table_row& row, element*& table, uint32_t elements) {
  const uint64_t size = uint64_t{sizeof(element)} * elements;
  if (table == nullptr) {
    table = static_cast<element*>(chnsw::allocate_tracked(row.memory_type, size, row.warning_line));
    if (table == nullptr) return FICON_RC_NO_MEMORY;
    std::memset(table, 0, static_cast<size_t>(size));
  }
  look_up_element(row.key, table, static_cast<uint32_t>(size));
  return 0;
}

// Fetches a table with one element per number.
template <typename element>
int32_t fetch_table_of_numbers(const table_row& row, element*& table) {
  if (ficon_get_max_ficon_ports() <= 0) return FICON_RC_PLATFORM;
  return fetch_table(row, table, static_cast<uint32_t>(MAX_FICON_PORTS));
}

} // namespace

// Oddity: the argument is ignored, the whole table is fetched whatever VSAN is passed.
int32_t ficon_get_pmap_portvsan(uint32_t) {
  look_up_element(FICON_PMAP_ELEM_VSAN_ARRAY, ficon_port_to_vsan_array, sizeof ficon_port_to_vsan_array);
  return fetch_table(kPortToVsan, ficon_pmap_port_to_vsan, FICON_PMAP_PORT_ENTRIES);
}

int32_t ficon_get_pmap_portpn(void) {
  return fetch_table(kPortToPn, ficon_pmap_port_to_pn, FICON_PMAP_PORT_ENTRIES);
}

int32_t ficon_get_pmap_papn(void) {
  return fetch_table_of_numbers(kPaToPn, ficon_pmap_pa_to_pn);
}

int32_t ficon_get_pmap_pnif(void) {
  return fetch_table_of_numbers(kPnToLogif, ficon_pmap_pn_to_logif);
}

int32_t ficon_cmi_get_pmap_change_counter(uint32_t* counter) {
  uint32_t value = 0;
  const bool found = look_up_element(FICON_PMAP_ELEM_CHANGE_COUNTER, &value, sizeof value) == 0;
  *counter = found ? value : 0;
  return 0;
}

// The PA-to-PN table is not fetched: no fast form reads it.
int32_t ficon_pmap_prepare_fastpath(uint32_t vsan) {
  int32_t status = ficon_get_pmap_pnif();
  if (status != 0) return status;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;
  status = ficon_get_pmap_portvsan(vsan);
  if (status != 0 && status != FICON_RC_PLATFORM) return status;
  fastpath_got_vsan_port = status == 0;
  return 0;
}

// Oddity: the report does not end its line, so neither does its line on standard output.
int32_t ficon_cmi_get_max_portnumber(void) {
  chnsw::chassis_identity chassis;
  const int32_t status = chnsw::ask_chassis(chassis);
  if (status == chnsw::kNoPlatformInfo) ficon_log_error("get_platform_info failed, errno = %d", errno);
  if (status == chnsw::kNoChassisType) chnsw::report_no_chassis_type();
  return status != 0 ? status : chnsw::chassis_row_of(chassis).highest_pn;
}

int32_t ficon_get_max_ficon_ports(void) {
  if (MAX_FICON_PORTS <= 0) MAX_FICON_PORTS = ficon_cmi_get_max_portnumber() + 1;
  return MAX_FICON_PORTS;
}

int32_t chnsw::fetch_numbers_or_report(const char* operation, int line) {
  const int32_t status = ficon_get_pmap_pnif();
  if (status != 0) ficon_log_error("%s(%d):failed to get pmap_pnif %d\n", operation, line, status);
  return status;
}

int32_t chnsw::fetch_ports_or_report(const char* operation, int line) {
  const int32_t status = ficon_get_pmap_portpn();
  if (status != 0) ficon_log_error("%s(%d):failed to get pmap_portpn %d\n", operation, line, status);
  return status;
}
