#include "host_clock.h"

#include <sys/time.h>

#include <cerrno>

#include "programmable_platform.h"

namespace chnsw_test {

host_clock& the_host_clock() {
  static host_clock clock;
  return clock;
}

} // namespace chnsw_test

extern "C" int gettimeofday(timeval* time, void* zone) noexcept {
  const chnsw_test::host_clock& clock = chnsw_test::the_host_clock();
  chnsw_test::the_platform().record(chnsw_test::programmable_platform::kind::work,
                                    zone == nullptr ? "gettimeofday(no zone)" : "gettimeofday(zone)");
  time->tv_sec = static_cast<time_t>(clock.seconds);
  time->tv_usec = static_cast<suseconds_t>(clock.microseconds);
  if (clock.readable) return 0;
  errno = EINVAL;
  return -1;
}
