// The cached port map tables, as the rest of the library reads them.
#ifndef KESTRL_PORT_MAP_TABLES_H
#define KESTRL_PORT_MAP_TABLES_H

#include <cstdint>

#include <libchnsw.h>

namespace chnsw {

// An entry before anything is known about it: no numbers, no VSANs.
inline constexpr ficon_pmap_port_entry kNoEntry = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};

// Whether an entry is bound to any VSAN.
inline bool is_bound(const ficon_pmap_port_entry& entry) {
  unsigned any = 0;
  for (const uint16_t slot : entry.vsans) any |= slot;
  return any != 0;
}

// Whether an entry is bound to this VSAN; 0 finds every empty slot.
inline bool is_bound_to(const ficon_pmap_port_entry& entry, uint16_t vsan) {
  for (const uint16_t slot : entry.vsans) {
    if (slot == vsan) return true;
  }
  return false;
}

// Fetch a table and report a failure under the operation's name and line. Return the fetch's status.
int32_t fetch_numbers_or_report(const char* operation, int line); // ficon_pmap_pn_to_logif
int32_t fetch_ports_or_report(const char* operation, int line);   // ficon_pmap_port_to_pn

} // namespace chnsw

#endif
