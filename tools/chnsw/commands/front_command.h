// A picture of the chassis front: line cards and their ports, coloured by VSAN.
#ifndef CHNSW_FRONT_COMMAND_H
#define CHNSW_FRONT_COMMAND_H

#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct front_options {
  std::string svg; // file to draw into, "-" for standard output; empty: draw in the terminal
};

exit_code show_front(const command_context& context, const front_options& options);

command front_command();

} // namespace chnsw_tool

#endif
