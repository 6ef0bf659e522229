// Received messages, and where their memory comes from.
#ifndef VSWITCH_RECEIVED_MESSAGE_H
#define VSWITCH_RECEIVED_MESSAGE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "messages/message_frame.h"

namespace vswitch {
class message_pool;
}

// The whole packet, with zeros behind it: pages of a short message's room are never touched.
struct msgq_message {
  vswitch::message_pool* pool;
  vswitch::frame_header header;
  uint64_t end;        // that received it
  uint64_t connection; // of that end
  uint64_t peer;       // the same, or 0 from a server
  bool answered;
  alignas(8) std::array<std::byte, vswitch::kMaxFrameBytes + MSGQ_SLACK> packet;

  std::byte* payload() { return packet.data() + vswitch::kFrameHeaderBytes; }
};

namespace vswitch {

// The messages of one end. It outlives the end until the last of them is given back.
class message_pool {
 public:
  struct closer {
    void operator()(message_pool* pool) const noexcept { pool->close(); }
  };

  // Throws std::bad_alloc.
  msgq_message* take();
  void give_back(msgq_message* message) noexcept;

 private:
  ~message_pool();
  void close() noexcept;

  static constexpr size_t kKept = 4; // room that is not given back to the system

  std::array<msgq_message*, kKept> free_{};
  size_t free_count_ = 0;
  size_t handed_out_ = 0;
  bool closed_ = false;
};

struct message_giver {
  void operator()(msgq_message* message) const noexcept { message->pool->give_back(message); }
};
using pooled_message = std::unique_ptr<msgq_message, message_giver>;

} // namespace vswitch

#endif
