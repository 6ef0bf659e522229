// Which port-channel an interface is a member of, as the chassis is described.
#ifndef INSPECT_PORT_CHANNEL_H
#define INSPECT_PORT_CHANNEL_H

#include <cstdint>
#include <optional>

#include "vswitch/chassis_description.h"

namespace inspect {

// Its number; none for an interface that is a member of none.
std::optional<uint32_t> port_channel_of(const vswitch::chassis_description& chassis, uint32_t if_index);

} // namespace inspect

#endif
