// A switch's folder watched: the port map is drawn again whenever its change counter moves.
#ifndef CHNSW_WATCH_COMMAND_H
#define CHNSW_WATCH_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command watch_command();

} // namespace chnsw_tool

#endif
