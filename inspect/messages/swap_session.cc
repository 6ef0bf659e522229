#include "inspect/messages/swap_session.h"

#include <libchnsw.h>
#include <platform/if_index.h>

#include "vswitch/vsan_set.h"

namespace inspect {

// A step of the handshake, and the library's functions for it.
struct swap_session::handshake_step {
  uint32_t opcode;
  vswitch::swap_step number;
  const char* name;
  decltype(&ficon_if_swap_chk_lock_parse_with_vsan) parse;
  decltype(&ficon_if_swap_chk_lock_send_resp) respond;
};

constexpr swap_session::handshake_step swap_session::kSteps[] = {
    {vswitch::kOpSwapCheckLock, vswitch::kStepCheckLock, "check-lock", ficon_if_swap_chk_lock_parse_with_vsan,
     ficon_if_swap_chk_lock_send_resp},
    {vswitch::kOpSwapDoSwap, vswitch::kStepDoSwap, "do-swap", ficon_if_swap_do_swap_parse_with_vsan,
     ficon_if_swap_do_swap_send_resp},
    {vswitch::kOpSwapUnlock, vswitch::kStepUnlock, "unlock", ficon_if_swap_unlock_parse_with_vsan,
     ficon_if_swap_unlock_send_resp},
};

const swap_session::handshake_step* swap_session::step_asked(const msgq_message* request) {
  for (const auto& step : kSteps)
    if (step.opcode == msgq_opcode_get(request)) return &step;
  return nullptr;
}

std::optional<std::string> swap_session::name_of_step(uint32_t number) {
  if (number == vswitch::kStepMap) return "map";
  for (const auto& step : kSteps)
    if (step.number == number) return step.name;
  return std::nullopt;
}

swap_session::swap_session(manager_client& manager, uint32_t if_index_a, uint32_t if_index_b, const swap_refusal& refusal)
    : manager_(manager), if_index_a_(if_index_a), if_index_b_(if_index_b), refusal_(refusal) {
  const vswitch::swap_order order = {hton_if_index(if_index_a), hton_if_index(if_index_b)};
  manager_.send(vswitch::kOpSwap, &order, sizeof order);
}

swap_event swap_session::next() {
  while (true) {
    auto message = manager_.receive();
    if (msgq_is_reply(message.get()) != 0) return end_of_swap(message.get());
    if (auto step = step_asked(message.get())) return answer(*step, message.get());
  }
}

swap_event swap_session::answer(const handshake_step& step, msgq_message* request) {
  uint32_t a = 0;
  uint32_t b = 0;
  vsan_block vsans{};
  uint32_t number = 0;
  step.parse(request, &number, &a, &b, &vsans);
  swap_ = number;
  const uint32_t swap_status = refusal_.step == step.name ? refusal_.swap_status : 0;
  if (swap_status != 0) refusal_.step.clear(); // what undoes the swap is not refused
  step.respond(manager_.handle(), request, number, a, b, swap_status);
  return {swap_, step.name, a, b, vswitch::vsans_of(vsans), swap_status, {}, {}};
}

swap_event swap_session::end_of_swap(msgq_message* reply) const {
  const auto result = record_in<vswitch::swap_result>(reply);
  swap_event end{swap_, "result", if_index_a_, if_index_b_, {}, {}, name_of_step(result.refused_step), result.result};
  if (result.refused_step != vswitch::kNoStep) end.swap_status = result.swap_status;
  return end;
}

} // namespace inspect
