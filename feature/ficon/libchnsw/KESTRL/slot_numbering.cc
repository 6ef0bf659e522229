// Slots and line cards turned into each other, and a slot's port into its port map entry.
#include <libchnsw.h>
#include <platform/hwinv.h>

#include "chassis.h"
#include "port_map_tables.h"

namespace {

// The chassis by the cached platform record; the type is asked anew. Returns 0 or FICON_RC_PLATFORM.
int32_t recall_chassis(chnsw::chassis_identity& chassis) {
  ficon_platform_info info;
  if (ficon_get_platform_info(&info) != 0) return FICON_RC_PLATFORM;
  chassis.num_slots = info.num_slots;
  if (hwinv_get_chassis_type(&chassis.type) != 0) {
    chnsw::report_no_chassis_type();
    return FICON_RC_PLATFORM;
  }
  return 0;
}

int line_cards_of(int num_slots) {
  return num_slots > 2 ? num_slots - 2 : num_slots;
}

} // namespace

int32_t ficonm_platform_slot_to_lc_b0(uint8_t slot, uint8_t* lc) {
  chnsw::chassis_identity chassis;
  const int32_t status = recall_chassis(chassis);
  if (status != 0) return status;
  if (chassis.num_slots <= slot) return FICON_RC_INVALID_ARG;

  const int supervisor = chnsw::chassis_row_of(chassis).supervisor;
  if (supervisor == chnsw::kNoSupervisor || slot < supervisor) {
    *lc = slot;
    return 0;
  }
  if (slot <= supervisor + 1) return FICON_RC_INVALID_ARG;
  *lc = static_cast<uint8_t>(slot - 2);
  return 0;
}

// Oddity: not the exact inverse at the edges. An unknown chassis counts two slots for supervisors here, but none above.
int32_t ficonm_platform_lc_to_slot_b0(uint8_t lc, uint8_t* slot) {
  chnsw::chassis_identity chassis;
  const int32_t status = recall_chassis(chassis);
  if (status != 0) return status;
  if (line_cards_of(chassis.num_slots) <= lc) return FICON_RC_INVALID_ARG;

  const int supervisor = chnsw::chassis_row_of(chassis).supervisor;
  const bool behind_supervisors = supervisor != chnsw::kNoSupervisor && lc >= supervisor;
  *slot = static_cast<uint8_t>(behind_supervisors ? lc + 2 : lc);
  return 0;
}

int32_t ficonm_platform_slot_to_pnpa_index_withpmap(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry,
                                                    uint32_t* index, const ficon_pmap_port_entry* port_to_pn) {
  uint8_t lc = 0;
  const int32_t status = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot), &lc);
  if (status != 0) return status;
  *index = lc * uint32_t{FICON_PMAP_PORTS_PER_LC} + port;
  const ficon_pmap_port_entry* table = port_to_pn != nullptr ? port_to_pn : ficon_pmap_port_to_pn;
  *entry = table[*index];
  return 0;
}

int32_t ficonm_platform_slot_to_pnpa_index(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry, uint32_t* index) {
  return ficonm_platform_slot_to_pnpa_index_withpmap(slot, port, entry, index, nullptr);
}

int32_t ficonm_platform_slot_to_pnpa(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry) {
  uint32_t index = 0;
  return ficonm_platform_slot_to_pnpa_index(slot, port, entry, &index);
}

uint16_t ficonm_platform_slot_to_pn(uint32_t slot, uint32_t port) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  if (ficonm_platform_slot_to_pnpa(slot, port, &entry) != 0) return FICON_PMAP_NO_NUMBER;
  return entry.pn;
}
