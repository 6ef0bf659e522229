#include "vswitch/mainframe_time.h"

#include <sys/time.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <limits>
#include <system_error>

namespace vswitch {

namespace {

constexpr unsigned kTodUsecShift = 12; // bit 51 of the TOD clock is a microsecond
constexpr size_t kTodDigits = 16;
constexpr size_t kFewestTodDigits = 4;
constexpr size_t kFractionDigits = 6;
constexpr int64_t kSecondsPerDay = 86400;

struct seconds_and_rest {
  int64_t seconds;
  int64_t microseconds; // 0 to 999999, also before 1970
};

seconds_and_rest split(instant at) {
  int64_t seconds = at.microseconds / kMicrosecondsPerSecond;
  if (at.microseconds % kMicrosecondsPerSecond < 0) --seconds;
  return {seconds, at.microseconds - seconds * kMicrosecondsPerSecond};
}

bool all_digits(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Takes a number of exactly this many digits off the beginning.
std::optional<int> take_number(std::string_view& text, size_t digits) {
  if (text.size() < digits || !all_digits(text.substr(0, digits))) return std::nullopt;
  int number = 0;
  std::from_chars(text.data(), text.data() + digits, number);
  text.remove_prefix(digits);
  return number;
}

bool take(std::string_view& text, char character) {
  if (!text.starts_with(character)) return false;
  text.remove_prefix(1);
  return true;
}

// "09", and up to a highest number.
std::optional<int> take_two(std::string_view& text, int highest) {
  const int number = take_number(text, 2).value_or(highest + 1);
  return number <= highest ? std::optional(number) : std::nullopt;
}

// The fraction behind a point, in microseconds.
std::optional<int64_t> take_fraction(std::string_view& text) {
  size_t digits = 0;
  while (digits < text.size() && all_digits(text.substr(digits, 1))) ++digits;
  if (digits == 0 || digits > kFractionDigits) return std::nullopt;
  int64_t fraction = *take_number(text, digits);
  for (size_t i = digits; i < kFractionDigits; ++i) fraction *= 10;
  return fraction;
}

// "2015-01-05", in seconds since 1970.
std::optional<int64_t> take_date(std::string_view& text) {
  auto year = take_number(text, 4);
  if (!year || !take(text, '-')) return std::nullopt;
  auto month = take_two(text, 12);
  if (!month || !take(text, '-')) return std::nullopt;
  auto day = take_two(text, 31);
  if (!day) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date).time_since_epoch().count() * kSecondsPerDay;
}

// "09:07", "09:07:03" or "09:07:03.000123", in microseconds.
std::optional<int64_t> take_time_of_day(std::string_view& text) {
  auto hours = take_two(text, 23);
  if (!hours || !take(text, ':')) return std::nullopt;
  auto minutes = take_two(text, 59);
  if (!minutes) return std::nullopt;
  auto seconds = std::optional(0);
  auto fraction = std::optional<int64_t>(0);
  if (take(text, ':')) {
    seconds = take_two(text, 59);
    if (seconds && take(text, '.')) fraction = take_fraction(text);
  }
  if (!seconds || !fraction) return std::nullopt;
  return (*hours * 3600 + *minutes * 60 + *seconds) * kMicrosecondsPerSecond + *fraction;
}

// "Z", "+01:00" or nothing, in seconds east of Greenwich.
std::optional<int64_t> take_offset(std::string_view& text) {
  if (text.empty() || take(text, 'Z')) return 0;
  const bool west = text.starts_with('-');
  if (!west && !text.starts_with('+')) return std::nullopt;
  text.remove_prefix(1);
  auto hours = take_two(text, 23);
  if (!hours || !take(text, ':')) return std::nullopt;
  auto minutes = take_two(text, 59);
  if (!minutes) return std::nullopt;
  const int64_t seconds = *hours * 3600 + *minutes * 60;
  return west ? -seconds : seconds;
}

} // namespace

bool operator==(const time_reference& a, const time_reference& b) {
  return a.host.seconds == b.host.seconds && a.host.microseconds == b.host.microseconds && a.tod == b.tod;
}

instant current_instant() {
  timeval clock;
  if (gettimeofday(&clock, nullptr) != 0)
    throw std::system_error(errno, std::generic_category(), "the host's clock cannot be read");
  return {int64_t{clock.tv_sec} * kMicrosecondsPerSecond + clock.tv_usec};
}

uint64_t tod_of(instant at) {
  return static_cast<uint64_t>(at.microseconds - kFirstTodInstant.microseconds) << kTodUsecShift;
}

instant instant_of(uint64_t tod) {
  return {static_cast<int64_t>(tod >> kTodUsecShift) + kFirstTodInstant.microseconds};
}

std::optional<ficon_host_time> host_time_of(instant at) {
  const auto [seconds, microseconds] = split(at);
  using limits = std::numeric_limits<int32_t>;
  if (seconds < limits::min() || seconds > limits::max()) return std::nullopt;
  return ficon_host_time{static_cast<int32_t>(seconds), static_cast<int32_t>(microseconds)};
}

instant instant_of(const ficon_host_time& host) {
  return {host.seconds * kMicrosecondsPerSecond + host.microseconds};
}

std::string tod_text(uint64_t tod) {
  char text[kTodDigits + 1];
  std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(tod));
  return text;
}

std::optional<uint64_t> parse_tod(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  if (text.size() < kFewestTodDigits || text.size() > kTodDigits) return std::nullopt;
  uint64_t tod = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), tod, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return tod << 4 * (kTodDigits - text.size());
}

std::string utc_text(instant at) {
  const auto [seconds, microseconds] = split(at);
  const auto second = std::chrono::sys_seconds(std::chrono::seconds(seconds));
  const auto day = std::chrono::floor<std::chrono::days>(second);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(second - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ", int{date.year()}, unsigned{date.month()},
                unsigned{date.day()}, static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()), static_cast<int>(microseconds));
  return text;
}

std::optional<instant> parse_utc(std::string_view text) {
  auto date = take_date(text);
  if (!date) return std::nullopt;
  if (text.empty()) return instant{*date * kMicrosecondsPerSecond};
  if (!take(text, 'T') && !take(text, ' ')) return std::nullopt;
  auto time = take_time_of_day(text);
  auto offset = time ? take_offset(text) : std::nullopt;
  if (!offset || !text.empty()) return std::nullopt;
  return instant{(*date - *offset) * kMicrosecondsPerSecond + *time};
}

std::string seconds_text(instant at) {
  const bool negative = at.microseconds < 0;
  const uint64_t size = negative ? 0 - static_cast<uint64_t>(at.microseconds) : static_cast<uint64_t>(at.microseconds);
  char text[32];
  std::snprintf(text, sizeof text, "%s%llu.%06llu", negative ? "-" : "",
                static_cast<unsigned long long>(size / kMicrosecondsPerSecond),
                static_cast<unsigned long long>(size % kMicrosecondsPerSecond));
  return text;
}

std::optional<instant> parse_seconds(std::string_view text) {
  const bool negative = take(text, '-');
  uint32_t seconds = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  auto fraction = take(text, '.') ? take_fraction(text) : std::optional<int64_t>(0);
  if (!fraction || !text.empty()) return std::nullopt;
  const int64_t microseconds = seconds * kMicrosecondsPerSecond + *fraction;
  return instant{negative ? -microseconds : microseconds};
}

} // namespace vswitch
