// Ports and interfaces by their names, and whether the file describes them.
#include <algorithm>

#include "chassis_file/chassis_reading.h"
#include "vswitch/interface_index.h"

namespace vswitch {

namespace {

// "fc1/5" or "fc1/1-48".
std::optional<port_run> parse_port_run(std::string_view text) {
  const size_t dash = text.find('-');
  auto index = parse_interface_name(text.substr(0, dash));
  auto port = index && text.starts_with("fc") ? fc_port_of(*index) : std::nullopt;
  if (!port) return std::nullopt;
  if (dash == std::string_view::npos) return port_run{port->slot, port->port, port->port};
  auto last = parse_number_run(text.substr(dash + 1));
  if (!last || last->first != last->last || last->last < port->port || last->last > 256) return std::nullopt;
  return port_run{port->slot, port->port, static_cast<unsigned>(last->last)};
}

} // namespace

std::optional<port_run> ports_of(chassis_reading& reading, const toml::node& value, std::string_view what) {
  auto text = value.value_exact<std::string>();
  auto ports = text ? parse_port_run(*text) : std::nullopt;
  if (!ports)
    reading.problems.add(value, std::string(what) + " is " + shown(value) + "; expected is " + std::string(kPortsExpected));
  return ports;
}

// What is not known, because what describes it is wrong, counts as not there but is no further problem.
bool ports_are_there(chassis_reading& reading, const toml::node& where, const port_run& ports) {
  const std::string slot = "slot " + std::to_string(ports.slot);
  if (!reading.slots_known || !reading.supervisors_known || reading.doubtful_cards.count(ports.slot) != 0) return false;
  const line_card* card = card_in_slot(reading.chassis, ports.slot);
  if (ports.slot > reading.chassis.slots()) {
    reading.problems.add(where,
                         "there is no " + slot + "; the chassis has slots 1 to " + std::to_string(reading.chassis.slots()));
  } else if (!line_card_number(reading.chassis, ports.slot)) {
    reading.problems.add(where, slot + " holds a supervisor, which has no ports; expected is the slot of a line card");
  } else if (card == nullptr) {
    reading.problems.add(where, slot + " has no line card; describe it with [[line_card]]");
  } else if (ports.last > card->ports) {
    reading.problems.add(where, "the line card in " + slot + " has no port " +
                                    std::to_string(std::max(ports.first, card->ports + 1)) + "; its ports are 1 to " +
                                    std::to_string(card->ports));
  } else {
    return true;
  }
  return false;
}

std::optional<uint32_t> read_interface_name(chassis_reading& reading, table_reader& table, std::string_view expected) {
  if (!table.has("interface")) table.missing("interface", expected);
  auto name = table.text("interface");
  if (!name) return std::nullopt;
  auto if_index = parse_interface_name(*name);
  if (!if_index)
    reading.problems.add(*table.find("interface"),
                         "interface is " + quoted(*name) + "; expected is " + std::string(expected));
  return if_index;
}

bool interface_is_there(chassis_reading& reading, const toml::node& where, uint32_t if_index) {
  if (auto port = fc_port_of(if_index)) return ports_are_there(reading, where, {port->slot, port->port, port->port});
  if (reading.logical.count(if_index) != 0) return true;
  const bool channel = interface_type(if_index) == IF_TYPE_PORT_CHANNEL;
  reading.problems.add(where, "there is no " + interface_name(if_index) + "; describe it with " +
                                  (channel ? "[[port_channel]]" : "[[interface]]"));
  return false;
}

} // namespace vswitch
