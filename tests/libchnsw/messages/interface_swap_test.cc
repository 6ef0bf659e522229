// The swap handshake: requests read and responses sent, the same in each of its steps.
#include <ostream>

#include "message_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct step {
  const char* name;
  decltype(&ficon_if_swap_chk_lock_parse) parse;
  decltype(&ficon_if_swap_chk_lock_parse_with_vsan) parse_with_vsan;
  decltype(&ficon_if_swap_chk_lock_send_resp) send_resp;
};

void PrintTo(const step& step, std::ostream* stream) {
  *stream << step.name;
}

const step kSteps[] = {
    {"chk_lock", ficon_if_swap_chk_lock_parse, ficon_if_swap_chk_lock_parse_with_vsan, ficon_if_swap_chk_lock_send_resp},
    {"do_swap", ficon_if_swap_do_swap_parse, ficon_if_swap_do_swap_parse_with_vsan, ficon_if_swap_do_swap_send_resp},
    {"unlock", ficon_if_swap_unlock_parse, ficon_if_swap_unlock_parse_with_vsan, ficon_if_swap_unlock_send_resp},
};

// A bitmap in which every byte differs from its neighbours.
uint8_t pattern(size_t i) {
  return static_cast<uint8_t>(i * 37 + i / 256 + 1);
}

bytes vsan_bytes() {
  record block(516);
  block.u32(0, 512);
  for (size_t i = 0; i < 512; ++i) block.u8(4 + i, pattern(i));
  return block;
}

bytes request() {
  record sent(528);
  sent.u32(0, 0x01020304).u32(4, 0x01000307).u32(8, 0x0100020F);
  const bytes vsans = vsan_bytes();
  for (size_t i = 0; i < vsans.size(); ++i) sent.u8(12 + i, vsans[i]);
  return sent;
}

class SwapRequest : public MessageTest, public ::testing::WithParamInterface<step> {
 protected:
  msgq_message message{request()};
  uint32_t word0 = kUntouched32;
  uint32_t if_index_a = kUntouched32;
  uint32_t if_index_b = kUntouched32;
  struct {
    vsan_block block = untouched<vsan_block>();
    uint32_t behind = kUntouched32;
  } vsans;
};

std::string name_of(const ::testing::TestParamInfo<step>& step) {
  return step.param.name;
}

INSTANTIATE_TEST_SUITE_P(Steps, SwapRequest, ::testing::ValuesIn(kSteps), name_of);

TEST_P(SwapRequest, FillsItsThreeOutputs) {
  EXPECT_EQ(GetParam().parse(&message, &word0, &if_index_a, &if_index_b), 0u);
  EXPECT_EQ(word0, 0x01020304u);
  EXPECT_EQ(if_index_a, 0x41000307u);
  EXPECT_EQ(if_index_b, 0x4100020Fu);
}

TEST_P(SwapRequest, FillsItsFourOutputs) {
  EXPECT_EQ(GetParam().parse_with_vsan(&message, &word0, &if_index_a, &if_index_b, &vsans.block), 0u);
  EXPECT_EQ(word0, 0x01020304u);
  EXPECT_EQ(if_index_a, 0x41000307u);
  EXPECT_EQ(if_index_b, 0x4100020Fu);
  EXPECT_EQ(bytes_of(vsans.block), vsan_bytes());
  EXPECT_EQ(vsans.behind, kUntouched32);
}

// Oddity: the payload is fetched anew for each output.
TEST_P(SwapRequest, PayloadIsFetchedOnceAnOutput) {
  GetParam().parse_with_vsan(&message, &word0, &if_index_a, &if_index_b, &vsans.block);
  EXPECT_THAT(platform.calls(),
              ElementsAre("msgq_payload_get(message)", "msgq_payload_get(message)", "ntoh_if_index(0x1000307)",
                          "msgq_payload_get(message)", "ntoh_if_index(0x100020f)", "msgq_payload_get(message)"));
  platform.forget_calls();
  GetParam().parse(&message, &word0, &if_index_a, &if_index_b);
  EXPECT_THAT(platform.calls(),
              ElementsAre("msgq_payload_get(message)", "msgq_payload_get(message)", "ntoh_if_index(0x1000307)",
                          "msgq_payload_get(message)", "ntoh_if_index(0x100020f)"));
}

