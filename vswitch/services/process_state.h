// Everything that the services of one process remember, in one place: nothing else in this folder changes while it runs.
#ifndef VSWITCH_PROCESS_STATE_H
#define VSWITCH_PROCESS_STATE_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/switch_view.h"
#include "vswitch/vswitch.h"

// A service is a symbol that libchnsw.so finds, and never throws.
#define VSWITCH_SERVICE extern "C" __attribute__((visibility("default")))

namespace vswitch {

struct switch_state {
  std::unique_ptr<switch_store> store;
  uint64_t generation = 0;
  // The last one is current. Those before it stay, since callers may hold on to a description; a switch is replaced as a
  // whole at a person's pace.
  std::vector<std::unique_ptr<const switch_view>> views;
  bool environment_asked = false;
  int no_switch_errno = 0;
};

struct memory_state {
  struct registered_library {
    const char* name;
    const char* const* type_names;
    uint32_t count;
  };
  struct account {
    uint64_t allocations = 0;
    uint64_t bytes = 0;
    uint64_t refusals = 0;
    uint64_t asked = 0; // granted and refused
  };
  struct refusal {
    uint64_t at; // when asked reaches this; 0 = always
  };
  using type_of_library = std::pair<uint32_t, uint32_t>; // library, type

  std::map<uint32_t, registered_library> libraries;
  std::map<type_of_library, account> accounts;
  std::multimap<type_of_library, refusal> refusals;
  bool environment_asked = false;
};

struct history_state {
  std::function<void(const history_event&)> watcher;
  std::optional<int> descriptor; // -1: none
};

struct debug_state {
  bool environment_asked = false;
  bool all_flags = false;
  std::set<int> flags;
  std::optional<int> descriptor;
};

struct process_state {
  switch_state in_use;
  memory_state memory;
  history_state history;
  debug_state debug;
};

// Made at the first call, which may come before any constructor has run, and never destroyed, since the last call may come
// after all destructors.
process_state& this_process() noexcept;

// The switch in use as the services read it; nullptr with errno set when there is none.
const switch_view* current_view() noexcept;

// One line to standard error.
void complain(const std::string& text) noexcept;

// Opens a file for appending. Returns -1 with a line on standard error that names the environment variable.
int open_for_appending(const char* variable, const char* path) noexcept;

// Writes all of it. Returns false with errno set when that fails.
bool write_all(int descriptor, const char* text, size_t size) noexcept;

} // namespace vswitch

#endif
