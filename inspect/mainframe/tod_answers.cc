#include "inspect/mainframe/tod_answers.h"

#include <fmt/format.h>

#include "inspect/error.h"
#include "inspect/words/status_names.h"

namespace inspect {

namespace {

uint64_t tod_of(const named_moment& moment, unsigned leap_seconds) {
  if (moment.tod) return *moment.tod;
  const vswitch::instant ahead = with_leap_seconds(moment.at, leap_seconds);
  if (ahead > vswitch::kLastTodInstant)
    throw question_error(
        fmt::format("time \"{}\" with {} leap seconds is beyond the end of the TOD clock", moment.word, leap_seconds));
  return tod_by_library(ahead);
}

std::string stamp_text(uint32_t vsan, const ficon_host_time& at, int32_t format, uint32_t& status) {
  const char* text = "";
  status = ficon_cmi_get_vsan_tstmp_given_time(vsan, &text, format, &at);
  return text;
}

void require_same_text(const time_stamp& stamp) {
  if (texts_of(stamp.tod).day_first == stamp.texts.day_first) return;
  throw platform_error(fmt::format("internal error: the library's time stamp of VSAN {} is \"{}\", but its value is {}",
                                   stamp.vsan, stamp.texts.day_first, vswitch::tod_text(stamp.tod)));
}

} // namespace

tod_answer answer_moment(const named_moment& moment, unsigned leap_seconds) {
  const uint64_t tod = tod_of(moment, leap_seconds);
  return {moment.word, tod, without_leap_seconds(tod, leap_seconds), texts_of(tod), leap_seconds};
}

// The library hands out a time stamp as text only; its value is asked for by the same reference.
time_stamp ask_time_stamp(const vswitch::chassis_description& chassis, uint32_t vsan, const ficon_host_time& at,
                          unsigned leap_seconds) {
  time_stamp stamp{vsan, at, leap_seconds, 0, {}, 0, {}, {}};
  stamp.texts.day_first = stamp_text(vsan, at, FICON_TOD_FMT_DAY_FIRST, stamp.status);
  stamp.texts.year_first = stamp_text(vsan, at, FICON_TOD_FMT_YEAR_FIRST, stamp.status);
  auto found = chassis.times.find(static_cast<uint16_t>(vsan));
  if ((found == chassis.times.end()) != (stamp.status != 0))
    throw platform_error(fmt::format("internal error: the library answers {} for the reference of VSAN {}",
                                     status_text(stamp.status), vsan));
  if (stamp.status != 0) return stamp;
  stamp.reference = found->second;
  stamp.tod = tod_by_library(found->second, at);
  stamp.utc = without_leap_seconds(stamp.tod, leap_seconds);
  require_same_text(stamp);
  return stamp;
}

} // namespace inspect
