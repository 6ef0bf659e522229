// The chassis: what it is, what is in it, and what the library makes of it.
#ifndef CHNSW_INFO_COMMAND_H
#define CHNSW_INFO_COMMAND_H

#include "command_context.h"
#include "commands/command.h"
#include "commands/map_commands.h"
#include "exit_code.h"

namespace chnsw_tool {

exit_code show_info(const command_context& context, const no_options& options);

command info_command();

} // namespace chnsw_tool

#endif
