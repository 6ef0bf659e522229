// The host's clock as a test wants it. gettimeofday() of this process is defined here, and the library finds it before that
// of libc; every reading stands in the platform's log of calls.
#ifndef TESTS_TIME_OF_DAY_HOST_CLOCK_H
#define TESTS_TIME_OF_DAY_HOST_CLOCK_H

#include <cstdint>

namespace chnsw_test {

struct host_clock {
  int64_t seconds = 0;
  int64_t microseconds = 0;
  bool readable = true; // otherwise a reading fails, with a time left behind that must not be used
};

host_clock& the_host_clock();

} // namespace chnsw_test

#endif
