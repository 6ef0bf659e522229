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
};

using enum swap_phase;
constexpr phase_row kPhases[] = {
    // phase       question                               step            if agreed     if refused
    {check_lock, {kOpSwapCheckLock, false, "check-lock"}, kStepCheckLock, do_swap, unlock_again},
    {do_swap, {kOpSwapDoSwap, false, "do-swap"}, kStepDoSwap, unlock, unlock_again},
    {unlock, {kOpSwapUnlock, false, "unlock"}, kStepUnlock, map, swap_back},
    {map, {0, false, "map"}, kStepMap, done, swap_back},
    {swap_back, {kOpSwapDoSwap, true, "do-swap back"}, kNoStep, unlock_again, unlock_again},
    {unlock_again, {kOpSwapUnlock, false, "unlock after all"}, kNoStep, done, done},
    {done, {0, false, "done"}, kNoStep, done, done},
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

swap_state refused(const swap_state& state, uint32_t swap_status) {
  const phase_row& row = row_of(state.phase);
  if (row.step == kNoStep) return agreed(state);
  return {row.if_refused, {FICON_RC_PLATFORM, row.step, swap_status}};
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
  return swap_status == 0 ? agreed(state) : refused(state, swap_status);
}

swap_state after_silence(const swap_state& state) {
  return refused(state, 0);
}

swap_state after_map(const swap_state& state, bool written) {
  return written ? agreed(state) : refused(state, 0);
}

ficon_if_swap_req swap_request(const swap_question& question, uint32_t number, uint32_t if_index_a, uint32_t if_index_b,
                               const vsan_block& vsans) {
  const uint32_t first = question.other_way_round ? if_index_b : if_index_a;
  const uint32_t second = question.other_way_round ? if_index_a : if_index_b;
  return {number, hton_if_index(first), hton_if_index(second), vsans};
}

} // namespace vswitch
