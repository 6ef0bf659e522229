// The library's messages. Those that it only parses are written here as the manager writes them, and never measured.
#include <platform/tlv_aligned_array.h>

#include <cstddef>
#include <cstring>

#include "message_forms.h"
#include "quiet_transport.h"

namespace {

using bench::fields;

void send_as_manager(const void* payload, uint32_t size) {
  msgq_send(bench::open_end(), nullptr, 0, payload, size, 0, nullptr, 0);
}

void send_as_tlv(uint16_t type, const void* value, uint16_t size) {
  alignas(uint32_t) char array[1024] = {};
  tlv_aligned_array_add_tlv(array, sizeof array, type, size, value, 1);
  send_as_manager(array, tlv_aligned_array_size_get(array, 1));
}

void build_port_map_request(const fields& given) {
  ficon_send_get_portmap_nonblock(bench::open_end(), given.text1, given.text2, given.code, given.byte_a, given.if_index,
                                  given.number_a, given.number_b, 0);
}
void build_port_map_answer(const fields& given) {
  ficon_portmap_req record = {};
  record.if_index = given.if_index;
  record.result = given.result;
  record.number_a = given.number_a;
  record.number_b = given.number_b;
  send_as_tlv(FICON_TLV_PORTMAP, &record, sizeof record);
}
void parse_port_map(msgq_message* message, fields& found) {
  found.result = ficon_parse_get_portmap(message, &found.if_index, &found.number_a, &found.number_b);
}

void build_enabled_vsans(const fields& given) {
  send_as_tlv(FICON_TLV_ENABLED_VSANS, &given.vsans, sizeof given.vsans);
}
void parse_enabled_vsans(msgq_message* message, fields& found) {
  ficon_parse_get_enabled_vsans(message, &found.list);
}

void build_if_vsan_query(const fields& given) {
  const ficon_ifvsan_query query = {0, 0, given.word_a, given.if_index, given.word_b};
  ficon_send_query_ifvsan_state(bench::open_end(), &query, 0);
}
void build_if_vsan_answer(const fields& given) {
  const ficon_ifvsan_query answer = {given.result, given.state, given.word_a, given.if_index, given.word_b};
  send_as_manager(&answer, sizeof answer);
}
void parse_if_vsan(msgq_message* message, fields& found) {
  ficon_ifvsan_query answer;
  found.result = ficon_parse_query_ifvsan(message, &answer);
  found.state = answer.state;
  found.word_a = answer.arg_a;
  found.if_index = answer.if_index;
  found.word_b = answer.arg_b;
}

void build_rnid_request(const fields& given) {
  ficon_send_get_rnid_nonblock(bench::open_end(), given.if_index, given.number_a, given.word_a, given.format, given.word_b,
                               0);
}
void build_rnid_answer(const fields& given) {
  ficon_rnid_rec record = {given.if_index, given.number_a, FICON_RNID_SIZE,
                           given.word_a,   given.codepage, given.format,
                           given.result,   given.word_b,   {}};
  std::memcpy(record.descriptor, given.node, sizeof record.descriptor);
  send_as_tlv(FICON_TLV_RNID, &record, sizeof record);
}
void parse_rnid(msgq_message* message, fields& found) {
  found.result = ficon_parse_get_rnid(message, &found.if_index, &found.number_a, &found.word_a, &found.codepage,
                                      &found.format, &found.word_b, found.node);
}

void build_vsan_install(const fields& given) {
  ficon_send_vsan_install(bench::open_end(), given.count, given.if_indexes, given.byte_a, 0, 0, &given.vsans);
}
void parse_vsan_install(msgq_message* message, fields& found) {
  uint32_t install_byte0;
  int32_t single_vsan;
  int32_t vsan;
  ficon_parse_vsan_install(message, &found.count, &found.if_indexes, &install_byte0, &single_vsan, &vsan, &found.vsans);
  found.byte_a = static_cast<uint8_t>(install_byte0);
}

void build_swap_request(const fields& given) {
  const ficon_if_swap_req request = {given.word_a, given.if_index, given.if_index_b, {}};
  send_as_manager(&request, offsetof(ficon_if_swap_req, vsans));
}
void build_swap_request_with_vsans(const fields& given) {
  const ficon_if_swap_req request = {given.word_a, given.if_index, given.if_index_b, given.vsans};
  send_as_manager(&request, sizeof request);
}
void parse_swap_request(msgq_message* message, fields& found) {
  ficon_if_swap_chk_lock_parse(message, &found.word_a, &found.if_index, &found.if_index_b);
}
void parse_swap_request_with_vsans(msgq_message* message, fields& found) {
  ficon_if_swap_chk_lock_parse_with_vsan(message, &found.word_a, &found.if_index, &found.if_index_b, &found.vsans);
}
void build_swap_response(const fields& given) {
  ficon_if_swap_chk_lock_send_resp(bench::open_end(), nullptr, given.word_a, given.if_index, given.if_index_b,
                                   given.result);
}
void parse_swap_response(msgq_message* message, fields& found) {
  ficon_if_swap_resp response;
  std::memcpy(&response, message->payload, sizeof response);
  found.result = response.swap_status;
  found.word_a = response.swap_word4;
  found.if_index = response.if_index_a;
  found.if_index_b = response.if_index_b;
}

void build_vsan_state_change(const fields& given) {
  const ficon_vsan_state_change notice = {given.if_index, given.word_a};
  send_as_tlv(FICON_TLV_VSAN_STATE_CHANGE, &notice, 8);
}
void parse_vsan_state_change(msgq_message* message, fields& found) {
  ficon_vsan_state_change notice;
  ficon_parse_vsan_state_change_payload(message, &notice);
  found.if_index = notice.word0;
  found.word_a = notice.word1;
}
void build_updown_notice(const fields& given) {
  const ficon_updown_notice notice = {given.if_index, given.byte_a, given.byte_b};
  send_as_tlv(FICON_TLV_UPDOWN, &notice, 6);
}
void parse_updown_notice(msgq_message* message, fields& found) {
  ficon_updown_notice notice;
  ficon_parse_updown_payload(message, &notice);
  found.if_index = notice.word0;
  found.byte_a = notice.byte4;
  found.byte_b = notice.byte5;
}
void build_enable_notice(const fields& given) {
  const ficon_enable_notice notice = {given.if_index, given.byte_a};
  send_as_tlv(FICON_TLV_ENABLE, &notice, 5);
}
void parse_enable_notice(msgq_message* message, fields& found) {
  ficon_enable_notice notice;
  ficon_parse_enable_payload(message, &notice);
  found.if_index = notice.word0;
  found.byte_a = notice.byte4;
}

} // namespace

const bench::message_forms bench::kLibraryForms = {
    {build_port_map_request, parse_port_map},
    {build_port_map_answer, parse_port_map},
    {build_enabled_vsans, parse_enabled_vsans},
    {build_if_vsan_query, parse_if_vsan},
    {build_if_vsan_answer, parse_if_vsan},
    {build_rnid_request, parse_rnid},
    {build_rnid_answer, parse_rnid},
    {build_vsan_install, parse_vsan_install},
    {build_swap_request, parse_swap_request},
    {build_swap_request_with_vsans, parse_swap_request_with_vsans},
    {build_swap_response, parse_swap_response},
    {build_vsan_state_change, parse_vsan_state_change},
    {build_updown_notice, parse_updown_notice},
    {build_enable_notice, parse_enable_notice},
};
