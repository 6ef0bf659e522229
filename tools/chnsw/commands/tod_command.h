// tod: the mainframe's time and the host's, and a VSAN's time stamp; set time: a VSAN's reference.
#ifndef CHNSW_TOD_COMMAND_H
#define CHNSW_TOD_COMMAND_H

#include <optional>
#include <string>
#include <vector>

#include "command_context.h"
#include "commands/command.h"
#include "exit_code.h"

namespace chnsw_tool {

struct tod_options {
  std::vector<std::string> what; // moments, or "-" for the lines of standard input
  std::string vsans;             // whose time stamps are asked for in their place
  std::string at;                // the host's time for them; now when empty
  unsigned leap_seconds = 0;     // that the TOD clock is ahead of UTC
  bool explain = false;
};

struct set_time_options {
  std::string vsan;
  std::string host_time; // or "none"
  std::string tod;       // empty: the TOD clock says the same as the host's
};

exit_code show_tod(const command_context& context, const tod_options& options);
exit_code set_time(const command_context& context, const set_time_options& options);

command tod_command();
command set_time_command(); // a part of set

} // namespace chnsw_tool

#endif
