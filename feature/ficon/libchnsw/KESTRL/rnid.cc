// RNID: node descriptors of the devices behind interfaces, asked for and announced.
#include <platform/char_convert.h>
#include <platform/if_index.h>

#include "message_framing.h"

using namespace chnsw;

static_assert(sizeof(ficon_rnid_rec) == 60);
static_assert(offsetof(ficon_rnid_rec, if_index) == 0);
static_assert(offsetof(ficon_rnid_rec, rnid_port) == 4);
static_assert(offsetof(ficon_rnid_rec, rnid_size) == 6);
static_assert(offsetof(ficon_rnid_rec, rnid_word8) == 8);
static_assert(offsetof(ficon_rnid_rec, codepage) == 12);
static_assert(offsetof(ficon_rnid_rec, rnid_format) == 16);
static_assert(offsetof(ficon_rnid_rec, result) == 20);
static_assert(offsetof(ficon_rnid_rec, rnid_word24) == 24);
static_assert(offsetof(ficon_rnid_rec, descriptor) == 28);

static_assert(sizeof(ficon_node_descriptor) == FICON_RNID_DESCRIPTOR_BYTES);
static_assert(offsetof(ficon_node_descriptor, flags) == 0);
static_assert(offsetof(ficon_node_descriptor, type) == 4);
static_assert(offsetof(ficon_node_descriptor, model) == 10);
static_assert(offsetof(ficon_node_descriptor, manufacturer) == 13);
static_assert(offsetof(ficon_node_descriptor, plant) == 16);
static_assert(offsetof(ficon_node_descriptor, sequence) == 18);
static_assert(offsetof(ficon_node_descriptor, tag) == 30);

namespace {

constexpr uint32_t kRnidArrayBytes = 100;

template <size_t length>
uint32_t convert_text(uint32_t codepage, char (&text)[length]) {
  return convert_codepage(CHAR_CONVERT_FROM_HOST, codepage, text, length);
}

} // namespace

int32_t ficon_send_get_rnid_nonblock(msgq* handle, uint32_t if_index, uint16_t rnid_port, uint32_t rnid_word8,
                                     uint32_t rnid_format, uint32_t rnid_word24, uintptr_t send_arg) {
  if (handle == nullptr) return FICON_RC_INVALID_ARG;

  ficon_rnid_rec request = {};
  request.if_index = hton_if_index(if_index);
  request.rnid_port = rnid_port;
  request.rnid_size = FICON_RNID_SIZE;
  request.rnid_word8 = rnid_word8;
  request.rnid_format = rnid_format;
  request.rnid_word24 = rnid_word24;
  return request_of_manager_as_tlv<kRnidArrayBytes>(handle, FICON_OP_GET_RNID, FICON_TLV_RNID, request, send_arg);
}

uint32_t ficon_parse_get_rnid(msgq_message* message, uint32_t* if_index, uint16_t* rnid_port, uint32_t* rnid_word8,
                              uint32_t* codepage, uint32_t* rnid_format, uint32_t* rnid_word24, void* descriptor) {
  tlv_value answer;
  if (const uint32_t status = find_tlv(message, FICON_TLV_RNID, answer); status != 0) return status;
  const auto field = [&answer](size_t offset) { return load<uint32_t>(answer.bytes, offset); };

  hand_over_if_index(if_index, answer.bytes, offsetof(ficon_rnid_rec, if_index));
  hand_over(rnid_port, answer.bytes, offsetof(ficon_rnid_rec, rnid_port));
  hand_over(rnid_word24, answer.bytes, offsetof(ficon_rnid_rec, rnid_word24));
  if (descriptor != nullptr) {
    const auto* sent = static_cast<const char*>(answer.bytes) + offsetof(ficon_rnid_rec, descriptor);
    std::memcpy(descriptor, sent, FICON_RNID_DESCRIPTOR_BYTES);
  }
  hand_over(rnid_word8, answer.bytes, offsetof(ficon_rnid_rec, rnid_word8));
  hand_over(rnid_format, answer.bytes, offsetof(ficon_rnid_rec, rnid_format));
  hand_over(codepage, answer.bytes, offsetof(ficon_rnid_rec, codepage));

  // Whether it could be converted is not told: a text that could not stays in the host's code page.
  if (field(offsetof(ficon_rnid_rec, rnid_format)) == FICON_RNID_FORMAT_CONVERTED && descriptor != nullptr) {
    ficon_format_rnid(field(offsetof(ficon_rnid_rec, codepage)), descriptor);
  }
  return field(offsetof(ficon_rnid_rec, result));
}

uint32_t ficon_parse_rnid_notification(msgq_message* message, uint32_t* if_index, uint16_t* rnid_port, uint32_t* rnid_word8,
                                       uint32_t* rnid_format, uint32_t* rnid_word24, void* descriptor) {
  return ficon_parse_get_rnid(message, if_index, rnid_port, rnid_word8, nullptr, rnid_format, rnid_word24, descriptor);
}

uint32_t ficon_format_rnid(uint32_t codepage, void* descriptor) {
  auto* node = static_cast<ficon_node_descriptor*>(descriptor); // bytes only, so any address will do
  convert_text(codepage, node->type);
  convert_text(codepage, node->model);
  convert_text(codepage, node->manufacturer);
  convert_text(codepage, node->plant);
  return convert_text(codepage, node->sequence);
}
