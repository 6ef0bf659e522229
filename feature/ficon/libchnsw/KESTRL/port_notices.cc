// Notices that the manager sends unasked: a VSAN's state, a port that came up or went down, one enabled or disabled.
//
// Oddity: their first word is handed on as it stands, also where it is an interface index: the manager sends it as clients
// have it.
#include "message_framing.h"

using namespace chnsw;

static_assert(sizeof(ficon_vsan_state_change) == 8);
static_assert(offsetof(ficon_vsan_state_change, word0) == 0);
static_assert(offsetof(ficon_vsan_state_change, word1) == 4);

static_assert(offsetof(ficon_updown_notice, word0) == 0);
static_assert(offsetof(ficon_updown_notice, byte4) == 4);
static_assert(offsetof(ficon_updown_notice, byte5) == 5);

static_assert(offsetof(ficon_enable_notice, word0) == 0);
static_assert(offsetof(ficon_enable_notice, byte4) == 4);

uint32_t ficon_parse_vsan_state_change_payload(msgq_message* message, ficon_vsan_state_change* notice) {
  tlv_value sent;
  if (const uint32_t status = find_tlv(message, FICON_TLV_VSAN_STATE_CHANGE, sent); status != 0) return status;
  if (notice == nullptr) return 0;
  notice->word0 = load<uint32_t>(sent.bytes, offsetof(ficon_vsan_state_change, word0));
  notice->word1 = load<uint32_t>(sent.bytes, offsetof(ficon_vsan_state_change, word1));
  return 0;
}

uint32_t ficon_parse_updown_payload(msgq_message* message, ficon_updown_notice* notice) {
  tlv_value sent;
  if (const uint32_t status = find_tlv(message, FICON_TLV_UPDOWN, sent); status != 0) return status;
  if (notice == nullptr) return 0;
  notice->word0 = load<uint32_t>(sent.bytes, offsetof(ficon_updown_notice, word0));
  notice->byte4 = load<uint8_t>(sent.bytes, offsetof(ficon_updown_notice, byte4));
  notice->byte5 = load<uint8_t>(sent.bytes, offsetof(ficon_updown_notice, byte5));
  return 0;
}

uint32_t ficon_parse_enable_payload(msgq_message* message, ficon_enable_notice* notice) {
  tlv_value sent;
  if (const uint32_t status = find_tlv(message, FICON_TLV_ENABLE, sent); status != 0) return status;
  if (notice == nullptr) return 0;
  notice->word0 = load<uint32_t>(sent.bytes, offsetof(ficon_enable_notice, word0));
  notice->byte4 = load<uint8_t>(sent.bytes, offsetof(ficon_enable_notice, byte4));
  return 0;
}
