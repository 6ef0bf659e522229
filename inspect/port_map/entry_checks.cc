// Each entry of the port map by itself, and whether its own numbers lead to it.
#include <fmt/format.h>

#include "inspect/port_map/map_check.h"
#include "libchnsw.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

bool has_pn(const ficon_pmap_port_entry& numbers) {
  return numbers.pn != FICON_PMAP_NO_NUMBER;
}
bool has_pa(const ficon_pmap_port_entry& numbers) {
  return numbers.pa != FICON_PMAP_NO_NUMBER;
}

std::vector<uint16_t> only(uint32_t index) {
  return {static_cast<uint16_t>(index)};
}

// ---- An entry without numbers, with one beyond the range, with nothing behind it, with one of two ----

void check_unnumbered(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& behind = map.behind[index];
  if (!behind.there || index >= FICON_PMAP_PHYS_ENTRIES || behind.channel != 0) return;
  findings.add({finding_kind::unnumbered, place_name(map, index), std::nullopt, only(index), 0,
                "the port has neither a port number nor a port address"});
}

bool is_in_range(const checked_map& map, uint32_t index) {
  const auto& numbers = map.entry(index);
  return (!has_pn(numbers) || numbers.pn < map.tables.ports) && (!has_pa(numbers) || numbers.pa < map.tables.ports);
}

void check_range(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  auto why = [&](const char* what) {
    return fmt::format("index {} carries it, but the highest {} of this chassis is {}", index, what, map.tables.ports - 1);
  };
  if (has_pn(numbers) && numbers.pn >= map.tables.ports)
    findings.add({finding_kind::unreachable, number_name(numbers.pn), std::nullopt, only(index), FICON_RC_PN_RANGE,
                  why("port number")});
  if (has_pa(numbers) && numbers.pa >= map.tables.ports)
    findings.add({finding_kind::unreachable, address_name(numbers.pa), std::nullopt, only(index), FICON_RC_PA_RANGE,
                  why("port address")});
}

// Without a port behind it a number is kept for later, unless a VSAN is told to use it.
void add_absent(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  std::string what = has_pn(numbers) ? number_name(numbers.pn) : address_name(numbers.pa);
  auto add = [&](finding_kind kind, std::string why) {
    findings.add({kind, what, std::nullopt, only(index), FICON_RC_NO_IF, std::move(why)});
  };
  if (index >= FICON_PMAP_PHYS_ENTRIES)
    add(finding_kind::reserved, "no interface is bound to the port number");
  else if (!is_bound(numbers) || !has_pn(numbers) || !has_pa(numbers))
    add(finding_kind::reserved, fmt::format("{} is not there, and bound to no VSAN", place_name(map, index)));
  else
    add(finding_kind::unreachable, fmt::format("{} is bound to a VSAN, but there is no such port", place_name(map, index)));
}

void check_incomplete(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  if (has_pn(numbers) == has_pa(numbers)) return;
  findings.add({finding_kind::incomplete, place_name(map, index), std::nullopt, only(index), 0,
                has_pn(numbers) ? fmt::format("it has {}, but no port address", number_name(numbers.pn))
                                : fmt::format("it has {}, but no port number", address_name(numbers.pa))});
}

// ---- Its VSANs ----

void add_member(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  findings.add({finding_kind::member, place_name(map, index), std::nullopt, only(index), FICON_RC_LAG_MEMBER,
                fmt::format("as a member of port-channel{} it does not answer for {}", map.behind[index].channel,
                            has_pn(numbers) ? number_name(numbers.pn) : "its numbers")});
}

void check_bound(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  uint16_t vsan = map.tables.port_to_vsan[index];
  if (!is_bound(numbers)) {
    findings.add({finding_kind::unbound, place_name(map, index), std::nullopt, only(index), 0,
                  "it has numbers, but is bound to no VSAN"});
  } else if (vsan != 0 && !is_bound_to(numbers, vsan)) {
    findings.add(
        {finding_kind::unbound, place_name(map, index), vsan, only(index), 0,
         fmt::format("the port is in VSAN {}, but bound only to {}", vsan, fmt::join(bound_vsans(numbers), ", "))});
  }
}

// ---- Whether its own numbers lead to it ----

// Where the way from an entry's address over its number to its interface goes wrong.
struct wrong_turn {
  uint32_t status; // the library's, 0 when it answers with something else
  std::string why;
};

std::optional<wrong_turn> find_wrong_turn(const checked_map& map, uint32_t index, uint32_t vsan) {
  const auto& numbers = map.entry(index);
  auto pn = ask_fast(map, translation::pa_to_pn, numbers.pa, &vsan);
  if (pn.status != 0) return wrong_turn{pn.status, fmt::format("{} is not translated", address_name(numbers.pa))};
  if (pn.result != numbers.pn)
    return wrong_turn{0, fmt::format("{} leads to {}", address_name(numbers.pa), number_name(pn.result))};
  auto pa = ask_fast(map, translation::pn_to_pa, numbers.pn, &vsan);
  if (pa.status != 0) return wrong_turn{pa.status, fmt::format("{} is not translated back", number_name(numbers.pn))};
  if (pa.result != numbers.pa)
    return wrong_turn{0, fmt::format("{} leads back to {}", number_name(numbers.pn), address_name(pa.result))};
  auto interface = ask_fast(map, translation::pn_to_if, numbers.pn, &vsan);
  if (interface.status != 0)
    return wrong_turn{interface.status, fmt::format("{} has no interface", number_name(numbers.pn))};
  if (interface.result == map.behind[index].if_index) return std::nullopt;
  return wrong_turn{0, fmt::format("{} leads to {}", number_name(numbers.pn), vswitch::interface_name(interface.result))};
}

// In the VSAN that the port is in when it is bound to it, else in one of those that it is bound to.
std::vector<uint16_t> vsans_to_try(const checked_map& map, uint32_t index) {
  uint16_t current = map.tables.port_to_vsan[index];
  if (current != 0 && is_bound_to(map.entry(index), current)) return {current};
  return bound_vsans(map.entry(index));
}

void check_reached(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  auto vsans = vsans_to_try(map, index);
  std::optional<wrong_turn> first;
  for (uint16_t vsan : vsans) {
    auto wrong = find_wrong_turn(map, index, vsan);
    if (!wrong) return;
    if (!first) first = wrong;
  }
  if (!first) return;
  findings.add({finding_kind::unreachable, place_name(map, index), vsans.front(), only(index), first->status,
                fmt::format("its own numbers, {} and {}, do not lead to it: {}", number_name(numbers.pn),
                            address_name(numbers.pa), first->why)});
}

void check_entry(const checked_map& map, uint32_t index, finding_list& findings) {
  const auto& numbers = map.entry(index);
  if (!has_pn(numbers) && !has_pa(numbers)) return check_unnumbered(map, index, findings);
  check_range(map, index, findings);
  if (!map.behind[index].there) return add_absent(map, index, findings);
  check_incomplete(map, index, findings);
  if (map.behind[index].channel != 0) return add_member(map, index, findings);
  check_bound(map, index, findings);
  if (has_pn(numbers) && has_pa(numbers) && is_in_range(map, index)) check_reached(map, index, findings);
}

} // namespace

void check_entries(const checked_map& map, finding_list& findings) {
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) check_entry(map, index, findings);
}

} // namespace inspect
