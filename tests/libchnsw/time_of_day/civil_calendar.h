// A calendar of the tests' own, so that what the library says of a date is compared with something that shares nothing with
// it: it counts from a date to days, where the library counts from days to a date.
#ifndef TESTS_TIME_OF_DAY_CIVIL_CALENDAR_H
#define TESTS_TIME_OF_DAY_CIVIL_CALENDAR_H

#include <cstdint>
#include <string>

namespace chnsw_test {

struct civil_time {
  int year;
  int month; // 1 to 12
  int day;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int microsecond = 0;
};

inline constexpr civil_time last_microsecond_of(int year, int month, int day) {
  return {year, month, day, 23, 59, 59, 999999};
}

bool is_leap(int year);
int days_in(int year, int month);

// Days from 1900-01-01.
int64_t days_since_1900(const civil_time& date);

// 0 is Sunday.
int weekday(const civil_time& date);

// The TOD clock value, its fraction of a microsecond 0.
uint64_t tod_of(const civil_time& time);

// Seconds since 1970-01-01 00:00:00.
int64_t host_seconds_of(const civil_time& time);

// The texts that the library owes for this time.
std::string day_first_text(const civil_time& time);
std::string year_first_text(const civil_time& time);

} // namespace chnsw_test

#endif
