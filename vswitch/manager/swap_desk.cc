#include "swap_desk.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "vswitch/interface_index.h"

namespace vswitch {

swap_desk::swap_desk(swap_surroundings surroundings, int patience_ms)
    : surroundings_(std::move(surroundings)), patience_ms_(patience_ms) {}

bool swap_desk::holds(uint32_t if_index) const {
  return std::any_of(swaps_.begin(), swaps_.end(),
                     [if_index](const swap& one) { return one.if_index_a == if_index || one.if_index_b == if_index; });
}

uint32_t swap_desk::may_begin(const chassis_description& chassis, const map_tables& tables, uint32_t if_index_a,
                              uint32_t if_index_b) const {
  if (if_index_a == if_index_b) return FICON_RC_INVALID_ARG;
  map_place place;
  for (const uint32_t if_index : {if_index_a, if_index_b})
    if (const uint32_t status = find_swappable(chassis, tables, if_index, place)) return status;
  return holds(if_index_a) || holds(if_index_b) ? uint32_t{FICON_RC_BASE} : 0;
}

std::string swap_desk::name_of(const swap& one) const {
  return "swap " + std::to_string(one.number) + " of " + interface_name(one.if_index_a) + " and " +
         interface_name(one.if_index_b);
}

void swap_desk::tell(const swap& one, const std::string& what, uint32_t result) const {
  surroundings_.log(one.peer, name_of(one) + ": " + what, result);
}

void swap_desk::begin(msgq_message* order, uint64_t peer, uint32_t if_index_a, uint32_t if_index_b, const vsan_block& vsans,
                      int64_t now_ms) {
  swaps_.push_back({++last_number_, peer, order, if_index_a, if_index_b, vsans, {}, 0, false});
  tell(swaps_.back(), "ordered", 0);
  move_on(swaps_.back(), {}, now_ms);
  forget_done();
}

swap_desk::reached swap_desk::ask(const swap& one) const {
  const auto question = question_in(one.state.phase);
  const auto request = swap_request(*question, one.number, one.if_index_a, one.if_index_b, one.vsans);
  const int error = surroundings_.ask(one.peer, question->opcode, request);
  if (error == EAGAIN) return reached::not_yet;
  tell(one, std::string(question->name) + (error == 0 ? " asked" : " not asked, the client cannot be reached"), 0);
  return error == 0 ? reached::yes : reached::no;
}

// Goes as far as nobody has to be waited for.
void swap_desk::move_on(swap& one, const swap_state& next, int64_t now_ms) {
  one.state = next;
  one.deadline_ms = now_ms + patience_ms_;
  while (one.state.phase != swap_phase::done) {
    if (one.state.phase == swap_phase::map) {
      one.state = after_map(one.state, surroundings_.write(one.if_index_a, one.if_index_b));
      continue;
    }
    const reached client = ask(one);
    one.asked = client == reached::yes;
    if (client != reached::no) return;
    one.state = after_silence(one.state);
  }
  tell(one, one.state.result.result == 0 ? "done" : "not done", one.state.result.result);
  surroundings_.answer(std::exchange(one.order, nullptr), one.state.result);
}

void swap_desk::forget_done() {
  std::erase_if(swaps_, [](const swap& one) { return one.state.phase == swap_phase::done; });
}

bool swap_desk::respond(uint64_t peer, const ficon_if_swap_resp& response, int64_t now_ms) {
  const auto found = std::find_if(swaps_.begin(), swaps_.end(),
                                  [&](const swap& one) { return one.peer == peer && one.number == response.swap_word4; });
  if (found == swaps_.end()) return false;
  tell(*found, std::string(question_in(found->state.phase)->name) + " answered", response.swap_status);
  move_on(*found, after_response(found->state, response.swap_status), now_ms);
  forget_done();
  return true;
}

bool swap_desk::has_unasked() const {
  return std::any_of(swaps_.begin(), swaps_.end(), [](const swap& one) { return !one.asked; });
}

// The deadline of the question stays.
void swap_desk::ask_again(int64_t now_ms) {
  for (swap& one : swaps_) {
    if (one.asked) continue;
    const int64_t deadline_ms = one.deadline_ms;
    const swap_phase phase = one.state.phase;
    move_on(one, one.state, now_ms);
    if (one.state.phase == phase) one.deadline_ms = deadline_ms;
  }
  forget_done();
}

void swap_desk::give_up_late(int64_t now_ms) {
  for (swap& one : swaps_) {
    if (one.deadline_ms > now_ms) continue;
    tell(one, std::string(question_in(one.state.phase)->name) + " not answered in time", FICON_RC_PLATFORM);
    move_on(one, after_silence(one.state), now_ms);
  }
  forget_done();
}

void swap_desk::give_up_gone(std::span<const uint64_t> present, int64_t now_ms) {
  for (swap& one : swaps_) {
    if (std::binary_search(present.begin(), present.end(), one.peer)) continue;
    tell(one, "the client is gone", FICON_RC_PLATFORM);
    move_on(one, after_silence(one.state), now_ms);
  }
  forget_done();
}

void swap_desk::give_up_all() {
  for (swap& one : swaps_) {
    tell(one, "given up, the manager ends", FICON_RC_PLATFORM);
    while (one.state.phase != swap_phase::done) move_on(one, after_silence(one.state), 0);
  }
  forget_done();
}

std::optional<int64_t> swap_desk::next_deadline_ms() const {
  if (swaps_.empty()) return std::nullopt;
  return std::min_element(swaps_.begin(), swaps_.end(),
                          [](const swap& a, const swap& b) { return a.deadline_ms < b.deadline_ms; })
      ->deadline_ms;
}

} // namespace vswitch
