// What the manager is asked, and its answers.
#ifndef INSPECT_MANAGER_QUESTIONS_H
#define INSPECT_MANAGER_QUESTIONS_H

#include <libchnsw.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/chassis/node_identity.h"
#include "inspect/messages/manager_client.h"

namespace inspect {

// Each throws error when there is no answer, or none that can be read. A status is the manager's.

// An interface's entry in the port map.
struct port_map_answer {
  uint32_t if_index;
  uint32_t status;
  uint16_t pn; // FICON_PMAP_NO_NUMBER for none, and unless the status is 0
  uint16_t pa; // the same

  bool is_whole() const { return pn != FICON_PMAP_NO_NUMBER && pa != FICON_PMAP_NO_NUMBER; }
};
port_map_answer ask_port_map(manager_client& manager, uint32_t if_index);

struct enabled_vsan {
  uint16_t vsan;
  std::string name; // may be empty
};
std::vector<enabled_vsan> ask_enabled_vsans(manager_client& manager);

// An interface's state in a VSAN.
struct vsan_state_answer {
  uint32_t if_index;
  uint32_t vsan;
  uint32_t status;
  std::optional<uint32_t> state; // with status 0

  bool is_member() const { return (state.value_or(0) & vswitch::kIfVsanMember) != 0; }
  bool is_bound() const { return (state.value_or(0) & vswitch::kIfVsanBound) != 0; }
};
vsan_state_answer ask_vsan_state(manager_client& manager, uint32_t if_index, uint32_t vsan);

// The device behind an interface.
struct node_answer {
  uint32_t if_index;
  uint32_t status;
  std::optional<node_identity> node; // with status 0

  bool is_readable() const { return node && node->is_readable(); }
};
node_answer ask_node(manager_client& manager, uint32_t if_index);

} // namespace inspect

#endif
