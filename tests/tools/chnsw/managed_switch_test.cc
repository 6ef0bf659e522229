#include "managed_switch_test.h"

#include <signal.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace chnsw_test {

namespace {

constexpr char kNodes[] = R"(
[[node]]
interface = "fc1/1"
type = "8401"
model = "C02"
manufacturer = "ACM"
plant = "07"
sequence = "1A2B3"
tag = 0x0040

[[node]]
interface = "fc2/1"
codepage = 273
flags = 0x20000000
type = "5570"
model = "900"
manufacturer = "AC"
plant = "12"
sequence = "D00417"

[[node]]
interface = "port-channel1"
)";

constexpr std::chrono::seconds kPatience{120};

} // namespace

managed_switch_test::managed_switch_test() {
  write("nodes.toml", std::string(kCampus) + kNodes);
  EXPECT_EQ(run({"create", "d", "nodes.toml"}).status, 0);
}

managed_switch_test::~managed_switch_test() {
  for (pid_t tool : running_) {
    ::kill(tool, SIGCONT); // a test may have stopped it; behind SIGTERM this would disturb the leak check at its end
    ::kill(tool, SIGTERM);
    ::waitpid(tool, nullptr, 0);
  }
}

void managed_switch_test::start_manager() {
  manager_ = start("manager", {"manager", "d"});
  running_.push_back(manager_);
  wait_for_text("err_manager", "serving d");
}

int managed_switch_test::end_manager(int signal) {
  ::kill(manager_, signal);
  return end_of(manager_);
}

tool_result managed_switch_test::in_folder(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), {"-s", "d"});
  return run(arguments);
}

pid_t managed_switch_test::start_in_folder(const std::string& name, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"-s", "d"});
  running_.push_back(start(name, arguments));
  return running_.back();
}

int managed_switch_test::end_of(pid_t tool) {
  running_.erase(std::remove(running_.begin(), running_.end(), tool), running_.end());
  return wait_for(tool);
}

void managed_switch_test::wait_for_text(const std::string& name, const std::string& text) const {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (read(name).find(text) == std::string::npos) {
    ASSERT_LT(std::chrono::steady_clock::now(), end) << name << " has no \"" << text << "\": " << read(name);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

} // namespace chnsw_test
