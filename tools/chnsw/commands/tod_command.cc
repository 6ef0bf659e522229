// tod and set time.
#include "commands/tod_command.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include <cstdio>

#include "inspect/chassis/switch_differences.h"
#include "inspect/mainframe/tod_arithmetic.h"
#include "inspect/mainframe/tod_values.h"
#include "inspect/words/target_numbers.h"
#include "output/port_row.h"
#include "vswitch/switch_store.h"

namespace chnsw_tool {

namespace {

using vswitch::instant;
using vswitch::time_reference;

constexpr char kNone[] = "none";
constexpr number_kind kTimedVsan = {"VSAN", 10, 1, 4095, "10"};

instant without_leap_seconds(uint64_t tod, unsigned leap_seconds) {
  return {vswitch::instant_of(tod).microseconds - leap_seconds * vswitch::kMicrosecondsPerSecond};
}

void tell_leap_seconds(unsigned leap_seconds) {
  if (leap_seconds == 0) return;
  notice(
      fmt::format("{} leap seconds are subtracted from a TOD clock value to make a time, and added the other way; the "
                  "library's texts know none",
                  leap_seconds));
}

// ---- Moments ----

std::vector<column> moment_columns() {
  return {{"asked", "", 0, false, column::data_only},
          {"tod_text", "TOD", 0, false, column::table_only},
          {"tod", "", 16, false, column::data_only},
          {"utc", "UTC"},
          {"host_text", "HOST SECONDS", 0, false, column::table_only},
          {"host_seconds", "", 0, false, column::data_only},
          {"host_microseconds", "", 0, false, column::data_only},
          {"day_first", "DAY FIRST"},
          {"year_first", "YEAR FIRST"},
          {"leap_seconds", "", 0, false, column::data_only}};
}

// A host time's seconds as a table shows them; nothing beyond 32 bits.
std::string host_text(instant at) {
  return vswitch::host_time_of(at) ? vswitch::seconds_text(at) : "";
}

cell host_cell(instant at, int32_t ficon_host_time::*word) {
  auto host = vswitch::host_time_of(at);
  return host ? cell(int64_t{(*host).*word}) : cell();
}

uint64_t tod_of(const named_moment& moment, unsigned leap_seconds) {
  if (moment.tod) return *moment.tod;
  const instant ahead{moment.at.microseconds + leap_seconds * vswitch::kMicrosecondsPerSecond};
  if (ahead > vswitch::kLastTodInstant)
    throw question_error(
        fmt::format("time \"{}\" with {} leap seconds is beyond the end of the TOD clock", moment.word, leap_seconds));
  return tod_by_library(ahead);
}

void add_moment(const named_moment& moment, const tod_options& options, result_document& document) {
  const uint64_t tod = tod_of(moment, options.leap_seconds);
  const instant at = without_leap_seconds(tod, options.leap_seconds);
  const tod_texts texts = texts_of(tod);
  document.add({moment.word, vswitch::tod_text(tod), wide_number{tod}, vswitch::utc_text(at), host_text(at),
                host_cell(at, &ficon_host_time::seconds), host_cell(at, &ficon_host_time::microseconds), texts.day_first,
                texts.year_first, int64_t{options.leap_seconds}});
  if (!options.explain) return;
  if (moment.tod)
    explain_tod(tod, options.leap_seconds, document.rows.back());
  else
    explain_instant(moment.at, options.leap_seconds, document.rows.back());
}

exit_code show_moments(const command_context& context, const tod_options& options) {
  host_clock clock;
  const moment_list list = parse_moments(options.what, stdin, clock);
  result_document document{moment_columns(), {}};
  for (const auto& moment : list.moments) add_moment(moment, options, document);
  tell_leap_seconds(options.leap_seconds);
  context.print(document);
  return list.has_bad_line ? kNotFound : kFound;
}

// ---- Time stamps ----

std::vector<column> stamp_columns() {
  return {{"vsan", "VSAN"},
          {"at", "AT"},
          {"at_seconds", "", 0, false, column::data_only},
          {"at_microseconds", "", 0, false, column::data_only},
          {"tod", "", 16, false, column::data_only},
          {"utc", ""},
          {"day_first", ""},
          {"year_first", ""},
          {"reference_utc", ""},
          {"reference_host_seconds", "", 0, false, column::data_only},
          {"reference_host_microseconds", "", 0, false, column::data_only},
          {"reference_tod", "", 16, false, column::data_only},
          {"leap_seconds", "", 0, false, column::data_only},
          {"status", "STATUS"}};
}

struct time_stamp {
  uint32_t vsan = 0;
  ficon_host_time at{};
  std::optional<time_reference> reference;
  uint32_t status = 0;
  uint64_t tod = 0; // the rest only with status 0
  tod_texts texts;
  instant utc;
};

std::string stamp_text(uint32_t vsan, const ficon_host_time& at, int32_t format, uint32_t& status) {
  const char* text = "";
  status = ficon_cmi_get_vsan_tstmp_given_time(vsan, &text, format, &at);
  return text;
}

// The library hands out a time stamp as text only; its value is asked for by the same reference, and has to have that text.
time_stamp ask_for_stamp(const vswitch::chassis_description& chassis, uint32_t vsan, const ficon_host_time& at,
                         unsigned leap_seconds) {
  time_stamp stamp{vsan, at, {}, 0, 0, {}, {}};
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
  if (texts_of(stamp.tod).day_first != stamp.texts.day_first)
    throw platform_error(fmt::format("internal error: the library's time stamp of VSAN {} is \"{}\", but its value is {}",
                                     vsan, stamp.texts.day_first, vswitch::tod_text(stamp.tod)));
  return stamp;
}

cell if_there(const time_stamp& stamp, cell value) {
  return stamp.reference ? std::move(value) : cell();
}

result_row row_of(const time_stamp& stamp, unsigned leap_seconds) {
  const time_reference reference = stamp.reference.value_or(time_reference{});
  auto there = [&stamp](cell value) { return if_there(stamp, std::move(value)); };
  return {{int64_t{stamp.vsan}, vswitch::utc_text(vswitch::instant_of(stamp.at)), int64_t{stamp.at.seconds},
           int64_t{stamp.at.microseconds}, there(wide_number{stamp.tod}), there(vswitch::utc_text(stamp.utc)),
           there(stamp.texts.day_first), there(stamp.texts.year_first),
           there(vswitch::utc_text(vswitch::instant_of(reference.host))), there(int64_t{reference.host.seconds}),
           there(int64_t{reference.host.microseconds}), there(wide_number{reference.tod}), int64_t{leap_seconds},
           status{stamp.status}},
          {},
          nullptr};
}

void add_line(const char* label, const std::string& value, std::string& text) {
  text += fmt::format("  {:<12}  {}\n", label, value);
}

// One below the other: side by side they would not fit a terminal.
std::string text_of(const time_stamp& stamp) {
  std::string text = fmt::format("VSAN {} at {}\n", stamp.vsan, vswitch::utc_text(vswitch::instant_of(stamp.at)));
  if (stamp.reference) {
    add_line("time stamp", vswitch::tod_text(stamp.tod), text);
    add_line("UTC", vswitch::utc_text(stamp.utc), text);
    add_line("host seconds", host_text(stamp.utc).empty() ? "-" : host_text(stamp.utc), text);
    add_line("day first", stamp.texts.day_first, text);
    add_line("year first", stamp.texts.year_first, text);
    add_line("reference",
             fmt::format("host {}, TOD {}", vswitch::utc_text(vswitch::instant_of(stamp.reference->host)),
                         vswitch::tod_text(stamp.reference->tod)),
             text);
  } else {
    add_line("reference", "none", text);
  }
  add_line("status", status_text(stamp.status), text);
  return text;
}

void print_stamps(const command_context& context, const std::vector<time_stamp>& stamps, const result_document& document) {
  if (context.style.format != output_format::table) return context.print(document);
  std::string text;
  for (size_t i = 0; i < stamps.size(); ++i) {
    text += (i == 0 ? "" : "\n") + text_of(stamps[i]);
    if (document.rows[i].explanation) text += "\n" + document.rows[i].explanation_text;
  }
  context.results.write(text);
}

std::vector<uint32_t> vsans_with_reference(const vswitch::chassis_description& chassis) {
  std::vector<uint32_t> vsans;
  for (const auto& [vsan, reference] : chassis.times) vsans.push_back(vsan);
  return vsans;
}

exit_code show_stamps(const command_context& context, const tod_options& options) {
  host_clock clock;
  const ficon_host_time at = parse_host_time(options.at.empty() ? "now" : options.at, clock);
  const library_session session = context.open_session();
  std::vector<time_stamp> stamps;
  result_document document{stamp_columns(), {}};
  exit_code code = kFound;
  for (uint32_t vsan : parse_numbers(kVsan, {options.vsans}, vsans_with_reference(session.chassis()))) {
    stamps.push_back(ask_for_stamp(session.chassis(), vsan, at, options.leap_seconds));
    const time_stamp& stamp = stamps.back();
    document.rows.push_back(row_of(stamp, options.leap_seconds));
    if (options.explain && stamp.reference) explain_time_stamp(vsan, *stamp.reference, at, document.rows.back());
    if (stamp.status != 0) code = kNotFound;
  }
  tell_leap_seconds(options.leap_seconds);
  print_stamps(context, stamps, document);
  return code;
}

// ---- Setting a reference ----

std::optional<time_reference> new_reference(const set_time_options& options) {
  if (options.host_time == kNone) {
    if (!options.tod.empty()) throw question_error("a TOD clock value belongs to a host time; none takes both away");
    return std::nullopt;
  }
  host_clock clock;
  const ficon_host_time host = parse_host_time(options.host_time, clock);
  const uint64_t tod =
      options.tod.empty() ? vswitch::tod_of(vswitch::instant_of(host)) : parse_tod_value(options.tod, clock);
  return time_reference{host, tod};
}

// A description of the one reference, to be compared.
vswitch::chassis_description with_reference(uint32_t vsan, const std::optional<time_reference>& reference) {
  vswitch::chassis_description chassis;
  if (reference) chassis.times[static_cast<uint16_t>(vsan)] = *reference;
  return chassis;
}

void print_change(const command_context& context, uint32_t vsan, const std::optional<time_reference>& before,
                  const std::optional<time_reference>& after) {
  result_document document;
  add_difference_columns("BEFORE", "AFTER", document.columns);
  for (const auto& found : differences(with_reference(vsan, before), with_reference(vsan, after))) {
    document.rows.emplace_back();
    add_difference_cells(found, document.rows.back().cells);
  }
  if (document.rows.empty()) notice("nothing to change: the switch holds these values already");
  context.print(document);
}

} // namespace

exit_code show_tod(const command_context& context, const tod_options& options) {
  if (options.vsans.empty() == options.what.empty())
    throw question_error(options.what.empty()
                             ? "nothing to convert; give TOD clock values or times, - to read them, or --vsan"
                             : "give times to convert or --vsan, not both; --at names a time stamp's time");
  if (options.vsans.empty() && !options.at.empty())
    throw question_error("--at is the time of a VSAN's time stamp; give --vsan");
  return options.vsans.empty() ? show_moments(context, options) : show_stamps(context, options);
}

exit_code set_time(const command_context& context, const set_time_options& options) {
  const uint32_t vsan = parse_number(kTimedVsan, options.vsan);
  const auto reference = new_reference(options);
  const std::string& folder = context.named_folder("edit the file, or make a folder of it with chnsw create");
  try {
    const auto before = vswitch::switch_store::open(folder)->set_time_reference(vsan, reference);
    print_change(context, vsan, before, reference);
    return kFound;
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

// ---- The commands ----

command tod_command() {
  auto options = std::make_shared<tod_options>();
  return {.name = "tod",
          .what = "The mainframe's time (TOD clock values) and the host's, and a VSAN's time stamp",
          .examples =
              "  chnsw tod CE4F44C40DC3B000\n  chnsw tod now 2015-01-05T09:07:03.000123Z @1420448823.9\n"
              "  chnsw tod - --format csv < values.txt\n  chnsw tod CE4F44C4 --leap-seconds 27 --explain\n"
              "  chnsw -s FILE tod --vsan 10\n  chnsw -s FILE tod --vsan all --at 2015-01-05T09:07:04.1Z --explain",
          .arguments =
              {optional_word(
                   "WHAT", &options->what,
                   "TOD clock values (4 to 16 digits, hexadecimal, padded with zeros on the right), times in UTC like "
                   "2015-01-05T09:07:03.9Z, host seconds since 1970 like @1420448823.9 (decimal), now; - for the lines "
                   "of standard input")
                   .offering({"now", "-"}),
               option("--vsan", "VSANS", &options->vsans,
                      "The time stamps of VSANs by their references: 10, 10,20 or all that have one, decimal"),
               option("--at", "TIME", &options->at, "The host's time for them: a time, @seconds or now, the default"),
               option("--leap-seconds", "N", &options->leap_seconds,
                      "The TOD clock counts this many leap seconds: subtracted for UTC and host seconds, 0 to 999")
                   .between(0, 999),
               flag("--explain", &options->explain, "Show the arithmetic, and how far a time stamp drifts by it")},
          .run = runs(show_tod, options),
          .parts = {}};
}

command set_time_command() {
  auto options = std::make_shared<set_time_options>();
  return {.name = "time",
          .what = "The reference of a VSAN's time stamps",
          .examples =
              "  chnsw -s /tmp/director set time 10 now\n"
              "  chnsw -s /tmp/director set time 10 2015-01-05T09:07:03.9Z CE4F44C4E976\n"
              "  chnsw -s /tmp/director set time 10 none",
          .arguments = {word("VSAN", &options->vsan, "VSAN, decimal"),
                        word("HOST", &options->host_time, "The host's time: a time in UTC, @seconds, now; or none"),
                        optional_word("TOD", &options->tod,
                                      "The TOD clock value of the same moment, 4 to 16 digits, hexadecimal, or now; the "
                                      "host's time when left out")},
          .run = runs(set_time, options),
          .parts = {}};
}

} // namespace chnsw_tool
