#include "served_end.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "vswitch/switch_error.h"

namespace vswitch {

namespace {

constexpr int kMessagesAtOnce = 64; // before the other end, the deadlines and the stop are looked at again

} // namespace

served_end::served_end(uint32_t service_point) : end_(msgq_open(service_point)) {
  if (!end_ || descriptor() == -1)
    throw switch_error("service point " + std::to_string(service_point) + " cannot be served: " + std::strerror(errno));
}

std::vector<uint64_t> served_end::peers() const {
  std::vector<uint64_t> peers(msgq_peers_get(handle(), nullptr, 0));
  const uint32_t count = msgq_peers_get(handle(), peers.data(), static_cast<uint32_t>(peers.size()));
  peers.resize(std::min<size_t>(peers.size(), count));
  return peers;
}

int served_end::send(uint64_t peer, uint32_t opcode, payload_view payload) const {
  const int sent = msgq_send_to_peer(handle(), peer, opcode, payload.data(), static_cast<uint32_t>(payload.size()));
  return sent == -1 ? msgq_errno_get(handle()) : 0;
}

bool served_end::receive(const std::function<void(owned_message)>& handle_one) const {
  for (int n = 0; n < kMessagesAtOnce; ++n) {
    msgq_message* message = nullptr;
    const int received = msgq_receive(handle(), &message, 0);
    if (received == 0) return false;
    if (received == 1)
      handle_one(owned_message(message));
    else if (errno != EINTR && errno != ECONNRESET)
      throw switch_error(std::string("messages cannot be received: ") + std::strerror(errno));
  }
  return true;
}

payload_view payload_of(msgq_message* message) {
  const auto* bytes = static_cast<const std::byte*>(msgq_payload_get(message));
  return bytes == nullptr ? payload_view() : payload_view(bytes, msgq_payload_size(message));
}

} // namespace vswitch
