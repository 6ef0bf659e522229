// What the manager does to the port map: bindings to VSANs, and the swap of two interfaces.
#ifndef VSWITCH_MANAGER_MAP_CHANGES_H
#define VSWITCH_MANAGER_MAP_CHANGES_H

#include <libchnsw.h>

#include <cstdint>
#include <span>
#include <vector>

#include "map_places.h"
#include "vswitch/chassis_description.h"

namespace vswitch {

struct install_request {
  bool install = true; // or take out
  std::vector<uint32_t> if_indexes;
  std::vector<uint16_t> vsans;
};

// Binds the entry of each interface to each VSAN, or takes the VSANs out, whose slots those behind them fill: all of it or
// none. Returns 0, FICON_RC_NO_IF or FICON_RC_PLATFORM, as the answer has it.
uint32_t install_vsans(const chassis_description& chassis, port_map& map, const install_request& request);

// An interface and the index of its entry.
struct map_place {
  uint32_t if_index = 0;
  uint32_t index = 0;
};

// The place of an interface that can be swapped. Returns 0, FICON_RC_NO_IF or FICON_RC_LAG_MEMBER, as swap_result has it.
uint32_t find_swappable(const chassis_description& chassis, const map_tables& tables, uint32_t if_index, map_place& place);

// Each takes over the other's number, address and VSANs. Numbers that are bound to an interface stay bound to it; the VSANs
// that the ports are in are the ports' own. The address table stays: each address keeps its number.
void swap_interfaces(port_map& map, const map_place& a, const map_place& b);

} // namespace vswitch

#endif
