// The same messages by protobuf-lite.
#include <cstring>

#include "manager_messages.pb.h"
#include "message_forms.h"
#include "quiet_transport.h"

namespace {

using bench::fields;

template <typename record>
void send(const record& message, uint32_t opcode) {
  char buffer[1024];
  message.SerializeToArray(buffer, sizeof buffer);
  msgq_send(bench::open_end(), nullptr, opcode, buffer, static_cast<uint32_t>(message.GetCachedSize()), 0, nullptr, 0);
}

// Where a message object comes from: made each time, or kept from one time to the next, so that it allocates but once.
template <typename record>
struct fresh {
  record message;
};
template <typename record>
struct kept {
  kept() { message.Clear(); }
  static inline record message;
};

template <typename record, typename object>
const record& receive(msgq_message* message, object& place) {
  place.message.ParseFromArray(msgq_payload_get(message), static_cast<int>(msgq_payload_size(message)));
  return place.message;
}

template <template <typename> typename object>
struct forms {
  static void build_port_map_request(const fields& given) {
    object<bench_pb::PortMapRequest> place;
    auto& message = place.message;
    message.set_code(given.code);
    message.set_kind(FICON_CMI_KIND_PORTMAP);
    message.set_text1(given.text1);
    message.set_text2(given.text2);
    message.set_if_index(given.if_index);
    message.set_number_a(given.number_a);
    message.set_number_b(given.number_b);
    message.set_selector(given.byte_a);
    send(message, FICON_OP_GET_PORTMAP);
  }
  static void parse_port_map_request(msgq_message* message, fields& found) {
    object<bench_pb::PortMapRequest> place;
    const auto& request = receive<bench_pb::PortMapRequest>(message, place);
    found.if_index = request.if_index();
    found.number_a = static_cast<uint16_t>(request.number_a());
    found.number_b = static_cast<uint16_t>(request.number_b());
  }
  static void build_port_map_answer(const fields& given) {
    object<bench_pb::PortMapAnswer> place;
    auto& message = place.message;
    message.set_if_index(given.if_index);
    message.set_result(given.result);
    message.set_number_a(given.number_a);
    message.set_number_b(given.number_b);
    send(message, 0);
  }
  static void parse_port_map_answer(msgq_message* message, fields& found) {
    object<bench_pb::PortMapAnswer> place;
    const auto& answer = receive<bench_pb::PortMapAnswer>(message, place);
    found.if_index = answer.if_index();
    found.result = answer.result();
    found.number_a = static_cast<uint16_t>(answer.number_a());
    found.number_b = static_cast<uint16_t>(answer.number_b());
  }

  static void build_enabled_vsans(const fields& given) {
    object<bench_pb::EnabledVsansAnswer> place;
    auto& message = place.message;
    message.set_list(&given.vsans, sizeof given.vsans);
    send(message, 0);
  }
  static void parse_enabled_vsans(msgq_message* message, fields& found) {
    object<bench_pb::EnabledVsansAnswer> place;
    const std::string& list = receive<bench_pb::EnabledVsansAnswer>(message, place).list();
    found.list = bench::copy_of(list.data(), static_cast<uint32_t>(list.size()));
  }

  static void build_if_vsan_query(const fields& given) {
    object<bench_pb::IfVsanQuery> place;
    auto& message = place.message;
    message.set_arg_a(given.word_a);
    message.set_if_index(given.if_index);
    message.set_arg_b(given.word_b);
    send(message, FICON_OP_QUERY_IFVSAN_STATE);
  }
  static void parse_if_vsan_query(msgq_message* message, fields& found) {
    object<bench_pb::IfVsanQuery> place;
    const auto& query = receive<bench_pb::IfVsanQuery>(message, place);
    found.word_a = query.arg_a();
    found.if_index = query.if_index();
    found.word_b = query.arg_b();
  }
  static void build_if_vsan_answer(const fields& given) {
    object<bench_pb::IfVsanAnswer> place;
    auto& message = place.message;
    message.set_result(given.result);
    message.set_state(given.state);
    message.set_arg_a(given.word_a);
    message.set_if_index(given.if_index);
    message.set_arg_b(given.word_b);
    send(message, 0);
  }
  static void parse_if_vsan_answer(msgq_message* message, fields& found) {
    object<bench_pb::IfVsanAnswer> place;
    const auto& answer = receive<bench_pb::IfVsanAnswer>(message, place);
    found.result = answer.result();
    found.state = answer.state();
    found.word_a = answer.arg_a();
    found.if_index = answer.if_index();
    found.word_b = answer.arg_b();
  }

