// A switch's folder with a manager, both as processes of the built tool.
#ifndef TESTS_CHNSW_MANAGED_SWITCH_TEST_H
#define TESTS_CHNSW_MANAGED_SWITCH_TEST_H

#include <string>
#include <vector>

#include "tool_test.h"

namespace chnsw_test {

// The folder "d" holds kCampus with a device behind fc1/1, fc2/1 (of a German host) and port-channel1.
class managed_switch_test : public tool_test {
 protected:
  managed_switch_test();
  ~managed_switch_test() override; // ends what is still running

  // Starts the manager of "d", and waits until it serves.
  void start_manager();
  pid_t manager() const { return manager_; }
  int end_manager(int signal); // its exit status

  // A command on "d".
  tool_result in_folder(std::vector<std::string> arguments) const;
  // The same, started; out_NAME and err_NAME have its output.
  pid_t start_in_folder(const std::string& name, std::vector<std::string> arguments);
  int end_of(pid_t tool); // waits for it

  // Waits until a file of the test's folder holds a text, or the test has failed.
  void wait_for_text(const std::string& name, const std::string& text) const;

 private:
  std::vector<pid_t> running_;
  pid_t manager_ = -1;
};

} // namespace chnsw_test

#endif
