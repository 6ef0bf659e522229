// What the checks of a port map share.
#include "inspect/port_map/map_check.h"

#include <fmt/format.h>

#include "inspect/port_map/port_answer.h"
#include "inspect/port_map/vsan_ports.h"
#include "libchnsw.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

entry_behind find_behind(const port_map_tables& tables, uint32_t index) {
  entry_behind behind;
  if (index >= FICON_PMAP_PHYS_ENTRIES) {
    uint16_t pn = tables.port_to_pn[index].pn;
    if (pn < tables.ports) behind.if_index = tables.pn_to_if[pn];
    behind.there = behind.if_index != 0;
    return behind;
  }
  if (ficon_pmap_get_index_to_if(static_cast<int32_t>(index), FICON_PMAP_NO_NUMBER, &behind.if_index) != 0) return behind;
  uint16_t port_index = 0;
  behind.there = portidx_port_by_if_index(behind.if_index, &port_index) == 0;
  lagmap_port_query query{behind.if_index, 0};
  if (behind.there && lagmap_get_port(&query) == 0) behind.channel = query.channel;
  return behind;
}

} // namespace

checked_map prepare_check(const library_session& session) {
  checked_map map{session, tables_of(session), vsans_of(session.chassis()), session.pa_to_pn(), {}};
  prepare_fast_forms({});
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) map.behind.push_back(find_behind(map.tables, index));
  return map;
}

void finding_list::add(finding found) {
  if (known_.emplace(found.kind, found.what, found.vsan, found.indexes).second) found_.push_back(std::move(found));
}

fast_answer ask_fast(const checked_map& map, translation what, uint32_t number, const uint32_t* vsan) {
  fast_answer answer;
  uint16_t found = 0;
  uint32_t flag = 0;
  auto asked = static_cast<int32_t>(number);
  switch (what) {
    case translation::pa_to_pn:
      answer.status = ficon_pmap_get_pa_to_pn_withpvsan(asked, vsan, &found, &flag, 1);
      answer.result = found;
      break;
    case translation::pn_to_pa:
      answer.status = ficon_pmap_get_pn_to_pa_withpvsan(asked, vsan, &found, &flag, 1);
      answer.result = found;
      break;
    case translation::pn_to_if:
      answer.status = ficon_pmap_get_pn_to_if_withpvsan(asked, vsan, &answer.result, &flag, 1);
      break;
    case translation::pn_to_phyif:
      answer.status = ficon_pmap_get_pn_to_phyif_withpvsan(asked, vsan, static_cast<int32_t>(map.tables.ports),
                                                           &answer.result, ficon_pmap_pn_to_logif, &flag);
      break;
  }
  return answer;
}

std::string address_name(uint32_t pa) {
  return fmt::format("PA {:02X}", pa);
}
std::string number_name(uint32_t pn) {
  return fmt::format("PN {}", pn);
}

std::string place_name(const checked_map& map, uint32_t index) {
  uint32_t interface = map.behind[index].if_index;
  return interface != 0 ? vswitch::interface_name(interface) : fmt::format("index {}", index);
}

} // namespace inspect
