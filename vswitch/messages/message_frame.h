// Frames: what a message is on a connection, one a packet:
//
//   offset  0       4        8      12       16         24
//           | magic | opcode | kind | length | send_arg | payload, length bytes
//
// Integers are in the machine's byte order. A reply brings the send_arg of what it answers.
#ifndef VSWITCH_MESSAGE_FRAME_H
#define VSWITCH_MESSAGE_FRAME_H

#include <platform/msgq.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vswitch {

inline constexpr uint32_t kFrameMagic = 0x46514D31; // "FQM1"

enum frame_kind : uint32_t { kRequestFrame = 1, kReplyFrame = 2 };

struct frame_header {
  uint32_t magic = kFrameMagic;
  uint32_t opcode = 0;
  uint32_t kind = kRequestFrame;
  uint32_t length = 0;
  uint64_t send_arg = 0;
};
inline constexpr size_t kFrameHeaderBytes = 24;
inline constexpr size_t kMaxFrameBytes = kFrameHeaderBytes + MSGQ_MAX_PAYLOAD;

static_assert(sizeof(frame_header) == kFrameHeaderBytes);
static_assert(offsetof(frame_header, opcode) == 4);
static_assert(offsetof(frame_header, kind) == 8);
static_assert(offsetof(frame_header, length) == 12);
static_assert(offsetof(frame_header, send_arg) == 16);
static_assert(sizeof(uintptr_t) <= sizeof(frame_header::send_arg));

// The header of a packet, none when the packet is no frame or its payload none that may be handed out. size is that of the
// whole packet, also where less of it was stored.
std::optional<frame_header> read_frame(const void* packet, size_t size) noexcept;

} // namespace vswitch

#endif
