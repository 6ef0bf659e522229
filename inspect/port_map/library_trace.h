// The library's own trace of a translation, read back from its text.
#ifndef INSPECT_LIBRARY_TRACE_H
#define INSPECT_LIBRARY_TRACE_H

#include <optional>
#include <string>
#include <vector>

#include "inspect/port_map/port_map_search.h"

namespace inspect {

// One entry as a trace names it: by its index when an address is searched for, by its interface when a number is.
struct traced_entry {
  uint32_t place = 0;
  ficon_pmap_port_entry entry{}; // without pa where the trace has none
};

struct library_trace {
  std::vector<traced_entry> entries;
  std::optional<search_counters> counters;
};

library_trace read_trace(translation what, const std::vector<std::string>& events);

} // namespace inspect

#endif
