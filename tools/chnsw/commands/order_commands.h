// Orders to the manager of a switch: to install FICON in VSANs, to send notices.
#ifndef CHNSW_ORDER_COMMANDS_H
#define CHNSW_ORDER_COMMANDS_H

#include "commands/command.h"

namespace chnsw_tool {

command install_command();
command notify_command(); // notify vsan, port, enable, rnid

} // namespace chnsw_tool

#endif
