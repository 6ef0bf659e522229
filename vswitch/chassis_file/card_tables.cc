// [[line_card]] and [[vsan]]
#include <algorithm>

#include "chassis_file/chassis_reading.h"

namespace vswitch {

namespace {

constexpr number_range kPortsOfCard{1, FICON_PMAP_PORTS_PER_LC};

bool slot_takes_card(chassis_reading& reading, const toml::node& where, unsigned slot) {
  const auto& supervisors = reading.chassis.supervisors;
  if (std::find(supervisors.begin(), supervisors.end(), slot) != supervisors.end()) {
    reading.problems.add(where,
                         "slot " + std::to_string(slot) + " holds a supervisor; a line card needs a slot without one");
    return false;
  }
  auto first = reading.cards.find(slot);
  if (first == reading.cards.end()) return true;
  reading.problems.add(where, "slot " + std::to_string(slot) + " has two line cards; the first one stands " +
                                  in_line(first->second) + ", and a slot takes one");
  return false;
}

} // namespace

void read_line_card(chassis_reading& reading, table_reader& table) {
  table.allow_only({"slot", "ports", "name"});
  const number_range slots{1, reading.slots_known ? reading.chassis.slots() : kSlots.highest};
  auto slot = table.required_number("slot", slots);
  auto ports = table.required_number("ports", kPortsOfCard);
  std::string name = table.text("name").value_or("");
  if (!slot) return;
  const auto number = static_cast<unsigned>(*slot);
  if (!slot_takes_card(reading, *table.find("slot"), number)) return;
  if (!ports) reading.doubtful_cards.insert(number);
  const place where = place_of(*table.find("slot"));
  reading.cards.emplace(number, where);
  reading.chassis.line_cards.push_back({number, static_cast<unsigned>(ports.value_or(0)), std::move(name)});
  if (reading.card_places != nullptr) reading.card_places->push_back({number, where.line, where.column});
}

void read_vsan(chassis_reading& reading, table_reader& vsan) {
  vsan.allow_only({"number", "name"});
  auto number = vsan.required_number("number", kVsans);
  std::string name = vsan.text("name").value_or("");
  if (!number) return;
  if (!reading.chassis.vsans.emplace(static_cast<uint16_t>(*number), std::move(name)).second)
    reading.problems.add(*vsan.find("number"), "VSAN " + std::to_string(*number) + " is described twice; expected is once");
}

} // namespace vswitch
