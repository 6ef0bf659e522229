// Fields as people write them, into literal bytes.
#include "inspect/messages/field_bytes.h"

#include <gtest/gtest.h>

#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::bytes;
using inspect_test::complaint;

std::string made(field_form form, size_t length, const std::string& text, uint32_t codepage = 0,
                 std::string_view name = "field") {
  return bytes_of_field({name, 0, length, form, 0, ""}, text, codepage, byte_order::big);
}

std::string refusal(field_form form, size_t length, const std::string& text, uint32_t codepage = 0,
                    std::string_view name = "field") {
  return complaint([&] { made(form, length, text, codepage, name); });
}

TEST(BytesOfField, NumbersFillTheirLength) {
  EXPECT_EQ(made(field_form::number, 1, "255"), bytes("FF"));
  EXPECT_EQ(made(field_form::number, 2, "0xFFFF"), bytes("FFFF"));
  EXPECT_EQ(made(field_form::number, 4, "4294967295"), bytes("FFFFFFFF"));
  EXPECT_NE(refusal(field_form::number, 1, "256"), "(nothing is wrong)");
  EXPECT_NE(refusal(field_form::number, 2, "65536"), "(nothing is wrong)");
  EXPECT_NE(refusal(field_form::number, 4, "4294967296"), "(nothing is wrong)");
}

TEST(BytesOfField, OrderIsTheFields) {
  const message_field number{"field", 0, 4, field_form::number, 0, ""};
  const message_field interface { "field", 0, 4, field_form::interface_on_wire, 0, "" };
  EXPECT_EQ(bytes_of_field(number, "1", 0, byte_order::little), bytes("01000000"));
  EXPECT_EQ(bytes_of_field(interface, "fc1/5", 0, byte_order::little), bytes("01000400"));
}

TEST(BytesOfField, StatusesHaveNamesOrNumbers) {
  EXPECT_EQ(made(field_form::status, 4, "FICON_RC_NO_IF"), bytes("4085004A"));
  EXPECT_EQ(made(field_form::status, 4, "OK"), bytes("00000000"));
  EXPECT_EQ(made(field_form::status, 4, "7"), bytes("00000007"));
  EXPECT_NE(refusal(field_form::status, 4, "FICON_RC_NOTHING"), "(nothing is wrong)");
}

TEST(BytesOfField, NoInterfaceIsZero) {
  EXPECT_EQ(made(field_form::interface_as_is, 4, "none"), bytes("00000000"));
  EXPECT_EQ(made(field_form::interface_as_is, 4, "0"), bytes("00000000"));
}

TEST(BytesOfField, TheCountIsNotGiven) {
  EXPECT_EQ(refusal(field_form::count, 4, "2"), "the interfaces are counted; give them alone");
}

TEST(BytesOfField, BytesMayBeFewer) {
  EXPECT_EQ(made(field_form::bytes, 3, "0xAB"), bytes("AB0000"));
  EXPECT_EQ(made(field_form::bytes, 3, "0xABCDEF"), bytes("ABCDEF"));
  EXPECT_EQ(refusal(field_form::bytes, 3, "0xABCDEF01"), "\"0xABCDEF01\"; expected 0x and up to 3 bytes");
  EXPECT_EQ(refusal(field_form::bytes, 1, "AB"), "\"AB\"; expected 0x and up to 1 byte");
}

TEST(BytesOfField, TextsFillUpToTheirLength) {
  EXPECT_EQ(made(field_form::text, 3, "ü"), bytes("FC0000"));
  EXPECT_EQ(made(field_form::text, 3, "abc"), "abc");
  EXPECT_EQ(refusal(field_form::text, 3, "abcd"), "\"abcd\"; expected up to 3 characters");
}

TEST(BytesOfField, HostTextsArePartsOfANode) {
  EXPECT_EQ(made(field_form::host_text, 6, "8401", 37, "node.type"), bytes("F0F0F8F4F0F1"));
  EXPECT_EQ(made(field_form::host_text, 3, "AC", 37, "node.manufacturer"), bytes("C1C340"));
  EXPECT_EQ(made(field_form::host_text, 3, "", 37, "node.model"), bytes("404040"));
  EXPECT_EQ(made(field_form::host_text, 3, "0xC1C2C3", 0, "node.model"), bytes("C1C2C3"));
  EXPECT_EQ(refusal(field_form::host_text, 3, "0xC1C2", 0, "node.model"), "\"0xC1C2\"; expected 0x and 3 bytes");
  EXPECT_EQ(refusal(field_form::host_text, 3, "C023", 37, "node.model"),
            "\"C023\"; expected a model of 1 to 3 upper-case letters and digits");
  EXPECT_EQ(refusal(field_form::host_text, 3, "C02", 38, "node.model"),
            "\"C02\"; expected codepage=37 or another code page to write it in; chnsw codepage lists them");
}

TEST(BytesOfField, NodesHaveAllTheirParts) {
  EXPECT_EQ(made(field_form::node, 32, "1-2-A-B-3", 37),
            bytes("00000000 F0F0F0F0F0F1 F0F0F2 C14040 C240 F0F0F0F0F0F0F0F0F0F0F0F3 0000"));
  const std::string expected = "expected TYPE-MODEL-MANUFACTURER-PLANT-SEQUENCE, or 0x and 32 bytes";
  EXPECT_EQ(refusal(field_form::node, 32, "1-2-A-B", 37), "\"1-2-A-B\"; " + expected);
  EXPECT_EQ(refusal(field_form::node, 32, "1-2-A-B-3-4", 37), "\"1-2-A-B-3-4\"; " + expected);
}

TEST(BytesOfField, SetsAreBitsFromTheHighest) {
  EXPECT_EQ(made(field_form::vsan_set, 512, "0,9,4095").substr(0, 2), bytes("8040"));
  EXPECT_EQ(made(field_form::vsan_set, 512, "0,9,4095").back(), '\x01');
  EXPECT_EQ(made(field_form::vsan_set, 512, "none"), std::string(512, '\0'));
  EXPECT_EQ(made(field_form::vsan_set, 512, "all"), std::string(512, '\xFF'));
}

TEST(BytesOfField, ListsAreAsLongAsTheyAre) {
  EXPECT_EQ(made(field_form::interface_list, 0, "fc1/1,fc1/2"), bytes("01000000 01000100"));
  EXPECT_EQ(made(field_form::interface_list, 0, "none"), "");
  EXPECT_EQ(refusal(field_form::interface_list, 0, "all"), "\"all\"; expected interfaces like fc1/1-4,fc3/5, or none");
}

} // namespace
} // namespace inspect
