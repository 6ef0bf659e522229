// How the physical ports of a chassis fill the port map.
#include "vswitch/chassis_description.h"

#include <algorithm>
#include <cstring>

#include "vswitch/interface_index.h"
#include "vswitch/port_place.h"

namespace vswitch {

port_map::port_map() {
  pa_to_pn.fill(FICON_PMAP_NO_NUMBER);
  port_to_pn.fill({FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}});
}

bool operator==(const port_map& a, const port_map& b) {
  static_assert(sizeof(ficon_pmap_port_entry) == 20); // no padding: entries compare as bytes
  return std::memcmp(a.port_to_pn.data(), b.port_to_pn.data(), sizeof a.port_to_pn) == 0 &&
         a.port_to_vsan == b.port_to_vsan && a.pa_to_pn == b.pa_to_pn && a.pn_to_if == b.pn_to_if &&
         a.vsan_array == b.vsan_array;
}

std::array<uint16_t, kNumbers> addresses_of_ports(const port_map& map) {
  std::array<uint16_t, kNumbers> addresses;
  addresses.fill(FICON_PMAP_NO_NUMBER);
  for (auto entry = map.port_to_pn.rbegin(); entry != map.port_to_pn.rend(); ++entry)
    if (entry->pa < addresses.size()) addresses[entry->pa] = entry->pn;
  return addresses;
}

namespace {

bool holds_supervisor(const chassis_description& chassis, unsigned slot) {
  return std::find(chassis.supervisors.begin(), chassis.supervisors.end(), slot) != chassis.supervisors.end();
}

// The slot of a line card, 0 when the chassis has fewer of them.
unsigned slot_of_line_card(const chassis_description& chassis, unsigned number) {
  for (unsigned slot = 1; slot <= chassis.slots(); ++slot)
    if (!holds_supervisor(chassis, slot) && number-- == 0) return slot;
  return 0;
}

} // namespace

std::optional<unsigned> line_card_number(const chassis_description& chassis, unsigned slot) {
  if (slot < 1 || slot > chassis.slots() || holds_supervisor(chassis, slot)) return std::nullopt;
  auto before = std::count_if(chassis.supervisors.begin(), chassis.supervisors.end(),
                              [slot](unsigned supervisor) { return supervisor < slot; });
  return slot - 1 - static_cast<unsigned>(before);
}

std::optional<unsigned> port_map_index(const chassis_description& chassis, unsigned slot, unsigned port) {
  const auto number = line_card_number(chassis, slot);
  const auto place = number ? port_place(*number, port) : std::nullopt;
  return place && has_entry(*place) ? place : std::nullopt;
}

const line_card* card_in_slot(const chassis_description& chassis, unsigned slot) {
  auto card = std::find_if(chassis.line_cards.begin(), chassis.line_cards.end(),
                           [slot](const line_card& candidate) { return candidate.slot == slot; });
  return card == chassis.line_cards.end() ? nullptr : &*card;
}

bool has_port(const chassis_description& chassis, unsigned slot, unsigned port) {
  const line_card* card = card_in_slot(chassis, slot);
  return card != nullptr && port >= 1 && port <= card->ports;
}

bool has_interface(const chassis_description& chassis, uint32_t if_index) {
  if (const auto port = fc_port_of(if_index)) return has_port(chassis, port->slot, port->port);
  return std::any_of(chassis.interfaces.begin(), chassis.interfaces.end(),
                     [if_index](const logical_interface& known) { return known.if_index == if_index; });
}

uint32_t channel_of(const chassis_description& chassis, uint32_t if_index) noexcept {
  for (const auto& channel : chassis.interfaces)
    if (std::binary_search(channel.members.begin(), channel.members.end(), if_index))
      return logical_number(channel.if_index);
  return 0;
}

std::optional<uint32_t> port_at_index(const chassis_description& chassis, unsigned index) {
  if (!has_entry(index)) return std::nullopt;
  unsigned slot = slot_of_line_card(chassis, index / FICON_PMAP_PORTS_PER_LC);
  unsigned port = index % FICON_PMAP_PORTS_PER_LC + 1;
  if (!has_port(chassis, slot, port)) return std::nullopt;
  return fc_port_index(slot, port);
}

} // namespace vswitch
