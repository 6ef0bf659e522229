// A switch's folder as it changes.
#ifndef INSPECT_SWITCH_WATCH_H
#define INSPECT_SWITCH_WATCH_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "inspect/chassis/switch_differences.h"
#include "vswitch/chassis_description.h"
#include "vswitch/switch_store.h"

namespace inspect {

class switch_watch {
 public:
  // Throws error when the folder holds no switch.
  explicit switch_watch(const std::string& folder);

  // The switch as it was last seen.
  const vswitch::chassis_description& seen() const { return seen_; }

  // Looks again; none while the change counter has not moved. Throws error when the switch is gone, or is another one.
  std::optional<std::vector<difference>> look();

 private:
  void require_in_place();

  std::string folder_;
  std::unique_ptr<vswitch::switch_store> store_;
  vswitch::chassis_description seen_;
};

} // namespace inspect

#endif
