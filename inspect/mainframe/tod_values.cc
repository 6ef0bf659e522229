#include "inspect/mainframe/tod_values.h"

#include <fmt/format.h>

#include <system_error>

#include "inspect/error.h"
#include "inspect/words/printable_text.h"

namespace inspect {

namespace {

constexpr std::string_view kNow = "now";
constexpr std::string_view kNone = "none";
constexpr std::string_view kTodForm = "4 to 16 hexadecimal digits of a TOD clock value like CE4F44C40DC3B000";
constexpr std::string_view kTimeForms =
    "a time in UTC like 2015-01-05T09:07:03.000123Z, host seconds like @1420448823.000123, or now";

// "now", "@..." or a time; none for everything else.
std::optional<vswitch::instant> parse_instant(std::string_view word, host_clock& clock) {
  if (word == kNow) return clock.now();
  if (word.starts_with('@')) return vswitch::parse_seconds(word.substr(1));
  return vswitch::parse_utc(word);
}

void require_tod_clock_shows(std::string_view word, vswitch::instant at) {
  if (at >= vswitch::kFirstTodInstant && at <= vswitch::kLastTodInstant) return;
  throw question_error(fmt::format("time \"{}\" is out of range; the TOD clock reaches from {} to {}", printable(word),
                                   vswitch::utc_text(vswitch::kFirstTodInstant),
                                   vswitch::utc_text(vswitch::kLastTodInstant)));
}

std::string_view trimmed(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\r";
  const size_t first = line.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return line.substr(first, line.find_last_not_of(kBlanks) - first + 1);
}

} // namespace

vswitch::instant host_clock::now() {
  try {
    if (!read_) read_ = vswitch::current_instant();
    return *read_;
  } catch (const std::system_error& error) {
    throw platform_error(error.what());
  }
}

named_moment parse_moment(std::string_view word, host_clock& clock) {
  named_moment moment{std::string(word), vswitch::parse_tod(word), {}};
  if (moment.tod) return moment;
  auto at = parse_instant(word, clock);
  if (!at)
    throw question_error(
        fmt::format("\"{}\" is no TOD clock value and no time; expected {}, {}", printable(word), kTodForm, kTimeForms));
  require_tod_clock_shows(word, *at);
  moment.at = *at;
  return moment;
}

ficon_host_time parse_host_time(std::string_view word, host_clock& clock) {
  auto at = parse_instant(word, clock);
  if (!at) throw question_error(fmt::format("\"{}\" is no time; expected {}", printable(word), kTimeForms));
  auto host = vswitch::host_time_of(*at);
  if (!host)
    throw question_error(fmt::format(
        "time \"{}\" is out of range; the 32 bits of a host's time hold 1901-12-13T20:45:52Z to 2038-01-19T03:14:07Z",
        printable(word)));
  return *host;
}

uint64_t parse_tod_value(std::string_view word, host_clock& clock) {
  if (word == kNow) return vswitch::tod_of(clock.now());
  auto tod = vswitch::parse_tod(word);
  if (!tod)
    throw question_error(fmt::format("\"{}\" is no TOD clock value; expected {}, or now", printable(word), kTodForm));
  return *tod;
}

std::vector<std::string> moment_words(const std::vector<std::string>& list) {
  std::vector<std::string> words;
  for (std::string_view rest : list) {
    for (size_t comma = rest.find(','); comma != std::string_view::npos; comma = rest.find(',')) {
      words.emplace_back(rest.substr(0, comma));
      rest.remove_prefix(comma + 1);
    }
    words.emplace_back(rest);
  }
  return words;
}

std::optional<moment_line> parse_moment_line(size_t number, std::string_view line, host_clock& clock) {
  const std::string_view word = trimmed(line);
  if (word.empty()) return std::nullopt;
  try {
    return moment_line{number, parse_moment(word, clock), {}};
  } catch (const error& refused) {
    if (refused.failed() == failure::platform) throw;
    return moment_line{number, {}, refused.what()};
  }
}

std::optional<vswitch::time_reference> parse_time_reference(std::string_view host_time, std::string_view tod) {
  if (host_time == kNone) {
    if (!tod.empty()) throw question_error("a TOD clock value belongs to a host time; none takes both away");
    return std::nullopt;
  }
  host_clock clock;
  const ficon_host_time host = parse_host_time(host_time, clock);
  return vswitch::time_reference{host,
                                 tod.empty() ? vswitch::tod_of(vswitch::instant_of(host)) : parse_tod_value(tod, clock)};
}

} // namespace inspect
