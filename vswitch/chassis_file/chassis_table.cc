// [chassis]
#include <algorithm>

#include "chassis_file/chassis_reading.h"

namespace vswitch {

namespace {

constexpr number_range kTypes{INT32_MIN, INT32_MAX};
constexpr number_range kCounters{1, UINT32_MAX};

void read_slots(chassis_reading& reading, table_reader& chassis) {
  auto slots = chassis.required_number("slots", kSlots);
  if (!slots) return;
  reading.slots_known = true;
  reading.chassis.platform_record[2] = static_cast<uint8_t>(*slots);
}

void read_supervisor(chassis_reading& reading, const toml::node& value) {
  auto slot = number_in(value, "a supervisor's slot", {1, reading.chassis.slots()}, reading.problems);
  reading.supervisors_known = reading.supervisors_known && slot.has_value();
  if (!slot) return;
  const auto number = static_cast<unsigned>(*slot);
  auto& supervisors = reading.chassis.supervisors;
  if (std::find(supervisors.begin(), supervisors.end(), number) != supervisors.end())
    reading.problems.add(value,
                         "slot " + std::to_string(number) + " stands twice in supervisors; expected is every slot once");
  else
    supervisors.push_back(number);
}

void read_supervisors(chassis_reading& reading, table_reader& chassis) {
  constexpr std::string_view expected = "a list of slots such as [5, 6], or [] for none";
  const auto supervisors = chassis.array("supervisors", expected);
  reading.supervisors_known = supervisors != nullptr || (!chassis.has("supervisors") && reading.chassis.slots() <= 2);
  if (!chassis.has("supervisors") && reading.chassis.slots() > 2) chassis.missing("supervisors", expected);
  if (supervisors == nullptr) return;
  for (const toml::node& slot : *supervisors) read_supervisor(reading, slot);
  std::sort(reading.chassis.supervisors.begin(), reading.chassis.supervisors.end());
}

void read_platform_record(chassis_reading& reading, table_reader& chassis) {
  const auto record = chassis.bytes("platform_record", reading.chassis.platform_record.size());
  if (!record) return;
  const unsigned slots = reading.chassis.slots();
  if (reading.slots_known && (*record)[2] != slots)
    reading.problems.add(*chassis.find("platform_record"), "byte 2 of platform_record is " + std::to_string((*record)[2]) +
                                                               "; it is the number of slots, which is " +
                                                               std::to_string(slots));
  std::copy(record->begin(), record->end(), reading.chassis.platform_record.begin());
}

void read_records(chassis_reading& reading, table_reader& chassis) {
  read_platform_record(reading, chassis);
  if (auto bytes = chassis.bytes("port_vsan_array", reading.chassis.map.vsan_array.size()))
    std::copy(bytes->begin(), bytes->end(), reading.chassis.map.vsan_array.begin());
  reading.chassis.change_counter = static_cast<uint32_t>(chassis.number("change_counter", kCounters).value_or(1));
}

} // namespace

void read_chassis(chassis_reading& reading, const toml::node* chassis) {
  if (chassis == nullptr) {
    reading.problems.add(place(), "there is no [chassis]; expected is a table that begins with [chassis]");
    return;
  }
  if (!chassis->is_table()) {
    reading.problems.add(*chassis, "chassis is " + shown(*chassis) + "; expected is a table that begins with [chassis]");
    return;
  }
  table_reader table(*chassis->as_table(), "[chassis]", reading.problems);
  table.allow_only({"name", "slots", "type", "supervisors", "platform_record", "change_counter", "port_vsan_array"});
  reading.chassis.name = table.text("name").value_or("");
  read_slots(reading, table);
  if (reading.slots_known) read_supervisors(reading, table);
  reading.chassis.type = static_cast<int32_t>(table.required_number("type", kTypes).value_or(0));
  read_records(reading, table);
}

} // namespace vswitch