  static void build_rnid_request(const fields& given) {
    object<bench_pb::RnidRequest> place;
    auto& message = place.message;
    message.set_if_index(given.if_index);
    message.set_rnid_port(given.number_a);
    message.set_rnid_size(FICON_RNID_SIZE);
    message.set_rnid_word8(given.word_a);
    message.set_rnid_format(given.format);
    message.set_rnid_word24(given.word_b);
    send(message, FICON_OP_GET_RNID);
  }
  static void parse_rnid_request(msgq_message* message, fields& found) {
    object<bench_pb::RnidRequest> place;
    const auto& request = receive<bench_pb::RnidRequest>(message, place);
    found.if_index = request.if_index();
    found.number_a = static_cast<uint16_t>(request.rnid_port());
    found.word_a = request.rnid_word8();
    found.format = request.rnid_format();
    found.word_b = request.rnid_word24();
  }
  static void build_rnid_answer(const fields& given) {
    object<bench_pb::RnidAnswer> place;
    auto& message = place.message;
    message.set_if_index(given.if_index);
    message.set_rnid_port(given.number_a);
    message.set_rnid_word8(given.word_a);
    message.set_codepage(given.codepage);
    message.set_rnid_format(given.format);
    message.set_result(given.result);
    message.set_rnid_word24(given.word_b);
    message.set_node(given.node, sizeof given.node);
    send(message, 0);
  }
  static void parse_rnid_answer(msgq_message* message, fields& found) {
    object<bench_pb::RnidAnswer> place;
    const auto& answer = receive<bench_pb::RnidAnswer>(message, place);
    found.if_index = answer.if_index();
    found.number_a = static_cast<uint16_t>(answer.rnid_port());
    found.word_a = answer.rnid_word8();
    found.codepage = answer.codepage();
    found.format = answer.rnid_format();
    found.result = answer.result();
    found.word_b = answer.rnid_word24();
    std::memcpy(found.node, answer.node().data(), sizeof found.node);
  }

  static void build_vsan_install(const fields& given) {
    object<bench_pb::VsanInstall> place;
    auto& message = place.message;
    message.set_install_byte0(given.byte_a);
    message.set_vsans(&given.vsans, sizeof given.vsans);
    message.mutable_if_indexes()->Add(given.if_indexes, given.if_indexes + given.count);
    send(message, FICON_OP_VSAN_INSTALL);
  }
  static void parse_vsan_install(msgq_message* message, fields& found) {
    object<bench_pb::VsanInstall> place;
    const auto& install = receive<bench_pb::VsanInstall>(message, place);
    found.byte_a = static_cast<uint8_t>(install.install_byte0());
    std::memcpy(&found.vsans, install.vsans().data(), sizeof found.vsans);
    found.count = static_cast<uint32_t>(install.if_indexes_size());
    found.if_indexes = static_cast<uint32_t*>(
        bench::copy_of(install.if_indexes().data(), found.count * static_cast<uint32_t>(sizeof(uint32_t))));
  }

  static void build_swap_request(const fields& given) {
    object<bench_pb::SwapRequest> place;
    auto& message = place.message;
    message.set_swap_word0(given.word_a);
    message.set_if_index_a(given.if_index);
    message.set_if_index_b(given.if_index_b);
    send(message, 0);
  }
  static void parse_swap_request(msgq_message* message, fields& found) {
    object<bench_pb::SwapRequest> place;
    const auto& request = receive<bench_pb::SwapRequest>(message, place);
    found.word_a = request.swap_word0();
    found.if_index = request.if_index_a();
    found.if_index_b = request.if_index_b();
  }
  static void build_swap_request_with_vsans(const fields& given) {
    object<bench_pb::SwapRequestWithVsans> place;
    auto& message = place.message;
    message.set_swap_word0(given.word_a);
    message.set_if_index_a(given.if_index);
    message.set_if_index_b(given.if_index_b);
    message.set_vsans(&given.vsans, sizeof given.vsans);
    send(message, 0);
  }
  static void parse_swap_request_with_vsans(msgq_message* message, fields& found) {
    object<bench_pb::SwapRequestWithVsans> place;
    const auto& request = receive<bench_pb::SwapRequestWithVsans>(message, place);
    found.word_a = request.swap_word0();
    found.if_index = request.if_index_a();
    found.if_index_b = request.if_index_b();
    std::memcpy(&found.vsans, request.vsans().data(), sizeof found.vsans);
  }
  static void build_swap_response(const fields& given) {
    object<bench_pb::SwapResponse> place;
    auto& message = place.message;
    message.set_swap_status(given.result);
    message.set_swap_word4(given.word_a);
    message.set_if_index_a(given.if_index);
    message.set_if_index_b(given.if_index_b);
    send(message, 0);
  }
  static void parse_swap_response(msgq_message* message, fields& found) {
    object<bench_pb::SwapResponse> place;
    const auto& response = receive<bench_pb::SwapResponse>(message, place);
    found.result = response.swap_status();
    found.word_a = response.swap_word4();
    found.if_index = response.if_index_a();
    found.if_index_b = response.if_index_b();
  }

