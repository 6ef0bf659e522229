#include "model/switch_view.h"

#include <algorithm>
#include <utility>

#include "vswitch/interface_index.h"

namespace vswitch {

switch_view::switch_view(chassis_description chassis) : chassis_(std::move(chassis)) {
  unsigned next_index = 0;
  for (const auto& card : chassis_.line_cards) { // by ascending slot; 255 x 254 ports still fit 16 bits
    if (card.slot >= ports_by_slot_.size()) continue;
    ports_by_slot_[card.slot] = {static_cast<uint16_t>(next_index), static_cast<uint16_t>(card.ports)};
    next_index += card.ports;
  }
  for (const auto& interface : chassis_.interfaces) logical_.push_back(interface.if_index);
  std::sort(logical_.begin(), logical_.end());
}

std::optional<uint16_t> switch_view::port_index(uint32_t if_index) const noexcept {
  auto port = fc_port_of(if_index);
  if (!port || port->slot >= ports_by_slot_.size() || port->port > ports_by_slot_[port->slot].count) return std::nullopt;
  return static_cast<uint16_t>(ports_by_slot_[port->slot].first_index + port->port - 1);
}

bool switch_view::has_logical_interface(uint32_t if_index) const noexcept {
  return std::binary_search(logical_.begin(), logical_.end(), if_index);
}

} // namespace vswitch
