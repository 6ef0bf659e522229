// Who listens for notices.
#ifndef VSWITCH_MANAGER_LISTENERS_H
#define VSWITCH_MANAGER_LISTENERS_H

#include <cstdint>

#include "event_log.h"
#include "notices.h"
#include "outbox.h"
#include "served_end.h"

namespace vswitch {

class listeners {
 public:
  // Throws switch_error.
  explicit listeners(event_log log);
  listeners(const listeners&) = delete;
  listeners& operator=(const listeners&) = delete;

  int descriptor() const { return end_.descriptor(); }

  // Sends a notice to all of them, and returns to how many it was sent. One that does not read what it gets misses some.
  uint32_t notify(const notice& sent) const;

  // Refuses what they send, since a listener has nothing to ask here. Returns whether there may be more.
  bool refuse_requests();

  bool has_waiting_refusals() const { return refusals_.waiting(); }
  void retry() { refusals_.retry(); }

 private:
  void refuse(owned_message message);

  const event_log log_;
  const served_end end_;
  outbox refusals_;
};

} // namespace vswitch

#endif
