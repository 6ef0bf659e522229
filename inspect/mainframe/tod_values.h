// Moments as people write them: TOD clock values, times, host seconds and "now", alone, as lists and line by line.
#ifndef CHNSW_TOD_VALUES_H
#define CHNSW_TOD_VALUES_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vswitch/mainframe_time.h"

namespace chnsw_tool {

// What one word names: a TOD clock value, or an instant.
struct named_moment {
  std::string word;
  std::optional<uint64_t> tod;
  vswitch::instant at; // when tod is not set
};

// One reading of the host's clock, so that every "now" of a command is the same moment.
class host_clock {
 public:
  vswitch::instant now(); // throws error when the clock cannot be read

 private:
  std::optional<vswitch::instant> read_;
};

// "CE4F44C40DC3B000", "2015-01-05T09:07:03.9Z", "@1420448823.9" or "now". Throws a question error that says what was expected.
named_moment parse_moment(std::string_view word, host_clock& clock);

// The same without a TOD clock value, as a time that the host's clock can show.
ficon_host_time parse_host_time(std::string_view word, host_clock& clock);

// 4 to 16 hexadecimal digits, or "now".
uint64_t parse_tod_value(std::string_view word, host_clock& clock);

// Every moment of a list like {"CE4F,now", "-"}, in the order given; "-" stands for the lines of a file. A line that names
// no moment is complained about with its number, and the others are taken all the same.
struct moment_list {
  std::vector<named_moment> moments;
  bool has_bad_line = false;
};
moment_list parse_moments(const std::vector<std::string>& words, std::FILE* lines, host_clock& clock);

} // namespace chnsw_tool

#endif
