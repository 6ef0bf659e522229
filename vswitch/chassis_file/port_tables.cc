// [[port]]
#include "chassis_file/chassis_reading.h"
#include "vswitch/interface_index.h"
#include "vswitch/port_place.h"

namespace vswitch {

namespace {

constexpr number_range kIndexes{0, FICON_PMAP_PORT_ENTRIES - 1};

// A port map index as people know it.
std::string index_name(chassis_reading& reading, unsigned index) {
  const std::string number = "index " + std::to_string(index);
  auto port = port_at_index(reading.chassis, index);
  return port ? interface_name(*port) + " (" + number + ")" : number;
}

void claim_indexes(chassis_reading& reading, const toml::node& where, unsigned first, unsigned count) {
  for (unsigned index = first; index < first + count; ++index) {
    if (reading.indexes[index]) {
      reading.problems.add(
          where, index_name(reading, index) + " is described twice; the first time " + in_line(*reading.indexes[index]));
      return;
    }
    reading.indexes[index] = place_of(where);
  }
}

void refuse_beyond_map(chassis_reading& reading, const toml::node& where, const port_run& ports) {
  const unsigned line_card = *line_card_number(reading.chassis, ports.slot);
  const unsigned before = line_card * FICON_PMAP_PORTS_PER_LC;
  const std::string room = has_entry(before)
                               ? "ports 1 to " + std::to_string(kEndOfPhysicalEntries - before) + " of this card"
                               : "none of this card's ports";
  reading.problems.add(where, interface_name(fc_port_index(ports.slot, ports.last)) +
                                  " is beyond the port map, whose physical ports have indexes 0 to " +
                                  std::to_string(kEndOfPhysicalEntries - 1) + " (line card " + std::to_string(line_card) +
                                  " x 254 + port); it has room for " + room);
}

bool read_port_interface(chassis_reading& reading, table_reader& port, unsigned& first, unsigned& count) {
  const toml::node& where = *port.find("interface");
  auto ports = ports_of(reading, where, "interface");
  if (!ports) return false;
  count = ports->count();
  if (!ports_are_there(reading, where, *ports)) return false;
  auto begin = port_map_index(reading.chassis, ports->slot, ports->first);
  if (begin && port_map_index(reading.chassis, ports->slot, ports->last)) {
    first = *begin;
    return true;
  }
  refuse_beyond_map(reading, where, *ports);
  return false;
}

bool read_port_index(chassis_reading& reading, table_reader& port, unsigned& first, unsigned& count) {
  const toml::node& where = *port.find("index");
  const auto run = number_run_in(where);
  if (!run) {
    reading.problems.add(
        where, "index is " + shown(where) + "; expected is a number or a run such as \"1024-1037\", " + kIndexes.text());
    return false;
  }
  if (!kIndexes.holds(run->first) || !kIndexes.holds(run->last)) {
    reading.problems.add(where, "index is " + shown(where) + "; allowed are " + kIndexes.text());
    return false;
  }
  first = static_cast<unsigned>(run->first);
  count = static_cast<unsigned>(run->last - run->first + 1);
  return true;
}

bool read_port_place(chassis_reading& reading, table_reader& port, unsigned& first, unsigned& count) {
  const bool by_interface = port.has("interface");
  const bool by_index = port.has("index");
  if (by_interface && by_index)
    reading.problems.add(*port.find("index"), "[[port]] has both interface and index; expected is one of them");
  if (!by_interface && !by_index) port.missing("interface", std::string(kPortsExpected) + ", or an index");
  if (by_interface == by_index) return false;
  if (!(by_interface ? read_port_interface(reading, port, first, count) : read_port_index(reading, port, first, count)))
    return false;
  claim_indexes(reading, *port.find(by_interface ? "interface" : "index"), first, count);
  return true;
}

std::optional<unsigned> counted_number(chassis_reading& reading, table_reader& port, const char* key, unsigned count) {
  auto number = port.number(key, kTableNumbers);
  if (!number) return std::nullopt;
  if (*number + count - 1 <= kTableNumbers.highest) return static_cast<unsigned>(*number);
  reading.problems.add(*port.find(key), std::string(key) + " counts from " + std::to_string(*number) + " over " +
                                            std::to_string(count) + " ports; the highest number is " +
                                            std::to_string(kTableNumbers.highest));
  return std::nullopt;
}

bool read_port_vsans(chassis_reading& reading, table_reader& port, ficon_pmap_port_entry& entry) {
  if (!port.has("vsans")) return true;
  const toml::array* vsans = port.array("vsans", "a list of VSANs such as [10, 20]");
  if (vsans == nullptr) return false;
  if (vsans->size() > FICON_PMAP_VSAN_SLOTS) {
    reading.problems.add(*vsans, "vsans has " + std::to_string(vsans->size()) + " VSANs; a port is bound to at most " +
                                     std::to_string(FICON_PMAP_VSAN_SLOTS));
    return false;
  }
  bool all_good = true;
  for (size_t i = 0; i < vsans->size(); ++i) {
    auto vsan = number_in(*vsans->get(i), "a VSAN", kVsans, reading.problems);
    all_good = all_good && vsan;
    entry.vsans[i] = static_cast<uint16_t>(vsan.value_or(0));
  }
  return all_good;
}

std::optional<unsigned> read_current_vsan(chassis_reading& reading, table_reader& port, unsigned by_default) {
  const toml::node* value = port.find("vsan");
  if (value == nullptr) return by_default;
  if (value->value_exact<std::string>() == "none") return 0;
  if (value->is_string()) {
    reading.problems.add(*value, "vsan is " + shown(*value) + "; expected is a number, " + kVsans.text() + ", or \"none\"");
    return std::nullopt;
  }
  auto vsan = number_in(*value, "vsan", kVsans, reading.problems);
  return vsan ? std::optional(static_cast<unsigned>(*vsan)) : std::nullopt;
}

} // namespace

void read_port(chassis_reading& reading, table_reader& table) {
  table.allow_only({"interface", "index", "pn", "pa", "vsans", "vsan"});
  unsigned first = 0;
  unsigned count = 1;
  const bool placed = read_port_place(reading, table, first, count);
  auto pn = counted_number(reading, table, "pn", count);
  auto pa = counted_number(reading, table, "pa", count);
  ficon_pmap_port_entry entry{FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  const bool bound = read_port_vsans(reading, table, entry);
  auto vsan = read_current_vsan(reading, table, entry.vsans[0]);
  if (!placed || !bound || !vsan) return;
  for (unsigned i = 0; i < count; ++i) {
    if (pn) entry.pn = static_cast<uint16_t>(*pn + i);
    if (pa) entry.pa = static_cast<uint16_t>(*pa + i);
    reading.chassis.map.port_to_pn[first + i] = entry;
    reading.chassis.map.port_to_vsan[first + i] = static_cast<uint16_t>(*vsan);
  }
}

} // namespace vswitch
