// Explaining one call of the library, and holding the explanation against its answer.
#include "inspect/port_map/explanation.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>

#include "exit_code.h"
#include "inspect/port_map/library_trace.h"
#include "platform/if_index.h"
#include "platform/lagmap.h"
#include "platform/portidx.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

// What outputs hold before a call, so that an output that was left alone is told from one that was written.
constexpr uint16_t kUntouched16 = 0xEEEE;
constexpr uint32_t kUntouched32 = 0xEEEEEEEE;

[[noreturn]] void disagree(const explanation& told, const std::string& how) {
  throw platform_error(fmt::format("internal error: {}: {}; please report it with this chassis", told.translation, how));
}

std::string number_text(uint32_t number) {
  return number == FICON_PMAP_NO_NUMBER ? "none" : std::to_string(number);
}
std::string address_text(uint32_t pa) {
  return pa == FICON_PMAP_NO_NUMBER ? "none" : fmt::format("{:02X}", pa);
}

std::string interface_text(uint32_t if_index) {
  return if_index == 0 ? "no interface" : fmt::format("{} 0x{:08X}", vswitch::interface_name(if_index), if_index);
}

// ---- The translations that choose among several ports ----

struct library_answer {
  uint32_t status = 0;
  std::optional<uint32_t> written;
  uint32_t flag = 0;
};

using number_translation = uint32_t (*)(int32_t, const uint32_t*, uint16_t*, uint32_t*, int32_t);

library_answer ask_number(number_translation ask, const walk_question& question, bool fast) {
  uint16_t number = kUntouched16;
  library_answer answer;
  answer.status = ask(static_cast<int32_t>(question.number), question.vsan ? &*question.vsan : nullptr, &number,
                      &answer.flag, fast ? 1 : 0);
  if (number != kUntouched16) answer.written = number;
  return answer;
}

library_answer ask_interface(const walk_question& question, uint32_t ports, bool fast) {
  uint32_t interface = kUntouched32;
  library_answer answer;
  auto pn = static_cast<int32_t>(question.number);
  const uint32_t* vsan = question.vsan ? &*question.vsan : nullptr;
  answer.status =
      question.what == translation::pn_to_if
          ? ficon_pmap_get_pn_to_if_withpvsan(pn, vsan, &interface, &answer.flag, fast ? 1 : 0)
          : ficon_pmap_get_pn_to_phyif_withpvsan(pn, vsan, static_cast<int32_t>(ports), &interface, nullptr, &answer.flag);
  if (interface != kUntouched32) answer.written = interface;
  return answer;
}

library_answer ask_library(const walk_question& question, uint32_t ports, bool fast) {
  if (question.what == translation::pa_to_pn) return ask_number(ficon_pmap_get_pa_to_pn_withpvsan, question, fast);
  if (question.what == translation::pn_to_pa) return ask_number(ficon_pmap_get_pn_to_pa_withpvsan, question, fast);
  return ask_interface(question, ports, fast);
}

bool searches_address(translation what) {
  return what == translation::pa_to_pn;
}

std::string question_text(const walk_question& question) {
  std::string number = searches_address(question.what) ? address_text(question.number) : std::to_string(question.number);
  std::string name = translation_name(question.what);
  name.insert(2, " " + number);
  return question.vsan ? fmt::format("{} in VSAN {}", name, *question.vsan) : name;
}

std::string result_text(translation what, uint32_t result) {
  if (what == translation::pa_to_pn) return "PN " + number_text(result);
  if (what == translation::pn_to_pa) return "PA " + address_text(result);
  return interface_text(result);
}

std::string answer_text(translation what, const walk_result& walked) {
  if (!walked.written) return "nothing is handed back";
  std::string text = result_text(what, *walked.written);
  return walked.status == 0 ? text : text + " is handed back";
}

bool same_entry(translation what, const considered_entry& told, const traced_entry& traced) {
  uint32_t place = searches_address(what) ? told.index : told.if_index.value_or(0);
  return place == traced.place && told.entry.pn == traced.entry.pn &&
         (!searches_address(what) || told.entry.pa == traced.entry.pa) &&
         std::memcmp(told.entry.vsans, traced.entry.vsans, sizeof traced.entry.vsans) == 0;
}

void compare_with_answer(const explanation& told, const walk_result& walked, const library_answer& answer) {
  if (answer.status != walked.status)
    disagree(told, fmt::format("the library answered {}, the tables say {}", status_text(answer.status),
                               status_text(walked.status)));
  if (answer.written != walked.written || answer.flag != walked.flag)
    disagree(told, "the library handed back another result than the tables give");
}

