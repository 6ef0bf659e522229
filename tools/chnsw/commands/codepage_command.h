// codepage: the code pages of hosts, and text in them.
#ifndef CHNSW_CODEPAGE_COMMAND_H
#define CHNSW_CODEPAGE_COMMAND_H

#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct codepage_options {
  std::vector<std::string> pages; // none: those that there are
  std::vector<std::string> to_host;
  std::vector<std::string> from_host;
};

exit_code show_codepages(const command_context& context, const codepage_options& options);

command codepage_command();

} // namespace chnsw_tool

#endif
