// Where two switches, or two states of one switch, differ.
#ifndef INSPECT_SWITCH_DIFFERENCES_H
#define INSPECT_SWITCH_DIFFERENCES_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/chassis/difference_value.h"
#include "vswitch/chassis_description.h"

namespace inspect {

struct difference {
  std::string where;             // "index 254 (fc2/1)", "slot 3", "PN 240"
  std::optional<uint32_t> index; // of the port map
  std::string field;
  difference_value before;
  difference_value after;
};

// Everything but the change counter, which moves with every change and says nothing itself.
std::vector<difference> differences(const vswitch::chassis_description& before, const vswitch::chassis_description& after);

// The same for a VSAN's time reference alone.
std::vector<difference> differences(uint32_t vsan, const std::optional<vswitch::time_reference>& before,
                                    const std::optional<vswitch::time_reference>& after);

} // namespace inspect

#endif
