#include "output/node_columns.h"

#include <string>

#include "output/port_row.h"
#include "output/record_table.h"

namespace chnsw_tool {

namespace {

// A node, and its fields one by one.
struct shown_node {
  const inspect::node_identity& identity;
  vswitch::node_descriptor fields;
};

cell text_cell(const shown_node& node, const std::string& text) {
  return known_cell(node.identity.is_readable(), text);
}

const record_column<shown_node> kColumns[] = {
    {{"node", "NODE", 0, false, column::everywhere, 30},
     [](const shown_node& node) { return text_cell(node, inspect::node_text(node.identity)); }},
    {{"type", "", 0, false, column::data_only}, [](const shown_node& node) { return text_cell(node, node.fields.type); }},
    {{"model", "", 0, false, column::data_only}, [](const shown_node& node) { return text_cell(node, node.fields.model); }},
    {{"manufacturer", "", 0, false, column::data_only},
     [](const shown_node& node) { return text_cell(node, node.fields.manufacturer); }},
    {{"plant", "", 0, false, column::data_only}, [](const shown_node& node) { return text_cell(node, node.fields.plant); }},
    {{"sequence", "", 0, false, column::data_only},
     [](const shown_node& node) { return text_cell(node, node.fields.sequence); }},
    {{"flags", "", 8, false, column::data_only}, [](const shown_node& node) -> cell { return int64_t{node.fields.flags}; }},
    {{"tag", "", 4, false, column::data_only}, [](const shown_node& node) -> cell { return int64_t{node.fields.tag}; }},
    {{"codepage", "", 0, false, column::data_only},
     [](const shown_node& node) -> cell { return int64_t{node.identity.codepage}; }},
    {{"codepage_name", "", 0, false, column::data_only},
     [](const shown_node& node) -> cell { return std::string(ficon_get_codepage_name(node.identity.codepage)); }},
};

} // namespace

std::vector<column> node_columns() {
  return columns_of<shown_node>(kColumns);
}

std::vector<cell> node_cells(const std::optional<inspect::node_identity>& node) {
  if (!node) return std::vector<cell>(std::size(kColumns));
  return cells_of<shown_node>(kColumns, {*node, inspect::node_fields(*node)});
}

} // namespace chnsw_tool
