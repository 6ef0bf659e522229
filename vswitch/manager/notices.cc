#include "notices.h"

#include <platform/if_index.h>

#include "query_answers.h"
#include "vswitch/interface_index.h"

namespace vswitch {

namespace {

constexpr uint16_t kUpDownBytes = 6;
constexpr uint16_t kEnableBytes = 5;

std::string state_text(uint8_t state) {
  return ", state " + std::to_string(state);
}

// The parsers hand the first word on as it stands, so it goes out as clients have it.
notice updown_notice(uint32_t if_index, const notify_order& order) {
  const ficon_updown_notice record = {if_index, order.state, order.reason};
  return {kOpPortUpDown, tlv_payload(FICON_TLV_UPDOWN, &record, kUpDownBytes),
          "up/down notice of " + interface_name(if_index) + state_text(order.state) + ", reason " +
              std::to_string(order.reason)};
}

notice enable_notice(uint32_t if_index, const notify_order& order) {
  const ficon_enable_notice record = {if_index, order.state};
  return {kOpPortEnable, tlv_payload(FICON_TLV_ENABLE, &record, kEnableBytes),
          "enable notice of " + interface_name(if_index) + state_text(order.state)};
}

notice rnid_notice(const ficon_rnid_rec& record, uint32_t if_index) {
  return {kOpRnidNotification, tlv_payload(FICON_TLV_RNID, record), "RNID notification of " + interface_name(if_index)};
}

uint32_t make_rnid_notice(const chassis_description& chassis, uint32_t if_index, ficon_convert_fn convert, notice& made) {
  ficon_rnid_rec record = {};
  record.if_index = hton_if_index(if_index);
  record.rnid_size = FICON_RNID_SIZE;
  record.rnid_format = FICON_RNID_FORMAT_CONVERTED;
  const uint32_t result = fill_rnid(chassis, if_index, convert, record);
  made = rnid_notice(record, if_index);
  return result;
}

} // namespace

notice vsan_notice(uint16_t vsan, uint8_t state) {
  const ficon_vsan_state_change record = {vsan, state};
  return {kOpVsanStateChange, tlv_payload(FICON_TLV_VSAN_STATE_CHANGE, record),
          "notice of VSAN " + std::to_string(vsan) + state_text(state)};
}

uint32_t make_notice(const chassis_description& chassis, const notify_order& order, ficon_convert_fn convert,
                     notice& made) {
  const uint32_t if_index = ntoh_if_index(order.if_index);
  if (order.opcode == kOpVsanStateChange) {
    if (order.vsan == 0 || order.vsan > kHighestVsan) return FICON_RC_INVALID_ARG;
    made = vsan_notice(static_cast<uint16_t>(order.vsan), order.state);
    return 0;
  }
  if (order.opcode == kOpRnidNotification) return make_rnid_notice(chassis, if_index, convert, made);
  if (order.opcode != kOpPortUpDown && order.opcode != kOpPortEnable) return FICON_RC_INVALID_ARG;
  if (!has_interface(chassis, if_index)) return FICON_RC_NO_IF;
  made = order.opcode == kOpPortUpDown ? updown_notice(if_index, order) : enable_notice(if_index, order);
  return 0;
}

} // namespace vswitch
