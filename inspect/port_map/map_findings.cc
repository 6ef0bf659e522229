// Going through a port map with the library.
#include "inspect/port_map/map_findings.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <tuple>

#include "inspect/error.h"
#include "inspect/port_map/explanation.h"
#include "inspect/port_map/port_map_walk.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

struct kind_row {
  finding_kind kind;
  const char* name;
  bool note;
};

constexpr kind_row kKinds[] = {
    {finding_kind::ambiguous, "ambiguous", false},  {finding_kind::unreachable, "unreachable", false},
    {finding_kind::unbound, "unbound", false},      {finding_kind::incomplete, "incomplete", false},
    {finding_kind::mismatch, "mismatch", false},    {finding_kind::shared, "shared", true},
    {finding_kind::member, "member", true},         {finding_kind::reserved, "reserved", true},
    {finding_kind::unnumbered, "unnumbered", true},
};

const kind_row& row_of(finding_kind kind) {
  return kKinds[static_cast<size_t>(kind)];
}

std::string address_name(uint32_t pa) {
  return fmt::format("PA {:02X}", pa);
}
std::string number_name(uint32_t pn) {
  return fmt::format("PN {}", pn);
}

// What the library answers, in its fast forms: they read the tables that stand still while the check runs.
struct library_answer {
  uint32_t status = 0;
  uint32_t result = 0;
};

library_answer ask(translation what, uint32_t number, const uint32_t* vsan, uint32_t ports) {
  library_answer answer;
  uint16_t found = 0;
  uint32_t flag = 0;
  auto signed_number = static_cast<int32_t>(number);
  switch (what) {
    case translation::pa_to_pn:
      answer.status = ficon_pmap_get_pa_to_pn_withpvsan(signed_number, vsan, &found, &flag, 1);
      answer.result = found;
      break;
    case translation::pn_to_pa:
      answer.status = ficon_pmap_get_pn_to_pa_withpvsan(signed_number, vsan, &found, &flag, 1);
      answer.result = found;
      break;
    case translation::pn_to_if:
      answer.status = ficon_pmap_get_pn_to_if_withpvsan(signed_number, vsan, &answer.result, &flag, 1);
      break;
    case translation::pn_to_phyif:
      answer.status = ficon_pmap_get_pn_to_phyif_withpvsan(signed_number, vsan, static_cast<int32_t>(ports), &answer.result,
                                                           ficon_pmap_pn_to_logif, &flag);
      break;
  }
  return answer;
}

// What stands behind an entry: a port, a logical interface, or nothing.
struct entry_behind {
  uint32_t if_index = 0;
  bool there = false;   // the port is plugged, or the interface is bound
  uint32_t channel = 0; // port-channel that the port is a member of
};

