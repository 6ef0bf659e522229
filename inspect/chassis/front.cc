// Looking at the chassis front.
#include "inspect/chassis/front.h"

#include <algorithm>
#include <map>
#include <set>

#include "inspect/enum_rows.h"
#include "libchnsw.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

struct content_row {
  slot_content content;
  const char* name;
};

constexpr content_row kContents[] = {
    {slot_content::card, "card"}, {slot_content::supervisor, "supervisor"}, {slot_content::empty, "empty"}};
static_assert(has_row_for_each(kContents, &content_row::content, slot_content::empty));

std::optional<uint32_t> assigned(uint16_t number) {
  if (number == FICON_PMAP_NO_NUMBER) return std::nullopt;
  return number;
}

front_port port_of(const library_session& session, unsigned slot, unsigned port) {
  front_port result;
  result.port = port;
  result.if_index = vswitch::fc_port_index(slot, port);
  result.channel = vswitch::channel_of(session.chassis(), result.if_index);
  auto index = vswitch::port_map_index(session.chassis(), slot, port);
  if (!index) return result;
  result.index = *index;
  result.pn = assigned(session.port_to_pn()[*index].pn);
  result.pa = assigned(session.port_to_pn()[*index].pa);
  result.vsan = session.port_to_vsan()[*index];
  return result;
}

front_slot slot_of(const library_session& session, unsigned slot) {
  const auto& chassis = session.chassis();
  front_slot result;
  result.slot = slot;
  if (std::find(chassis.supervisors.begin(), chassis.supervisors.end(), slot) != chassis.supervisors.end())
    result.holds = slot_content::supervisor;
  const auto* card = vswitch::card_in_slot(chassis, slot);
  if (card == nullptr) return result;
  result.holds = slot_content::card;
  result.name = card->name;
  for (unsigned port = 1; port <= card->ports; ++port) result.ports.push_back(port_of(session, slot, port));
  return result;
}

std::set<uint32_t> vsans_in(const chassis_front& front) {
  std::set<uint32_t> vsans;
  for (const auto& slot : front.slots)
    for (const auto& port : slot.ports)
      if (port.vsan != 0) vsans.insert(port.vsan);
  return vsans;
}

// Lists the VSANs, and tells every port where in the list its own stands.
void add_vsans(const vswitch::chassis_description& chassis, chassis_front& front) {
  std::map<uint32_t, size_t> places;
  for (uint32_t vsan : vsans_in(front)) {
    places[vsan] = front.vsans.size();
    auto known = chassis.vsans.find(static_cast<uint16_t>(vsan));
    front.vsans.push_back({vsan, known == chassis.vsans.end() ? "" : known->second});
  }
  for (auto& slot : front.slots)
    for (auto& port : slot.ports)
      if (port.vsan != 0) port.vsan_place = places[port.vsan];
}

} // namespace

const char* content_name(slot_content content) {
  return kContents[static_cast<size_t>(content)].name;
}

chassis_front front_of(const library_session& session) {
  const auto& chassis = session.chassis();
  chassis_front front;
  front.name = chassis.name;
  front.type = chassis.type;
  for (unsigned slot = 1; slot <= chassis.slots(); ++slot) front.slots.push_back(slot_of(session, slot));
  add_vsans(chassis, front);
  return front;
}

} // namespace inspect
