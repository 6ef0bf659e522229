// Rows as objects.
#include "output/json_form.h"

#include <nlohmann/json.hpp>

#include "inspect/words/status_names.h"
#include "output/column_values.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

ordered_json status_data(status value) {
  return {{"code", value.code}, {"hex", hex_text(value.code, 8)}, {"name", inspect::status_name(value.code)}};
}

struct to_json {
  ordered_json operator()(std::monostate) const { return nullptr; }
  ordered_json operator()(status value) const { return status_data(value); }
  ordered_json operator()(const toned_text& value) const { return value.text; }
  ordered_json operator()(wide_number number) const { return number.value; }
  template <typename plain>
  ordered_json operator()(const plain& value) const {
    return value;
  }
};

ordered_json row_data(const std::vector<column>& columns, const result_row& row) {
  ordered_json object = ordered_json::object();
  for (size_t i = 0; i < columns.size(); ++i) {
    if (!in_data(columns[i])) continue;
    object[columns[i].key] = std::visit(to_json{}, row.cells[i]);
    if (columns[i].hex_digits == 0) continue;
    auto hex = hex_of(row.cells[i], columns[i].hex_digits);
    object[columns[i].key + "_hex"] = hex ? ordered_json(*hex) : ordered_json();
  }
  if (row.explanation) object["explanation"] = *row.explanation;
  return object;
}

// Names come from files and may not be UTF-8; wrong bytes are replaced, so that the rest of the result is still written.
std::string dump(const ordered_json& value, int indent) {
  return value.dump(indent, ' ', false, ordered_json::error_handler_t::replace);
}

std::string indented(const std::string& text) {
  std::string result = "  ";
  for (char c : text) {
    result += c;
    if (c == '\n') result += "  ";
  }
  return result;
}

} // namespace

std::string json_text(const ordered_json& value) {
  return dump(value, -1);
}

std::string json_document(const result_document& document, bool colour) {
  std::string text = json_begin(document.columns, colour);
  for (size_t i = 0; i < document.rows.size(); ++i) text += json_row(document.columns, document.rows[i], i == 0, colour);
  return text + json_end(!document.rows.empty());
}

std::string json_record(const ordered_json& record, const std::string& /*table*/) {
  return dump(record, 2) + "\n";
}

std::string json_begin(const std::vector<column>& /*columns*/, bool /*colour*/) {
  return "[";
}

std::string json_row(const std::vector<column>& columns, const result_row& row, bool first, bool /*colour*/) {
  return (first ? "\n" : ",\n") + indented(dump(row_data(columns, row), 2));
}

std::string json_end(bool any_row) {
  return any_row ? "\n]\n" : "]\n";
}

std::string json_lines_document(const result_document& document, bool colour) {
  std::string text;
  for (const auto& row : document.rows) text += json_lines_row(document.columns, row, false, colour);
  return text;
}

std::string json_lines_record(const ordered_json& record, const std::string& /*table*/) {
  return json_text(record) + "\n";
}

std::string json_lines_begin(const std::vector<column>& /*columns*/, bool /*colour*/) {
  return "";
}

std::string json_lines_row(const std::vector<column>& columns, const result_row& row, bool /*first*/, bool /*colour*/) {
  return json_text(row_data(columns, row)) + "\n";
}

std::string json_lines_end(bool /*any_row*/) {
  return "";
}

} // namespace chnsw_tool
