// Laying tables out.
#include "output/table_form.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>

#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "output/column_values.h"

namespace chnsw_tool {

namespace {

struct to_table {
  const column& where;

  std::string operator()(std::monostate) const { return "-"; }
  std::string operator()(int64_t value) const {
    if (!where.hex_in_table) return std::to_string(value);
    // Addresses have two digits, as engineers write them; interface indexes say that they are hexadecimal.
    return where.hex_digits > 2 ? hex_text(value, where.hex_digits) : fmt::format("{:0{}X}", value, where.hex_digits);
  }
  std::string operator()(wide_number number) const { return std::to_string(number.value); }
  std::string operator()(bool value) const { return value ? "yes" : "no"; }
  std::string operator()(const std::string& value) const { return value.empty() ? "-" : inspect::printable(value); }
  std::string operator()(const number_list& value) const {
    return value.empty() ? "-" : fmt::format("{}", fmt::join(value, ","));
  }
  std::string operator()(status value) const { return inspect::status_text(value.code); }
  std::string operator()(const toned_text& value) const {
    return value.text.empty() ? "-" : inspect::printable(value.text);
  }
};

tone tone_of(const cell& value) {
  if (auto text = std::get_if<toned_text>(&value)) return text->colour;
  if (auto code = std::get_if<status>(&value)) return code->code == 0 ? tone::good : tone::bad;
  return tone::plain;
}

// Characters, not bytes; good enough for names.
size_t width(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

struct table_column {
  std::string title;
  std::vector<std::string> texts;
  std::vector<tone> tones;
  size_t width = 0;
  bool right = false;
};

table_column lay_out(const result_document& document, size_t which) {
  const column& source = document.columns[which];
  table_column result{source.title, {}, {}, width(source.title), false};
  for (const auto& row : document.rows) {
    const cell& value = row.cells[which];
    result.texts.push_back(std::visit(to_table{source}, value));
    result.tones.push_back(tone_of(value));
    result.width = std::max(result.width, width(result.texts.back()));
    if (std::holds_alternative<int64_t>(value)) result.right = true;
  }
  return result;
}

void add_aligned(const table_column& column, const std::string& text, tone colour, bool enabled, bool last,
                 std::string& line) {
  std::string padding(std::max(column.width, width(text)) - width(text), ' ');
  if (column.right) line += padding;
  line += coloured(text, colour, enabled);
  if (!column.right && !last) line += padding;
  if (!last) line += "  ";
}

struct table_text {
  std::string text;
  tone colour;
};

std::string growing_line(const std::vector<column>& columns, bool colour, const std::function<table_text(size_t)>& at) {
  std::vector<size_t> shown;
  for (size_t i = 0; i < columns.size(); ++i)
    if (in_table(columns[i])) shown.push_back(i);
  std::string line;
  for (size_t i : shown) {
    const table_column layout{columns[i].title, {}, {}, std::max(columns[i].room, width(columns[i].title)), false};
    const table_text cell = at(i);
    add_aligned(layout, cell.text, cell.colour, colour, i == shown.back(), line);
  }
  return line + "\n";
}

} // namespace

std::string table_document(const result_document& document, bool colour) {
  std::vector<table_column> columns;
  for (size_t i = 0; i < document.columns.size(); ++i)
    if (in_table(document.columns[i])) columns.push_back(lay_out(document, i));
  std::string text;
  for (size_t i = 0; i < columns.size(); ++i)
    add_aligned(columns[i], columns[i].title, tone::strong, colour, i + 1 == columns.size(), text);
  text += '\n';
  for (size_t row = 0; row < document.rows.size(); ++row) {
    for (size_t i = 0; i < columns.size(); ++i)
      add_aligned(columns[i], columns[i].texts[row], columns[i].tones[row], colour, i + 1 == columns.size(), text);
    text += '\n';
  }
  for (const auto& row : document.rows)
    if (row.explanation) text += "\n" + row.explanation_text;
  return text;
}

std::string table_record(const nlohmann::ordered_json& /*record*/, const std::string& table) {
  return table;
}

std::string table_begin(const std::vector<column>& columns, bool colour) {
  return growing_line(columns, colour, [&](size_t i) { return table_text{columns[i].title, tone::strong}; });
}

std::string table_row(const std::vector<column>& columns, const result_row& row, bool /*first*/, bool colour) {
  return growing_line(columns, colour, [&](size_t i) {
    return table_text{std::visit(to_table{columns[i]}, row.cells[i]), tone_of(row.cells[i])};
  });
}

std::string table_end(bool /*any_row*/) {
  return "";
}

} // namespace chnsw_tool
