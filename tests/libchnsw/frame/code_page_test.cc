/* Code pages: their names, the converter that is loaded at run time, and what is done with it. A process finds one
 * converter, if any, so each suite about it runs in processes of its own, whose LD_LIBRARY_PATH leads to the converter of
 * that suite. */
#include <dlfcn.h>

#include <climits>
#include <cstring>
#include <utility>

#include "library_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::NotNull;
using ::testing::SizeIs;
using ::testing::StrEq;

// ---- names ----

class CodePageName : public LibraryTest {};

TEST_F(CodePageName, IsKnownForTenNumbers) {
  EXPECT_THAT(ficon_get_codepage_name(1), StrEq("ascii"));
  EXPECT_THAT(ficon_get_codepage_name(37), StrEq("us-canada"));
  EXPECT_THAT(ficon_get_codepage_name(273), StrEq("germany"));
  EXPECT_THAT(ficon_get_codepage_name(275), StrEq("brazil"));
  EXPECT_THAT(ficon_get_codepage_name(280), StrEq("italy"));
  EXPECT_THAT(ficon_get_codepage_name(281), StrEq("japan"));
  EXPECT_THAT(ficon_get_codepage_name(284), StrEq("spain-latinamerica"));
  EXPECT_THAT(ficon_get_codepage_name(285), StrEq("uk"));
  EXPECT_THAT(ficon_get_codepage_name(297), StrEq("france"));
  EXPECT_THAT(ficon_get_codepage_name(500), StrEq("international-5"));
}

TEST_F(CodePageName, OfAnyOtherNumberIsUnrecognized) {
  for (const uint32_t codepage : {0u, 2u, 36u, 38u, 272u, 274u, 276u, 279u, 282u, 283u, 286u, 296u, 298u, 499u, 501u,
                                  0x10001u, 0x80000001u, 0xFFFFFFFFu}) {
    EXPECT_THAT(ficon_get_codepage_name(codepage), StrEq("unrecognized"));
  }
}

