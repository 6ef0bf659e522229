// Orders to swap two interfaces: taken, carried out on the desk, written into the map, answered.
#ifndef VSWITCH_MANAGER_SWAP_ORDERS_H
#define VSWITCH_MANAGER_SWAP_ORDERS_H

#include <cstdint>
#include <optional>

#include "event_log.h"
#include "outbox.h"
#include "served_end.h"
#include "swap_desk.h"
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

  // Goes on with who can be asked again, and gives up who is gone or late.
  void move_on(int64_t now_ms);
  void give_up_all() { desk_.give_up_all(); }

  bool has_unasked() const { return desk_.has_unasked(); } // somebody has to be asked again
  std::optional<int64_t> next_deadline_ms() const { return desk_.next_deadline_ms(); }

 private:
  swap_surroundings surroundings();
  uint32_t check(uint32_t if_index_a, uint32_t if_index_b, vsan_block& vsans) const;
  bool write(uint32_t if_index_a, uint32_t if_index_b);

  switch_store& store_;
  const served_end& requests_;
  outbox& answers_;
  const event_log& log_;
  swap_desk desk_;
};

} // namespace vswitch

#endif
