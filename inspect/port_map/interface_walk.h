// The walk over the numbered ports: the next one after an interface, the last one of its line card.
#ifndef INSPECT_INTERFACE_WALK_H
#define INSPECT_INTERFACE_WALK_H

#include <cstdint>
#include <vector>

#include "inspect/port_map/port_answer.h"

namespace inspect {

// One step. The answer's status is that of the step; with 0 its other values are those of the port that was found. A walk
// asks nothing about physical interfaces or VSANs.
struct walk_step {
  uint32_t from; // the interface
  port_answer found;

  bool is_found() const { return found.status == 0U; }
};

walk_step step_to_next(const library_session& session, uint32_t from);
walk_step step_to_last(const library_session& session, uint32_t from);

// Every step from an interface on. Where a walk that found anything ends for want of a next port, that is no step of its own;
// any other end is the last step.
struct whole_walk {
  std::vector<walk_step> steps;
  bool reached_end = false;
};

whole_walk walk_to_end(const library_session& session, uint32_t from);

} // namespace inspect

#endif
