// The choice among several ports, worked out in the open: one general walk over the library's tables that tells every entry
// it met, what it counted and which rule decided. What the library answers is compared with it.
#ifndef CHNSW_PORT_MAP_WALK_H
#define CHNSW_PORT_MAP_WALK_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/session/library_session.h"
#include "libchnsw.h"

namespace inspect {

enum class translation { pa_to_pn, pn_to_pa, pn_to_if, pn_to_phyif };

// The library's tables as of one moment.
struct port_map_tables {
  const ficon_pmap_port_entry* port_to_pn;
  const uint16_t* port_to_vsan;
  const uint32_t* pn_to_if;
  uint32_t ports; // MAX_FICON_PORTS
};

port_map_tables tables_of(const library_session& session);

struct walk_question {
  translation what;
  uint32_t number;
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

struct walk_counters {
  int32_t count = 0;
  int32_t bound = 0;
  int32_t in_vsan = 0;
  bool use_vsan_table = false;

  bool operator==(const walk_counters&) const = default;
};

struct walk_result {
  bool walked = false; // false: decided before any entry was looked at
  std::vector<considered_entry> entries;
  walk_counters counters;
  std::string rule; // what decided, in words

  uint32_t status = 0;
  std::optional<uint32_t> written; // the result, where one is handed back
  bool answered = false;           // whether what is handed back is an answer, not only a filler
  uint32_t flag = 1;
  std::optional<unsigned> index; // the entry that the answer comes from
};

walk_result walk_port_map(const walk_question& question, const port_map_tables& tables);

bool is_bound(const ficon_pmap_port_entry& entry);                   // to any VSAN
bool is_bound_to(const ficon_pmap_port_entry& entry, uint32_t vsan); // compares 16 bits, as the library does
std::vector<uint16_t> bound_vsans(const ficon_pmap_port_entry& entry);

// The library's names for a translation.
const char* translation_name(translation what); // "PA to PN"
const char* operation_name(translation what);   // "ficon_pmap_get_pa_to_pn_withpvsan"

} // namespace inspect

#endif
