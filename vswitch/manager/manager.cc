// The manager's loop: one thread, one poll, nothing that blocks.
#include "vswitch/manager/manager.h"

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

#include "event_log.h"
#include "install_answer.h"
#include "listeners.h"
#include "outbox.h"
#include "query_answers.h"
#include "requests.h"
#include "served_end.h"
#include "swap_orders.h"
#include "vswitch/switch_store.h"
#include "vswitch/vswitch.h"

namespace vswitch {

namespace {

constexpr int kPresenceCheckMs = 1000;
constexpr int kRetryMs = 2; // nothing announces that a receiver has room again

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
  bool wait();
  int wait_ms() const;
  void take(owned_message message);
  answer answer_of(msgq_message* request);
  answer install(msgq_message* request);
  answer notify(payload_view payload);
  void check_presence();

  const event_log log_;
  const manager_options& options_;
  switch_store& store_;
  const std::shared_ptr<manager_role> role_;
  const served_end requests_;
  listeners listeners_;
  outbox answers_;
  swap_orders swaps_;
  int64_t presence_checked_ms_ = 0;
  bool requests_wait_ = false; // messages, or that a connection was lost
  bool listeners_wait_ = false;
};

event_log log_of(const manager_options& options) {
  return [&options](uint64_t peer, const std::string& what, uint32_t result) {
    if (options.log) options.log({wall_usec(), peer, what, result});
  };
}

manager::manager(const manager_options& options)
    : log_(log_of(options)),
      options_(options),
      store_(store_in_use()),
      role_(store_.serve()),
      requests_(kManagerAddress.service_point),
      listeners_(log_),
      answers_(requests_.handle(),
               [this](uint64_t peer, int error) {
                 log_(peer, std::string("answer not delivered: ") + std::strerror(error), FICON_RC_PLATFORM);
               }),
      swaps_(store_, requests_, answers_, log_, options.swap_patience_ms) {
  if (ficon_get_max_ficon_ports() <= 0) throw switch_error("the library cannot tell how many ports this chassis has");
}

// ---- The loop ----

// Waits until there is something to do. False when that is to end.
bool manager::wait() {
  std::array<pollfd, 3> watched = {
      {{options_.stop_descriptor, POLLIN, 0}, {requests_.descriptor(), POLLIN, 0}, {listeners_.descriptor(), POLLIN, 0}}};
  const int ready = poll(watched.data(), watched.size(), wait_ms());
  if (ready == -1 && errno != EINTR) throw switch_error(std::string("poll: ") + std::strerror(errno));
  if (ready <= 0) return true;
  requests_wait_ = requests_wait_ || watched[1].revents != 0;
  listeners_wait_ = listeners_wait_ || watched[2].revents != 0;
  return watched[0].revents == 0;
}

int manager::wait_ms() const {
  if (requests_wait_ || listeners_wait_) return 0;
  const bool retry = answers_.waiting() || listeners_.has_waiting_refusals() || swaps_.has_unsent_question();
  int64_t wait = retry ? kRetryMs : INT32_MAX;
  if (const auto deadline = swaps_.next_deadline_ms()) wait = std::min(wait, *deadline - now_ms());
  wait = std::min(wait, presence_checked_ms_ + kPresenceCheckMs - now_ms());
  return static_cast<int>(std::max<int64_t>(wait, 0));
}

void manager::serve() {
  log_(0, "serves", 0);
  if (options_.ready) options_.ready();
  while (wait()) {
    if (requests_wait_) requests_wait_ = requests_.receive([this](owned_message message) { take(std::move(message)); });
    if (listeners_wait_) listeners_wait_ = listeners_.refuse_requests();
    swaps_.advance(now_ms());
    check_presence();
    answers_.retry();
    listeners_.retry();
  }
  swaps_.give_up_all();
  log_(0, "ends", 0);
}

// Nobody finds a manager whose switch was removed.
void manager::check_presence() {
  const int64_t now = now_ms();
  if (now - presence_checked_ms_ < kPresenceCheckMs) return;
  presence_checked_ms_ = now;
  if (store_.presence() != switch_presence::in_place) throw switch_error(store_.name() + ": the switch was removed");
}

// ---- One message ----

void manager::take(owned_message message) {
  if (msgq_is_reply(message.get()) != 0) return swaps_.take_reply(message.get(), now_ms());
  if (msgq_opcode_get(message.get()) == kOpSwap) return swaps_.take_order(std::move(message), now_ms());
  answer made = answer_of(message.get());
  log_(msgq_peer_get(message.get()), made.what, made.result);
  answers_.answer(std::move(message), std::move(made.payload));
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
  for (const vsan_change& change : changes) listeners_.notify(vsan_notice(change.vsan, change.enabled ? 1 : 0));
  return plain_answer(result, description_of(request) + (why.empty() ? "" : " (" + why + ")"));
}

answer manager::notify(payload_view payload) {
  const auto order = flat_record<notify_order>(payload);
  if (!order) return plain_answer(FICON_RC_INVALID_ARG, "notify, not well formed");
  notice made;
  notify_result result = {};
  result.result = make_notice(*chassis_in_use(), *order, ficon_get_convert_fn_ptr(), made);
  if (result.result == 0) result.listeners = listeners_.notify(made);
  return {flat_payload(result), result.result, "notify"};
}

} // namespace

void run_manager(const manager_options& options) {
  manager(options).serve();
}

} // namespace vswitch
