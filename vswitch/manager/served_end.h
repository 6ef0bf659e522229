// An end of the message transport that serves a service point of the manager's.
#ifndef VSWITCH_MANAGER_SERVED_END_H
#define VSWITCH_MANAGER_SERVED_END_H

#include <platform/msgq.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "outbox.h"
#include "requests.h"

namespace vswitch {

class served_end {
 public:
  // Throws switch_error.
  explicit served_end(uint32_t service_point);

  msgq* handle() const { return end_.get(); }
  int descriptor() const { return msgq_descriptor(end_.get()); } // readable when there is something to receive

  std::vector<uint64_t> peers() const; // ascending

  // Sends a peer what it has not asked for. Returns 0 or an errno value.
  int send(uint64_t peer, uint32_t opcode, payload_view payload) const;

  // Hands over the messages that are there, some of them when there are many. Returns whether there may be more. Throws
  // switch_error.
  bool receive(const std::function<void(owned_message)>& handle_one) const;

 private:
  struct closer {
    void operator()(msgq* end) const { msgq_close(end); }
  };
  std::unique_ptr<msgq, closer> end_;
};

payload_view payload_of(msgq_message* message);

} // namespace vswitch

#endif
