// Why the library answered as it did: every entry that was considered, the counters, and the rule that decided.
#ifndef CHNSW_EXPLANATION_H
#define CHNSW_EXPLANATION_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "inspect/port_map/port_map_walk.h"
#include "inspect/session/library_session.h"
#include "output/result_document.h"

namespace chnsw_tool {

// One call of the library, explained. Every explanation is worked out from the tables and compared with what the library
// answered, and traced where it traces; a difference ends the command as an internal error.
struct explanation {
  std::string translation; // "PA C0 to PN in VSAN 10"
  std::string operation;   // the library's name for it
  bool traced = false;     // whether entries and counters are in the library's own trace
  std::vector<considered_entry> entries;
  std::optional<walk_counters> counters;
  std::vector<std::string> steps; // what was found on the way, where no entries are counted
  std::string rule;
  uint32_t status = 0;
  std::string answer;             // in words
  std::optional<uint32_t> result; // as a number, 0 for no interface
  std::vector<std::string> traces;
};

// fast: the library reads its cached tables.
explanation explain_walk(const library_session& session, const walk_question& question, bool fast);

// Interface to PN, PA and index.
explanation explain_interface(const library_session& session, uint32_t if_index, bool skip_lag_check);

// Slot and port (from 1) to PN, PA and index.
explanation explain_slot(const library_session& session, unsigned slot, unsigned port);

// Index to interface, and to physical interface.
explanation explain_index(const library_session& session, uint32_t index);
explanation explain_physical_index(uint32_t index);

// Puts explanations beside a row's values.
void attach(const std::vector<explanation>& explanations, result_row& row);

} // namespace chnsw_tool

#endif
