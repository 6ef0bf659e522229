#include "civil_calendar.h"

#include <array>
#include <stdexcept>
#include <string_view>

namespace chnsw_test {
namespace {

constexpr std::array<std::string_view, 7> kWeekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<int, 12> kMonthLengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Leap days from year 1 to the end of a year.
int64_t leap_days_until_end_of(int year) {
  return year / 4 - year / 100 + year / 400;
}

int64_t days_of_years_before(int year) {
  return int64_t{365} * (year - 1) + leap_days_until_end_of(year - 1);
}

std::string two_digits(int value) {
  return (value < 10 ? "0" : "") + std::to_string(value);
}

// Microseconds are not padded.
std::string clock_text(const civil_time& time) {
  return two_digits(time.hour) + ":" + two_digits(time.minute) + ":" + two_digits(time.second) + "." +
         std::to_string(time.microsecond);
}

std::string day_text(const civil_time& time) {
  return std::string(kWeekdays.at(static_cast<size_t>(weekday(time)))) + " " +
         std::string(kMonths.at(static_cast<size_t>(time.month - 1))) + " " + std::to_string(time.day);
}

int64_t second_of_day(const civil_time& time) {
  return (int64_t{time.hour} * 60 + time.minute) * 60 + time.second;
}

} // namespace

bool is_leap(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int days_in(int year, int month) {
  return kMonthLengths.at(static_cast<size_t>(month - 1)) + (month == 2 && is_leap(year) ? 1 : 0);
}

int64_t days_since_1900(const civil_time& date) {
  if (date.day < 1 || date.day > days_in(date.year, date.month)) throw std::out_of_range("no such day");
  int64_t days = days_of_years_before(date.year) - days_of_years_before(1900) + date.day - 1;
  for (int month = 1; month < date.month; ++month) days += days_in(date.year, month);
  return days;
}

// 1900 began on a Monday.
int weekday(const civil_time& date) {
  return static_cast<int>((days_since_1900(date) + 1) % 7);
}

uint64_t tod_of(const civil_time& time) {
  const int64_t seconds = days_since_1900(time) * 24 * 60 * 60 + second_of_day(time);
  return (static_cast<uint64_t>(seconds) * 1'000'000 + static_cast<uint64_t>(time.microsecond)) * 4096;
}

int64_t host_seconds_of(const civil_time& time) {
  return (days_since_1900(time) - days_since_1900({1970, 1, 1})) * 24 * 60 * 60 + second_of_day(time);
}

std::string day_first_text(const civil_time& time) {
  return day_text(time) + " " + clock_text(time) + " " + std::to_string(time.year);
}

std::string year_first_text(const civil_time& time) {
  return std::to_string(time.year) + " " + day_text(time) + " " + clock_text(time);
}

} // namespace chnsw_test