TEST_P(SwapRequest, FirstWordNeedNotBeWanted) {
  EXPECT_EQ(GetParam().parse_with_vsan(&message, nullptr, &if_index_a, &if_index_b, &vsans.block), 0u);
  EXPECT_EQ(if_index_a, 0x41000307u);
  EXPECT_EQ(if_index_b, 0x4100020Fu);
  EXPECT_EQ(bytes_of(vsans.block), vsan_bytes());
  EXPECT_EQ(platform.count("msgq_payload_get"), 3);
}

TEST_P(SwapRequest, FirstInterfaceNeedNotBeWanted) {
  EXPECT_EQ(GetParam().parse_with_vsan(&message, &word0, nullptr, &if_index_b, &vsans.block), 0u);
  EXPECT_EQ(word0, 0x01020304u);
  EXPECT_EQ(if_index_b, 0x4100020Fu);
  EXPECT_EQ(bytes_of(vsans.block), vsan_bytes());
  EXPECT_EQ(platform.count("msgq_payload_get"), 3);
  EXPECT_EQ(platform.count("ntoh_if_index"), 1);
}

TEST_P(SwapRequest, SecondInterfaceNeedNotBeWanted) {
  EXPECT_EQ(GetParam().parse_with_vsan(&message, &word0, &if_index_a, nullptr, &vsans.block), 0u);
  EXPECT_EQ(word0, 0x01020304u);
  EXPECT_EQ(if_index_a, 0x41000307u);
  EXPECT_EQ(bytes_of(vsans.block), vsan_bytes());
  EXPECT_EQ(platform.count("msgq_payload_get"), 3);
  EXPECT_EQ(platform.count("ntoh_if_index"), 1);
}

TEST_P(SwapRequest, VsansNeedNotBeWanted) {
  EXPECT_EQ(GetParam().parse_with_vsan(&message, &word0, &if_index_a, &if_index_b, nullptr), 0u);
  EXPECT_EQ(word0, 0x01020304u);
  EXPECT_EQ(if_index_a, 0x41000307u);
  EXPECT_EQ(if_index_b, 0x4100020Fu);
  EXPECT_EQ(platform.count("msgq_payload_get"), 3);
}

TEST_P(SwapRequest, OutputsOfTheShortFormNeedNotBeWantedEither) {
  EXPECT_EQ(GetParam().parse(&message, nullptr, &if_index_a, nullptr), 0u);
  EXPECT_EQ(if_index_a, 0x41000307u);
  EXPECT_EQ(GetParam().parse(&message, &word0, nullptr, nullptr), 0u);
  EXPECT_EQ(word0, 0x01020304u);
  EXPECT_EQ(GetParam().parse(&message, nullptr, nullptr, &if_index_b), 0u);
  EXPECT_EQ(if_index_b, 0x4100020Fu);
  EXPECT_EQ(platform.count("msgq_payload_get"), 3);
}

TEST_P(SwapRequest, NothingIsReadWhenNoOutputIsWanted) {
  EXPECT_EQ(GetParam().parse_with_vsan(&message, nullptr, nullptr, nullptr, nullptr), 0u);
  EXPECT_EQ(GetParam().parse(&message, nullptr, nullptr, nullptr), 0u);
  EXPECT_EQ(GetParam().parse(nullptr, nullptr, nullptr, nullptr), 0u);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_P(SwapRequest, OutputsAreFilledInTheOrderOfTheArguments) {
  uint32_t shared = 0;
  GetParam().parse(&message, &shared, &shared, nullptr);
  EXPECT_EQ(shared, 0x41000307u);
  GetParam().parse(&message, &shared, &shared, &shared);
  EXPECT_EQ(shared, 0x4100020Fu);
  GetParam().parse_with_vsan(&message, nullptr, nullptr, &vsans.block.bytes, &vsans.block);
  EXPECT_EQ(bytes_of(vsans.block), vsan_bytes());
}

TEST_P(SwapRequest, PayloadMayStandAnywhere) {
  for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
    message = msgq_message(request(), misalignment);
    word0 = if_index_a = if_index_b = kUntouched32;
    vsans.block = untouched<vsan_block>();
    GetParam().parse_with_vsan(&message, &word0, &if_index_a, &if_index_b, &vsans.block);
    EXPECT_EQ(word0, 0x01020304u);
    EXPECT_EQ(if_index_a, 0x41000307u);
    EXPECT_EQ(if_index_b, 0x4100020Fu);
    EXPECT_EQ(bytes_of(vsans.block), vsan_bytes());
  }
}

