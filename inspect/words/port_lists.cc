// Lists and ranges of ports and interfaces.
#include "inspect/words/port_lists.h"

#include <fmt/format.h>

#include "inspect/words/word_piece.h"

namespace inspect {

namespace {

constexpr number_kind kPortOnCard = {"port", 10, 1, 254, "3/5 or 3/1-48"};
constexpr std::string_view kInterfaceForms =
    "expected a name like fc3/5, fc3/1-48, port-channel5, fcip3 or mgmt0, or an index like 0x01020400";

void add_card_ports(const vswitch::line_card& card, std::vector<vswitch::fc_port>& ports) {
  for (unsigned port = 1; port <= card.ports; ++port) ports.push_back({card.slot, port});
}

void add_all_ports(const vswitch::chassis_description& chassis, std::vector<vswitch::fc_port>& ports) {
  for (const auto& card : chassis.line_cards) add_card_ports(card, ports);
}

void add_slot(const vswitch::chassis_description& chassis, const word_piece& at, std::vector<vswitch::fc_port>& ports) {
  uint32_t slot = read_number(kSlot, at);
  const vswitch::line_card* card = vswitch::card_in_slot(chassis, slot);
  if (card == nullptr)
    refuse_piece("slot", at, fmt::format("slot {} has no line card; name a port, as in {}/1, to ask anyway", slot, slot));
  add_card_ports(*card, ports);
}

void add_ports(const vswitch::chassis_description& chassis, const word_piece& item, std::vector<vswitch::fc_port>& ports) {
  size_t slash = item.text.find('/');
  if (slash == std::string_view::npos) return add_slot(chassis, item, ports);
  uint32_t slot = read_number(kSlot, item.part(0, slash));
  number_range range = read_range(kPortOnCard, item.part(slash + 1));
  for (uint32_t port = range.first; port <= range.last; ++port) ports.push_back({slot, port});
}

// "fc3/1-48" names 48 ports; "port-channel5" and everything else that is no port names itself.
bool is_port_range(std::string_view name) {
  return name.starts_with("fc") && name.find('/') != std::string_view::npos && name.find('-') != std::string_view::npos;
}

void add_port_range(const word_piece& item, std::vector<uint32_t>& interfaces) {
  size_t slash = item.text.find('/');
  uint32_t slot = read_number(kSlot, item.part(2, slash - 2));
  number_range range = read_range(kPortOnCard, item.part(slash + 1));
  for (uint32_t port = range.first; port <= range.last; ++port) interfaces.push_back(vswitch::fc_port_index(slot, port));
}

void add_all_interfaces(const vswitch::chassis_description& chassis, std::vector<uint32_t>& interfaces) {
  std::vector<vswitch::fc_port> ports;
  add_all_ports(chassis, ports);
  for (const auto& port : ports) interfaces.push_back(vswitch::fc_port_index(port.slot, port.port));
  for (const auto& interface : chassis.interfaces) interfaces.push_back(interface.if_index);
}

uint32_t read_interface(const word_piece& item) {
  auto if_index = vswitch::parse_interface_name(item.text);
  if (!if_index) refuse_piece("interface", item, fmt::format("\"{}\" is not an interface; {}", item.text, kInterfaceForms));
  return *if_index;
}

} // namespace

std::vector<vswitch::fc_port> parse_ports(const vswitch::chassis_description& chassis,
                                          const std::vector<std::string>& words) {
  std::vector<vswitch::fc_port> ports;
  for_each_item(words, [&](const word_piece& item) {
    if (item.text == kEverything) return add_all_ports(chassis, ports);
    add_ports(chassis, item, ports);
  });
  return ports;
}

std::vector<uint32_t> parse_interfaces(const vswitch::chassis_description& chassis, const std::vector<std::string>& words) {
  std::vector<uint32_t> interfaces;
  for_each_item(words, [&](const word_piece& item) {
    if (item.text == kEverything) return add_all_interfaces(chassis, interfaces);
    if (is_port_range(item.text)) return add_port_range(item, interfaces);
    interfaces.push_back(read_interface(item));
  });
  return interfaces;
}

uint32_t parse_interface(std::string_view word) {
  return read_interface({word, word});
}

} // namespace inspect
