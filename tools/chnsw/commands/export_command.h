// One switch handed on in another form.
#ifndef CHNSW_EXPORT_COMMAND_H
#define CHNSW_EXPORT_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command export_command();

} // namespace chnsw_tool

#endif
