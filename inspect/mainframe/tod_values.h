// Moments as people write them: TOD clock values, times, host seconds and "now", alone, as lists and line by line.
#ifndef INSPECT_TOD_VALUES_H
#define INSPECT_TOD_VALUES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vswitch/mainframe_time.h"

namespace inspect {

// What one word names: a TOD clock value, or an instant.
struct named_moment {
  std::string word;
  std::optional<uint64_t> tod;
  vswitch::instant at; // when tod is not set
};

// One reading of the host's clock, so that every "now" of a question is the same moment.
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

// The words of a list like {"CE4F,now", "@0"}, in the order given.
std::vector<std::string> moment_words(const std::vector<std::string>& list);

// One line of a file: its moment, or the reason why it names none.
struct moment_line {
  size_t number; // from 1
  std::optional<named_moment> moment;
  std::string reason;
};

// None for a line of blanks.
std::optional<moment_line> parse_moment_line(size_t number, std::string_view line, host_clock& clock);

// A host time and the TOD clock value of the same moment; without one, what the TOD clock says then. A host time of "none" means no
// reference. Throws a question error.
std::optional<vswitch::time_reference> parse_time_reference(std::string_view host_time, std::string_view tod);

} // namespace inspect

#endif
