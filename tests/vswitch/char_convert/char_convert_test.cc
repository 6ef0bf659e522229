// The character conversion that comes with the virtual switch. Bytes are those of the published code page charts.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/char_convert.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "test_switch.h"

namespace {

using testing::ElementsAre;

constexpr uint32_t kPages[] = {37, 273, 275, 280, 281, 284, 285, 297, 500};
constexpr char kUntouched = 0x55;

ficon_convert_fn entry() {
  void* object = dlopen(VSWITCH_CHAR_CONVERT, RTLD_NOW);
  return object == nullptr ? nullptr : reinterpret_cast<ficon_convert_fn>(dlsym(object, "convert"));
}

// What a conversion made, or a complaint that no text equals.
std::string converted(uint32_t codepage, uint32_t mode, const std::string& text) {
  std::string result(text.size() + 1, kUntouched);
  char* cursor = result.data();
  uint32_t counter = 7;
  auto space = static_cast<uint32_t>(text.size());
  if (entry()(text.data(), static_cast<int32_t>(text.size()), mode, &cursor, &counter, &space, codepage) == 0)
    return "(refused)";
  if (cursor != result.data() + text.size() || counter != text.size() + 7 || space != 0) return "(counted wrongly)";
  if (result.back() != kUntouched) return "(wrote too far)";
  result.pop_back();
  return result;
}

std::string from_host(uint32_t codepage, const std::string& text) {
  return converted(codepage, CHAR_CONVERT_FROM_HOST, text);
}
std::string to_host(uint32_t codepage, const std::string& text) {
  return converted(codepage, CHAR_CONVERT_TO_HOST, text);
}

std::string all_bytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

// The bytes of a page that become a switch's SUB, without the host's own.
std::vector<int> without_character(uint32_t codepage) {
  const std::string all = from_host(codepage, all_bytes());
  std::vector<int> bytes;
  for (int byte = 0; byte < 256; ++byte)
    if (all[static_cast<size_t>(byte)] == 0x1A && byte != 0x3F) bytes.push_back(byte);
  return bytes;
}

long substituted_for_host(uint32_t codepage) {
  const std::string all = to_host(codepage, all_bytes());
  return std::count(all.begin(), all.end(), 0x3F) - 1; // SUB itself
}

// ---- What a page says ----

TEST(CharConvert, EveryPageHasDigitsLettersAndBlankAtTheSamePlaces) {
  const std::string text = "ABIJRSZ abijrsz 0123456789 .<(+&*);-/,%_>?:'=\"";
  const std::string bytes =
      "\xC1\xC2\xC9\xD1\xD9\xE2\xE9\x40\x81\x82\x89\x91\x99\xA2\xA9\x40\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7\xF8\xF9\x40"
      "\x4B\x4C\x4D\x4E\x50\x5C\x5D\x5E\x60\x61\x6B\x6C\x6D\x6E\x6F\x7A\x7D\x7E\x7F";
  for (uint32_t codepage : kPages) {
    EXPECT_EQ(from_host(codepage, bytes), text) << codepage;
    EXPECT_EQ(to_host(codepage, text), bytes) << codepage;
  }
}

// The places where the pages differ most: 4A 4F 5A 5B 5F 6A 79 7B 7C A1 B0 C0 D0 E0.
TEST(CharConvert, NationalCharactersOfEveryPage) {
  const std::string places = "\x4A\x4F\x5A\x5B\x5F\x6A\x79\x7B\x7C\xA1\xB0\xC0\xD0\xE0";
  const struct {
    uint32_t codepage;
    std::string text;
  } rows[] = {
      {37, "\xA2|!$\xAC\xA6`#@~^{}\\"},                         // cent, not sign, broken bar
      {273, "\xC4!\xDC$^\xF6`#\xA7\xDF\xA2\xE4\xFC\xD6"},       // A O U with diaereses, section, sharp s
      {280, "\xB0!\xE9$^\xF2\xF9\xA3\xA7\xEC\xA2\xE0\xE8\xE7"}, // degree, e acute, o u i a e grave, pound, c cedilla
      {284, "[|]$\xAC\xF1`\xD1@\xA8\xA2{}\\"},                  // N with tilde, diaeresis
      {297, "\xB0!\xA7$^\xF9\xB5\xA3\xE0\xA8\xA2\xE9\xE8\xE7"}, // degree, section, u a e grave, micro, e acute
      {500, "[!]$^\xA6`#@~\xA2{}\\"},
  };
  for (const auto& row : rows) EXPECT_EQ(from_host(row.codepage, places), row.text) << row.codepage;
}

TEST(CharConvert, NationalCharactersOfThePagesWithGaps) {
  EXPECT_EQ(from_host(275, "\x4A\x4F\x5A\x5B\x5F\x6A\x79\x7B\x7C\xC0\xD0"), "\xC9!$\xC7^\xE7\xE3\xD5\xC3\xF5\xE9");
  EXPECT_EQ(from_host(281, "\x4A\x4F\x5A\x5B\x5F\x79\x7B\x7C\xC0\xD0\xE0"), "\xA3|!\xA5\xAC`#@{}$");
  EXPECT_EQ(from_host(285, "\x4A\x4F\x5A\x5B\x5F\x6A\x79\x7B\x7C\xB0\xB1\xBC\xC0\xD0\xE0"), "$|!\xA3\xAC\xA6`#@\xA2[~{}\\");
}

TEST(CharConvert, NationalCharactersGoToTheirOwnPages) {
  EXPECT_EQ(to_host(273, "\xC4\xD6\xDC\xE4\xF6\xFC\xDF"), "\x4A\xE0\x5A\xC0\x6A\xD0\xA1");
  EXPECT_EQ(to_host(37, "\xC4\xD6\xDC\xE4\xF6\xFC\xDF"), "\x63\xEC\xFC\x43\xCC\xDC\x59");
  EXPECT_EQ(to_host(285, "\xA3$"), "\x5B\x4A");
  EXPECT_EQ(to_host(37, "\xA3$"), "\xB1\x5B");
}

TEST(CharConvert, ControlsKeepTheirMeaning) {
  for (uint32_t codepage : kPages) {
    EXPECT_EQ(from_host(codepage, std::string("\0\x05\x0D\x25\x3F", 5)), std::string("\0\t\r\n\x1A", 5)) << codepage;
    EXPECT_EQ(to_host(codepage, std::string("\0\t\r\n\x1A", 5)), std::string("\0\x05\x0D\x25\x3F", 5)) << codepage;
  }
}

TEST(CharConvert, PageOneIsLeftAsItIs) {
  EXPECT_EQ(from_host(1, all_bytes()), all_bytes());
  EXPECT_EQ(to_host(1, all_bytes()), all_bytes());
}

// ---- What a page lacks ----

TEST(CharConvert, SixPagesHoldAllOfIso8859AndAreReversible) {
  for (uint32_t codepage : {37u, 273u, 280u, 284u, 297u, 500u}) {
    EXPECT_THAT(without_character(codepage), ElementsAre()) << codepage;
    EXPECT_EQ(substituted_for_host(codepage), 0) << codepage;
    EXPECT_EQ(to_host(codepage, from_host(codepage, all_bytes())), all_bytes()) << codepage;
    EXPECT_EQ(from_host(codepage, to_host(codepage, all_bytes())), all_bytes()) << codepage;
  }
}

TEST(CharConvert, OverlineOfPage285BecomesSub) {
  EXPECT_THAT(without_character(285), ElementsAre(0xA1));
  EXPECT_EQ(substituted_for_host(285), 1);
  EXPECT_EQ(from_host(285, "\xA1"), "\x1A");
  EXPECT_EQ(to_host(285, "\xAF"), "\x3F"); // the macron, whose place it has
}

TEST(CharConvert, PagesWithGapsTurnThemIntoSub) {
  EXPECT_EQ(without_character(275).size(), 96u);
  EXPECT_EQ(substituted_for_host(275), 96);
  EXPECT_EQ(without_character(281).size(), 97u); // 96 gaps, and the overline at A1
  EXPECT_EQ(substituted_for_host(281), 97);
  EXPECT_EQ(from_host(281, "A\xA1\x41\xC1"),
            "\x1A\x1A\x1A"
            "A");
}

TEST(CharConvert, WhatAPageHoldsComesBackFromItAlsoBesideGaps) {
  for (uint32_t codepage : {275u, 281u, 285u}) {
    const std::string there = from_host(codepage, all_bytes());
    const std::string back = to_host(codepage, there);
    for (int byte = 0; byte < 256; ++byte) {
      const auto place = static_cast<size_t>(byte);
      if (there[place] == 0x1A) continue;
      EXPECT_EQ(back[place], static_cast<char>(byte)) << codepage << " " << byte;
    }
  }
}

// ---- What is refused ----

// One call whose arguments a test spoils, and what must not be written.
class RefusedConversion : public testing::Test {
 protected:
  ~RefusedConversion() override {
    EXPECT_EQ(convert(), 0);
    EXPECT_EQ(text_, std::string(4, kUntouched));
    EXPECT_TRUE(cursor_ == text_.data() || cursor_ == nullptr);
    EXPECT_EQ(counter_, 9u);
    EXPECT_EQ(space_, space_before_);
  }

