// Tables, JSON and CSV from one general table.
#include "output/result_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>

#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

// ---- Data ----

std::string hex_text(int64_t number, unsigned digits) {
  return fmt::format("0x{:0{}X}", number, digits);
}

// A number's hexadecimal text; none for a value that is no number.
std::optional<std::string> hex_of(const cell& value, unsigned digits) {
  if (auto wide = std::get_if<wide_number>(&value)) return fmt::format("0x{:0{}X}", wide->value, digits);
  if (auto number = std::get_if<int64_t>(&value)) return hex_text(*number, digits);
  return std::nullopt;
}

ordered_json status_data(status value) {
  return {{"code", value.code}, {"hex", hex_text(value.code, 8)}, {"name", status_name(value.code)}};
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

bool in_data(const column& column) {
  return column.shown != column::table_only;
}
bool in_table(const column& column) {
  return column.shown != column::data_only;
}

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

// Names come from files: what is not UTF-8 in them must not cost the whole result.
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

// ---- CSV ----

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
    fields.push_back(code ? std::string(status_name(code->code)) : "");
  } else if (column.hex_digits != 0) {
    fields.push_back(hex_of(value, column.hex_digits).value_or(""));
  }
}

std::string csv_row(const std::vector<column>& columns, const result_row& row) {
  std::vector<std::string> fields;
  for (size_t i = 0; i < columns.size(); ++i)
    if (in_data(columns[i])) add_csv_fields(columns[i], row.cells[i], fields);
  if (row.explanation) fields.push_back(row.explanation_text);
  return csv_line(fields);
}

bool is_explained(const result_document& document) {
  return std::any_of(document.rows.begin(), document.rows.end(),
                     [](const auto& row) { return row.explanation != nullptr; });
}

std::string csv_document(const result_document& document) {
  std::string text = csv_header(document.columns, is_explained(document));
  for (const auto& row : document.rows) text += csv_row(document.columns, row);
  return text;
}

void add_flat(const std::string& field, const ordered_json& value, std::string& text) {
  if (value.is_structured()) {
    for (const auto& [key, part] : value.items())
      add_flat(field.empty() ? key : fmt::format("{}.{}", field, key), part, text);
    return;
  }
  std::string shown = value.is_string() ? value.get<std::string>() : value.is_null() ? "" : dump(value, -1);
  text += csv_line({field, shown});
}

// ---- Tables ----

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
  std::string operator()(const std::string& value) const { return value.empty() ? "-" : printable(value); }
  std::string operator()(const number_list& value) const {
    return value.empty() ? "-" : fmt::format("{}", fmt::join(value, ","));
  }
  std::string operator()(status value) const { return status_text(value.code); }
  std::string operator()(const toned_text& value) const { return value.text.empty() ? "-" : printable(value.text); }
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

struct table_text {
  std::string text;
  tone colour;
};

// A line of a table of which nobody knows yet what else it will hold.
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

std::string growing_header(const std::vector<column>& columns, bool colour) {
  return growing_line(columns, colour, [&](size_t i) { return table_text{columns[i].title, tone::strong}; });
}

std::string growing_row(const std::vector<column>& columns, const result_row& row, bool colour) {
  return growing_line(columns, colour, [&](size_t i) {
    return table_text{std::visit(to_table{columns[i]}, row.cells[i]), tone_of(row.cells[i])};
  });
}

} // namespace

std::string coloured(std::string_view text, tone colour, bool enabled) {
  constexpr std::string_view kCodes[] = {"", "32", "31", "2", "1"};
  std::string_view code = kCodes[static_cast<size_t>(colour)];
  if (!enabled || code.empty()) return std::string(text);
  return fmt::format("\x1B[{}m{}\x1B[0m", code, text);
}

std::string render(const result_document& document, const output_style& style) {
  if (style.format == output_format::table) return table_document(document, style.colour);
  if (style.format == output_format::csv) return csv_document(document);
  std::string text = stream_begin(document.columns, style);
  for (size_t i = 0; i < document.rows.size(); ++i) text += stream_row(document.columns, document.rows[i], i == 0, style);
  return text + stream_end(!document.rows.empty(), style);
}

std::string render_record(const ordered_json& record, const std::string& table, const output_style& style) {
  switch (style.format) {
    case output_format::json:
      return dump(record, 2) + "\n";
    case output_format::jsonl:
      return dump(record, -1) + "\n";
    case output_format::csv: {
      std::string text = csv_line({"field", "value"});
      add_flat("", record, text);
      return text;
    }
    case output_format::table:
      break;
  }
  return table;
}

std::string stream_begin(const std::vector<column>& columns, const output_style& style) {
  if (style.format == output_format::table) return growing_header(columns, style.colour);
  if (style.format == output_format::csv) return csv_header(columns, false);
  return style.format == output_format::json ? "[" : "";
}

std::string stream_row(const std::vector<column>& columns, const result_row& row, bool first, const output_style& style) {
  if (style.format == output_format::table) return growing_row(columns, row, style.colour);
  if (style.format == output_format::csv) return csv_row(columns, row);
  ordered_json data = row_data(columns, row);
  if (style.format == output_format::jsonl) return dump(data, -1) + "\n";
  return (first ? "\n" : ",\n") + indented(dump(data, 2));
}

std::string stream_end(bool any_row, const output_style& style) {
  if (style.format != output_format::json) return "";
  return any_row ? "\n]\n" : "]\n";
}

} // namespace chnsw_tool
