#include "inspect/messages/hex_text.h"

#include <gtest/gtest.h>

#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::complaint;

const std::string kSixteen = "ABCDEFGHIJKLMNOP";
const std::string kSixteenHex = "41 42 43 44 45 46 47 48 49 4a 4b 4c 4d 4e 4f 50";

std::string refusal(const std::string& text) {
  return complaint([&] { parse_hex(text); });
}

TEST(HexText, IsInGroups) {
  EXPECT_EQ(hex_text("\x01\xAB\xFF"), "01ABFF");
  EXPECT_EQ(hex_text("\x01\xAB\xFF", 1), "01 AB FF");
  EXPECT_EQ(hex_text("\x01\xAB\xFF\x02", 2), "01AB FF02");
  EXPECT_EQ(hex_text("", 4), "");
}

TEST(ParseHex, TakesDigitsInAnyGroupsAndCase) {
  EXPECT_EQ(parse_hex("4142"), "AB");
  EXPECT_EQ(parse_hex("0x41 0X42, 43:44\t4a4B"), "ABCDJK");
  EXPECT_EQ(parse_hex(""), "");
}

TEST(ParseHex, RefusesHalfBytesAndOtherCharacters) {
  EXPECT_EQ(refusal("41 4"), "\"4\" has an odd number of digits; a byte has two");
  EXPECT_EQ(refusal("41 4G"), "\"4G\" is not hexadecimal; expected bytes of two digits, as in 0001C1F1 or 00 01 C1 F1");
  EXPECT_EQ(refusal("0x"), "\"0x\" is not hexadecimal; expected bytes of two digits, as in 0001C1F1 or 00 01 C1 F1");
}

TEST(ParseHex, NamesTheLineOnlyWhereThereAreSeveral) {
  EXPECT_EQ(refusal("41\n4"), "line 2: \"4\" has an odd number of digits; a byte has two");
  EXPECT_EQ(refusal("4\n \n"), "\"4\" has an odd number of digits; a byte has two");
}

TEST(ParseHex, LeavesOutWhatFollowsADumpsBytes) {
  EXPECT_EQ(parse_hex("00000000: 4142 4344  ABCD\n00000004: 4546       EF\n"), "ABCDEF");
  EXPECT_EQ(parse_hex("00000000  41 42  |AB|\n00000002\n"), "AB");
}

TEST(ParseHex, CountsOffsetsFromTheFirst) {
  EXPECT_EQ(parse_hex("0x0010: 41 42\n0x0012: 43"), "ABC");
  EXPECT_EQ(refusal("0010: 41 42\n0013: 43"), "line 2: the offset is 0x13, but 0x12 is the next one");
}

TEST(ParseHex, SixDigitsAreAnOffsetBeforeBytesOnly) {
  EXPECT_EQ(parse_hex("000000 41 42\n000002 43\n000003\n"), "ABC");
  EXPECT_EQ(parse_hex("414243"), "ABC");
  EXPECT_EQ(parse_hex("414243 44"), "ABCD");      // one line is no dump
  EXPECT_EQ(parse_hex("414243 44\n45"), "ABCDE"); // a dump begins with 0
}

TEST(ParseHex, FillsInTheLinesThatAStarStandsFor) {
  EXPECT_EQ(parse_hex("000000 " + kSixteenHex + "\n*\n000020 51\n000021\n"), kSixteen + kSixteen + "Q");
  EXPECT_EQ(parse_hex("000000 " + kSixteenHex + "\n*\n000010\n"), kSixteen);
}

TEST(ParseHex, RefusesAStarThatNothingStandsBeforeOrBehind) {
  EXPECT_EQ(refusal("000000 " + kSixteenHex + "\n*\n"), "the dump ends before it says how often \"*\" stands");
  EXPECT_EQ(refusal("0000: 41\n*\n0011: 42"), "line 3: the offset is 0x11, but 0x1 is the next one");
  EXPECT_EQ(refusal("*\n41"),
            "line 1: \"*\" is not hexadecimal; expected bytes of two digits, as in 0001C1F1 or 00 01 C1 F1");
}

TEST(ParseHex, RepeatsUpToAMebibyte) {
  EXPECT_EQ(parse_hex("0000: " + kSixteenHex + "\n*\n10000f: 51").size(), 0x10000Fu + 1);
  EXPECT_EQ(refusal("0000: " + kSixteenHex + "\n*\n100010: 51"),
            "line 3: the offset is 0x100010, but 0x10 is the next one");
}

} // namespace
} // namespace inspect
