// Records both ways: which fields a record has, how long it is, and what stands where nothing is given.
#include "inspect/messages/message_record.h"

#include <gmock/gmock.h>

#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::bytes;
using inspect_test::complaint;
using testing::ElementsAre;

constexpr auto big = byte_order::big;

std::string made(const char* kind, const std::vector<std::string>& words, byte_order order = big) {
  return make_record(find_message_kind(kind), words, order);
}

std::vector<field_value> read(const char* kind, const std::string& record, byte_order order = big) {
  return read_record(find_message_kind(kind), record, order);
}

std::vector<std::string> names(const std::vector<field_value>& values) {
  std::vector<std::string> result;
  for (const auto& value : values) result.push_back(value.name);
  return result;
}

TEST(MakeRecord, HoldsWhatIsUsual) {
  EXPECT_EQ(made("swap-request", {"vsans=none"}), bytes("00000000 00000000 00000000 00000200") + std::string(512, '\0'));
  EXPECT_EQ(made("updown-notice", {}), bytes("00000000 00 00"));
}

TEST(MakeRecord, IsShortUntilAFieldBehindIsGiven) {
  EXPECT_EQ(made("swap-request", {"swap_word0=1"}), bytes("00000001 00000000 00000000"));
  EXPECT_EQ(made("swap-request", {"vsans.bytes=7"}).size(), 528u);
}

TEST(MakeRecord, CountsItsInterfaces) {
  const std::string record = made("vsan-install", {"interfaces=fc1/1,fc1/2"}, byte_order::little);
  EXPECT_EQ(record.substr(517), bytes("02000000 01000000 01000100"));
  EXPECT_EQ(made("vsan-install", {}).substr(517), bytes("00000000"));
}

TEST(MakeRecord, NamesTheFieldThatIsWrong) {
  EXPECT_EQ(complaint([] { made("updown-notice", {"byte4"}); }), "field \"byte4\" has no value; expected byte4=VALUE");
  EXPECT_EQ(complaint([] { made("updown-notice", {"byte4=1", "byte4=1"}); }), "field \"byte4\" is given twice");
  EXPECT_EQ(complaint([] { made("vsan-install", {"count=1"}); }),
            "count of vsan-install: the interfaces are counted; give them alone");
  EXPECT_EQ(complaint([] { made("enabled-vsans-request", {"vsans=1"}); }),
            "enabled-vsans-request has no field \"vsans\"; it has no payload");
}

TEST(ReadRecord, EndsWithItsShortForm) {
  EXPECT_THAT(names(read("swap-request", std::string(12, '\0'))), ElementsAre("swap_word0", "if_index_a", "if_index_b"));
  EXPECT_THAT(names(read("swap-request", std::string(528, '\0'))),
              ElementsAre("swap_word0", "if_index_a", "if_index_b", "vsans.bytes", "vsans"));
}

TEST(ReadRecord, ShowsWhatIsBeyond) {
  const auto values = read("enable-notice", bytes("01000400 01 02"));
  EXPECT_THAT(names(values), ElementsAre("word0", "byte4", "(beyond)"));
  EXPECT_EQ(values.back().offset, 5u);
  EXPECT_EQ(values.back().bytes, "\x02");
}

TEST(ReadRecord, OfFreeFormIsBytesUnlessItHasTheLength) {
  EXPECT_THAT(names(read("enabled-vsans-answer", std::string(515, '\0'))), ElementsAre("(bytes)"));
  EXPECT_THAT(names(read("enabled-vsans-answer", std::string(516, '\0'))), ElementsAre("vsans.bytes", "vsans"));
  EXPECT_THAT(names(read("enabled-vsans-answer", std::string(517, '\0'))), ElementsAre("(bytes)"));
}

TEST(ReadRecord, IsAsLongAsItsCountSays) {
  const std::string front(517, '\0');
  EXPECT_EQ(*read("vsan-install", front + bytes("00000001 01000400")).back().text, "fc1/5");
  EXPECT_EQ(*read("vsan-install", front + bytes("00000000")).back().text, "none");
  EXPECT_THAT(names(read("vsan-install", front + bytes("00000000 01"))),
              ElementsAre("install_byte0", "vsans.bytes", "vsans", "count", "interfaces", "(beyond)"));
  EXPECT_EQ(complaint([&] { read("vsan-install", front + bytes("00000001 010004")); }),
            "vsan-install: 1 byte is missing: the record has 524 of 525 bytes, not all of interfaces at offset 521");
}

TEST(ReadRecord, NamesTheFirstFieldThatIsCut) {
  EXPECT_EQ(complaint([] { read("updown-notice", bytes("01000400 01")); }),
            "updown-notice: 1 byte is missing: the record has 5 of 6 bytes, not all of byte5 at offset 5");
  EXPECT_EQ(complaint([] { read("updown-notice", ""); }),
            "updown-notice: 6 bytes are missing: the record has 0 of 6 bytes, not all of word0 at offset 0");
  EXPECT_EQ(complaint([] { read("swap-request", std::string(13, '\0')); }),
            "swap-request: 515 bytes are missing: the record has 13 of 528 bytes, not all of vsans.bytes at offset 12");
}

TEST(DoubtAboutOrder, IsOfAFieldThatIsUsualTheOtherWayRound) {
  const message_kind& kind = find_message_kind("enabled-vsans-answer");
  const auto doubt = doubt_about_order(kind, bytes("00020000"), big);
  ASSERT_TRUE(doubt.has_value());
  EXPECT_EQ(doubt->field, "vsans.bytes");
  EXPECT_EQ(doubt->usual, 512u);
  EXPECT_EQ(doubt->order, byte_order::little);
  EXPECT_FALSE(doubt_about_order(kind, bytes("00000200"), big).has_value());
  EXPECT_FALSE(doubt_about_order(kind, bytes("00020000"), byte_order::little).has_value());
  EXPECT_FALSE(doubt_about_order(kind, bytes("000200"), big).has_value());
}

} // namespace
} // namespace inspect
