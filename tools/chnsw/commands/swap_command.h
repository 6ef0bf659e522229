// Swapping two interfaces, as the client whom the manager asks at each step.
#ifndef CHNSW_SWAP_COMMAND_H
#define CHNSW_SWAP_COMMAND_H

#include <cstdint>
#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"
#include "inspect/messages/manager_client.h"

namespace chnsw_tool {

struct swap_options {
  std::string a;
  std::string b;
  std::string refuse;                                         // the step that is refused, the first time; empty: none
  uint32_t reason = 1;                                        // the swap status that refuses it
  double timeout_seconds = 2 * inspect::kUsualTimeoutSeconds; // longer than the manager waits for an answer
};

exit_code swap_interfaces(const command_context& context, const swap_options& options);

command swap_command();

} // namespace chnsw_tool

#endif