void compare_with_trace(const explanation& told, translation what, const walk_result& walked, const library_trace& trace) {
  // Of a number the library traces the candidates alone, of an address every entry that carries it.
  std::vector<considered_entry> expected;
  std::copy_if(walked.entries.begin(), walked.entries.end(), std::back_inserter(expected),
               [what](const auto& entry) { return searches_address(what) || entry.counts; });
  bool same = std::equal(expected.begin(), expected.end(), trace.entries.begin(), trace.entries.end(),
                         [what](const auto& entry, const auto& traced) { return same_entry(what, entry, traced); });
  if (!same) disagree(told, "the library traced other entries than the tables hold");
  bool traces_counters = walked.walked || (searches_address(what) && walked.status == FICON_RC_PLATFORM);
  if (trace.counters.has_value() != traces_counters) disagree(told, "the library's trace has no counters where it should");
  if (trace.counters && *trace.counters != walked.counters)
    disagree(told, "the library counted otherwise than the tables give");
}

// ---- Interface and slot to number ----

// A look-up by slot, or by the numbers bound to interfaces, worked out from the tables.
struct number_lookup {
  std::vector<std::string> steps;
  std::string rule;
  uint32_t status = 0;
  std::optional<uint32_t> pn;
  std::optional<uint32_t> pa;
  std::optional<uint32_t> index;

  void settle(uint32_t with_status, std::string why) {
    status = with_status;
    rule = std::move(why);
  }
};

void find_bound_number(uint32_t if_index, uint32_t none_status, const port_map_tables& tables, number_lookup& found) {
  const uint32_t* end = tables.pn_to_if + tables.ports;
  const uint32_t* place = std::find(tables.pn_to_if, end, if_index);
  if (place == end) return found.settle(none_status, "no port number is bound to the interface: not associated");
  auto pn = static_cast<uint32_t>(place - tables.pn_to_if);
  found.pn = pn;
  found.steps.push_back(fmt::format("port number {} is the first that is bound to the interface", pn));
  for (uint32_t index = FICON_PMAP_PHYS_ENTRIES; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (tables.port_to_pn[index].pn != pn) continue;
    found.pa = tables.port_to_pn[index].pa;
    found.index = index;
    return found.settle(
        0, fmt::format("index {} is the first from 1024 on that carries the port number: it is the answer", index));
  }
  found.settle(none_status, "no index from 1024 on carries the port number: not associated");
}

void find_place(uint8_t slot, uint8_t port, const port_map_tables& tables, number_lookup& found) {
  uint8_t card = 0;
  int32_t failed = ficonm_platform_slot_to_lc_b0(slot, &card);
  if (failed != 0) return found.settle(static_cast<uint32_t>(failed), fmt::format("slot {} has no line card", slot + 1));
  uint32_t index = uint32_t{card} * FICON_PMAP_PORTS_PER_LC + port;
  found.steps.push_back(fmt::format("slot {} is line card {}, counted from 0 without the supervisors", slot + 1, card));
  found.index = index;
  found.pn = tables.port_to_pn[index].pn;
  found.pa = tables.port_to_pn[index].pa;
  found.settle(0, fmt::format("a port is found at line card x 254 + port - 1: index {} is the answer", index));
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
  found.settle(0, fmt::format("its port-channel cannot be told ({}), which counts as success without a result",
                              status_text(answer)));
}

number_lookup find_interface(uint32_t if_index, bool skip_lag_check, const port_map_tables& tables) {
  number_lookup found;
  uint8_t type = 0;
  int failed = if_index_get_type(if_index, &type);
  if (failed != 0) {
    found.settle(static_cast<uint32_t>(failed), "the switch has no such interface");
  } else if (type == IF_TYPE_PORT_CHANNEL || type == IF_TYPE_FCIP) {
    found.steps.push_back(fmt::format("a logical interface, type {}", type));
    find_bound_number(if_index, FICON_RC_NOT_ASSOCIATED, tables, found);
  } else if (type != IF_TYPE_FC_PORT) {
    found.settle(FICON_RC_NOT_FC_PORT, fmt::format("type {} is neither a physical port (1) nor logical (4, 10)", type));
  } else {
    find_physical(if_index, skip_lag_check, tables, found);
  }
  return found;
}

std::string lookup_answer(const number_lookup& found) {
  if (found.status != 0 || !found.index) return "nothing is handed back";
  return fmt::format("PN {}, PA {}, index {}", number_text(*found.pn), address_text(*found.pa), *found.index);
}

// The library's side of such a look-up.
struct library_lookup {
  ficon_pmap_port_entry entry{kUntouched16, kUntouched16, {}};
  uint32_t index = kUntouched32;
  uint32_t status = 0;
};

