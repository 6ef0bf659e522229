// Standard output for results alone.
#include "output/result_stream.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <vector>

#include "inspect/error.h"

namespace chnsw_tool {

namespace {

bool is_open(int fd) {
  return ::fcntl(fd, F_GETFD) != -1;
}

// A descriptor that the caller closed would be given to the next file that is opened, and messages would go into that file.
void fill_closed_descriptors() {
  for (int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (!is_open(fd) && ::open("/dev/null", O_RDWR) == -1) return;
}

} // namespace

result_stream::result_stream() : fd_(is_open(STDOUT_FILENO) ? ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3) : -1) {
  fill_closed_descriptors();
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  std::signal(SIGPIPE, SIG_IGN);
}

bool result_stream::is_terminal() const {
  return fd_.open() && ::isatty(fd_.number()) == 1;
}

// Standard output is polled for no event: a closed pipe is reported all the same, and a file never wakes the wait.
void result_stream::wait(std::initializer_list<int> descriptors, int timeout_ms) const {
  std::vector<pollfd> ends = {{fd_.number(), 0, 0}};
  for (int descriptor : descriptors) ends.push_back({descriptor, POLLIN, 0});
  if (::poll(ends.data(), ends.size(), timeout_ms) > 0 && ends.front().revents != 0) throw inspect::platform_error("");
}

void result_stream::write(std::string_view text) {
  while (!text.empty()) {
    ssize_t written = ::write(fd_.number(), text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<size_t>(written));
    } else if (errno == EPIPE) {
      throw inspect::platform_error("");
    } else if (errno != EINTR) {
      throw inspect::platform_error(
          fmt::format("the result cannot be written to standard output: {}", std::strerror(errno)));
    }
  }
}

} // namespace chnsw_tool
