// What is wrong, or worth knowing, in a port map, by the answers that the library gives.
#ifndef INSPECT_MAP_FINDINGS_H
#define INSPECT_MAP_FINDINGS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/session/library_session.h"

namespace inspect {

enum class finding_kind {
  ambiguous,   // several ports answer for a number
  unreachable, // a number that is given to a port does not lead there
  unbound,     // a port with numbers is bound to no VSAN, or not to the one that it is in
  incomplete,  // a port has one number and lacks the other
  mismatch,    // the tables contradict each other
  // Not wrong:
  shared,    // an address that several VSANs use; ambiguous only without a VSAN
  member,    // a port-channel's member does not answer for its number
  reserved,  // a number that is kept for a port or an interface that is not there
  unnumbered // a port without numbers
};

const char* kind_name(finding_kind kind);
bool is_note(finding_kind kind); // not wrong, but good to know

struct finding {
  finding_kind kind;
  std::string what; // "PA 20", "PN 12", "fc3/5"
  std::optional<uint32_t> vsan;
  std::vector<uint16_t> indexes;
  uint32_t status = 0; // the library's answer
  std::string why;
};

// Findings before notes, each in the order of what they are about. Throws a platform error when the library fails.
std::vector<finding> find_in_map(const library_session& session);

} // namespace inspect

#endif
