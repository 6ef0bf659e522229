// Making a switch's folder, and changing an entry of its port map.
#ifndef CHNSW_CHANGE_COMMANDS_H
#define CHNSW_CHANGE_COMMANDS_H

#include <string>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"
#include "inspect/chassis/port_map_edit.h"

namespace chnsw_tool {

struct create_options {
  std::string folder;
  std::string from;
};

using set_port_options = inspect::new_port_values;

struct set_binding_options {
  std::string pn;
  std::string interface;
};

struct set_address_options {
  std::string pa;
  std::string pn;
};

exit_code create_switch(const command_context& context, const create_options& options);
exit_code set_port(const command_context& context, const set_port_options& options);
exit_code set_binding(const command_context& context, const set_binding_options& options);
exit_code set_address(const command_context& context, const set_address_options& options);

command create_command();
command set_command(); // set port, binding, address, and time

} // namespace chnsw_tool

#endif
