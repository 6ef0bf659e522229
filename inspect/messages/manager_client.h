// A client of the manager that serves a switch's folder: an end of the transport, requests, and the wait for their replies.
#ifndef INSPECT_MANAGER_CLIENT_H
#define INSPECT_MANAGER_CLIENT_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/msgq.h"
#include "vswitch/chassis_description.h"
#include "vswitch/manager/manager_protocol.h"

namespace inspect {

inline constexpr double kUsualTimeoutSeconds = 5;

struct message_releaser {
  void operator()(msgq_message* message) const { msgq_release(message); }
};
using received_message = std::unique_ptr<msgq_message, message_releaser>;

class manager_client {
 public:
  // Opens an end on a switch's folder, on which the services of this process work from here on. The manager is not looked for
  // yet. Throws error.
  manager_client(const std::string& folder, double timeout_seconds);
  ~manager_client();
  manager_client(const manager_client&) = delete;
  manager_client& operator=(const manager_client&) = delete;

  const vswitch::chassis_description& chassis() const { return chassis_; } // as it was when the end was opened
  msgq* handle() const { return handle_; }

  // Each throws error: there is no manager, or it does not answer in time.

  // Sends by one of the library's senders, which gets the handle and the send_arg, and waits for the reply.
  using sender = std::function<uint32_t(msgq*, uintptr_t)>;
  received_message ask(const sender& send);
  // The same for a sender that takes no send_arg: the reply has 0.
  received_message ask_unmarked(const std::function<uint32_t(msgq*)>& send);

  // The same with a message of the manager's own, which the library does not know.
  received_message order(uint32_t opcode, const void* payload, uint32_t length);

  // For a request whose reply is not the next message: sends it, and receives what comes, one by one.
  void send(uint32_t opcode, const void* payload, uint32_t length);
  received_message receive();

  // Readable when a message has come.
  int descriptor() const;
  // Receives notices too from here on.
  void connect_to_notices();
  // The next message that is there already; nullptr when there is none.
  received_message receive_at_once();

 private:
  using moment = std::chrono::steady_clock::time_point;

  moment deadline() const;
  void send_until_taken(const std::function<uint32_t()>& send);
  received_message receive_until(moment end);
  received_message reply_to(uintptr_t send_arg);
  [[noreturn]] void fail(int error) const;

  std::string folder_;
  vswitch::chassis_description chassis_;
  std::chrono::milliseconds timeout_;
  msgq* handle_ = nullptr;
  uintptr_t last_send_arg_ = 0;
};

// An answer that is one of the manager's own records, each of which begins with a result; the manager answers what it does
// not know with a result alone, and the rest is then 0. Throws error when there is not even that.
void copy_record(msgq_message* answer, void* record, size_t size);
template <typename record>
record record_in(msgq_message* answer) {
  record found{};
  copy_record(answer, &found, sizeof found);
  return found;
}

} // namespace inspect

#endif
