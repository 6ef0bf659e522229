#include "map_changes.h"

#include <algorithm>
#include <bitset>
#include <iterator>
#include <utility>

namespace vswitch {

namespace {

bool is_bound(const ficon_pmap_port_entry& entry, uint16_t vsan) {
  return std::find(std::begin(entry.vsans), std::end(entry.vsans), vsan) != std::end(entry.vsans);
}

// Whether there was a slot left.
bool bind(ficon_pmap_port_entry& entry, uint16_t vsan) {
  if (is_bound(entry, vsan)) return true;
  const auto slot = std::find(std::begin(entry.vsans), std::end(entry.vsans), uint16_t{0});
  if (slot == std::end(entry.vsans)) return false;
  *slot = vsan;
  return true;
}

void unbind(ficon_pmap_port_entry& entry, uint16_t vsan) {
  std::fill(std::remove(std::begin(entry.vsans), std::end(entry.vsans), vsan), std::end(entry.vsans), uint16_t{0});
}

bool install_at(ficon_pmap_port_entry& entry, const install_request& request) {
  for (const uint16_t vsan : request.vsans) {
    if (!request.install)
      unbind(entry, vsan);
    else if (!bind(entry, vsan))
      return false;
  }
  return true;
}

} // namespace

uint32_t install_vsans(const chassis_description& chassis, port_map& map, const install_request& request) {
  port_map changed = map;
  std::bitset<FICON_PMAP_PORT_ENTRIES> done; // a message may name an interface thousands of times
  for (const uint32_t if_index : request.if_indexes) {
    const auto index = index_of(chassis, tables_of(map), if_index);
    if (!index) return FICON_RC_NO_IF;
    if (done[*index]) continue;
    done.set(*index);
    if (!install_at(changed.port_to_pn[*index], request)) return FICON_RC_PLATFORM;
  }
  map = changed;
  return 0;
}

uint32_t find_swappable(const chassis_description& chassis, const map_tables& tables, uint32_t if_index, map_place& place) {
  if (channel_of(chassis, if_index) != 0) return FICON_RC_LAG_MEMBER;
  const auto index = index_of(chassis, tables, if_index);
  if (!index || tables.port_to_pn[*index].pn >= kNumbers) return FICON_RC_NO_IF;
  place = {if_index, *index};
  return 0;
}

void swap_interfaces(port_map& map, const map_place& a, const map_place& b) {
  auto& entry_a = map.port_to_pn[a.index];
  auto& entry_b = map.port_to_pn[b.index];
  auto& bound_a = map.pn_to_if[entry_a.pn];
  auto& bound_b = map.pn_to_if[entry_b.pn];
  if (bound_a == a.if_index || bound_b == b.if_index) std::swap(bound_a, bound_b);
  std::swap(entry_a, entry_b);
}

} // namespace vswitch
