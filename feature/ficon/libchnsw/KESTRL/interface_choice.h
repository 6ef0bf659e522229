// What the two translations of a port number into one of several interfaces do with the verdict.
#ifndef KESTRL_INTERFACE_CHOICE_H
#define KESTRL_INTERFACE_CHOICE_H

#include <cstdint>

#include <libchnsw.h>

#include "port_map_search.h"

namespace chnsw {

// Stores the interface that answers, 0 when none or several do, and returns the status.
inline uint32_t conclude_interface(const decision& decided, uint32_t* if_index, uint32_t* flag) {
  *if_index = decided.answer;
  switch (decided.outcome) {
    case verdict::one:
      return 0;
    case verdict::none:
    case verdict::none_in_vsan:
      return FICON_RC_NO_IF;
    case verdict::several:
      return FICON_RC_MULTI_IF;
    case verdict::several_but_unbound:
      *flag = 0;
      return FICON_RC_MULTI_IF;
  }
  __builtin_unreachable();
}

} // namespace chnsw

#endif
