// Explaining how an interface, or a slot and port, leads to its numbers.
#include <fmt/format.h>

#include <algorithm>

#include "inspect/port_map/explained_calls.h"
#include "inspect/words/number_texts.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"
#include "platform/if_index.h"
#include "platform/lagmap.h"

namespace inspect {

namespace {

// A look-up by slot, or by the numbers bound to interfaces, worked out from the tables.
struct number_lookup {
  std::vector<std::string> steps;
  std::string rule;
  uint32_t status = 0;
  std::optional<uint32_t> pn;
  std::optional<uint32_t> pa;
  std::optional<uint32_t> index;
};

void settle(number_lookup& found, uint32_t status, std::string rule) {
  found.status = status;
  found.rule = std::move(rule);
}

void find_bound_number(uint32_t if_index, uint32_t none_status, const port_map_tables& tables, number_lookup& found) {
  const uint32_t* end = tables.pn_to_if + tables.ports;
  const uint32_t* place = std::find(tables.pn_to_if, end, if_index);
  if (place == end) return settle(found, none_status, "no port number is bound to the interface: not associated");
  auto pn = static_cast<uint32_t>(place - tables.pn_to_if);
  found.pn = pn;
  found.steps.push_back(fmt::format("port number {} is the first that is bound to the interface", pn));
  for (uint32_t index = FICON_PMAP_PHYS_ENTRIES; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (tables.port_to_pn[index].pn != pn) continue;
    found.pa = tables.port_to_pn[index].pa;
    found.index = index;
    return settle(found, 0,
                  fmt::format("index {} is the first from 1024 on that carries the port number: it is the answer", index));
  }
  settle(found, none_status, "no index from 1024 on carries the port number: not associated");
}

// slot and port as the library counts them, from 0.
void find_place(uint8_t slot, uint8_t port, const port_map_tables& tables, number_lookup& found) {
  uint8_t card = 0;
  int32_t failed = ficonm_platform_slot_to_lc_b0(slot, &card);
  if (failed != 0) return settle(found, static_cast<uint32_t>(failed), fmt::format("slot {} has no line card", slot + 1));
  uint32_t index = uint32_t{card} * FICON_PMAP_PORTS_PER_LC + port;
  found.steps.push_back(fmt::format("slot {} is line card {}, counted from 0 without the supervisors", slot + 1, card));
  found.index = index;
  found.pn = tables.port_to_pn[index].pn;
  found.pa = tables.port_to_pn[index].pa;
  settle(found, 0, fmt::format("a port is found at line card x 254 + port - 1: index {} is the answer", index));
}

void find_physical(uint32_t if_index, bool skip_lag_check, const port_map_tables& tables, number_lookup& found) {
  uint8_t slot = 0;
  uint8_t port = 0;
  if_index_get_slot(if_index, &slot);
  if_index_get_port(if_index, &port);
  found.steps.push_back(fmt::format("a physical port: slot {}, port {}", slot + 1, port + 1));
  if (skip_lag_check) return find_place(slot, port, tables, found);
  lagmap_port_query query{if_index, 0};
  auto answer = static_cast<uint32_t>(lagmap_get_port(&query));
  if (answer == 0 && query.channel != 0) {
    found.steps.push_back(
        fmt::format("it is a member of port-channel{}, so it is looked for like a logical interface", query.channel));
    return find_bound_number(if_index, FICON_RC_LAG_MEMBER, tables, found);
  }
  if (answer == 0 || answer == FICON_LAGMAP_NOT_MEMBER) return find_place(slot, port, tables, found);
  settle(
      found, 0,
      fmt::format("its port-channel cannot be told ({}), which counts as success without a result", status_text(answer)));
}

number_lookup find_interface(uint32_t if_index, bool skip_lag_check, const port_map_tables& tables) {
  number_lookup found;
  uint8_t type = 0;
  int failed = if_index_get_type(if_index, &type);
  if (failed != 0) {
    settle(found, static_cast<uint32_t>(failed), "the switch has no such interface");
  } else if (type == IF_TYPE_PORT_CHANNEL || type == IF_TYPE_FCIP) {
    found.steps.push_back(fmt::format("a logical interface, type {}", type));
    find_bound_number(if_index, FICON_RC_NOT_ASSOCIATED, tables, found);
  } else if (type != IF_TYPE_FC_PORT) {
    settle(found, FICON_RC_NOT_FC_PORT, fmt::format("type {} is neither a physical port (1) nor logical (4, 10)", type));
  } else {
    find_physical(if_index, skip_lag_check, tables, found);
  }
  return found;
}

std::string answer_text(const number_lookup& found) {
  if (found.status != 0 || !found.index) return "nothing is handed back";
  return fmt::format("PN {}, PA {}, index {}", pn_text(*found.pn), pa_text(*found.pa), *found.index);
}

// The library's side of such a look-up.
struct library_lookup {
  ficon_pmap_port_entry entry{kUntouched16, kUntouched16, {}};
  uint32_t index = kUntouched32;
  uint32_t status = 0;
};

void explain_by(const number_lookup& found, const library_lookup& answer, explanation& explained) {
  explained.steps = found.steps;
  explained.rule = found.rule;
  explained.status = found.status;
  explained.answer = answer_text(found);
  if (found.status == 0) explained.result = found.index;
  require_same_status(explained, answer.status);
  bool same = answer.entry.pn == found.pn.value_or(kUntouched16) && answer.entry.pa == found.pa.value_or(kUntouched16) &&
              answer.index == found.index.value_or(kUntouched32);
  if (!same) report_disagreement(explained, "the library handed back another result than the tables give");
}

} // namespace

explanation explain_interface_to_number(const library_session& session, uint32_t if_index, bool skip_lag_check) {
  library_lookup answer;
  explanation explained;
  explained.translation = fmt::format("{} to PN, PA and index", vswitch::interface_name(if_index));
  explained.operation = "ficon_pmap_get_if_to_pnpa_index_with2pmaps";
  explained.traces = events_during([&] {
    answer.status = static_cast<uint32_t>(ficon_pmap_get_if_to_pnpa_index_with2pmaps(
        if_index, &answer.entry, &answer.index, nullptr, nullptr, skip_lag_check ? 1 : 0));
  });
  explain_by(find_interface(if_index, skip_lag_check, tables_of(session)), answer, explained);
  return explained;
}

explanation explain_slot_to_number(const library_session& session, const vswitch::fc_port& port) {
  port_map_tables tables = tables_of(session);
  library_lookup answer;
  explanation explained;
  explained.translation = fmt::format("slot {}, port {} to PN, PA and index", port.slot, port.port);
  explained.operation = "ficonm_platform_slot_to_pnpa_index";
  explained.traces = events_during([&] {
    answer.status = static_cast<uint32_t>(
        ficonm_platform_slot_to_pnpa_index(port.slot - 1, port.port - 1, &answer.entry, &answer.index));
  });
  number_lookup found;
  find_place(static_cast<uint8_t>(port.slot - 1), static_cast<uint8_t>(port.port - 1), tables, found);
  explain_by(found, answer, explained);
  return explained;
}

} // namespace inspect
