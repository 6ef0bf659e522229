// Text made fit to be shown, words that were nearly right, and numbers in sentences.
#include <gtest/gtest.h>

#include "inspect/words/nearest_word.h"
#include "inspect/words/number_texts.h"
#include "inspect/words/printable_text.h"

namespace inspect_test {
namespace {

TEST(PrintableText, ControlCharactersAreShownAndAllElseStays) {
  EXPECT_EQ(inspect::printable("a\x1F\x20\x7F~"), "a\\x1F \\x7F~");
  EXPECT_EQ(inspect::printable("\xC2\x9F\xC2\xA0\xC3\x9F"), "\\x9F\xC2\xA0\xC3\x9F");
  EXPECT_EQ(inspect::printable("\xC2"), "\xC2");
}

TEST(PrintableText, Latin1BecomesUtf8FromTheUpperHalfOn) {
  EXPECT_EQ(inspect::utf8_of_latin1("\x7F\x80\xFF"), "\x7F\xC2\x80\xC3\xBF");
}

TEST(NearestWord, IsAtMostTwoLettersAway) {
  EXPECT_EQ(inspect::nearest_word("fornt", {"front", "info"}), "front");
  EXPECT_EQ(inspect::nearest_word("frxyz", {"front"}), "");
  EXPECT_EQ(inspect::nearest_word("xy", {"ab"}), ""); // every letter is another one
  EXPECT_EQ(inspect::nearest_word("mop", {"top", "map"}), "top");
  EXPECT_EQ(inspect::suggestion("fornt", {"front"}, "see --help"), "did you mean \"front\"?");
  EXPECT_EQ(inspect::suggestion("nothing", {"front"}, "see --help"), "see --help");
}

TEST(NumberTexts, WhatIsMissingIsNone) {
  EXPECT_EQ(inspect::pn_text(511), "511");
  EXPECT_EQ(inspect::pn_text(512), "none");
  EXPECT_EQ(inspect::pa_text(0x0C), "0C");
  EXPECT_EQ(inspect::pa_text(512), "none");
  EXPECT_EQ(inspect::interface_text(0x01020400), "fc3/5 0x01020400");
  EXPECT_EQ(inspect::interface_text(0), "no interface");
}

} // namespace
} // namespace inspect_test
