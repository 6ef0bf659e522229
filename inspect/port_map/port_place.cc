// Ports and their indexes, as the library numbers line cards.
#include "inspect/port_map/port_place.h"

#include "libchnsw.h"

namespace inspect {

std::optional<uint32_t> port_map_place(unsigned slot, unsigned port) {
  if (port > FICON_PMAP_PORTS_PER_LC) return std::nullopt; // its index would be the next line card's
  uint8_t card = 0;
  if (ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card) != 0) return std::nullopt;
  return uint32_t{card} * FICON_PMAP_PORTS_PER_LC + port - 1;
}

std::optional<uint32_t> port_map_place(uint32_t if_index) {
  auto port = vswitch::fc_port_of(if_index);
  return port ? port_map_place(port->slot, port->port) : std::nullopt;
}

bool is_beyond_port_map(uint32_t if_index) {
  auto place = port_map_place(if_index);
  return place && *place >= FICON_PMAP_PORT_ENTRIES;
}

std::optional<vswitch::fc_port> port_at_place(uint32_t index) {
  uint8_t slot = 0;
  if (index >= FICON_PMAP_PHYS_ENTRIES) return std::nullopt;
  if (ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC), &slot) != 0) return std::nullopt;
  return vswitch::fc_port{slot + 1U, index % FICON_PMAP_PORTS_PER_LC + 1};
}

} // namespace inspect
