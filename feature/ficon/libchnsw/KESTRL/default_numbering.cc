// The port numbers that a chassis has until somebody configures others.
#include <cstdio>

#include <libchnsw.h>

#include "chassis.h"
#include "port_map_tables.h"
#include "report.h"

namespace {

using chnsw::chassis_identity;
using chnsw::chassis_row;
using chnsw::numbering;

constexpr int32_t kTooFewEntries = -3;

// The line that the trace of the chassis names.
constexpr int kChassisLine = 1602;

// What ficon_get_default_pn fills.
constexpr int kCardList = FICON_PMAP_PORTS_PER_LC;
constexpr int kLogicalList = 256;

// Entries that hold the numbers without a physical port.
constexpr int kFirstLogicalEntry = FICON_PMAP_PHYS_ENTRIES;

void lay_out(const numbering& layout, ficon_pmap_port_entry* entries) {
  for (int group = 0; group < layout.groups; ++group) {
    for (int port = 0; port < layout.ports; ++port) {
      entries[group * layout.stride + port].pn = static_cast<uint16_t>(group * layout.ports + port);
    }
  }
}

void lay_out_logical(uint16_t first_pn, ficon_pmap_port_entry* entries) {
  for (int k = 0; k < FICON_PMAP_LOGICAL_PNS; ++k) {
    entries[kFirstLogicalEntry + k].pn = static_cast<uint16_t>(first_pn + k);
  }
}

// Port addresses by port number. A laid out number is at most FICON_PMAP_NO_NUMBER, so one pass over the addresses finds
// the lowest of each; looking every entry up among 256 addresses takes a hundred times as long (bench/port_map).
class lowest_address {
 public:
  lowest_address(int32_t pa_count, const uint16_t* pa_to_pn) {
    for (int32_t& pa : pa_of_) pa = FICON_PMAP_NO_NUMBER;
    for (int32_t pa = pa_count - 1; pa >= 0; --pa) {
      if (pa_to_pn[pa] <= FICON_PMAP_NO_NUMBER) pa_of_[pa_to_pn[pa]] = pa;
    }
  }
  // An entry without a number takes part too: it gets the first address whose number is FICON_PMAP_NO_NUMBER.
  uint16_t of(uint16_t pn) const { return static_cast<uint16_t>(pa_of_[pn]); }

 private:
  int32_t pa_of_[FICON_PMAP_NO_NUMBER + 1];
};

void assign_addresses(int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count, const uint16_t* pa_to_pn) {
  const lowest_address lowest(pa_count, pa_to_pn);
  for (int32_t i = 0; i < count; ++i) entries[i].pa = lowest.of(entries[i].pn);
}

bool holds_group(const numbering& layout, int group, const ficon_pmap_port_entry* entries) {
  const ficon_pmap_port_entry* first = entries + group * layout.stride;
  for (int port = 0; port < layout.stride; ++port) {
    const int expected = port < layout.ports ? group * layout.ports + port : FICON_PMAP_NO_NUMBER;
    if (first[port].pn != expected) return false;
  }
  return true;
}

bool holds_logical(uint16_t first_pn, const ficon_pmap_port_entry* entries) {
  for (int k = 0; k < FICON_PMAP_LOGICAL_PNS; ++k) {
    if (entries[kFirstLogicalEntry + k].pn != first_pn + k) return false;
  }
  return true;
}

void list(uint16_t* pns, int first_pn, int numbers) {
  for (int k = 0; k < numbers; ++k) pns[k] = static_cast<uint16_t>(first_pn + k);
}

} // namespace

int32_t ficon_port_to_pn_init(int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count, const uint16_t* pa_to_pn) {
  for (int32_t i = 0; i < count; ++i) entries[i] = chnsw::kNoEntry;
  chassis_identity chassis;
  const int32_t status = chnsw::ask_chassis(chassis);
  if (status != 0) return status;
  if (count < FICON_PMAP_PORT_ENTRIES) return kTooFewEntries;
  ficon_log_debug("%s(%d): Num Slots: %d Chassis Type: %d\n", "ficon_port_to_pn_init", kChassisLine, chassis.num_slots,
                  chassis.type);

  const chassis_row& row = chnsw::chassis_row_of(chassis);
  if (row.laid_out.groups == 0) return 0;
  lay_out(row.laid_out, entries);
  if (row.announced) {
    std::printf("chassis_type: %d\n", chassis.type);
    std::printf("num_slots:    %d\n", chassis.num_slots);
  }
  lay_out_logical(row.laid_out.logical_pn, entries);
  if (pa_count > 0) assign_addresses(count, entries, pa_count, pa_to_pn);
  return row.laid_out.logical_pn;
}

int32_t ficon_port_to_pn_is_default(const ficon_pmap_port_entry* entries) {
  chassis_identity chassis;
  const int32_t status = chnsw::ask_chassis(chassis);
  if (status != 0) return status;

  const numbering& expected = chnsw::chassis_row_of(chassis).expected;
  if (expected.groups == 0) return 0;
  for (int group = 0; group < expected.groups; ++group) {
    if (!holds_group(expected, group, entries)) return 0;
  }
  return holds_logical(expected.logical_pn, entries);
}

uint32_t ficon_get_default_pn(uint32_t slot, uint32_t logical, uint16_t* pns) {
  chassis_identity chassis;
  if (chnsw::ask_chassis(chassis) != 0) return FICON_RC_BASE;
  uint8_t card = 0;
  if (logical == 0) {
    const int32_t status = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card);
    if (status != 0) return static_cast<uint32_t>(status);
  }
  const int length = logical != 0 ? kLogicalList : kCardList;
  for (int k = 0; k < length; ++k) pns[k] = FICON_PMAP_NO_NUMBER;

  const chassis_row& row = chnsw::chassis_row_of(chassis);
  if (row.cards == 0) return 0;
  if (logical != 0) {
    list(pns, row.laid_out.logical_pn, FICON_PMAP_LOGICAL_PNS);
  } else if (card < row.cards) {
    list(pns, card * row.laid_out.ports, row.laid_out.ports);
  }
  return 0;
}
