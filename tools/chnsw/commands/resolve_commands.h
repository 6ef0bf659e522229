// The questions about a port: by address, number, interface, slot and port, or port map index.
#ifndef CHNSW_RESOLVE_COMMANDS_H
#define CHNSW_RESOLVE_COMMANDS_H

#include <vector>

#include "commands/command.h"

namespace chnsw_tool {

std::vector<command> resolve_commands(); // pa, pn, if, slot, index

} // namespace chnsw_tool

#endif
