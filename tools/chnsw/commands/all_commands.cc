// Every command of the tool, in the order in which the help lists them.
#include <algorithm>
#include <iterator>

#include "commands/ask_commands.h"
#include "commands/change_commands.h"
#include "commands/check_command.h"
#include "commands/codepage_command.h"
#include "commands/default_command.h"
#include "commands/diff_command.h"
#include "commands/export_command.h"
#include "commands/front_command.h"
#include "commands/info_command.h"
#include "commands/listen_command.h"
#include "commands/manager_command.h"
#include "commands/map_commands.h"
#include "commands/message_command.h"
#include "commands/order_commands.h"
#include "commands/resolve_commands.h"
#include "commands/swap_command.h"
#include "commands/tod_command.h"
#include "commands/watch_command.h"

namespace chnsw_tool {

namespace {

void add(std::vector<command> family, std::vector<command>& all) {
  std::move(family.begin(), family.end(), std::back_inserter(all));
}

} // namespace

std::vector<command> all_commands() {
  std::vector<command> all;
  add(resolve_commands(), all);
  add(map_commands(), all);
  add({info_command()}, all);
  add(walk_commands(), all);
  add({default_command(), check_command(), front_command()}, all);
  add({diff_command(), export_command()}, all);
  add({create_command(), watch_command(), set_command(), tod_command(), manager_command(), ask_command()}, all);
  add({install_command(), swap_command(), listen_command(), notify_command(), codepage_command(), message_command()}, all);
  return all;
}

} // namespace chnsw_tool
