// The command line: which command was asked for, with which options.
#ifndef CHNSW_COMMAND_LINE_H
#define CHNSW_COMMAND_LINE_H

#include <functional>
#include <optional>
#include <string>

#include "command_context.h"
#include "exit_code.h"

namespace chnsw_tool {

using command = std::function<exit_code(const command_context&)>;

struct parsed_command_line {
  std::string switch_path;
  output_format format = output_format::table;
  std::string colour = "auto";
  command run;
  std::string text; // help or version, printed instead of running a command
};

// Throws inspect::error with a message that says what was wrong.
parsed_command_line parse_command_line(int argc, char** argv);

} // namespace chnsw_tool

#endif
