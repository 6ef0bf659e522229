// The chassis: what it is, what is in it, and what the library makes of it.
#ifndef CHNSW_INFO_COMMAND_H
#define CHNSW_INFO_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command info_command();

} // namespace chnsw_tool

#endif
