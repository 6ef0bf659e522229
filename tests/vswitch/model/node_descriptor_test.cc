// Node descriptors: texts filled to their length, and the 32 bytes in ASCII and in a host's code page.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <vswitch/node_descriptor.h>

#include <cstring>

namespace {

using namespace vswitch;
using ::testing::ElementsAre;

const node_text& field(const std::string& name) {
  for (const node_text& candidate : kNodeTexts)
    if (candidate.name == name) return candidate;
  throw std::out_of_range(name);
}

node_descriptor whole_node() {
  node_descriptor node;
  node.codepage = 273;
  node.flags = 0x10A1B2C3;
  node.type = "004711";
  node.model = "A01";
  node.manufacturer = "ACM";
  node.plant = "X ";
  node.sequence = "0000000SN042";
  node.tag = 0xBEEF;
  return node;
}

std::string bytes_of(const ficon_node_descriptor& descriptor) {
  std::string bytes(sizeof descriptor, '\0');
  std::memcpy(bytes.data(), &descriptor, sizeof descriptor);
  return bytes;
}

// What the converter was asked for, one entry a call.
struct conversion {
  std::string text;
  uint32_t mode;
  uint32_t space;
  uint32_t codepage;

  bool operator==(const conversion&) const = default;
};
std::vector<conversion> conversions;
size_t refused_conversion; // counted from 0

// Sets the highest bit, which no ASCII character has.
int convert_by_highest_bit(const char* input, int32_t length, uint32_t mode, char** output, uint32_t* counter,
                           uint32_t* output_space, uint32_t codepage) {
  conversions.push_back({std::string(input, static_cast<size_t>(length)), mode, *output_space, codepage});
  if (conversions.size() - 1 == refused_conversion) return 0;
  for (int32_t i = 0; i < length; ++i) *(*output)++ = static_cast<char>(input[i] | 0x80);
  *counter += static_cast<uint32_t>(length);
  *output_space -= static_cast<uint32_t>(length);
  return 1;
}

class NodeDescriptor : public ::testing::Test {
 protected:
  NodeDescriptor() {
    conversions.clear();
    refused_conversion = 5;
  }
};

TEST_F(NodeDescriptor, NumbersAreFilledWithZerosOnTheLeft) {
  EXPECT_EQ(padded(field("type"), "4711"), "004711");
  EXPECT_EQ(padded(field("model"), "A"), "00A");
  EXPECT_EQ(padded(field("sequence"), "SN042"), "0000000SN042");
}

TEST_F(NodeDescriptor, CodesAreFilledWithBlanksOnTheRight) {
  EXPECT_EQ(padded(field("manufacturer"), "AC"), "AC ");
  EXPECT_EQ(padded(field("plant"), "7"), "7 ");
}

TEST_F(NodeDescriptor, TextOfItsWholeLengthStaysAndALongerOneIsNone) {
  EXPECT_EQ(padded(field("type"), "123456"), "123456");
  EXPECT_EQ(padded(field("type"), "1234567"), std::nullopt);
  EXPECT_EQ(padded(field("model"), "1234"), std::nullopt);
  EXPECT_EQ(padded(field("manufacturer"), "ACME"), std::nullopt);
  EXPECT_EQ(padded(field("plant"), "123"), std::nullopt);
  EXPECT_EQ(padded(field("sequence"), "ABCDEFGHIJKL"), "ABCDEFGHIJKL");
  EXPECT_EQ(padded(field("sequence"), "ABCDEFGHIJKLM"), std::nullopt);
}

TEST_F(NodeDescriptor, OnlyUpperCaseLettersAndDigitsAreText) {
  EXPECT_EQ(padded(field("sequence"), "AZ09"), "00000000AZ09");
  for (const char* text : {"", "a", "z", "A B", " ", "A-1", "@", "[", "/", ":", "\xC4"})
    EXPECT_EQ(padded(field("sequence"), text), std::nullopt) << text;
}

TEST_F(NodeDescriptor, WithoutBlanksOnlyThoseBehindGo) {
  EXPECT_EQ(without_blanks("AC "), "AC");
  EXPECT_EQ(without_blanks(" A "), " A");
  EXPECT_EQ(without_blanks("   "), "");
  EXPECT_EQ(without_blanks(""), "");
}

TEST_F(NodeDescriptor, CodePagesAreThoseThatAHostMayAnnounce) {
  for (int64_t number : {1, 37, 273, 275, 280, 281, 284, 285, 297, 500}) EXPECT_TRUE(is_codepage(number)) << number;
  for (int64_t number : {int64_t{0}, int64_t{-1}, int64_t{38}, int64_t{277}, int64_t{501}, (int64_t{1} << 32) + 37})
    EXPECT_FALSE(is_codepage(number)) << number;
}

TEST_F(NodeDescriptor, AsciiBytesStandInTheirPlaces) {
  const std::string expected = std::string("\x10\xA1\xB2\xC3", 4) + "004711A01ACMX 0000000SN042\xBE\xEF";
  EXPECT_EQ(bytes_of(ascii_descriptor(whole_node())), expected);
}

TEST_F(NodeDescriptor, NothingSaidIsZerosAndBlanks) {
  EXPECT_EQ(bytes_of(ascii_descriptor(node_descriptor())),
            std::string(4, '\0') + "000000000     000000000000" + std::string(2, '\0'));
  EXPECT_EQ(node_descriptor().codepage, 37u);
}

TEST_F(NodeDescriptor, AsciiBytesAndCodePageAreTheWholeNode) {
  EXPECT_EQ(node_of(273, ascii_descriptor(whole_node())), whole_node());
}

TEST_F(NodeDescriptor, TextsAloneAreConvertedEachIntoTheHostsCodePage) {
  const auto sent = host_descriptor(whole_node(), convert_by_highest_bit);
  ASSERT_TRUE(sent);
  EXPECT_EQ(bytes_of(*sent),
            std::string("\x10\xA1\xB2\xC3\xB0\xB0\xB4\xB7\xB1\xB1\xC1\xB0\xB1\xC1\xC3\xCD\xD8\xA0\xB0\xB0\xB0"
                        "\xB0\xB0\xB0\xB0\xD3\xCE\xB0\xB4\xB2\xBE\xEF",
                        32));
  EXPECT_TRUE(conversions == (std::vector<conversion>{{"004711", CHAR_CONVERT_TO_HOST, 6, 273},
                                                      {"A01", CHAR_CONVERT_TO_HOST, 3, 273},
                                                      {"ACM", CHAR_CONVERT_TO_HOST, 3, 273},
                                                      {"X ", CHAR_CONVERT_TO_HOST, 2, 273},
                                                      {"0000000SN042", CHAR_CONVERT_TO_HOST, 12, 273}}));
}

TEST_F(NodeDescriptor, TextThatCannotBeConvertedLeavesNoDescriptor) {
  for (refused_conversion = 0; refused_conversion < 5; ++refused_conversion) {
    conversions.clear();
    EXPECT_EQ(host_descriptor(whole_node(), convert_by_highest_bit).has_value(), false) << refused_conversion;
  }
}

TEST_F(NodeDescriptor, WithoutAConverterThereIsNoDescriptor) {
  EXPECT_FALSE(host_descriptor(whole_node(), nullptr).has_value());
}

// The characters that are allowed stand at the same place in all of them.
TEST_F(NodeDescriptor, TextsAreTheSameBytesInEveryEbcdicCodePage) {
  void* object = dlopen(VSWITCH_CHAR_CONVERT, RTLD_NOW);
  ASSERT_NE(object, nullptr) << dlerror();
  const auto convert = reinterpret_cast<ficon_convert_fn>(dlsym(object, "convert"));
  const std::string expected(
      "\x10\xA1\xB2\xC3\xF0\xF0\xF4\xF7\xF1\xF1\xC1\xF0\xF1\xC1\xC3\xD4\xE7\x40\xF0\xF0\xF0\xF0\xF0\xF0\xF0\xE2\xD5\xF0\xF4"
      "\xF2"
      "\xBE\xEF",
      32);
  for (uint32_t codepage : {37u, 273u, 275u, 280u, 281u, 284u, 285u, 297u, 500u}) {
    auto node = whole_node();
    node.codepage = codepage;
    const auto sent = host_descriptor(node, convert);
    ASSERT_TRUE(sent) << codepage;
    EXPECT_EQ(bytes_of(*sent), expected) << codepage;
  }
  auto ascii = whole_node();
  ascii.codepage = 1;
  EXPECT_EQ(bytes_of(host_descriptor(ascii, convert).value()), bytes_of(ascii_descriptor(ascii)));
}

} // namespace
