// The arithmetic of TOD clock values, worked out beside the library.
#include "inspect/mainframe/tod_arithmetic.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "exit_code.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;
using vswitch::kMicrosecondsPerSecond;
using vswitch::tod_text;

constexpr int64_t kTodUnits = 4096; // of a microsecond

// How the library goes from a reference to a host time.
struct relative_time {
  int32_t seconds;      // a difference in 32 bits, as it wraps
  int32_t microseconds; // the same
  uint64_t tod;
};

int32_t difference(int32_t later, int32_t earlier) {
  return static_cast<int32_t>(static_cast<uint32_t>(later) - static_cast<uint32_t>(earlier));
}

relative_time relative(const vswitch::time_reference& reference, const ficon_host_time& at) {
  relative_time found{difference(at.seconds, reference.host.seconds),
                      difference(at.microseconds, reference.host.microseconds), 0};
  found.tod = reference.tod + static_cast<uint64_t>(found.seconds * kMicrosecondsPerSecond * kTodUnits) +
              static_cast<uint64_t>(int64_t{found.microseconds});
  return found;
}

bool is_none(const vswitch::time_reference& reference) {
  return reference.host.seconds == 0 && reference.host.microseconds == 0;
}

uint64_t worked_out(const vswitch::time_reference& reference, const ficon_host_time& at) {
  return is_none(reference) ? vswitch::tod_of(vswitch::instant_of(at)) : relative(reference, at).tod;
}

std::string text_in(uint64_t tod, int32_t format) {
  const char* text = nullptr;
  ficon_get_TOD_format(tod, &text, format);
  return text;
}

// Microseconds with the fraction that units of 1/4096 have, without the zeros at its end.
std::string microseconds_text(int64_t units) {
  std::string text = fmt::format("{:.12f}", static_cast<double>(units) / kTodUnits);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string difference_text(int32_t later, int32_t earlier, int32_t wrapped) {
  const bool wraps = int64_t{later} - earlier != wrapped;
  return fmt::format("{} - {} = {}{}", later, earlier, wrapped, wraps ? " (wrapped in 32 bits)" : "");
}

class told_arithmetic {
 public:
  told_arithmetic(const std::string& translation, const std::string& operation)
      : text_(fmt::format("{} ({})\n", translation, operation)),
        data_({{"translation", translation}, {"operation", operation}, {"arithmetic", ordered_json::array()}}) {}

  void line(const char* label, const std::string& text) {
    text_ += fmt::format("  {:<12}  {}\n", label, text);
    data_["arithmetic"].push_back(fmt::format("{}: {}", label, text));
  }
  void number(const char* key, const ordered_json& value) { data_[key] = value; }

  void attach_to(result_row& row) const {
    row.explanation_text = text_;
    row.explanation = std::make_shared<const ordered_json>(ordered_json::array({data_}));
  }

 private:
  std::string text_;
  ordered_json data_;
};

void tell_without_reference(const ficon_host_time& at, told_arithmetic& told) {
  told.line("microseconds", fmt::format("{} x 1000000 + {} + {} (1900 to 1970) = {} since 1900", at.seconds,
                                        at.microseconds, -vswitch::kFirstTodInstant.microseconds,
                                        vswitch::instant_of(at).microseconds - vswitch::kFirstTodInstant.microseconds));
  told.line("result", fmt::format("times 4096: {}", tod_text(vswitch::tod_of(vswitch::instant_of(at)))));
}

void tell_by_reference(const vswitch::time_reference& reference, const ficon_host_time& at, told_arithmetic& told) {
  const relative_time found = relative(reference, at);
  const int64_t late = found.microseconds - found.microseconds * kTodUnits;
  told.line("seconds", difference_text(at.seconds, reference.host.seconds, found.seconds) + ", times 1000000 x 4096");
  told.line("microseconds", difference_text(at.microseconds, reference.host.microseconds, found.microseconds) +
                                ", added without x 4096, so they count as " + microseconds_text(found.microseconds) +
                                " us");
  told.line("result", fmt::format("{} + {} x 4096000000 + {} = {}", tod_text(reference.tod), found.seconds,
                                  found.microseconds, tod_text(found.tod)));
  told.line("drift", fmt::format("the fraction of the second stays the reference's, moved by {} us; that is {} us {} the "
                                 "host's time",
                                 microseconds_text(found.microseconds), microseconds_text(late < 0 ? -late : late),
                                 late < 0 ? "behind" : "ahead of"));
  told.number("seconds_difference", found.seconds);
  told.number("microseconds_difference", found.microseconds);
  told.number("sub_second_drift_usec", static_cast<double>(found.microseconds) / kTodUnits);
  told.number("ahead_of_host_time_usec", static_cast<double>(late) / kTodUnits);
}

} // namespace

