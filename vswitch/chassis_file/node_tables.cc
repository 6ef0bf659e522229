// [[node]]
#include "chassis_file/chassis_reading.h"
#include "vswitch/interface_index.h"

namespace vswitch {

namespace {

constexpr number_range kFlags{0, UINT32_MAX};
constexpr number_range kTags{0, 0xFFFF};

std::optional<uint32_t> read_node_interface(chassis_reading& reading, table_reader& table) {
  auto if_index = read_interface_name(reading, table, "an interface such as \"fc1/5\", \"port-channel5\" or \"fcip3\"");
  if (!if_index || !interface_is_there(reading, *table.find("interface"), *if_index)) return std::nullopt;
  return if_index;
}

uint32_t read_codepage(chassis_reading& reading, table_reader& table) {
  const toml::node* value = table.find("codepage");
  if (value == nullptr) return kUsualCodepage;
  auto number = value->value_exact<int64_t>();
  if (number && is_codepage(*number)) return static_cast<uint32_t>(*number);
  std::string known;
  for (const code_page& page : kCodePages) known += (known.empty() ? "" : ", ") + std::to_string(page.number);
  reading.problems.add(*value, "codepage is " + shown(*value) + "; expected is one of " + known);
  return kUsualCodepage;
}

void read_node_text(chassis_reading& reading, table_reader& table, const node_text& field, node_descriptor& node) {
  auto text = table.text(field.name);
  if (!text) return;
  if (auto whole = padded(field, *text))
    node.*field.text = *whole;
  else
    reading.problems.add(*table.find(field.name), std::string(field.name) + " is " + quoted(*text) +
                                                      "; expected are 1 to " + std::to_string(field.length) +
                                                      " upper-case letters or digits");
}

} // namespace

void read_node(chassis_reading& reading, table_reader& table) {
  table.allow_only({"interface", "codepage", "flags", "type", "model", "manufacturer", "plant", "sequence", "tag"});
  auto if_index = read_node_interface(reading, table);
  node_descriptor node;
  node.codepage = read_codepage(reading, table);
  node.flags = static_cast<uint32_t>(table.number("flags", kFlags).value_or(0));
  for (const node_text& field : kNodeTexts) read_node_text(reading, table, field, node);
  node.tag = static_cast<uint16_t>(table.number("tag", kTags).value_or(0));
  if (!if_index) return;
  const toml::node& where = *table.find("interface");
  auto [first, added] = reading.nodes.emplace(*if_index, place_of(where));
  if (!added)
    reading.problems.add(where, interface_name(*if_index) + " has two nodes; the first one stands " +
                                    in_line(first->second) + ", and an interface has one device behind it");
  reading.chassis.nodes.emplace(*if_index, std::move(node));
}

} // namespace vswitch
