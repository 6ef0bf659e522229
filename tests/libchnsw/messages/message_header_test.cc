// The header of requests: ficon_init_cmi_hdr.
#include <memory>

#include "message_test.h"

namespace {

using namespace chnsw_test;
using ::testing::Each;
using ::testing::IsEmpty;

const char kDigits[] = "123456789012345678901234567890123456789012345678901234567890123456789"; // 69 characters

std::string digits(size_t count) {
  return std::string(kDigits, count);
}

class MessageHeader : public MessageTest {
 protected:
  // A header of bytes 0xEE after the call.
  static bytes filled(uint32_t code, const char* text1, const char* text2, uint32_t kind) {
    auto header = untouched<ficon_cmi_hdr>();
    ficon_init_cmi_hdr(&header, code, text1, text2, kind);
    return bytes_of(header);
  }
};

TEST_F(MessageHeader, HoldsCodeKindAndBothTextsAtTheirOffsets) {
  ficon_cmi_hdr header = {};
  ficon_init_cmi_hdr(&header, 0x01020304, "first", "the second", 0x05060708);
  EXPECT_EQ(bytes_of(header),
            record(112).u32(0, 0x01020304).u32(4, 0x05060708).text(12, "first").text(52, "the second").get());
}

TEST_F(MessageHeader, OfNullDoesNothing) {
  ficon_init_cmi_hdr(nullptr, 1, "a", "b", 2);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(MessageHeader, IsNotCleared) {
  EXPECT_EQ(filled(1, nullptr, nullptr, 2), record(112, 0xEE).u32(0, 1).u32(4, 2).get());
}

TEST_F(MessageHeader, KeepsItsFirstTextWhenNoneIsGiven) {
  EXPECT_EQ(filled(1, nullptr, digits(60).c_str(), 2), record(112, 0xEE).u32(0, 1).u32(4, 2).text(52, digits(60)).get());
}

TEST_F(MessageHeader, KeepsItsSecondTextWhenNoneIsGiven) {
  EXPECT_EQ(filled(1, digits(40).c_str(), nullptr, 2), record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, digits(40)).get());
}

TEST_F(MessageHeader, ShorterTextsAreFollowedByZerosToTheEndOfTheirFields) {
  const record expected =
      record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, "ab" + std::string(38, '\0')).text(52, "xyz" + std::string(57, '\0'));
  EXPECT_EQ(filled(1, "ab", "xyz", 2), expected.get());
}

TEST_F(MessageHeader, EmptyTextsClearTheirFields) {
  const record expected =
      record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, std::string(40, '\0')).text(52, std::string(60, '\0'));
  EXPECT_EQ(filled(1, "", "", 2), expected.get());
}

TEST_F(MessageHeader, NothingBehindATextsEndIsCopied) {
  const record expected =
      record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, "a" + std::string(39, '\0')).text(52, "b" + std::string(59, '\0'));
  EXPECT_EQ(filled(1, "a\0cdefgh", "b\0cdefgh", 2), expected.get());
}

TEST_F(MessageHeader, TextsOneShortOfTheirFieldsEndInOneZero) {
  const record expected = record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, digits(39) + '\0').text(52, digits(59) + '\0');
  EXPECT_EQ(filled(1, digits(39).c_str(), digits(59).c_str(), 2), expected.get());
}

TEST_F(MessageHeader, TextsThatFillTheirFieldsHaveNoZero) {
  const bytes header = filled(1, digits(40).c_str(), digits(60).c_str(), 2);
  EXPECT_EQ(header, record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, digits(40)).text(52, digits(60)).get());
  EXPECT_THAT(bytes(header.begin() + 12, header.end()), Each(::testing::Ne(0)));
}

TEST_F(MessageHeader, LongerTextsAreCut) {
  EXPECT_EQ(filled(1, digits(41).c_str(), digits(61).c_str(), 2),
            record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, digits(40)).text(52, digits(60)).get());
}

// The bound is the source's as well: nothing may be read behind it.
TEST_F(MessageHeader, SourcesThatFillTheFieldsNeedNoEnd) {
  const std::unique_ptr<char[]> text1(new char[40]);
  const std::unique_ptr<char[]> text2(new char[60]);
  memset(text1.get(), 'a', 40);
  memset(text2.get(), 'b', 60);
  EXPECT_EQ(filled(1, text1.get(), text2.get(), 2),
            record(112, 0xEE).u32(0, 1).u32(4, 2).text(12, std::string(40, 'a')).text(52, std::string(60, 'b')).get());
}

TEST_F(MessageHeader, SecondTextIsStoredAfterTheFirst) {
  ficon_cmi_hdr header = {};
  ficon_init_cmi_hdr(&header, 1, "first", header.text1, 2);
  EXPECT_EQ(bytes_of(header), record(112).u32(0, 1).u32(4, 2).text(12, "first").text(52, "first").get());
}

TEST_F(MessageHeader, CodeIsStoredBeforeTheTextsAndKindAfterThem) {
  ficon_cmi_hdr header = {};
  header.kind = 0x00636363;
  ficon_init_cmi_hdr(&header, 0x61616161, reinterpret_cast<const char*>(&header.code), nullptr, 0x62626262);
  const bytes old_kind = bytes_of(uint32_t{0x00636363});
  std::string text1 = "aaaa" + std::string(old_kind.begin(), old_kind.end());
  text1.resize(text1.find('\0'));
  EXPECT_EQ(bytes_of(header), record(112).u32(0, 0x61616161).u32(4, 0x62626262).text(12, text1).get());
}

TEST_F(MessageHeader, KindIsStoredAfterTheSecondText) {
  ficon_cmi_hdr header = {};
  header.kind = 0x63636363;
  ficon_init_cmi_hdr(&header, 1, nullptr, reinterpret_cast<const char*>(&header.kind), 2);
  EXPECT_EQ(bytes_of(header), record(112).u32(0, 1).u32(4, 2).text(52, "cccc").get());
}

// The rest of a field is cleared when its text is there.
TEST_F(MessageHeader, TextCanComeFromFurtherBackInItsOwnField) {
  ficon_cmi_hdr header = {};
  ficon_init_cmi_hdr(&header, 1, "0123456789tail", nullptr, 2);
  ficon_init_cmi_hdr(&header, 1, header.text1 + 10, nullptr, 2);
  EXPECT_EQ(bytes_of(header), record(112).u32(0, 1).u32(4, 2).text(12, "tail").get());
}

TEST_F(MessageHeader, AsksNothingOfThePlatform) {
  filled(1, "a", "b", 2);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

} // namespace
