// The calls of the library that are explained, each worked out from the tables and held against the library's own answer.
#ifndef INSPECT_EXPLAINED_CALLS_H
#define INSPECT_EXPLAINED_CALLS_H

#include <cstdint>
#include <string>

#include "inspect/port_map/explanation.h"

namespace inspect {

// fast: the library reads its cached tables.
explanation explain_search(const library_session& session, const search_question& question, bool fast);

// To port number, port address and index.
explanation explain_interface_to_number(const library_session& session, uint32_t if_index, bool skip_lag_check);
explanation explain_slot_to_number(const library_session& session, const vswitch::fc_port& port);

explanation explain_index_to_interface(const library_session& session, uint32_t index);
explanation explain_index_to_physical_interface(uint32_t index);

// ---- What they share ----

// What outputs hold before a call, so that an output that was left alone is told from one that was written.
inline constexpr uint16_t kUntouched16 = 0xEEEE;
inline constexpr uint32_t kUntouched32 = 0xEEEEEEEE;

// Throws the platform error that the library and the explanation differ.
[[noreturn]] void report_disagreement(const explanation& explained, const std::string& how);
void require_same_status(const explanation& explained, uint32_t library_status);

} // namespace inspect

#endif
