// check: the findings as a document.
#include "commands/check_command.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/port_map/map_findings.h"
#include "inspect/port_map/vsan_ports.h"
#include "output/cells.h"
#include "output/record_table.h"

namespace chnsw_tool {

namespace {

using inspect::finding;
using inspect::library_session;

struct check_options {
  bool notes = false; // also what is as it should be, but good to know
};

cell kind_cell(const finding& found) {
  return toned_text{kind_name(found.kind), is_note(found.kind) ? tone::faint : tone::bad};
}

std::span<const record_column<finding>> finding_table() {
  static const record_column<finding> kTable[] = {
      {{"kind", "KIND"}, kind_cell},
      {{"what", "WHAT"}, [](const finding& of) -> cell { return of.what; }},
      {{"vsan", "VSAN"}, [](const finding& of) { return optional_cell(of.vsan); }},
      {{"indexes", "INDEXES"}, [](const finding& of) -> cell { return of.indexes; }},
      {{"status", "", 0, false, column::data_only}, [](const finding& of) { return status_cell(of.status); }},
      {{"note", "", 0, false, column::data_only}, [](const finding& of) -> cell { return is_note(of.kind); }},
      {{"why", "WHY"}, [](const finding& of) -> cell { return of.why; }}};
  return kTable;
}

std::string counted(size_t number, const char* thing) {
  return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

std::string summary(const library_session& session, size_t findings, size_t notes, bool notes_shown) {
  auto vsans = inspect::vsans_of(session.chassis());
  std::string text = fmt::format("tried {} port addresses and port numbers without a VSAN", session.ports());
  if (!vsans.empty()) text += fmt::format(" and in VSAN{} {}", vsans.size() == 1 ? "" : "s", fmt::join(vsans, ", "));
  text += fmt::format(": {}, {}", counted(findings, "finding"), counted(notes, "note"));
  return notes != 0 && !notes_shown ? text + " (--notes shows them)" : text;
}

exit_code check_switch(const command_context& context, const check_options& options) {
  const library_session session = context.open_session();
  auto found = find_in_map(session);
  auto notes =
      static_cast<size_t>(std::count_if(found.begin(), found.end(), [](const auto& one) { return is_note(one.kind); }));
  result_document document{columns_of(finding_table()), {}};
  for (const auto& one : found)
    if (options.notes || !is_note(one.kind)) document.add(cells_of(finding_table(), one));
  context.print(document);
  notice(summary(session, found.size() - notes, notes, options.notes));
  return found.size() == notes ? kFound : kNotFound;
}

} // namespace

command check_command() {
  auto options = std::make_shared<check_options>();
  return {.name = "check",
          .what = "Try every number in every VSAN; exit status 1 when anything is wrong",
          .examples = "  chnsw -s FILE check\n  chnsw -s FILE check --notes --format json",
          .arguments = {flag("--notes", &options->notes, "Also list what is as it should be but good to know")},
          .run = runs(check_switch, options),
          .parts = {}};
}

} // namespace chnsw_tool