TEST_F(CodePageName, IsToldWithoutTheConverter) {
  EXPECT_EQ(output_of([] { ficon_get_codepage_name(37); }), "");
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// ---- no converter ----

constexpr char kCannotOpen[] =
    "ficon_get_convert_fn_ptr(128): Unable to open libchar_convert: libchar_convert.so: cannot open shared object file: No "
    "such file or directory\n";
constexpr char kCannotLink[] = "unable to link to char_convert library\n";
constexpr char kNoEntry[] = "unable to find convert_fnptr\n";

class ConverterMissing : public LibraryTest {
 protected:
  uint32_t convert(int32_t length) { return convert_codepage(1, 37, text, length); }
  char text[128] = "hello";
};

TEST_F(ConverterMissing, IsToldOnStandardOutput) {
  ficon_convert_fn found = platform_convert;
  EXPECT_EQ(output_of([&] { found = ficon_get_convert_fn_ptr(); }), kCannotOpen);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(convert_fnptr, nullptr);
}

TEST_F(ConverterMissing, IsToldByEveryCallAgain) {
  EXPECT_EQ(output_of([] {
              ficon_get_convert_fn_ptr();
              ficon_get_convert_fn_ptr();
            }),
            std::string(kCannotOpen) + kCannotOpen);
}

TEST_F(ConverterMissing, ConversionTellsThatAndFails) {
  for (int call = 0; call < 2; ++call) {
    uint32_t status = 0;
    EXPECT_EQ(output_of([&] { status = convert(5); }), std::string(kCannotOpen) + kCannotLink);
    EXPECT_EQ(status, 0x40850020u);
  }
  EXPECT_THAT(text, StrEq("hello"));
}

// Oddity: the converter is looked for before the length is tested.
TEST_F(ConverterMissing, TextThatIsTooLongTellsOfTheConverterAllTheSame) {
  uint32_t status = 0;
  EXPECT_EQ(output_of([&] { status = convert(101); }), kCannotOpen);
  EXPECT_EQ(status, 0x40850003u);
  EXPECT_THAT(text, StrEq("hello"));
}

TEST_F(ConverterMissing, LengthsThatAreNotTooLongFailForWantOfIt) {
  for (const int32_t length : {100, 0, -1, INT_MIN}) {
    uint32_t status = 0;
    output_of([&] { status = convert(length); });
    EXPECT_EQ(status, 0x40850020u);
  }
}

TEST_F(ConverterMissing, FiveTextsOfANodeDescriptorTellOfItFiveTimes) {
  std::string descriptor(32, 'a');
  uint32_t status = 0;
  std::string expected;
  for (int i = 0; i < 5; ++i) expected += std::string(kCannotOpen) + kCannotLink;
  EXPECT_EQ(output_of([&] { status = ficon_format_rnid(37, descriptor.data()); }), expected);
  EXPECT_EQ(status, 0x40850020u);
  EXPECT_EQ(descriptor, std::string(32, 'a'));
}

TEST_F(ConverterMissing, OneThatIsAlreadySetIsUsedWithoutASearch) {
  convert_fnptr = platform_convert;
  EXPECT_EQ(output_of([&] {
              EXPECT_EQ(ficon_get_convert_fn_ptr(), platform_convert);
              EXPECT_EQ(convert(5), 0u);
            }),
            "");
  EXPECT_THAT(text, StrEq("ifmmp"));
}

TEST_F(ConverterMissing, IsNotReportedAsAnError) {
  platform.debug_flags = {102, 103};
  output_of([&] { convert(5); });
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// ---- a converter without its entry ----

class ConverterWithoutEntry : public ConverterMissing {};

TEST_F(ConverterWithoutEntry, IsToldOnStandardOutputByEveryCall) {
  for (int call = 0; call < 2; ++call) {
    ficon_convert_fn found = platform_convert;
    EXPECT_EQ(output_of([&] { found = ficon_get_convert_fn_ptr(); }), kNoEntry);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(convert_fnptr, nullptr);
  }
}

TEST_F(ConverterWithoutEntry, ConversionTellsThatAndFails) {
  for (int call = 0; call < 2; ++call) {
    uint32_t status = 0;
    EXPECT_EQ(output_of([&] { status = convert(5); }), std::string(kNoEntry) + kCannotLink);
    EXPECT_EQ(status, 0x40850020u);
  }
  EXPECT_THAT(text, StrEq("hello"));
}

TEST_F(ConverterWithoutEntry, TextThatIsTooLongTellsOfTheEntryAllTheSame) {
  uint32_t status = 0;
  EXPECT_EQ(output_of([&] { status = convert(101); }), kNoEntry);
  EXPECT_EQ(status, 0x40850003u);
}

// ---- a converter ----

class Converter : public LibraryTest {
 protected:
  Converter() { memset(text, 'a', sizeof text); }

  uint32_t convert(int32_t length) { return convert_codepage(1, 37, text, length); }
  // So many bytes, and then what was there before.
  std::string expected(const std::string& converted) const {
    return converted + std::string(sizeof text - converted.size(), 'a');
  }
  std::string whole_text() const { return std::string(text, sizeof text); }

  char text[128];
};

TEST_F(Converter, IsFoundAndKept) {
  EXPECT_EQ(output_of([] {
              const ficon_convert_fn found = ficon_get_convert_fn_ptr();
              EXPECT_NE(found, nullptr);
              EXPECT_EQ(convert_fnptr, found);
              EXPECT_EQ(ficon_get_convert_fn_ptr(), found);
            }),
            "");
}

TEST_F(Converter, IsTheEntryOfItsObject) {
  const ficon_convert_fn found = ficon_get_convert_fn_ptr();
  void* object = dlopen("libchar_convert.so", RTLD_LAZY | RTLD_NOLOAD);
  ASSERT_THAT(object, NotNull());
  EXPECT_EQ(reinterpret_cast<void*>(found), dlsym(object, "convert"));
  dlclose(object);
}

TEST_F(Converter, ObjectStaysLoadedAndItsNamesToItself) {
  ficon_get_convert_fn_ptr();
  EXPECT_THAT(dlopen("libchar_convert.so", RTLD_LAZY | RTLD_NOLOAD), NotNull());
  EXPECT_THAT(dlsym(RTLD_DEFAULT, "convert"), IsNull());
}

TEST_F(Converter, IsFoundByTheFirstConversion) {
  EXPECT_EQ(output_of([&] { EXPECT_EQ(convert(5), 0u); }), "");
  EXPECT_NE(convert_fnptr, nullptr);
  EXPECT_EQ(whole_text(), expected("bbbbb"));
}

TEST_F(Converter, IsFoundByATextThatIsTooLong) {
  EXPECT_EQ(convert(101), 0x40850003u);
  EXPECT_NE(convert_fnptr, nullptr);
  EXPECT_THAT(platform.conversions(), IsEmpty());
}

TEST_F(Converter, GetsSevenArguments) {
  EXPECT_EQ(convert_codepage(1, 273, text, 12), 0u);
  EXPECT_THAT(platform.all_calls(), ElementsAre("convert(12, mode 1, counter 0, space 100, codepage 273)"));
  ASSERT_THAT(platform.conversions(), SizeIs(1));
  EXPECT_EQ(platform.conversions()[0].input, text);
  EXPECT_NE(platform.conversions()[0].output, text);
  EXPECT_EQ(platform.conversions()[0].text, std::string(12, 'a'));
}

TEST_F(Converter, ModeAndCodePageAreHandedOnAsTheyAre) {
  convert_codepage(0, 0, text, 1);
  convert_codepage(0xFFFFFFFF, 0x80000001, text, 1);
  EXPECT_THAT(platform.calls(), ElementsAre("convert(1, mode 0, counter 0, space 100, codepage 0)",
                                            "convert(1, mode 4294967295, counter 0, space 100, codepage 2147483649)"));
}

TEST_F(Converter, StartsAfreshForEveryText) {
  convert(60);
  convert(60);
  EXPECT_THAT(platform.calls(), ElementsAre("convert(60, mode 1, counter 0, space 100, codepage 37)",
                                            "convert(60, mode 1, counter 0, space 100, codepage 37)"));
}

TEST_F(Converter, HundredBytesAreConverted) {
  EXPECT_EQ(convert(100), 0u);
  EXPECT_EQ(whole_text(), expected(std::string(100, 'b')));
}

TEST_F(Converter, HundredAndOneAreRefused) {
  for (const int32_t length : {101, 102, 1000, INT_MAX}) EXPECT_EQ(convert(length), 0x40850003u);
  EXPECT_THAT(platform.conversions(), IsEmpty());
  EXPECT_EQ(whole_text(), expected(""));
}

TEST_F(Converter, NoBytesAreConvertedToo) {
  EXPECT_EQ(convert(0), 0u);
  EXPECT_EQ(platform.calls().back(), "convert(0, mode 1, counter 0, space 100, codepage 37)");
  EXPECT_EQ(whole_text(), expected(""));
}

// Oddity: a negative length is not too long.
TEST_F(Converter, NegativeLengthReachesTheConverterAndNothingIsCopied) {
  platform.on_convert = [](const std::string&) { return std::string(50, 'x'); };
  for (const int32_t length : {-1, -100, INT_MIN}) {
    EXPECT_EQ(convert(length), 0u);
    EXPECT_EQ(platform.conversions().back().input_length, length);
  }
  EXPECT_EQ(whole_text(), expected(""));
}

TEST_F(Converter, NegativeLengthCanFailToo) {
  platform.convert_result = 0;
  EXPECT_EQ(convert(-1), 0x40850020u);
}

TEST_F(Converter, WhatItWritesBeyondTheLengthIsNotCopied) {
  platform.on_convert = [](const std::string&) { return std::string(20, 'x'); };
  EXPECT_EQ(convert(5), 0u);
  EXPECT_EQ(whole_text(), expected("xxxxx"));
}

// All bytes are copied, also those that it did not write.
TEST_F(Converter, WhatItDoesNotWriteIsZeros) {
  std::string made(100, 'z');
  platform.on_convert = [&](const std::string&) { return std::exchange(made, "xy"); };
  char other[100] = {};
  convert_codepage(1, 37, other, 100); // leaves its bytes where the next call works
  EXPECT_EQ(convert(5), 0u);
  EXPECT_EQ(whole_text(), expected(std::string("xy\0\0\0", 5)));
}

TEST_F(Converter, HasAHundredBytesForAnyText) {
  platform.on_convert = [](const std::string&) { return std::string(100, 'x'); };
  EXPECT_EQ(convert(1), 0u);
  EXPECT_EQ(whole_text(), expected("x"));
}

TEST_F(Converter, FailureLeavesTheTextAlone) {
  platform.convert_result = 0;
  EXPECT_EQ(output_of([&] { EXPECT_EQ(convert(5), 0x40850020u); }), "");
  EXPECT_THAT(platform.conversions(), SizeIs(1));
  EXPECT_EQ(whole_text(), expected(""));
}

TEST_F(Converter, AnyResultButZeroIsSuccess) {
  for (const int result : {-1, 2, INT_MIN, INT_MAX}) {
    platform.convert_result = result;
    memset(text, 'a', sizeof text);
    EXPECT_EQ(convert(2), 0u);
    EXPECT_EQ(whole_text(), expected("bb"));
  }
}

TEST_F(Converter, IsUsedAgainAfterItFailed) {
  platform.failing_conversions = {1};
  EXPECT_EQ(convert(2), 0x40850020u);
  EXPECT_EQ(convert(2), 0u);
}

} // namespace
