// The columns of an answer about a port.
#include "output/port_row.h"

#include <fmt/format.h>

#include "inspect/words/status_names.h"

namespace chnsw_tool {

namespace {

using inspect::port_answer;

void add_status(std::string_view label, std::optional<uint32_t> code, std::string& text) {
  if (code.value_or(0) == 0) return;
  if (!text.empty()) text += "; ";
  text += std::string(label) + inspect::status_text(*code);
}

// The first call that failed: without a port number the look-ups of interfaces could only fail as well.
cell status_summary(const port_answer& answer) {
  if (!answer.status) return toned_text{"not asked", tone::bad};
  if (*answer.status != 0) return toned_text{inspect::status_text(*answer.status), tone::bad};
  std::string failed;
  if (answer.if_status == answer.phyif_status) {
    add_status("both: ", answer.if_status, failed);
  } else {
    add_status("if: ", answer.if_status, failed);
    add_status("phy: ", answer.phyif_status, failed);
  }
  return failed.empty() ? toned_text{inspect::status_text(0), tone::good} : toned_text{failed, tone::bad};
}

cell vsans_cell(const port_answer& answer) {
  if (!answer.vsans) return {};
  return *answer.vsans;
}

} // namespace

std::span<const record_column<port_answer>> port_table() {
  static const record_column<port_answer> kTable[] = {
      {{"pn", "PN", 2}, [](const port_answer& of) { return number_cell(of.pn); }},
      {{"pa", "PA", 2, true}, [](const port_answer& of) { return number_cell(of.pa); }},
      {{"slot_port", "SLOT/PORT", 0, false, column::table_only},
       [](const port_answer& of) { return slot_and_port_cell(of.port); }},
      {{"slot", "", 0, false, column::data_only}, [](const port_answer& of) { return slot_cell(of.port); }},
      {{"port", "", 0, false, column::data_only}, [](const port_answer& of) { return port_cell(of.port); }},
      {{"index", "INDEX"}, [](const port_answer& of) { return optional_cell(of.index); }},
      {{"if_index", "IF-INDEX", 8, true}, [](const port_answer& of) { return interface_cell(of.if_index); }},
      {{"interface", "INTERFACE"}, [](const port_answer& of) { return interface_name_cell(of.if_index); }},
      {{"phyif_index", "", 8, false, column::data_only},
       [](const port_answer& of) { return interface_cell(of.phyif_index); }},
      {{"phyif", "PHYSICAL"}, [](const port_answer& of) { return interface_name_cell(of.phyif_index); }},
      {{"vsans", "VSANS"}, vsans_cell},
      {{"port_vsan", "VSAN"}, [](const port_answer& of) { return vsan_cell(of.port_vsan.value_or(0)); }},
      {{"asked_vsan", "", 0, false, column::data_only}, [](const port_answer& of) { return optional_cell(of.asked_vsan); }},
      {{"status", "", 0, false, column::data_only}, [](const port_answer& of) { return status_cell(of.status); }},
      {{"if_status", "", 0, false, column::data_only}, [](const port_answer& of) { return status_cell(of.if_status); }},
      {{"phyif_status", "", 0, false, column::data_only},
       [](const port_answer& of) { return status_cell(of.phyif_status); }},
      {{"statuses", "STATUS", 0, false, column::table_only}, status_summary}};
  return kTable;
}

std::string not_asked_text(const std::string& what, const inspect::not_asked& unasked) {
  if (unasked.why == inspect::not_asked::cause::index_beyond_map)
    return fmt::format("{} would be at port map index {}, beyond the last, {}: the library is not asked", what,
                       unasked.found, unasked.highest);
  return fmt::format("{} carries port number {}, beyond the highest, {}: the library is not asked", what, unasked.found,
                     unasked.highest);
}

} // namespace chnsw_tool
