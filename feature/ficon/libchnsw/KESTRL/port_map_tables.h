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

// The port-to-VSAN table for a translation that fetches. *vsan is read once; without a VSAN nothing is fetched. in_use
// tells whether the table may be read. Returns 0 also when the table is unavailable but the translation can do without.
uint32_t fetch_port_to_vsan(const uint32_t* vsan, uint32_t& vsan_read, int32_t& in_use);

} // namespace chnsw

#endif
