// VSANs, and the ports that are in one now.
#ifndef INSPECT_VSAN_PORTS_H
#define INSPECT_VSAN_PORTS_H

#include <cstdint>
#include <optional>
#include <vector>

#include "vswitch/chassis_description.h"
#include "vswitch/interface_index.h"

namespace inspect {

// Every VSAN that the switch has, or that its map names.
std::vector<uint32_t> vsans_of(const vswitch::chassis_description& chassis);

struct vsan_port {
  uint32_t vsan;
  uint16_t pn;
  uint16_t pa;
  std::optional<vswitch::fc_port> port;
  std::optional<uint32_t> index; // of the port map
  uint32_t if_index;
  bool bound; // to the VSAN
};

// The library's answer, for the switch whose session is open. Throws a platform error when it cannot be had.
std::vector<vsan_port> ports_in_vsan(uint32_t vsan);

} // namespace inspect

#endif
