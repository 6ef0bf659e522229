#include "manager_test.h"
#include "child_end.h"

#include <gmock/gmock.h>
#include <platform/tlv_aligned_array.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <utility>

namespace manager_test {

using vswitch::chassis_description;
using namespace std::chrono_literals;

chassis_description full_switch() {
  auto chassis = vswitch_test::small_switch();
  chassis.interfaces.push_back({kFcip4, {}});
  for (uint16_t n = 0; n < 8; ++n) {
    const uint16_t vsan = n % 2 == 0 ? 10 : 20;
    const auto pa = static_cast<uint16_t>(0x20 + n);
    chassis.map.port_to_pn[n] = {n, pa, {vsan}};
    chassis.map.port_to_vsan[n] = vsan;
    chassis.map.pa_to_pn[pa] = n;
  }
  chassis.map.port_to_pn[1024] = {240, 0xF0, {20}};
  chassis.map.port_to_pn[1025] = {241, 0xF1, {10, 30}};
  chassis.map.pa_to_pn[0xF0] = 240;
  chassis.map.pa_to_pn[0xF1] = 241;
  chassis.map.pn_to_if[240] = kFcip3;
  chassis.map.pn_to_if[241] = kPortChannel5;
  chassis.nodes[kFc1_1] = {37, 0x10200304, "008401", "C02", "ACM", "07", "000000012345", 0x1234};
  chassis.nodes[kFc1_2] = {FICON_CODEPAGE_ASCII, 0, "005570", "900", "ACM", "12", "0000000ABC19", 0x0031};
  return chassis;
}

vswitch::payload_bytes tlv_array(std::initializer_list<typed_value> values) {
  vswitch::payload_bytes array(2000);
  for (const auto& one : values)
    if (tlv_aligned_array_add_tlv(array.data(), 2000, one.type, one.length, one.value, 1) != 0)
      throw std::runtime_error("the array is full");
  array.resize(tlv_aligned_array_size_get(array.data(), 1));
  return array;
}

running_manager::running_manager(std::string folder, int swap_patience_ms)
    : process_(vswitch_test::start({MANAGER_PROCESS, std::move(folder), std::to_string(swap_patience_ms)})) {
  if (!comes_true([this] { return vswitch_test::text_of_file(process_.output_file).find("ready\n") != std::string::npos; }))
    throw std::runtime_error("the manager does not start: " + log());
}

running_manager::~running_manager() {
  if (!runs_) return;
  kill(process_.pid, SIGCONT); // a test may have stopped it
  end();
}

void running_manager::kill_at_once() {
  kill(process_.pid, SIGKILL);
  vswitch_test::finish(process_);
  runs_ = false;
}

vswitch_test::process_result running_manager::end() {
  kill(process_.pid, SIGTERM);
  runs_ = false;
  return vswitch_test::finish(process_);
}

std::string running_manager::log() const {
  return vswitch_test::text_of_file(process_.error_file);
}

bool running_manager::logged(const std::string& text) const {
  return comes_true([&] { return log().find(text) != std::string::npos; });
}

owned_end open_client() {
  owned_end end(msgq_open(0));
  if (!end) throw std::runtime_error("no end");
  return end;
}

owned_message receive(msgq* end) {
  msgq_message* message = nullptr;
  const int received = msgq_receive(end, &message, 60000);
  EXPECT_EQ(received, 1) << "errno " << msgq_errno_get(end);
  if (received != 1) throw std::runtime_error("no message came");
  return owned_message(message);
}

bool comes_true(const std::function<bool()>& condition) {
  for (const auto latest = std::chrono::steady_clock::now() + 60s; std::chrono::steady_clock::now() < latest;
       std::this_thread::sleep_for(2ms))
    if (condition()) return true;
  return condition();
}

pid_t in_child(const std::function<void()>& act) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child != 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  try {
    act();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "a client: %s\n", error.what());
    end_child(2);
  }
  end_child(testing::Test::HasFailure() ? 1 : 0);
}

bool ended_well(pid_t child) {
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace manager_test
