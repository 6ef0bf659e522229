// Answers to be sent, also those that their receiver has no room for yet: nothing blocks, and each peer's answers keep their
// order.
#ifndef VSWITCH_MANAGER_OUTBOX_H
#define VSWITCH_MANAGER_OUTBOX_H

#include <platform/msgq.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>

#include "requests.h"

namespace vswitch {

struct message_release {
  void operator()(msgq_message* message) const { msgq_release(message); }
};
using owned_message = std::unique_ptr<msgq_message, message_release>;

// What may wait for one receiver, and for all of them. A peer that asks and never reads loses the answers beyond it.
inline constexpr size_t kWaitingBytes = size_t{16} << 20;
inline constexpr size_t kAllWaitingBytes = size_t{128} << 20;

class outbox {
 public:
  // on_loss: called for each answer that did not reach its receiver, with an errno value.
  outbox(msgq* handle, std::function<void(uint64_t peer, int error)> on_loss);

  void answer(owned_message request, payload_bytes payload);

  bool waiting() const { return !waiting_.empty(); }
  void retry();

 private:
  struct pending_answer {
    owned_message request;
    payload_bytes payload;
    size_t bytes() const;
  };
  struct peer_queue {
    std::deque<pending_answer> answers;
    size_t bytes = 0;
  };

  int send(const pending_answer& one);
  void keep(uint64_t peer, pending_answer one);
  bool send_queue(uint64_t peer, peer_queue& waiting);

  msgq* handle_;
  std::function<void(uint64_t, int)> on_loss_;
  std::map<uint64_t, peer_queue> waiting_; // by peer
  size_t waiting_bytes_ = 0;
};

} // namespace vswitch

#endif
