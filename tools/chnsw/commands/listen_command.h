// The manager's notices, as they come.
#ifndef CHNSW_LISTEN_COMMAND_H
#define CHNSW_LISTEN_COMMAND_H

#include <cstdint>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct listen_options {
  uint64_t count = 0; // notices before it ends by itself; 0: never
};

exit_code listen_to_manager(const command_context& context, const listen_options& options);

command listen_command();

} // namespace chnsw_tool

#endif
