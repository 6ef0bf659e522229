#include "quiet_transport.h"

#include <cstring>

struct msgq {};

namespace {

msgq the_end;
bench::sent_message sent;

} // namespace

msgq* bench::open_end() {
  return &the_end;
}

const bench::sent_message& bench::last_sent() {
  return sent;
}

int msgq_send(msgq*, const msgq_addr*, uint32_t opcode, const void* payload, uint32_t length, uintptr_t, msgq_message*,
              uint32_t) {
  sent.opcode = opcode;
  sent.size = length;
  if (length != 0) std::memcpy(sent.payload, payload, length);
  return 0;
}

void* msgq_payload_get(msgq_message* message) {
  return message->payload;
}

uint32_t msgq_payload_size(msgq_message* message) {
  return message->size;
}

int msgq_errno_get(msgq*) {
  return 0;
}
