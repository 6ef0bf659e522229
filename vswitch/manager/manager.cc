// The manager's loop: one thread, one poll, nothing that blocks.
#include "vswitch/manager/manager.h"

#include <platform/if_index.h>
#include <platform/msgq.h>
#include <poll.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>
#include <vector>

#include "install_answer.h"
#include "map_changes.h"
#include "map_places.h"
#include "notices.h"
#include "outbox.h"
#include "query_answers.h"
#include "requests.h"
#include "swap_desk.h"
#include "vswitch/interface_index.h"
#include "vswitch/switch_store.h"
#include "vswitch/vsan_set.h"
#include "vswitch/vswitch.h"

namespace vswitch {

namespace {

constexpr int kMessagesAtOnce = 64; // before the other end, the deadlines and the stop are looked at again
constexpr int kFolderLookMs = 1000;
constexpr int kRetryMs = 2; // an end does not tell when a receiver has room again

struct end_close {
  void operator()(msgq* handle) const { msgq_close(handle); }
};
using owned_end = std::unique_ptr<msgq, end_close>;

owned_end open_end(uint32_t service_point) {
  owned_end end(msgq_open(service_point));
  if (!end || msgq_descriptor(end.get()) == -1)
    throw switch_error("service point " + std::to_string(service_point) + " cannot be served: " + std::strerror(errno));
  return end;
}

int64_t now_ms() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

int64_t wall_usec() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return int64_t{now.tv_sec} * 1000000 + now.tv_usec;
}

payload_view payload_of(msgq_message* message) {
  const auto* bytes = static_cast<const std::byte*>(msgq_payload_get(message));
  return bytes == nullptr ? payload_view() : payload_view(bytes, msgq_payload_size(message));
}

switch_store& store_in_use() {
  switch_store* store = switch_in_use();
  if (store == nullptr) throw switch_error("there is no switch to serve");
  return *store;
}

class manager {
 public:
  explicit manager(const manager_options& options);

  void serve();

 private:
  swap_surroundings surroundings();
  void log(uint64_t peer, std::string what, uint32_t result) const;
  void log_loss(const char* whose, uint64_t peer, int error) const;

  bool wait();
  int wait_ms() const;
  using handling = void (manager::*)(owned_message);
  bool take_messages(msgq* end, handling handle);
  void take(owned_message message);
  void refuse(owned_message message);
  void take_reply(msgq_message* reply);
  void take_order(owned_message message);
  answer answer_of(msgq_message* request);
  answer install(msgq_message* request);
  answer notify(payload_view payload);
  void look_after_swaps();
  void look_after_folder();

  uint32_t swap_vsans(uint32_t if_index_a, uint32_t if_index_b, vsan_block& vsans);
  bool write_swap(uint32_t if_index_a, uint32_t if_index_b);
  uint32_t tell_listeners(const notice& what);
  std::vector<uint64_t> peers_of(msgq* end) const;

