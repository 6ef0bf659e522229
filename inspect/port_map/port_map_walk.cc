// The general walk over the port map.
#include "inspect/port_map/port_map_walk.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/words/status_names.h"
#include "platform/if_index.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

// What sets the four translations apart.
struct translation_rules {
  translation what;
  const char* name;
  const char* operation;
  const char* searched; // what an entry carries
  const char* answer;   // what is handed back
  bool by_address;
  bool gives_interface;
  unsigned entries; // walked from the highest down
  uint32_t range_status;
  uint32_t none_status;
};

constexpr translation_rules kRules[] = {
    {translation::pa_to_pn, "PA to PN", "ficon_pmap_get_pa_to_pn_withpvsan", "address", "port number", true, false,
     FICON_PMAP_PORT_ENTRIES, FICON_RC_PA_RANGE, FICON_RC_PLATFORM},
    {translation::pn_to_pa, "PN to PA", "ficon_pmap_get_pn_to_pa_withpvsan", "number", "port address", false, false,
     FICON_PMAP_PORT_ENTRIES, FICON_RC_PN_RANGE, FICON_RC_PLATFORM},
    {translation::pn_to_if, "PN to interface", "ficon_pmap_get_pn_to_if_withpvsan", "number", "interface", false, true,
     FICON_PMAP_PORT_ENTRIES, FICON_RC_PN_RANGE, FICON_RC_NO_IF},
    {translation::pn_to_phyif, "PN to physical interface", "ficon_pmap_get_pn_to_phyif_withpvsan", "number",
     "physical interface", false, true, FICON_PMAP_PHYS_ENTRIES, FICON_RC_PN_RANGE, FICON_RC_NO_IF},
};

const translation_rules& rules_of(translation what) {
  return kRules[static_cast<size_t>(what)];
}

// What a walk remembers; walking downward, of the lowest index in the end.
struct remembered {
  std::optional<uint32_t> answer;
  unsigned index = 0;

  void remember(uint32_t new_answer, unsigned new_index) {
    answer = new_answer;
    index = new_index;
  }
};

class walk {
 public:
  walk(const walk_question& question, const port_map_tables& tables)
      : question_(question), tables_(tables), rules_(rules_of(question.what)) {
    result_.counters.use_vsan_table = question.vsan.has_value();
  }

  walk_result run() {
    if (decided_without_walk()) return std::move(result_);
    result_.walked = true;
    for (unsigned index = rules_.entries; index-- > 0;) {
      const auto& entry = tables_.port_to_pn[index];
      if ((rules_.by_address ? entry.pa : entry.pn) == question_.number) consider(index, entry);
    }
    decide();
    return std::move(result_);
  }

 private:
  bool settle(uint32_t status, std::optional<uint32_t> written, bool answered, std::string rule) {
    result_.status = status;
    result_.written = written;
    result_.answered = answered;
    result_.rule = std::move(rule);
    return true;
  }

  bool decided_without_walk() {
    // The control unit port comes before the range, so that it is answered alike on every chassis.
    if (!rules_.gives_interface && question_.number == FICON_PORT_CUP)
      return settle(FICON_RC_PLATFORM, FICON_PORT_CUP, false,
                    "254 is the control unit port, which no port carries: it is handed back as it is");
    if (question_.number >= tables_.ports)
      return settle(rules_.range_status, std::nullopt, false,
                    fmt::format("the highest {} of this chassis is {}", rules_.searched, tables_.ports - 1));
    if (!rules_.gives_interface) return false;
    if (uint32_t interface = tables_.pn_to_if[question_.number]; interface != 0)
      return settle(0, interface, true,
                    "the port number is bound to an interface directly: that one is the answer, whatever the VSAN");
    return question_.what == translation::pn_to_phyif && held_without_port();
  }

  bool held_without_port() {
    for (unsigned index = FICON_PMAP_PHYS_ENTRIES; index < FICON_PMAP_PORT_ENTRIES; ++index) {
      if (tables_.port_to_pn[index].pn != question_.number) continue;
      result_.index = index;
      return settle(
          0, 0, true,
          fmt::format("index {} holds the port number without a physical port: the answer is no interface", index));
    }
    return false;
  }

  void consider(unsigned index, const ficon_pmap_port_entry& entry) {
    considered_entry seen;
    seen.index = index;
    seen.entry = entry;
    seen.port_vsan = tables_.port_to_vsan[index];
    if (rules_.gives_interface) {
      seen.passed_over = why_no_candidate(seen);
    } else if (rules_.by_address && !inspect::is_bound(entry)) {
      seen.passed_over = "bound to no VSAN";
    }
    seen.counts = seen.passed_over.empty();
    // An address that does not count is still remembered, and still looked at for the VSAN.
    if (seen.counts || !rules_.gives_interface) tally(seen);
    result_.entries.push_back(seen);
  }

