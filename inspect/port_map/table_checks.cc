// Whether the tables of bindings and of addresses say what the entries say, and ports that no table has room for.
#include <fmt/format.h>

#include "inspect/port_map/map_check.h"
#include "inspect/port_map/port_place.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

std::string number_or_none(uint32_t pn) {
  return pn == FICON_PMAP_NO_NUMBER ? "no number" : number_name(pn);
}

// An interface that is bound to a number should lead back to it.
void check_way_back(const checked_map& map, uint32_t pn, uint32_t interface, finding_list& findings) {
  std::string name = vswitch::interface_name(interface);
  ficon_pmap_port_entry numbers{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  uint32_t index = 0;
  auto status = static_cast<uint32_t>(ficon_pmap_get_if_to_pnpa_index_with2pmaps(
      interface, &numbers, &index, map.tables.pn_to_if, map.tables.port_to_pn, 0));
  if (status != 0)
    findings.add({finding_kind::unreachable,
                  name,
                  std::nullopt,
                  {},
                  status,
                  fmt::format("{} is bound to it, but it does not lead back to a number: {}", number_name(pn),
                              status == FICON_RC_NOT_ASSOCIATED ? "no index from 1024 on carries the number"
                                                                : status_text(status))});
  else if (numbers.pn != pn)
    findings.add({finding_kind::mismatch,
                  number_name(pn),
                  std::nullopt,
                  {static_cast<uint16_t>(index)},
                  0,
                  fmt::format("it is bound to {}, which leads back to {}", name, number_or_none(numbers.pn))});
}

void check_binding(const checked_map& map, uint32_t pn, uint32_t interface, finding_list& findings) {
  if (!is_beyond_port_map(interface)) return check_way_back(map, pn, interface, findings);
  findings.add({finding_kind::unreachable,
                number_name(pn),
                std::nullopt,
                {},
                0,
                fmt::format("it is bound to {}, which has no place in the port map", vswitch::interface_name(interface))});
}

// The table of addresses should name one of the numbers that the ports with the address have.
void check_address(const checked_map& map, uint32_t pa, finding_list& findings) {
  const uint16_t pn = map.addresses[pa];
  std::vector<uint16_t> carriers;
  bool agrees = false;
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (map.entry(index).pa != pa) continue;
    carriers.push_back(static_cast<uint16_t>(index));
    if (map.entry(index).pn == pn) agrees = true;
  }
  if (agrees || (carriers.empty() && pn == FICON_PMAP_NO_NUMBER)) return;
  findings.add({finding_kind::mismatch, address_name(pa), std::nullopt, carriers, 0,
                fmt::format("the address table says {}, {}", number_or_none(pn),
                            carriers.empty() ? "but no index carries the address"
                                             : "and no index that carries the address has that")});
}

} // namespace

void check_bindings(const checked_map& map, finding_list& findings) {
  for (uint32_t pn = 0; pn < map.tables.ports; ++pn)
    if (uint32_t interface = map.tables.pn_to_if[pn]; interface != 0) check_binding(map, pn, interface, findings);
}

void check_address_table(const checked_map& map, finding_list& findings) {
  for (uint32_t pa = 0; pa < map.tables.ports; ++pa) check_address(map, pa, findings);
}

void check_ports_without_place(const checked_map& map, finding_list& findings) {
  for (const auto& card : map.session.chassis().line_cards) {
    unsigned first = 1;
    while (first <= card.ports && vswitch::port_map_index(map.session.chassis(), card.slot, first)) ++first;
    if (first > card.ports) continue;
    findings.add({finding_kind::unnumbered,
                  fmt::format("fc{}/{}-{}", card.slot, first, card.ports),
                  std::nullopt,
                  {},
                  0,
                  "the port map has no place for these ports"});
  }
}

} // namespace inspect
