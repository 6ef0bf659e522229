// Columns and cells.
#include "output/column_values.h"

#include <fmt/format.h>

namespace chnsw_tool {

bool in_data(const column& column) {
  return column.shown != column::table_only;
}
bool in_table(const column& column) {
  return column.shown != column::data_only;
}

std::string hex_text(int64_t number, unsigned digits) {
  return fmt::format("0x{:0{}X}", number, digits);
}

std::optional<std::string> hex_of(const cell& value, unsigned digits) {
  if (auto wide = std::get_if<wide_number>(&value)) return fmt::format("0x{:0{}X}", wide->value, digits);
  if (auto number = std::get_if<int64_t>(&value)) return hex_text(*number, digits);
  return std::nullopt;
}

} // namespace chnsw_tool
