// codepage: the code pages of hosts, and text in them.
#ifndef CHNSW_CODEPAGE_COMMAND_H
#define CHNSW_CODEPAGE_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command codepage_command();

} // namespace chnsw_tool

#endif
