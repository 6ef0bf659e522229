// The manager's notices, as they come.
#ifndef CHNSW_LISTEN_COMMAND_H
#define CHNSW_LISTEN_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command listen_command();

} // namespace chnsw_tool

#endif
