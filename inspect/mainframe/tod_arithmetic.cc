#include "inspect/mainframe/tod_arithmetic.h"

#include <fmt/format.h>

#include "inspect/error.h"

namespace inspect {

namespace {

using vswitch::kMicrosecondsPerSecond;
using vswitch::tod_text;

int32_t wrapped_difference(int32_t later, int32_t earlier) {
  return static_cast<int32_t>(static_cast<uint32_t>(later) - static_cast<uint32_t>(earlier));
}

uint64_t worked_out(const vswitch::time_reference& reference, const ficon_host_time& at) {
  return is_no_reference(reference) ? vswitch::tod_of(vswitch::instant_of(at)) : relative_to(reference, at).tod;
}

std::string text_in(uint64_t tod, int32_t format) {
  const char* text = nullptr;
  ficon_get_TOD_format(tod, &text, format);
  return text;
}

} // namespace

tod_texts texts_of(uint64_t tod) {
  return {text_in(tod, FICON_TOD_FMT_DAY_FIRST), text_in(tod, FICON_TOD_FMT_YEAR_FIRST)};
}

bool is_no_reference(const vswitch::time_reference& reference) {
  return reference.host.seconds == 0 && reference.host.microseconds == 0;
}

relative_time relative_to(const vswitch::time_reference& reference, const ficon_host_time& at) {
  relative_time found{wrapped_difference(at.seconds, reference.host.seconds),
                      wrapped_difference(at.microseconds, reference.host.microseconds), 0};
  found.tod = reference.tod + static_cast<uint64_t>(found.seconds * kMicrosecondsPerSecond * kTodUnits) +
              static_cast<uint64_t>(int64_t{found.microseconds});
  return found;
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

vswitch::instant with_leap_seconds(vswitch::instant at, unsigned leap_seconds) {
  return {at.microseconds + leap_seconds * kMicrosecondsPerSecond};
}

vswitch::instant without_leap_seconds(uint64_t tod, unsigned leap_seconds) {
  return {vswitch::instant_of(tod).microseconds - leap_seconds * kMicrosecondsPerSecond};
}

} // namespace inspect
