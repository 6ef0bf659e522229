// Switches that the tests ask: the examples, and a small one to be changed in one place.
#ifndef TESTS_INSPECT_ASKED_SWITCH_H
#define TESTS_INSPECT_ASKED_SWITCH_H

#include <functional>
#include <string>

#include "inspect/error.h"
#include "inspect/session/opened_switch.h"

namespace inspect_test {

// "director-10": examples/director-10.toml.
inspect::opened_switch example(const std::string& name);

// campus_switch::kSmall.
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
