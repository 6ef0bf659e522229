// RNID: asking for a node descriptor, reading the answer and the notification, and converting the descriptor's texts.
#include <cerrno>
#include <climits>

#include "message_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// ---- asking ----

class RnidRequest : public MessageTest {
 protected:
  int32_t send(uintptr_t send_arg = 0x77) {
    return ficon_send_get_rnid_nonblock(handle, 0x01000307, 0x1122, 0x33445566, 2, 0x778899AA, send_arg);
  }
};

TEST_F(RnidRequest, HoldsEveryFieldAtItsOffset) {
  EXPECT_EQ(send(), 0);
  ASSERT_THAT(platform.added_tlvs(), SizeIs(1));
  EXPECT_EQ(
      platform.added_tlvs()[0].value,
      record(60).u32(0, 0x11000307).u16(4, 0x1122).u16(6, 512).u32(8, 0x33445566).u32(16, 2).u32(24, 0x778899AA).get());
}

TEST_F(RnidRequest, GoesToTheManagerAsTheOneValueOfAnArray) {
  EXPECT_EQ(send(), 0);
  EXPECT_THAT(platform.calls(), ElementsAre("hton_if_index(0x1000307)", "tlv_aligned_array_add_tlv(100, 15, 60, 1)",
                                            "tlv_aligned_array_size_get(array, 1)",
                                            "msgq_send(0x51, fe000001:101, 7869, payload, 67, 0x77, NULL, 0)"));
  EXPECT_EQ(platform.sent().at(0).payload, tlv_array({{15, platform.added_tlvs().at(0).value}}));
  EXPECT_EQ(platform.sent().at(0).payload_address, platform.added_tlvs().at(0).array);
}

TEST_F(RnidRequest, ArrayBeginsAsZeros) {
  send();
  EXPECT_TRUE(platform.added_tlvs().at(0).array_was_zero);
}

TEST_F(RnidRequest, LargestNumbersFillTheirFieldsAndNoMore) {
  EXPECT_EQ(ficon_send_get_rnid_nonblock(handle, 0xFFFFFFFF, 0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0), 0);
  EXPECT_EQ(platform.added_tlvs().at(0).value, record(60)
                                                   .u32(0, 0x0FFFFFFF)
                                                   .u16(4, 0xFFFF)
                                                   .u16(6, 512)
                                                   .u32(8, 0xFFFFFFFF)
                                                   .u32(16, 0xFFFFFFFF)
                                                   .u32(24, 0xFFFFFFFF)
                                                   .get());
}

