// Walking from interface to interface with the library.
#include "inspect/port_map/interface_walk.h"

#include "inspect/port_map/port_place.h"
#include "libchnsw.h"

namespace inspect {

namespace {

using library_walk = int32_t (*)(uint32_t, uint32_t*);

void describe_found(const library_session& session, uint32_t found, port_answer& answer) {
  answer.if_index = found;
  answer.index = port_map_place(found);
  if (!answer.index || *answer.index >= FICON_PMAP_PORT_ENTRIES) return;
  answer.pn = session.port_to_pn()[*answer.index].pn;
  answer.pa = session.port_to_pn()[*answer.index].pa;
}

walk_step take_step(const library_session& session, library_walk walk, uint32_t from) {
  port_answer answer;
  auto place = port_map_place(from);
  if (place && *place >= FICON_PMAP_PORT_ENTRIES) {
    answer.unasked = not_asked{not_asked::cause::index_beyond_map, *place, FICON_PMAP_PORT_ENTRIES - 1};
    return {from, answer};
  }
  uint32_t found = 0;
  answer.status = static_cast<uint32_t>(walk(from, &found));
  if (answer.status == 0U) describe_found(session, found, answer);
  return {from, complete(session, answer)};
}

} // namespace

walk_step step_to_next(const library_session& session, uint32_t from) {
  return take_step(session, ficon_pmap_get_next_if, from);
}

walk_step step_to_last(const library_session& session, uint32_t from) {
  return take_step(session, ficon_pmap_get_last_if, from);
}

whole_walk walk_to_end(const library_session& session, uint32_t from) {
  whole_walk walk;
  walk_step step = step_to_next(session, from);
  while (step.is_found()) {
    walk.steps.push_back(step);
    step = step_to_next(session, *step.found.if_index);
  }
  walk.reached_end = !walk.steps.empty() && step.found.status == uint32_t{FICON_RC_PLATFORM};
  if (!walk.reached_end) walk.steps.push_back(step);
  return walk;
}

} // namespace inspect
