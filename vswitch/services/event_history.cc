// Event history service: records go to whoever watches in this process, and to a file.
#include <platform/evtrc.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "services/process_state.h"
#include "vswitch/packed_fields.h"
#include "vswitch/service_status.h"

namespace vswitch {

namespace {

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
std::string line_of(uint32_t id, const history_event& event) {
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
  const std::string line = line_of(id, event);
  return write_all(file, line.data(), line.size()) ? 0 : kHistoryNotWritten;
}

} // namespace

void watch_events(std::function<void(const history_event&)> watcher) {
  this_process().history.watcher = std::move(watcher);
}

} // namespace vswitch

using namespace vswitch;

// Records that nobody would see are filtered, which spares the library from making them.
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