// Oddity: the length is not compared. The short form of a request has zeros behind it here.
TEST_P(SwapRequest, LengthOfThePayloadIsNotAsked) {
  message = msgq_message(record(12).u32(0, 1).u32(4, 2).u32(8, 3));
  GetParam().parse_with_vsan(&message, &word0, &if_index_a, &if_index_b, &vsans.block);
  EXPECT_EQ(word0, 1u);
  EXPECT_EQ(bytes_of(vsans.block), bytes(516));
  EXPECT_EQ(platform.count("msgq_payload_size"), 0);
}

class SwapResponse : public MessageTest, public ::testing::WithParamInterface<step> {
 protected:
  SwapResponse() { asked.name = "request"; }

  msgq_message asked{request()};
};

INSTANTIATE_TEST_SUITE_P(Steps, SwapResponse, ::testing::ValuesIn(kSteps), name_of);

TEST_P(SwapResponse, HoldsStatusWordAndBothIndexesByHton) {
  EXPECT_EQ(GetParam().send_resp(handle, &asked, 0x05060708, 0x01000307, 0x0100020F, 0x0A0B0C0D), 0u);
  EXPECT_EQ(platform.sent().at(0).payload,
            record(536).u32(0, 0x0A0B0C0D).u32(4, 0x05060708).u32(8, 0x11000307).u32(12, 0x1100020F).get());
}

TEST_P(SwapResponse, GoesBackOnItsRequest) {
  GetParam().send_resp(handle, &asked, 1, 2, 3, 4);
  EXPECT_THAT(platform.calls(), ElementsAre("hton_if_index(0x2)", "hton_if_index(0x3)",
                                            "msgq_send(0x51, fe000000:0, 0, payload, 536, 0, request, 0)"));
  EXPECT_EQ(platform.sent().at(0).answered, &asked);
}

TEST_P(SwapResponse, WhetherItWasSentIsNotTold) {
  for (const int answer : {-1, 1, -2}) {
    platform.send_answer = {answer, 5};
    platform.msgq_error = 7;
    EXPECT_EQ(GetParam().send_resp(handle, &asked, 1, 2, 3, 4), 0u);
  }
  EXPECT_EQ(platform.count("msgq_send"), 3);
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_P(SwapResponse, HandleAndRequestAreNotTested) {
  EXPECT_EQ(GetParam().send_resp(nullptr, nullptr, 1, 2, 3, 4), 0u);
  EXPECT_EQ(platform.calls().back(), "msgq_send(0, fe000000:0, 0, payload, 536, 0, NULL, 0)");
}

class SwapResponseWithReasonCode : public MessageTest {
 protected:
  SwapResponseWithReasonCode() {
    asked.name = "request";
    for (size_t i = 0; i < sizeof response; ++i) raw[i] = pattern(i);
    memcpy(&response, raw, sizeof response);
  }

  msgq_message asked{request()};
  uint8_t raw[536];
  ficon_if_swap_resp response;
};

TEST_F(SwapResponseWithReasonCode, IsTheCallersRecordUnchanged) {
  EXPECT_EQ(ficon_if_swap_chk_lock_send_resp_with_reasoncode(handle, &asked, &response), 0u);
  EXPECT_EQ(platform.sent().at(0).payload, bytes(raw, raw + 536));
  EXPECT_EQ(bytes_of(response), bytes(raw, raw + 536));
}

TEST_F(SwapResponseWithReasonCode, GoesBackOnItsRequest) {
  ficon_if_swap_chk_lock_send_resp_with_reasoncode(handle, &asked, &response);
  EXPECT_THAT(platform.calls(), ElementsAre("msgq_send(0x51, fe000000:0, 0, payload, 536, 0, request, 0)"));
  EXPECT_EQ(platform.sent().at(0).answered, &asked);
}

TEST_F(SwapResponseWithReasonCode, WhetherItWasSentIsNotTold) {
  platform.send_answer = {-1, 5};
  platform.msgq_error = 7;
  EXPECT_EQ(ficon_if_swap_chk_lock_send_resp_with_reasoncode(handle, &asked, &response), 0u);
  EXPECT_EQ(platform.count("msgq_errno_get"), 0);
}

TEST_F(SwapResponseWithReasonCode, HandleAndRequestAreNotTested) {
  EXPECT_EQ(ficon_if_swap_chk_lock_send_resp_with_reasoncode(nullptr, nullptr, &response), 0u);
  EXPECT_EQ(platform.calls().back(), "msgq_send(0, fe000000:0, 0, payload, 536, 0, NULL, 0)");
}

} // namespace
