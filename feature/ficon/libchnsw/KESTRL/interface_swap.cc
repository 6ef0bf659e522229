// The handshake by which the manager swaps two interfaces. Its three steps differ by their names alone.
#include <platform/if_index.h>

#include "message_framing.h"

using namespace chnsw;

static_assert(sizeof(ficon_if_swap_req) == 528);
static_assert(offsetof(ficon_if_swap_req, swap_word0) == 0);
static_assert(offsetof(ficon_if_swap_req, if_index_a) == 4);
static_assert(offsetof(ficon_if_swap_req, if_index_b) == 8);
static_assert(offsetof(ficon_if_swap_req, vsans) == 12);

static_assert(sizeof(ficon_if_swap_resp) == 536);
static_assert(offsetof(ficon_if_swap_resp, swap_status) == 0);
static_assert(offsetof(ficon_if_swap_resp, swap_word4) == 4);
static_assert(offsetof(ficon_if_swap_resp, if_index_a) == 8);
static_assert(offsetof(ficon_if_swap_resp, if_index_b) == 12);
static_assert(offsetof(ficon_if_swap_resp, zero) == 16);

namespace {

constexpr msgq_addr FICON_REPLY_ADDR = {FICON_REPLY_NODE, 0};

// Oddity: the payload is asked for once an output, and it is not tested: only the manager sends these.
void parse_request(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a, uint32_t* if_index_b,
                   vsan_block* vsans) {
  if (swap_word0 != nullptr) {
    *swap_word0 = load<uint32_t>(msgq_payload_get(message), offsetof(ficon_if_swap_req, swap_word0));
  }
  if (if_index_a != nullptr) {
    hand_over_if_index(if_index_a, msgq_payload_get(message), offsetof(ficon_if_swap_req, if_index_a));
  }
  if (if_index_b != nullptr) {
    hand_over_if_index(if_index_b, msgq_payload_get(message), offsetof(ficon_if_swap_req, if_index_b));
  }
  if (vsans != nullptr) {
    const auto* request = static_cast<const char*>(msgq_payload_get(message));
    std::memcpy(vsans, request + offsetof(ficon_if_swap_req, vsans), sizeof *vsans);
  }
}

// Oddity: whether it was sent is not told.
void respond(msgq* handle, msgq_message* request, const ficon_if_swap_resp* response) {
  msgq_send(handle, &FICON_REPLY_ADDR, FICON_OP_REPLY, response, sizeof *response, 0, request, 0);
}

} // namespace

// ---- Check and lock ----

uint32_t ficon_if_swap_chk_lock_parse_with_vsan(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                                uint32_t* if_index_b, vsan_block* vsans) {
  parse_request(message, swap_word0, if_index_a, if_index_b, vsans);
  return 0;
}

uint32_t ficon_if_swap_chk_lock_parse(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                      uint32_t* if_index_b) {
  parse_request(message, swap_word0, if_index_a, if_index_b, nullptr);
  return 0;
}

uint32_t ficon_if_swap_chk_lock_send_resp(msgq* handle, msgq_message* request, uint32_t swap_word4, uint32_t if_index_a,
                                          uint32_t if_index_b, uint32_t swap_status) {
  ficon_if_swap_resp response = {};
  response.swap_status = swap_status;
  response.swap_word4 = swap_word4;
  response.if_index_a = hton_if_index(if_index_a);
  response.if_index_b = hton_if_index(if_index_b);
  respond(handle, request, &response);
  return 0;
}

uint32_t ficon_if_swap_chk_lock_send_resp_with_reasoncode(msgq* handle, msgq_message* request,
                                                          const ficon_if_swap_resp* response) {
  respond(handle, request, response);
  return 0;
}

// ---- Do swap ----

uint32_t ficon_if_swap_do_swap_parse_with_vsan(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                               uint32_t* if_index_b, vsan_block* vsans) {
  parse_request(message, swap_word0, if_index_a, if_index_b, vsans);
  return 0;
}

uint32_t ficon_if_swap_do_swap_parse(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                     uint32_t* if_index_b) {
  parse_request(message, swap_word0, if_index_a, if_index_b, nullptr);
  return 0;
}

uint32_t ficon_if_swap_do_swap_send_resp(msgq* handle, msgq_message* request, uint32_t swap_word4, uint32_t if_index_a,
                                         uint32_t if_index_b, uint32_t swap_status) {
  return ficon_if_swap_chk_lock_send_resp(handle, request, swap_word4, if_index_a, if_index_b, swap_status);
}

// ---- Unlock ----

uint32_t ficon_if_swap_unlock_parse_with_vsan(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                              uint32_t* if_index_b, vsan_block* vsans) {
  parse_request(message, swap_word0, if_index_a, if_index_b, vsans);
  return 0;
}

uint32_t ficon_if_swap_unlock_parse(msgq_message* message, uint32_t* swap_word0, uint32_t* if_index_a,
                                    uint32_t* if_index_b) {
  parse_request(message, swap_word0, if_index_a, if_index_b, nullptr);
  return 0;
}

uint32_t ficon_if_swap_unlock_send_resp(msgq* handle, msgq_message* request, uint32_t swap_word4, uint32_t if_index_a,
                                        uint32_t if_index_b, uint32_t swap_status) {
  return ficon_if_swap_chk_lock_send_resp(handle, request, swap_word4, if_index_a, if_index_b, swap_status);
}
