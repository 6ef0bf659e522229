#include "swap_handshake.h"

#include <platform/if_index.h>

namespace vswitch {

namespace {

struct phase_row {
  swap_phase phase;
  swap_question question; // opcode 0: none
  swap_step step;         // kNoStep: nobody can refuse any more
  swap_phase if_agreed;
  swap_phase if_refused;
  swap_phase if_silent;
};

using enum swap_phase;
constexpr phase_row kPhases[] = {
    // phase       question                               step            if agreed     if refused    if silent
    {check_lock, {kOpSwapCheckLock, false, "check-lock"}, kStepCheckLock, do_swap, unlock_again, unlock_again},
    // A client that refuses has not swapped; one that is silent may do it yet.
    {do_swap, {kOpSwapDoSwap, false, "do-swap"}, kStepDoSwap, unlock, unlock_again, swap_back},
    {unlock, {kOpSwapUnlock, false, "unlock"}, kStepUnlock, map, swap_back, swap_back},
    {map, {0, false, "map"}, kStepMap, done, swap_back, swap_back},
    {swap_back, {kOpSwapDoSwap, true, "do-swap back"}, kNoStep, unlock_again, unlock_again, unlock_again},
    {unlock_again, {kOpSwapUnlock, false, "unlock after all"}, kNoStep, done, done, done},
    {done, {0, false, "done"}, kNoStep, done, done, done},
};

const phase_row& row_of(swap_phase phase) {
  return kPhases[static_cast<size_t>(phase)];
}

constexpr bool every_row_is_at_its_phase() {
  for (size_t n = 0; n < sizeof kPhases / sizeof kPhases[0]; ++n)
    if (kPhases[n].phase != static_cast<swap_phase>(n)) return false;
  return true;
}
static_assert(every_row_is_at_its_phase());

swap_state agreed(const swap_state& state) {
  return {row_of(state.phase).if_agreed, state.result};
}

swap_state failed(const swap_state& state, swap_phase next, uint32_t swap_status) {
  const swap_step step = row_of(state.phase).step;
  if (step == kNoStep) return {next, state.result};
  return {next, {FICON_RC_PLATFORM, step, swap_status}};
}

} // namespace

bool swap_state::operator==(const swap_state& other) const {
  return phase == other.phase && result.result == other.result.result && result.refused_step == other.result.refused_step &&
         result.swap_status == other.result.swap_status;
}

std::optional<swap_question> question_in(swap_phase phase) {
  const swap_question& question = row_of(phase).question;
  return question.opcode == 0 ? std::nullopt : std::optional(question);
}

swap_state after_response(const swap_state& state, uint32_t swap_status) {
  return swap_status == 0 ? agreed(state) : failed(state, row_of(state.phase).if_refused, swap_status);
}

swap_state after_silence(const swap_state& state) {
  return failed(state, row_of(state.phase).if_silent, 0);
}

swap_state after_map(const swap_state& state, bool written) {
  return written ? agreed(state) : failed(state, row_of(state.phase).if_refused, 0);
}

ficon_if_swap_req swap_request(const swap_question& question, uint32_t number, uint32_t if_index_a, uint32_t if_index_b,
                               const vsan_block& vsans) {
  const uint32_t first = question.other_way_round ? if_index_b : if_index_a;
  const uint32_t second = question.other_way_round ? if_index_a : if_index_b;
  return {number, hton_if_index(first), hton_if_index(second), vsans};
}

} // namespace vswitch
