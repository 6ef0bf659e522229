// check: every number in every VSAN tried through the library, and what a person should know about the answers.
#ifndef CHNSW_CHECK_COMMAND_H
#define CHNSW_CHECK_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command check_command();

} // namespace chnsw_tool

#endif
