// Questions to the manager of a switch, by the library's own messages.
#ifndef CHNSW_ASK_COMMANDS_H
#define CHNSW_ASK_COMMANDS_H

#include "commands/command.h"

namespace chnsw_tool {

command ask_command(); // ask portmap, vsans, vsan-state, rnid

} // namespace chnsw_tool

#endif