void compare_lookup(const explanation& told, const number_lookup& found, const library_lookup& answer) {
  if (answer.status != found.status)
    disagree(told, fmt::format("the library answered {}, the tables say {}", status_text(answer.status),
                               status_text(found.status)));
  bool same = answer.entry.pn == found.pn.value_or(kUntouched16) && answer.entry.pa == found.pa.value_or(kUntouched16) &&
              answer.index == found.index.value_or(kUntouched32);
  if (!same) disagree(told, "the library handed back another result than the tables give");
}

void tell_lookup(const number_lookup& found, const library_lookup& answer, explanation& told) {
  told.steps = found.steps;
  told.rule = found.rule;
  told.status = found.status;
  told.answer = lookup_answer(found);
  if (found.status == 0) told.result = found.index;
  compare_lookup(told, found, answer);
}

// ---- Index to interface ----

struct interface_lookup {
  std::vector<std::string> steps;
  std::string rule;
  uint32_t status = 0;
  std::optional<uint32_t> written;

  void settle(uint32_t with_status, std::optional<uint32_t> result, std::string why) {
    status = with_status;
    written = result;
    rule = std::move(why);
  }
};

// The interface of a physical index; whether the port is there is another question.
bool build_interface(uint32_t index, interface_lookup& found) {
  uint8_t slot = 0;
  auto card = static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC);
  auto port = static_cast<uint8_t>(index % FICON_PMAP_PORTS_PER_LC);
  int32_t failed = ficonm_platform_lc_to_slot_b0(card, &slot);
  if (failed != 0) {
    found.settle(static_cast<uint32_t>(failed), std::nullopt,
                 fmt::format("line card {} has no slot in this chassis", card));
    return false;
  }
  uint32_t interface = 0;
  int built = if_index_phy_fc_port_init(&interface, slot, port, 0);
  found.steps.push_back(fmt::format("index {} is line card {}, slot {}, port {}", index, card, slot + 1, port + 1));
  found.settle(static_cast<uint32_t>(built), built == 0 ? std::optional<uint32_t>(interface) : std::nullopt,
               "the interface follows from slot and port, whether the port is there or not");
  return built == 0;
}

interface_lookup find_index(uint32_t index, const port_map_tables& tables) {
  interface_lookup found;
  if (index >= FICON_PMAP_PORT_ENTRIES) {
    found.settle(FICON_RC_INVALID_ARG, std::nullopt, "the highest port map index is 1279");
  } else if (index < FICON_PMAP_PHYS_ENTRIES) {
    build_interface(index, found);
  } else if (uint16_t pn = tables.port_to_pn[index].pn; pn == FICON_PMAP_NO_NUMBER) {
    found.settle(FICON_RC_INVALID_ARG, std::nullopt, "an index from 1024 on is found by its port number, and it has none");
  } else {
    uint32_t interface = tables.pn_to_if[pn];
    found.settle(interface != 0 ? 0 : uint32_t{FICON_RC_PLATFORM}, interface,
                 fmt::format("an index from 1024 on has the interface that its port number, {}, is bound to", pn));
  }
  return found;
}

interface_lookup find_physical_index(uint32_t index) {
  interface_lookup found;
  if (index >= FICON_PMAP_PHYS_ENTRIES) {
    found.settle(FICON_RC_INVALID_ARG, std::nullopt, "the highest index of a physical port is 1023");
    return found;
  }
  if (!build_interface(index, found)) return found;
  uint32_t interface = *found.written;
  uint16_t port_index = 0;
  auto there = static_cast<uint32_t>(portidx_port_by_if_index(interface, &port_index));
  lagmap_port_query query{interface, 0};
  uint32_t member = there == 0 ? static_cast<uint32_t>(lagmap_get_port(&query)) : 0;
  if (there != 0) {
    found.settle(there == FICON_PORTIDX_NO_PORT ? uint32_t{FICON_RC_NO_IF} : there, 0, "no such port is there");
  } else if (member == 0 && query.channel != 0) {
    found.settle(FICON_RC_LAG_MEMBER, 0, fmt::format("the port is a member of port-channel{}", query.channel));
  } else if (member != 0 && member != FICON_LAGMAP_NOT_MEMBER) {
    found.settle(FICON_RC_PLATFORM, interface, fmt::format("its port-channel cannot be told ({})", status_text(member)));
  } else {
    found.settle(0, interface, "the port is there and in no port-channel: it is the answer");
  }
  return found;
}

