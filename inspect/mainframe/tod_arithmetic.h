// TOD clock values by the library, and the arithmetic behind them in words.
#ifndef CHNSW_TOD_ARITHMETIC_H
#define CHNSW_TOD_ARITHMETIC_H

#include <cstdint>
#include <string>

#include "output/result_document.h"
#include "vswitch/mainframe_time.h"

namespace chnsw_tool {

// The library's two texts of a TOD clock value.
struct tod_texts {
  std::string day_first;
  std::string year_first;
};
tod_texts texts_of(uint64_t tod);

// The TOD clock value of a host time by a reference (of zeros: by none), from the library. It is worked out here as well, and
// a difference ends the command as an internal error.
uint64_t tod_by_library(const vswitch::time_reference& reference, const ficon_host_time& at);

// The value of an instant: the library's where 32 bits of seconds hold it, else by the same rule.
uint64_t tod_by_library(vswitch::instant at);

// Each puts the arithmetic beside a row's values.
void explain_time_stamp(uint32_t vsan, const vswitch::time_reference& reference, const ficon_host_time& at,
                        result_row& row);
void explain_instant(vswitch::instant at, unsigned leap_seconds, result_row& row);
void explain_tod(uint64_t tod, unsigned leap_seconds, result_row& row);

} // namespace chnsw_tool

#endif
