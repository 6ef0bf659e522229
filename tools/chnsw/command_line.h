// The command line: which command was asked for, with which options.
#ifndef CHNSW_COMMAND_LINE_H
#define CHNSW_COMMAND_LINE_H

#include <functional>
#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct parsed_command_line {
  std::string switch_path;
  std::string format = "table";
  std::string colour = "auto";
  std::function<exit_code(const command_context&)> run;
  std::string text; // help or version, printed instead of running a command
};

// The options that every command takes.
std::vector<argument> general_options(parsed_command_line& line);

// Throws inspect::error with a message that says what was wrong.
parsed_command_line parse_command_line(int argc, char** argv);

} // namespace chnsw_tool

#endif
