// Why the library answered as it did: every entry that was considered, the counters, and the rule that decided.
#ifndef INSPECT_EXPLANATION_H
#define INSPECT_EXPLANATION_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/port_map/port_answer.h"
#include "inspect/port_map/port_map_search.h"
#include "inspect/session/library_session.h"

namespace inspect {

// One call of the library, explained. Every explanation is worked out from the tables and compared with what the library
// answered, and traced where it traces; where they differ, a platform error is thrown.
struct explanation {
  std::string translation; // "PA C0 to PN in VSAN 10"
  std::string operation;   // the library's name for it
  bool traced = false;     // whether entries and counters are in the library's own trace
  std::vector<considered_entry> entries;
  std::optional<search_counters> counters;
  std::vector<std::string> steps; // what was found on the way, where no entries are counted
  std::string rule;
  uint32_t status = 0;
  std::string answer;             // in words
  std::optional<uint32_t> result; // as a number, 0 for no interface
  std::vector<std::string> traces;
};

// Every call behind an answer, in the order in which they follow from each other; none where the library was not asked. The
// options are those that the answer was asked with.
std::vector<explanation> explain_address(const library_session& session, const port_answer& answer,
                                         const search_options& options);
std::vector<explanation> explain_number(const library_session& session, const port_answer& answer,
                                        const search_options& options);
std::vector<explanation> explain_interface(const library_session& session, const port_answer& answer, bool skip_lag_check);
std::vector<explanation> explain_slot(const library_session& session, const port_answer& answer);
std::vector<explanation> explain_index(const library_session& session, const port_answer& answer);

} // namespace inspect

#endif