  const manager_options& options_;
  switch_store& store_;
  const std::shared_ptr<manager_role> role_;
  const owned_end requests_;
  const owned_end listeners_;
  outbox answers_;
  outbox refusals_;
  swap_desk swaps_;
  int64_t folder_seen_ms_ = 0;
  bool requests_wait_ = false; // messages, or what else an end has to tell
  bool listeners_wait_ = false;
};

manager::manager(const manager_options& options)
    : options_(options),
      store_(store_in_use()),
      role_(store_.serve()),
      requests_(open_end(kManagerAddress.service_point)),
      listeners_(open_end(kNoticeAddress.service_point)),
      answers_(requests_.get(), [this](uint64_t peer, int error) { log_loss("", peer, error); }),
      refusals_(listeners_.get(), [this](uint64_t peer, int error) { log_loss("listener's ", peer, error); }),
      swaps_(surroundings(), options.swap_patience_ms) {
  if (ficon_get_max_ficon_ports() <= 0) throw switch_error("the library cannot tell how many ports this chassis has");
}

swap_surroundings manager::surroundings() {
  return {[this](uint64_t peer, uint32_t opcode, const ficon_if_swap_req& request) {
            const int sent = msgq_send_to_peer(requests_.get(), peer, opcode, &request, sizeof request);
            return sent == -1 ? msgq_errno_get(requests_.get()) : 0;
          },
          [this](uint32_t a, uint32_t b) { return write_swap(a, b); },
          [this](msgq_message* order, const swap_result& result) {
            answers_.answer(owned_message(order), flat_payload(result));
          },
          [this](uint64_t peer, const std::string& what, uint32_t result) { log(peer, what, result); }};
}

void manager::log(uint64_t peer, std::string what, uint32_t result) const {
  if (options_.log) options_.log({wall_usec(), peer, std::move(what), result});
}

void manager::log_loss(const char* whose, uint64_t peer, int error) const {
  log(peer, std::string(whose) + "answer not delivered: " + std::strerror(error), FICON_RC_PLATFORM);
}

// ---- The loop ----

// Waits until there is something to do. False when that is to end.
bool manager::wait() {
  std::array<pollfd, 3> watched = {{{options_.stop_descriptor, POLLIN, 0},
                                    {msgq_descriptor(requests_.get()), POLLIN, 0},
                                    {msgq_descriptor(listeners_.get()), POLLIN, 0}}};
  const int ready = poll(watched.data(), watched.size(), wait_ms());
  if (ready == -1 && errno != EINTR) throw switch_error(std::string("poll: ") + std::strerror(errno));
  if (ready <= 0) return true;
  requests_wait_ = requests_wait_ || watched[1].revents != 0;
  listeners_wait_ = listeners_wait_ || watched[2].revents != 0;
  return watched[0].revents == 0;
}

int manager::wait_ms() const {
  if (requests_wait_ || listeners_wait_) return 0;
  int64_t wait = answers_.waiting() || refusals_.waiting() || swaps_.has_unasked() ? kRetryMs : INT32_MAX;
  if (const auto deadline = swaps_.next_deadline_ms()) wait = std::min(wait, *deadline - now_ms());
  wait = std::min(wait, folder_seen_ms_ + kFolderLookMs - now_ms());
  return static_cast<int>(std::max<int64_t>(wait, 0));
}

// Whether there may be more.
bool manager::take_messages(msgq* end, handling handle) {
  for (int n = 0; n < kMessagesAtOnce; ++n) {
    msgq_message* message = nullptr;
    const int received = msgq_receive(end, &message, 0);
    if (received == 0) return false;
    if (received == 1)
      (this->*handle)(owned_message(message));
    else if (errno != EINTR && errno != ECONNRESET)
      throw switch_error(std::string("messages cannot be received: ") + std::strerror(errno));
  }
  return true;
}

void manager::serve() {
  log(0, "serves", 0);
  if (options_.ready) options_.ready();
  while (wait()) {
    if (requests_wait_) requests_wait_ = take_messages(requests_.get(), &manager::take);
    if (listeners_wait_) listeners_wait_ = take_messages(listeners_.get(), &manager::refuse);
    look_after_swaps();
    look_after_folder();
    answers_.retry();
    refusals_.retry();
  }
  swaps_.give_up_all();
  log(0, "ends", 0);
}

// Nobody finds a manager whose folder was removed.
void manager::look_after_folder() {
  const int64_t now = now_ms();
  if (now - folder_seen_ms_ < kFolderLookMs) return;
  folder_seen_ms_ = now;
  if (store_.presence() != switch_presence::in_place) throw switch_error(store_.name() + ": the switch was removed");
}

void manager::look_after_swaps() {
  if (swaps_.empty()) return;
  swaps_.give_up_gone(peers_of(requests_.get()), now_ms());
  swaps_.ask_again(now_ms());
  swaps_.give_up_late(now_ms());
}

// ---- One message ----

void manager::take(owned_message message) {
  if (msgq_is_reply(message.get()) != 0) return take_reply(message.get());
  if (msgq_opcode_get(message.get()) == kOpSwap) return take_order(std::move(message));
  answer made = answer_of(message.get());
  log(msgq_peer_get(message.get()), std::move(made.what), made.result);
  answers_.answer(std::move(message), std::move(made.payload));
}

// Who listens has nothing to ask.
void manager::refuse(owned_message message) {
  if (msgq_is_reply(message.get()) != 0) return;
  answer made = plain_answer(FICON_RC_INVALID_ARG, "listener's opcode " + std::to_string(msgq_opcode_get(message.get())));
  log(msgq_peer_get(message.get()), std::move(made.what), made.result);
  refusals_.answer(std::move(message), std::move(made.payload));
}

answer manager::answer_of(msgq_message* request) {
  const chassis_description& chassis = *chassis_in_use();
  const payload_view payload = payload_of(request);
  switch (msgq_opcode_get(request)) {
    case FICON_OP_GET_PORTMAP:
      return answer_port_map(chassis, payload);
    case FICON_OP_GET_ENABLED_VSANS:
      return answer_enabled_vsans(payload);
    case FICON_OP_QUERY_IFVSAN_STATE:
      return answer_ifvsan_state(chassis, payload);
    case FICON_OP_GET_RNID:
      return answer_rnid(chassis, payload, ficon_get_convert_fn_ptr());
    case FICON_OP_VSAN_INSTALL:
      return install(request);
    case kOpNotify:
      return notify(payload);
    default:
      return plain_answer(FICON_RC_INVALID_ARG, "opcode " + std::to_string(msgq_opcode_get(request)) + ", unknown");
  }
}

answer manager::install(msgq_message* message) {
  if (!is_well_formed_install(payload_of(message)))
    return plain_answer(FICON_RC_INVALID_ARG, "VSAN install, not well formed");
  install_request request;
  std::vector<vsan_change> changes;
  std::string why;
  uint32_t result = read_install(message, request);
  if (result == 0) result = install_on_switch(store_, *chassis_in_use(), request, changes, why);
  for (const vsan_change& change : changes) tell_listeners(vsan_notice(change.vsan, change.enabled ? 1 : 0));
  return plain_answer(result, description_of(request) + (why.empty() ? "" : " (" + why + ")"));
}

answer manager::notify(payload_view payload) {
  const auto order = flat_record<notify_order>(payload);
  if (!order) return plain_answer(FICON_RC_INVALID_ARG, "notify, not well formed");
  notice made;
  notify_result result = {};
  result.result = make_notice(*chassis_in_use(), *order, ficon_get_convert_fn_ptr(), made);
  if (result.result == 0) result.listeners = tell_listeners(made);
  return {flat_payload(result), result.result, "notify"};
}

// Returns how many it was sent to. A listener that does not read what it gets misses some.
uint32_t manager::tell_listeners(const notice& what) {
  uint32_t told = 0;
  for (const uint64_t peer : peers_of(listeners_.get())) {
    const int sent = msgq_send_to_peer(listeners_.get(), peer, what.opcode, what.payload.data(),
                                       static_cast<uint32_t>(what.payload.size()));
    if (sent == 0)
      ++told;
    else
      log(0,
          what.what + " not delivered to listener " + std::to_string(peer) + ": " +
              std::strerror(msgq_errno_get(listeners_.get())),
          FICON_RC_PLATFORM);
  }
  log(0, what.what + " to " + std::to_string(told) + (told == 1 ? " listener" : " listeners"), 0);
  return told;
}

std::vector<uint64_t> manager::peers_of(msgq* end) const {
  std::vector<uint64_t> peers(msgq_peers_get(end, nullptr, 0));
  peers.resize(std::min<size_t>(peers.size(), msgq_peers_get(end, peers.data(), static_cast<uint32_t>(peers.size()))));
  return peers;
}

// ---- Swap ----

void manager::take_reply(msgq_message* reply) {
  const auto response = flat_record<ficon_if_swap_resp>(payload_of(reply));
  const uint64_t peer = msgq_peer_get(reply);
  if (!response)
    log(peer, "a reply to nothing, not well formed", FICON_RC_INVALID_ARG);
  else if (!swaps_.respond(peer, *response, now_ms()))
    log(peer, "a response to swap " + std::to_string(response->swap_word4) + ", which does not wait for it",
        FICON_RC_INVALID_ARG);
}

// Whether the swap may begin, and the VSANs of both.
uint32_t manager::swap_vsans(uint32_t if_index_a, uint32_t if_index_b, vsan_block& vsans) {
  const chassis_description& chassis = *chassis_in_use();
  map_tables tables = {};
  uint32_t result = fetch_tables(tables);
  if (result == 0) result = swaps_.may_begin(chassis, tables, if_index_a, if_index_b);
  if (result != 0) return result;
  std::array<ficon_pmap_port_entry, 2> entries = {tables.port_to_pn[*index_of(chassis, tables, if_index_a)],
                                                  tables.port_to_pn[*index_of(chassis, tables, if_index_b)]};
  vsans = bound_vsans(entries);
  return 0;
}

void manager::take_order(owned_message message) {
  const uint64_t peer = msgq_peer_get(message.get());
  const auto order = flat_record<swap_order>(payload_of(message.get()));
  if (!order) {
    log(peer, "swap, not well formed", FICON_RC_INVALID_ARG);
    return answers_.answer(std::move(message), flat_payload(manager_result{FICON_RC_INVALID_ARG}));
  }
  const uint32_t a = ntoh_if_index(order->if_index_a);
  const uint32_t b = ntoh_if_index(order->if_index_b);
  vsan_block vsans = no_vsans();
  const uint32_t result = swap_vsans(a, b, vsans);
  if (result == 0) return swaps_.begin(message.release(), peer, a, b, vsans, now_ms());
  log(peer, "swap of " + interface_name(a) + " and " + interface_name(b), result);
  answers_.answer(std::move(message), flat_payload(swap_result{result, kNoStep, 0}));
}

bool manager::write_swap(uint32_t if_index_a, uint32_t if_index_b) {
  try {
    store_.change_map([&](port_map& map) {
      map_place a;
      map_place b;
      const chassis_description& chassis = *chassis_in_use();
      if (find_swappable(chassis, tables_of(map), if_index_a, a) != 0 ||
          find_swappable(chassis, tables_of(map), if_index_b, b) != 0)
        throw switch_error("the interfaces have lost their numbers");
      swap_interfaces(map, a, b);
    });
    return true;
  } catch (const switch_error& error) {
    log(0, std::string("the map cannot be written: ") + error.what(), FICON_RC_PLATFORM);
    return false;
  }
}

} // namespace

void run_manager(const manager_options& options) {
  manager(options).serve();
}

} // namespace vswitch
