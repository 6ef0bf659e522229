// Rows as lines of fields.
#include "output/csv_form.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "inspect/words/status_names.h"
#include "output/column_values.h"
#include "output/json_form.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

std::string csv_field(std::string_view field) {
  if (field.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(field);
  std::string result = "\"";
  for (char c : field) {
    if (c == '"') result += '"';
    result += c;
  }
  return result + '"';
}

std::string csv_line(const std::vector<std::string>& fields) {
  std::string line;
  for (size_t i = 0; i < fields.size(); ++i) line += (i == 0 ? "" : ",") + csv_field(fields[i]);
  return line + "\n";
}

struct to_csv {
  std::string operator()(std::monostate) const { return ""; }
  std::string operator()(int64_t value) const { return std::to_string(value); }
  std::string operator()(wide_number number) const { return std::to_string(number.value); }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(const std::string& value) const { return value; }
  std::string operator()(const number_list& value) const { return fmt::format("{}", fmt::join(value, " ")); }
  std::string operator()(status value) const { return std::to_string(value.code); }
  std::string operator()(const toned_text& value) const { return value.text; }
};

bool is_status_column(const column& column) {
  return column.key.ends_with("status");
}

std::string csv_header(const std::vector<column>& columns, bool explained) {
  std::vector<std::string> names;
  for (const auto& column : columns) {
    if (!in_data(column)) continue;
    names.push_back(column.key);
    if (column.hex_digits != 0 || is_status_column(column)) names.push_back(column.key + "_hex");
    if (is_status_column(column)) names.push_back(column.key + "_name");
  }
  if (explained) names.push_back("explanation");
  return csv_line(names);
}

void add_csv_fields(const column& column, const cell& value, std::vector<std::string>& fields) {
  fields.push_back(std::visit(to_csv{}, value));
  if (is_status_column(column)) {
    auto code = std::get_if<status>(&value);
    fields.push_back(code ? hex_text(code->code, 8) : "");
    fields.push_back(code ? std::string(inspect::status_name(code->code)) : "");
  } else if (column.hex_digits != 0) {
    fields.push_back(hex_of(value, column.hex_digits).value_or(""));
  }
}

bool is_explained(const result_document& document) {
  return std::any_of(document.rows.begin(), document.rows.end(),
                     [](const auto& row) { return row.explanation != nullptr; });
}

void add_flat(const std::string& field, const ordered_json& value, std::string& text) {
  if (value.is_structured()) {
    for (const auto& [key, part] : value.items())
      add_flat(field.empty() ? key : fmt::format("{}.{}", field, key), part, text);
    return;
  }
  std::string shown = value.is_string() ? value.get<std::string>() : value.is_null() ? "" : json_text(value);
  text += csv_line({field, shown});
}

} // namespace

std::string csv_document(const result_document& document, bool colour) {
  std::string text = csv_header(document.columns, is_explained(document));
  for (const auto& row : document.rows) text += csv_row(document.columns, row, false, colour);
  return text;
}

std::string csv_record(const ordered_json& record, const std::string& /*table*/) {
  std::string text = csv_line({"field", "value"});
  add_flat("", record, text);
  return text;
}

std::string csv_begin(const std::vector<column>& columns, bool /*colour*/) {
  return csv_header(columns, false);
}

std::string csv_row(const std::vector<column>& columns, const result_row& row, bool /*first*/, bool /*colour*/) {
  std::vector<std::string> fields;
  for (size_t i = 0; i < columns.size(); ++i)
    if (in_data(columns[i])) add_csv_fields(columns[i], row.cells[i], fields);
  if (row.explanation) fields.push_back(row.explanation_text);
  return csv_line(fields);
}

std::string csv_end(bool /*any_row*/) {
  return "";
}

} // namespace chnsw_tool