  // Why the entry's port cannot answer for the number; finds its interface on the way.
  std::string why_no_candidate(considered_entry& seen) const {
    bool any_port = question_.what == translation::pn_to_phyif;
    if (!any_port && !inspect::is_bound(seen.entry)) return "bound to no VSAN";
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
    return any_port ? "" : why_not_alone(interface);
  }

  std::string why_not_alone(uint32_t interface) const {
    lagmap_port_query query{interface, 0};
    auto answer = static_cast<uint32_t>(lagmap_get_port(&query));
    if (answer == 0 && query.channel != 0)
      return fmt::format("{} is a member of port-channel{}", vswitch::interface_name(interface), query.channel);
    if (answer == 0 || answer == FICON_LAGMAP_NOT_MEMBER) return "";
    return fmt::format("its port-channel cannot be told ({})", status_text(answer));
  }

  uint32_t answer_of(const considered_entry& seen) const {
    if (seen.if_index) return *seen.if_index;
    return rules_.by_address ? seen.entry.pn : seen.entry.pa;
  }

  void tally(considered_entry& seen) {
    if (seen.counts) ++result_.counters.count;
    last_.remember(answer_of(seen), seen.index);
    if (!question_.vsan) return;
    if (seen.port_vsan != *question_.vsan) return;
    seen.in_vsan = true;
    ++result_.counters.in_vsan;
    last_in_vsan_.remember(answer_of(seen), seen.index);
    if (!inspect::is_bound_to(seen.entry, *question_.vsan)) return;
    seen.bound = true;
    ++result_.counters.bound;
    last_bound_.remember(answer_of(seen), seen.index);
  }

  void answer(const remembered& from, std::string rule) {
    result_.index = from.index;
    settle(0, from.answer, true, fmt::format("{}: its {} is the answer", rule, rules_.answer));
  }

  // Without an answer an interface becomes 0, while a number stays as it was.
  void refuse(uint32_t status, std::string rule) {
    settle(status, rules_.gives_interface ? std::optional<uint32_t>(0) : std::nullopt, false, std::move(rule));
  }

  void decide() {
    const auto& counters = result_.counters;
    if (counters.count == 1) return answer(last_, one_counts());
    if (counters.count == 0) return none_counts();
    if (!question_.vsan)
      return refuse(FICON_RC_MULTI_IF, "several entries count and no VSAN chooses among them: ambiguous");
    if (counters.in_vsan == 1)
      return answer(last_in_vsan_, "several entries count, and the port of one of them is in the VSAN");
    if (counters.in_vsan == 0)
      return refuse(rules_.none_status, "several entries count, but none of their ports is in the VSAN: not found");
    if (counters.bound == 1) return answer(last_bound_, "several ports are in the VSAN, and one of them is bound to it");
    if (counters.bound > 1) return refuse(FICON_RC_MULTI_IF, "several ports are in the VSAN and bound to it: ambiguous");
    several_but_unbound();
  }

  std::string one_counts() const {
    // Oddity of addresses: the answer is of the lowest entry met, also when another one is the one that counts.
    bool other = rules_.by_address && !result_.entries.empty() && !result_.entries.back().counts;
    return other ? "one entry counts, but the lowest one that carries the address answers, counting or not"
                 : "one entry counts";
  }

  void none_counts() {
    if (rules_.gives_interface) return refuse(rules_.none_status, "no entry counts: not found");
    settle(rules_.none_status, question_.number, false,
           fmt::format("no entry counts: not found, and the {} itself is handed back", rules_.searched));
  }

  void several_but_unbound() {
    result_.index = last_in_vsan_.index;
    result_.flag = 0;
    settle(
        FICON_RC_MULTI_IF, last_in_vsan_.answer, true,
        fmt::format("several ports are in the VSAN and none is bound to it: ambiguous, and the {} of the lowest index is "
                    "handed back with the flag cleared",
                    rules_.answer));
  }

  const walk_question& question_;
  const port_map_tables& tables_;
  const translation_rules& rules_;
  walk_result result_;
  remembered last_;
  remembered last_bound_;
  remembered last_in_vsan_;
};

} // namespace

port_map_tables tables_of(const library_session& session) {
  return {session.port_to_pn(), session.port_to_vsan(), session.pn_to_if(), session.ports()};
}

walk_result walk_port_map(const walk_question& question, const port_map_tables& tables) {
  return walk(question, tables).run();
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

const char* translation_name(translation what) {
  return rules_of(what).name;
}
const char* operation_name(translation what) {
  return rules_of(what).operation;
}

} // namespace inspect
