// Waiting until a connection has something to receive, or a client waits to be accepted.
#ifndef VSWITCH_MESSAGES_READINESS_H
#define VSWITCH_MESSAGES_READINESS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vswitch/descriptor.h"

namespace vswitch {

// Failures are errno values, 0 being none.
class readiness {
 public:
  // Each descriptor is added under a number of its own, and removed before it is closed.
  int add(uint64_t number, int watched);
  void remove(uint64_t number) noexcept;

  // The listener is not waited for as long as its clients cannot be accepted: it would stay ready.
  int add_listener(int watched);
  void poll_listener(bool poll) noexcept;
  bool polls_listener() const noexcept { return polls_listener_; }

  struct ready_list {
    std::vector<uint64_t> connections;
    bool listener = false;
  };

  // Waits until one is ready, and adds those that are; some of them when they are many. ETIMEDOUT; EINTR.
  int wait(int timeout_ms, ready_list& ready);

  // A descriptor that is readable when one of them is ready.
  int start_events();
  int events_descriptor() const noexcept { return events_.number(); }

  void abandon() noexcept { events_.reset(); } // in a child process

 private:
  struct watched_descriptor {
    uint64_t number;
    int descriptor;
  };

  int wait_for_few(int timeout_ms, ready_list& ready);
  int wait_for_many(int timeout_ms, ready_list& ready);
  int add_event(uint64_t number, int watched) noexcept;

  std::vector<watched_descriptor> connections_; // ascending numbers
  int listener_ = -1;
  bool polls_listener_ = true;
  descriptor events_; // once it is needed
};

} // namespace vswitch

#endif
