// The port map as lists: the map itself, a VSAN's ports, logical interfaces, and the walks over interfaces.
#ifndef CHNSW_MAP_COMMANDS_H
#define CHNSW_MAP_COMMANDS_H

#include <vector>

#include "commands/command.h"

namespace chnsw_tool {

std::vector<command> map_commands();  // map, vsan, logical
std::vector<command> walk_commands(); // next, last

} // namespace chnsw_tool

#endif
