#include "inspect/messages/manager_client.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <thread>

#include "inspect/error.h"
#include "inspect/words/status_names.h"
#include "vswitch/switch_store.h"
#include "vswitch/vswitch.h"

namespace inspect {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kPauseWhileQueueIsFull{5};

milliseconds timeout_of(double seconds) {
  return milliseconds(std::llround(seconds * 1000));
}

std::string seconds_text(milliseconds time) {
  return fmt::format("{:g} s", static_cast<double>(time.count()) / 1000);
}

// The services of this process, and so the transport, work on the folder from here on.
vswitch::chassis_description use_folder(const std::string& folder) {
  try {
    vswitch::use_switch(vswitch::switch_store::open(folder));
    return *vswitch::chassis_in_use();
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

} // namespace

manager_client::manager_client(const std::string& folder, double timeout_seconds)
    : folder_(folder), chassis_(use_folder(folder_)), timeout_(timeout_of(timeout_seconds)), handle_(msgq_open(0)) {
  if (handle_ == nullptr)
    throw platform_error(fmt::format("{}: no message can be sent: {}", folder_, std::strerror(errno)));
}

manager_client::~manager_client() {
  msgq_close(handle_);
}

manager_client::moment manager_client::deadline() const {
  return steady_clock::now() + timeout_;
}

void manager_client::fail(int error) const {
  switch (error) {
    case ECONNREFUSED:
      throw platform_error(fmt::format("no manager serves {}; start one with: chnsw manager {}", folder_, folder_));
    case ECONNRESET:
      throw platform_error(fmt::format("the manager of {} has ended; start one with: chnsw manager {}", folder_, folder_));
    case EAGAIN:
      throw platform_error(
          fmt::format("the manager of {} has taken no message within {}", folder_, seconds_text(timeout_)));
    case EPERM:
      throw platform_error(fmt::format("the manager of {} belongs to another user", folder_));
    default:
      throw platform_error(fmt::format("no message can be sent to the manager of {}: {}", folder_, std::strerror(error)));
  }
}

// The manager makes room in a full queue while it serves.
void manager_client::send_until_taken(const std::function<uint32_t()>& send) {
  const moment end = deadline();
  for (uint32_t result = send(); result != 0; result = send()) {
    const int error = msgq_errno_get(handle_);
    if (error == 0) throw platform_error("the library cannot send: " + status_text(result));
    if (error != EAGAIN || steady_clock::now() >= end) fail(error);
    std::this_thread::sleep_for(kPauseWhileQueueIsFull);
  }
}

received_message manager_client::receive_until(moment end) {
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now()).count();
    msgq_message* message = nullptr;
    const int answer = msgq_receive(handle_, &message, static_cast<int>(std::max<int64_t>(left, 0)));
    if (answer >= 0) return received_message(message);
    const int error = msgq_errno_get(handle_);
    if (error != EINTR) fail(error);
  }
}

received_message manager_client::receive() {
  received_message message = receive_until(deadline());
  if (!message)
    throw platform_error(fmt::format("the manager of {} did not answer within {}", folder_, seconds_text(timeout_)));
  return message;
}

received_message manager_client::receive_at_once() {
  return receive_until(steady_clock::now());
}

received_message manager_client::reply_to(uintptr_t send_arg) {
  while (true) {
    received_message message = receive();
    if (msgq_is_reply(message.get()) != 0 && msgq_send_arg_get(message.get()) == send_arg) return message;
  }
}

received_message manager_client::ask(const sender& send) {
  const uintptr_t send_arg = ++last_send_arg_;
  send_until_taken([&] { return send(handle_, send_arg); });
  return reply_to(send_arg);
}

received_message manager_client::ask_unmarked(const std::function<uint32_t(msgq*)>& send) {
  send_until_taken([&] { return send(handle_); });
  return reply_to(0);
}

received_message manager_client::order(uint32_t opcode, const void* payload, uint32_t length) {
  return ask([&](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(
        msgq_send(handle, &vswitch::kManagerAddress, opcode, payload, length, send_arg, nullptr, 0));
  });
}

void manager_client::send(uint32_t opcode, const void* payload, uint32_t length) {
  send_until_taken([&] {
    return static_cast<uint32_t>(msgq_send(handle_, &vswitch::kManagerAddress, opcode, payload, length, 0, nullptr, 0));
  });
}

int manager_client::descriptor() const {
  const int descriptor = msgq_descriptor(handle_);
  if (descriptor == -1) throw platform_error("messages cannot be waited for");
  return descriptor;
}

void manager_client::connect_to_notices() {
  if (msgq_connect(handle_, &vswitch::kNoticeAddress) != 0) fail(msgq_errno_get(handle_));
}

void copy_record(msgq_message* answer, void* record, size_t size) {
  const size_t sent = msgq_payload_size(answer);
  if (sent < sizeof(uint32_t)) throw platform_error("the manager's answer holds no result");
  std::memcpy(record, msgq_payload_get(answer), std::min(sent, size));
}

} // namespace inspect
