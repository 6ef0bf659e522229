// The port numbers that are bound to an interface directly, most of them to a logical one.
#ifndef INSPECT_BOUND_NUMBERS_H
#define INSPECT_BOUND_NUMBERS_H

#include <cstdint>
#include <vector>

#include "inspect/session/library_session.h"

namespace inspect {

struct bound_number {
  uint32_t pn;
  uint32_t if_index;
  std::vector<uint32_t> members; // interfaces that it bundles
};

// The library's list. Throws a platform error when it cannot be read.
std::vector<bound_number> bound_numbers(const library_session& session);

} // namespace inspect

#endif
