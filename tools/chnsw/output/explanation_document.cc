// Showing explanations.
#include "output/explanation_document.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "inspect/words/number_texts.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using inspect::considered_entry;
using inspect::explanation;
using nlohmann::ordered_json;

// ---- Text ----

std::string vsans_text(const ficon_pmap_port_entry& entry) {
  auto vsans = inspect::bound_vsans(entry);
  if (vsans.empty()) return "no VSAN";
  return fmt::format("VSAN{} {}", vsans.size() == 1 ? "" : "s", fmt::join(vsans, " "));
}

std::string entry_text(const considered_entry& seen) {
  std::string text = fmt::format("index {}: PN {}, PA {}, bound to {}, port in VSAN {}", seen.index,
                                 inspect::pn_text(seen.entry.pn), inspect::pa_text(seen.entry.pa), vsans_text(seen.entry),
                                 seen.port_vsan == 0 ? "none" : std::to_string(seen.port_vsan));
  if (seen.if_index) text += ", " + inspect::interface_text(*seen.if_index);
  text += seen.counts ? "; counts" : "; does not count: " + seen.passed_over;
  if (seen.in_vsan) text += "; in the VSAN";
  if (seen.bound) text += "; bound to it";
  return text;
}

std::string counters_text(const inspect::search_counters& counters) {
  std::string text = fmt::format("count {}", counters.count);
  if (counters.use_vsan_table) text += fmt::format(", bound {}, in VSAN {}", counters.bound, counters.in_vsan);
  return text;
}

std::string trace_text(std::string_view trace) {
  while (!trace.empty() && (trace.back() == '\n' || trace.back() == ' ')) trace.remove_suffix(1);
  return inspect::printable(trace);
}

void add_line(std::string_view label, const std::string& value, std::string& text) {
  text += fmt::format("  {:<11} {}\n", label, value);
}

std::string text_of(const explanation& explained) {
  std::string text =
      fmt::format("{} ({}{})\n", explained.translation, explained.operation, explained.traced ? ", traced" : "");
  for (const auto& step : explained.steps) add_line("found", step, text);
  for (const auto& entry : explained.entries) add_line("considered", entry_text(entry), text);
  if (explained.counters && explained.entries.empty()) add_line("considered", "no entry", text);
  if (explained.counters) add_line("counters", counters_text(*explained.counters), text);
  add_line("rule", explained.rule, text);
  add_line("answer", fmt::format("{}, {}", explained.answer, inspect::status_text(explained.status)), text);
  for (const auto& trace : explained.traces) add_line("trace", trace_text(trace), text);
  return text;
}

// ---- Data ----

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
                       {"vsans", inspect::bound_vsans(seen.entry)},
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

ordered_json counters_data(const explanation& explained) {
  if (!explained.counters) return nullptr;
  return {{"count", explained.counters->count},
          {"bound", explained.counters->bound},
          {"in_vsan", explained.counters->in_vsan},
          {"port_to_vsan_used", explained.counters->use_vsan_table}};
}

ordered_json status_data(uint32_t code) {
  return {{"code", code}, {"hex", hex_data(code, 8)}, {"name", inspect::status_name(code)}};
}

ordered_json data_of(const explanation& explained) {
  ordered_json considered = ordered_json::array();
  for (const auto& entry : explained.entries) considered.push_back(entry_data(entry));
  ordered_json data = {{"translation", explained.translation}, {"operation", explained.operation}};
  data["source"] = explained.traced ? "library trace" : "tables";
  data["found"] = explained.steps;
  data["considered"] = considered;
  data["counters"] = counters_data(explained);
  data["rule"] = explained.rule;
  data["answer"] = explained.answer;
  data["result"] = explained.result ? ordered_json(*explained.result) : ordered_json();
  data["status"] = status_data(explained.status);
  data["traces"] = explained.traces;
  return data;
}

} // namespace

void attach(const std::vector<explanation>& explanations, result_row& row) {
  auto data = std::make_shared<ordered_json>(ordered_json::array());
  for (const auto& explained : explanations) {
    if (!row.explanation_text.empty()) row.explanation_text += "\n";
    row.explanation_text += text_of(explained);
    data->push_back(data_of(explained));
  }
  row.explanation = data;
}

} // namespace chnsw_tool
