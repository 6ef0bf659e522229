// The FICON manager of a virtual switch: answers what manager_protocol.h says, for every process that reaches the switch.
#ifndef VSWITCH_MANAGER_H
#define VSWITCH_MANAGER_H

#include <cstdint>
#include <functional>
#include <string>

#include "vswitch/manager/manager_protocol.h"

namespace vswitch {

// One line of the manager's log.
struct manager_event {
  int64_t when_usec = 0; // since 1970
  uint64_t peer = 0;     // the connection that it is about, by its number; 0 for none
  std::string what;      // "port map of fc1/1, code 17, \"nightly\"", "swap 3 of fc1/1 and fc1/2: check-lock asked"
  uint32_t result = 0;   // a FICON_RC_ code
};

// "2015-01-05T09:07:03.000003Z peer 4: port map of fc1/1: 0x00000000", without a line break.
std::string text_of(const manager_event& event);

struct manager_options {
  int stop_descriptor = -1;                      // readable when the manager is to end (a pipe, a signalfd); not read from
  int swap_patience_ms = kSwapPatienceMs;        // for each step of a swap
  std::function<void()> ready;                   // called once, when requests are served; may be empty
  std::function<void(const manager_event&)> log; // called for each event; may be empty
};

// Serves the switch in use of this process (use_switch, or the environment's), which lies in a folder, until
// stop_descriptor is readable; swaps under way are undone then. Nothing else of the process may use the library meanwhile.
// Throws switch_error: there is no switch, another manager serves it, or messages cannot be received.
void run_manager(const manager_options& options);

} // namespace vswitch

#endif
