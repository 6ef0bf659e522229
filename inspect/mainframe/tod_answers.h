// What a moment is on the TOD clock, in UTC and on a host's clock; and the time stamps of VSANs.
#ifndef INSPECT_TOD_ANSWERS_H
#define INSPECT_TOD_ANSWERS_H

#include <cstdint>
#include <optional>
#include <string>

#include "inspect/mainframe/tod_arithmetic.h"
#include "inspect/mainframe/tod_values.h"
#include "vswitch/chassis_description.h"

namespace inspect {

struct tod_answer {
  std::string word; // that was asked about
  uint64_t tod = 0;
  vswitch::instant utc;
  tod_texts texts;
  unsigned leap_seconds = 0;
};

// Throws a question error when the TOD clock does not reach to the moment.
tod_answer answer_moment(const named_moment& moment, unsigned leap_seconds);

struct time_stamp {
  uint32_t vsan = 0;
  ficon_host_time at{};
  unsigned leap_seconds = 0;
  uint32_t status = 0; // the library's
  // The rest only with status 0.
  std::optional<vswitch::time_reference> reference;
  uint64_t tod = 0;
  tod_texts texts;
  vswitch::instant utc;
};

// Asks the library, which has to serve the chassis. Its texts are held against the TOD clock value; a contradiction is thrown as an
// internal error.
time_stamp ask_time_stamp(const vswitch::chassis_description& chassis, uint32_t vsan, const ficon_host_time& at,
                          unsigned leap_seconds);

} // namespace inspect

#endif
