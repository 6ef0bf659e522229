// What all parsers of TLV arrays share: which value they find, and what they answer when there is none.
#include <climits>
#include <functional>
#include <ostream>

#include "message_test.h"

namespace {

using namespace chnsw_test;
using ::testing::Each;
using ::testing::ElementsAre;

// What a parser answered and what it wrote, the first field of its value being the first output.
struct reading {
  uint32_t status;
  std::vector<uint32_t> outputs;
};

struct parser {
  const char* name;
  uint16_t type;
  size_t value_size;
  size_t first_output;      // where its field stands in the value
  bool converts_first_word; // as an interface index
  std::function<reading(msgq_message*)> parse;
};

void PrintTo(const parser& parser, std::ostream* stream) {
  *stream << parser.name;
}

reading parse_portmap(msgq_message* message) {
  uint32_t if_index = kUntouched32;
  uint16_t number_a = kUntouched16;
  uint16_t number_b = kUntouched16;
  const uint32_t status = ficon_parse_get_portmap(message, &if_index, &number_a, &number_b);
  return {
      status,
      {if_index, number_a == kUntouched16 ? kUntouched32 : number_a, number_b == kUntouched16 ? kUntouched32 : number_b}};
}

// The list's first word, by way of its address.
reading parse_enabled_vsans(msgq_message* message) {
  uint32_t first = kUntouched32;
  void* list = nullptr;
  const uint32_t status = ficon_parse_get_enabled_vsans(message, &list);
  if (list != nullptr) memcpy(&first, list, sizeof first);
  free(list);
  return {status, {first}};
}

struct rnid_outputs {
  uint32_t if_index = kUntouched32;
  uint16_t port = kUntouched16;
  uint32_t word8 = kUntouched32;
  uint32_t codepage = kUntouched32;
  uint32_t format = kUntouched32;
  uint32_t word24 = kUntouched32;
  uint8_t descriptor[32];
  rnid_outputs() { memset(descriptor, kUntouched8, sizeof descriptor); }

  std::vector<uint32_t> list() const {
    uint32_t flags;
    memcpy(&flags, descriptor, sizeof flags);
    return {if_index, port == kUntouched16 ? kUntouched32 : port, word8, codepage, format, word24, flags};
  }
};

reading parse_rnid(msgq_message* message) {
  rnid_outputs out;
  const uint32_t status = ficon_parse_get_rnid(message, &out.if_index, &out.port, &out.word8, &out.codepage, &out.format,
                                               &out.word24, out.descriptor);
  return {status, out.list()};
}

reading parse_rnid_notification(msgq_message* message) {
  rnid_outputs out;
  const uint32_t status = ficon_parse_rnid_notification(message, &out.if_index, &out.port, &out.word8, &out.format,
                                                        &out.word24, out.descriptor);
  std::vector<uint32_t> outputs = out.list();
  outputs.erase(outputs.begin() + 3); // it has no code page
  return {status, outputs};
}

reading parse_vsan_state_change(msgq_message* message) {
  auto notice = untouched<ficon_vsan_state_change>();
  const uint32_t status = ficon_parse_vsan_state_change_payload(message, &notice);
  return {status, {notice.word0, notice.word1}};
}

reading parse_updown(msgq_message* message) {
  auto notice = untouched<ficon_updown_notice>();
  const uint32_t status = ficon_parse_updown_payload(message, &notice);
  return {status, {notice.word0, notice.byte4 * 0x01010101u, notice.byte5 * 0x01010101u}};
}

reading parse_enable(msgq_message* message) {
  auto notice = untouched<ficon_enable_notice>();
  const uint32_t status = ficon_parse_enable_payload(message, &notice);
  return {status, {notice.word0, notice.byte4 * 0x01010101u}};
}

const std::vector<parser> kRecordParsers = {
    {"portmap", 9, 130, 112, true, parse_portmap},
    {"rnid", 15, 60, 0, true, parse_rnid},
    {"rnid_notification", 15, 60, 0, true, parse_rnid_notification},
    {"vsan_state_change", 24, 8, 0, false, parse_vsan_state_change},
    {"updown", 10, 6, 0, false, parse_updown},
    {"enable", 1, 5, 0, false, parse_enable},
};

std::vector<parser> all_parsers() {
  std::vector<parser> all = kRecordParsers;
  all.push_back({"enabled_vsans", 16, 4, 0, false, parse_enabled_vsans});
  return all;
}

class TlvWalk : public MessageTest, public ::testing::WithParamInterface<parser> {
 protected:
  // A value of the wanted type and size whose first field is marked; everything else is zero.
  static tlv wanted(uint32_t mark) { return {type(), record(GetParam().value_size).u32(GetParam().first_output, mark)}; }
  static uint16_t type() { return GetParam().type; }

