// check: every number in every VSAN tried through the library, and what a person should know about the answers.
#ifndef CHNSW_CHECK_COMMAND_H
#define CHNSW_CHECK_COMMAND_H

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct check_options {
  bool notes = false; // also what is as it should be, but good to know
};

exit_code check_switch(const command_context& context, const check_options& options);

command check_command();

} // namespace chnsw_tool

#endif
