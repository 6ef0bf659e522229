// The fixture of the tests of the time of day.
#ifndef TESTS_TIME_OF_DAY_TIME_OF_DAY_TEST_H
#define TESTS_TIME_OF_DAY_TIME_OF_DAY_TEST_H

#include <string>

#include "host_clock.h"
#include "library_test.h"

namespace chnsw_test {

// What text addresses hold before a call.
inline constexpr char kUntouchedText[] = "untouched";

class TimeOfDayTest : public LibraryTest {
 protected:
  TimeOfDayTest() { the_host_clock() = {}; }

  static std::string text_of(uint64_t tod, int32_t format = FICON_TOD_FMT_DAY_FIRST) {
    const char* text = kUntouchedText;
    ficon_get_TOD_format(tod, &text, format);
    return text;
  }

  static void set_clock(int64_t seconds, int64_t microseconds) { the_host_clock() = {seconds, microseconds, true}; }
  static void break_clock() { the_host_clock() = {1420448823, 123, false}; }
};

} // namespace chnsw_test

#endif
