// The transport's frames. The whole input is a packet.
#include "messages/message_frame.h"

#include <algorithm>

#include "fuzz_input.h"
#include "vswitch/tlv_array.h"

namespace {

using fuzz::require;
using vswitch::frame_header;

void check_header(const frame_header& header, const std::vector<uint8_t>& packet) {
  frame_header sent;
  std::memcpy(&sent, packet.data(), sizeof sent);
  require(std::memcmp(&header, &sent, sizeof sent) == 0, "the header is the packet's");
  require(header.magic == vswitch::kFrameMagic, "a frame says that it is one");
  require(header.kind == vswitch::kRequestFrame || header.kind == vswitch::kReplyFrame, "a frame is of a known kind");
  require(header.length <= MSGQ_MAX_PAYLOAD && header.length + vswitch::kFrameHeaderBytes == packet.size(),
          "a payload is as long as the packet says");
  require(vswitch::tlv_services_stay_inside(packet.data() + vswitch::kFrameHeaderBytes, header.length),
          "a payload can be handed out");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::vector<uint8_t> packet(data, data + size); // exactly as long, so that a sanitizer sees what lies beyond
  const auto header = vswitch::read_frame(packet.data(), packet.size());
  if (!header) return 0;
  check_header(*header, packet);
  fuzz::count_success();
  return 0;
}
