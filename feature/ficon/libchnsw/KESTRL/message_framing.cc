#include "message_framing.h"

#include <platform/if_index.h>

static_assert(sizeof(msgq_addr) == 8);
static_assert(offsetof(msgq_addr, node) == 0);
static_assert(offsetof(msgq_addr, service_point) == 4);

static_assert(sizeof(ficon_cmi_hdr) == 112);
static_assert(offsetof(ficon_cmi_hdr, code) == 0);
static_assert(offsetof(ficon_cmi_hdr, kind) == 4);
static_assert(offsetof(ficon_cmi_hdr, reserved) == 8);
static_assert(offsetof(ficon_cmi_hdr, text1) == 12);
static_assert(offsetof(ficon_cmi_hdr, text2) == 52);

namespace {

constexpr msgq_addr FICON_MGR_ADDR = {FICON_MGR_NODE, FICON_MGR_SERVICE_POINT};

// A text that fills its field has no NUL there: all 40 or 60 bytes are the manager's to read.
template <size_t bound>
void store_text(char (&field)[bound], const char* text) {
  if (text == nullptr) return;
  const size_t length = strnlen(text, bound);
  std::memcpy(field, text, length);
  std::memset(field + length, 0, bound - length);
}

} // namespace

void chnsw::hand_over_if_index(uint32_t* output, const void* record, size_t offset) {
  if (output != nullptr) *output = ntoh_if_index(load<uint32_t>(record, offset));
}

int32_t chnsw::send_to_manager(msgq* handle, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg) {
  const msgq_addr manager = FICON_MGR_ADDR;
  return msgq_send(handle, &manager, opcode, payload, length, send_arg, nullptr, 0);
}

int32_t chnsw::request_of_manager(msgq* handle, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg) {
  const int32_t result = send_to_manager(handle, opcode, payload, length, send_arg);
  return result == -1 ? msgq_errno_get(handle) : result;
}

// Oddity: what tlv_aligned_array_get_next_tlv returns is not looked at; a value that it does not store is of no type.
uint32_t chnsw::find_tlv(msgq_message* message, uint16_t type, tlv_value& found) {
  if (message == nullptr) return FICON_RC_INVALID_ARG;
  const void* payload = msgq_payload_get(message);
  if (payload == nullptr) return FICON_RC_NO_PAYLOAD;

  const int count = tlv_aligned_array_get_num_tlvs(payload, 1);
  uint16_t found_type = 0;
  uint32_t cursor = 0;
  found = {nullptr, 0};
  for (int n = 0; n < count; ++n) {
    tlv_aligned_array_get_next_tlv(payload, &found_type, &found.length, &found.bytes, 1, &cursor);
    if (found_type == type) return 0;
  }
  return FICON_RC_INVALID_ARG;
}

void ficon_init_cmi_hdr(ficon_cmi_hdr* header, uint32_t code, const char* text1, const char* text2, uint32_t kind) {
  if (header == nullptr) return;
  header->code = code;
  store_text(header->text1, text1);
  store_text(header->text2, text2);
  header->kind = kind;
}
