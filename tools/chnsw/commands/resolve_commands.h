// The questions about a port: by address, number, interface, slot and port, or port map index.
#ifndef CHNSW_RESOLVE_COMMANDS_H
#define CHNSW_RESOLVE_COMMANDS_H

#include <optional>
#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct resolve_options {
  std::vector<std::string> what;
  std::optional<std::string> vsan; // addresses and numbers
  bool fast = false;               // the same: through the library's _fast forms
  bool skip_lag_check = false;     // interfaces: answer a port-channel's member like any port
  bool explain = false;
};

exit_code resolve_addresses(const command_context& context, const resolve_options& options);
exit_code resolve_numbers(const command_context& context, const resolve_options& options);
exit_code resolve_interfaces(const command_context& context, const resolve_options& options);
exit_code resolve_slots(const command_context& context, const resolve_options& options);
exit_code resolve_indexes(const command_context& context, const resolve_options& options);

std::vector<command> resolve_commands(); // pa, pn, if, slot, index

} // namespace chnsw_tool

#endif
