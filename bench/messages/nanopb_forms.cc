// The same messages by nanopb.
#include <pb_decode.h>
#include <pb_encode.h>

#include <cstring>

#include "manager_messages.pb.h"
#include "message_forms.h"
#include "quiet_transport.h"

namespace {

using bench::fields;

template <typename record>
void send(const record& message, const pb_msgdesc_t* description, uint32_t opcode) {
  pb_byte_t buffer[1024];
  pb_ostream_t stream = pb_ostream_from_buffer(buffer, sizeof buffer);
  pb_encode(&stream, description, &message);
  msgq_send(bench::open_end(), nullptr, opcode, buffer, static_cast<uint32_t>(stream.bytes_written), 0, nullptr, 0);
}

template <typename record>
void receive(msgq_message* message, const pb_msgdesc_t* description, record& parsed) {
  pb_istream_t stream =
      pb_istream_from_buffer(static_cast<const pb_byte_t*>(msgq_payload_get(message)), msgq_payload_size(message));
  pb_decode(&stream, description, &parsed);
}

template <typename bytes>
void set_text(bytes& field, const char* text) {
  field.size = static_cast<pb_size_t>(std::strlen(text));
  std::memcpy(field.bytes, text, field.size);
}

void build_port_map_request(const fields& given) {
  bench_pb_PortMapRequest message;
  message.code = given.code;
  message.kind = FICON_CMI_KIND_PORTMAP;
  set_text(message.text1, given.text1);
  set_text(message.text2, given.text2);
  message.if_index = given.if_index;
  message.number_a = given.number_a;
  message.number_b = given.number_b;
  message.selector = given.byte_a;
  send(message, bench_pb_PortMapRequest_fields, FICON_OP_GET_PORTMAP);
}
void parse_port_map_request(msgq_message* message, fields& found) {
  bench_pb_PortMapRequest request;
  receive(message, bench_pb_PortMapRequest_fields, request);
  found.if_index = request.if_index;
  found.number_a = static_cast<uint16_t>(request.number_a);
  found.number_b = static_cast<uint16_t>(request.number_b);
}
void build_port_map_answer(const fields& given) {
  const bench_pb_PortMapAnswer message = {given.if_index, given.result, given.number_a, given.number_b};
  send(message, bench_pb_PortMapAnswer_fields, 0);
}
void parse_port_map_answer(msgq_message* message, fields& found) {
  bench_pb_PortMapAnswer answer;
  receive(message, bench_pb_PortMapAnswer_fields, answer);
  found.if_index = answer.if_index;
  found.result = answer.result;
  found.number_a = static_cast<uint16_t>(answer.number_a);
  found.number_b = static_cast<uint16_t>(answer.number_b);
}

void build_enabled_vsans(const fields& given) {
  bench_pb_EnabledVsansAnswer message;
  message.list.size = sizeof given.vsans;
  std::memcpy(message.list.bytes, &given.vsans, sizeof given.vsans);
  send(message, bench_pb_EnabledVsansAnswer_fields, 0);
}
void parse_enabled_vsans(msgq_message* message, fields& found) {
  bench_pb_EnabledVsansAnswer answer;
  receive(message, bench_pb_EnabledVsansAnswer_fields, answer);
  found.list = bench::copy_of(answer.list.bytes, answer.list.size);
}

void build_if_vsan_query(const fields& given) {
  const bench_pb_IfVsanQuery message = {given.word_a, given.if_index, given.word_b};
  send(message, bench_pb_IfVsanQuery_fields, FICON_OP_QUERY_IFVSAN_STATE);
}
void parse_if_vsan_query(msgq_message* message, fields& found) {
  bench_pb_IfVsanQuery query;
  receive(message, bench_pb_IfVsanQuery_fields, query);
  found.word_a = query.arg_a;
  found.if_index = query.if_index;
  found.word_b = query.arg_b;
}
void build_if_vsan_answer(const fields& given) {
  const bench_pb_IfVsanAnswer message = {given.result, given.state, given.word_a, given.if_index, given.word_b};
  send(message, bench_pb_IfVsanAnswer_fields, 0);
}
void parse_if_vsan_answer(msgq_message* message, fields& found) {
  bench_pb_IfVsanAnswer answer;
  receive(message, bench_pb_IfVsanAnswer_fields, answer);
  found.result = answer.result;
  found.state = answer.state;
  found.word_a = answer.arg_a;
  found.if_index = answer.if_index;
  found.word_b = answer.arg_b;
}

void build_rnid_request(const fields& given) {
  const bench_pb_RnidRequest message = {given.if_index, given.number_a, FICON_RNID_SIZE,
                                        given.word_a,   given.format,   given.word_b};
  send(message, bench_pb_RnidRequest_fields, FICON_OP_GET_RNID);
}
void parse_rnid_request(msgq_message* message, fields& found) {
  bench_pb_RnidRequest request;
  receive(message, bench_pb_RnidRequest_fields, request);
  found.if_index = request.if_index;
  found.number_a = static_cast<uint16_t>(request.rnid_port);
  found.word_a = request.rnid_word8;
  found.format = request.rnid_format;
  found.word_b = request.rnid_word24;
}
void build_rnid_answer(const fields& given) {
  bench_pb_RnidAnswer message = {given.if_index, given.number_a, given.word_a, given.codepage,
                                 given.format,   given.result,   given.word_b, {}};
  std::memcpy(message.node, given.node, sizeof given.node);
  send(message, bench_pb_RnidAnswer_fields, 0);
}
void parse_rnid_answer(msgq_message* message, fields& found) {
  bench_pb_RnidAnswer answer;
  receive(message, bench_pb_RnidAnswer_fields, answer);
  found.if_index = answer.if_index;
  found.number_a = static_cast<uint16_t>(answer.rnid_port);
  found.word_a = answer.rnid_word8;
  found.codepage = answer.codepage;
  found.format = answer.rnid_format;
  found.result = answer.result;
  found.word_b = answer.rnid_word24;
  std::memcpy(found.node, answer.node, sizeof found.node);
}

void build_vsan_install(const fields& given) {
  bench_pb_VsanInstall message;
  message.install_byte0 = given.byte_a;
  std::memcpy(message.vsans, &given.vsans, sizeof given.vsans);
  message.if_indexes_count = static_cast<pb_size_t>(given.count);
  std::memcpy(message.if_indexes, given.if_indexes, given.count * sizeof(uint32_t));
  send(message, bench_pb_VsanInstall_fields, FICON_OP_VSAN_INSTALL);
}
void parse_vsan_install(msgq_message* message, fields& found) {
  bench_pb_VsanInstall install;
  receive(message, bench_pb_VsanInstall_fields, install);
  found.byte_a = static_cast<uint8_t>(install.install_byte0);
  std::memcpy(&found.vsans, install.vsans, sizeof found.vsans);
  found.count = install.if_indexes_count;
  found.if_indexes =
      static_cast<uint32_t*>(bench::copy_of(install.if_indexes, found.count * static_cast<uint32_t>(sizeof(uint32_t))));
}

void build_swap_request(const fields& given) {
  const bench_pb_SwapRequest message = {given.word_a, given.if_index, given.if_index_b};
  send(message, bench_pb_SwapRequest_fields, 0);
}
void parse_swap_request(msgq_message* message, fields& found) {
  bench_pb_SwapRequest request;
  receive(message, bench_pb_SwapRequest_fields, request);
  found.word_a = request.swap_word0;
  found.if_index = request.if_index_a;
  found.if_index_b = request.if_index_b;
}
void build_swap_request_with_vsans(const fields& given) {
  bench_pb_SwapRequestWithVsans message = {given.word_a, given.if_index, given.if_index_b, {}};
  std::memcpy(message.vsans, &given.vsans, sizeof given.vsans);
  send(message, bench_pb_SwapRequestWithVsans_fields, 0);
}
void parse_swap_request_with_vsans(msgq_message* message, fields& found) {
  bench_pb_SwapRequestWithVsans request;
  receive(message, bench_pb_SwapRequestWithVsans_fields, request);
  found.word_a = request.swap_word0;
  found.if_index = request.if_index_a;
  found.if_index_b = request.if_index_b;
  std::memcpy(&found.vsans, request.vsans, sizeof found.vsans);
}
void build_swap_response(const fields& given) {
  const bench_pb_SwapResponse message = {given.result, given.word_a, given.if_index, given.if_index_b};
  send(message, bench_pb_SwapResponse_fields, 0);
}
void parse_swap_response(msgq_message* message, fields& found) {
  bench_pb_SwapResponse response;
  receive(message, bench_pb_SwapResponse_fields, response);
  found.result = response.swap_status;
  found.word_a = response.swap_word4;
  found.if_index = response.if_index_a;
  found.if_index_b = response.if_index_b;
}

void build_vsan_state_change(const fields& given) {
  const bench_pb_VsanStateChange message = {given.if_index, given.word_a};
  send(message, bench_pb_VsanStateChange_fields, 0);
}
void parse_vsan_state_change(msgq_message* message, fields& found) {
  bench_pb_VsanStateChange notice;
  receive(message, bench_pb_VsanStateChange_fields, notice);
  found.if_index = notice.word0;
  found.word_a = notice.word1;
}
void build_updown_notice(const fields& given) {
  const bench_pb_UpdownNotice message = {given.if_index, given.byte_a, given.byte_b};
  send(message, bench_pb_UpdownNotice_fields, 0);
}
void parse_updown_notice(msgq_message* message, fields& found) {
  bench_pb_UpdownNotice notice;
  receive(message, bench_pb_UpdownNotice_fields, notice);
  found.if_index = notice.word0;
  found.byte_a = static_cast<uint8_t>(notice.byte4);
  found.byte_b = static_cast<uint8_t>(notice.byte5);
}
void build_enable_notice(const fields& given) {
  const bench_pb_EnableNotice message = {given.if_index, given.byte_a};
  send(message, bench_pb_EnableNotice_fields, 0);
}
void parse_enable_notice(msgq_message* message, fields& found) {
  bench_pb_EnableNotice notice;
  receive(message, bench_pb_EnableNotice_fields, notice);
  found.if_index = notice.word0;
  found.byte_a = static_cast<uint8_t>(notice.byte4);
}

} // namespace

const bench::message_forms bench::kNanopbForms = {
    {build_port_map_request, parse_port_map_request}, {build_port_map_answer, parse_port_map_answer},
    {build_enabled_vsans, parse_enabled_vsans},       {build_if_vsan_query, parse_if_vsan_query},
    {build_if_vsan_answer, parse_if_vsan_answer},     {build_rnid_request, parse_rnid_request},
    {build_rnid_answer, parse_rnid_answer},           {build_vsan_install, parse_vsan_install},
    {build_swap_request, parse_swap_request},         {build_swap_request_with_vsans, parse_swap_request_with_vsans},
    {build_swap_response, parse_swap_response},       {build_vsan_state_change, parse_vsan_state_change},
    {build_updown_notice, parse_updown_notice},       {build_enable_notice, parse_enable_notice},
};
