// TLV arrays by their bytes, and what is said of damaged ones.
#include "inspect/messages/tlv_value.h"

#include <gtest/gtest.h>

#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::bytes;
using inspect_test::complaint;

constexpr auto big = byte_order::big;

// An array of the types 9 and 10: five bytes with three that fill them up, and two.
const std::string kArray = bytes(
    "544C5641 00000020 0002 0000"
    "0009 0005 0102030405 000000"
    "000A 0002 0607 0000");

TEST(ArrayOfValue, IsFilledUpToFourBytes) {
  EXPECT_EQ(array_of_value(bytes("C1F1E2D3D4"), 9, big), bytes("544C5641 00000018 0001 0000 0009 0005 C1F1E2D3D4 000000"));
  EXPECT_EQ(array_of_value(bytes("C1F1E2D3"), 0x0102, byte_order::little),
            bytes("41564C54 14000000 0100 0000 0201 0400 C1F1E2D3"));
  EXPECT_EQ(array_of_value("", 9, big), bytes("544C5641 00000010 0001 0000 0009 0000"));
}

TEST(OrderOfArray, IsThatOfItsMagic) {
  EXPECT_EQ(order_of_array(bytes("544C5641")), byte_order::big);
  EXPECT_EQ(order_of_array(bytes("41564C54")), byte_order::little);
  EXPECT_EQ(order_of_array(bytes("544C5642")), std::nullopt);
  EXPECT_EQ(order_of_array(bytes("544C56")), std::nullopt);
}

TEST(ValueOfArray, FollowsTheFillingOfTheOnesBefore) {
  EXPECT_EQ(value_of_array(kArray, 9, big), bytes("0102030405"));
  EXPECT_EQ(value_of_array(kArray, 10, big), bytes("0607"));
}

TEST(ValueOfArray, IsTheFirstOfItsType) {
  EXPECT_EQ(value_of_array(bytes("544C5641 00000018 0002 0000 0009 0001 01 000000 0009 0000"), 9, big), bytes("01"));
}

TEST(ValueOfArray, MayBeEmptyAndLast) {
  EXPECT_EQ(value_of_array(bytes("544C5641 00000010 0001 0000 0009 0000"), 9, big), "");
}

TEST(ValueOfArray, NeedsNoFillingAtTheArraysEnd) {
  EXPECT_EQ(value_of_array(bytes("544C5641 00000011 0001 0000 0009 0001 07"), 9, big), bytes("07"));
}

TEST(ValueOfArray, IsNotLookedForBehindTheArray) {
  EXPECT_EQ(complaint([] { value_of_array(bytes("544C5641 0000000C 0001 0000 0009 0001 07"), 9, big); }),
            "the TLV array holds no value of type 9; it holds none");
}

TEST(ValueOfArray, NamesTheTypesThatAreThere) {
  EXPECT_EQ(complaint([] { value_of_array(bytes("544C5641 00000018 0002 0000 0007 0001 01 000000 0008 0000"), 9, big); }),
            "the TLV array holds no value of type 9; it holds type 7, 8");
}

TEST(ValueOfArray, SaysWhereADamagedArrayEnds) {
  EXPECT_EQ(complaint([] { value_of_array(bytes("544C5641 0000000C 0001 00"), 9, big); }),
            "1 byte is missing: the TLV array ends within its header");
  EXPECT_EQ(complaint([] { value_of_array(bytes("544C5641 0000000D 0001 0000"), 9, big); }),
            "1 byte is missing: the TLV array says to have 13 bytes, there are 12");
  EXPECT_EQ(complaint([] { value_of_array(bytes("544C5641 0000000F 0001 0000 0009 00 00"), 9, big); }),
            "1 byte is missing: the TLV array ends within a value's type and length");
  EXPECT_EQ(complaint([] { value_of_array(bytes("544C5641 00000011 0001 0000 0009 0003 0700"), 9, big); }),
            "2 bytes are missing: the TLV array ends within its value of type 9");
}

} // namespace
} // namespace inspect
