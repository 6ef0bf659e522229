// message: what the bytes of a message say, and the bytes of what is to be said.
#ifndef CHNSW_MESSAGE_COMMAND_H
#define CHNSW_MESSAGE_COMMAND_H

#include "commands/command.h"

namespace chnsw_tool {

command message_command(); // message list, decode, encode

} // namespace chnsw_tool

#endif
