// A chassis as the services look it up: answers without an allocation.
#ifndef VSWITCH_SWITCH_VIEW_H
#define VSWITCH_SWITCH_VIEW_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "vswitch/chassis_description.h"

namespace vswitch {

class switch_view {
 public:
  explicit switch_view(chassis_description chassis);

  const chassis_description& chassis() const noexcept { return chassis_; }

  // Ports that are there are numbered without a gap, slot after slot.
  std::optional<uint16_t> port_index(uint32_t if_index) const noexcept;

  bool has_logical_interface(uint32_t if_index) const noexcept;

 private:
  struct slot_ports {
    uint16_t first_index = 0;
    uint16_t count = 0;
  };

  chassis_description chassis_;
  std::array<slot_ports, 256> ports_by_slot_{}; // slots from 1
  std::vector<uint32_t> logical_;               // ascending
};

} // namespace vswitch

#endif
