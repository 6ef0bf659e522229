// TOD clock values by the library, each held against the arithmetic that is behind it.
#ifndef INSPECT_TOD_ARITHMETIC_H
#define INSPECT_TOD_ARITHMETIC_H

#include <cstdint>
#include <string>

#include "vswitch/mainframe_time.h"

namespace inspect {

inline constexpr int64_t kTodUnits = 4096; // of a microsecond

// The library's two texts of a TOD clock value.
struct tod_texts {
  std::string day_first;
  std::string year_first;
};
tod_texts texts_of(uint64_t tod);

// Zero seconds and zero microseconds: the library takes it for no reference.
bool is_no_reference(const vswitch::time_reference& reference);

// How the library goes from a reference to a host time.
struct relative_time {
  int32_t seconds;      // the difference in 32 bits, as it wraps
  int32_t microseconds; // the same
  uint64_t tod;
};
relative_time relative_to(const vswitch::time_reference& reference, const ficon_host_time& at);

// The TOD clock value of a host time by a reference, from the library. It is worked out here as well, and a difference is thrown
// as an internal error.
uint64_t tod_by_library(const vswitch::time_reference& reference, const ficon_host_time& at);

// The value of an instant: the library's where 32 bits of seconds hold it, else by the same rule.
uint64_t tod_by_library(vswitch::instant at);

// Leap seconds are those that the TOD clock is ahead of UTC.
vswitch::instant with_leap_seconds(vswitch::instant at, unsigned leap_seconds);
vswitch::instant without_leap_seconds(uint64_t tod, unsigned leap_seconds);

} // namespace inspect

#endif
