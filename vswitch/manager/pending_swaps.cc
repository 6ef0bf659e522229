#include "pending_swaps.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "vswitch/interface_index.h"

namespace vswitch {

pending_swaps::pending_swaps(swap_actions actions, int patience_ms)
    : actions_(std::move(actions)), patience_ms_(patience_ms) {}

bool pending_swaps::holds(uint32_t if_index) const {
  return std::any_of(swaps_.begin(), swaps_.end(),
                     [if_index](const swap& one) { return one.if_index_a == if_index || one.if_index_b == if_index; });
}

uint32_t pending_swaps::may_begin(const chassis_description& chassis, const map_tables& tables, uint32_t if_index_a,
                                  uint32_t if_index_b) const {
  if (if_index_a == if_index_b) return FICON_RC_INVALID_ARG;
  map_place place;
  for (const uint32_t if_index : {if_index_a, if_index_b})
    if (const uint32_t status = find_swappable(chassis, tables, if_index, place)) return status;
  return holds(if_index_a) || holds(if_index_b) ? uint32_t{FICON_RC_BASE} : 0;
}

std::string pending_swaps::name_of(const swap& one) const {
  return "swap " + std::to_string(one.number) + " of " + interface_name(one.if_index_a) + " and " +
         interface_name(one.if_index_b);
}

void pending_swaps::log(const swap& one, const std::string& what, uint32_t result) const {
  actions_.log(one.peer, name_of(one) + ": " + what, result);
}

void pending_swaps::begin(msgq_message* order, uint64_t peer, uint32_t if_index_a, uint32_t if_index_b,
                          const vsan_block& vsans, int64_t now_ms) {
  swaps_.push_back({++last_number_, peer, order, if_index_a, if_index_b, vsans, {}, 0, false});
  log(swaps_.back(), "ordered", 0);
  advance(swaps_.back(), {}, now_ms);
  forget_done();
}

pending_swaps::sending pending_swaps::send_question(const swap& one) const {
  const auto question = question_in(one.state.phase);
  const auto request = swap_request(*question, one.number, one.if_index_a, one.if_index_b, one.vsans);
  const int error = actions_.ask(one.peer, question->opcode, request);
  if (error == EAGAIN) return sending::no_room;
  log(one, std::string(question->name) + (error == 0 ? " asked" : " not asked, the client cannot be reached"), 0);
  return error == 0 ? sending::done : sending::failed;
}

// Goes on until a client has to be waited for, or the swap is done.
void pending_swaps::advance(swap& one, const swap_state& next, int64_t now_ms) {
  one.state = next;
  one.deadline_ms = now_ms + patience_ms_;
  while (one.state.phase != swap_phase::done) {
    if (one.state.phase == swap_phase::map) {
      one.state = after_map(one.state, actions_.write(one.if_index_a, one.if_index_b));
      continue;
    }
    const sending question = send_question(one);
    one.is_asked = question == sending::done;
    if (question != sending::failed) return;
    one.state = after_silence(one.state);
  }
  log(one, one.state.result.result == 0 ? "done" : "not done", one.state.result.result);
  actions_.answer(std::exchange(one.order, nullptr), one.state.result);
}

void pending_swaps::forget_done() {
  std::erase_if(swaps_, [](const swap& one) { return one.state.phase == swap_phase::done; });
}

bool pending_swaps::respond(uint64_t peer, const ficon_if_swap_resp& response, int64_t now_ms) {
  const auto found = std::find_if(swaps_.begin(), swaps_.end(),
                                  [&](const swap& one) { return one.peer == peer && one.number == response.swap_word4; });
  if (found == swaps_.end()) return false;
  log(*found, std::string(question_in(found->state.phase)->name) + " answered", response.swap_status);
  advance(*found, after_response(found->state, response.swap_status), now_ms);
  forget_done();
  return true;
}

bool pending_swaps::has_unsent_question() const {
  return std::any_of(swaps_.begin(), swaps_.end(), [](const swap& one) { return !one.is_asked; });
}

// The deadline of the question stays.
void pending_swaps::resend_questions(int64_t now_ms) {
  for (swap& one : swaps_) {
    if (one.is_asked) continue;
    const int64_t deadline_ms = one.deadline_ms;
    const swap_phase phase = one.state.phase;
    advance(one, one.state, now_ms);
    if (one.state.phase == phase) one.deadline_ms = deadline_ms;
  }
  forget_done();
}

void pending_swaps::give_up_overdue(int64_t now_ms) {
  for (swap& one : swaps_) {
    if (one.deadline_ms > now_ms) continue;
    log(one, std::string(question_in(one.state.phase)->name) + " not answered in time", FICON_RC_PLATFORM);
    advance(one, after_silence(one.state), now_ms);
  }
  forget_done();
}

void pending_swaps::give_up_disconnected(std::span<const uint64_t> present, int64_t now_ms) {
  for (swap& one : swaps_) {
    if (std::binary_search(present.begin(), present.end(), one.peer)) continue;
    log(one, "the client is gone", FICON_RC_PLATFORM);
    advance(one, after_silence(one.state), now_ms);
  }
  forget_done();
}

void pending_swaps::give_up_all() {
  for (swap& one : swaps_) {
    log(one, "given up, the manager ends", FICON_RC_PLATFORM);
    while (one.state.phase != swap_phase::done) advance(one, after_silence(one.state), 0);
  }
  forget_done();
}

std::optional<int64_t> pending_swaps::next_deadline_ms() const {
  if (swaps_.empty()) return std::nullopt;
  return std::min_element(swaps_.begin(), swaps_.end(),
                          [](const swap& a, const swap& b) { return a.deadline_ms < b.deadline_ms; })
      ->deadline_ms;
}

} // namespace vswitch