class map_check {
 public:
  explicit map_check(const library_session& session)
      : session_(session),
        tables_(tables_of(session)),
        vsans_(vsans_of(session.chassis())),
        addresses_(session.pa_to_pn()) {
    int32_t answer = ficon_pmap_prepare_fastpath(0);
    if (answer != 0)
      throw platform_error("the library cannot prepare its fast path: " + status_text(static_cast<uint32_t>(answer)));
    for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) behind_.push_back(find_behind(index));
  }

  std::vector<finding> run() {
    for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) check_entry(index);
    check_numbers(translation::pa_to_pn);
    check_numbers(translation::pn_to_pa);
    check_numbers(translation::pn_to_if);
    check_numbers(translation::pn_to_phyif);
    check_bindings();
    check_address_table();
    check_places();
    std::stable_partition(found_.begin(), found_.end(), [](const finding& one) { return !is_note(one.kind); });
    return std::move(found_);
  }

 private:
  const ficon_pmap_port_entry& entry(uint32_t index) const { return tables_.port_to_pn[index]; }

  void add(finding_kind kind, std::string what, std::optional<uint32_t> vsan, std::vector<uint16_t> indexes,
           uint32_t status, std::string why) {
    if (known_.emplace(kind, what, vsan, indexes).second)
      found_.push_back({kind, std::move(what), vsan, std::move(indexes), status, std::move(why)});
  }

  entry_behind find_behind(uint32_t index) const {
    entry_behind behind;
    if (index >= FICON_PMAP_PHYS_ENTRIES) {
      if (entry(index).pn < tables_.ports) behind.if_index = tables_.pn_to_if[entry(index).pn];
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

  std::string place_name(uint32_t index) const {
    uint32_t interface = behind_[index].if_index;
    return interface != 0 ? vswitch::interface_name(interface) : fmt::format("index {}", index);
  }

  // ---- One entry by itself ----

  void check_entry(uint32_t index) {
    const auto& numbers = entry(index);
    bool has_pn = numbers.pn != FICON_PMAP_NO_NUMBER;
    bool has_pa = numbers.pa != FICON_PMAP_NO_NUMBER;
    if (!has_pn && !has_pa) return check_unnumbered(index);
    bool in_range = check_range(index, has_pn, has_pa);
    if (!behind_[index].there) return check_absent(index, has_pn && has_pa);
    if (has_pn != has_pa)
      add(finding_kind::incomplete, place_name(index), std::nullopt, {static_cast<uint16_t>(index)}, 0,
          has_pn ? fmt::format("it has {}, but no port address", number_name(numbers.pn))
                 : fmt::format("it has {}, but no port number", address_name(numbers.pa)));
    if (behind_[index].channel != 0) return add_member(index);
    check_bound(index);
    if (has_pn && has_pa && in_range) check_reached(index);
  }

  void check_unnumbered(uint32_t index) {
    if (!behind_[index].there || index >= FICON_PMAP_PHYS_ENTRIES || behind_[index].channel != 0) return;
    add(finding_kind::unnumbered, place_name(index), std::nullopt, {static_cast<uint16_t>(index)}, 0,
        "the port has neither a port number nor a port address");
  }

  bool check_range(uint32_t index, bool has_pn, bool has_pa) {
    const auto& numbers = entry(index);
    bool pn_fits = !has_pn || numbers.pn < tables_.ports;
    bool pa_fits = !has_pa || numbers.pa < tables_.ports;
    auto why = [&](const char* what) {
      return fmt::format("index {} carries it, but the highest {} of this chassis is {}", index, what, tables_.ports - 1);
    };
    if (!pn_fits)
      add(finding_kind::unreachable, number_name(numbers.pn), std::nullopt, {static_cast<uint16_t>(index)},
          FICON_RC_PN_RANGE, why("port number"));
    if (!pa_fits)
      add(finding_kind::unreachable, address_name(numbers.pa), std::nullopt, {static_cast<uint16_t>(index)},
          FICON_RC_PA_RANGE, why("port address"));
    return pn_fits && pa_fits;
  }

  void check_absent(uint32_t index, bool both_numbers) {
    const auto& numbers = entry(index);
    std::vector<uint16_t> where = {static_cast<uint16_t>(index)};
    std::string what = numbers.pn != FICON_PMAP_NO_NUMBER ? number_name(numbers.pn) : address_name(numbers.pa);
    // Without a port behind it a number is kept for later, unless a VSAN is told to use it.
    if (index >= FICON_PMAP_PHYS_ENTRIES)
      return add(finding_kind::reserved, what, std::nullopt, where, FICON_RC_NO_IF,
                 "no interface is bound to the port number");
    if (!is_bound(numbers) || !both_numbers)
      return add(finding_kind::reserved, what, std::nullopt, where, FICON_RC_NO_IF,
                 fmt::format("{} is not there, and bound to no VSAN", place_name(index)));
    add(finding_kind::unreachable, what, std::nullopt, where, FICON_RC_NO_IF,
        fmt::format("{} is bound to a VSAN, but there is no such port", place_name(index)));
  }

  void add_member(uint32_t index) {
    add(finding_kind::member, place_name(index), std::nullopt, {static_cast<uint16_t>(index)}, FICON_RC_LAG_MEMBER,
        fmt::format("as a member of port-channel{} it does not answer for {}", behind_[index].channel,
                    entry(index).pn == FICON_PMAP_NO_NUMBER ? "its numbers" : number_name(entry(index).pn)));
  }

  void check_bound(uint32_t index) {
    const auto& numbers = entry(index);
    uint16_t vsan = tables_.port_to_vsan[index];
    std::vector<uint16_t> where = {static_cast<uint16_t>(index)};
    if (!is_bound(numbers))
      return add(finding_kind::unbound, place_name(index), std::nullopt, where, 0,
                 "it has numbers, but is bound to no VSAN");
    if (vsan == 0 || is_bound_to(numbers, vsan)) return;
    add(finding_kind::unbound, place_name(index), vsan, where, 0,
        fmt::format("the port is in VSAN {}, but bound only to {}", vsan, fmt::join(bound_vsans(numbers), ", ")));
  }

  // ---- Whether an entry's own numbers lead to it ----

  struct lead {
    uint32_t status = 0;
    std::string why; // empty: it leads there
  };

  lead follow(uint32_t index, uint32_t vsan) const {
    const auto& numbers = entry(index);
    auto pn = ask(translation::pa_to_pn, numbers.pa, &vsan, tables_.ports);
    if (pn.status != 0) return {pn.status, fmt::format("{} is not translated", address_name(numbers.pa))};
    if (pn.result != numbers.pn)
      return {0, fmt::format("{} leads to {}", address_name(numbers.pa), number_name(pn.result))};
    auto pa = ask(translation::pn_to_pa, numbers.pn, &vsan, tables_.ports);
    if (pa.status != 0) return {pa.status, fmt::format("{} is not translated back", number_name(numbers.pn))};
    if (pa.result != numbers.pa)
      return {0, fmt::format("{} leads back to {}", number_name(numbers.pn), address_name(pa.result))};
    auto interface = ask(translation::pn_to_if, numbers.pn, &vsan, tables_.ports);
    if (interface.status != 0) return {interface.status, fmt::format("{} has no interface", number_name(numbers.pn))};
    if (interface.result == behind_[index].if_index) return {};
    return {0, fmt::format("{} leads to {}", number_name(numbers.pn), vswitch::interface_name(interface.result))};
  }

  // In the VSAN that the port is in when it is bound to it, else in one of those that it is bound to.
  void check_reached(uint32_t index) {
    const auto& numbers = entry(index);
    auto bound = bound_vsans(numbers);
    uint16_t current = tables_.port_to_vsan[index];
    if (current != 0 && is_bound_to(numbers, current)) bound = {current};
    lead first;
    for (uint16_t vsan : bound) {
      lead found = follow(index, vsan);
      if (found.why.empty()) return;
      if (first.why.empty()) first = found;
    }
    if (bound.empty()) return;
    add(finding_kind::unreachable, place_name(index), bound.front(), {static_cast<uint16_t>(index)}, first.status,
        fmt::format("its own numbers, {} and {}, do not lead to it: {}", number_name(numbers.pn), address_name(numbers.pa),
                    first.why));
  }

  // ---- Every number in every VSAN ----

  void check_numbers(translation what) {
    for (uint32_t number = 0; number < tables_.ports; ++number) {
      check_without_vsan(what, number);
      for (uint32_t vsan : vsans_) check_in_vsan(what, number, vsan);
    }
  }

  static std::string name_of(translation what, uint32_t number) {
    return what == translation::pa_to_pn ? address_name(number) : number_name(number);
  }

  template <typename choice>
  static std::vector<uint16_t> indexes_of(const walk_result& walked, choice&& chosen) {
    std::vector<uint16_t> indexes;
    for (const auto& seen : walked.entries)
      if (chosen(seen)) indexes.push_back(static_cast<uint16_t>(seen.index));
    std::reverse(indexes.begin(), indexes.end());
    return indexes;
  }

  static std::string reason(translation what, const walk_result& walked) {
    return fmt::format("{}: {}", translation_name(what), walked.rule);
  }

  // Ports of different VSANs may carry the same number; where that goes wrong, it does so in a VSAN as well.
  void check_without_vsan(translation what, uint32_t number) {
    auto answer = ask(what, number, nullptr, tables_.ports);
    if (answer.status != FICON_RC_MULTI_IF) return;
    walk_result walked = walk_port_map({what, number, std::nullopt}, tables_);
    add(finding_kind::shared, name_of(what, number), std::nullopt,
        indexes_of(walked, [](const considered_entry& seen) { return seen.counts; }), answer.status, reason(what, walked));
  }

  // What gives the number to the VSAN. Without any, an answer of "not found" is as it should be.
  static std::vector<uint16_t> concerned(const walk_result& walked, uint32_t vsan) {
    return indexes_of(walked, [vsan](const considered_entry& seen) {
      return seen.counts && (seen.port_vsan == vsan || is_bound_to(seen.entry, vsan));
    });
  }

  void check_in_vsan(translation what, uint32_t number, uint32_t vsan) {
    auto answer = ask(what, number, &vsan, tables_.ports);
    if (answer.status == 0) return;
    walk_result walked = walk_port_map({what, number, vsan}, tables_);
    if (walked.status != answer.status)
      throw platform_error(fmt::format("internal error: {} in VSAN {}: the library answered {}, the tables say {}",
                                       name_of(what, number), vsan, status_text(answer.status),
                                       status_text(walked.status)));
    if (answer.status == FICON_RC_MULTI_IF)
      add(finding_kind::ambiguous, name_of(what, number), vsan,
          indexes_of(walked, [](const considered_entry& seen) { return seen.in_vsan; }), answer.status,
          reason(what, walked));
    else if (auto indexes = concerned(walked, vsan); !indexes.empty())
      add(finding_kind::unreachable, name_of(what, number), vsan, indexes, answer.status, reason(what, walked));
  }

  // ---- Bindings, addresses, places ----

  void check_bindings() {
    for (uint32_t pn = 0; pn < tables_.ports; ++pn)
      if (uint32_t interface = tables_.pn_to_if[pn]; interface != 0) check_binding(pn, interface);
  }

  void check_binding(uint32_t pn, uint32_t interface) {
    std::string name = vswitch::interface_name(interface);
    if (is_beyond_port_map(interface)) {
      return add(finding_kind::unreachable, number_name(pn), std::nullopt, {}, 0,
                 fmt::format("it is bound to {}, which has no place in the port map", name));
    }
    ficon_pmap_port_entry numbers{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
    uint32_t index = 0;
    auto status = static_cast<uint32_t>(
        ficon_pmap_get_if_to_pnpa_index_with2pmaps(interface, &numbers, &index, tables_.pn_to_if, tables_.port_to_pn, 0));
    if (status != 0)
      return add(finding_kind::unreachable, name, std::nullopt, {}, status,
                 fmt::format(
                     "{} is bound to it, but it does not lead back to a number: {}", number_name(pn),
                     status == FICON_RC_NOT_ASSOCIATED ? "no index from 1024 on carries the number" : status_text(status)));
    if (numbers.pn == pn) return;
    add(finding_kind::mismatch, number_name(pn), std::nullopt, {static_cast<uint16_t>(index)}, 0,
        fmt::format("it is bound to {}, which leads back to {}", name,
                    numbers.pn == FICON_PMAP_NO_NUMBER ? "no number" : number_name(numbers.pn)));
  }

  // The table of addresses should name one of the numbers that the ports with the address have.
  void check_address_table() {
    for (uint32_t pa = 0; pa < tables_.ports; ++pa) {
      std::vector<uint16_t> carriers;
      bool agrees = false;
      for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
        if (entry(index).pa != pa) continue;
        carriers.push_back(static_cast<uint16_t>(index));
        if (entry(index).pn == addresses_[pa]) agrees = true;
      }
      if (agrees || (carriers.empty() && addresses_[pa] == FICON_PMAP_NO_NUMBER)) continue;
      std::string says = addresses_[pa] == FICON_PMAP_NO_NUMBER ? "no number" : number_name(addresses_[pa]);
      add(finding_kind::mismatch, address_name(pa), std::nullopt, carriers, 0,
          carriers.empty()
              ? fmt::format("the address table says {}, but no index carries the address", says)
              : fmt::format("the address table says {}, and no index that carries the address has that", says));
    }
  }

  void check_places() {
    for (const auto& card : session_.chassis().line_cards) {
      unsigned first = 1;
      while (first <= card.ports && vswitch::port_map_index(session_.chassis(), card.slot, first)) ++first;
      if (first > card.ports) continue;
      add(finding_kind::unnumbered, fmt::format("fc{}/{}-{}", card.slot, first, card.ports), std::nullopt, {}, 0,
          "the port map has no place for these ports");
    }
  }

  const library_session& session_;
  port_map_tables tables_;
  std::vector<uint32_t> vsans_;
  const uint16_t* addresses_;
  std::vector<entry_behind> behind_;
  std::vector<finding> found_;
  // Several translations may tell the same.
  std::set<std::tuple<finding_kind, std::string, std::optional<uint32_t>, std::vector<uint16_t>>> known_;
};

} // namespace

const char* kind_name(finding_kind kind) {
  return row_of(kind).name;
}
bool is_note(finding_kind kind) {
  return row_of(kind).note;
}

std::vector<finding> find_in_map(const library_session& session) {
  return map_check(session).run();
}

std::vector<uint32_t> vsans_of(const vswitch::chassis_description& chassis) {
  std::set<uint32_t> vsans(chassis.map.port_to_vsan.begin(), chassis.map.port_to_vsan.end());
  for (const auto& [number, name] : chassis.vsans) vsans.insert(number);
  for (const auto& entry : chassis.map.port_to_pn) vsans.insert(std::begin(entry.vsans), std::end(entry.vsans));
  vsans.erase(0);
  return {vsans.begin(), vsans.end()};
}

} // namespace inspect
