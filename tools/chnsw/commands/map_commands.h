// The port map as lists: the map itself, a VSAN's ports, logical interfaces, and the walks over interfaces.
#ifndef CHNSW_MAP_COMMANDS_H
#define CHNSW_MAP_COMMANDS_H

#include <cstdint>
#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct map_options {
  std::vector<std::string> indexes; // empty: every entry that holds anything
};

struct vsan_options {
  std::vector<std::string> vsans;
};

struct no_options {};

struct walk_options {
  std::vector<std::string> what; // interfaces to start from
  bool all = false;
};

exit_code show_map(const command_context& context, const map_options& options);
exit_code show_vsans(const command_context& context, const vsan_options& options);
exit_code show_logical_interfaces(const command_context& context, const no_options& options);
exit_code show_next(const command_context& context, const walk_options& options);
exit_code show_last(const command_context& context, const walk_options& options);

// The map of a switch that the library serves; watch redraws it.
result_document map_document(const inspect::library_session& session, const std::vector<uint32_t>& indexes);

std::vector<command> map_commands();  // map, vsan, logical
std::vector<command> walk_commands(); // next, last

} // namespace chnsw_tool

#endif
