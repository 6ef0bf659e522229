// Message transport service: ends as handles, and what a child process must let go of.
#include <platform/msgq.h>
#include <pthread.h>

#include <cerrno>
#include <memory>
#include <new>

#include "messages/message_end.h"
#include "services/process_state.h"
#include "vswitch/tlv_array.h"

struct msgq final : vswitch::message_end {
  msgq* next = nullptr;
};

namespace vswitch {

namespace {

// The ends of this process, for a child that must let go of them. A lock, since threads have ends of their own.
pthread_mutex_t ends_lock = PTHREAD_MUTEX_INITIALIZER;
msgq* ends = nullptr;

class ends_locked {
 public:
  ends_locked() { pthread_mutex_lock(&ends_lock); }
  ~ends_locked() { pthread_mutex_unlock(&ends_lock); }
  ends_locked(const ends_locked&) = delete;
  ends_locked& operator=(const ends_locked&) = delete;
};

void lock_ends() {
  pthread_mutex_lock(&ends_lock);
}

void unlock_ends() {
  pthread_mutex_unlock(&ends_lock);
}

void abandon_ends() {
  for (msgq* end = ends; end != nullptr; end = end->next) end->abandon();
  ends = nullptr;
  unlock_ends();
}

void list(msgq* end) {
  static const int watched = pthread_atfork(lock_ends, unlock_ends, abandon_ends);
  if (watched != 0) throw std::bad_alloc();
  const ends_locked held;
  end->next = ends;
  ends = end;
}

void unlist(msgq* end) noexcept {
  const ends_locked held;
  for (msgq** place = &ends; *place != nullptr; place = &(*place)->next)
    if (*place == end) {
      *place = end->next;
      return;
    }
}

int fail(msgq* handle, int error) noexcept {
  if (handle != nullptr) handle->last_error = error;
  errno = error;
  return -1;
}

// Runs an operation that returns an errno value, as a service that returns 0 or -1.
template <typename operation>
int on(msgq* handle, operation run) noexcept {
  if (handle == nullptr || handle->is_abandoned()) return fail(handle, EINVAL);
  int error = ENOMEM;
  try {
    error = run(*handle);
  } catch (const std::bad_alloc&) {
  }
  return error == 0 ? 0 : fail(handle, error);
}

int refusal_of(const void* payload, uint32_t length) noexcept {
  if (length > MSGQ_MAX_PAYLOAD) return EMSGSIZE;
  if (payload == nullptr && length != 0) return EINVAL;
  return length == 0 || tlv_services_stay_inside(payload, length) ? 0 : EINVAL;
}

std::unique_ptr<msgq> open_end(uint32_t service_point) {
  const switch_store* store = switch_in_use();
  if (store == nullptr || store->message_place().empty()) {
    errno = ENODEV;
    return nullptr;
  }
  auto end = std::make_unique<msgq>();
  list(end.get());
  if (int error = end->open(open_link(store->message_place()), service_point)) {
    unlist(end.get());
    end.reset();
    errno = error;
  }
  return end;
}

} // namespace

} // namespace vswitch

using namespace vswitch;

VSWITCH_SERVICE msgq* msgq_open(uint32_t service_point) {
  try {
    return open_end(service_point).release();
  } catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return nullptr;
  }
}

VSWITCH_SERVICE void msgq_close(msgq* handle) {
  if (handle == nullptr) return;
  unlist(handle);
  delete handle;
}

VSWITCH_SERVICE int msgq_errno_get(msgq* handle) {
  return handle == nullptr ? EINVAL : handle->last_error;
}

VSWITCH_SERVICE int msgq_connect(msgq* handle, const msgq_addr* to) {
  return on(handle, [&](message_end& end) { return to == nullptr ? EINVAL : end.connect(*to); });
}

VSWITCH_SERVICE int msgq_descriptor(msgq* handle) {
  int number = -1;
  on(handle, [&](message_end& end) { return end.give_descriptor(number); });
  return number;
}

VSWITCH_SERVICE int msgq_send(msgq* handle, const msgq_addr* to, uint32_t opcode, const void* payload, uint32_t length,
                              uintptr_t send_arg, msgq_message* answered, uint32_t zero) {
  return on(handle, [&](message_end& end) {
    if (zero != 0 || (to == nullptr && answered == nullptr)) return EINVAL;
    if (int refused = refusal_of(payload, length)) return refused;
    if (answered != nullptr) return end.reply(*answered, opcode, payload, length);
    return end.request(*to, opcode, payload, length, send_arg);
  });
}

VSWITCH_SERVICE int msgq_send_to_peer(msgq* handle, uint64_t peer, uint32_t opcode, const void* payload, uint32_t length) {
  return on(handle, [&](message_end& end) {
    if (int refused = refusal_of(payload, length)) return refused;
    return end.send_to_peer(peer, opcode, payload, length);
  });
}

VSWITCH_SERVICE uint32_t msgq_peers_get(msgq* handle, uint64_t* peers, uint32_t capacity) {
  uint32_t count = 0;
  on(handle, [&](message_end& end) {
    if (peers == nullptr && capacity != 0) return EINVAL;
    count = end.list_peers({peers, capacity});
    return 0;
  });
  return count;
}

VSWITCH_SERVICE int msgq_receive(msgq* handle, msgq_message** message, int timeout_ms) {
  bool received = false;
  const int result = on(handle, [&](message_end& end) {
    if (message == nullptr || timeout_ms < -1) return EINVAL;
    const int error = end.receive(*message, timeout_ms);
    received = error == 0;
    return error == ETIMEDOUT ? 0 : error;
  });
  return received ? 1 : result;
}

VSWITCH_SERVICE void msgq_release(msgq_message* message) {
  if (message != nullptr) message->pool->give_back(message);
}

VSWITCH_SERVICE void* msgq_payload_get(msgq_message* message) {
  return message == nullptr || message->header.length == 0 ? nullptr : message->payload();
}

VSWITCH_SERVICE uint32_t msgq_payload_size(msgq_message* message) {
  return message == nullptr ? 0 : message->header.length;
}

VSWITCH_SERVICE uint32_t msgq_opcode_get(const msgq_message* message) {
  return message == nullptr ? 0 : message->header.opcode;
}

VSWITCH_SERVICE int msgq_is_reply(const msgq_message* message) {
  return message != nullptr && message->header.kind == kReplyFrame;
}

VSWITCH_SERVICE uintptr_t msgq_send_arg_get(const msgq_message* message) {
  if (msgq_is_reply(message) == 0) return 0;
  return static_cast<uintptr_t>(message->header.send_arg);
}

VSWITCH_SERVICE uint64_t msgq_peer_get(const msgq_message* message) {
  return message == nullptr ? 0 : message->peer;
}
