#include "inspect/messages/manager_notices.h"

#include <libchnsw.h>

#include "vswitch/manager/manager_protocol.h"

namespace inspect {

namespace {

std::string state_text(uint32_t state, const char* on, const char* off) {
  return state == 1 ? on : state == 0 ? off : std::to_string(state);
}

void read_vsan_state(msgq_message* message, manager_notice& notice) {
  ficon_vsan_state_change change{};
  notice.name = "vsan";
  notice.status = ficon_parse_vsan_state_change_payload(message, &change);
  if (notice.status != 0) return;
  notice.vsan = change.word0;
  notice.state = state_text(change.word1, "up", "down");
}

void read_up_down(msgq_message* message, manager_notice& notice) {
  ficon_updown_notice change{};
  notice.name = "port";
  notice.status = ficon_parse_updown_payload(message, &change);
  if (notice.status != 0) return;
  notice.if_index = change.word0;
  notice.state = state_text(change.byte4, "up", "down");
  notice.reason = change.byte5;
}

void read_enable(msgq_message* message, manager_notice& notice) {
  ficon_enable_notice change{};
  notice.name = "enable";
  notice.status = ficon_parse_enable_payload(message, &change);
  if (notice.status != 0) return;
  notice.if_index = change.word0;
  notice.state = state_text(change.byte4, "on", "off");
}

// The code page stands in the same record, but the parser of notifications does not hand it out; that of answers does.
void read_rnid(msgq_message* message, manager_notice& notice) {
  uint32_t if_index = 0;
  uint32_t format = 0;
  uint32_t codepage = 0;
  ficon_node_descriptor descriptor{};
  notice.name = "rnid";
  notice.status = ficon_parse_rnid_notification(message, &if_index, nullptr, nullptr, &format, nullptr, &descriptor);
  notice.if_index = if_index;
  if (notice.status != 0) return;
  ficon_parse_get_rnid(message, nullptr, nullptr, nullptr, &codepage, nullptr, nullptr, nullptr);
  notice.node = format == FICON_RNID_FORMAT_CONVERTED ? identity_of_converted(codepage, descriptor)
                                                      : identity_of(codepage, descriptor);
}

} // namespace

manager_notice read_notice(msgq_message* message) {
  manager_notice notice;
  notice.opcode = msgq_opcode_get(message);
  switch (notice.opcode) {
    case vswitch::kOpVsanStateChange:
      read_vsan_state(message, notice);
      break;
    case vswitch::kOpPortUpDown:
      read_up_down(message, notice);
      break;
    case vswitch::kOpPortEnable:
      read_enable(message, notice);
      break;
    case vswitch::kOpRnidNotification:
      read_rnid(message, notice);
      break;
    default:
      notice.name = "unknown";
  }
  return notice;
}

} // namespace inspect
