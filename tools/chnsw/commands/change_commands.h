// Making a switch's folder, and changing an entry of its port map.
#ifndef CHNSW_CHANGE_COMMANDS_H
#define CHNSW_CHANGE_COMMANDS_H

#include "commands/command.h"

namespace chnsw_tool {

command create_command();
command set_command(); // set port, binding, address, and time

} // namespace chnsw_tool

#endif
