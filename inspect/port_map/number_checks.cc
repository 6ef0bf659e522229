// Every port number and port address in every VSAN, by every translation.
#include <fmt/format.h>

#include <algorithm>

#include "inspect/error.h"
#include "inspect/port_map/map_check.h"
#include "inspect/port_map/port_map_search.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"

namespace inspect {

namespace {

std::string name_of(translation what, uint32_t number) {
  return rules_of(what).by_address ? address_name(number) : number_name(number);
}

std::string reason(translation what, const search_result& found) {
  return fmt::format("{}: {}", rules_of(what).name, found.rule);
}

// The indexes of the entries that were chosen, ascending.
template <typename choice>
std::vector<uint16_t> indexes_of(const search_result& found, choice&& chosen) {
  std::vector<uint16_t> indexes;
  for (const auto& seen : found.entries)
    if (chosen(seen)) indexes.push_back(static_cast<uint16_t>(seen.index));
  std::reverse(indexes.begin(), indexes.end());
  return indexes;
}

// Ports of different VSANs may carry the same number; where that goes wrong, it does so in a VSAN as well.
void check_without_vsan(const checked_map& map, translation what, uint32_t number, finding_list& findings) {
  auto answer = ask_fast(map, what, number, nullptr);
  if (answer.status != FICON_RC_MULTI_IF) return;
  search_result found = search_port_map({what, number, std::nullopt}, map.tables);
  findings.add({finding_kind::shared, name_of(what, number), std::nullopt,
                indexes_of(found, [](const considered_entry& seen) { return seen.counts; }), answer.status,
                reason(what, found)});
}

// What gives the number to the VSAN. Without any, an answer of "not found" is as it should be.
std::vector<uint16_t> entries_of_vsan(const search_result& found, uint32_t vsan) {
  return indexes_of(found, [vsan](const considered_entry& seen) {
    return seen.counts && (seen.port_vsan == vsan || is_bound_to(seen.entry, vsan));
  });
}

void require_same_status(const search_question& asked, const search_result& found, uint32_t library_status) {
  if (found.status == library_status) return;
  throw platform_error(fmt::format("internal error: {} in VSAN {}: the library answered {}, the tables say {}",
                                   name_of(asked.what, asked.number), *asked.vsan, status_text(library_status),
                                   status_text(found.status)));
}

void check_in_vsan(const checked_map& map, const search_question& asked, finding_list& findings) {
  auto answer = ask_fast(map, asked.what, asked.number, &*asked.vsan);
  if (answer.status == 0) return;
  search_result found = search_port_map(asked, map.tables);
  require_same_status(asked, found, answer.status);
  auto add = [&](finding_kind kind, std::vector<uint16_t> indexes) {
    findings.add({kind, name_of(asked.what, asked.number), asked.vsan, std::move(indexes), answer.status,
                  reason(asked.what, found)});
  };
  if (answer.status == FICON_RC_MULTI_IF)
    add(finding_kind::ambiguous, indexes_of(found, [](const considered_entry& seen) { return seen.in_vsan; }));
  else if (auto indexes = entries_of_vsan(found, *asked.vsan); !indexes.empty())
    add(finding_kind::unreachable, indexes);
}

} // namespace

void check_numbers(const checked_map& map, finding_list& findings) {
  for (translation what : {translation::pa_to_pn, translation::pn_to_pa, translation::pn_to_if, translation::pn_to_phyif})
    for (uint32_t number = 0; number < map.tables.ports; ++number) {
      check_without_vsan(map, what, number, findings);
      for (uint32_t vsan : map.vsans) check_in_vsan(map, {what, number, vsan}, findings);
    }
}

} // namespace inspect
