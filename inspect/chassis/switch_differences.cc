// Comparing two descriptions, field by field.
#include "inspect/chassis/switch_differences.h"

#include <fmt/format.h>

#include <map>
#include <set>
#include <utility>

#include "inspect/error.h"
#include "vswitch/interface_index.h"

namespace inspect {

namespace {

using vswitch::chassis_description;

class difference_list {
 public:
  void add(const std::string& where, const std::string& field, const difference_value& before,
           const difference_value& after, std::optional<uint32_t> index = std::nullopt) {
    if (!(before == after)) found_.push_back({where, index, field, before, after});
  }

  std::vector<difference> take() { return std::move(found_); }
  bool empty() const { return found_.empty(); }

 private:
  std::vector<difference> found_;
};

// Both sides of a comparison.
struct two_switches {
  const chassis_description& before;
  const chassis_description& after;
};

template <typename map>
std::set<typename map::key_type> keys_of_both(const map& before, const map& after) {
  std::set<typename map::key_type> keys;
  for (const auto* side : {&before, &after})
    for (const auto& [key, value] : *side) keys.insert(key);
  return keys;
}

template <typename map>
const typename map::mapped_type* value_in(const map& all, typename map::key_type key) {
  const auto found = all.find(key);
  return found == all.end() ? nullptr : &found->second;
}

template <typename bytes>
difference_value bytes_value(const bytes& values) {
  return text_value(fmt::format("{:02x}", fmt::join(values, " ")));
}

std::string vsan_place(uint32_t vsan) {
  return fmt::format("VSAN {}", vsan);
}

// ---- The chassis ----

void compare_chassis(const two_switches& both, difference_list& list) {
  const auto& [before, after] = both;
  auto slots = [](const auto& supervisors) { return text_value(fmt::format("{}", fmt::join(supervisors, ","))); };
  list.add("chassis", "name", text_value(before.name), text_value(after.name));
  list.add("chassis", "slots", number_value(before.slots()), number_value(after.slots()));
  list.add("chassis", "type", number_value(before.type), number_value(after.type));
  list.add("chassis", "platform record", bytes_value(before.platform_record), bytes_value(after.platform_record));
  list.add("chassis", "supervisors", slots(before.supervisors), slots(after.supervisors));
}

void compare_cards(const two_switches& both, difference_list& list) {
  auto ports = [](const vswitch::line_card* card) { return card ? number_value(card->ports) : no_value(); };
  auto name = [](const vswitch::line_card* card) { return card ? text_value(card->name) : no_value(); };
  for (unsigned slot = 1; slot <= 255; ++slot) {
    const auto* before = vswitch::card_in_slot(both.before, slot);
    const auto* after = vswitch::card_in_slot(both.after, slot);
    const std::string where = fmt::format("slot {}", slot);
    list.add(where, "ports", ports(before), ports(after));
    list.add(where, "card name", name(before), name(after));
  }
}

void compare_vsans(const two_switches& both, difference_list& list) {
  for (uint16_t vsan : keys_of_both(both.before.vsans, both.after.vsans)) {
    const auto* before = value_in(both.before.vsans, vsan);
    const auto* after = value_in(both.after.vsans, vsan);
    if (before && after)
      list.add(vsan_place(vsan), "name", text_value(*before), text_value(*after));
    else
      list.add(vsan_place(vsan), "is there", presence_value(before), presence_value(after));
  }
}

// ---- Time references ----

difference_value reference_value(const vswitch::time_reference* reference) {
  if (reference == nullptr) return no_value();
  return text_value(
      fmt::format("{} s {} us = {:016X}", reference->host.seconds, reference->host.microseconds, reference->tod));
}

void compare_reference(uint32_t vsan, const vswitch::time_reference* before, const vswitch::time_reference* after,
                       difference_list& list) {
  list.add(vsan_place(vsan), "time reference", reference_value(before), reference_value(after));
}

void compare_references(const two_switches& both, difference_list& list) {
  for (uint16_t vsan : keys_of_both(both.before.times, both.after.times))
    compare_reference(vsan, value_in(both.before.times, vsan), value_in(both.after.times, vsan), list);
}

// ---- Interfaces and what is behind them ----

std::map<uint32_t, std::string> members_of_interfaces(const chassis_description& chassis) {
  std::map<uint32_t, std::string> members;
  for (const auto& interface : chassis.interfaces) {
    std::vector<std::string> names;
    for (uint32_t member : interface.members) names.push_back(vswitch::interface_name(member));
    members[interface.if_index] = fmt::format("{}", fmt::join(names, " "));
  }
  return members;
}

void compare_interfaces(const two_switches& both, difference_list& list) {
  const auto members_before = members_of_interfaces(both.before);
  const auto members_after = members_of_interfaces(both.after);
  for (uint32_t if_index : keys_of_both(members_before, members_after)) {
    const auto* before = value_in(members_before, if_index);
    const auto* after = value_in(members_after, if_index);
    const std::string where = vswitch::interface_name(if_index);
    if (before && after)
      list.add(where, "members", text_value(*before), text_value(*after));
    else
      list.add(where, "is there", presence_value(before), presence_value(after));
  }
}

void compare_node(const std::string& where, const vswitch::node_descriptor& before, const vswitch::node_descriptor& after,
                  difference_list& list) {
  list.add(where, "node code page", number_value(before.codepage), number_value(after.codepage));
  list.add(where, "node flags", hex_value(before.flags, 8), hex_value(after.flags, 8));
  for (const auto& field : vswitch::kNodeTexts)
    list.add(where, fmt::format("node {}", field.name), text_value(vswitch::without_blanks(before.*field.text)),
             text_value(vswitch::without_blanks(after.*field.text)));
  list.add(where, "node tag", hex_value(before.tag, 4), hex_value(after.tag, 4));
}

void compare_nodes(const two_switches& both, difference_list& list) {
  for (uint32_t if_index : keys_of_both(both.before.nodes, both.after.nodes)) {
    const auto* before = value_in(both.before.nodes, if_index);
    const auto* after = value_in(both.after.nodes, if_index);
    const std::string where = vswitch::interface_name(if_index);
    if (before && after)
      compare_node(where, *before, *after, list);
    else
      list.add(where, "node", presence_value(before), presence_value(after));
  }
}

// ---- The port map ----

std::string place_of(const two_switches& both, uint32_t index) {
  auto port = vswitch::port_at_index(both.after, index);
  if (!port) port = vswitch::port_at_index(both.before, index);
  return port ? fmt::format("index {} ({})", index, vswitch::interface_name(*port)) : fmt::format("index {}", index);
}

void compare_entries(const two_switches& both, difference_list& list) {
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    const auto& before = both.before.map.port_to_pn[index];
    const auto& after = both.after.map.port_to_pn[index];
    const std::string where = place_of(both, index);
    list.add(where, "pn", pn_value(before.pn), pn_value(after.pn), index);
    list.add(where, "pa", pa_value(before.pa), pa_value(after.pa), index);
    list.add(where, "vsans", bound_vsans_value(before), bound_vsans_value(after), index);
    list.add(where, "vsan", vsan_value(both.before.map.port_to_vsan[index]), vsan_value(both.after.map.port_to_vsan[index]),
             index);
  }
}

void compare_tables(const two_switches& both, difference_list& list) {
  const auto& before = both.before.map;
  const auto& after = both.after.map;
  for (unsigned pn = 0; pn < vswitch::kNumbers; ++pn)
    list.add(fmt::format("PN {}", pn), "binding", interface_value(before.pn_to_if[pn]),
             interface_value(after.pn_to_if[pn]));
  for (unsigned pa = 0; pa < vswitch::kNumbers; ++pa)
    list.add(fmt::format("PA {:02X}", pa), "pn of address", pn_value(before.pa_to_pn[pa]), pn_value(after.pa_to_pn[pa]));
  list.add("port map", "VSAN array", bytes_value(before.vsan_array), bytes_value(after.vsan_array));
}

// A field that is not looked at here must not pass for equal.
void require_equal(const two_switches& both) {
  chassis_description same_counter = both.after;
  same_counter.change_counter = both.before.change_counter;
  if (!(same_counter == both.before))
    throw platform_error("internal error: the switches differ in something that has no name here; please report it");
}

} // namespace

std::vector<difference> differences(const chassis_description& before, const chassis_description& after) {
  const two_switches both{before, after};
  difference_list list;
  for (auto* compare : {compare_chassis, compare_cards, compare_vsans, compare_references, compare_interfaces,
                        compare_nodes, compare_entries, compare_tables})
    compare(both, list);
  if (list.empty()) require_equal(both);
  return list.take();
}

std::vector<difference> differences(uint32_t vsan, const std::optional<vswitch::time_reference>& before,
                                    const std::optional<vswitch::time_reference>& after) {
  difference_list list;
  compare_reference(vsan, before ? &*before : nullptr, after ? &*after : nullptr, list);
  return list.take();
}

} // namespace inspect
