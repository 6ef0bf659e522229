// Interface-index services.
#include "vswitch/interface_index.h"

#include <arpa/inet.h>
#include <platform/if_index.h>

#include "services/process_state.h"

namespace vswitch {

namespace {

// What a physical port's index says about it; a status for any other index.
int physical_port(uint32_t if_index, fc_port& port) noexcept {
  if (auto found = fc_port_of(if_index)) {
    port = *found;
    return 0;
  }
  const switch_view* view = current_view();
  if (view == nullptr) return kIfIndexNoSwitch;
  return view->has_logical_interface(if_index) ? kIfIndexNotPhysical : kIfIndexUnknown;
}

} // namespace

} // namespace vswitch

using namespace vswitch;

// A port's index has its type whether the port is there or not; a logical interface has one once it was made.
VSWITCH_SERVICE int if_index_get_type(uint32_t if_index, uint8_t* type) {
  if (type == nullptr) return kIfIndexBadRequest;
  fc_port port;
  const int status = physical_port(if_index, port);
  if (status != 0 && status != kIfIndexNotPhysical) return status;
  *type = interface_type(if_index);
  return 0;
}

VSWITCH_SERVICE int if_index_get_slot(uint32_t if_index, uint8_t* slot) {
  if (slot == nullptr) return kIfIndexBadRequest;
  fc_port port;
  if (int status = physical_port(if_index, port)) return status;
  *slot = static_cast<uint8_t>(port.slot - 1);
  return 0;
}

VSWITCH_SERVICE int if_index_get_port(uint32_t if_index, uint8_t* port_number) {
  if (port_number == nullptr) return kIfIndexBadRequest;
  fc_port port;
  if (int status = physical_port(if_index, port)) return status;
  *port_number = static_cast<uint8_t>(port.port - 1);
  return 0;
}

// Any port number is accepted: whether the port is there is for the port indexes to say.
VSWITCH_SERVICE int if_index_phy_fc_port_init(uint32_t* if_index, uint8_t slot, uint8_t port, int zero) {
  if (if_index == nullptr || zero != 0) return kIfIndexBadRequest;
  const switch_view* view = current_view();
  if (view == nullptr) return kIfIndexNoSwitch;
  if (slot >= view->chassis().slots()) return kIfIndexNoSuchSlot;
  *if_index = fc_port_index(slot + 1u, port + 1u);
  return 0;
}

VSWITCH_SERVICE uint32_t hton_if_index(uint32_t if_index) {
  return htonl(if_index);
}

VSWITCH_SERVICE uint32_t ntoh_if_index(uint32_t if_index) {
  return ntohl(if_index);
}
