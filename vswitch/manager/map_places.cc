#include "map_places.h"

#include "vswitch/interface_index.h"
#include "vswitch/port_place.h"

namespace vswitch {

namespace {

constexpr ficon_pmap_port_entry kNoNumbers = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};

// The library reads the entry of any port that it is asked for, also behind the last one.
bool is_beyond_port_map(const fc_port& port) {
  const auto place = port_place(port, ficonm_platform_slot_to_lc_b0);
  return !place || !has_entry(*place);
}

bool may_be_looked_up(const chassis_description& chassis, uint32_t if_index) {
  const auto port = fc_port_of(if_index);
  return !port || (has_port(chassis, port->slot, port->port) && !is_beyond_port_map(*port));
}

} // namespace

map_tables tables_of(const port_map& map) {
  return {map.port_to_pn.data(), map.pn_to_if.data()};
}

uint32_t fetch_tables(map_tables& tables) {
  int32_t status = ficon_get_pmap_portpn();
  if (status == 0) status = ficon_get_pmap_pnif();
  if (status == 0) tables = {ficon_pmap_port_to_pn, ficon_pmap_pn_to_logif};
  return static_cast<uint32_t>(status);
}

std::optional<uint32_t> index_of(const chassis_description& chassis, const map_tables& tables, uint32_t if_index) {
  if (!has_interface(chassis, if_index) || !may_be_looked_up(chassis, if_index)) return std::nullopt;
  if (ficon_get_max_ficon_ports() <= 0) return std::nullopt; // the search goes as far as this says
  uint32_t index = FICON_PMAP_PORT_ENTRIES;
  if (ficon_pmap_get_if_to_index_with2pmaps(if_index, &index, tables.pn_to_if, tables.port_to_pn, 1) != 0)
    return std::nullopt;
  return index < FICON_PMAP_PORT_ENTRIES ? std::optional(index) : std::nullopt;
}

uint32_t numbers_of(const chassis_description& chassis, uint32_t if_index, ficon_pmap_port_entry& numbers) {
  numbers = kNoNumbers;
  if (!may_be_looked_up(chassis, if_index)) return FICON_RC_NO_IF;
  const int32_t status = ficon_pmap_get_if_to_pnpa_withpmap(if_index, &numbers, nullptr, 0);
  if (status != 0) numbers = kNoNumbers;
  return static_cast<uint32_t>(status);
}

} // namespace vswitch
