// Reading moments.
#include "inspect/mainframe/tod_values.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "command_context.h"
#include "exit_code.h"
#include "inspect/words/printable_text.h"

namespace chnsw_tool {

namespace {

constexpr std::string_view kNow = "now";
constexpr std::string_view kLines = "-";
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

void add_line(size_t number, std::string_view word, host_clock& clock, moment_list& list) {
  try {
    list.moments.push_back(parse_moment(word, clock));
  } catch (const inspect::error& error) {
    if (error.failed() == failure::platform) throw;
    notice(fmt::format("line {}: {}", number, error.what()));
    list.has_bad_line = true;
  }
}

// The next line without its end; none at the end of the file.
std::optional<std::string> next_line(std::FILE* lines) {
  std::string line;
  int character = std::getc(lines);
  if (character == EOF) return std::nullopt;
  for (; character != EOF && character != '\n'; character = std::getc(lines)) line += static_cast<char>(character);
  return line;
}

void add_lines(std::FILE* lines, host_clock& clock, moment_list& list) {
  size_t number = 0;
  while (auto line = next_line(lines)) {
    ++number;
    const std::string_view word = trimmed(*line);
    if (!word.empty()) add_line(number, word, clock, list);
  }
  if (std::ferror(lines) != 0) throw platform_error(fmt::format("standard input cannot be read: {}", std::strerror(errno)));
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

moment_list parse_moments(const std::vector<std::string>& words, std::FILE* lines, host_clock& clock) {
  moment_list list;
  for (std::string_view rest : words) {
    for (size_t comma = 0; comma != std::string_view::npos;) {
      comma = rest.find(',');
      const std::string_view word = rest.substr(0, comma);
      if (word == kLines)
        add_lines(lines, clock, list);
      else
        list.moments.push_back(parse_moment(word, clock));
      if (comma != std::string_view::npos) rest.remove_prefix(comma + 1);
    }
  }
  return list;
}

} // namespace chnsw_tool
