// One switch handed on in another form.
#ifndef CHNSW_EXPORT_COMMAND_H
#define CHNSW_EXPORT_COMMAND_H

#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct export_options {
  std::string to; // csv, json, toml; empty: what --format says, else toml
};

exit_code export_switch(const command_context& context, const export_options& options);

command export_command();

} // namespace chnsw_tool

#endif
