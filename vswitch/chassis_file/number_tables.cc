// [[binding]] and [[address]]: what port numbers and port addresses stand for.
#include "chassis_file/chassis_reading.h"

namespace vswitch {

namespace {

// Names stand for interfaces that are described; an index in hexadecimal is taken as it is, since the table can hold any.
std::optional<uint32_t> read_bound_interface(chassis_reading& reading, table_reader& binding) {
  auto if_index = read_interface_name(reading, binding, "an interface such as \"port-channel5\", \"fcip3\" or \"fc1/5\"");
  if (!if_index) return std::nullopt;
  const toml::node& where = *binding.find("interface");
  if (!where.value_exact<std::string>()->starts_with("0x")) interface_is_there(reading, where, *if_index);
  return if_index;
}

std::optional<number_run> read_address_run(chassis_reading& reading, table_reader& table) {
  const toml::node* where = table.find("pa");
  if (where == nullptr) return std::nullopt;
  const auto run = number_run_in(*where);
  if (run && kAddressNumbers.holds(run->first) && kAddressNumbers.holds(run->last)) return run;
  reading.problems.add(*where, "pa is " + shown(*where) + "; expected is a number or a run such as \"0x20-0x2F\", " +
                                   kAddressNumbers.text());
  return std::nullopt;
}

// Whether the address was not described before.
bool claim_address(chassis_reading& reading, const toml::node& where, int64_t pa) {
  auto& first = reading.addresses[static_cast<size_t>(pa)];
  if (first) {
    reading.problems.add(where,
                         "port address " + std::to_string(pa) + " is described twice; the first time " + in_line(*first));
    return false;
  }
  first = place_of(where);
  return true;
}

void refuse_count(chassis_reading& reading, const toml::node& where, int64_t pn, const number_run& addresses) {
  reading.problems.add(where, "pn counts from " + std::to_string(pn) + " over " +
                                  std::to_string(addresses.last - addresses.first + 1) +
                                  " port addresses; the highest number is " + std::to_string(kTableNumbers.highest));
}

} // namespace

void read_binding(chassis_reading& reading, table_reader& table) {
  table.allow_only({"pn", "interface"});
  auto pn = table.required_number("pn", kAddressNumbers);
  auto if_index = read_bound_interface(reading, table);
  if (!pn) return;
  auto& first = reading.bound[static_cast<size_t>(*pn)];
  if (first) {
    reading.problems.add(*table.find("pn"), "port number " + std::to_string(*pn) + " is bound twice; the first time " +
                                                in_line(*first) + ", and a number answers for one interface");
    return;
  }
  first = place_of(*table.find("pn"));
  reading.chassis.map.pn_to_if[static_cast<size_t>(*pn)] = if_index.value_or(0);
}

void read_address(chassis_reading& reading, table_reader& table) {
  table.allow_only({"pa", "pn"});
  if (!table.has("pa")) table.missing("pa", "a number or a run such as \"0x20-0x2F\", " + kAddressNumbers.text());
  const auto pn = table.required_number("pn", kTableNumbers);
  const auto addresses = read_address_run(reading, table);
  if (!addresses) return;
  for (int64_t pa = addresses->first; pa <= addresses->last; ++pa) {
    if (!claim_address(reading, *table.find("pa"), pa)) return;
    if (!pn) continue;
    const int64_t counted = *pn + pa - addresses->first;
    if (counted > kTableNumbers.highest) return refuse_count(reading, *table.find("pn"), *pn, *addresses);
    reading.chassis.map.pa_to_pn[static_cast<size_t>(pa)] = static_cast<uint16_t>(counted);
  }
}

} // namespace vswitch
