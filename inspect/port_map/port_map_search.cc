// The general search through the port map: what is decided without it, which entries count, and the decision.
#include "inspect/port_map/port_map_search.h"

#include <fmt/format.h>

#include "inspect/words/status_names.h"
#include "platform/if_index.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

// What a search remembers; going downward, of the lowest index in the end.
struct remembered_entry {
  std::optional<uint32_t> result;
  unsigned index = 0;
};

struct port_map_search {
  const search_question& question;
  const port_map_tables& tables;
  const translation_rules& rules;
  search_result result;
  remembered_entry last;
  remembered_entry last_in_vsan;
  remembered_entry last_bound;
};

void settle(port_map_search& search, uint32_t status, std::optional<uint32_t> written, std::string rule) {
  search.result.status = status;
  search.result.written = written;
  search.result.rule = std::move(rule);
}

// ---- Before any entry is looked at ----

bool is_held_without_port(port_map_search& search) {
  for (unsigned index = FICON_PMAP_PHYS_ENTRIES; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (search.tables.port_to_pn[index].pn != search.question.number) continue;
    search.result.index = index;
    settle(search, 0, 0,
           fmt::format("index {} holds the port number without a physical port: the answer is no interface", index));
    return true;
  }
  return false;
}

bool is_bound_directly(port_map_search& search) {
  uint32_t interface = search.tables.pn_to_if[search.question.number];
  if (interface == 0) return false;
  settle(search, 0, interface,
         "the port number is bound to an interface directly: that one is the answer, whatever the VSAN");
  return true;
}

bool is_decided_without_search(port_map_search& search) {
  const uint32_t number = search.question.number;
  // The control unit port comes before the range, so that it is answered alike on every chassis.
  if (!search.rules.gives_interface && number == FICON_PORT_CUP) {
    settle(search, FICON_RC_PLATFORM, FICON_PORT_CUP,
           "254 is the control unit port, which no port carries: it is handed back as it is");
    return true;
  }
  if (number >= search.tables.ports) {
    settle(search, search.rules.range_status, std::nullopt,
           fmt::format("the highest {} of this chassis is {}", search.rules.searched, search.tables.ports - 1));
    return true;
  }
  if (!search.rules.gives_interface) return false;
  if (is_bound_directly(search)) return true;
  return search.question.what == translation::pn_to_phyif && is_held_without_port(search);
}

// ---- One entry ----

// Why a port that is there cannot answer by itself; empty when it can.
std::string port_channel_objection(uint32_t interface) {
  lagmap_port_query query{interface, 0};
  auto answer = static_cast<uint32_t>(lagmap_get_port(&query));
  if (answer == 0 && query.channel != 0)
    return fmt::format("{} is a member of port-channel{}", vswitch::interface_name(interface), query.channel);
  if (answer == 0 || answer == FICON_LAGMAP_NOT_MEMBER) return "";
  return fmt::format("its port-channel cannot be told ({})", status_text(answer));
}

// Why the entry's port cannot answer for the number; finds its interface on the way.
std::string objection_to_port(translation what, considered_entry& seen) {
  bool any_port = what == translation::pn_to_phyif;
  if (!any_port && !is_bound(seen.entry)) return "bound to no VSAN";
  if (seen.index >= FICON_PMAP_PHYS_ENTRIES) return "no interface is bound to the number";
  uint8_t slot = 0;
  int32_t failed = ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(seen.index / FICON_PMAP_PORTS_PER_LC), &slot);
  if (failed != 0) return fmt::format("its line card has no slot ({})", status_text(static_cast<uint32_t>(failed)));
  uint32_t interface = 0;
  auto port = static_cast<uint8_t>(seen.index % FICON_PMAP_PORTS_PER_LC);
  if (if_index_phy_fc_port_init(&interface, slot, port, 0) != 0) return "it has no interface";
  seen.if_index = interface;
  uint16_t port_index = 0;
  if (portidx_port_by_if_index(interface, &port_index) != 0)
    return fmt::format("{} is not there", vswitch::interface_name(interface));
  return any_port ? "" : port_channel_objection(interface);
}

uint32_t result_of(const translation_rules& rules, const considered_entry& seen) {
  if (seen.if_index) return *seen.if_index;
  return rules.by_address ? seen.entry.pn : seen.entry.pa;
}

