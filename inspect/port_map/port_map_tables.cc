// Reading the library's tables.
#include "inspect/port_map/port_map_tables.h"

#include <algorithm>

namespace inspect {

port_map_tables tables_of(const library_session& session) {
  return {session.port_to_pn(), session.port_to_vsan(), session.pn_to_if(), session.ports()};
}

bool is_bound(const ficon_pmap_port_entry& entry) {
  return std::any_of(std::begin(entry.vsans), std::end(entry.vsans), [](uint16_t vsan) { return vsan != 0; });
}

bool is_bound_to(const ficon_pmap_port_entry& entry, uint32_t vsan) {
  auto wanted = static_cast<uint16_t>(vsan);
  return std::find(std::begin(entry.vsans), std::end(entry.vsans), wanted) != std::end(entry.vsans);
}

std::vector<uint16_t> bound_vsans(const ficon_pmap_port_entry& entry) {
  std::vector<uint16_t> vsans;
  for (uint16_t vsan : entry.vsans)
    if (vsan != 0) vsans.push_back(vsan);
  return vsans;
}

} // namespace inspect
