#include "interruption.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "inspect/error.h"

namespace chnsw_tool {

interruption::interruption() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  descriptor_ = ::signalfd(-1, &signals, SFD_CLOEXEC);
  if (descriptor_ == -1)
    throw inspect::platform_error(fmt::format("signals cannot be waited for: {}", std::strerror(errno)));
}

interruption::~interruption() {
  ::close(descriptor_);
}

// The signal is not read: it stays pending.
bool interruption::has_come() const {
  pollfd signals{descriptor_, POLLIN, 0};
  return ::poll(&signals, 1, 0) > 0;
}

} // namespace chnsw_tool
