#include "listeners.h"

#include <cstring>
#include <string>
#include <utility>

namespace vswitch {

listeners::listeners(event_log log)
    : log_(std::move(log)), end_(kNoticeAddress.service_point), refusals_(end_.handle(), [this](uint64_t peer, int error) {
        log_(peer, std::string("listener's answer not delivered: ") + std::strerror(error), FICON_RC_PLATFORM);
      }) {}

uint32_t listeners::notify(const notice& sent) const {
  uint32_t reached = 0;
  for (const uint64_t peer : end_.peers()) {
    const int error = end_.send(peer, sent.opcode, sent.payload);
    if (error == 0)
      ++reached;
    else
      log_(0, sent.what + " not delivered to listener " + std::to_string(peer) + ": " + std::strerror(error),
           FICON_RC_PLATFORM);
  }
  log_(0, sent.what + " to " + std::to_string(reached) + (reached == 1 ? " listener" : " listeners"), 0);
  return reached;
}

bool listeners::refuse_requests() {
  return end_.receive([this](owned_message message) { refuse(std::move(message)); });
}

void listeners::refuse(owned_message message) {
  if (msgq_is_reply(message.get()) != 0) return;
  answer made = plain_answer(FICON_RC_INVALID_ARG, "listener's opcode " + std::to_string(msgq_opcode_get(message.get())));
  log_(msgq_peer_get(message.get()), made.what, made.result);
  refusals_.answer(std::move(message), std::move(made.payload));
}

} // namespace vswitch