tod_texts texts_of(uint64_t tod) {
  return {text_in(tod, FICON_TOD_FMT_DAY_FIRST), text_in(tod, FICON_TOD_FMT_YEAR_FIRST)};
}

uint64_t tod_by_library(const vswitch::time_reference& reference, const ficon_host_time& at) {
  const uint64_t tod = ficon_cmi_compute_host_tstmp_given_time(&reference.host, reference.tod, &at);
  const uint64_t expected = worked_out(reference, at);
  if (tod != expected)
    throw platform_error(fmt::format("internal error: the library's TOD clock value is {}, the arithmetic's {}",
                                     tod_text(tod), tod_text(expected)));
  return tod;
}

uint64_t tod_by_library(vswitch::instant at) {
  auto host = vswitch::host_time_of(at);
  return host ? tod_by_library({}, *host) : vswitch::tod_of(at);
}

void explain_time_stamp(uint32_t vsan, const vswitch::time_reference& reference, const ficon_host_time& at,
                        result_row& row) {
  told_arithmetic told(fmt::format("VSAN {} at {} to time stamp", vsan, vswitch::utc_text(vswitch::instant_of(at))),
                       "ficon_cmi_get_vsan_tstmp_given_time");
  if (is_none(reference)) {
    told.line("reference", "zero seconds and zero microseconds mean none; the host's clock is taken to be right");
    tell_without_reference(at, told);
  } else {
    told.line("reference", fmt::format("the host's clock said {} s and {} us when the TOD clock said {}",
                                       reference.host.seconds, reference.host.microseconds, tod_text(reference.tod)));
    tell_by_reference(reference, at, told);
  }
  told.attach_to(row);
}

void explain_instant(vswitch::instant at, unsigned leap_seconds, result_row& row) {
  const auto host = vswitch::host_time_of({at.microseconds + leap_seconds * kMicrosecondsPerSecond});
  told_arithmetic told(fmt::format("{} to TOD clock value", vswitch::utc_text(at)),
                       host ? "ficon_cmi_compute_host_tstmp_given_time" : "beyond a host's time: by the same rule");
  if (leap_seconds != 0) told.line("leap seconds", fmt::format("{} s added", leap_seconds));
  const vswitch::instant shifted{at.microseconds + leap_seconds * kMicrosecondsPerSecond};
  if (host)
    tell_without_reference(*host, told);
  else
    told.line("result", fmt::format("({} + {} (1900 to 1970)) us x 4096 = {}", shifted.microseconds,
                                    -vswitch::kFirstTodInstant.microseconds, tod_text(vswitch::tod_of(shifted))));
  told.attach_to(row);
}

void explain_tod(uint64_t tod, unsigned leap_seconds, result_row& row) {
  constexpr uint64_t kSecondsPerDay = 86400;
  const uint64_t microseconds = tod / kTodUnits;
  const uint64_t seconds = microseconds / kMicrosecondsPerSecond;
  told_arithmetic told(fmt::format("TOD {} to text", tod_text(tod)), "ficon_get_TOD_format");
  told.line("microseconds",
            fmt::format("{} / 4096 = {} since 1900, and {}/4096", tod_text(tod), microseconds, tod % kTodUnits));
  told.line("split", fmt::format("{} days, {} s, {} us", seconds / kSecondsPerDay, seconds % kSecondsPerDay,
                                 microseconds % kMicrosecondsPerSecond));
  told.line("texts", "microseconds are not padded: .3 is 3 microseconds");
  if (leap_seconds != 0)
    told.line("leap seconds", fmt::format("{} s subtracted for UTC and the host's time", leap_seconds));
  told.attach_to(row);
}

} // namespace chnsw_tool
