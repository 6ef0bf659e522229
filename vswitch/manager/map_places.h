// Where an interface stands in the port map, by the library's own translations.
#ifndef VSWITCH_MANAGER_MAP_PLACES_H
#define VSWITCH_MANAGER_MAP_PLACES_H

#include <libchnsw.h>

#include <cstdint>
#include <optional>

#include "vswitch/chassis_description.h"

namespace vswitch {

// The tables of one moment: those of a map that is being changed, or the library's.
struct map_tables {
  const ficon_pmap_port_entry* port_to_pn;
  const uint32_t* pn_to_if;
};
map_tables tables_of(const port_map& map);

// The library's, fetched now. Returns the library's status, 0 with tables written.
uint32_t fetch_tables(map_tables& tables);

// The index of the interface's entry: that of its port, also of a port in a port-channel, or of the number that a logical
// interface is bound to. None when it is not there, has no number or lies behind the port map.
std::optional<uint32_t> index_of(const chassis_description& chassis, const map_tables& tables, uint32_t if_index);

// The numbers of an interface, by tables fetched now. Returns the library's status; FICON_RC_NO_IF for a port that is not
// there or lies behind the port map, which the library does not look at. Without numbers unless the status is 0.
uint32_t numbers_of(const chassis_description& chassis, uint32_t if_index, ficon_pmap_port_entry& numbers);

} // namespace vswitch

#endif
