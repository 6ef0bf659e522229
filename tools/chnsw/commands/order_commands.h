// Orders to the manager of a switch: to install FICON in VSANs, to send notices.
#ifndef CHNSW_ORDER_COMMANDS_H
#define CHNSW_ORDER_COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"
#include "inspect/messages/manager_client.h"

namespace chnsw_tool {

struct install_options {
  std::string vsans;
  std::vector<std::string> interfaces;
  bool uninstall = false;
  double timeout_seconds = inspect::kUsualTimeoutSeconds;
};

struct notify_options {
  std::string vsans;
  std::vector<std::string> interfaces;
  std::string state; // "up", "down", "on", "off"
  uint32_t reason = 0;
  double timeout_seconds = inspect::kUsualTimeoutSeconds;
};

exit_code install_vsans(const command_context& context, const install_options& options);
exit_code notify_vsan(const command_context& context, const notify_options& options);
exit_code notify_port(const command_context& context, const notify_options& options);
exit_code notify_enable(const command_context& context, const notify_options& options);
exit_code notify_rnid(const command_context& context, const notify_options& options);

command install_command();
command notify_command(); // notify vsan, port, enable, rnid

} // namespace chnsw_tool

#endif
