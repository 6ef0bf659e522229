// Ports and interfaces as people write them: alone, as lists and as ranges.
#ifndef INSPECT_PORT_LISTS_H
#define INSPECT_PORT_LISTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vswitch/chassis_description.h"
#include "vswitch/interface_index.h"

namespace inspect {

// All of them throw a question error that says which word, where in it, and what was expected.

// "3/5", "3/1-48", "3" for every port of the card in slot 3, "all" for every port of every card.
std::vector<vswitch::fc_port> parse_ports(const vswitch::chassis_description& chassis,
                                          const std::vector<std::string>& words);

// "fc3/5", "fc3/1-48", "port-channel5", "0x01020400", "all" for every interface of the chassis.
std::vector<uint32_t> parse_interfaces(const vswitch::chassis_description& chassis, const std::vector<std::string>& words);
uint32_t parse_interface(std::string_view word);

} // namespace inspect

#endif
