// Texts of TOD clock values: ficon_get_TOD_format, ficon_get_TOD.
#include <climits>
#include <clocale>
#include <cstdlib>
#include <ctime>

#include "civil_calendar.h"
#include "date_watch.h"
#include "time_of_day_test.h"

namespace {

using namespace chnsw_test;
using ::testing::IsEmpty;

using TodText = TimeOfDayTest;

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 2042;
constexpr uint64_t kLargest = 0xFFFFFFFFFFFFFFFF;
constexpr uint64_t kMicrosecond = 4096;

struct known_text {
  uint64_t tod;
  const char* day_first;
  const char* year_first;
};

constexpr known_text kKnown[] = {
    {0, "Mon Jan 1 00:00:00.0 1900", "1900 Mon Jan 1 00:00:00.0"},
    {0x7D91048BCA000000, "Thu Jan 1 00:00:00.0 1970", "1970 Thu Jan 1 00:00:00.0"},
    {0xCE4F44C40DC3B000, "Mon Jan 5 09:07:03.123 2015", "2015 Mon Jan 5 09:07:03.123"},
    {0xCE4F44C5DD8DCB00, "Mon Jan 5 09:07:04.899804 2015", "2015 Mon Jan 5 09:07:04.899804"},
    {0x8000000000000000, "Tue May 11 11:56:53.685248 1971", "1971 Tue May 11 11:56:53.685248"},
    {kLargest, "Wed Sep 17 23:53:47.370495 2042", "2042 Wed Sep 17 23:53:47.370495"},
};

// Both texts of a time, at its first and its last 1/4096 microsecond.
void expect_texts(const civil_time& time) {
  static constexpr uint64_t kFractions[] = {0, kMicrosecond - 1};
  for (const uint64_t fraction : kFractions) {
    const char* text = kUntouchedText;
    ficon_get_TOD_format(tod_of(time) + fraction, &text, 0);
    ASSERT_EQ(text, day_first_text(time));
    ficon_get_TOD_format(tod_of(time) + fraction, &text, 1);
    ASSERT_EQ(text, year_first_text(time));
  }
}

TEST_F(TodText, KnownValuesWithTheDayFirst) {
  for (const known_text& known : kKnown) EXPECT_EQ(text_of(known.tod, 0), known.day_first);
}

TEST_F(TodText, KnownValuesWithTheYearFirst) {
  for (const known_text& known : kKnown) EXPECT_EQ(text_of(known.tod, 1), known.year_first);
}

TEST_F(TodText, EveryDateIsReleased) {
  the_dates() = {};
  text_of(0, 0);
  text_of(kLargest, 1);
  text_of(0, 7);
  EXPECT_EQ(the_dates().made, 3);
  EXPECT_EQ(the_dates().released, 3);
}

// GLib refuses to work on no date, so every field of the day is 0: a Sunday in January, in the year 1900 + 0.
TEST_F(TodText, WithoutADateTheDayIsZeroAndNothingIsReleased) {
  the_dates() = {.refuse_next = true};
  EXPECT_EQ(text_of(0xCE4F44C40DC3B000), "Sun Jan 0 09:07:03.123 1900");
  EXPECT_EQ(the_dates().made, 0);
  EXPECT_EQ(the_dates().released, 0);
}

TEST_F(TodText, FormatsHaveTheirNumbers) {
  EXPECT_EQ(FICON_TOD_FMT_DAY_FIRST, 0);
  EXPECT_EQ(FICON_TOD_FMT_YEAR_FIRST, 1);
}

TEST_F(TodText, ShortFormIsTheOneWithTheDayFirst) {
  for (const known_text& known : kKnown) {
    const char* text = kUntouchedText;
    ficon_get_TOD(known.tod, &text);
    EXPECT_STREQ(text, known.day_first);
  }
}

// Clients rely on it: ".3" is three microseconds.
TEST_F(TodText, MicrosecondsAreNotPadded) {
  constexpr uint64_t kSecond = 0x7D91048BCA000000;
  EXPECT_EQ(text_of(kSecond + 3 * kMicrosecond), "Thu Jan 1 00:00:00.3 1970");
  EXPECT_EQ(text_of(kSecond + 123 * kMicrosecond), "Thu Jan 1 00:00:00.123 1970");
  EXPECT_EQ(text_of(kSecond + 300000 * kMicrosecond), "Thu Jan 1 00:00:00.300000 1970");
  EXPECT_EQ(text_of(kSecond + 99999 * kMicrosecond, 1), "1970 Thu Jan 1 00:00:00.99999");
}

TEST_F(TodText, DayIsNotPaddedAndTheClockIs) {
  EXPECT_EQ(text_of(tod_of({1999, 8, 9, 1, 2, 3, 4})), "Mon Aug 9 01:02:03.4 1999");
  EXPECT_EQ(text_of(tod_of({1999, 8, 9, 1, 2, 3, 4}), 1), "1999 Mon Aug 9 01:02:03.4");
  EXPECT_EQ(text_of(tod_of({1999, 10, 10, 10, 11, 12, 999999})), "Sun Oct 10 10:11:12.999999 1999");
}

TEST_F(TodText, FractionsOfAMicrosecondAreCutOff) {
  EXPECT_EQ(text_of(kMicrosecond - 1), "Mon Jan 1 00:00:00.0 1900");
  EXPECT_EQ(text_of(kMicrosecond), "Mon Jan 1 00:00:00.1 1900");
  EXPECT_EQ(text_of(2 * kMicrosecond - 1), "Mon Jan 1 00:00:00.1 1900");
}

TEST_F(TodText, LongestTextHasThirtyOneCharacters) {
  const civil_time longest = {2000, 12, 31, 23, 59, 59, 999999};
  EXPECT_EQ(text_of(tod_of(longest), 0), "Sun Dec 31 23:59:59.999999 2000");
  EXPECT_EQ(text_of(tod_of(longest), 1).size(), 31u);
}

TEST_F(TodText, FirstAndLastMicrosecondOfEveryYear) {
  for (int year = kFirstYear; year < kLastYear; ++year) {
    expect_texts({year, 1, 1});
    expect_texts(last_microsecond_of(year, 12, 31));
  }
  expect_texts({kLastYear, 1, 1});
  expect_texts({kLastYear, 9, 17, 23, 53, 47, 370495});
}

TEST_F(TodText, EveryLeapDayAndItsNeighbours) {
  int leap_days = 0;
  for (int year = kFirstYear; year <= kLastYear; ++year) {
    expect_texts(last_microsecond_of(year, 2, 28));
    expect_texts({year, 3, 1});
    if (!is_leap(year)) continue;
    expect_texts({year, 2, 29});
    expect_texts(last_microsecond_of(year, 2, 29));
    ++leap_days;
  }
  EXPECT_EQ(leap_days, 35);
}

TEST_F(TodText, EveryDay) {
  const civil_time last_day = {kLastYear, 9, 17};
  for (int year = kFirstYear; year <= kLastYear; ++year) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= days_in(year, month); ++day) {
        const civil_time date = {year, month, day};
        if (days_since_1900(date) > days_since_1900(last_day)) return;
        ASSERT_EQ(text_of(tod_of(date)), day_first_text(date));
      }
    }
  }
  FAIL() << "the last day was not reached";
}

