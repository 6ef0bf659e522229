// Switches that the tests ask: the examples, and a small one that is changed in one place.
#ifndef TESTS_INSPECT_ASKED_SWITCH_H
#define TESTS_INSPECT_ASKED_SWITCH_H

#include <functional>
#include <string>

#include "inspect/error.h"
#include "inspect/session/opened_switch.h"

namespace inspect_test {

// "director-10": examples/director-10.toml.
inspect::opened_switch example(const std::string& name);

// Six slots, supervisors in 3 and 4: eight ports in slots 1 (line card 0) and 2 (1), four in slot 5 (2). fc1/1-4 are PN 0-3, PA
// 00-03, in VSAN 10; fc2/1-4 are PN 48-51 and the same addresses in VSAN 20; fc5/1 is a member of port-channel1, which is PN
// 240, PA F0 at index 1024.
vswitch::chassis_description campus();

// As it was read from nowhere.
inspect::opened_switch opened(const vswitch::chassis_description& chassis);

// The failure and the message of the error that ask ends with; no error is a failure of the test.
struct caught_error {
  inspect::failure failed;
  std::string message;
};
caught_error error_of(const std::function<void()>& ask);

} // namespace inspect_test

#endif
