// Host times and TOD clock values as people write them, and the reference that ties one to the other.
#ifndef VSWITCH_MAINFRAME_TIME_H
#define VSWITCH_MAINFRAME_TIME_H

#include <libchnsw.h>

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vswitch {

// Microseconds since 1970-01-01 00:00:00 UTC, without leap seconds. TOD clock values reach from 1900 to 2042.
struct instant {
  int64_t microseconds = 0;

  auto operator<=>(const instant&) const = default;
};
inline constexpr int64_t kMicrosecondsPerSecond = 1000000;
inline constexpr instant kFirstTodInstant{-2208988800000000}; // 1900-01-01T00:00:00Z
inline constexpr instant kLastTodInstant{kFirstTodInstant.microseconds + 0xFFFFFFFFFFFFF};

// A time stamp's reference: what the host's clock and the TOD clock said at the same moment.
struct time_reference {
  ficon_host_time host = {}; // zero seconds and zero microseconds: clients take it for no reference
  uint64_t tod = 0;
};
bool operator==(const time_reference& a, const time_reference& b);

// What the host's clock says. Throws std::system_error when it cannot be read.
instant current_instant();

// The TOD clock value of an instant, its fraction of a microsecond being 0, and the instant of a value; both count modulo
// the length of the TOD clock.
uint64_t tod_of(instant at);
instant instant_of(uint64_t tod);

// None beyond what 32 bits of seconds hold: 1901-12-13T20:45:52Z to 2038-01-19T03:14:07.999999Z.
std::optional<ficon_host_time> host_time_of(instant at);
instant instant_of(const ficon_host_time& host);

// "CE4F44C40DC3B000"; 4 to 16 hexadecimal digits are read, with or without "0x", and padded with zeros on the right as
// mainframe tools do.
std::string tod_text(uint64_t tod);
std::optional<uint64_t> parse_tod(std::string_view text);

// "2015-01-05T09:07:03.000123Z". What is read has up to 6 digits of a fraction, and may leave out the fraction, the
// seconds, or the whole time of day; it ends with Z or an offset such as +01:00, else it is UTC.
std::string utc_text(instant at);
std::optional<instant> parse_utc(std::string_view text);

// "1420448823.000123", seconds since 1970; what is read has up to 6 digits of a fraction.
std::string seconds_text(instant at);
std::optional<instant> parse_seconds(std::string_view text);

} // namespace vswitch

#endif
