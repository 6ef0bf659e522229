// A serving end's peers: how they are accepted, and which is dropped when there are too many.
#include <fcntl.h>

#include <cerrno>
#include <utility>

#include "messages/message_end.h"

namespace vswitch {

namespace {

constexpr size_t kAcceptedAtOnce = 16;
constexpr size_t kMostReady = 80; // a client that connects while so many are ready is looked at in the next round

bool is_want_of_descriptors(int error) {
  return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

} // namespace

descriptor make_spare_descriptor() noexcept {
  return descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

void message_end::accept_some() {
  for (size_t i = 0; i < kAcceptedAtOnce; ++i)
    if (!accept_one()) return;
}

// Returns whether another client may be waiting.
bool message_end::accept_one() {
  if (auto carrier = listener_->accept()) {
    add_peer(std::move(carrier));
    return true;
  }
  if (is_want_of_descriptors(errno)) return accept_one_with_spare();
  return errno == EPERM || errno == ECONNABORTED || errno == EINTR;
}

// Accepted in place of the spare descriptor, a client can be counted, and one of the busiest process dropped for it.
bool message_end::accept_one_with_spare() {
  spare_.reset();
  auto carrier = listener_->accept();
  const bool came = carrier != nullptr;
  if (came) {
    add_peer(std::move(carrier));
    drop_peer_of_busiest();
  }
  spare_ = make_spare_descriptor();
  if (!came && is_want_of_descriptors(errno)) readiness_.poll_listener(false);
  return came;
}

void message_end::add_peer(std::unique_ptr<message_connection> carrier) {
  const pid_t process = carrier->process();
  connection fresh;
  fresh.carrier = std::move(carrier);
  connection* added = nullptr;
  const auto peers = peers_of_process_.try_emplace(process, 0).first;
  if (add(std::move(fresh), added) != 0) {
    if (peers->second == 0) peers_of_process_.erase(peers);
    return;
  }
  ++peers->second;
  if (ready_.connections.size() < kMostReady)
    ready_.connections.push_back(added->number); // may have sent something already
  if (++peers_ > kMaxPeers) drop_peer_of_busiest();
}

// The process with most connections loses its newest one, so that one process alone cannot keep others out.
void message_end::drop_peer_of_busiest() {
  connection* dropped = nullptr;
  size_t most = 0;
  for (auto& [number, each] : connections_) {
    if (each.to_server()) continue;
    const size_t has = peers_of_process_[each.carrier->process()];
    if (has < most) continue;
    most = has;
    dropped = &each;
  }
  if (dropped != nullptr) close_connection(*dropped);
}

// Clients that wait to be accepted are peers as well.
uint32_t message_end::list_peers(std::span<uint64_t> room) {
  for (size_t i = 0; listener_ && i < kMaxPeers && accept_one(); ++i) {
  }
  uint32_t count = 0;
  for (const auto& [number, each] : connections_) {
    if (each.to_server() || !each.carrier->is_connected()) continue;
    if (count < room.size()) room[count] = number;
    ++count;
  }
  return count;
}

} // namespace vswitch
