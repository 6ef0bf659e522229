#include "messages/message_frame.h"

#include "vswitch/packed_fields.h"
#include "vswitch/tlv_array.h"

namespace vswitch {

std::optional<frame_header> read_frame(const void* packet, size_t size) noexcept {
  if (size < kFrameHeaderBytes || size > kMaxFrameBytes) return std::nullopt;
  const auto header = load_field<frame_header>(packet);
  if (header.magic != kFrameMagic || header.length != size - kFrameHeaderBytes) return std::nullopt;
  if (header.kind != kRequestFrame && header.kind != kReplyFrame) return std::nullopt;
  const void* payload = static_cast<const std::byte*>(packet) + kFrameHeaderBytes;
  if (!tlv_services_stay_inside(payload, header.length)) return std::nullopt;
  return header;
}

} // namespace vswitch
