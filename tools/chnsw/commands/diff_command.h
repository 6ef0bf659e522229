// Two switches held against each other.
#ifndef CHNSW_DIFF_COMMAND_H
#define CHNSW_DIFF_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command diff_command();

} // namespace chnsw_tool

#endif
