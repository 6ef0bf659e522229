// Questions to the manager and its answers: port map entry, enabled VSANs, state of an interface in a VSAN.
#include <cerrno>
#include <climits>
#include <memory>

#include "message_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::NotNull;
using ::testing::SizeIs;

constexpr uint32_t kIf = 0x01000307;
constexpr uint32_t kIfByHton = 0x11000307;
constexpr uint32_t kIfByNtoh = 0x41000307;

// ---- Port map: asking ----

class PortmapRequest : public MessageTest {
 protected:
  int32_t send(const char* text1 = "host", const char* text2 = "operator", uint32_t code = 0x01020304,
               uintptr_t send_arg = 0x77) {
    return ficon_send_get_portmap_nonblock(handle, text1, text2, code, 0x5A, kIf, 0x1122, 0x3344, send_arg);
  }

  // The record with everything that send() gives but code and texts.
  static record basic() {
    return record(130).u32(4, 18).u32(112, kIfByHton).u16(120, 0x1122).u16(122, 0x3344).u8(124, 0x5A);
  }

  bytes sent_record() const { return platform.added_tlvs().empty() ? bytes() : platform.added_tlvs().back().value; }
};

TEST_F(PortmapRequest, HoldsEveryFieldAtItsOffset) {
  EXPECT_EQ(send(), 0);
  EXPECT_EQ(sent_record(), basic().u32(0, 0x01020304).text(12, "host").text(52, "operator").get());
}

TEST_F(PortmapRequest, GoesToTheManagerAsTheOneValueOfAnArray) {
  EXPECT_EQ(send(), 0);
  EXPECT_THAT(platform.calls(), ElementsAre("hton_if_index(0x1000307)", "tlv_aligned_array_add_tlv(500, 9, 130, 1)",
                                            "tlv_aligned_array_size_get(array, 1)",
                                            "msgq_send(0x51, fe000001:101, 7858, payload, 137, 0x77, NULL, 0)"));
  ASSERT_THAT(platform.sent(), SizeIs(1));
  EXPECT_EQ(platform.sent()[0].payload, tlv_array({{9, sent_record()}}));
  EXPECT_EQ(platform.sent()[0].payload_address, platform.added_tlvs()[0].array);
}

TEST_F(PortmapRequest, ArrayBeginsAsZeros) {
  send();
  ASSERT_THAT(platform.added_tlvs(), SizeIs(1));
  EXPECT_TRUE(platform.added_tlvs()[0].array_was_zero);
}

TEST_F(PortmapRequest, LargestNumbersFillTheirFieldsAndNoMore) {
  EXPECT_EQ(ficon_send_get_portmap_nonblock(handle, nullptr, nullptr, 0xFFFFFFFF, 0xFF, 0xFFFFFFFF, 0xFFFF, 0xFFFF, 0), 0);
  EXPECT_EQ(
      sent_record(),
      record(130).u32(0, 0xFFFFFFFF).u32(4, 18).u32(112, 0x0FFFFFFF).u16(120, 0xFFFF).u16(122, 0xFFFF).u8(124, 0xFF).get());
}

