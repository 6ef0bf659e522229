// Swaps under way, each in its phase of the handshake until it is done or undone. What is sent and written goes through the
// actions.
#ifndef VSWITCH_MANAGER_PENDING_SWAPS_H
#define VSWITCH_MANAGER_PENDING_SWAPS_H

#include <platform/msgq.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "map_changes.h"
#include "swap_handshake.h"

namespace vswitch {

struct swap_actions {
  // Asks the client. Returns 0; EAGAIN, it has no room now; another errno value, it cannot be reached.
  std::function<int(uint64_t peer, uint32_t opcode, const ficon_if_swap_req& request)> ask;
  // Swaps the two interfaces in the port map; false when it could not be written.
  std::function<bool(uint32_t if_index_a, uint32_t if_index_b)> write;
  // Answers an order, which is then the callee's.
  std::function<void(msgq_message* order, const swap_result& result)> answer;
  std::function<void(uint64_t peer, const std::string& what, uint32_t result)> log;
};

class pending_swaps {
 public:
  pending_swaps(swap_actions actions, int patience_ms);

  // Whether a swap of two interfaces may begin, by the tables as they are: swap_result::result.
  uint32_t may_begin(const chassis_description& chassis, const map_tables& tables, uint32_t if_index_a,
                     uint32_t if_index_b) const;

  // Begins one that may. order: becomes this object's. vsans: that either interface is bound to.
  void begin(msgq_message* order, uint64_t peer, uint32_t if_index_a, uint32_t if_index_b, const vsan_block& vsans,
             int64_t now_ms);

  // A client's response; whether a swap was waiting for it.
  bool respond(uint64_t peer, const ficon_if_swap_resp& response, int64_t now_ms);

  void resend_questions(int64_t now_ms);                                        // to clients that had no room
  void give_up_overdue(int64_t now_ms);                                         // swaps whose client did not answer in time
  void give_up_disconnected(std::span<const uint64_t> present, int64_t now_ms); // or is gone; present: ascending
  void give_up_all();                                                           // the manager ends: nothing is waited for

  bool empty() const { return swaps_.empty(); }
  bool has_unsent_question() const; // to be sent again
  std::optional<int64_t> next_deadline_ms() const;

 private:
  struct swap {
    uint32_t number;
    uint64_t peer;
    msgq_message* order;
    uint32_t if_index_a;
    uint32_t if_index_b;
    vsan_block vsans;
    swap_state state;
    int64_t deadline_ms;
    bool is_asked;
  };

  bool holds(uint32_t if_index) const;
  std::string name_of(const swap& one) const;
  void log(const swap& one, const std::string& what, uint32_t result) const;
  enum class sending { done, failed, no_room };
  sending send_question(const swap& one) const;
  void advance(swap& one, const swap_state& next, int64_t now_ms);
  void forget_done();

  swap_actions actions_;
  int patience_ms_;
  uint32_t last_number_ = 0;
  std::vector<swap> swaps_;
};

} // namespace vswitch

#endif
