#include "messages/readiness.h"

#include <poll.h>
#include <sys/epoll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>

namespace vswitch {

namespace {

constexpr uint64_t kListener = 0; // no connection has this number
constexpr size_t kFew = 4;
constexpr size_t kEventsAtOnce = 64;

// Why a call of the system failed; 0 would be a success to the caller.
int reason_of_failure() noexcept {
  const int reason = errno;
  return reason != 0 ? reason : EIO;
}

} // namespace

int readiness::add(uint64_t number, int watched) {
  connections_.push_back({number, watched});
  const int error = add_event(number, watched);
  if (error != 0) connections_.pop_back();
  return error;
}

void readiness::remove(uint64_t number) noexcept {
  const auto found = std::lower_bound(connections_.begin(), connections_.end(), number,
                                      [](const watched_descriptor& each, uint64_t sought) { return each.number < sought; });
  if (found == connections_.end() || found->number != number) return;
  if (events_.open()) epoll_ctl(events_.number(), EPOLL_CTL_DEL, found->descriptor, nullptr);
  connections_.erase(found);
}

int readiness::add_listener(int watched) {
  listener_ = watched;
  return add_event(kListener, watched);
}

void readiness::poll_listener(bool poll) noexcept {
  polls_listener_ = poll;
  if (!events_.open() || listener_ < 0) return;
  epoll_event event{};
  event.events = poll ? unsigned{EPOLLIN} : 0u;
  event.data.u64 = kListener;
  epoll_ctl(events_.number(), EPOLL_CTL_MOD, listener_, &event);
}

int readiness::add_event(uint64_t number, int watched) noexcept {
  if (!events_.open()) return 0;
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.u64 = number;
  return epoll_ctl(events_.number(), EPOLL_CTL_ADD, watched, &event) == 0 ? 0 : reason_of_failure();
}

// Waiting through epoll costs more than poll() of a few descriptors, and makes every message that arrives cost more: it is
// not begun until there are many, or the caller wants a descriptor.
int readiness::start_events() {
  if (events_.open()) return 0;
  events_ = descriptor(epoll_create1(EPOLL_CLOEXEC));
  if (!events_.open()) return errno;
  int error = listener_ < 0 ? 0 : add_event(kListener, listener_);
  for (const auto& [number, watched] : connections_)
    if (error == 0) error = add_event(number, watched);
  if (error != 0) events_.reset();
  return error;
}

int readiness::wait(int timeout_ms, ready_list& ready) {
  return connections_.size() > kFew ? wait_for_many(timeout_ms, ready) : wait_for_few(timeout_ms, ready);
}

int readiness::wait_for_few(int timeout_ms, ready_list& ready) {
  std::array<pollfd, kFew + 1> places;
  size_t count = 0;
  for (const auto& [number, watched] : connections_) places[count++] = {watched, POLLIN, 0};
  if (listener_ >= 0 && polls_listener_) places[count++] = {listener_, POLLIN, 0};
  const int found = poll(places.data(), count, timeout_ms);
  if (found <= 0) return found == 0 ? ETIMEDOUT : errno;
  size_t place = 0;
  for (const auto& [number, watched] : connections_)
    if (places[place++].revents != 0) ready.connections.push_back(number);
  ready.listener = place < count && places[place].revents != 0;
  return 0;
}

int readiness::wait_for_many(int timeout_ms, ready_list& ready) {
  if (int error = start_events()) return error;
  std::array<epoll_event, kEventsAtOnce> events;
  const int count = epoll_wait(events_.number(), events.data(), kEventsAtOnce, timeout_ms);
  if (count <= 0) return count == 0 ? ETIMEDOUT : errno;
  for (const epoll_event& event : std::span(events.data(), static_cast<size_t>(count))) {
    const uint64_t number = event.data.u64; // it stands at an odd address, which nothing may refer to
    if (number == kListener)
      ready.listener = true;
    else
      ready.connections.push_back(number);
  }
  return 0;
}

} // namespace vswitch
