// Questions to the manager: the port map entry of an interface, the enabled VSANs, the state of an interface in a VSAN.
#include <platform/if_index.h>

#include "message_framing.h"
#include "report.h"

using namespace chnsw;

static_assert(sizeof(ficon_portmap_req) == 130);
static_assert(offsetof(ficon_portmap_req, header) == 0);
static_assert(offsetof(ficon_portmap_req, if_index) == 112);
static_assert(offsetof(ficon_portmap_req, result) == 116);
static_assert(offsetof(ficon_portmap_req, number_a) == 120);
static_assert(offsetof(ficon_portmap_req, number_b) == 122);
static_assert(offsetof(ficon_portmap_req, selector) == 124);
static_assert(offsetof(ficon_portmap_req, zero) == 125);

static_assert(sizeof(ficon_ifvsan_query) == 20);
static_assert(offsetof(ficon_ifvsan_query, result) == 0);
static_assert(offsetof(ficon_ifvsan_query, state) == 4);
static_assert(offsetof(ficon_ifvsan_query, arg_a) == 8);
static_assert(offsetof(ficon_ifvsan_query, if_index) == 12);
static_assert(offsetof(ficon_ifvsan_query, arg_b) == 16);

namespace {

constexpr int kVsanListLine = 4039;
constexpr uint32_t kPortmapArrayBytes = 500;

} // namespace

// ---- Port map entry of an interface ----

int32_t ficon_send_get_portmap_nonblock(msgq* handle, const char* text1, const char* text2, uint32_t code, uint8_t selector,
                                        uint32_t if_index, uint16_t number_a, uint16_t number_b, uintptr_t send_arg) {
  if (handle == nullptr) return FICON_RC_INVALID_ARG;

  ficon_portmap_req request = {};
  ficon_init_cmi_hdr(&request.header, code, text1, text2, FICON_CMI_KIND_PORTMAP);
  request.if_index = hton_if_index(if_index);
  request.number_a = number_a;
  request.number_b = number_b;
  request.selector = selector;
  return request_of_manager_as_tlv<kPortmapArrayBytes>(handle, FICON_OP_GET_PORTMAP, FICON_TLV_PORTMAP, request, send_arg);
}

uint32_t ficon_parse_get_portmap(msgq_message* message, uint32_t* if_index, uint16_t* number_a, uint16_t* number_b) {
  tlv_value answer;
  if (const uint32_t status = find_tlv(message, FICON_TLV_PORTMAP, answer); status != 0) return status;

  hand_over_if_index(if_index, answer.bytes, offsetof(ficon_portmap_req, if_index));
  hand_over(number_a, answer.bytes, offsetof(ficon_portmap_req, number_a));
  hand_over(number_b, answer.bytes, offsetof(ficon_portmap_req, number_b));
  return load<uint32_t>(answer.bytes, offsetof(ficon_portmap_req, result));
}

// ---- Enabled VSANs ----

// Oddity: the handle is not tested; clients without one get the transport's error.
int32_t ficon_send_get_enabled_vsans(msgq* handle, uintptr_t send_arg) {
  return request_of_manager(handle, FICON_OP_GET_ENABLED_VSANS, nullptr, 0, send_arg);
}

uint32_t ficon_parse_get_enabled_vsans(msgq_message* message, void** list) {
  tlv_value answer;
  if (const uint32_t status = find_tlv(message, FICON_TLV_ENABLED_VSANS, answer); status != 0) return status;
  if (list == nullptr) return 0;

  void* copy = allocate_tracked(LIBCHNSW_MEM_vsanlist, answer.length, kVsanListLine);
  if (copy == nullptr) return FICON_RC_NO_MEMORY;
  if (answer.length != 0) std::memcpy(copy, answer.bytes, answer.length);
  *list = copy;
  return 0;
}

// ---- State of an interface in a VSAN ----

// Oddity: the handle is not tested, and the index goes out through ntoh_if_index, as the manager expects it here.
int32_t ficon_send_query_ifvsan_state(msgq* handle, const ficon_ifvsan_query* query, uintptr_t send_arg) {
  if (query == nullptr) return FICON_RC_INVALID_ARG;

  ficon_ifvsan_query request = {};
  request.arg_a = query->arg_a;
  request.if_index = ntoh_if_index(query->if_index);
  request.arg_b = query->arg_b;
  return request_of_manager(handle, FICON_OP_QUERY_IFVSAN_STATE, &request, sizeof request, send_arg);
}

uint32_t ficon_parse_query_ifvsan(msgq_message* message, ficon_ifvsan_query* query) {
  if (query == nullptr || message == nullptr) return FICON_RC_INVALID_ARG;
  const void* answer = msgq_payload_get(message);
  if (answer == nullptr) return FICON_RC_NO_PAYLOAD;
  if (msgq_payload_size(message) < sizeof *query) return FICON_RC_INVALID_ARG;

  query->arg_b = load<uint32_t>(answer, offsetof(ficon_ifvsan_query, arg_b));
  query->if_index = ntoh_if_index(load<uint32_t>(answer, offsetof(ficon_ifvsan_query, if_index)));
  query->arg_a = load<uint32_t>(answer, offsetof(ficon_ifvsan_query, arg_a));
  query->result = load<uint32_t>(answer, offsetof(ficon_ifvsan_query, result));
  query->state = load<uint32_t>(answer, offsetof(ficon_ifvsan_query, state));
  return query->result;
}
