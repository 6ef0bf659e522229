// Changes of the switch in a folder. What is written, and how, is the store's; here is what differs afterwards.
#ifndef INSPECT_SWITCH_CHANGES_H
#define INSPECT_SWITCH_CHANGES_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "inspect/chassis/port_map_edit.h"
#include "inspect/chassis/switch_differences.h"
#include "vswitch/chassis_description.h"

namespace inspect {

// Each throws error when the folder cannot be opened or written.

// Makes a folder into the switch, and reads back what is in it then.
vswitch::chassis_description create_folder(const std::string& folder, const vswitch::chassis_description& chassis);

struct map_change {
  uint32_t change_counter = 0;
  bool changed = false;
  std::vector<difference> differences;
};

// Applies the edit that make_edit finds for the switch. One that changes nothing leaves the change counter alone.
map_change change_map(const std::string& folder,
                      const std::function<port_map_edit(const vswitch::chassis_description&)>& make_edit);

std::vector<difference> change_time_reference(const std::string& folder, uint32_t vsan,
                                              const std::optional<vswitch::time_reference>& reference);

} // namespace inspect

#endif
