// An edit of the port map, from values as people write them.
#ifndef INSPECT_PORT_MAP_EDIT_H
#define INSPECT_PORT_MAP_EDIT_H

#include <functional>
#include <optional>
#include <string>

#include "vswitch/chassis_description.h"

namespace inspect {

using port_map_edit = std::function<void(vswitch::port_map&)>;

// New values; no value leaves the old one, "none" takes it away.
struct new_port_values {
  std::string where; // an interface like fc3/5, or a port map index
  std::optional<std::string> pn;
  std::optional<std::string> pa;
  std::optional<std::string> vsans;
  std::optional<std::string> vsan;
};

// Each throws a question error for what the chassis or the port map has no place for.

// The table of addresses follows the ports as long as it says what they say; one that was set by hand is left alone.
port_map_edit edit_of_port(const vswitch::chassis_description& chassis, const new_port_values& values);

// Binds a port number to an interface, or to none.
port_map_edit edit_of_binding(const vswitch::chassis_description& chassis, const std::string& pn,
                              const std::string& interface);

// Gives a port address its port number, or none.
port_map_edit edit_of_address(const std::string& pa, const std::string& pn);

} // namespace inspect

#endif
