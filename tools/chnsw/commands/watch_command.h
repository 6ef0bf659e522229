// A switch's folder watched: the port map is drawn again whenever its change counter moves.
#ifndef CHNSW_WATCH_COMMAND_H
#define CHNSW_WATCH_COMMAND_H

#include <cstdint>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct watch_options {
  double interval_seconds = 1;
  uint64_t count = 0; // draws before it ends by itself; 0: never
};

exit_code watch_switch(const command_context& context, const watch_options& options);

command watch_command();

} // namespace chnsw_tool

#endif
