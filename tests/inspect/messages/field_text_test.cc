// Fields as people read them, by their bytes.
#include "inspect/messages/field_text.h"

#include <gtest/gtest.h>

#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::bytes;

constexpr uint32_t kUnknownPage = 38;

field_value read(field_form form, const std::string& digits, uint32_t codepage = 0, byte_order order = byte_order::big) {
  const std::string field_bytes = bytes(digits);
  return read_field({"field", 4, field_bytes.size(), form, 0, ""}, field_bytes, codepage, order);
}

std::string text(field_form form, const std::string& digits, uint32_t codepage = 0) {
  return read(form, digits, codepage).text.value_or("(none)");
}

TEST(ReadField, KeepsPlaceAndBytes) {
  const field_value value = read(field_form::number, "0102");
  EXPECT_EQ(value.name, "field");
  EXPECT_EQ(value.offset, 4u);
  EXPECT_EQ(value.bytes, "\x01\x02");
  EXPECT_EQ(value.number, 258u);
  EXPECT_EQ(value.text, "258");
}

TEST(ReadField, OnlyInterfacesOnTheWireHaveAnOrderOfTheirOwn) {
  EXPECT_EQ(read(field_form::interface_on_wire, "01000400", 0, byte_order::little).number, 0x01000400u);
  EXPECT_EQ(read(field_form::interface_as_is, "00040001", 0, byte_order::little).number, 0x01000400u);
  EXPECT_EQ(read(field_form::number, "00040001", 0, byte_order::little).number, 0x01000400u);
}

TEST(ReadField, NumbersWithNames) {
  EXPECT_EQ(text(field_form::status, "4085004A"), "FICON_RC_NO_IF 0x4085004A");
  EXPECT_EQ(text(field_form::codepage, "00000025"), "37 us-canada");
  EXPECT_EQ(text(field_form::interface_on_wire, "01000400"), "fc1/5");
  EXPECT_EQ(text(field_form::interface_on_wire, "00000000"), "none");
}

TEST(ReadField, SetsAreRanges) {
  EXPECT_EQ(text(field_form::vsan_set, "0000"), "none");
  EXPECT_EQ(text(field_form::vsan_set, "8001"), "0,15");
  EXPECT_EQ(text(field_form::vsan_set, "7183"), "1-3,7-8,14-15");
  EXPECT_EQ(text(field_form::vsan_set, "FFFF"), "0-15");
}

TEST(ReadField, ListsAreInterfaces) {
  EXPECT_EQ(text(field_form::interface_list, ""), "none");
  EXPECT_EQ(text(field_form::interface_list, "01000400 00000000"), "fc1/5,none");
  EXPECT_FALSE(read(field_form::interface_list, "01000400").number.has_value());
}

TEST(ReadField, TextsEndBeforeTheFirstNul) {
  EXPECT_EQ(text(field_form::text, "4142 00 43"), "AB");
  EXPECT_EQ(text(field_form::text, "4142"), "AB");
  EXPECT_EQ(text(field_form::text, "FC00"), "ü");
}

TEST(ReadField, HostTextsNeedACodePage) {
  EXPECT_EQ(text(field_form::host_text, "C1C240", 37), "AB");
  EXPECT_EQ(text(field_form::host_text, "C1C240", kUnknownPage), "(none)");
  EXPECT_EQ(text(field_form::host_text, "C1C240", 0), "(none)");
}

TEST(ReadField, BytesAreZerosOrDigits) {
  EXPECT_EQ(text(field_form::bytes, "000000"), "zeros");
  EXPECT_EQ(text(field_form::bytes, "000001"), "0x000001");
}

} // namespace
} // namespace inspect
