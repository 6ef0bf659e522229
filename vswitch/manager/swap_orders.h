// Orders to swap two interfaces: taken from clients, carried out, written into the map, answered.
#ifndef VSWITCH_MANAGER_SWAP_ORDERS_H
#define VSWITCH_MANAGER_SWAP_ORDERS_H

#include <cstdint>
#include <optional>

#include "event_log.h"
#include "outbox.h"
#include "pending_swaps.h"
#include "served_end.h"
#include "vswitch/switch_store.h"

namespace vswitch {

class swap_orders {
 public:
  // All of them outlive it.
  swap_orders(switch_store& store, const served_end& requests, outbox& answers, const event_log& log, int patience_ms);
  swap_orders(const swap_orders&) = delete;
  swap_orders& operator=(const swap_orders&) = delete;

  void take_order(owned_message message, int64_t now_ms);
  void take_reply(msgq_message* reply, int64_t now_ms);

  // Sends again what clients had no room for, and gives up swaps whose client is gone or does not answer in time.
  void advance(int64_t now_ms);
  void give_up_all() { swaps_.give_up_all(); }

  bool has_unsent_question() const { return swaps_.has_unsent_question(); } // to be sent again
  std::optional<int64_t> next_deadline_ms() const { return swaps_.next_deadline_ms(); }

 private:
  swap_actions actions();
  uint32_t check(uint32_t if_index_a, uint32_t if_index_b, vsan_block& vsans) const;
  bool write(uint32_t if_index_a, uint32_t if_index_b);

  switch_store& store_;
  const served_end& requests_;
  outbox& answers_;
  const event_log& log_;
  pending_swaps swaps_;
};

} // namespace vswitch

#endif
