// Entries of the port map with the library's word on their interfaces.
#include "inspect/port_map/map_entries.h"

#include "inspect/error.h"
#include "inspect/port_map/port_map_tables.h"
#include "inspect/port_map/port_place.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"

namespace inspect {

namespace {

// For an index without a physical port the library reads its table of interfaces at the port number, without a range check.
std::optional<uint32_t> interface_at(const library_session& session, uint32_t index, uint32_t pn) {
  if (index >= FICON_PMAP_PHYS_ENTRIES && pn >= session.ports()) return std::nullopt;
  uint32_t interface = 0;
  const uint32_t status = ficon_pmap_get_index_to_if(static_cast<int32_t>(index), pn, &interface);
  if (status == FICON_RC_NO_MEMORY) throw platform_error("the library was refused memory: " + status_text(status));
  return status == 0 ? std::optional(interface) : std::nullopt;
}

bool holds_anything(const library_session& session, uint32_t index) {
  const auto& entry = session.port_to_pn()[index];
  return entry.pn != FICON_PMAP_NO_NUMBER || entry.pa != FICON_PMAP_NO_NUMBER || is_bound(entry) ||
         session.port_to_vsan()[index] != 0 || vswitch::port_at_index(session.chassis(), index).has_value();
}

} // namespace

map_entry map_entry_at(const library_session& session, uint32_t index) {
  const auto numbers = session.port_to_pn()[index];
  map_entry entry;
  entry.index = index;
  entry.pn = numbers.pn;
  entry.pa = numbers.pa;
  entry.vsans = bound_vsans(numbers);
  entry.port_vsan = session.port_to_vsan()[index];
  entry.port = port_at_place(index);
  entry.if_index = interface_at(session, index, numbers.pn);
  if (index < FICON_PMAP_PHYS_ENTRIES) entry.there = vswitch::port_at_index(session.chassis(), index).has_value();
  if (entry.if_index) entry.channel = vswitch::channel_of(session.chassis(), *entry.if_index);
  return entry;
}

std::vector<uint32_t> indexes_in_use(const library_session& session) {
  std::vector<uint32_t> indexes;
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index)
    if (holds_anything(session, index)) indexes.push_back(index);
  return indexes;
}

} // namespace inspect
