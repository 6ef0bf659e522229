// The virtual switch behind this process: which one answers the platform's services, and what a tool may watch and order.
//
// A process that links these services and does nothing else is served by the switch that the environment names:
//   CHNSW_SWITCH         a switch's folder or a chassis file
//   CHNSW_DEBUG          debug flags that are on, as in "102,103"; "all" for every flag
//   CHNSW_DEBUG_OUTPUT   file that debug output is appended to; standard error when not set
//   CHNSW_EVENT_HISTORY  file that event history records are appended to, a line each; "-" for standard error; none when
//                        not set
//   CHNSW_REFUSE_ALLOC   allocations to refuse, as in "206/5:1,206/3:2" (library/type:which, from 1; "*" for every one)
#ifndef VSWITCH_VSWITCH_H
#define VSWITCH_VSWITCH_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vswitch/switch_store.h"

namespace vswitch {

// From now on this switch answers. Interfaces and chassis are read once, here; the element database is read at each
// look-up.
void use_switch(std::unique_ptr<switch_store> store);

// The switch that answers: the one in use, else the one that the environment names. nullptr when there is none, with the
// reason printed to standard error once.
switch_store* switch_in_use();

// The description read when the switch came into use; its port map and time stamp
// references may be out of date.
const chassis_description* chassis_in_use();

// Every report and trace of the library, as its text, while the process watches; an empty function stops watching.
struct history_event {
  uint32_t subtype; // FICON_EVT_ERROR or FICON_EVT_DEBUG
  std::string_view text;
};
void watch_events(std::function<void(const history_event&)> watcher);

// Refuses the nth allocation from now (from 1) of a library's memory type; 0 refuses every one. Orders add up.
void order_refusal(uint32_t library_id, uint32_t type, uint32_t nth);
void cancel_refusals();

// Allocations granted so far.
struct memory_account {
  uint32_t library_id;
  uint32_t type;
  std::string library;   // as registered; empty when the library is not registered
  std::string type_name; // as registered; empty when the type is not
  uint64_t allocations;
  uint64_t bytes;
  uint64_t refusals;
};
std::vector<memory_account> memory_accounts();

} // namespace vswitch

#endif
