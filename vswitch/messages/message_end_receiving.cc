// What an end receives: pending messages of connections that were lost, then of each that is ready in its turn.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>

#include "messages/message_end.h"

namespace vswitch {

namespace {

constexpr int kRetryAcceptMs = 100;

class deadline {
 public:
  explicit deadline(int timeout_ms) : never_(timeout_ms < 0) {
    if (timeout_ms > 0) until_ = clock::now() + std::chrono::milliseconds(timeout_ms);
  }
  int left_ms() const {
    if (never_) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until_ - clock::now()).count();
    return static_cast<int>(std::clamp<int64_t>(left, 0, INT_MAX));
  }

 private:
  using clock = std::chrono::steady_clock;
  bool never_;
  clock::time_point until_; // long ago when there is nothing to wait for
};

} // namespace

// One packet of a connection: a message, none, or the connection's end. A packet that is no frame ends it too.
int message_end::receive_from(connection& sender, msgq_message*& message, int timeout_ms) {
  pooled_message taken(pool_->take());
  const ssize_t size = sender.carrier->receive(taken->packet.data(), timeout_ms);
  if (size < 0) return errno;
  const auto header = read_frame(taken->packet.data(), static_cast<size_t>(size));
  if (!header) return ECONNRESET;
  taken->header = *header;
  taken->end = identity_;
  taken->connection = sender.number;
  taken->peer = sender.to_server() ? 0 : sender.number;
  taken->answered = false;
  std::memset(taken->payload() + header->length, 0, MSGQ_SLACK);
  message = taken.release();
  return 0;
}

int message_end::receive_from_lost(msgq_message*& message) {
  if (lost_.empty()) return EAGAIN;
  if (receive_from(lost_.front(), message) == 0) return 0;
  readiness_.remove(lost_.front().number);
  lost_.pop_front();
  return ECONNRESET;
}

void message_end::end_turn() noexcept {
  ++turn_;
  received_in_turn_ = 0;
}

// One message of the connection whose turn it is. A turn ends when it is used up, or when the connection has no more.
int message_end::receive_in_turn(msgq_message*& message) {
  connection* sender = find(ready_.connections[turn_]);
  if (sender == nullptr) {
    end_turn();
    return EAGAIN;
  }
  const int error = receive_from(*sender, message);
  if (error == 0) {
    if (++received_in_turn_ < sender->turn.messages()) return 0;
    sender->turn.was_used_up();
    end_turn();
    return 0;
  }
  if (error == EAGAIN) sender->turn.ended_early(received_in_turn_);
  end_turn();
  if (error == EAGAIN) return EAGAIN;
  const bool is_server = sender->to_server();
  close_connection(*sender);
  return is_server ? ECONNRESET : EAGAIN;
}

int message_end::receive_pending(msgq_message*& message) {
  int error = receive_from_lost(message);
  while (error == EAGAIN && turn_ < ready_.connections.size()) error = receive_in_turn(message);
  return error;
}

// An end that only talks with one server waits in the call that also takes the message.
message_end::connection* message_end::only_server() noexcept {
  return listener_ || connections_.size() != 1 ? nullptr : &connections_.begin()->second;
}

int message_end::receive_from_server(connection& server, msgq_message*& message, int timeout_ms) {
  const int error = receive_from(server, message, timeout_ms);
  if (error == ECONNRESET) close_connection(server);
  return error == EAGAIN ? ETIMEDOUT : error;
}

// Returns 0 when a connection may have become ready. Clients that there is no descriptor for are tried again after a while, or
// as soon as anything else happens.
int message_end::wait(int timeout_ms) {
  const bool retry = !readiness_.polls_listener();
  const int limit_ms = retry && (timeout_ms < 0 || timeout_ms > kRetryAcceptMs) ? kRetryAcceptMs : timeout_ms;
  const int error = readiness_.wait(limit_ms, ready_);
  if (error == 0 && ready_.listener) accept_some();
  if (retry) readiness_.poll_listener(true);
  return error == ETIMEDOUT && limit_ms != timeout_ms ? 0 : error;
}

int message_end::wait_and_receive(msgq_message*& message, int timeout_ms) {
  ready_.connections.clear();
  ready_.listener = false;
  turn_ = 0;
  received_in_turn_ = 0;
  const int error = wait(timeout_ms);
  return error == 0 ? receive_pending(message) : error;
}

// Packets that are no messages do not prolong the wait.
int message_end::receive(msgq_message*& message, int timeout_ms) {
  int error = receive_pending(message);
  if (error != EAGAIN) return error;
  if (connection* server = only_server()) return receive_from_server(*server, message, timeout_ms);
  const deadline until(timeout_ms);
  for (int left_ms = timeout_ms; error == EAGAIN; left_ms = until.left_ms()) {
    error = wait_and_receive(message, left_ms);
    if (error == EAGAIN && left_ms == 0) return ETIMEDOUT;
  }
  return error;
}

} // namespace vswitch
