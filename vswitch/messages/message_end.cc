#include "messages/message_end.h"

#include <fcntl.h>
#include <libchnsw.h>
#include <poll.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>

namespace vswitch {

namespace {

constexpr uint64_t kListener = 0; // no connection has this number
constexpr size_t kLetInAtOnce = 16;
constexpr size_t kFew = 4;
constexpr size_t kEventsAtOnce = 64;
constexpr unsigned kLongestBurst = 16;
constexpr unsigned kLongestPause = 16;
constexpr size_t kMaxLost = 4;
constexpr int kPauseMs = 100;

// Why a call of the system failed; 0 would be a success to whoever is told.
int reason_of_failure() noexcept {
  const int reason = errno;
  return reason != 0 ? reason : EIO;
}

descriptor make_spare() noexcept {
  return descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

class deadline {
 public:
  explicit deadline(int timeout_ms) : for_ever_(timeout_ms < 0) {
    if (timeout_ms > 0) until_ = clock::now() + std::chrono::milliseconds(timeout_ms);
  }
  int left_ms() const {
    if (for_ever_) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until_ - clock::now()).count();
    return static_cast<int>(std::clamp<int64_t>(left, 0, INT_MAX));
  }

 private:
  using clock = std::chrono::steady_clock;
  bool for_ever_;
  clock::time_point until_; // long ago when there is nothing to wait for
};

// The system's clock ticks at least a hundred times a second, and a patience ends with a tick: not before the time here.
constexpr int kTickMs = 10;

int patience_of(int timeout_ms) {
  return timeout_ms < 0 ? kEndlessPatience : std::min(timeout_ms, INT_MAX - kTickMs) + kTickMs;
}

bool is_want_of_descriptors(int error) {
  return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

} // namespace

uint64_t message_end::next_identity() noexcept {
  static std::atomic<uint64_t> last{0};
  return ++last;
}

message_end::~message_end() {
  if (listener_.open()) stop_serving(folder_, service_point_); // while the lock holds
}

int message_end::open(const std::string& folder, uint32_t service_point) {
  folder_ = hold_folder(folder);
  if (!folder_.open()) return errno;
  if (service_point == 0) return 0;
  spare_ = make_spare();
  service_point_ = service_point;
  listener_ = serve_point(folder_, service_point, lock_);
  return listener_.open() ? 0 : errno;
}

// The parent's sockets, locks and events go on, since it has them open as well.
void message_end::abandon() noexcept {
  for (descriptor* held : {&folder_, &events_, &lock_, &listener_, &spare_}) held->reset();
  for (auto& [number, each] : connections_) each.socket.reset();
  for (connection& each : lost_) each.socket.reset();
}

// ---- Sending

message_end::connection* message_end::find(uint64_t number) noexcept {
  const auto found = connections_.find(number);
  return found == connections_.end() ? nullptr : &found->second;
}

int message_end::connect_anew(uint32_t service_point, connection*& made) {
  connection fresh;
  fresh.socket = connect_to_point(folder_, service_point);
  if (!fresh.socket.open()) return reason_of_failure();
  fresh.number = ++last_number_;
  fresh.service_point = service_point;
  if (int error = watch(fresh.socket, fresh.number)) return error;
  servers_[service_point] = fresh.number;
  made = &connections_.emplace(fresh.number, std::move(fresh)).first->second;
  return 0;
}

// The connection to a server, made when there is none.
int message_end::server(const msgq_addr& to, connection*& found) {
  if (to.node != FICON_MGR_NODE) return EHOSTUNREACH;
  const auto known = servers_.find(to.service_point);
  found = known == servers_.end() ? nullptr : find(known->second);
  return found != nullptr ? 0 : connect_anew(to.service_point, found);
}

// What the server had sent before it went is heard first, then that it is gone.
void message_end::set_aside(connection& lost) {
  if (lost_.size() == kMaxLost) lost_.pop_front();
  servers_.erase(lost.service_point);
  const uint64_t number = lost.number;
  lost_.push_back(std::move(lost));
  connections_.erase(number);
}

int message_end::connect(const msgq_addr& to) {
  connection* reached = nullptr;
  if (int error = server(to, reached)) return error;
  if (still_connected(reached->socket)) return 0;
  set_aside(*reached);
  return server(to, reached);
}

// A connection that turns out to be lost has not taken the message, so that it may go out on the next one.
int message_end::request(const msgq_addr& to, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg) {
  const frame_header header{kFrameMagic, opcode, kRequestFrame, length, send_arg};
  connection* reached = nullptr;
  if (int error = server(to, reached)) return error;
  const int error = send_frame(reached->socket, header, payload);
  if (error != ECONNREFUSED) return error;
  set_aside(*reached);
  if (int none = server(to, reached)) return none;
  const int again = send_frame(reached->socket, header, payload);
  if (again == ECONNREFUSED) close_connection(*reached); // turned away at once
  return again;
}

int message_end::reply(msgq_message& answered, uint32_t opcode, const void* payload, uint32_t length) {
  if (answered.end != identity_ || answered.answered || answered.header.kind != kRequestFrame) return EINVAL;
  connection* requester = find(answered.connection);
  if (requester == nullptr) return ECONNREFUSED;
  const int error =
      send_frame(requester->socket, {kFrameMagic, opcode, kReplyFrame, length, answered.header.send_arg}, payload);
  answered.answered = error == 0;
  return error;
}

int message_end::send_to_peer(uint64_t peer, uint32_t opcode, const void* payload, uint32_t length) noexcept {
  connection* reached = find(peer);
  if (reached == nullptr || reached->to_server()) return ECONNREFUSED;
  return send_frame(reached->socket, {kFrameMagic, opcode, kRequestFrame, length, 0}, payload);
}

// ---- Receiving

// One packet of a connection: a message, none, or the connection's end, which is also what becomes of who sends no frames.
int message_end::take_from(connection& from, msgq_message*& message, int timeout_ms) {
  if (timeout_ms != 0 && from.patience_ms != patience_of(timeout_ms)) {
    from.patience_ms = patience_of(timeout_ms);
    set_patience(from.socket, from.patience_ms);
  }

  std::unique_ptr<msgq_message, decltype(&msgq_release)> taken(pool_->take(), msgq_release);
  const auto may_wait = timeout_ms == 0 ? waiting::no : waiting::yes;
  const ssize_t size = receive_packet(from.socket, taken->packet.data(), may_wait);
  if (size < 0) return errno;
  const auto header = read_frame(taken->packet.data(), static_cast<size_t>(size));
  if (!header) return ECONNRESET;
  taken->header = *header;
  taken->end = identity_;
  taken->connection = from.number;
  taken->peer = from.to_server() ? 0 : from.number;
  taken->answered = false;
  std::memset(taken->payload() + header->length, 0, MSGQ_SLACK);
  message = taken.release();
  return 0;
}

int message_end::hear_the_lost(msgq_message*& message) {
  if (lost_.empty()) return EAGAIN;
  const int error = take_from(lost_.front(), message);
  if (error == 0) return 0;
  lost_.pop_front();
  return ECONNRESET;
}

void message_end::end_turn() noexcept {
  ++turn_;
  heard_in_turn_ = 0;
}

// Whoever is ready tells a message and lets the next one speak. Since asking who is ready costs as much as a message, who
// has more to say may go on for a while; how often that is tried depends on how often there was more.
void message_end::adapt_burst(connection& speaker, bool had_more) noexcept {
  if (had_more) {
    speaker.burst = std::min(speaker.burst * 2, kLongestBurst);
    speaker.next_pause = 1;
  } else if (heard_in_turn_ < 2) {
    speaker.burst = 1;
    speaker.pause = speaker.next_pause;
    speaker.next_pause = std::min(speaker.next_pause * 2, kLongestPause);
  }
}

int message_end::hear_the_ready(msgq_message*& message) {
  connection* speaker = find(ready_[turn_]);
  if (speaker == nullptr) {
    end_turn();
    return EAGAIN;
  }
  const int error = take_from(*speaker, message);
  if (error == 0) {
    if (++heard_in_turn_ < speaker->burst) return 0;
    if (speaker->burst > 1 || speaker->pause == 0)
      adapt_burst(*speaker, true);
    else
      --speaker->pause;
    end_turn();
    return 0;
  }
  if (error == EAGAIN) adapt_burst(*speaker, false);
  end_turn();
  if (error == EAGAIN) return EAGAIN;
  const bool tell = speaker->to_server();
  close_connection(*speaker);
  return tell ? ECONNRESET : EAGAIN;
}

int message_end::hear_next(msgq_message*& message) {
  int error = hear_the_lost(message);
  while (error == EAGAIN && turn_ < ready_.size()) error = hear_the_ready(message);
  return error;
}

// An end that only talks with one server waits in the call that also takes the message.
message_end::connection* message_end::only_server() noexcept {
  return listener_.open() || connections_.size() != 1 ? nullptr : &connections_.begin()->second;
}

int message_end::hear_only(connection& server, msgq_message*& message, int timeout_ms) {
  const int error = take_from(server, message, timeout_ms);
  if (error == ECONNRESET) close_connection(server);
  return error == EAGAIN ? ETIMEDOUT : error;
}

int message_end::wait_and_hear(msgq_message*& message, int timeout_ms) {
  ready_.clear();
  turn_ = 0;
  heard_in_turn_ = 0;
  const int error = wait(timeout_ms);
  return error == 0 ? hear_next(message) : error;
}

// Those who only keep the end busy do not prolong the wait.
int message_end::receive(msgq_message*& message, int timeout_ms) {
  int error = hear_next(message);
  if (error != EAGAIN) return error;
  if (connection* server = only_server()) return hear_only(*server, message, timeout_ms);
  const deadline until(timeout_ms);
  for (int left_ms = timeout_ms; error == EAGAIN; left_ms = until.left_ms()) {
    error = wait_and_hear(message, left_ms);
    if (error == EAGAIN && left_ms == 0) return ETIMEDOUT;
  }
  return error;
}

// ---- Waiting

// Waiting through epoll costs more than poll() of a few descriptors, and makes every message that arrives cost more: it is
// left alone until there are many, or somebody wants a descriptor.
int message_end::start_events() {
  if (events_.open()) return 0;
  events_ = descriptor(epoll_create1(EPOLL_CLOEXEC));
  if (!events_.open()) return errno;
  int error = listener_.open() ? watch(listener_, kListener) : 0;
  for (const auto& [number, each] : connections_)
    if (error == 0) error = watch(each.socket, number);
  for (const connection& each : lost_)
    if (error == 0) error = watch(each.socket, each.number);
  if (error != 0) events_.reset();
  return error;
}

int message_end::give_descriptor(int& number) {
  if (int error = start_events()) return error;
  number = events_.number();
  return 0;
}

int message_end::watch(const descriptor& watched, uint64_t number) noexcept {
  if (!events_.open()) return 0;
  epoll_event event{};
  event.events = EPOLLIN;
  event.data.u64 = number;
  return epoll_ctl(events_.number(), EPOLL_CTL_ADD, watched.number(), &event) == 0 ? 0 : reason_of_failure();
}

// Newcomers that there is no descriptor for are tried again after a while, or as soon as anything else happens.
int message_end::wait(int timeout_ms) {
  const bool pause = !newcomers_heard_;
  const int limit_ms = pause && (timeout_ms < 0 || timeout_ms > kPauseMs) ? kPauseMs : timeout_ms;
  const int error = connections_.size() > kFew ? wait_for_many(limit_ms) : wait_for_few(limit_ms);
  if (pause) hear_newcomers(true);
  return error == ETIMEDOUT && limit_ms != timeout_ms ? 0 : error;
}

int message_end::wait_for_few(int timeout_ms) {
  std::array<pollfd, kFew + 1> places;
  size_t count = 0;
  for (const auto& [number, each] : connections_) places[count++] = {each.socket.number(), POLLIN, 0};
  if (listener_.open() && newcomers_heard_) places[count++] = {listener_.number(), POLLIN, 0};
  const int ready = poll(places.data(), count, timeout_ms);
  if (ready <= 0) return ready == 0 ? ETIMEDOUT : errno;
  size_t place = 0;
  for (const auto& [number, each] : connections_)
    if (places[place++].revents != 0) ready_.push_back(number);
  if (place < count && places[place].revents != 0) let_in();
  return 0;
}

int message_end::wait_for_many(int timeout_ms) {
  if (int error = start_events()) return error;
  std::array<epoll_event, kEventsAtOnce> events;
  const int count = epoll_wait(events_.number(), events.data(), kEventsAtOnce, timeout_ms);
  if (count <= 0) return count == 0 ? ETIMEDOUT : errno;
  bool newcomers = false;
  for (const epoll_event& event : std::span(events.data(), static_cast<size_t>(count))) {
    const uint64_t number = event.data.u64;
    if (number == kListener)
      newcomers = true;
    else
      ready_.push_back(number);
  }
  if (newcomers) let_in();
  return 0;
}

// ---- Peers

void message_end::close_connection(connection& gone) {
  if (gone.to_server()) {
    servers_.erase(gone.service_point);
  } else {
    --peers_;
    const auto process = peers_of_process_.find(gone.process);
    if (--process->second == 0) peers_of_process_.erase(process);
  }
  connections_.erase(gone.number);
  if (!newcomers_heard_) hear_newcomers(true);
}

void message_end::let_in() {
  for (size_t i = 0; i < kLetInAtOnce; ++i)
    if (!let_one_in()) return;
}

// Returns whether another one may be waiting.
bool message_end::let_one_in() {
  pid_t process = 0;
  descriptor socket = accept_peer(listener_, process);
  if (socket.open()) {
    admit(std::move(socket), process);
    return true;
  }
  if (is_want_of_descriptors(errno)) return let_one_in_without_room();
  return errno == EPERM || errno == ECONNABORTED || errno == EINTR;
}

// The spare descriptor lets one in, so that it can be told who has to go.
bool message_end::let_one_in_without_room() {
  spare_.reset();
  pid_t process = 0;
  descriptor socket = accept_peer(listener_, process);
  const bool came = socket.open();
  if (came) {
    admit(std::move(socket), process);
    make_room();
  }
  spare_ = make_spare();
  if (!came && is_want_of_descriptors(errno)) hear_newcomers(false);
  return came;
}

void message_end::admit(descriptor socket, pid_t process) {
  connection fresh;
  fresh.socket = std::move(socket);
  fresh.number = ++last_number_;
  fresh.process = process;
  if (watch(fresh.socket, fresh.number) != 0) return;
  const uint64_t number = fresh.number;
  connections_.emplace(number, std::move(fresh));
  ++peers_of_process_[process];
  if (ready_.size() < kEventsAtOnce + kLetInAtOnce) ready_.push_back(number); // may well have sent something already
  if (++peers_ > kMaxPeers) make_room();
}

// Who has most connections loses the newest one of them, so that one process alone cannot keep others out.
void message_end::make_room() {
  connection* leaves = nullptr;
  size_t most = 0;
  for (auto& [number, each] : connections_) {
    if (each.to_server()) continue;
    const size_t has = peers_of_process_[each.process];
    if (has < most) continue;
    most = has;
    leaves = &each;
  }
  if (leaves != nullptr) close_connection(*leaves);
}

// Not when nobody can be let in or turned away: the listener would stay ready.
void message_end::hear_newcomers(bool hear) noexcept {
  newcomers_heard_ = hear;
  if (!events_.open()) return;
  epoll_event event{};
  event.events = hear ? unsigned{EPOLLIN} : 0u;
  event.data.u64 = kListener;
  epoll_ctl(events_.number(), EPOLL_CTL_MOD, listener_.number(), &event);
}

// Who has connected and waits to be let in has reached the end as well.
uint32_t message_end::list_peers(std::span<uint64_t> room) {
  for (size_t i = 0; listener_.open() && i < kMaxPeers && let_one_in(); ++i) {
  }
  uint32_t count = 0;
  for (const auto& [number, each] : connections_) {
    if (each.to_server() || !still_connected(each.socket)) continue;
    if (count < room.size()) room[count] = number;
    ++count;
  }
  return count;
}

} // namespace vswitch