  static reading parse(const bytes& payload, size_t misalignment = 1) {
    msgq_message message(payload, misalignment);
    return GetParam().parse(&message);
  }

  // Found the value with this mark.
  void expect_found(const reading& read, uint32_t mark) {
    EXPECT_EQ(read.status, 0u);
    EXPECT_EQ(read.outputs.at(0), GetParam().converts_first_word ? mark + kNtoh : mark);
  }

  void expect_nothing(const reading& read, uint32_t status) {
    EXPECT_EQ(read.status, status);
    EXPECT_THAT(read.outputs, Each(kUntouched32));
    EXPECT_EQ(platform.count("ntoh_if_index"), 0);
    EXPECT_EQ(platform.count("memacct_alloc"), 0);
  }

  int fetches() const { return platform.count("tlv_aligned_array_get_next_tlv(payload, 1, "); }
};

// Those whose value is a record, and not a list of any length.
class RecordWalk : public TlvWalk {};

std::string name_of(const ::testing::TestParamInfo<parser>& parser) {
  return parser.param.name;
}

INSTANTIATE_TEST_SUITE_P(Parsers, TlvWalk, ::testing::ValuesIn(all_parsers()), name_of);
INSTANTIATE_TEST_SUITE_P(Parsers, RecordWalk, ::testing::ValuesIn(kRecordParsers), name_of);

TEST_P(TlvWalk, NoMessageIsRefusedAndNothingIsAsked) {
  expect_nothing(GetParam().parse(nullptr), 0x40850003);
  EXPECT_THAT(platform.all_calls(), ::testing::IsEmpty());
}

TEST_P(TlvWalk, NoPayloadHasAStatusOfItsOwn) {
  msgq_message message = msgq_message::without_payload();
  expect_nothing(GetParam().parse(&message), 0x40850008);
  EXPECT_THAT(platform.calls(), ElementsAre("msgq_payload_get(message)"));
}

TEST_P(TlvWalk, ArrayOfNoValuesIsRefused) {
  expect_nothing(parse(tlv_array({})), 0x40850003);
  EXPECT_THAT(platform.calls(), ElementsAre("msgq_payload_get(message)", "tlv_aligned_array_get_num_tlvs(payload, 1)"));
}

TEST_P(TlvWalk, NegativeCountIsRefusedWhateverIsThere) {
  for (const int count : {-1, INT_MIN}) {
    platform.forget_calls();
    platform.tlv_count = count;
    expect_nothing(parse(tlv_array({wanted(7)})), 0x40850003);
    EXPECT_EQ(fetches(), 0);
  }
}

TEST_P(TlvWalk, CountOfZeroIsRefusedWhateverIsThere) {
  platform.tlv_count = 0;
  expect_nothing(parse(tlv_array({wanted(7)})), 0x40850003);
  EXPECT_EQ(fetches(), 0);
}

TEST_P(TlvWalk, OnlyValueIsFound) {
  expect_found(parse(tlv_array({wanted(0x01000307)})), 0x01000307);
  EXPECT_EQ(platform.calls().at(0), "msgq_payload_get(message)");
  EXPECT_EQ(platform.calls().at(1), "tlv_aligned_array_get_num_tlvs(payload, 1)");
  EXPECT_EQ(platform.calls().at(2), "tlv_aligned_array_get_next_tlv(payload, 1, cursor 0)");
  EXPECT_EQ(fetches(), 1);
  EXPECT_EQ(platform.count("msgq_payload_get"), 1);
}

TEST_P(TlvWalk, ValueBehindOthersIsFoundAndTheWalkStopsThere) {
  expect_found(parse(tlv_array({{2, {1, 2, 3}}, {100, {}}, wanted(5), {3, {9}}})), 5);
  const auto calls = platform.calls();
  EXPECT_EQ(calls.at(2), "tlv_aligned_array_get_next_tlv(payload, 1, cursor 0)");
  EXPECT_EQ(calls.at(3), "tlv_aligned_array_get_next_tlv(payload, 1, cursor 1)");
  EXPECT_EQ(calls.at(4), "tlv_aligned_array_get_next_tlv(payload, 1, cursor 2)");
  EXPECT_EQ(fetches(), 3);
}

TEST_P(TlvWalk, LastOfTheCountedValuesIsFound) {
  expect_found(parse(tlv_array({{2, {1, 2, 3}}, wanted(5)})), 5);
  EXPECT_EQ(fetches(), 2);
}

TEST_P(TlvWalk, FirstOfTwoIsTaken) {
  expect_found(parse(tlv_array({wanted(5), wanted(6)})), 5);
  EXPECT_EQ(fetches(), 1);
}

TEST_P(TlvWalk, ValuesOfOtherTypesOnlyAreRefused) {
  std::vector<tlv> others;
  for (uint16_t other = 0; other < 30; ++other) {
    if (other != type()) others.push_back({other, bytes(130)});
  }
  expect_nothing(parse(tlv_array(others)), 0x40850003);
  EXPECT_EQ(fetches(), 29);
}

TEST_P(TlvWalk, TypesAreComparedWhole) {
  expect_nothing(parse(tlv_array({{static_cast<uint16_t>(type() | 0x100), bytes(130)}})), 0x40850003);
}

TEST_P(TlvWalk, WalkEndsWhereTheCountSaysAlthoughTheValueFollows) {
  platform.tlv_count = 2;
  expect_nothing(parse(tlv_array({{2, {1}}, {3, {1}}, wanted(5)})), 0x40850003);
  EXPECT_EQ(fetches(), 2);
}

TEST_P(TlvWalk, WalkGoesOnToTheCountAlthoughNothingFollows) {
  platform.tlv_count = 300;
  expect_nothing(parse(tlv_array({{2, {1}}})), 0x40850003);
  EXPECT_EQ(fetches(), 300);
}

TEST_P(TlvWalk, ValueThatIsNotStoredIsOfNoType) {
  platform.tlv_answers[1] = {0, false};
  expect_nothing(parse(tlv_array({wanted(5)})), 0x40850003);
  EXPECT_EQ(fetches(), 1);
}

TEST_P(TlvWalk, WalkGoesOnBehindAValueThatIsNotStored) {
  platform.tlv_answers[1] = {5, false};
  platform.tlv_answers[3] = {-1, false};
  expect_found(parse(tlv_array({wanted(4), {2, {1}}, wanted(5), wanted(6)})), 6);
  EXPECT_EQ(fetches(), 4);
}

TEST_P(TlvWalk, StatusOfTheFetchIsNotLookedAt) {
  platform.tlv_answers[1] = {-1, true};
  platform.tlv_answers[2] = {0x40000001, true};
  expect_found(parse(tlv_array({{2, {1}}, wanted(5)})), 5);
}

TEST_P(TlvWalk, PayloadMayStandAnywhere) {
  for (size_t misalignment = 0; misalignment < 8; ++misalignment) {
    platform.forget_calls();
    expect_found(parse(tlv_array({{2, {1, 2}}, wanted(5)}), misalignment), 5);
  }
}

// What a value lacks is read from what follows it, here the zeros behind the payload.
TEST_P(RecordWalk, LengthOfTheValueIsNotComparedWithTheRecord) {
  const reading read = parse(tlv_array({{type(), {}}}));
  EXPECT_EQ(read.status, 0u);
  EXPECT_THAT(read.outputs, ::testing::Not(::testing::Contains(kUntouched32)));
}

TEST_P(TlvWalk, LongerValueIsReadAsFarAsItIsKnown) {
  tlv longer = wanted(5);
  longer.value.resize(1000, 0xFF);
  expect_found(parse(tlv_array({longer})), 5);
}

TEST_P(TlvWalk, ReceivedPayloadIsNotChanged) {
  const bytes payload = tlv_array({{2, {1, 2}}, wanted(5), {3, {4}}});
  msgq_message message(payload);
  expect_found(GetParam().parse(&message), 5);
  const auto* after = static_cast<const uint8_t*>(message.payload());
  EXPECT_EQ(bytes(after, after + message.size()), payload);
}

TEST_P(TlvWalk, NothingIsSentReportedOrAskedBesides) {
  const std::string printed = output_of([&] { parse(tlv_array({wanted(5)})); });
  EXPECT_EQ(printed, "");
  EXPECT_EQ(platform.count("msgq_send"), 0);
  EXPECT_EQ(platform.count("msgq_payload_size"), 0);
  EXPECT_EQ(platform.count("hton_if_index"), 0);
  EXPECT_EQ(platform.count("ntoh_if_index"), GetParam().converts_first_word ? 1 : 0);
  EXPECT_THAT(platform.reporting_calls(), ::testing::IsEmpty());
}

} // namespace
