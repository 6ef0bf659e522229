// The library's tables of the port map, and what one of their entries says.
#ifndef INSPECT_PORT_MAP_TABLES_H
#define INSPECT_PORT_MAP_TABLES_H

#include <cstdint>
#include <vector>

#include "inspect/session/library_session.h"
#include "libchnsw.h"

namespace inspect {

// The tables as of one moment.
struct port_map_tables {
  const ficon_pmap_port_entry* port_to_pn;
  const uint16_t* port_to_vsan;
  const uint32_t* pn_to_if;
  uint32_t ports; // MAX_FICON_PORTS
};

port_map_tables tables_of(const library_session& session);

bool is_bound(const ficon_pmap_port_entry& entry);                   // to any VSAN
bool is_bound_to(const ficon_pmap_port_entry& entry, uint32_t vsan); // compares 16 bits, as the library does
std::vector<uint16_t> bound_vsans(const ficon_pmap_port_entry& entry);

} // namespace inspect

#endif
