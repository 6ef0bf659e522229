#include "interruption.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/signalfd.h>

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
  descriptor_ = vswitch::descriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
  if (!descriptor_.open())
    throw inspect::platform_error(fmt::format("signals cannot be waited for: {}", std::strerror(errno)));
}

// The signal is not read: it stays pending.
bool interruption::has_come() const {
  pollfd signals{descriptor_.number(), POLLIN, 0};
  return ::poll(&signals, 1, 0) > 0;
}

} // namespace chnsw_tool