TEST_F(RnidRequest, OfZerosStillNamesItsSize) {
  EXPECT_EQ(ficon_send_get_rnid_nonblock(handle, 0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(platform.added_tlvs().at(0).value, record(60).u32(0, 0x10000000).u16(6, 512).get());
}

TEST_F(RnidRequest, NoHandleIsRefusedBeforeAnythingElse) {
  EXPECT_EQ(ficon_send_get_rnid_nonblock(nullptr, 1, 2, 3, 4, 5, 6), 0x40850003);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(RnidRequest, StatusOfTheArrayIsReturnedAndNothingSent) {
  for (const int status : {1, -1, 0x40850008, INT_MIN}) {
    platform.tlv_add_status = status;
    EXPECT_EQ(send(), status);
  }
  EXPECT_THAT(platform.sent(), IsEmpty());
  EXPECT_EQ(platform.count("tlv_aligned_array_size_get"), 0);
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(RnidRequest, LengthIsWhatTheArraySaysIsInUse) {
  platform.tlv_size = 71;
  send();
  EXPECT_EQ(platform.sent().at(0).length, 71u);
}

TEST_F(RnidRequest, SendArgIsHandedOnInItsWholeWidth) {
  for (const uintptr_t send_arg : {uintptr_t{0}, UINTPTR_MAX}) {
    send(send_arg);
    EXPECT_EQ(platform.sent().back().send_arg, send_arg);
  }
}

TEST_F(RnidRequest, WhatTheTransportAnswersIsReturned) {
  for (const int answer : {0, 1, -2, INT_MAX, INT_MIN}) {
    platform.send_answer = {answer, 0};
    EXPECT_EQ(send(), answer);
  }
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(RnidRequest, FailedSendGivesTheTransportsErrorAndNotErrno) {
  platform.send_answer = {-1, EAGAIN};
  platform.msgq_error = ECONNREFUSED;
  EXPECT_EQ(send(), ECONNREFUSED);
  EXPECT_EQ(platform.calls().back(), "msgq_errno_get(0x51)");
}

// ---- the answer ----

constexpr char kDescriptor[] =
    "\x20\x01\x02\x03"
    "aaaaaa"
    "bbb"
    "ccc"
    "dd"
    "eeeeeeeeeeee"
    "\x7E\x7F";
constexpr char kConverted[] =
    "\x20\x01\x02\x03"
    "bbbbbb"
    "ccc"
    "ddd"
    "ee"
    "ffffffffffff"
    "\x7E\x7F";
static_assert(sizeof kDescriptor == 33 && sizeof kConverted == 33);

bytes descriptor_bytes(const char* text) {
  return bytes(text, text + 32);
}

class RnidAnswer : public MessageTest {
 protected:
  // rnid_size, which is not read, is set.
  static record answer(uint32_t format = 0, uint32_t codepage = 37, uint32_t result = 0) {
    return record(60)
        .u32(0, 0x01000307)
        .u16(4, 0x1122)
        .u16(6, 0xDDDD)
        .u32(8, 0x33445566)
        .u32(12, codepage)
        .u32(16, format)
        .u32(20, result)
        .u32(24, 0x778899AA)
        .text(28, std::string(kDescriptor, 32));
  }

  uint32_t parse() {
    return ficon_parse_get_rnid(&message, &if_index, &rnid_port, &rnid_word8, &codepage, &rnid_format, &rnid_word24,
                                descriptor.data());
  }
  uint32_t parse_notification() {
    return ficon_parse_rnid_notification(&message, &if_index, &rnid_port, &rnid_word8, &rnid_format, &rnid_word24,
                                         descriptor.data());
  }

  msgq_message message = tlv_message(15, answer());
  uint32_t if_index = kUntouched32;
  uint16_t rnid_port = kUntouched16;
  uint32_t rnid_word8 = kUntouched32;
  uint32_t codepage = kUntouched32;
  uint32_t rnid_format = kUntouched32;
  uint32_t rnid_word24 = kUntouched32;
  bytes descriptor = bytes(34, kUntouched8); // two more than are written

  bytes written_descriptor() const {
    EXPECT_EQ(descriptor[32], kUntouched8);
    EXPECT_EQ(descriptor[33], kUntouched8);
    return bytes(descriptor.begin(), descriptor.begin() + 32);
  }
};

TEST_F(RnidAnswer, FillsItsSevenOutputs) {
  EXPECT_EQ(parse(), 0u);
  EXPECT_EQ(if_index, 0x41000307u);
  EXPECT_EQ(rnid_port, 0x1122);
  EXPECT_EQ(rnid_word8, 0x33445566u);
  EXPECT_EQ(codepage, 37u);
  EXPECT_EQ(rnid_format, 0u);
  EXPECT_EQ(rnid_word24, 0x778899AAu);
  EXPECT_EQ(written_descriptor(), descriptor_bytes(kDescriptor));
}

TEST_F(RnidAnswer, ResultOfTheManagerIsReturnedWithTheOutputsFilled) {
  for (const uint32_t result : {1u, 0x40850003u, 0xFFFFFFFFu}) {
    message = tlv_message(15, answer(2, 37, result));
    EXPECT_EQ(parse(), result);
    EXPECT_EQ(if_index, 0x41000307u);
    EXPECT_EQ(codepage, 37u);
    EXPECT_EQ(written_descriptor(), descriptor_bytes(kConverted));
  }
}

// Each output left out in its turn: the others are filled.
TEST_F(RnidAnswer, EachOutputNeedNotBeWanted) {
  for (int left_out = 0; left_out < 7; ++left_out) {
    SCOPED_TRACE(left_out);
    if_index = rnid_word8 = codepage = rnid_format = rnid_word24 = kUntouched32;
    rnid_port = kUntouched16;
    descriptor = bytes(34, kUntouched8);
    EXPECT_EQ(ficon_parse_get_rnid(&message, left_out == 0 ? nullptr : &if_index, left_out == 1 ? nullptr : &rnid_port,
                                   left_out == 2 ? nullptr : &rnid_word8, left_out == 3 ? nullptr : &codepage,
                                   left_out == 4 ? nullptr : &rnid_format, left_out == 5 ? nullptr : &rnid_word24,
                                   left_out == 6 ? nullptr : descriptor.data()),
              0u);
    EXPECT_EQ(if_index, left_out == 0 ? kUntouched32 : 0x41000307u);
    EXPECT_EQ(rnid_port, left_out == 1 ? kUntouched16 : 0x1122);
    EXPECT_EQ(rnid_word8, left_out == 2 ? kUntouched32 : 0x33445566u);
    EXPECT_EQ(codepage, left_out == 3 ? kUntouched32 : 37u);
    EXPECT_EQ(rnid_format, left_out == 4 ? kUntouched32 : 0u);
    EXPECT_EQ(rnid_word24, left_out == 5 ? kUntouched32 : 0x778899AAu);
    EXPECT_EQ(written_descriptor(), left_out == 6 ? bytes(32, kUntouched8) : descriptor_bytes(kDescriptor));
  }
}

TEST_F(RnidAnswer, ResultIsReturnedAlsoWhenNoOutputIsWanted) {
  message = tlv_message(15, answer(2, 37, 0x4085000A));
  EXPECT_EQ(ficon_parse_get_rnid(&message, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0x4085000Au);
  EXPECT_EQ(platform.count("ntoh_if_index"), 0);
  EXPECT_EQ(platform.count("convert"), 0);
}

TEST_F(RnidAnswer, InterfaceIsFilledBeforeAllOtherOutputs) {
  int looks = 0;
  platform.on_call = [&](const std::string& call) {
    if (call != "ntoh_if_index(0x1000307)") return;
    ++looks;
    EXPECT_EQ(rnid_port, kUntouched16);
    EXPECT_EQ(rnid_word24, kUntouched32);
    EXPECT_EQ(written_descriptor(), bytes(32, kUntouched8));
    EXPECT_EQ(rnid_word8, kUntouched32);
    EXPECT_EQ(rnid_format, kUntouched32);
    EXPECT_EQ(codepage, kUntouched32);
  };
  parse();
  EXPECT_EQ(looks, 1);
}

// The order is: interface, port, word 24, descriptor, word 8, format, code page. Each of these is overwritten by the next.
TEST_F(RnidAnswer, OutputsAreFilledInAnOrderOfTheirOwn) {
  uint32_t words[8] = {};
  uint16_t halves[16] = {};
  const auto filled = [&] { return field_at<uint32_t>(bytes_of(words), 0); };
  ficon_parse_get_rnid(&message, words, nullptr, nullptr, nullptr, nullptr, words, nullptr);
  EXPECT_EQ(filled(), 0x778899AAu);
  ficon_parse_get_rnid(&message, nullptr, object_at<uint16_t>(words, 0), nullptr, nullptr, nullptr, words, nullptr);
  EXPECT_EQ(filled(), 0x778899AAu);
  ficon_parse_get_rnid(&message, nullptr, halves, nullptr, nullptr, nullptr, nullptr, halves);
  EXPECT_EQ(bytes_of(halves), descriptor_bytes(kDescriptor));
  ficon_parse_get_rnid(&message, nullptr, nullptr, nullptr, nullptr, nullptr, words, words);
  EXPECT_EQ(bytes_of(words), descriptor_bytes(kDescriptor));
  ficon_parse_get_rnid(&message, nullptr, nullptr, words, nullptr, nullptr, nullptr, words);
  EXPECT_EQ(filled(), 0x33445566u);
  ficon_parse_get_rnid(&message, nullptr, nullptr, words, nullptr, words, nullptr, nullptr);
  EXPECT_EQ(filled(), 0u);
  ficon_parse_get_rnid(&message, nullptr, nullptr, nullptr, words, words, nullptr, nullptr);
  EXPECT_EQ(filled(), 37u);
}

TEST_F(RnidAnswer, PayloadMayStandAnywhere) {
  for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
    message = tlv_message(15, answer(2), misalignment);
    if_index = rnid_word8 = kUntouched32;
    descriptor = bytes(34, kUntouched8);
    EXPECT_EQ(parse(), 0u);
    EXPECT_EQ(if_index, 0x41000307u);
    EXPECT_EQ(rnid_word8, 0x33445566u);
    EXPECT_EQ(written_descriptor(), descriptor_bytes(kConverted));
  }
}

// ---- conversion by the parser ----

TEST_F(RnidAnswer, FormatTwoHasTheFiveTextsConvertedInTheCallersCopy) {
  message = tlv_message(15, answer(2, 500));
  EXPECT_EQ(parse(), 0u);
  EXPECT_EQ(written_descriptor(), descriptor_bytes(kConverted));
  EXPECT_THAT(platform.calls(),
              ElementsAre("msgq_payload_get(message)", "tlv_aligned_array_get_num_tlvs(payload, 1)",
                          "tlv_aligned_array_get_next_tlv(payload, 1, cursor 0)", "ntoh_if_index(0x1000307)",
                          "convert(6, mode 1, counter 0, space 100, codepage 500)",
                          "convert(3, mode 1, counter 0, space 100, codepage 500)",
                          "convert(3, mode 1, counter 0, space 100, codepage 500)",
                          "convert(2, mode 1, counter 0, space 100, codepage 500)",
                          "convert(12, mode 1, counter 0, space 100, codepage 500)"));
}

TEST_F(RnidAnswer, ReceivedDescriptorIsNotConverted) {
  message = tlv_message(15, answer(2));
  parse();
  const auto* sent = static_cast<const uint8_t*>(message.payload()) + 7 + 28;
  EXPECT_EQ(bytes(sent, sent + 32), descriptor_bytes(kDescriptor));
}

TEST_F(RnidAnswer, AnyOtherFormatLeavesTheDescriptorAsItCame) {
  for (const uint32_t format : {0u, 1u, 3u, 0x102u, 0x02000000u, 0xFFFFFFFFu}) {
    message = tlv_message(15, answer(format));
    EXPECT_EQ(parse(), 0u);
    EXPECT_EQ(rnid_format, format);
    EXPECT_EQ(written_descriptor(), descriptor_bytes(kDescriptor));
  }
  EXPECT_EQ(platform.count("convert"), 0);
}

TEST_F(RnidAnswer, NothingIsConvertedWhenNoDescriptorIsWanted) {
  message = tlv_message(15, answer(2));
  EXPECT_EQ(ficon_parse_get_rnid(&message, &if_index, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0u);
  EXPECT_EQ(platform.count("convert"), 0);
}

TEST_F(RnidAnswer, FormatAndCodePageOfTheRecordCountWhetherWantedOrNot) {
  message = tlv_message(15, answer(2, 284));
  ficon_parse_get_rnid(&message, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, descriptor.data());
  EXPECT_EQ(written_descriptor(), descriptor_bytes(kConverted));
  EXPECT_EQ(platform.conversions().at(4).codepage, 284u);
}

// The descriptor is converted after all outputs are filled, so one that stands in it is converted too.
TEST_F(RnidAnswer, ConversionComesLast) {
  message = tlv_message(15, answer(2));
  uint32_t words[8] = {};
  ficon_parse_get_rnid(&message, nullptr, nullptr, nullptr, &words[1], nullptr, nullptr, words);
  const bytes codepage_bytes = bytes_of(uint32_t{37});
  const bytes converted = bytes_of(words);
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(converted[4 + i], codepage_bytes[i] + 1);
}

TEST_F(RnidAnswer, FailedConversionLeavesItsTextAndIsNotTold) {
  const size_t first[] = {4, 10, 13, 16, 18};
  const size_t length[] = {6, 3, 3, 2, 12};
  for (int failing = 0; failing < 5; ++failing) {
    SCOPED_TRACE(failing);
    platform.reset();
    platform.failing_conversions = {failing + 1};
    message = tlv_message(15, answer(2));
    EXPECT_EQ(parse(), 0u);
    bytes expected = descriptor_bytes(kConverted);
    for (size_t i = first[failing]; i < first[failing] + length[failing]; ++i) {
      expected[i] = static_cast<uint8_t>(kDescriptor[i]);
    }
    EXPECT_EQ(written_descriptor(), expected);
    EXPECT_THAT(platform.conversions(), SizeIs(5));
  }
}

TEST_F(RnidAnswer, NoConversionAtAllIsNotToldEither) {
  platform.convert_result = 0;
  message = tlv_message(15, answer(2, 37, 9));
  EXPECT_EQ(parse(), 9u);
  EXPECT_EQ(written_descriptor(), descriptor_bytes(kDescriptor));
}

// ---- the notification ----

class RnidNotification : public RnidAnswer {};

TEST_F(RnidNotification, FillsItsSixOutputs) {
  EXPECT_EQ(parse_notification(), 0u);
  EXPECT_EQ(if_index, 0x41000307u);
  EXPECT_EQ(rnid_port, 0x1122);
  EXPECT_EQ(rnid_word8, 0x33445566u);
  EXPECT_EQ(rnid_format, 0u);
  EXPECT_EQ(rnid_word24, 0x778899AAu);
  EXPECT_EQ(written_descriptor(), descriptor_bytes(kDescriptor));
}

TEST_F(RnidNotification, IsConvertedByTheCodePageThatItDoesNotReturn) {
  message = tlv_message(15, answer(2, 297, 3));
  EXPECT_EQ(parse_notification(), 3u);
  EXPECT_EQ(written_descriptor(), descriptor_bytes(kConverted));
  ASSERT_THAT(platform.conversions(), SizeIs(5));
  for (const conversion& asked : platform.conversions()) EXPECT_EQ(asked.codepage, 297u);
}

TEST_F(RnidNotification, NoOutputNeedBeWanted) {
  message = tlv_message(15, answer(2, 297, 3));
  EXPECT_EQ(ficon_parse_rnid_notification(&message, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 3u);
  EXPECT_EQ(platform.count("convert"), 0);
}

// ---- node descriptors ----

class NodeDescriptor : public MessageTest {
 protected:
  NodeDescriptor() {
    memcpy(around + 1, kDescriptor, 32);
    around[0] = around[33] = kUntouched8;
  }
  uint8_t around[34];
  void* const descriptor = around + 1; // at an odd address
};

TEST_F(NodeDescriptor, FiveTextsAreConvertedInPlaceInTheirOrder) {
  EXPECT_EQ(ficon_format_rnid(273, descriptor), 0u);
  EXPECT_EQ(bytes(around + 1, around + 33), descriptor_bytes(kConverted));
  EXPECT_EQ(around[0], kUntouched8);
  EXPECT_EQ(around[33], kUntouched8);

  const auto& asked = platform.conversions();
  ASSERT_THAT(asked, SizeIs(5));
  const size_t first[] = {4, 10, 13, 16, 18};
  const char* const texts[] = {"aaaaaa", "bbb", "ccc", "dd", "eeeeeeeeeeee"};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(asked[i].input, reinterpret_cast<const char*>(around) + 1 + first[i]);
    EXPECT_EQ(asked[i].text, texts[i]);
    EXPECT_EQ(asked[i].mode, 1u);
    EXPECT_EQ(asked[i].codepage, 273u);
  }
}

TEST_F(NodeDescriptor, OnlyTheFailureOfTheSequenceNumberIsTold) {
  for (int failing = 1; failing <= 5; ++failing) {
    platform.reset();
    platform.failing_conversions = {failing};
    EXPECT_EQ(ficon_format_rnid(37, descriptor), failing == 5 ? 0x40850020u : 0u);
    EXPECT_THAT(platform.conversions(), SizeIs(5));
  }
}

TEST_F(NodeDescriptor, StaysAsItIsWhenNothingCanBeConverted) {
  platform.convert_result = 0;
  EXPECT_EQ(ficon_format_rnid(37, descriptor), 0x40850020u);
  EXPECT_EQ(bytes(around + 1, around + 33), descriptor_bytes(kDescriptor));
}

} // namespace
