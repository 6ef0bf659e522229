// Event trace service. Event history records go to the watcher of this process, and to a file; debug output of flags that are on
// goes to a file.
#include <platform/evtrc.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "services/process_state.h"
#include "vswitch/packed_fields.h"
#include "vswitch/service_status.h"

extern "C" __attribute__((visibility("default"))) const char evtrc_dbg_modname[] = "chnsw";

namespace vswitch {

namespace {

// ---- Event history ----

constexpr const char* kHistoryVariable = "CHNSW_EVENT_HISTORY";

// The file that records are appended to, -1 when there is none.
int history_file() noexcept {
  auto& descriptor = this_process().history.descriptor;
  if (descriptor) return *descriptor;
  const char* path = std::getenv(kHistoryVariable);
  if (path == nullptr || *path == '\0')
    descriptor = -1;
  else if (std::strcmp(path, "-") == 0)
    descriptor = STDERR_FILENO;
  else
    descriptor = open_for_appending(kHistoryVariable, path);
  return *descriptor;
}

// A record is a 32-bit subtype and a text that may end with a NUL.
bool parse_record(uint32_t length, const void* record, history_event& event) {
  if (record == nullptr || length < sizeof event.subtype) return false;
  event.subtype = load_field<uint32_t>(record);
  const char* text = static_cast<const char*>(record) + sizeof event.subtype;
  event.text = {text, strnlen(text, length - sizeof event.subtype)};
  return true;
}

void append_printable(std::string& line, char character) {
  if (character == '\n') {
    line += "\\n";
  } else if (static_cast<unsigned char>(character) < ' ') {
    char escaped[5];
    std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned>(character));
    line += escaped;
  } else {
    line += character;
  }
}

// "0x730000 102 text": no time stamp, so that two runs compare equal. The line end of a text is the line's.
std::string history_line(uint32_t id, const history_event& event) {
  char head[32];
  std::snprintf(head, sizeof head, "0x%x %u ", id, event.subtype);
  std::string line = head;
  std::string_view text = event.text;
  if (text.ends_with('\n')) text.remove_suffix(1);
  for (char character : text) append_printable(line, character);
  return line + '\n';
}

int record_event(uint32_t id, const history_event& event) {
  if (const auto& watcher = this_process().history.watcher) watcher(event);
  const int file = history_file();
  if (file < 0) return 0;
  const std::string line = history_line(id, event);
  return write_all(file, line.data(), line.size()) ? 0 : kHistoryNotWritten;
}

// ---- Debug output ----

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

std::string debug_line(const char* module, std::string_view text) {
  std::string line = std::string(module == nullptr ? "" : module) + ": " + std::string(text);
  if (!line.ends_with('\n')) line += '\n';
  return line;
}

void print_debug(const char* module, std::string_view text) noexcept {
  try {
    const std::string line = debug_line(module, text);
    write_all(debug_file(this_process().debug), line.data(), line.size());
  } catch (const std::exception&) { // no memory for the line: it is left out
  }
}

} // namespace

void watch_events(std::function<void(const history_event&)> watcher) {
  this_process().history.watcher = std::move(watcher);
}

} // namespace vswitch

using namespace vswitch;

// Without a watcher or a file records are filtered, which spares the library from making them.
VSWITCH_SERVICE int evtrc_hist_event_subtype_check(uint32_t, uint32_t) {
  return this_process().history.watcher || history_file() >= 0 ? 0 : kHistoryFiltered;
}

VSWITCH_SERVICE int evtrc_hist_event(uint32_t id, uint32_t length, const void* record) {
  history_event event{};
  if (!parse_record(length, record, event)) return kHistoryBadRequest;
  try {
    return record_event(id, event);
  } catch (const std::exception& error) {
    complain(std::string("event history: ") + error.what());
    return kHistoryNotWritten;
  }
}

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
  print_debug(module, {text, static_cast<size_t>(length)});
  std::free(text);
}
