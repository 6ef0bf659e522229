// Swapping two interfaces, as the client whom the manager asks at each step.
#ifndef CHNSW_SWAP_COMMAND_H
#define CHNSW_SWAP_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command swap_command();

} // namespace chnsw_tool

#endif
