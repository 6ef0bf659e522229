#include "vswitch/port_place.h"

namespace vswitch {

std::optional<uint32_t> port_place(uint32_t line_card, unsigned port) {
  if (port < 1 || port > FICON_PMAP_PORTS_PER_LC) return std::nullopt;
  return line_card * FICON_PMAP_PORTS_PER_LC + port - 1;
}

std::optional<uint32_t> port_place(const fc_port& port, line_card_numbering numbering) {
  uint8_t line_card = 0;
  if (port.port > FICON_PMAP_PORTS_PER_LC) return std::nullopt;
  if (numbering(static_cast<uint8_t>(port.slot - 1), &line_card) != 0) return std::nullopt;
  return port_place(uint32_t{line_card}, port.port);
}

} // namespace vswitch
