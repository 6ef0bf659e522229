// A transport that does next to nothing: it keeps the bytes that were sent last, and a message is a place in memory.
#ifndef BENCH_MESSAGES_QUIET_TRANSPORT_H
#define BENCH_MESSAGES_QUIET_TRANSPORT_H

#include <platform/msgq.h>

#include <cstdint>

struct msgq_message {
  void* payload;
  uint32_t size;
};

namespace bench {

struct sent_message {
  uint32_t opcode;
  uint32_t size;
  alignas(uint64_t) char payload[MSGQ_MAX_PAYLOAD];
};

// Any handle will do for senders.
msgq* open_end();

const sent_message& last_sent();

} // namespace bench

#endif