void tally(port_map_search& search, considered_entry& seen) {
  search_counters& counters = search.result.counters;
  const remembered_entry here{result_of(search.rules, seen), seen.index};
  if (seen.counts) ++counters.count;
  search.last = here;
  if (!search.question.vsan || seen.port_vsan != *search.question.vsan) return;
  seen.in_vsan = true;
  ++counters.in_vsan;
  search.last_in_vsan = here;
  if (!is_bound_to(seen.entry, *search.question.vsan)) return;
  seen.bound = true;
  ++counters.bound;
  search.last_bound = here;
}

void consider(port_map_search& search, unsigned index) {
  considered_entry seen;
  seen.index = index;
  seen.entry = search.tables.port_to_pn[index];
  seen.port_vsan = search.tables.port_to_vsan[index];
  if (search.rules.gives_interface)
    seen.passed_over = objection_to_port(search.question.what, seen);
  else if (search.rules.by_address && !is_bound(seen.entry))
    seen.passed_over = "bound to no VSAN";
  seen.counts = seen.passed_over.empty();
  // An address that does not count is still remembered, and still looked at for the VSAN.
  if (seen.counts || !search.rules.gives_interface) tally(search, seen);
  search.result.entries.push_back(seen);
}

// ---- The decision ----

void answer_with(port_map_search& search, const remembered_entry& entry, std::string_view rule) {
  search.result.index = entry.index;
  settle(search, 0, entry.result, fmt::format("{}: its {} is the answer", rule, search.rules.result));
}

// Without an answer an interface becomes 0, while a number stays as it was.
void answer_nothing(port_map_search& search, uint32_t status, std::string rule) {
  settle(search, status, search.rules.gives_interface ? std::optional<uint32_t>(0) : std::nullopt, std::move(rule));
}

void decide_that_none_counts(port_map_search& search) {
  const uint32_t status = search.rules.none_status;
  if (search.rules.gives_interface) return answer_nothing(search, status, "no entry counts: not found");
  settle(search, status, search.question.number,
         fmt::format("no entry counts: not found, and the {} itself is handed back", search.rules.searched));
}

void decide_by_one(port_map_search& search) {
  // Oddity of addresses: the answer is of the lowest entry met, also when another one is the one that counts.
  const auto& entries = search.result.entries;
  bool other = search.rules.by_address && !entries.empty() && !entries.back().counts;
  answer_with(search, search.last,
              other ? "one entry counts, but the lowest one that carries the address answers, counting or not"
                    : "one entry counts");
}

void decide_several_unbound(port_map_search& search) {
  search.result.index = search.last_in_vsan.index;
  search.result.flag = 0;
  settle(search, FICON_RC_MULTI_IF, search.last_in_vsan.result,
         fmt::format("several ports are in the VSAN and none is bound to it: ambiguous, and the {} of the lowest index is "
                     "handed back with the flag cleared",
                     search.rules.result));
}

void decide(port_map_search& search) {
  const search_counters& counters = search.result.counters;
  if (counters.count == 0) return decide_that_none_counts(search);
  if (counters.count == 1) return decide_by_one(search);
  if (!search.question.vsan)
    return answer_nothing(search, FICON_RC_MULTI_IF, "several entries count and no VSAN chooses among them: ambiguous");
  if (counters.in_vsan == 1)
    return answer_with(search, search.last_in_vsan, "several entries count, and the port of one of them is in the VSAN");
  if (counters.in_vsan == 0)
    return answer_nothing(search, search.rules.none_status,
                          "several entries count, but none of their ports is in the VSAN: not found");
  if (counters.bound == 1)
    return answer_with(search, search.last_bound, "several ports are in the VSAN, and one of them is bound to it");
  if (counters.bound > 1)
    return answer_nothing(search, FICON_RC_MULTI_IF, "several ports are in the VSAN and bound to it: ambiguous");
  decide_several_unbound(search);
}

} // namespace

search_result search_port_map(const search_question& question, const port_map_tables& tables) {
  port_map_search search{question, tables, rules_of(question.what), {}, {}, {}, {}};
  search.result.counters.use_vsan_table = question.vsan.has_value();
  if (is_decided_without_search(search)) return std::move(search.result);
  search.result.searched = true;
  for (unsigned index = search.rules.entries; index-- > 0;) {
    const auto& entry = tables.port_to_pn[index];
    if ((search.rules.by_address ? entry.pa : entry.pn) == question.number) consider(search, index);
  }
  decide(search);
  return std::move(search.result);
}

} // namespace inspect
