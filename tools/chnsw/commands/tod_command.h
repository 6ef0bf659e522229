// tod: the mainframe's time and the host's, and a VSAN's time stamp; set time: a VSAN's reference.
#ifndef CHNSW_TOD_COMMAND_H
#define CHNSW_TOD_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command tod_command();
command set_time_command(); // a part of set

} // namespace chnsw_tool

#endif
