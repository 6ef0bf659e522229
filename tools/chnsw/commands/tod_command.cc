// tod and set time.
#include "commands/tod_command.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "inspect/chassis/switch_changes.h"
#include "inspect/mainframe/tod_answers.h"
#include "inspect/mainframe/tod_explanation.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/status_names.h"
#include "output/difference_columns.h"
#include "output/port_row.h"
#include "output/record_table.h"
#include "output/tod_explanation.h"
#include "standard_input.h"

namespace chnsw_tool {

namespace {

using inspect::named_moment;
using inspect::time_stamp;
using inspect::tod_answer;
using vswitch::instant;

struct tod_options {
  std::vector<std::string> what; // moments, or "-" for the lines of standard input
  std::string vsans;             // whose time stamps are asked for in their place
  std::string at;                // the host's time for them; now when empty
  unsigned leap_seconds = 0;     // that the TOD clock is ahead of UTC
  bool explain = false;
};

struct set_time_options {
  std::string vsan;
  std::string host_time; // or "none"
  std::string tod;       // empty: the TOD clock says the same as the host's
};

constexpr inspect::number_kind kTimedVsan = {"VSAN", 10, 1, 4095, "10"};

void notice_leap_seconds(unsigned leap_seconds) {
  if (leap_seconds == 0) return;
  notice(
      fmt::format("{} leap seconds are subtracted from a TOD clock value to make a time, and added the other way; the "
                  "library's texts know none",
                  leap_seconds));
}

// ---- Moments ----

// A host time's seconds as a table shows them; nothing beyond 32 bits.
std::string host_text(instant at) {
  return vswitch::host_time_of(at) ? vswitch::seconds_text(at) : "";
}

cell host_cell(instant at, int32_t ficon_host_time::*word) {
  auto host = vswitch::host_time_of(at);
  return host ? cell(int64_t{(*host).*word}) : cell();
}

const record_column<tod_answer> kMomentColumns[] = {
    {{"asked", "", 0, false, column::data_only}, [](const tod_answer& answer) -> cell { return answer.word; }},
    {{"tod_text", "TOD", 0, false, column::table_only},
     [](const tod_answer& answer) -> cell { return vswitch::tod_text(answer.tod); }},
    {{"tod", "", 16, false, column::data_only}, [](const tod_answer& answer) -> cell { return wide_number{answer.tod}; }},
    {{"utc", "UTC"}, [](const tod_answer& answer) -> cell { return vswitch::utc_text(answer.utc); }},
    {{"host_text", "HOST SECONDS", 0, false, column::table_only},
     [](const tod_answer& answer) -> cell { return host_text(answer.utc); }},
    {{"host_seconds", "", 0, false, column::data_only},
     [](const tod_answer& answer) { return host_cell(answer.utc, &ficon_host_time::seconds); }},
    {{"host_microseconds", "", 0, false, column::data_only},
     [](const tod_answer& answer) { return host_cell(answer.utc, &ficon_host_time::microseconds); }},
    {{"day_first", "DAY FIRST"}, [](const tod_answer& answer) -> cell { return answer.texts.day_first; }},
    {{"year_first", "YEAR FIRST"}, [](const tod_answer& answer) -> cell { return answer.texts.year_first; }},
    {{"leap_seconds", "", 0, false, column::data_only},
     [](const tod_answer& answer) -> cell { return int64_t{answer.leap_seconds}; }},
};

struct moment_list {
  std::vector<named_moment> moments;
  bool has_bad_line = false;
};

// A line that names no moment is complained about, and the others are taken all the same.
void add_lines(inspect::host_clock& clock, moment_list& list) {
  size_t number = 0;
  while (const auto text = read_input_line()) {
    const auto line = inspect::parse_moment_line(++number, *text, clock);
    if (!line) continue;
    if (line->moment) {
      list.moments.push_back(*line->moment);
    } else {
      notice(fmt::format("line {}: {}", line->number, line->reason));
      list.has_bad_line = true;
    }
  }
}

moment_list read_moments(const tod_options& options) {
  inspect::host_clock clock;
  moment_list list;
  for (const auto& word : inspect::moment_words(options.what)) {
    if (word == kStandardInput)
      add_lines(clock, list);
    else
      list.moments.push_back(inspect::parse_moment(word, clock));
  }
  return list;
}

void add_moment(const named_moment& moment, const tod_options& options, result_document& document) {
  const tod_answer answer = inspect::answer_moment(moment, options.leap_seconds);
  document.add(cells_of<tod_answer>(kMomentColumns, answer));
  if (!options.explain) return;
  attach(moment.tod ? inspect::explain_tod(answer.tod, options.leap_seconds)
                    : inspect::explain_instant(moment.at, options.leap_seconds),
         document.rows.back());
}

exit_code show_moments(const command_context& context, const tod_options& options) {
  const moment_list list = read_moments(options);
  result_document document{columns_of<tod_answer>(kMomentColumns), {}};
  for (const auto& moment : list.moments) add_moment(moment, options, document);
  notice_leap_seconds(options.leap_seconds);
  context.print(document);
  return list.has_bad_line ? kNotFound : kFound;
}

// ---- Time stamps ----

std::string at_text(const time_stamp& stamp) {
  return vswitch::utc_text(vswitch::instant_of(stamp.at));
}

std::string reference_utc(const time_stamp& stamp) {
  return stamp.reference ? vswitch::utc_text(vswitch::instant_of(stamp.reference->host)) : "";
}

// A value that there is only with a reference.
cell if_there(const time_stamp& stamp, cell value) {
  return known_cell(stamp.reference.has_value(), std::move(value));
}

cell reference_cell(const time_stamp& stamp, int32_t ficon_host_time::*word) {
  return stamp.reference ? cell(int64_t{stamp.reference->host.*word}) : cell();
}

const record_column<time_stamp> kStampColumns[] = {
    {{"vsan", "VSAN"}, [](const time_stamp& stamp) -> cell { return int64_t{stamp.vsan}; }},
    {{"at", "AT"}, [](const time_stamp& stamp) -> cell { return at_text(stamp); }},
    {{"at_seconds", "", 0, false, column::data_only},
     [](const time_stamp& stamp) -> cell { return int64_t{stamp.at.seconds}; }},
    {{"at_microseconds", "", 0, false, column::data_only},
     [](const time_stamp& stamp) -> cell { return int64_t{stamp.at.microseconds}; }},
    {{"tod", "", 16, false, column::data_only},
     [](const time_stamp& stamp) { return if_there(stamp, wide_number{stamp.tod}); }},
    {{"utc", ""}, [](const time_stamp& stamp) { return if_there(stamp, vswitch::utc_text(stamp.utc)); }},
    {{"day_first", ""}, [](const time_stamp& stamp) { return if_there(stamp, stamp.texts.day_first); }},
    {{"year_first", ""}, [](const time_stamp& stamp) { return if_there(stamp, stamp.texts.year_first); }},
    {{"reference_utc", ""}, [](const time_stamp& stamp) { return if_there(stamp, reference_utc(stamp)); }},
    {{"reference_host_seconds", "", 0, false, column::data_only},
     [](const time_stamp& stamp) { return reference_cell(stamp, &ficon_host_time::seconds); }},
    {{"reference_host_microseconds", "", 0, false, column::data_only},
     [](const time_stamp& stamp) { return reference_cell(stamp, &ficon_host_time::microseconds); }},
    {{"reference_tod", "", 16, false, column::data_only},
     [](const time_stamp& stamp) { return stamp.reference ? cell(wide_number{stamp.reference->tod}) : cell(); }},
    {{"leap_seconds", "", 0, false, column::data_only},
     [](const time_stamp& stamp) -> cell { return int64_t{stamp.leap_seconds}; }},
    {{"status", "STATUS"}, [](const time_stamp& stamp) -> cell { return status{stamp.status}; }},
};

void add_line(const char* label, const std::string& value, std::string& text) {
  text += fmt::format("  {:<12}  {}\n", label, value);
}

// One below the other: side by side they would not fit a terminal.
std::string text_of(const time_stamp& stamp) {
  std::string text = fmt::format("VSAN {} at {}\n", stamp.vsan, at_text(stamp));
  if (stamp.reference) {
    add_line("time stamp", vswitch::tod_text(stamp.tod), text);
    add_line("UTC", vswitch::utc_text(stamp.utc), text);
    add_line("host seconds", host_text(stamp.utc).empty() ? "-" : host_text(stamp.utc), text);
    add_line("day first", stamp.texts.day_first, text);
    add_line("year first", stamp.texts.year_first, text);
    add_line("reference", fmt::format("host {}, TOD {}", reference_utc(stamp), vswitch::tod_text(stamp.reference->tod)),
             text);
  } else {
    add_line("reference", "none", text);
  }
  add_line("status", inspect::status_text(stamp.status), text);
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
  inspect::host_clock clock;
  const ficon_host_time at = inspect::parse_host_time(options.at.empty() ? "now" : options.at, clock);
  const inspect::library_session session = context.open_session();
  const auto& chassis = session.chassis();
  std::vector<time_stamp> stamps;
  result_document document{columns_of<time_stamp>(kStampColumns), {}};
  exit_code code = kFound;
  for (uint32_t vsan : inspect::parse_numbers(inspect::kVsan, {options.vsans}, vsans_with_reference(chassis))) {
    const time_stamp stamp = inspect::ask_time_stamp(chassis, vsan, at, options.leap_seconds);
    document.add(cells_of<time_stamp>(kStampColumns, stamp));
    if (options.explain && stamp.reference)
      attach(inspect::explain_time_stamp(vsan, *stamp.reference, at), document.rows.back());
    if (stamp.status != 0) code = kNotFound;
    stamps.push_back(stamp);
  }
  notice_leap_seconds(options.leap_seconds);
  print_stamps(context, stamps, document);
  return code;
}

exit_code show_tod(const command_context& context, const tod_options& options) {
  if (options.vsans.empty() == options.what.empty())
    throw inspect::question_error(options.what.empty()
                                      ? "nothing to convert; give TOD clock values or times, - to read them, or --vsan"
                                      : "give times to convert or --vsan, not both; --at names a time stamp's time");
  if (options.vsans.empty() && !options.at.empty())
    throw inspect::question_error("--at is the time of a VSAN's time stamp; give --vsan");
  return options.vsans.empty() ? show_moments(context, options) : show_stamps(context, options);
}

exit_code set_time(const command_context& context, const set_time_options& options) {
  const uint32_t vsan = inspect::parse_number(kTimedVsan, options.vsan);
  const auto reference = inspect::parse_time_reference(options.host_time, options.tod);
  const auto changes = inspect::change_time_reference(context.named_folder(kChangesNeedFolder), vsan, reference);
  if (changes.empty()) notice(kNothingToChange);
  context.print(difference_document("BEFORE", "AFTER", changes));
  return kFound;
}

} // namespace

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