TEST_F(TodText, EverySecondOfADay) {
  for (int hour = 0; hour < 24; ++hour) {
    for (int minute = 0; minute < 60; ++minute) {
      for (int second = 0; second < 60; ++second) {
        const civil_time time = {2024, 2, 29, hour, minute, second, second};
        ASSERT_EQ(text_of(tod_of(time)), day_first_text(time));
      }
    }
  }
}

TEST_F(TodText, TextIsInOneBufferThatTheNextCallOverwrites) {
  const char* first = nullptr;
  const char* second = nullptr;
  ficon_get_TOD_format(0, &first, 0);
  ficon_get_TOD_format(kLargest, &second, 1);
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "2042 Wed Sep 17 23:53:47.370495");
  ficon_get_TOD(0x7D91048BCA000000, nullptr);
  EXPECT_STREQ(first, "Thu Jan 1 00:00:00.0 1970");
}

TEST_F(TodText, ShorterTextLeavesNothingOfALongerOne) {
  text_of(tod_of({2000, 12, 31, 23, 59, 59, 999999}));
  EXPECT_EQ(text_of(0), "Mon Jan 1 00:00:00.0 1900");
}

TEST_F(TodText, WithoutATextAddressTheTextIsWrittenAllTheSame) {
  const char* buffer = nullptr;
  ficon_get_TOD_format(0, &buffer, 0);
  ficon_get_TOD_format(kLargest, nullptr, 1);
  EXPECT_STREQ(buffer, "2042 Wed Sep 17 23:53:47.370495");
}

// Clients rely on it: the text of an earlier call stays, and its address is handed out.
TEST_F(TodText, FormatTwoAndEveryOtherLeavesTheEarlierText) {
  const char* buffer = nullptr;
  ficon_get_TOD_format(0, &buffer, 0);
  for (const int32_t format : {2, 3, -1, 256, 257, 65536, INT_MAX, INT_MIN}) {
    const char* text = kUntouchedText;
    ficon_get_TOD_format(kLargest, &text, format);
    EXPECT_EQ(text, buffer) << format;
    EXPECT_STREQ(text, "Mon Jan 1 00:00:00.0 1900") << format;
  }
}

TEST_F(TodText, OtherFormatWithoutATextAddressDoesNothing) {
  const char* buffer = nullptr;
  ficon_get_TOD_format(0, &buffer, 0);
  ficon_get_TOD_format(kLargest, nullptr, 2);
  EXPECT_STREQ(buffer, "Mon Jan 1 00:00:00.0 1900");
}

TEST_F(TodText, TimeZoneAndLanguageOfTheProcessDoNotMatter) {
  setenv("TZ", "Pacific/Kiritimati", 1);
  tzset();
  setlocale(LC_ALL, "");
  EXPECT_EQ(text_of(0xCE4F44C40DC3B000), "Mon Jan 5 09:07:03.123 2015");
  unsetenv("TZ");
  tzset();
  setlocale(LC_ALL, "C");
}

TEST_F(TodText, NothingIsAskedReportedOrPrinted) {
  const std::string printed = output_of([] {
    text_of(kLargest, 0);
    text_of(0, 2);
  });
  EXPECT_EQ(printed, "");
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

} // namespace
