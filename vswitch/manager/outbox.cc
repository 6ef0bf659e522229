#include "outbox.h"

#include <cerrno>
#include <iterator>
#include <utility>

#include "vswitch/manager/manager_protocol.h"

namespace vswitch {

outbox::outbox(msgq* handle, std::function<void(uint64_t, int)> on_loss) : handle_(handle), on_loss_(std::move(on_loss)) {}

// A received message holds room for the longest one, whatever its own length is.
size_t outbox::pending_answer::bytes() const {
  return payload.size() + MSGQ_MAX_PAYLOAD + MSGQ_SLACK + sizeof(pending_answer);
}

// Returns 0 or an errno value.
int outbox::send(const pending_answer& one) {
  constexpr msgq_addr kRequester = {FICON_REPLY_NODE, 0};
  const int sent = msgq_send(handle_, &kRequester, FICON_OP_REPLY, one.payload.empty() ? nullptr : one.payload.data(),
                             static_cast<uint32_t>(one.payload.size()), 0, one.request.get(), 0);
  return sent == -1 ? msgq_errno_get(handle_) : 0;
}

void outbox::keep(uint64_t peer, pending_answer one) {
  peer_queue& waiting = waiting_[peer];
  const size_t bytes = one.bytes();
  if (waiting.bytes + bytes > kWaitingBytes || waiting_bytes_ + bytes > kAllWaitingBytes) return on_loss_(peer, ENOBUFS);
  waiting.bytes += bytes;
  waiting_bytes_ += bytes;
  waiting.answers.push_back(std::move(one));
}

void outbox::answer(owned_message request, payload_bytes payload) {
  const uint64_t peer = msgq_peer_get(request.get());
  pending_answer one = {std::move(request), std::move(payload)};
  const int error = waiting_.contains(peer) ? EAGAIN : send(one);
  if (error == EAGAIN)
    keep(peer, std::move(one));
  else if (error != 0)
    on_loss_(peer, error);
}

// Whether nothing is left.
bool outbox::send_queue(uint64_t peer, peer_queue& waiting) {
  while (!waiting.answers.empty()) {
    const pending_answer& first = waiting.answers.front();
    const int error = send(first);
    if (error == EAGAIN) return false;
    if (error != 0) on_loss_(peer, error);
    waiting.bytes -= first.bytes();
    waiting_bytes_ -= first.bytes();
    waiting.answers.pop_front();
  }
  return true;
}

void outbox::retry() {
  for (auto next = waiting_.begin(); next != waiting_.end();)
    next = send_queue(next->first, next->second) ? waiting_.erase(next) : std::next(next);
}

} // namespace vswitch
