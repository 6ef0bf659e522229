// The choice among several ports, worked out in the open: one general search through the library's tables that keeps every
// entry it met, what it counted and which rule decided. What the library answers is compared with it.
#ifndef INSPECT_PORT_MAP_SEARCH_H
#define INSPECT_PORT_MAP_SEARCH_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/port_map/port_map_tables.h"
#include "inspect/port_map/translation.h"

namespace inspect {

struct search_question {
  translation what;
  uint32_t number; // an address where addresses are searched
  std::optional<uint32_t> vsan;
};

// An entry that carries the number.
struct considered_entry {
  unsigned index = 0;
  ficon_pmap_port_entry entry{};
  uint16_t port_vsan = 0;           // the VSAN that its port is in now
  std::optional<uint32_t> if_index; // where the translation asks for it
  bool counts = false;
  bool in_vsan = false;
  bool bound = false;
  std::string passed_over; // why it does not count; empty when it does
};

struct search_counters {
  int32_t count = 0;
  int32_t bound = 0;
  int32_t in_vsan = 0;
  bool use_vsan_table = false;

  bool operator==(const search_counters&) const = default;
};

struct search_result {
  bool searched = false; // false: decided before any entry was looked at
  std::vector<considered_entry> entries;
  search_counters counters;
  std::string rule; // what decided, in words

  uint32_t status = 0;
  std::optional<uint32_t> written; // the result, where one is handed back
  uint32_t flag = 1;
  std::optional<unsigned> index; // the entry that the answer comes from
};

search_result search_port_map(const search_question& question, const port_map_tables& tables);

} // namespace inspect

#endif
