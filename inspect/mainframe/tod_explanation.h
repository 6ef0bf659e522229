// The arithmetic behind a TOD clock value, in words.
#ifndef INSPECT_TOD_EXPLANATION_H
#define INSPECT_TOD_EXPLANATION_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vswitch/mainframe_time.h"

namespace inspect {

struct tod_explanation {
  struct step {
    std::string label; // "seconds", "result"
    std::string text;
  };

  // What the library's rule for microseconds makes of a time stamp.
  struct drift {
    int32_t seconds_difference;
    int32_t microseconds_difference;
    double sub_second_usec;
    double ahead_of_host_time_usec;
  };

  std::string translation; // "TOD CE4F44C40DC3B000 to text"
  std::string operation;   // the library's
  std::vector<step> steps;
  std::optional<drift> drifted; // where a reference was used
};

tod_explanation explain_time_stamp(uint32_t vsan, const vswitch::time_reference& reference, const ficon_host_time& at);
tod_explanation explain_instant(vswitch::instant at, unsigned leap_seconds);
tod_explanation explain_tod(uint64_t tod, unsigned leap_seconds);

} // namespace inspect

#endif
