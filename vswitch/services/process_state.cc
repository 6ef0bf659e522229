#include "services/process_state.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

namespace vswitch {

process_state& this_process() noexcept {
  alignas(process_state) static std::byte storage[sizeof(process_state)];
  static process_state* const instance = new (storage) process_state;
  return *instance;
}

void complain(const std::string& text) noexcept {
  std::fflush(stdout); // what the library printed comes first
  std::fprintf(stderr, "%s\n", text.c_str());
}

int open_for_appending(const char* variable, const char* path) noexcept {
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  if (descriptor < 0) std::fprintf(stderr, "%s: %s cannot be opened: %s\n", variable, path, std::strerror(errno));
  return descriptor;
}

bool write_all(int descriptor, const char* text, size_t size) noexcept {
  while (size != 0) {
    const ssize_t written = write(descriptor, text, size);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    text += written;
    size -= static_cast<size_t>(written);
  }
  return true;
}

} // namespace vswitch
