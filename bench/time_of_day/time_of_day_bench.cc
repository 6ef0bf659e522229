// The time of day: the text of a TOD clock value against the calls that it cannot do without, and conversions by a reference
// against additions.
#include <benchmark/benchmark.h>
#include <glib.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <stdexcept>

#include <libchnsw.h>

#include "addition.h"
#include "ratio.h"

namespace {

// What is promised: a text takes what the calls of GLib and snprintf take on its way, and next to nothing on top.
constexpr double kTextAgainstRoute = 1.05;
constexpr double kConversionAgainstAddition = 5;

// Texts of one run, at times all over the clock's range.
constexpr uint32_t kTexts = 16;
constexpr uint64_t kStep = UINT64_MAX / kTexts;

// One instant, split: what the route is given for nothing.
struct instant {
  uint64_t tod;
  uint32_t day; // from 1900-01-01
  int hours;
  int minutes;
  int seconds;
  int microseconds;
  std::time_t host_seconds;
};

instant split(uint64_t tod) {
  const uint64_t microseconds = tod / 4096;
  const uint64_t seconds = microseconds / 1000000;
  const auto second_of_day = static_cast<int>(seconds % 86400);
  return {tod,
          static_cast<uint32_t>(seconds / 86400),
          second_of_day / 3600,
          second_of_day / 60 % 60,
          second_of_day % 60,
          static_cast<int>(microseconds % 1000000),
          static_cast<std::time_t>(seconds) - static_cast<std::time_t>(SECONDS_BTWN_EPOCHS)};
}

const std::array<instant, kTexts>& instants() {
  static const std::array<instant, kTexts> all = [] {
    std::array<instant, kTexts> filled;
    for (uint32_t i = 0; i < kTexts; ++i) filled[i] = split(i * kStep + kStep / 2);
    return filled;
  }();
  return all;
}

void write_with_library() {
  for (const instant& at : instants()) {
    const char* text = nullptr;
    ficon_get_TOD_format(at.tod, &text, FICON_TOD_FMT_DAY_FIRST);
    benchmark::DoNotOptimize(text);
  }
}

constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

// The route's own cost: its calls and nothing else.
void write_by_route(const instant& at, char (&text)[50]) {
  GDate* date = g_date_new_dmy(1, G_DATE_JANUARY, 1900);
  std::tm day;
  g_date_add_days(date, at.day);
  g_date_to_struct_tm(date, &day);
  std::snprintf(text, sizeof text, "%3s %s %d %.2d:%.2d:%.2d.%d %d", kWeekdays[day.tm_wday], kMonths[day.tm_mon],
                day.tm_mday, at.hours, at.minutes, at.seconds, at.microseconds, day.tm_year + 1900);
  g_date_free(date);
}

void write_by_routes() {
  for (const instant& at : instants()) {
    char text[50];
    write_by_route(at, text);
    benchmark::DoNotOptimize(text);
  }
}

// What libc offers for a text of a time; it has no microseconds.
void write_with_libc() {
  for (const instant& at : instants()) {
    char text[50];
    std::tm time;
    gmtime_r(&at.host_seconds, &time);
    std::strftime(text, sizeof text, "%a %b %d %H:%M:%S %Y", &time);
    benchmark::DoNotOptimize(text);
  }
}

// The library's text has microseconds that the route was given ready-made, so both must have done the same.
void require_same_texts() {
  for (const instant& at : instants()) {
    const char* text = nullptr;
    ficon_get_TOD_format(at.tod, &text, FICON_TOD_FMT_DAY_FIRST);
    char expected[50];
    write_by_route(at, expected);
    if (std::strcmp(text, expected) != 0) throw std::runtime_error("the route writes another text");
  }
}

// ---- conversions ----

constexpr size_t kTimes = 1024;
constexpr ficon_host_time kReference = {1420448823, 900000};
constexpr uint64_t kReferenceTod = 0xCE4F44C4E9760000;

using host_times = std::array<ficon_host_time, kTimes>;
using values = std::array<uint64_t, kTimes>;

const host_times& times() {
  static const host_times all = [] {
    host_times filled;
    for (size_t i = 0; i < kTimes; ++i) {
      filled[i] = {kReference.seconds + static_cast<int32_t>(i * 977), static_cast<int32_t>(i * 971)};
    }
    return filled;
  }();
  return all;
}

values& results() {
  static values all;
  return all;
}

void keep(values& written) {
  benchmark::DoNotOptimize(written.data());
  benchmark::ClobberMemory();
}

void convert_all() {
  const host_times& from = times();
  values& to = results();
  for (size_t i = 0; i < kTimes; ++i) to[i] = ficon_cmi_compute_host_tstmp_given_time(&kReference, kReferenceTod, &from[i]);
  keep(to);
}

void add_all_by_calls() {
  const host_times& from = times();
  values& to = results();
  for (size_t i = 0; i < kTimes; ++i) to[i] = bench::add_seconds(kReferenceTod, &from[i]);
  keep(to);
}

void add_all_in_place() {
  const host_times& from = times();
  values& to = results();
  for (size_t i = 0; i < kTimes; ++i) to[i] = kReferenceTod + static_cast<uint64_t>(int64_t{from[i].seconds});
  keep(to);
}

} // namespace

int main(int argc, char** argv) try {
  bench::add_ratio("16 texts of TOD clock values", write_with_library,
                   {{"GLib route", write_by_routes, kTextAgainstRoute}, {"strftime", write_with_libc}}, require_same_texts);
  // A bare call of a shared library takes more than five additions without one, so the bar is for additions behind a call.
  bench::add_ratio("1024 conversions by a reference", convert_all,
                   {{"added by call", add_all_by_calls, kConversionAgainstAddition}, {"added", add_all_in_place}});
  return bench::run_benchmarks(argc, argv);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 3;
}
