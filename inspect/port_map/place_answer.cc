// Answers about one place: an interface, a slot and port, a port map index.
#include "inspect/port_map/port_answer.h"
#include "inspect/port_map/port_place.h"
#include "libchnsw.h"

namespace inspect {

namespace {

void ask_physical_interface(port_answer& answer) {
  if (!answer.index || *answer.index >= FICON_PMAP_PHYS_ENTRIES) return;
  uint32_t physical = 0;
  answer.phyif_status = ficon_pmap_get_index_to_phyif(static_cast<int32_t>(*answer.index), &physical);
  answer.phyif_index = physical;
}

// What the library found by an interface or a slot. It may be content and find nothing: when it cannot tell whether a port is
// in a port-channel, it answers 0 and writes nothing.
struct found_entry {
  ficon_pmap_port_entry entry{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  uint32_t index = FICON_PMAP_PORT_ENTRIES;
};

void take_over(const found_entry& found, port_answer& answer) {
  if (*answer.status != 0 || found.index >= FICON_PMAP_PORT_ENTRIES) return;
  answer.pn = found.entry.pn;
  answer.pa = found.entry.pa;
  answer.index = found.index;
  ask_physical_interface(answer);
}

// Whether the port stands in the map; if not, the answer says where it would stand.
bool may_ask_place(std::optional<uint32_t> place, port_answer& answer) {
  if (!place || *place < FICON_PMAP_PORT_ENTRIES) return true;
  answer.index = place;
  answer.unasked = not_asked{not_asked::cause::index_beyond_map, *place, FICON_PMAP_PORT_ENTRIES - 1};
  return false;
}

// An index without a port has the interface of its number; the library looks that up without a test.
bool may_ask_number(uint32_t pn, uint32_t ports, port_answer& answer) {
  if (*answer.index < FICON_PMAP_PHYS_ENTRIES || pn < ports || pn == FICON_PMAP_NO_NUMBER) return true;
  answer.unasked = not_asked{not_asked::cause::number_beyond_table, pn, ports - 1};
  return false;
}

} // namespace

port_answer answer_interface(const library_session& session, uint32_t if_index, bool skip_lag_check) {
  port_answer answer;
  answer.if_index = if_index;
  if (!may_ask_place(port_map_place(if_index), answer)) return complete(session, answer);
  found_entry found;
  answer.status = static_cast<uint32_t>(ficon_pmap_get_if_to_pnpa_index_with2pmaps(
      if_index, &found.entry, &found.index, nullptr, nullptr, skip_lag_check ? 1 : 0));
  take_over(found, answer);
  return complete(session, answer);
}

port_answer answer_slot(const library_session& session, const vswitch::fc_port& port) {
  port_answer answer;
  answer.if_index = vswitch::fc_port_index(port.slot, port.port);
  if (!may_ask_place(port_map_place(port.slot, port.port), answer)) return complete(session, answer);
  session.port_to_pn(); // the library reads the table as it is
  found_entry found;
  answer.status =
      static_cast<uint32_t>(ficonm_platform_slot_to_pnpa_index(port.slot - 1, port.port - 1, &found.entry, &found.index));
  take_over(found, answer);
  return complete(session, answer);
}

port_answer answer_index(const library_session& session, uint32_t index) {
  port_answer answer;
  answer.index = index;
  uint32_t pn = FICON_PMAP_NO_NUMBER;
  if (index < FICON_PMAP_PORT_ENTRIES) {
    const auto& entry = session.port_to_pn()[index];
    pn = entry.pn;
    answer.pn = entry.pn;
    answer.pa = entry.pa;
  }
  if (!may_ask_number(pn, session.ports(), answer)) return complete(session, answer);
  uint32_t interface = 0;
  answer.status = ficon_pmap_get_index_to_if(static_cast<int32_t>(index), pn, &interface);
  answer.if_index = interface;
  ask_physical_interface(answer);
  return complete(session, answer);
}

} // namespace inspect
