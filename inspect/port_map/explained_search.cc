// Explaining a translation that chooses among several ports.
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "inspect/port_map/explained_calls.h"
#include "inspect/port_map/library_trace.h"
#include "inspect/words/number_texts.h"
#include "libchnsw.h"

namespace inspect {

namespace {

struct library_answer {
  uint32_t status = 0;
  std::optional<uint32_t> written;
  uint32_t flag = 0;
};

const uint32_t* vsan_of(const search_question& question) {
  return question.vsan ? &*question.vsan : nullptr;
}

using number_translation = uint32_t (*)(int32_t, const uint32_t*, uint16_t*, uint32_t*, int32_t);

library_answer ask_number(number_translation ask, const search_question& question, bool fast) {
  uint16_t number = kUntouched16;
  library_answer answer;
  answer.status = ask(static_cast<int32_t>(question.number), vsan_of(question), &number, &answer.flag, fast ? 1 : 0);
  if (number != kUntouched16) answer.written = number;
  return answer;
}

library_answer ask_interface(const search_question& question, uint32_t ports, bool fast) {
  uint32_t interface = kUntouched32;
  library_answer answer;
  auto pn = static_cast<int32_t>(question.number);
  answer.status = question.what == translation::pn_to_if
                      ? ficon_pmap_get_pn_to_if_withpvsan(pn, vsan_of(question), &interface, &answer.flag, fast ? 1 : 0)
                      : ficon_pmap_get_pn_to_phyif_withpvsan(pn, vsan_of(question), static_cast<int32_t>(ports), &interface,
                                                             nullptr, &answer.flag);
  if (interface != kUntouched32) answer.written = interface;
  return answer;
}

library_answer ask_library(const search_question& question, uint32_t ports, bool fast) {
  if (question.what == translation::pa_to_pn) return ask_number(ficon_pmap_get_pa_to_pn_withpvsan, question, fast);
  if (question.what == translation::pn_to_pa) return ask_number(ficon_pmap_get_pn_to_pa_withpvsan, question, fast);
  return ask_interface(question, ports, fast);
}

std::string question_text(const search_question& question) {
  const auto& rules = rules_of(question.what);
  std::string text = rules.name;
  text.insert(2, " " + (rules.by_address ? pa_text(question.number) : std::to_string(question.number)));
  return question.vsan ? fmt::format("{} in VSAN {}", text, *question.vsan) : text;
}

std::string result_text(translation what, uint32_t result) {
  if (what == translation::pa_to_pn) return "PN " + pn_text(result);
  if (what == translation::pn_to_pa) return "PA " + pa_text(result);
  return interface_text(result);
}

std::string answer_text(translation what, const search_result& found) {
  if (!found.written) return "nothing is handed back";
  std::string text = result_text(what, *found.written);
  return found.status == 0 ? text : text + " is handed back";
}

// ---- Held against the library ----

void compare_with_answer(const explanation& explained, const search_result& found, const library_answer& answer) {
  require_same_status(explained, answer.status);
  if (answer.written != found.written || answer.flag != found.flag)
    report_disagreement(explained, "the library handed back another result than the tables give");
}

bool is_same_entry(bool by_address, const considered_entry& seen, const traced_entry& traced) {
  uint32_t place = by_address ? seen.index : seen.if_index.value_or(0);
  return place == traced.place && seen.entry.pn == traced.entry.pn && (!by_address || seen.entry.pa == traced.entry.pa) &&
         std::memcmp(seen.entry.vsans, traced.entry.vsans, sizeof traced.entry.vsans) == 0;
}

void compare_with_trace(const explanation& explained, const translation_rules& rules, const search_result& found,
                        const library_trace& trace) {
  // For a port number the library traces only the entries that count, for a port address every entry that carries it.
  std::vector<considered_entry> expected;
  std::copy_if(found.entries.begin(), found.entries.end(), std::back_inserter(expected),
               [&rules](const auto& seen) { return rules.by_address || seen.counts; });
  bool same =
      std::equal(expected.begin(), expected.end(), trace.entries.begin(), trace.entries.end(),
                 [&rules](const auto& seen, const auto& traced) { return is_same_entry(rules.by_address, seen, traced); });
  if (!same) report_disagreement(explained, "the library traced other entries than the tables hold");
  bool traces_counters = found.searched || (rules.by_address && found.status == FICON_RC_PLATFORM);
  if (trace.counters.has_value() != traces_counters)
    report_disagreement(explained, "the library's trace has no counters where it should");
  if (trace.counters && *trace.counters != found.counters)
    report_disagreement(explained, "the library counted otherwise than the tables give");
}

} // namespace

explanation explain_search(const library_session& session, const search_question& question, bool fast) {
  const auto& rules = rules_of(question.what);
  library_answer answer;
  explanation explained;
  explained.translation = question_text(question);
  explained.operation = rules.operation;
  explained.traces = events_during([&] { answer = ask_library(question, session.ports(), fast); });

  search_result found = search_port_map(question, tables_of(session));
  explained.status = found.status;
  compare_with_answer(explained, found, answer);
  library_trace trace = read_trace(question.what, explained.traces);
  if (rules.is_traced) compare_with_trace(explained, rules, found, trace);
  explained.traced = trace.counters.has_value();
  explained.entries = found.entries;
  if (found.searched || trace.counters) explained.counters = found.counters;
  explained.rule = found.rule;
  explained.answer = answer_text(question.what, found);
  explained.result = found.written;
  return explained;
}

} // namespace inspect
