// The example map as a virtual switch.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <vswitch/vswitch.h>

#include "example_map.h"
#include "virtual_switch_benchmarks.h"

namespace {

vswitch::chassis_description describe() {
  vswitch::chassis_description chassis;
  chassis.name = "example";
  chassis.platform_record[2] = bench::kSlots;
  chassis.type = bench::kChassisType;
  for (unsigned slot = 1; slot <= bench::kSlots; ++slot) {
    if (std::count(bench::kLineCardSlots.begin(), bench::kLineCardSlots.end(), slot) == 0) {
      chassis.supervisors.push_back(slot);
    } else {
      chassis.line_cards.push_back({slot, bench::kPortsPerLineCard, ""});
    }
  }
  chassis.vsans = {{bench::kVsan, ""}, {bench::kOtherVsan, ""}};
  const bench::example_map map;
  chassis.map.port_to_pn = map.port_to_pn;
  chassis.map.port_to_vsan = map.port_to_vsan;
  chassis.map.pa_to_pn = map.pa_to_pn;
  chassis.map.pn_to_if = map.pn_to_if;
  return chassis;
}

std::string make_folder() {
  std::string name = (std::filesystem::temp_directory_path() / "chnsw-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
  return name;
}

} // namespace

bench::example_switch::example_switch() : folder_(make_folder()) {
  vswitch::switch_store::create(folder_, describe());
}

bench::example_switch::~example_switch() {
  std::error_code left_behind;
  std::filesystem::remove_all(folder_, left_behind);
}

void bench::example_switch::use_in_memory() {
  vswitch::use_switch(vswitch::switch_store::in_memory(describe()));
}

void bench::example_switch::use_in_folder() const {
  vswitch::use_switch(vswitch::switch_store::open(folder_));
}
