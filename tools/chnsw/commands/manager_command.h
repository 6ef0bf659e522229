// The manager of a switch's folder, as a process.
#ifndef CHNSW_MANAGER_COMMAND_H
#define CHNSW_MANAGER_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command manager_command();

} // namespace chnsw_tool

#endif
