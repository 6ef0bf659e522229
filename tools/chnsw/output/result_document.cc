// The forms of a document, a row each.
#include "output/result_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "inspect/enum_rows.h"
#include "output/csv_form.h"
#include "output/json_form.h"
#include "output/table_form.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

struct document_form {
  output_format format;
  std::string_view name;
  std::string (*document)(const result_document& document, bool colour);
  std::string (*record)(const ordered_json& record, const std::string& table);
  std::string (*begin)(const std::vector<column>& columns, bool colour);
  std::string (*row)(const std::vector<column>& columns, const result_row& row, bool first, bool colour);
  std::string (*end)(bool any_row);
};

constexpr document_form kForms[] = {
    {output_format::table, "table", table_document, table_record, table_begin, table_row, table_end},
    {output_format::json, "json", json_document, json_record, json_begin, json_row, json_end},
    {output_format::jsonl, "jsonl", json_lines_document, json_lines_record, json_lines_begin, json_lines_row,
     json_lines_end},
    {output_format::csv, "csv", csv_document, csv_record, csv_begin, csv_row, csv_end},
};
static_assert(inspect::has_row_for_each(kForms, &document_form::format, output_format::csv));

const document_form& form_of(const output_style& style) {
  return kForms[static_cast<size_t>(style.format)];
}

struct tone_row {
  tone colour;
  std::string_view code; // of the terminal; empty: as it is
};

constexpr tone_row kTones[] = {
    {tone::plain, ""}, {tone::good, "32"}, {tone::bad, "31"}, {tone::faint, "2"}, {tone::strong, "1"}};
static_assert(inspect::has_row_for_each(kTones, &tone_row::colour, tone::strong));

} // namespace

std::vector<std::string> format_names() {
  std::vector<std::string> names;
  for (const auto& form : kForms) names.emplace_back(form.name);
  return names;
}

output_format format_named(std::string_view name) {
  const auto* form =
      std::find_if(std::begin(kForms), std::end(kForms), [&](const auto& each) { return each.name == name; });
  return form == std::end(kForms) ? output_format::table : form->format;
}

std::string coloured(std::string_view text, tone colour, bool enabled) {
  std::string_view code = kTones[static_cast<size_t>(colour)].code;
  if (!enabled || code.empty()) return std::string(text);
  return fmt::format("\x1B[{}m{}\x1B[0m", code, text);
}

std::string render(const result_document& document, const output_style& style) {
  return form_of(style).document(document, style.colour);
}

std::string render_record(const ordered_json& record, const std::string& table, const output_style& style) {
  return form_of(style).record(record, table);
}

std::string stream_begin(const std::vector<column>& columns, const output_style& style) {
  return form_of(style).begin(columns, style.colour);
}

std::string stream_row(const std::vector<column>& columns, const result_row& row, bool first, const output_style& style) {
  return form_of(style).row(columns, row, first, style.colour);
}

std::string stream_end(bool any_row, const output_style& style) {
  return form_of(style).end(any_row);
}

} // namespace chnsw_tool
