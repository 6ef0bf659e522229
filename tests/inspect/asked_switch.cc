#include "asked_switch.h"

#include <gtest/gtest.h>

#include "vswitch/chassis_file.h"

namespace inspect_test {

namespace {

constexpr char kCampus[] = R"([chassis]
name = "campus"
slots = 6
type = 34
supervisors = [3, 4]
change_counter = 7

[[line_card]]
slot = 1
ports = 8
name = "channels"

[[line_card]]
slot = 2
ports = 8

[[line_card]]
slot = 5
ports = 4

[[vsan]]
number = 10
name = "production"

[[vsan]]
number = 20

[[port_channel]]
number = 1
members = ["fc5/1"]

[[port]]
interface = "fc1/1-4"
pn = 0
pa = 0x00
vsans = [10]

[[port]]
interface = "fc2/1-4"
pn = 48
pa = 0x00
vsans = [20]

[[port]]
index = 1024
pn = 240
pa = 0xF0
vsans = [10]

[[binding]]
pn = 240
interface = "port-channel1"
)";

} // namespace

inspect::opened_switch example(const std::string& name) {
  return inspect::open_switch(CHNSW_EXAMPLES "/" + name + ".toml");
}

vswitch::chassis_description campus() {
  return vswitch::parse_chassis_text(kCampus, "campus.toml");
}

inspect::opened_switch opened(const vswitch::chassis_description& chassis) {
  return {"campus.toml", false, chassis};
}

caught_error error_of(const std::function<void()>& ask) {
  try {
    ask();
  } catch (const inspect::error& error) {
    return {error.failed(), error.what()};
  }
  ADD_FAILURE() << "no error";
  return {};
}

} // namespace inspect_test
