#include "output/map_document.h"

#include "inspect/port_map/map_entries.h"
#include "output/port_row.h"
#include "output/record_table.h"

namespace chnsw_tool {

namespace {

using inspect::map_entry;

cell there_cell(const map_entry& entry) {
  if (!entry.there) return {};
  return *entry.there;
}

std::span<const record_column<map_entry>> map_table() {
  static const record_column<map_entry> kTable[] = {
      {{"index", "INDEX"}, [](const map_entry& of) -> cell { return int64_t{of.index}; }},
      {{"pn", "PN", 2}, [](const map_entry& of) { return number_cell(of.pn); }},
      {{"pa", "PA", 2, true}, [](const map_entry& of) { return number_cell(of.pa); }},
      {{"vsans", "VSANS"}, [](const map_entry& of) -> cell { return of.vsans; }},
      {{"port_vsan", "VSAN"}, [](const map_entry& of) { return vsan_cell(of.port_vsan); }},
      {{"slot_port", "SLOT/PORT", 0, false, column::table_only},
       [](const map_entry& of) { return slot_and_port_cell(of.port); }},
      {{"slot", "", 0, false, column::data_only}, [](const map_entry& of) { return slot_cell(of.port); }},
      {{"port", "", 0, false, column::data_only}, [](const map_entry& of) { return port_cell(of.port); }},
      {{"if_index", "IF-INDEX", 8, true}, [](const map_entry& of) { return interface_cell(of.if_index); }},
      {{"interface", "INTERFACE"}, [](const map_entry& of) { return interface_name_cell(of.if_index); }},
      {{"there", "THERE"}, there_cell},
      {{"port_channel", "PORT-CHANNEL"},
       [](const map_entry& of) { return known_cell(of.channel != 0, int64_t{of.channel}); }}};
  return kTable;
}

} // namespace

result_document map_document(const inspect::library_session& session, const std::vector<uint32_t>& indexes) {
  result_document document{columns_of(map_table()), {}};
  for (uint32_t index : indexes) document.add(cells_of(map_table(), map_entry_at(session, index)));
  return document;
}

} // namespace chnsw_tool
