// [[time_reference]]
#include "chassis_file/chassis_reading.h"

namespace vswitch {

namespace {

constexpr number_range kHostWords{INT32_MIN, INT32_MAX}; // what a record holds of a host time
constexpr std::string_view kNow = "now";
constexpr std::string_view kHostTimeExpected = "a time in UTC such as \"2015-01-05T09:07:03.9Z\", or \"now\"";

// Every "now" of a file is the same moment.
instant moment_of_reading(chassis_reading& reading) {
  if (!reading.now) reading.now = current_instant();
  return *reading.now;
}

std::optional<ficon_host_time> read_clock_time(chassis_reading& reading, table_reader& table) {
  auto text = table.text("host_time");
  if (!text) return std::nullopt;
  const toml::node& where = *table.find("host_time");
  auto at = *text == kNow ? moment_of_reading(reading) : parse_utc(*text);
  if (!at) {
    reading.problems.add(where, "host_time is " + shown(where) + "; expected is " + std::string(kHostTimeExpected));
    return std::nullopt;
  }
  if (auto host = host_time_of(*at)) return host;
  reading.problems.add(where, "host_time is " + shown(where) +
                                  "; the 32 bits of a host's time hold 1901-12-13T20:45:52Z to 2038-01-19T03:14:07Z");
  return std::nullopt;
}

// A record's two words as they are, for what no clock says: microseconds beyond a second.
std::optional<ficon_host_time> read_host_words(table_reader& table) {
  auto seconds = table.required_number("host_seconds", kHostWords);
  auto microseconds = table.has("host_microseconds") ? table.number("host_microseconds", kHostWords) : 0;
  if (!seconds || !microseconds) return std::nullopt;
  return ficon_host_time{static_cast<int32_t>(*seconds), static_cast<int32_t>(*microseconds)};
}

std::optional<ficon_host_time> read_host_time(chassis_reading& reading, table_reader& table) {
  const bool by_clock = table.has("host_time");
  const bool by_words = table.has("host_seconds");
  const toml::node* words = table.find(by_words ? "host_seconds" : "host_microseconds");
  if (by_clock && words != nullptr) {
    reading.problems.add(*words, "[[time_reference]] has both host_time and " +
                                     std::string(by_words ? "host_seconds" : "host_microseconds") +
                                     "; expected is one of them");
    return std::nullopt;
  }
  if (by_clock) return read_clock_time(reading, table);
  if (words != nullptr) return read_host_words(table);
  table.missing("host_time", kHostTimeExpected);
  return std::nullopt;
}

// Without a value of its own, the TOD clock says the same as the host's clock.
std::optional<uint64_t> read_tod(chassis_reading& reading, table_reader& table, const ficon_host_time& host) {
  if (!table.has("tod")) return tod_of(instant_of(host));
  auto text = table.text("tod");
  if (!text) return std::nullopt;
  if (*text == kNow) return tod_of(moment_of_reading(reading));
  auto tod = parse_tod(*text);
  if (!tod)
    reading.problems.add(*table.find("tod"), "tod is " + shown(*table.find("tod")) +
                                                 "; expected are 4 to 16 hexadecimal digits such as \"CE4F44C4E976\", or "
                                                 "\"now\"");
  return tod;
}

} // namespace

void read_time_reference(chassis_reading& reading, table_reader& table) {
  table.allow_only({"vsan", "host_time", "host_seconds", "host_microseconds", "tod"});
  auto vsan = table.required_number("vsan", kVsans);
  auto host = read_host_time(reading, table);
  auto tod = read_tod(reading, table, host.value_or(ficon_host_time{}));
  if (!vsan) return;
  const auto number = static_cast<uint16_t>(*vsan);
  const toml::node& where = *table.find("vsan");
  auto [first, added] = reading.times.emplace(number, place_of(where));
  if (!added)
    reading.problems.add(where, "VSAN " + std::to_string(number) + " has two time references; the first one stands " +
                                    in_line(first->second) + ", and a VSAN has one");
  else if (host && tod)
    reading.chassis.times.emplace(number, time_reference{*host, *tod});
}

} // namespace vswitch
