// The tests' calendar against days that everybody knows.
#include <gtest/gtest.h>

#include "civil_calendar.h"

namespace {

using namespace chnsw_test;

enum { kSunday, kMonday, kTuesday, kWednesday, kThursday, kFriday, kSaturday };

TEST(CivilCalendar, WeekdaysAreThoseOfHistory) {
  EXPECT_EQ(weekday({1900, 1, 1}), kMonday);
  EXPECT_EQ(weekday({1914, 7, 28}), kTuesday);
  EXPECT_EQ(weekday({1929, 10, 29}), kTuesday);
  EXPECT_EQ(weekday({1945, 5, 8}), kTuesday);
  EXPECT_EQ(weekday({1963, 11, 22}), kFriday);
  EXPECT_EQ(weekday({1969, 7, 20}), kSunday);
  EXPECT_EQ(weekday({1970, 1, 1}), kThursday);
  EXPECT_EQ(weekday({1989, 11, 9}), kThursday);
  EXPECT_EQ(weekday({2000, 1, 1}), kSaturday);
  EXPECT_EQ(weekday({2000, 2, 29}), kTuesday);
  EXPECT_EQ(weekday({2001, 9, 11}), kTuesday);
  EXPECT_EQ(weekday({2038, 1, 19}), kTuesday);
  EXPECT_EQ(weekday({2042, 9, 17}), kWednesday);
}

TEST(CivilCalendar, NineteenHundredHasNoLeapDayAndTwoThousandHas) {
  EXPECT_FALSE(is_leap(1900));
  EXPECT_TRUE(is_leap(1904));
  EXPECT_FALSE(is_leap(1999));
  EXPECT_TRUE(is_leap(2000));
  EXPECT_EQ(days_since_1900({1900, 3, 1}), 59);
  EXPECT_EQ(days_since_1900({1904, 3, 1}), 4 * 365 + 60);
}

TEST(CivilCalendar, EpochsAreApartByTheKnownSpan) {
  EXPECT_EQ(days_since_1900({1970, 1, 1}), 25567);
  EXPECT_EQ(host_seconds_of({1900, 1, 1}), -2208988800);
  EXPECT_EQ(host_seconds_of({2000, 1, 1}), 946684800);
  EXPECT_EQ(host_seconds_of({2038, 1, 19, 3, 14, 7}), 2147483647);
}

TEST(CivilCalendar, DaysFollowEachOther) {
  int64_t expected = 0;
  for (int year = 1900; year <= 2042; ++year) {
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= days_in(year, month); ++day) ASSERT_EQ(days_since_1900({year, month, day}), expected++);
    }
  }
  EXPECT_EQ(expected, 143 * 365 + 35);
}

} // namespace
