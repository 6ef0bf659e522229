// Asking for the facts of a chassis.
#include "inspect/chassis/chassis_facts.h"

#include <algorithm>

#include "libchnsw.h"

namespace inspect {

namespace {

std::optional<uint32_t> line_card_of(unsigned slot) {
  uint8_t card = 0;
  if (ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card) != 0) return std::nullopt;
  return card;
}

unsigned ports_in(const library_session& session, uint16_t vsan) {
  const uint16_t* table = session.port_to_vsan();
  return static_cast<unsigned>(std::count(table, table + FICON_PMAP_PHYS_ENTRIES, vsan));
}

} // namespace

chassis_facts facts_of(const library_session& session) {
  const auto& chassis = session.chassis();
  chassis_facts facts;
  facts.highest_port_number = ficon_cmi_get_max_portnumber();
  ficon_cmi_get_pmap_change_counter(&facts.change_counter);
  facts.max_ficon_ports = session.ports();
  for (const auto& card : chassis.line_cards)
    facts.cards.push_back({card.slot, line_card_of(card.slot), card.ports, card.name});
  for (const auto& [number, name] : chassis.vsans) facts.vsans.push_back({number, name, ports_in(session, number)});
  return facts;
}

} // namespace inspect
