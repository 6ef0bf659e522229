// Looking a port-channel's member up.
#include "inspect/chassis/port_channel.h"

#include <algorithm>

#include "vswitch/interface_index.h"

namespace inspect {

std::optional<uint32_t> port_channel_of(const vswitch::chassis_description& chassis, uint32_t if_index) {
  for (const auto& interface : chassis.interfaces)
    if (std::find(interface.members.begin(), interface.members.end(), if_index) != interface.members.end())
      return vswitch::logical_number(interface.if_index);
  return std::nullopt;
}

} // namespace inspect
