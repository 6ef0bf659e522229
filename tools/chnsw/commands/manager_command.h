// The manager of a switch's folder, as a process.
#ifndef CHNSW_MANAGER_COMMAND_H
#define CHNSW_MANAGER_COMMAND_H

#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct manager_command_options {
  std::string folder; // empty: the switch that the context names
};

exit_code serve_folder(const command_context& context, const manager_command_options& options);

command manager_command();

} // namespace chnsw_tool

#endif
