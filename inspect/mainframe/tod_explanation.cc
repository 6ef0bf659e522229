#include "inspect/mainframe/tod_explanation.h"

#include <fmt/format.h>

#include "inspect/mainframe/tod_arithmetic.h"

namespace inspect {

namespace {

using vswitch::kMicrosecondsPerSecond;
using vswitch::tod_text;

constexpr int64_t kMicrosecondsTo1970 = -vswitch::kFirstTodInstant.microseconds;

double microseconds_of(int64_t units) {
  return static_cast<double>(units) / kTodUnits;
}

// Microseconds with the fraction that units of 1/4096 have, without the zeros at its end.
std::string microseconds_text(int64_t units) {
  std::string text = fmt::format("{:.12f}", microseconds_of(units));
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string difference_text(int32_t later, int32_t earlier, int32_t wrapped) {
  const bool wraps = int64_t{later} - earlier != wrapped;
  return fmt::format("{} - {} = {}{}", later, earlier, wrapped, wraps ? " (wrapped in 32 bits)" : "");
}

using steps = std::vector<tod_explanation::step>;

steps steps_without_reference(const ficon_host_time& at) {
  const vswitch::instant instant = vswitch::instant_of(at);
  return {{"microseconds", fmt::format("{} x 1000000 + {} + {} (1900 to 1970) = {} since 1900", at.seconds, at.microseconds,
                                       kMicrosecondsTo1970, instant.microseconds + kMicrosecondsTo1970)},
          {"result", fmt::format("times 4096: {}", tod_text(vswitch::tod_of(instant)))}};
}

// Microseconds are added as they are, as so many 4096ths.
int64_t units_ahead(const relative_time& found) {
  return found.microseconds - found.microseconds * kTodUnits;
}

steps steps_by_reference(const vswitch::time_reference& reference, const ficon_host_time& at, const relative_time& found) {
  const int64_t ahead = units_ahead(found);
  return {{"seconds", difference_text(at.seconds, reference.host.seconds, found.seconds) + ", times 1000000 x 4096"},
          {"microseconds", difference_text(at.microseconds, reference.host.microseconds, found.microseconds) +
                               ", added without x 4096, so they count as " + microseconds_text(found.microseconds) + " us"},
          {"result", fmt::format("{} + {} x 4096000000 + {} = {}", tod_text(reference.tod), found.seconds,
                                 found.microseconds, tod_text(found.tod))},
          {"drift", fmt::format("the fraction of the second stays the reference's, moved by {} us; that is {} us {} the "
                                "host's time",
                                microseconds_text(found.microseconds), microseconds_text(ahead < 0 ? -ahead : ahead),
                                ahead < 0 ? "behind" : "ahead of")}};
}

void append(const steps& more, steps& all) {
  all.insert(all.end(), more.begin(), more.end());
}

} // namespace

tod_explanation explain_time_stamp(uint32_t vsan, const vswitch::time_reference& reference, const ficon_host_time& at) {
  tod_explanation why{fmt::format("VSAN {} at {} to time stamp", vsan, vswitch::utc_text(vswitch::instant_of(at))),
                      "ficon_cmi_get_vsan_tstmp_given_time",
                      {},
                      {}};
  if (is_no_reference(reference)) {
    why.steps = {{"reference", "zero seconds and zero microseconds mean none; the host's clock is taken to be right"}};
    append(steps_without_reference(at), why.steps);
    return why;
  }
  const relative_time found = relative_to(reference, at);
  why.steps = {{"reference", fmt::format("the host's clock said {} s and {} us when the TOD clock said {}",
                                         reference.host.seconds, reference.host.microseconds, tod_text(reference.tod))}};
  append(steps_by_reference(reference, at, found), why.steps);
  why.drifted = {found.seconds, found.microseconds, microseconds_of(found.microseconds),
                 microseconds_of(units_ahead(found))};
  return why;
}

tod_explanation explain_instant(vswitch::instant at, unsigned leap_seconds) {
  const vswitch::instant ahead = with_leap_seconds(at, leap_seconds);
  const auto host = vswitch::host_time_of(ahead);
  tod_explanation why{fmt::format("{} to TOD clock value", vswitch::utc_text(at)),
                      host ? "ficon_cmi_compute_host_tstmp_given_time" : "beyond a host's time: by the same rule",
                      {},
                      {}};
  if (leap_seconds != 0) why.steps.push_back({"leap seconds", fmt::format("{} s added", leap_seconds)});
  if (host)
    append(steps_without_reference(*host), why.steps);
  else
    why.steps.push_back({"result", fmt::format("({} + {} (1900 to 1970)) us x 4096 = {}", ahead.microseconds,
                                               kMicrosecondsTo1970, tod_text(vswitch::tod_of(ahead)))});
  return why;
}

tod_explanation explain_tod(uint64_t tod, unsigned leap_seconds) {
  constexpr uint64_t kSecondsPerDay = 86400;
  const uint64_t microseconds = tod / kTodUnits;
  const uint64_t seconds = microseconds / kMicrosecondsPerSecond;
  tod_explanation why{fmt::format("TOD {} to text", tod_text(tod)),
                      "ficon_get_TOD_format",
                      {{"microseconds", fmt::format("{} / 4096 = {} since 1900, and {}/4096", tod_text(tod), microseconds,
                                                    tod % kTodUnits)},
                       {"split", fmt::format("{} days, {} s, {} us", seconds / kSecondsPerDay, seconds % kSecondsPerDay,
                                             microseconds % kMicrosecondsPerSecond)},
                       {"texts", "microseconds are not padded: .3 is 3 microseconds"}},
                      {}};
  if (leap_seconds != 0)
    why.steps.push_back({"leap seconds", fmt::format("{} s subtracted for UTC and the host's time", leap_seconds)});
  return why;
}

} // namespace inspect