  int convert() {
    space_before_ = space_;
    return entry()(input_, length_, mode_, cursor_address_, counter_address_, space_address_, codepage_);
  }

  std::string text_ = std::string(4, kUntouched);
  const char* input_ = "\xC1\xC2\xC3\xC4";
  int32_t length_ = 4;
  uint32_t mode_ = CHAR_CONVERT_FROM_HOST;
  uint32_t codepage_ = 37;
  char* cursor_ = text_.data();
  uint32_t counter_ = 9;
  uint32_t space_ = 4;
  char** cursor_address_ = &cursor_;
  uint32_t* counter_address_ = &counter_;
  uint32_t* space_address_ = &space_;

 private:
  uint32_t space_before_ = 0;
};

TEST_F(RefusedConversion, NoPages) {
  for (uint32_t codepage : {0u, 2u, 36u, 38u, 274u, 501u, 1047u, UINT32_MAX}) {
    codepage_ = codepage;
    EXPECT_EQ(convert(), 0) << codepage;
  }
}
TEST_F(RefusedConversion, NoModes) {
  for (uint32_t mode : {3u, UINT32_MAX, 2u}) {
    mode_ = mode;
    codepage_ = 37;
    EXPECT_EQ(convert(), 0) << mode;
    codepage_ = 1;
    EXPECT_EQ(convert(), 0) << mode;
  }
}
TEST_F(RefusedConversion, NegativeLength) {
  length_ = -1;
}
TEST_F(RefusedConversion, LowestLength) {
  length_ = INT32_MIN;
}
TEST_F(RefusedConversion, OneByteTooLittleSpace) {
  space_ = 3;
}
TEST_F(RefusedConversion, PlainTextWithTooLittleSpace) {
  codepage_ = 1;
  space_ = 3;
}
TEST_F(RefusedConversion, NoInput) {
  input_ = nullptr;
}
TEST_F(RefusedConversion, NoOutput) {
  cursor_ = nullptr;
}
TEST_F(RefusedConversion, NoCursor) {
  cursor_address_ = nullptr;
}
TEST_F(RefusedConversion, NoCounter) {
  counter_address_ = nullptr;
}
TEST_F(RefusedConversion, NoSpaceCount) {
  space_address_ = nullptr;
}

TEST(CharConvert, NothingIsConvertedToNothing) {
  EXPECT_EQ(from_host(500, ""), "");
  EXPECT_EQ(to_host(1, ""), "");
}

// ---- How it is found ----

TEST(CharConvert, IsLoadedInEveryProcessThatHasTheServices) {
  EXPECT_NE(dlopen("libchar_convert.so", RTLD_LAZY | RTLD_NOLOAD), nullptr);
}

TEST(CharConvert, TheLibraryFindsIt) {
  char text[] = "\xC1\xC3\xD4\x4A";
  EXPECT_EQ(convert_codepage(CHAR_CONVERT_FROM_HOST, 273, text, 4), 0u);
  EXPECT_STREQ(text, "ACM\xC4");
  EXPECT_EQ(convert_codepage(CHAR_CONVERT_TO_HOST, 273, text, 4), 0u);
  EXPECT_STREQ(text, "\xC1\xC3\xD4\x4A");
  EXPECT_EQ(convert_codepage(CHAR_CONVERT_FROM_HOST, 274, text, 4), uint32_t{FICON_RC_CONVERT});
  EXPECT_EQ(convert_codepage(CHAR_CONVERT_FROM_HOST, 273, text, -1), uint32_t{FICON_RC_CONVERT});
  EXPECT_STREQ(text, "\xC1\xC3\xD4\x4A");
}

TEST(CharConvert, ProgramsThatLinkOrPreloadTheServicesHaveIt) {
  const auto linked = vswitch_test::run({VSWITCH_CLIENT, "text", "37", "\xC1\xF1"});
  EXPECT_EQ(linked.output, "status 0x00000000 A1\n");
  // A sanitizer wants to be the first library of a process, which a preloaded one comes before.
  const auto preloaded = vswitch_test::run({VSWITCH_PRELOADED_CLIENT, "text", "37", "\xC1\xF1"},
                                           {VSWITCH_PRELOADED, "ASAN_OPTIONS=verify_asan_link_order=0"});
  EXPECT_EQ(preloaded.output, "status 0x00000000 A1\n");
  EXPECT_EQ(preloaded.errors, "");
}

TEST(CharConvert, FirstUseByManyThreadsFillsATableOnce) {
  std::vector<std::thread> threads;
  std::vector<std::string> texts(16);
  for (size_t n = 0; n < texts.size(); ++n)
    threads.emplace_back([&text = texts[n], n] { text = from_host(kPages[n % 3], "\xC1\x81\xF9\x5C"); });
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(texts, testing::Each("Aa9*"));
}

} // namespace
