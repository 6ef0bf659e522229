// Two switches held against each other.
#ifndef CHNSW_DIFF_COMMAND_H
#define CHNSW_DIFF_COMMAND_H

#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct diff_options {
  std::string a;
  std::string b;
};

exit_code show_diff(const command_context& context, const diff_options& options);

command diff_command();

} // namespace chnsw_tool

#endif
