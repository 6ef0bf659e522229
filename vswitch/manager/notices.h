// Notices: what listeners are sent unasked.
#ifndef VSWITCH_MANAGER_NOTICES_H
#define VSWITCH_MANAGER_NOTICES_H

#include <libchnsw.h>

#include <cstdint>
#include <string>

#include "requests.h"
#include "vswitch/chassis_description.h"
#include "vswitch/manager/manager_protocol.h"

namespace vswitch {

struct notice {
  uint32_t opcode = 0;
  payload_bytes payload;
  std::string what; // for the log
};

notice vsan_notice(uint16_t vsan, uint8_t state);

// The notice that an order asks for. Returns notify_result::result; made: out, whole when that is 0.
uint32_t make_notice(const chassis_description& chassis, const notify_order& order, ficon_convert_fn convert, notice& made);

} // namespace vswitch

#endif
