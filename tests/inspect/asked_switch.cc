#include "asked_switch.h"

#include <gtest/gtest.h>

#include "campus_switch.h"
#include "vswitch/chassis_file.h"

namespace inspect_test {

inspect::opened_switch example(const std::string& name) {
  return inspect::open_switch(CHNSW_EXAMPLES "/" + name + ".toml");
}

vswitch::chassis_description campus() {
  return vswitch::parse_chassis_text(campus_switch::kSmall, "campus.toml");
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