// A library call by index: what it is called, and what it was handed.
void tell_index(const interface_lookup& found, uint32_t status, uint32_t interface, explanation& told) {
  told.steps = found.steps;
  told.rule = found.rule;
  told.status = found.status;
  told.result = found.status == 0 ? found.written : std::nullopt;
  told.answer = found.status == 0 ? interface_text(*found.written) : "no interface";
  if (status != found.status || interface != found.written.value_or(kUntouched32))
    disagree(told, fmt::format("the library answered {} and {}, the tables say {}", status_text(status),
                               interface_text(interface), status_text(found.status)));
}

// ---- Showing ----

std::string vsans_text(const ficon_pmap_port_entry& entry) {
  auto vsans = bound_vsans(entry);
  if (vsans.empty()) return "no VSAN";
  return fmt::format("VSAN{} {}", vsans.size() == 1 ? "" : "s", fmt::join(vsans, " "));
}

std::string entry_text(const considered_entry& seen) {
  std::string text = fmt::format("index {}: PN {}, PA {}, bound to {}, port in VSAN {}", seen.index,
                                 number_text(seen.entry.pn), address_text(seen.entry.pa), vsans_text(seen.entry),
                                 seen.port_vsan == 0 ? "none" : std::to_string(seen.port_vsan));
  if (seen.if_index) text += ", " + interface_text(*seen.if_index);
  text += seen.counts ? "; counts" : "; does not count: " + seen.passed_over;
  if (seen.in_vsan) text += "; in the VSAN";
  if (seen.bound) text += "; bound to it";
  return text;
}

std::string counters_text(const walk_counters& counters) {
  std::string text = fmt::format("count {}", counters.count);
  if (counters.use_vsan_table) text += fmt::format(", bound {}, in VSAN {}", counters.bound, counters.in_vsan);
  return text;
}

std::string shown_trace(std::string_view trace) {
  while (!trace.empty() && (trace.back() == '\n' || trace.back() == ' ')) trace.remove_suffix(1);
  return printable(trace);
}

void add_line(std::string_view label, const std::string& value, std::string& text) {
  text += fmt::format("  {:<11} {}\n", label, value);
}

std::string text_of(const explanation& told) {
  std::string text = fmt::format("{} ({}{})\n", told.translation, told.operation, told.traced ? ", traced" : "");
  for (const auto& step : told.steps) add_line("found", step, text);
  for (const auto& entry : told.entries) add_line("considered", entry_text(entry), text);
  if (told.counters && told.entries.empty()) add_line("considered", "no entry", text);
  if (told.counters) add_line("counters", counters_text(*told.counters), text);
  add_line("rule", told.rule, text);
  add_line("answer", fmt::format("{}, {}", told.answer, status_text(told.status)), text);
  for (const auto& trace : told.traces) add_line("trace", shown_trace(trace), text);
  return text;
}

ordered_json number_data(uint32_t number) {
  return number == FICON_PMAP_NO_NUMBER ? ordered_json() : ordered_json(number);
}

ordered_json hex_data(uint32_t number, unsigned digits) {
  bool missing = digits == 2 && number == FICON_PMAP_NO_NUMBER;
  return missing ? ordered_json() : ordered_json(fmt::format("0x{:0{}X}", number, digits));
}

ordered_json entry_data(const considered_entry& seen) {
  ordered_json data = {{"index", seen.index},
                       {"pn", number_data(seen.entry.pn)},
                       {"pn_hex", hex_data(seen.entry.pn, 2)},
                       {"pa", number_data(seen.entry.pa)},
                       {"pa_hex", hex_data(seen.entry.pa, 2)},
                       {"vsans", bound_vsans(seen.entry)},
                       {"port_vsan", seen.port_vsan == 0 ? ordered_json() : ordered_json(seen.port_vsan)}};
  data["if_index"] = seen.if_index ? ordered_json(*seen.if_index) : ordered_json();
  data["if_index_hex"] = seen.if_index ? hex_data(*seen.if_index, 8) : ordered_json();
  data["interface"] = seen.if_index ? ordered_json(vswitch::interface_name(*seen.if_index)) : ordered_json();
  data["counts"] = seen.counts;
  data["passed_over"] = seen.passed_over.empty() ? ordered_json() : ordered_json(seen.passed_over);
  data["in_vsan"] = seen.in_vsan;
  data["bound"] = seen.bound;
  return data;
}

ordered_json counters_data(const explanation& told) {
  if (!told.counters) return nullptr;
  return {{"count", told.counters->count},
          {"bound", told.counters->bound},
          {"in_vsan", told.counters->in_vsan},
          {"port_to_vsan_used", told.counters->use_vsan_table}};
}

