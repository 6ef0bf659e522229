#include "output/difference_columns.h"

#include <algorithm>
#include <cctype>

#include "output/port_row.h"
#include "output/record_table.h"

namespace chnsw_tool {

namespace {

using inspect::difference;

cell data_cell(const inspect::difference_value& value) {
  return std::visit([](const auto& data) { return cell(data); }, value.data);
}

std::string key_of(std::string title) {
  std::transform(title.begin(), title.end(), title.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return title;
}

std::vector<record_column<difference>> columns_under(const std::string& before, const std::string& after) {
  return {
      {{"where", "WHERE"}, [](const difference& found) -> cell { return found.where; }},
      {{"index", "", 0, false, column::data_only}, [](const difference& found) { return optional_cell(found.index); }},
      {{"field", "FIELD"}, [](const difference& found) -> cell { return found.field; }},
      {{"before_text", before, 0, false, column::table_only},
       [](const difference& found) -> cell { return found.before.text; }},
      {{"after_text", after, 0, false, column::table_only},
       [](const difference& found) -> cell { return found.after.text; }},
      {{key_of(before), "", 2, false, column::data_only}, [](const difference& found) { return data_cell(found.before); }},
      {{key_of(after), "", 2, false, column::data_only}, [](const difference& found) { return data_cell(found.after); }}};
}

const std::vector<record_column<difference>>& columns_of_change() {
  static const auto columns = columns_under("BEFORE", "AFTER");
  return columns;
}

} // namespace

result_document difference_document(const std::string& before, const std::string& after,
                                    const std::vector<difference>& found) {
  return document_of<difference>(columns_under(before, after), found);
}

std::vector<column> change_columns() {
  std::vector<column> columns = {{"change_counter", "CHANGE"}};
  append(columns, columns_of<difference>(columns_of_change()));
  return columns;
}

std::vector<cell> change_cells(uint32_t change_counter, const difference& found) {
  std::vector<cell> cells = {int64_t{change_counter}};
  append(cells, cells_of<difference>(columns_of_change(), found));
  return cells;
}

result_document change_document(uint32_t change_counter, const std::vector<difference>& found) {
  result_document document{change_columns(), {}};
  for (const auto& one : found) document.add(change_cells(change_counter, one));
  return document;
}

} // namespace chnsw_tool