  static void build_vsan_state_change(const fields& given) {
    object<bench_pb::VsanStateChange> place;
    auto& message = place.message;
    message.set_word0(given.if_index);
    message.set_word1(given.word_a);
    send(message, 0);
  }
  static void parse_vsan_state_change(msgq_message* message, fields& found) {
    object<bench_pb::VsanStateChange> place;
    const auto& notice = receive<bench_pb::VsanStateChange>(message, place);
    found.if_index = notice.word0();
    found.word_a = notice.word1();
  }
  static void build_updown_notice(const fields& given) {
    object<bench_pb::UpdownNotice> place;
    auto& message = place.message;
    message.set_word0(given.if_index);
    message.set_byte4(given.byte_a);
    message.set_byte5(given.byte_b);
    send(message, 0);
  }
  static void parse_updown_notice(msgq_message* message, fields& found) {
    object<bench_pb::UpdownNotice> place;
    const auto& notice = receive<bench_pb::UpdownNotice>(message, place);
    found.if_index = notice.word0();
    found.byte_a = static_cast<uint8_t>(notice.byte4());
    found.byte_b = static_cast<uint8_t>(notice.byte5());
  }
  static void build_enable_notice(const fields& given) {
    object<bench_pb::EnableNotice> place;
    auto& message = place.message;
    message.set_word0(given.if_index);
    message.set_byte4(given.byte_a);
    send(message, 0);
  }
  static void parse_enable_notice(msgq_message* message, fields& found) {
    object<bench_pb::EnableNotice> place;
    const auto& notice = receive<bench_pb::EnableNotice>(message, place);
    found.if_index = notice.word0();
    found.byte_a = static_cast<uint8_t>(notice.byte4());
  }
};

} // namespace

const bench::message_forms bench::kProtobufForms = {
    {forms<fresh>::build_port_map_request, forms<fresh>::parse_port_map_request},
    {forms<fresh>::build_port_map_answer, forms<fresh>::parse_port_map_answer},
    {forms<fresh>::build_enabled_vsans, forms<fresh>::parse_enabled_vsans},
    {forms<fresh>::build_if_vsan_query, forms<fresh>::parse_if_vsan_query},
    {forms<fresh>::build_if_vsan_answer, forms<fresh>::parse_if_vsan_answer},
    {forms<fresh>::build_rnid_request, forms<fresh>::parse_rnid_request},
    {forms<fresh>::build_rnid_answer, forms<fresh>::parse_rnid_answer},
    {forms<fresh>::build_vsan_install, forms<fresh>::parse_vsan_install},
    {forms<fresh>::build_swap_request, forms<fresh>::parse_swap_request},
    {forms<fresh>::build_swap_request_with_vsans, forms<fresh>::parse_swap_request_with_vsans},
    {forms<fresh>::build_swap_response, forms<fresh>::parse_swap_response},
    {forms<fresh>::build_vsan_state_change, forms<fresh>::parse_vsan_state_change},
    {forms<fresh>::build_updown_notice, forms<fresh>::parse_updown_notice},
    {forms<fresh>::build_enable_notice, forms<fresh>::parse_enable_notice},
};

const bench::message_forms bench::kKeptProtobufForms = {
    {forms<kept>::build_port_map_request, forms<kept>::parse_port_map_request},
    {forms<kept>::build_port_map_answer, forms<kept>::parse_port_map_answer},
    {forms<kept>::build_enabled_vsans, forms<kept>::parse_enabled_vsans},
    {forms<kept>::build_if_vsan_query, forms<kept>::parse_if_vsan_query},
    {forms<kept>::build_if_vsan_answer, forms<kept>::parse_if_vsan_answer},
    {forms<kept>::build_rnid_request, forms<kept>::parse_rnid_request},
    {forms<kept>::build_rnid_answer, forms<kept>::parse_rnid_answer},
    {forms<kept>::build_vsan_install, forms<kept>::parse_vsan_install},
    {forms<kept>::build_swap_request, forms<kept>::parse_swap_request},
    {forms<kept>::build_swap_request_with_vsans, forms<kept>::parse_swap_request_with_vsans},
    {forms<kept>::build_swap_response, forms<kept>::parse_swap_response},
    {forms<kept>::build_vsan_state_change, forms<kept>::parse_vsan_state_change},
    {forms<kept>::build_updown_notice, forms<kept>::parse_updown_notice},
    {forms<kept>::build_enable_notice, forms<kept>::parse_enable_notice},
};
