// Two switches held against each other, and one switch handed on in another form.
#ifndef CHNSW_COMPARE_COMMANDS_H
#define CHNSW_COMPARE_COMMANDS_H

#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct diff_options {
  std::string a;
  std::string b;
};

struct export_options {
  std::string to; // csv, json, toml; empty: what --format says, else toml
};

exit_code show_diff(const command_context& context, const diff_options& options);
exit_code export_switch(const command_context& context, const export_options& options);

std::vector<command> compare_commands(); // diff, export

} // namespace chnsw_tool

#endif
