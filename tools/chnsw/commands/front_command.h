// A picture of the chassis front: line cards and their ports, coloured by VSAN.
#ifndef CHNSW_FRONT_COMMAND_H
#define CHNSW_FRONT_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command front_command();

} // namespace chnsw_tool

#endif
