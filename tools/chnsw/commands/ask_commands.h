// Questions to the manager of a switch, by the library's own messages.
#ifndef CHNSW_ASK_COMMANDS_H
#define CHNSW_ASK_COMMANDS_H

#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"
#include "inspect/messages/manager_client.h"

namespace chnsw_tool {

struct ask_options {
  std::vector<std::string> interfaces; // as in "fc3/1-48"; not of every question
  std::string vsans;                   // of vsan-state
  double timeout_seconds = inspect::kUsualTimeoutSeconds;
};

exit_code ask_portmap(const command_context& context, const ask_options& options);
exit_code ask_vsans(const command_context& context, const ask_options& options);
exit_code ask_vsan_state(const command_context& context, const ask_options& options);
exit_code ask_rnid(const command_context& context, const ask_options& options);

command ask_command(); // ask portmap, vsans, vsan-state, rnid

} // namespace chnsw_tool

#endif
