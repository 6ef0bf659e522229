// Which switch answers in this process.
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "services/process_state.h"
#include "vswitch/chassis_file.h"
#include "vswitch/vswitch.h"

namespace vswitch {

namespace {

constexpr const char* kSwitchVariable = "CHNSW_SWITCH";

void read_view(switch_state& state) {
  // The generation comes first: a switch that is replaced in between is then read again at the next call.
  const uint64_t generation = state.store->generation();
  state.views.push_back(std::make_unique<const switch_view>(state.store->describe()));
  state.generation = generation;
}

std::unique_ptr<switch_store> open_path(const char* path) {
  if (switch_store::names_switch(path)) return switch_store::open(path);
  return switch_store::in_memory(read_chassis_file(path));
}

void use_switch_of_environment(switch_state& state) noexcept {
  state.environment_asked = true;
  const char* path = std::getenv(kSwitchVariable);
  if (path == nullptr || *path == '\0') {
    state.no_switch_errno = ENODEV;
    complain(std::string(kSwitchVariable) + " is not set; it names a switch's folder or a chassis file");
    return;
  }
  struct stat status {};
  state.no_switch_errno = stat(path, &status) == 0 ? EINVAL : errno;
  try {
    use_switch(open_path(path));
  } catch (const std::exception& error) {
    complain(std::string(kSwitchVariable) + ": " + error.what());
  }
}

switch_state& state_in_use() noexcept {
  switch_state& state = this_process().in_use;
  if (!state.store && !state.environment_asked) use_switch_of_environment(state);
  return state;
}

// A switch that was replaced as a whole is read again. One that cannot be read keeps answering as it was known.
void notice_replacement(switch_state& state) noexcept {
  const uint64_t generation = state.store->generation();
  if (generation == state.generation || generation == 0) return;
  try {
    read_view(state);
  } catch (const std::exception& error) {
    state.generation = generation;
    complain(error.what());
  }
}

} // namespace

void use_switch(std::unique_ptr<switch_store> store) {
  switch_state fresh;
  fresh.store = std::move(store);
  fresh.environment_asked = fresh.store != nullptr;
  if (fresh.store) read_view(fresh);
  this_process().in_use = std::move(fresh);
}

switch_store* switch_in_use() {
  return state_in_use().store.get();
}

const chassis_description* chassis_in_use() {
  const switch_view* view = current_view();
  return view == nullptr ? nullptr : &view->chassis();
}

const switch_view* current_view() noexcept {
  switch_state& state = state_in_use();
  if (!state.store) {
    errno = state.no_switch_errno;
    return nullptr;
  }
  notice_replacement(state);
  return state.views.back().get();
}

} // namespace vswitch
