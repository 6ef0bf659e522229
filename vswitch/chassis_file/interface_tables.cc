// [[port_channel]] and [[interface]]
#include <algorithm>

#include "chassis_file/chassis_reading.h"
#include "vswitch/interface_index.h"

namespace vswitch {

namespace {

constexpr number_range kChannels{1, 0xFFFFFF};

void read_member(chassis_reading& reading, const toml::node& value, logical_interface& channel) {
  auto ports = ports_of(reading, value, "a member");
  if (!ports || !ports_are_there(reading, value, *ports)) return;
  for (unsigned port = ports->first; port <= ports->last; ++port) {
    const uint32_t if_index = fc_port_index(ports->slot, port);
    auto [first, added] = reading.members.emplace(if_index, place_of(value));
    if (added) {
      channel.members.push_back(if_index);
      continue;
    }
    reading.problems.add(value, interface_name(if_index) + " is a member twice; it became one " + in_line(first->second) +
                                    ", and a port belongs to one port-channel");
    return;
  }
}

void add_logical(chassis_reading& reading, const logical_interface& interface, const toml::node& where) {
  auto [first, added] = reading.logical.emplace(interface.if_index, place_of(where));
  if (added)
    reading.chassis.interfaces.push_back(interface);
  else
    reading.problems.add(
        where, interface_name(interface.if_index) + " is described twice; the first time " + in_line(first->second));
}

} // namespace

void read_port_channel(chassis_reading& reading, table_reader& table) {
  table.allow_only({"number", "members"});
  auto number = table.required_number("number", kChannels);
  logical_interface channel;
  channel.if_index = logical_index(IF_TYPE_PORT_CHANNEL, static_cast<uint32_t>(number.value_or(0)));
  if (const toml::array* members = table.array("members", "a list of ports such as [\"fc1/1\", \"fc2/1-4\"]"))
    for (const toml::node& member : *members) read_member(reading, member, channel);
  std::sort(channel.members.begin(), channel.members.end());
  if (number) add_logical(reading, channel, *table.find("number"));
}

void read_interface(chassis_reading& reading, table_reader& table) {
  table.allow_only({"name"});
  constexpr std::string_view expected = "a logical interface such as \"fcip3\" or \"mgmt0\"";
  if (!table.has("name")) table.missing("name", expected);
  auto name = table.text("name");
  if (!name) return;
  const toml::node& where = *table.find("name");
  const uint32_t if_index = parse_interface_name(*name).value_or(0);
  const uint8_t type = interface_type(if_index);
  if (type == 0)
    reading.problems.add(where, "name is " + quoted(*name) + "; expected is " + std::string(expected));
  else if (type == IF_TYPE_FC_PORT)
    reading.problems.add(where, *name + " is a physical port; its line card is described with [[line_card]]");
  else if (type == IF_TYPE_PORT_CHANNEL)
    reading.problems.add(where, *name + " is a port-channel; it is described with [[port_channel]]");
  else
    add_logical(reading, {if_index, {}}, where);
}

} // namespace vswitch
