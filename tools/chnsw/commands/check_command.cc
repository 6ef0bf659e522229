// check: the findings as a document.
#include "commands/check_command.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/port_map/map_findings.h"
#include "output/port_row.h"

namespace chnsw_tool {

namespace {

std::vector<column> finding_columns() {
  return {{"kind", "KIND"},
          {"what", "WHAT"},
          {"vsan", "VSAN"},
          {"indexes", "INDEXES"},
          {"status", "", 0, false, column::data_only},
          {"note", "", 0, false, column::data_only},
          {"why", "WHY"}};
}

void add_finding(const finding& found, result_document& document) {
  document.add({toned_text{kind_name(found.kind), is_note(found.kind) ? tone::faint : tone::bad}, found.what,
                optional_cell(found.vsan), found.indexes, status{found.status}, is_note(found.kind), found.why});
}

std::string counted(size_t number, const char* thing) {
  return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

std::string summary(const library_session& session, size_t findings, size_t notes, bool notes_shown) {
  auto vsans = vsans_of(session.chassis());
  std::string text = fmt::format("tried {} port addresses and port numbers without a VSAN", session.ports());
  if (!vsans.empty()) text += fmt::format(" and in VSAN{} {}", vsans.size() == 1 ? "" : "s", fmt::join(vsans, ", "));
  text += fmt::format(": {}, {}", counted(findings, "finding"), counted(notes, "note"));
  return notes != 0 && !notes_shown ? text + " (--notes shows them)" : text;
}

} // namespace

exit_code check_switch(const command_context& context, const check_options& options) {
  library_session session = context.open_session();
  auto found = find_in_map(session);
  auto notes =
      static_cast<size_t>(std::count_if(found.begin(), found.end(), [](const auto& one) { return is_note(one.kind); }));
  result_document document{finding_columns(), {}};
  for (const auto& one : found)
    if (options.notes || !is_note(one.kind)) add_finding(one, document);
  context.print(document);
  notice(summary(session, found.size() - notes, notes, options.notes));
  return found.size() == notes ? kFound : kNotFound;
}

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
