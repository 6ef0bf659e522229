#include "inspect/chassis/node_identity.h"
#include "inspect/words/printable_text.h"

#include <fmt/format.h>

#include <cstring>

#include "output/port_row.h"
#include "vswitch/node_descriptor.h"

namespace chnsw_tool {

namespace {

template <size_t size, typename byte>
void add_hex(const byte (&bytes)[size], const char* separator, std::string& text) {
  if (!text.empty()) text += separator;
  for (byte one : bytes) text += fmt::format("{:02X}", static_cast<unsigned char>(one));
}

// A text that people can read; the switch's own is ISO 8859-1.
cell text_cell(const node_identity& node, const std::string& text) {
  return known_cell(node.is_readable(), utf8_of_latin1(vswitch::without_blanks(text)));
}

} // namespace

node_identity identity_of(uint32_t codepage, const ficon_node_descriptor& sent) {
  node_identity node{codepage, sent, sent, 0};
  node.conversion = ficon_format_rnid(codepage, &node.converted);
  return node;
}

node_identity identity_of_converted(uint32_t codepage, const ficon_node_descriptor& converted) {
  return {codepage, converted, converted, 0};
}

std::string node_text(const node_identity& node) {
  if (!node.is_readable()) return "";
  const auto texts = vswitch::node_of(node.codepage, node.converted);
  std::string whole;
  for (const auto& field : vswitch::kNodeTexts) {
    if (!whole.empty()) whole += '-';
    whole += vswitch::without_blanks(texts.*field.text);
  }
  return utf8_of_latin1(whole);
}

std::string codepage_text(uint32_t codepage) {
  return fmt::format("{} {}", codepage, ficon_get_codepage_name(codepage));
}

std::string hex_of(const ficon_node_descriptor& descriptor, const char* separator) {
  std::string text;
  add_hex(descriptor.flags, separator, text);
  add_hex(descriptor.type, separator, text);
  add_hex(descriptor.model, separator, text);
  add_hex(descriptor.manufacturer, separator, text);
  add_hex(descriptor.plant, separator, text);
  add_hex(descriptor.sequence, separator, text);
  add_hex(descriptor.tag, separator, text);
  return text;
}

std::vector<column> node_columns() {
  std::vector<column> columns = {{"node", "NODE", 0, false, column::everywhere, 30}};
  for (const auto& field : vswitch::kNodeTexts) columns.push_back({field.name, "", 0, false, column::data_only});
  columns.push_back({"flags", "", 8, false, column::data_only});
  columns.push_back({"tag", "", 4, false, column::data_only});
  columns.push_back({"codepage", "", 0, false, column::data_only});
  columns.push_back({"codepage_name", "", 0, false, column::data_only});
  return columns;
}

std::vector<cell> node_cells(const node_identity& node) {
  const auto texts = vswitch::node_of(node.codepage, node.converted);
  const std::string whole = node_text(node);
  std::vector<cell> cells = {known_cell(node.is_readable(), whole)};
  for (const auto& field : vswitch::kNodeTexts) cells.push_back(text_cell(node, texts.*field.text));
  cells.emplace_back(int64_t{texts.flags});
  cells.emplace_back(int64_t{texts.tag});
  cells.emplace_back(int64_t{node.codepage});
  cells.emplace_back(std::string(ficon_get_codepage_name(node.codepage)));
  return cells;
}

std::vector<cell> no_node_cells() {
  return std::vector<cell>(node_columns().size());
}

} // namespace chnsw_tool
