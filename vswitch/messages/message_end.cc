// An end's connections, and what it sends on them.
#include "messages/message_end.h"

#include <libchnsw.h>

#include <atomic>
#include <cerrno>
#include <new>
#include <utility>

namespace vswitch {

namespace {

constexpr size_t kMaxLost = 4;

// Why a link failed; 0 would be a success to the caller.
int reason_of_failure() noexcept {
  const int reason = errno;
  return reason != 0 ? reason : EIO;
}

} // namespace

uint64_t message_end::next_identity() noexcept {
  static std::atomic<uint64_t> last{0};
  return ++last;
}

int message_end::open(std::unique_ptr<message_link> link, uint32_t service_point) {
  if (!link) return reason_of_failure();
  link_ = std::move(link);
  if (service_point == 0) return 0;
  spare_ = make_spare_descriptor();
  listener_ = link_->serve(service_point);
  return listener_ ? readiness_.add_listener(listener_->ready_descriptor()) : reason_of_failure();
}

// The parent's connections, locks and events go on, since it has them open as well.
void message_end::abandon() noexcept {
  is_abandoned_ = true;
  spare_.reset();
  readiness_.abandon();
  if (listener_) listener_->abandon();
  for (auto& [number, each] : connections_) each.carrier->abandon();
  for (connection& each : lost_) each.carrier->abandon();
  if (link_) link_->abandon();
}

// ---- Connections

message_end::connection* message_end::find(uint64_t number) noexcept {
  const auto found = connections_.find(number);
  return found == connections_.end() ? nullptr : &found->second;
}

int message_end::add(connection fresh, connection*& added) {
  const uint64_t number = fresh.number = ++last_number_;
  added = &connections_.emplace(number, std::move(fresh)).first->second;
  int error = ENOMEM;
  try {
    error = readiness_.add(number, added->carrier->ready_descriptor());
  } catch (const std::bad_alloc&) {
  }
  if (error != 0) connections_.erase(number);
  return error;
}

int message_end::connect_anew(uint32_t service_point, connection*& made) {
  connection fresh;
  fresh.carrier = link_->connect(service_point);
  fresh.service_point = service_point;
  if (!fresh.carrier) return reason_of_failure();
  if (int error = add(std::move(fresh), made)) return error;
  servers_[service_point] = made->number;
  return 0;
}

// The connection to a server, made when there is none.
int message_end::find_server(const msgq_addr& to, connection*& found) {
  if (to.node != FICON_MGR_NODE) return EHOSTUNREACH;
  const auto known = servers_.find(to.service_point);
  found = known == servers_.end() ? nullptr : find(known->second);
  return found != nullptr ? 0 : connect_anew(to.service_point, found);
}

// Messages that the server had sent before it went are received first, then its loss.
void message_end::set_aside(connection& lost) {
  if (lost_.size() == kMaxLost) {
    readiness_.remove(lost_.front().number);
    lost_.pop_front();
  }
  servers_.erase(lost.service_point);
  const uint64_t number = lost.number;
  lost_.push_back(std::move(lost));
  connections_.erase(number);
}

void message_end::close_connection(connection& gone) {
  if (gone.to_server()) {
    servers_.erase(gone.service_point);
  } else {
    --peers_;
    const auto process = peers_of_process_.find(gone.carrier->process());
    if (--process->second == 0) peers_of_process_.erase(process);
  }
  readiness_.remove(gone.number);
  connections_.erase(gone.number);
  if (!readiness_.polls_listener()) readiness_.poll_listener(true);
}

int message_end::give_descriptor(int& number) {
  if (int error = readiness_.start_events()) return error;
  number = readiness_.events_descriptor();
  return 0;
}

// ---- Sending

int message_end::connect(const msgq_addr& to) {
  connection* server = nullptr;
  if (int error = find_server(to, server)) return error;
  if (server->carrier->is_connected()) return 0;
  set_aside(*server);
  return find_server(to, server);
}

// A connection that turns out to be lost has not taken the message, so that it may go out on the next one.
int message_end::request(const msgq_addr& to, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg) {
  const frame_header header{kFrameMagic, opcode, kRequestFrame, length, send_arg};
  connection* server = nullptr;
  if (int error = find_server(to, server)) return error;
  const int error = server->carrier->send(header, payload);
  if (error != ECONNREFUSED) return error;
  set_aside(*server);
  if (int none = find_server(to, server)) return none;
  const int again = server->carrier->send(header, payload);
  if (again == ECONNREFUSED) close_connection(*server); // turned away at once
  return again;
}

int message_end::reply(msgq_message& answered, uint32_t opcode, const void* payload, uint32_t length) {
  if (answered.end != identity_ || answered.answered || answered.header.kind != kRequestFrame) return EINVAL;
  connection* requester = find(answered.connection);
  if (requester == nullptr) return ECONNREFUSED;
  const frame_header header{kFrameMagic, opcode, kReplyFrame, length, answered.header.send_arg};
  const int error = requester->carrier->send(header, payload);
  answered.answered = error == 0;
  return error;
}

int message_end::send_to_peer(uint64_t peer, uint32_t opcode, const void* payload, uint32_t length) noexcept {
  connection* to = find(peer);
  if (to == nullptr || to->to_server()) return ECONNREFUSED;
  return to->carrier->send({kFrameMagic, opcode, kRequestFrame, length, 0}, payload);
}

} // namespace vswitch
