// A swap of two interfaces, seen by the client who orders it and whom the manager then asks at each step.
#ifndef INSPECT_SWAP_SESSION_H
#define INSPECT_SWAP_SESSION_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/messages/manager_client.h"

namespace inspect {

// A step that was asked for and answered, or how the swap ended.
struct swap_event {
  std::optional<uint32_t> swap; // the swap's number, known from the first step on
  std::string step;             // "check-lock", "do-swap", "unlock"; "result" at the end
  uint32_t if_index_a = 0;
  uint32_t if_index_b = 0;
  std::optional<std::vector<uint16_t>> vsans;
  std::optional<uint32_t> swap_status; // that the step was answered with; at the end, the one that ended it
  // At the end:
  std::optional<std::string> refused_step;
  std::optional<uint32_t> status; // the manager's

  bool is_end() const { return status.has_value(); }
};

// The step that is answered with this swap status, the first time it is asked for.
struct swap_refusal {
  std::string step; // empty: none
  uint32_t swap_status = 0;
};

class swap_session {
 public:
  // Orders the swap. Throws error.
  swap_session(manager_client& manager, uint32_t if_index_a, uint32_t if_index_b, const swap_refusal& refusal);

  // Waits for the next step and answers it. Throws error when the manager does not ask in time.
  swap_event next();

 private:
  struct handshake_step;
  static const handshake_step kSteps[];

  static const handshake_step* step_asked(const msgq_message* request);
  static std::optional<std::string> name_of_step(uint32_t number);
  swap_event answer(const handshake_step& step, msgq_message* request);
  swap_event end_of_swap(msgq_message* reply) const;

  manager_client& manager_;
  uint32_t if_index_a_;
  uint32_t if_index_b_;
  swap_refusal refusal_;
  std::optional<uint32_t> swap_;
};

} // namespace inspect

#endif
