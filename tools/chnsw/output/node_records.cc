#include "output/node_records.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

nlohmann::ordered_json node_record(uint32_t if_index, const vswitch::node_descriptor& node) {
  nlohmann::ordered_json record = {{"interface", vswitch::interface_name(if_index)},          {"if_index", if_index},
                                   {"if_index_hex", fmt::format("0x{:08X}", if_index)},       {"codepage", node.codepage},
                                   {"codepage_name", ficon_get_codepage_name(node.codepage)}, {"flags", node.flags},
                                   {"flags_hex", fmt::format("0x{:08X}", node.flags)}};
  for (const auto& field : vswitch::kNodeTexts) record[field.name] = vswitch::without_blanks(node.*field.text);
  record["tag"] = node.tag;
  record["tag_hex"] = fmt::format("0x{:04X}", node.tag);
  return record;
}

} // namespace

nlohmann::ordered_json node_records(const vswitch::chassis_description& chassis) {
  nlohmann::ordered_json records = nlohmann::ordered_json::array();
  for (const auto& [if_index, node] : chassis.nodes) records.push_back(node_record(if_index, node));
  return records;
}

} // namespace chnsw_tool
