// The default port numbering of a chassis, and whether the port map still is the default.
#ifndef CHNSW_DEFAULT_COMMAND_H
#define CHNSW_DEFAULT_COMMAND_H

#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct default_options {
  std::vector<std::string> slots; // the default numbers of these slots
  bool logical = false;           // the default numbers without a physical port
  bool verdict = false;           // only whether the map is the default
};

exit_code show_default(const command_context& context, const default_options& options);

command default_command();

} // namespace chnsw_tool

#endif
