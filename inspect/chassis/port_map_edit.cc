#include "inspect/chassis/port_map_edit.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

#include "inspect/error.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

using vswitch::chassis_description;
using vswitch::port_map;

constexpr char kNone[] = "none";
constexpr number_kind kTableNumber = {"port number", 10, 0, 255, "240"};
constexpr number_kind kTableAddress = {"port address", 16, 0, 0xFF, "C0"};
constexpr number_kind kRealVsan = {"VSAN", 10, 1, 4095, "10 or 10,20"};
constexpr number_kind kPlace = {"port", 10, 0, FICON_PMAP_PORT_ENTRIES - 1, "fc3/5, or 1024 for a port map index"};

uint16_t number_or_none(const number_kind& kind, const std::string& word) {
  if (word == kNone) return FICON_PMAP_NO_NUMBER;
  const uint32_t number = parse_number(kind, word);
  if (number == FICON_PMAP_NO_NUMBER)
    throw question_error(fmt::format("{} \"{}\" is {}, which the port map takes for no number; write {} if you mean that",
                                     kind.what, word, number, kNone));
  return static_cast<uint16_t>(number);
}

uint16_t vsan_or_none(const std::string& word) {
  return word == kNone ? uint16_t{0} : static_cast<uint16_t>(parse_number(kRealVsan, word));
}

using vsan_slots = std::array<uint16_t, FICON_PMAP_VSAN_SLOTS>;

vsan_slots vsans_or_none(const std::string& word) {
  vsan_slots slots{};
  if (word == kNone) return slots;
  const auto vsans = parse_numbers(kRealVsan, {word}, {});
  if (vsans.empty() || vsans.size() > slots.size())
    throw question_error(
        fmt::format("VSANs \"{}\": found {}; a port is bound to 1 to {} VSANs, or none", word, vsans.size(), slots.size()));
  std::transform(vsans.begin(), vsans.end(), slots.begin(), [](uint32_t vsan) { return static_cast<uint16_t>(vsan); });
  return slots;
}

// "fc3/5", or a bare port map index.
uint32_t place_of(const chassis_description& chassis, const std::string& where) {
  if (!where.starts_with("fc")) return parse_number(kPlace, where);
  auto port = vswitch::fc_port_of(parse_interface(where));
  if (!port)
    throw question_error(
        fmt::format("port \"{}\" is not a physical port; name it like fc3/5, or by its port map index", where));
  if (!vswitch::has_port(chassis, port->slot, port->port))
    throw question_error(fmt::format("port {} is not there; chnsw info lists the cards and their ports", where));
  auto index = vswitch::port_map_index(chassis, port->slot, port->port);
  if (!index) throw question_error(fmt::format("port {} has no place in the port map, which ends before it", where));
  return *index;
}

bool is_there(const chassis_description& chassis, uint32_t if_index) {
  if (auto port = vswitch::fc_port_of(if_index)) return vswitch::has_port(chassis, port->slot, port->port);
  return std::any_of(chassis.interfaces.begin(), chassis.interfaces.end(),
                     [&](const auto& known) { return known.if_index == if_index; });
}

port_map_edit addresses_follow(const port_map_edit& edit) {
  return [edit](port_map& map) {
    const bool follows = map.pa_to_pn == vswitch::addresses_of_ports(map);
    edit(map);
    if (follows) map.pa_to_pn = vswitch::addresses_of_ports(map);
  };
}

// What becomes of a port's entry; no value leaves the old one.
struct entry_values {
  std::optional<uint16_t> pn;
  std::optional<uint16_t> pa;
  std::optional<vsan_slots> vsans;
  std::optional<uint16_t> vsan;
};

entry_values parse_values(const new_port_values& written) {
  entry_values values;
  if (written.pn) values.pn = number_or_none(kPortNumber, *written.pn);
  if (written.pa) values.pa = number_or_none(kPortAddress, *written.pa);
  if (written.vsans) values.vsans = vsans_or_none(*written.vsans);
  if (written.vsan) values.vsan = vsan_or_none(*written.vsan);
  return values;
}

} // namespace

port_map_edit edit_of_port(const chassis_description& chassis, const new_port_values& written) {
  const uint32_t index = place_of(chassis, written.where);
  const entry_values values = parse_values(written);
  return addresses_follow([index, values](port_map& map) {
    auto& entry = map.port_to_pn[index];
    if (values.pn) entry.pn = *values.pn;
    if (values.pa) entry.pa = *values.pa;
    if (values.vsans) std::copy(values.vsans->begin(), values.vsans->end(), entry.vsans);
    if (values.vsan) map.port_to_vsan[index] = *values.vsan;
  });
}

port_map_edit edit_of_binding(const chassis_description& chassis, const std::string& pn, const std::string& interface) {
  const uint32_t number = parse_number(kTableNumber, pn);
  const uint32_t if_index = interface == kNone ? 0 : parse_interface(interface);
  if (if_index != 0 && !is_there(chassis, if_index))
    throw question_error(fmt::format("there is no {}; chnsw info lists cards and logical interfaces", interface));
  return [number, if_index](port_map& map) { map.pn_to_if[number] = if_index; };
}

port_map_edit edit_of_address(const std::string& pa, const std::string& pn) {
  const uint32_t address = parse_number(kTableAddress, pa);
  const uint16_t number = number_or_none(kPortNumber, pn);
  return [address, number](port_map& map) { map.pa_to_pn[address] = number; };
}

} // namespace inspect