ordered_json data_of(const explanation& told) {
  ordered_json considered = ordered_json::array();
  for (const auto& entry : told.entries) considered.push_back(entry_data(entry));
  ordered_json data = {{"translation", told.translation}, {"operation", told.operation}};
  data["source"] = told.traced ? "library trace" : "tables";
  data["found"] = told.steps;
  data["considered"] = considered;
  data["counters"] = counters_data(told);
  data["rule"] = told.rule;
  data["answer"] = told.answer;
  data["result"] = told.result ? ordered_json(*told.result) : ordered_json();
  data["status"] = {{"code", told.status}, {"hex", hex_data(told.status, 8)}, {"name", status_name(told.status)}};
  data["traces"] = told.traces;
  return data;
}

} // namespace

explanation explain_walk(const library_session& session, const walk_question& question, bool fast) {
  library_answer answer;
  explanation told;
  told.translation = question_text(question);
  told.operation = operation_name(question.what);
  told.traces = events_during([&] { answer = ask_library(question, session.ports(), fast); });

  walk_result walked = walk_port_map(question, tables_of(session));
  compare_with_answer(told, walked, answer);
  library_trace trace = read_trace(question.what, told.traces);
  if (makes_trace(question.what)) compare_with_trace(told, question.what, walked, trace);
  told.traced = trace.counters.has_value();
  told.entries = walked.entries;
  if (walked.walked || trace.counters) told.counters = walked.counters;
  told.rule = walked.rule;
  told.status = walked.status;
  told.answer = answer_text(question.what, walked);
  told.result = walked.written;
  return told;
}

explanation explain_interface(const library_session& session, uint32_t if_index, bool skip_lag_check) {
  library_lookup answer;
  explanation told;
  told.translation = fmt::format("{} to PN, PA and index", vswitch::interface_name(if_index));
  told.operation = "ficon_pmap_get_if_to_pnpa_index_with2pmaps";
  told.traces = events_during([&] {
    answer.status = static_cast<uint32_t>(ficon_pmap_get_if_to_pnpa_index_with2pmaps(
        if_index, &answer.entry, &answer.index, nullptr, nullptr, skip_lag_check ? 1 : 0));
  });
  tell_lookup(find_interface(if_index, skip_lag_check, tables_of(session)), answer, told);
  return told;
}

explanation explain_slot(const library_session& session, unsigned slot, unsigned port) {
  port_map_tables tables = tables_of(session);
  library_lookup answer;
  explanation told;
  told.translation = fmt::format("slot {}, port {} to PN, PA and index", slot, port);
  told.operation = "ficonm_platform_slot_to_pnpa_index";
  told.traces = events_during([&] {
    answer.status =
        static_cast<uint32_t>(ficonm_platform_slot_to_pnpa_index(slot - 1, port - 1, &answer.entry, &answer.index));
  });
  number_lookup found;
  find_place(static_cast<uint8_t>(slot - 1), static_cast<uint8_t>(port - 1), tables, found);
  tell_lookup(found, answer, told);
  return told;
}

explanation explain_index(const library_session& session, uint32_t index) {
  port_map_tables tables = tables_of(session);
  uint32_t pn = FICON_PMAP_NO_NUMBER;
  if (index < FICON_PMAP_PORT_ENTRIES) pn = tables.port_to_pn[index].pn;
  uint32_t interface = kUntouched32;
  uint32_t status = 0;
  explanation told;
  told.translation = fmt::format("index {} to interface", index);
  told.operation = "ficon_pmap_get_index_to_if";
  told.traces = events_during([&] { status = ficon_pmap_get_index_to_if(static_cast<int32_t>(index), pn, &interface); });
  tell_index(find_index(index, tables), status, interface, told);
  return told;
}

explanation explain_physical_index(uint32_t index) {
  uint32_t interface = kUntouched32;
  uint32_t status = 0;
  explanation told;
  told.translation = fmt::format("index {} to physical interface", index);
  told.operation = "ficon_pmap_get_index_to_phyif";
  told.traces = events_during([&] { status = ficon_pmap_get_index_to_phyif(static_cast<int32_t>(index), &interface); });
  tell_index(find_physical_index(index), status, interface, told);
  return told;
}

void attach(const std::vector<explanation>& explanations, result_row& row) {
  auto data = std::make_shared<ordered_json>(ordered_json::array());
  for (const auto& told : explanations) {
    if (!row.explanation_text.empty()) row.explanation_text += "\n";
    row.explanation_text += text_of(told);
    data->push_back(data_of(told));
  }
  row.explanation = data;
}

} // namespace chnsw_tool
