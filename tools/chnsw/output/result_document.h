// A command's result as one general table, and its four forms: table, JSON, JSON lines, CSV.
#ifndef CHNSW_RESULT_DOCUMENT_H
#define CHNSW_RESULT_DOCUMENT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "inspect/error.h"

namespace chnsw_tool {

enum class output_format { table, json, jsonl, csv };

std::vector<std::string> format_names();           // as --format takes them
output_format format_named(std::string_view name); // table for any other name

struct output_style {
  output_format format = output_format::table;
  bool colour = false; // tables only
};

// A status of the library: a number with its hexadecimal text and its name.
struct status {
  uint32_t code = 0;
};

enum class tone { plain, good, bad, faint, strong };

// A text that a table may colour.
struct toned_text {
  std::string text;
  tone colour = tone::plain;
};

using number_list = std::vector<uint16_t>;

// A number of 64 bits without a sign. Some readers of JSON lose its last digits; the text beside it has them all.
struct wide_number {
  uint64_t value = 0;
};

// What one place of a row holds; std::monostate is a missing value.
using cell = std::variant<std::monostate, int64_t, wide_number, bool, std::string, number_list, status, toned_text>;

struct column {
  enum place { everywhere, table_only, data_only };

  std::string key;         // in data
  std::string title;       // in a table
  unsigned hex_digits = 0; // not 0: data has the hexadecimal text beside the number, as key_hex
  bool hex_in_table = false;
  place shown = everywhere;
  size_t room = 0; // its width in a table that grows while it is written; wider texts push the others aside
};

struct result_row {
  std::vector<cell> cells; // one a column
  // Why, when that was asked for: as text, and as data under the key "explanation".
  std::string explanation_text;
  std::shared_ptr<const nlohmann::ordered_json> explanation;
};

struct result_document {
  std::vector<column> columns;
  std::vector<result_row> rows;

  void add(std::vector<cell> cells) { rows.push_back({std::move(cells), {}, nullptr}); }
};

// The whole document, valid also when it has no row.
std::string render(const result_document& document, const output_style& style);

// A document that is one thing with parts, not a table: JSON is the object, JSON lines one line of it, CSV a field and its
// value a line, and the table is what the caller made.
std::string render_record(const nlohmann::ordered_json& record, const std::string& table, const output_style& style);

// A document that grows while it is written, row by row.
std::string stream_begin(const std::vector<column>& columns, const output_style& style);
std::string stream_row(const std::vector<column>& columns, const result_row& row, bool first, const output_style& style);
std::string stream_end(bool any_row, const output_style& style);

std::string coloured(std::string_view text, tone colour, bool enabled);

} // namespace chnsw_tool

#endif
