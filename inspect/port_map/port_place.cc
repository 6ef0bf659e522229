// Ports and their indexes, as the library numbers line cards.
#include "inspect/port_map/port_place.h"

#include "libchnsw.h"
#include "vswitch/port_place.h"

namespace inspect {

std::optional<uint32_t> port_map_place(unsigned slot, unsigned port) {
  return vswitch::port_place({slot, port}, ficonm_platform_slot_to_lc_b0);
}

std::optional<uint32_t> port_map_place(uint32_t if_index) {
  auto port = vswitch::fc_port_of(if_index);
  return port ? port_map_place(port->slot, port->port) : std::nullopt;
}

bool is_beyond_port_map(uint32_t if_index) {
  auto place = port_map_place(if_index);
  return place && !vswitch::may_be_asked_for(*place);
}

std::optional<vswitch::fc_port> port_at_place(uint32_t index) {
  uint8_t slot = 0;
  if (!vswitch::has_entry(index)) return std::nullopt;
  if (ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC), &slot) != 0) return std::nullopt;
  return vswitch::fc_port{slot + 1U, index % FICON_PMAP_PORTS_PER_LC + 1};
}

} // namespace inspect
