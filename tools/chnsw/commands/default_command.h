// The default port numbering of a chassis, and whether the port map still is the default.
#ifndef CHNSW_DEFAULT_COMMAND_H
#define CHNSW_DEFAULT_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command default_command();

} // namespace chnsw_tool

#endif
