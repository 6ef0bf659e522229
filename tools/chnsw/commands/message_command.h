// message: what the bytes of a message say, and the bytes of what is to be said.
#ifndef CHNSW_MESSAGE_COMMAND_H
#define CHNSW_MESSAGE_COMMAND_H

#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct message_list_options {
  std::vector<std::string> kinds; // none: all
};

struct message_options {
  std::string kind;
  std::vector<std::string> words; // the bytes, or FIELD=VALUE
  std::string order;              // "big" or "little"; empty: that of the array, else big
  bool value_alone = false;       // without the TLV array around it
};

exit_code list_messages(const command_context& context, const message_list_options& options);
exit_code decode_message(const command_context& context, const message_options& options);
exit_code encode_message(const command_context& context, const message_options& options);

command message_command(); // message list, decode, encode

} // namespace chnsw_tool

#endif