TEST_F(PortmapRequest, ZerosAreSentAsTheyAre) {
  EXPECT_EQ(ficon_send_get_portmap_nonblock(handle, nullptr, nullptr, 0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(sent_record(), record(130).u32(4, 18).u32(112, 0x10000000).get());
}

TEST_F(PortmapRequest, KindIsEighteenWhateverTheCode) {
  for (const uint32_t code : {0u, 18u, 19u, 0xFFFFFFFFu}) {
    send(nullptr, nullptr, code);
    EXPECT_EQ(sent_record(), basic().u32(0, code).get());
  }
}

TEST_F(PortmapRequest, WithoutATextItsFieldIsZeros) {
  send(nullptr, "b", 0);
  EXPECT_EQ(sent_record(), basic().text(52, "b").get());
  send("a", nullptr, 0);
  EXPECT_EQ(sent_record(), basic().text(12, "a").get());
  send(nullptr, nullptr, 0);
  EXPECT_EQ(sent_record(), basic().get());
}

TEST_F(PortmapRequest, TextsAreCutToFortyAndSixtyBytesWithoutAZero) {
  send((std::string(40, 'a') + "XYZ").c_str(), (std::string(60, 'b') + "XYZ").c_str(), 0);
  EXPECT_EQ(sent_record(), basic().text(12, std::string(40, 'a')).text(52, std::string(60, 'b')).get());
}

TEST_F(PortmapRequest, NoHandleIsRefusedBeforeAnythingElse) {
  EXPECT_EQ(ficon_send_get_portmap_nonblock(nullptr, "a", "b", 1, 2, kIf, 3, 4, 5), 0x40850003);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(PortmapRequest, StatusOfTheArrayIsReturnedAndNothingSent) {
  for (const int status : {1, -1, 0x40850008, INT_MIN}) {
    platform.tlv_add_status = status;
    EXPECT_EQ(send(), status);
  }
  EXPECT_THAT(platform.sent(), IsEmpty());
  EXPECT_EQ(platform.count("tlv_aligned_array_size_get"), 0);
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(PortmapRequest, LengthIsWhatTheArraySaysIsInUse) {
  platform.tlv_size = 139;
  EXPECT_EQ(send(), 0);
  ASSERT_THAT(platform.sent(), SizeIs(1));
  EXPECT_EQ(platform.sent()[0].length, 139u);
}

TEST_F(PortmapRequest, SendArgIsHandedOnInItsWholeWidth) {
  for (const uintptr_t send_arg : {uintptr_t{0}, uintptr_t{1}, UINTPTR_MAX, UINTPTR_MAX - UINTPTR_MAX / 2}) {
    send("a", "b", 0, send_arg);
    EXPECT_EQ(platform.sent().back().send_arg, send_arg);
  }
}

TEST_F(PortmapRequest, WhatTheTransportAnswersIsReturned) {
  for (const int answer : {0, 1, 5, -2, INT_MAX, INT_MIN}) {
    platform.send_answer = {answer, 0};
    EXPECT_EQ(send(), answer);
  }
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(PortmapRequest, FailedSendGivesTheTransportsErrorAndNotErrno) {
  platform.send_answer = {-1, EAGAIN};
  for (const int error : {111, 0, -7}) {
    platform.msgq_error = error;
    platform.forget_calls();
    EXPECT_EQ(send(), error);
    EXPECT_EQ(platform.calls().back(), "msgq_errno_get(0x51)");
    EXPECT_EQ(platform.count("msgq_send"), 1);
  }
}

// ---- Port map: the answer ----

class PortmapAnswer : public MessageTest {
 protected:
  // Everything that is not read is set.
  static record answer(uint32_t result = 0) {
    return record(130, 0xDD).u32(112, kIf).u32(116, result).u16(120, 0x1122).u16(122, 0x3344);
  }

  msgq_message message = tlv_message(9, answer(0));
  uint32_t if_index = kUntouched32;
  uint16_t number_a = kUntouched16;
  uint16_t number_b = kUntouched16;
};

TEST_F(PortmapAnswer, FillsItsThreeOutputs) {
  EXPECT_EQ(ficon_parse_get_portmap(&message, &if_index, &number_a, &number_b), 0u);
  EXPECT_EQ(if_index, kIfByNtoh);
  EXPECT_EQ(number_a, 0x1122);
  EXPECT_EQ(number_b, 0x3344);
}

TEST_F(PortmapAnswer, ResultOfTheManagerIsReturnedWithTheOutputsFilled) {
  for (const uint32_t result : {1u, 0x40850003u, 0xFFFFFFFFu}) {
    message = tlv_message(9, answer(result));
    if_index = kUntouched32;
    number_a = number_b = kUntouched16;
    EXPECT_EQ(ficon_parse_get_portmap(&message, &if_index, &number_a, &number_b), result);
    EXPECT_EQ(if_index, kIfByNtoh);
    EXPECT_EQ(number_a, 0x1122);
    EXPECT_EQ(number_b, 0x3344);
  }
}

TEST_F(PortmapAnswer, InterfaceNeedNotBeWanted) {
  EXPECT_EQ(ficon_parse_get_portmap(&message, nullptr, &number_a, &number_b), 0u);
  EXPECT_EQ(number_a, 0x1122);
  EXPECT_EQ(number_b, 0x3344);
  EXPECT_EQ(platform.count("ntoh_if_index"), 0);
}

TEST_F(PortmapAnswer, FirstNumberNeedNotBeWanted) {
  EXPECT_EQ(ficon_parse_get_portmap(&message, &if_index, nullptr, &number_b), 0u);
  EXPECT_EQ(if_index, kIfByNtoh);
  EXPECT_EQ(number_b, 0x3344);
}

TEST_F(PortmapAnswer, SecondNumberNeedNotBeWanted) {
  EXPECT_EQ(ficon_parse_get_portmap(&message, &if_index, &number_a, nullptr), 0u);
  EXPECT_EQ(if_index, kIfByNtoh);
  EXPECT_EQ(number_a, 0x1122);
}

TEST_F(PortmapAnswer, ResultIsReturnedAlsoWhenNoOutputIsWanted) {
  message = tlv_message(9, answer(0x4085000A));
  EXPECT_EQ(ficon_parse_get_portmap(&message, nullptr, nullptr, nullptr), 0x4085000Au);
}

TEST_F(PortmapAnswer, OutputsAreFilledInTheOrderOfTheArguments) {
  platform.on_call = [&](const std::string& call) {
    if (call != "ntoh_if_index(0x1000307)") return;
    EXPECT_EQ(number_a, kUntouched16);
    EXPECT_EQ(number_b, kUntouched16);
  };
  EXPECT_EQ(ficon_parse_get_portmap(&message, &if_index, &number_a, &number_b), 0u);
  EXPECT_EQ(platform.count("ntoh_if_index(0x1000307)"), 1);
  uint16_t both = 0;
  EXPECT_EQ(ficon_parse_get_portmap(&message, nullptr, &both, &both), 0u);
  EXPECT_EQ(both, 0x3344);
}

TEST_F(PortmapAnswer, IsTheRecordThatAsked) {
  EXPECT_EQ(ficon_send_get_portmap_nonblock(handle, "a", "b", 1, 2, kIf, 0x5566, 0x7788, 0), 0);
  msgq_message reflected(platform.sent().at(0).payload);
  EXPECT_EQ(ficon_parse_get_portmap(&reflected, &if_index, &number_a, &number_b), 0u);
  EXPECT_EQ(if_index, kIf + kHton + kNtoh);
  EXPECT_EQ(number_a, 0x5566);
  EXPECT_EQ(number_b, 0x7788);
}

// ---- Enabled VSANs: asking ----

class EnabledVsansRequest : public MessageTest {};

TEST_F(EnabledVsansRequest, IsAnEmptyMessageToTheManager) {
  EXPECT_EQ(ficon_send_get_enabled_vsans(handle, 0x99), 0);
  EXPECT_THAT(platform.calls(), ElementsAre("msgq_send(0x51, fe000001:101, 7859, NULL, 0, 0x99, NULL, 0)"));
}

// Oddity: unlike the other requests.
TEST_F(EnabledVsansRequest, HandleOfNullIsHandedToTheTransport) {
  platform.send_answer = {-1, 0};
  platform.msgq_error = EINVAL;
  EXPECT_EQ(ficon_send_get_enabled_vsans(nullptr, 1), EINVAL);
  EXPECT_THAT(platform.calls(),
              ElementsAre("msgq_send(0, fe000001:101, 7859, NULL, 0, 0x1, NULL, 0)", "msgq_errno_get(0)"));
}

TEST_F(EnabledVsansRequest, SendArgIsHandedOnInItsWholeWidth) {
  ficon_send_get_enabled_vsans(handle, UINTPTR_MAX);
  EXPECT_EQ(platform.sent().at(0).send_arg, UINTPTR_MAX);
}

TEST_F(EnabledVsansRequest, WhatTheTransportAnswersIsReturned) {
  for (const int answer : {1, -2, INT_MAX, INT_MIN}) {
    platform.send_answer = {answer, 0};
    EXPECT_EQ(ficon_send_get_enabled_vsans(handle, 0), answer);
  }
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(EnabledVsansRequest, FailedSendGivesTheTransportsErrorAndNotErrno) {
  platform.send_answer = {-1, EAGAIN};
  platform.msgq_error = ECONNREFUSED;
  EXPECT_EQ(ficon_send_get_enabled_vsans(handle, 0), ECONNREFUSED);
  EXPECT_EQ(platform.calls().back(), "msgq_errno_get(0x51)");
}

// ---- Enabled VSANs: the answer ----

class EnabledVsansAnswer : public MessageTest {
 protected:
  ~EnabledVsansAnswer() override { free(list); }

  uint32_t parse(const bytes& value) {
    msgq_message message = tlv_message(16, value);
    return ficon_parse_get_enabled_vsans(&message, &list);
  }
  bytes listed(size_t count) const {
    const auto* first = static_cast<const uint8_t*>(list);
    return bytes(first, first + count);
  }

  void* list = nullptr;
};

TEST_F(EnabledVsansAnswer, IsCopiedIntoABufferForTheCaller) {
  EXPECT_EQ(parse({9, 8, 7, 6, 5}), 0u);
  EXPECT_EQ(listed(5), (bytes{9, 8, 7, 6, 5}));
  EXPECT_THAT(platform.calls(),
              ElementsAre("msgq_payload_get(message)", "tlv_aligned_array_get_num_tlvs(payload, 1)",
                          "tlv_aligned_array_get_next_tlv(payload, 1, cursor 0)", "memacct_alloc(206, 4, 5)"));
  EXPECT_EQ(list, platform.allocations().at(0).address);
}

TEST_F(EnabledVsansAnswer, BufferIsTheCallersToFree) {
  ASSERT_EQ(parse({1, 2}), 0u);
  watch_release(list, "list");
  EXPECT_EQ(platform.count("free"), 0);
  free(list);
  list = nullptr;
  EXPECT_EQ(platform.calls().back(), "free(list)");
}

TEST_F(EnabledVsansAnswer, MayHaveAnyLength) {
  for (const size_t length : {1u, 2u, 255u, 256u, 512u, 60000u}) {
    bytes value(length);
    for (size_t i = 0; i < value.size(); ++i) value[i] = static_cast<uint8_t>(i * 7 + 1);
    EXPECT_EQ(parse(value), 0u);
    EXPECT_EQ(listed(length), value);
    EXPECT_EQ(platform.calls().back(), "memacct_alloc(206, 4, " + std::to_string(length) + ")");
    free(list);
    list = nullptr;
  }
}

TEST_F(EnabledVsansAnswer, OfNoBytesIsAnEmptyBuffer) {
  EXPECT_EQ(parse({}), 0u);
  EXPECT_THAT(list, NotNull());
  EXPECT_EQ(platform.calls().back(), "memacct_alloc(206, 4, 0)");
}

TEST_F(EnabledVsansAnswer, LengthIsThatOfTheValueThatWasFound) {
  msgq_message message(tlv_array({{3, bytes(9)}, {16, {1, 2, 3}}, {16, bytes(7)}}));
  EXPECT_EQ(ficon_parse_get_enabled_vsans(&message, &list), 0u);
  EXPECT_EQ(listed(3), (bytes{1, 2, 3}));
  EXPECT_EQ(platform.allocations().at(0).size, 3u);
}

TEST_F(EnabledVsansAnswer, IsNotCopiedWhenItIsNotWanted) {
  msgq_message message = tlv_message(16, {1, 2, 3});
  EXPECT_EQ(ficon_parse_get_enabled_vsans(&message, nullptr), 0u);
  EXPECT_EQ(platform.count("memacct_alloc"), 0);
}

TEST_F(EnabledVsansAnswer, RefusedAllocationIsWarnedOfAndTheOutputStaysUntouched) {
  platform.refuse_type(4);
  int here = 0;
  list = &here;
  uint32_t status = 0;
  EXPECT_EQ(output_of([&] {
              status = parse({1, 2, 3});
            }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[4039] for size 3\n");
  EXPECT_EQ(status, 1u);
  EXPECT_EQ(list, &here);
  list = nullptr;
}

TEST_F(EnabledVsansAnswer, OutputStaysUntouchedWhenThereIsNoList) {
  int here = 0;
  list = &here;
  msgq_message message = tlv_message(9, bytes(130));
  EXPECT_EQ(ficon_parse_get_enabled_vsans(&message, &list), 0x40850003u);
  message = msgq_message::without_payload();
  EXPECT_EQ(ficon_parse_get_enabled_vsans(&message, &list), 0x40850008u);
  EXPECT_EQ(ficon_parse_get_enabled_vsans(nullptr, &list), 0x40850003u);
  EXPECT_EQ(list, &here);
  list = nullptr;
}

// ---- State of an interface in a VSAN: asking ----

class IfvsanRequest : public MessageTest {
 protected:
  // result and state of the caller's record are not for the manager.
  ficon_ifvsan_query query = {0xAAAAAAAA, 0xBBBBBBBB, 0x01020304, kIf, 0x05060708};
};

TEST_F(IfvsanRequest, IsARecordWithTwoArgumentsAndTheIndexByNtoh) {
  EXPECT_EQ(ficon_send_query_ifvsan_state(handle, &query, 0x55), 0);
  EXPECT_THAT(platform.calls(),
              ElementsAre("ntoh_if_index(0x1000307)", "msgq_send(0x51, fe000001:101, 7888, payload, 20, 0x55, NULL, 0)"));
  EXPECT_EQ(platform.sent().at(0).payload, record(20).u32(8, 0x01020304).u32(12, kIfByNtoh).u32(16, 0x05060708).get());
}

TEST_F(IfvsanRequest, CallersRecordIsNotChanged) {
  const bytes before = bytes_of(query);
  ficon_send_query_ifvsan_state(handle, &query, 0);
  EXPECT_EQ(bytes_of(query), before);
}

TEST_F(IfvsanRequest, NoRecordIsRefusedWithAnyHandle) {
  EXPECT_EQ(ficon_send_query_ifvsan_state(handle, nullptr, 1), 0x40850003);
  EXPECT_EQ(ficon_send_query_ifvsan_state(nullptr, nullptr, 1), 0x40850003);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// Oddity: only the record is tested.
TEST_F(IfvsanRequest, HandleOfNullIsHandedToTheTransport) {
  platform.send_answer = {-1, 0};
  platform.msgq_error = EINVAL;
  EXPECT_EQ(ficon_send_query_ifvsan_state(nullptr, &query, 0), EINVAL);
  EXPECT_EQ(platform.sent().at(0).handle, nullptr);
  EXPECT_EQ(platform.calls().back(), "msgq_errno_get(0)");
}

TEST_F(IfvsanRequest, SendArgIsHandedOnInItsWholeWidth) {
  ficon_send_query_ifvsan_state(handle, &query, UINTPTR_MAX);
  EXPECT_EQ(platform.sent().at(0).send_arg, UINTPTR_MAX);
}

TEST_F(IfvsanRequest, WhatTheTransportAnswersIsReturned) {
  for (const int answer : {1, -2, INT_MAX, INT_MIN}) {
    platform.send_answer = {answer, 0};
    EXPECT_EQ(ficon_send_query_ifvsan_state(handle, &query, 0), answer);
  }
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(IfvsanRequest, FailedSendGivesTheTransportsErrorAndNotErrno) {
  platform.send_answer = {-1, EAGAIN};
  platform.msgq_error = ECONNREFUSED;
  EXPECT_EQ(ficon_send_query_ifvsan_state(handle, &query, 0), ECONNREFUSED);
  EXPECT_EQ(platform.calls().back(), "msgq_errno_get(0x51)");
}

// ---- State of an interface in a VSAN: the answer ----

class IfvsanAnswer : public MessageTest {
 protected:
  static record answer(uint32_t result = 0) {
    return record(20).u32(0, result).u32(4, 0x11).u32(8, 0x22).u32(12, kIf).u32(16, 0x33);
  }
  void expect_untouched() const { EXPECT_EQ(bytes_of(query), bytes(20, 0xEE)); }

  ficon_ifvsan_query query = untouched<ficon_ifvsan_query>();
};

TEST_F(IfvsanAnswer, IsCopiedWithTheIndexByNtoh) {
  msgq_message message(answer());
  EXPECT_EQ(ficon_parse_query_ifvsan(&message, &query), 0u);
  EXPECT_EQ(bytes_of(query), record(20).u32(4, 0x11).u32(8, 0x22).u32(12, kIfByNtoh).u32(16, 0x33).get());
  EXPECT_THAT(platform.calls(),
              ElementsAre("msgq_payload_get(message)", "msgq_payload_size(message)", "ntoh_if_index(0x1000307)"));
}

TEST_F(IfvsanAnswer, ResultOfTheManagerIsReturnedAndStored) {
  for (const uint32_t result : {1u, 0x40850003u, 0xFFFFFFFFu}) {
    query = untouched<ficon_ifvsan_query>();
    msgq_message message(answer(result));
    EXPECT_EQ(ficon_parse_query_ifvsan(&message, &query), result);
    EXPECT_EQ(bytes_of(query), record(20).u32(0, result).u32(4, 0x11).u32(8, 0x22).u32(12, kIfByNtoh).u32(16, 0x33).get());
  }
}

TEST_F(IfvsanAnswer, NoRecordIsRefusedBeforeTheMessageIsLookedAt) {
  msgq_message message(answer());
  EXPECT_EQ(ficon_parse_query_ifvsan(&message, nullptr), 0x40850003u);
  EXPECT_EQ(ficon_parse_query_ifvsan(nullptr, nullptr), 0x40850003u);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(IfvsanAnswer, NoMessageIsRefused) {
  EXPECT_EQ(ficon_parse_query_ifvsan(nullptr, &query), 0x40850003u);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
  expect_untouched();
}

TEST_F(IfvsanAnswer, NoPayloadHasAStatusOfItsOwn) {
  msgq_message message = msgq_message::without_payload();
  EXPECT_EQ(ficon_parse_query_ifvsan(&message, &query), 0x40850008u);
  EXPECT_THAT(platform.calls(), ElementsAre("msgq_payload_get(message)"));
  expect_untouched();
}

TEST_F(IfvsanAnswer, ShorterPayloadsAreRefused) {
  for (size_t size = 0; size < 20; ++size) {
    bytes cut = answer();
    cut.resize(size);
    msgq_message message(cut);
    EXPECT_EQ(ficon_parse_query_ifvsan(&message, &query), 0x40850003u);
  }
  EXPECT_EQ(platform.count("ntoh_if_index"), 0);
  expect_untouched();
}

TEST_F(IfvsanAnswer, LongerPayloadsAreRead) {
  for (const size_t size : {21u, 24u, 65536u}) {
    query = untouched<ficon_ifvsan_query>();
    bytes longer = answer();
    longer.resize(size, 0xFF);
    msgq_message message(longer);
    EXPECT_EQ(ficon_parse_query_ifvsan(&message, &query), 0u);
    EXPECT_EQ(query.arg_b, 0x33u);
  }
}

TEST_F(IfvsanAnswer, PayloadMayStandAnywhere) {
  for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
    query = untouched<ficon_ifvsan_query>();
    msgq_message message(answer(), misalignment);
    EXPECT_EQ(ficon_parse_query_ifvsan(&message, &query), 0u);
    EXPECT_EQ(bytes_of(query), record(20).u32(4, 0x11).u32(8, 0x22).u32(12, kIfByNtoh).u32(16, 0x33).get());
  }
}

// A record that overlaps the payload by a word shows which field was copied when: state is read last, where the result has
// been stored by then.
TEST_F(IfvsanAnswer, FieldsAreCopiedFromTheLastToTheFirstAndThenTheState) {
  bytes room = answer(0x99);
  room.resize(24);
  msgq_message message(room, 0);
  auto* overlapping = object_at<ficon_ifvsan_query>(message.payload(), 4);
  EXPECT_EQ(ficon_parse_query_ifvsan(&message, overlapping), 0x99u);
  EXPECT_EQ(bytes_of(*overlapping),
            record(20).u32(0, 0x99).u32(4, 0x99).u32(8, 0x22).u32(12, kIfByNtoh).u32(16, 0x33).get());
}

// With the record two words behind the payload the result is stored where arg_a is read.
TEST_F(IfvsanAnswer, FirstArgumentIsCopiedBeforeTheResult) {
  bytes room = answer(0x99);
  room.resize(28);
  msgq_message message(room, 0);
  auto* overlapping = object_at<ficon_ifvsan_query>(message.payload(), 8);
  EXPECT_EQ(ficon_parse_query_ifvsan(&message, overlapping), 0x99u);
  EXPECT_EQ(bytes_of(*overlapping),
            record(20).u32(0, 0x99).u32(4, 0x11).u32(8, 0x22).u32(12, kIfByNtoh).u32(16, 0x33).get());
}

} // namespace
