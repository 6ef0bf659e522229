// A process that sends everything back, over a bare socket or through the transport.
#ifndef BENCH_TRANSPORT_ECHO_PROCESS_H
#define BENCH_TRANSPORT_ECHO_PROCESS_H

#include <platform/msgq.h>
#include <sys/types.h>

#include <cstddef>
#include <functional>

namespace bench {

// Ends with its owner.
class echo_process {
 public:
  explicit echo_process(const std::function<void()>& echo_for_ever);
  ~echo_process();
  echo_process(const echo_process&) = delete;
  echo_process& operator=(const echo_process&) = delete;

 private:
  pid_t pid_;
};

// Blocking calls on a pair of sockets: what the system takes, with nothing on top.
class bare_echo {
 public:
  bare_echo();
  ~bare_echo();
  bare_echo(const bare_echo&) = delete;
  bare_echo& operator=(const bare_echo&) = delete;

  // Sends so many packets, and receives as many.
  void exchange(size_t packets, size_t size);

 private:
  int sockets_[2];
  echo_process process_;
};

// The switch in use is its switch.
class transport_echo {
 public:
  transport_echo();
  ~transport_echo();
  transport_echo(const transport_echo&) = delete;
  transport_echo& operator=(const transport_echo&) = delete;

  void exchange(size_t messages, uint32_t size);

 private:
  int started_[2];
  echo_process process_;
  msgq* end_ = nullptr;
};

} // namespace bench

#endif
