// Debug output service.
#include <platform/evtrc.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "services/process_state.h"

extern "C" __attribute__((visibility("default"))) const char evtrc_dbg_modname[] = "chnsw";

namespace vswitch {

namespace {

constexpr const char* kFlagsVariable = "CHNSW_DEBUG";
constexpr const char* kOutputVariable = "CHNSW_DEBUG_OUTPUT";

void switch_on(debug_state& state, std::string_view flag) {
  int number = 0;
  auto [end, error] = std::from_chars(flag.data(), flag.data() + flag.size(), number);
  if (flag == "all")
    state.all_flags = true;
  else if (error == std::errc() && end == flag.data() + flag.size())
    state.flags.insert(number);
  else
    complain(std::string(kFlagsVariable) + ": \"" + std::string(flag) +
             "\" is not a debug flag; expected are numbers with commas between them, as in 102,103, or all");
}

void take_flags_of_environment(debug_state& state) {
  state.environment_asked = true;
  const char* variable = std::getenv(kFlagsVariable);
  std::string_view flags = variable == nullptr ? "" : variable;
  while (!flags.empty()) {
    const std::string_view flag = flags.substr(0, flags.find(','));
    flags.remove_prefix(std::min(flags.size(), flag.size() + 1));
    switch_on(state, flag);
  }
}

// A file that cannot be opened was complained about; the text goes to standard error all the same.
int debug_file(debug_state& state) noexcept {
  if (state.descriptor) return *state.descriptor;
  const char* path = std::getenv(kOutputVariable);
  const int file = path == nullptr || *path == '\0' ? -1 : open_for_appending(kOutputVariable, path);
  state.descriptor = file < 0 ? STDERR_FILENO : file;
  return *state.descriptor;
}

std::string line_of(const char* module, std::string_view text) {
  std::string line = std::string(module == nullptr ? "" : module) + ": " + std::string(text);
  if (!line.ends_with('\n')) line += '\n';
  return line;
}

void print(const char* module, std::string_view text) noexcept {
  try {
    const std::string line = line_of(module, text);
    write_all(debug_file(this_process().debug), line.data(), line.size());
  } catch (const std::exception&) { // no memory for the line: there is nowhere to tell
  }
}

} // namespace

} // namespace vswitch

using namespace vswitch;

VSWITCH_SERVICE int evtrc_chk_int(int flag, int, int, int) {
  debug_state& state = this_process().debug;
  try {
    if (!state.environment_asked) take_flags_of_environment(state);
    return state.all_flags || state.flags.count(flag) != 0 ? 1 : 0;
  } catch (const std::exception&) {
    return 0;
  }
}

VSWITCH_SERVICE void dbgout(int, const char* module, int, const char* format, ...) {
  char* text = nullptr;
  va_list values;
  va_start(values, format);
  const int length = vasprintf(&text, format, values);
  va_end(values);
  if (length < 0) return;
  print(module, {text, static_cast<size_t>(length)});
  std::free(text);
}
