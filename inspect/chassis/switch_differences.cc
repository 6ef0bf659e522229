// Comparing two descriptions, field by field.
#include "inspect/chassis/switch_differences.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

#include "exit_code.h"
#include "inspect/port_map/port_map_walk.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using vswitch::chassis_description;

// A value in its two forms.
struct shown_value {
  cell data;
  std::string text;
};

shown_value text_value(const std::string& text) {
  return {text, text.empty() ? "-" : text};
}
shown_value number_value(int64_t number) {
  return {number, std::to_string(number)};
}
shown_value absent() {
  return {std::monostate{}, "-"};
}

shown_value pn_value(uint16_t pn) {
  return {number_cell(pn), pn == FICON_PMAP_NO_NUMBER ? "-" : std::to_string(pn)};
}
shown_value pa_value(uint16_t pa) {
  return {number_cell(pa), pa == FICON_PMAP_NO_NUMBER ? "-" : fmt::format("{:02X}", pa)};
}
shown_value vsan_value(uint16_t vsan) {
  return {vsan_cell(vsan), vsan == 0 ? "-" : std::to_string(vsan)};
}

// Up to the last slot in use: where an empty one stands matters as well.
shown_value vsans_value(const ficon_pmap_port_entry& entry) {
  number_list vsans(std::begin(entry.vsans), std::end(entry.vsans));
  while (!vsans.empty() && vsans.back() == 0) vsans.pop_back();
  return {vsans, vsans.empty() ? "-" : fmt::format("{}", fmt::join(vsans, ","))};
}

template <typename bytes>
shown_value bytes_value(const bytes& values) {
  return text_value(fmt::format("{:02x}", fmt::join(values, " ")));
}

// A name of "-" is not the same as no name, although both are shown alike.
bool same(const shown_value& a, const shown_value& b) {
  auto a_text = std::get_if<std::string>(&a.data);
  auto b_text = std::get_if<std::string>(&b.data);
  if (a_text != nullptr && b_text != nullptr) return *a_text == *b_text;
  return a.data.index() == b.data.index() && a.text == b.text;
}

class comparison {
 public:
  comparison(const chassis_description& before, const chassis_description& after) : before_(before), after_(after) {}

  std::vector<difference> run() {
    compare_chassis();
    compare_cards();
    compare_vsans();
    compare_times();
    compare_interfaces();
    compare_nodes();
    compare_entries();
    compare_tables();
    if (found_.empty()) require_equal();
    return std::move(found_);
  }

 private:
  // A field that is not looked at here must not pass for equal.
  void require_equal() const {
    chassis_description same_counter = after_;
    same_counter.change_counter = before_.change_counter;
    if (!(same_counter == before_))
      throw platform_error("internal error: the switches differ in something that has no name here; please report it");
  }

  void add(const std::string& where, const std::string& field, const shown_value& before, const shown_value& after,
           std::optional<uint32_t> index = std::nullopt) {
    if (same(before, after)) return;
    found_.push_back({where, index, field, before.data, after.data, before.text, after.text});
  }

  void compare_chassis() {
    add("chassis", "name", text_value(before_.name), text_value(after_.name));
    add("chassis", "slots", number_value(before_.slots()), number_value(after_.slots()));
    add("chassis", "type", number_value(before_.type), number_value(after_.type));
    add("chassis", "platform record", bytes_value(before_.platform_record), bytes_value(after_.platform_record));
    auto slots = [](const auto& supervisors) { return text_value(fmt::format("{}", fmt::join(supervisors, ","))); };
    add("chassis", "supervisors", slots(before_.supervisors), slots(after_.supervisors));
  }

  void compare_cards() {
    for (unsigned slot = 1; slot <= 255; ++slot) {
      const auto* before = vswitch::card_in_slot(before_, slot);
      const auto* after = vswitch::card_in_slot(after_, slot);
      if (before == nullptr && after == nullptr) continue;
      std::string where = fmt::format("slot {}", slot);
      add(where, "ports", before ? number_value(before->ports) : absent(), after ? number_value(after->ports) : absent());
      add(where, "card name", before ? text_value(before->name) : absent(), after ? text_value(after->name) : absent());
    }
  }

  void compare_vsans() {
    std::map<uint16_t, std::string> all = before_.vsans;
    all.insert(after_.vsans.begin(), after_.vsans.end());
    for (const auto& [vsan, name] : all) {
      auto before = before_.vsans.find(vsan);
      auto after = after_.vsans.find(vsan);
      bool in_both = before != before_.vsans.end() && after != after_.vsans.end();
      std::string where = fmt::format("VSAN {}", vsan);
      if (in_both)
        add(where, "name", text_value(before->second), text_value(after->second));
      else
        add(where, "is there", presence(before != before_.vsans.end()), presence(after != after_.vsans.end()));
    }
  }

  static shown_value time_value(const chassis_description& chassis, uint16_t vsan) {
    auto known = chassis.times.find(vsan);
    if (known == chassis.times.end()) return absent();
    const auto& [host, tod] = known->second;
    return text_value(fmt::format("{} s {} us = {:016X}", host.seconds, host.microseconds, tod));
  }

  void compare_times() {
    std::set<uint16_t> all;
    for (const auto* chassis : {&before_, &after_})
      for (const auto& [vsan, reference] : chassis->times) all.insert(vsan);
    for (uint16_t vsan : all)
      add(fmt::format("VSAN {}", vsan), "time reference", time_value(before_, vsan), time_value(after_, vsan));
  }

  static shown_value presence(bool there) { return {there, there ? "yes" : "no"}; }

  static std::string members_of(const vswitch::logical_interface& interface) {
    std::vector<std::string> names;
    for (uint32_t member : interface.members) names.push_back(vswitch::interface_name(member));
    return fmt::format("{}", fmt::join(names, " "));
  }

  static const vswitch::logical_interface* interface_of(const chassis_description& chassis, uint32_t if_index) {
    for (const auto& interface : chassis.interfaces)
      if (interface.if_index == if_index) return &interface;
    return nullptr;
  }

  void compare_interfaces() {
    std::set<uint32_t> all;
    for (const auto* chassis : {&before_, &after_})
      for (const auto& interface : chassis->interfaces) all.insert(interface.if_index);
    for (uint32_t if_index : all) {
      const auto* before = interface_of(before_, if_index);
      const auto* after = interface_of(after_, if_index);
      std::string where = vswitch::interface_name(if_index);
      if (before != nullptr && after != nullptr)
        add(where, "members", text_value(members_of(*before)), text_value(members_of(*after)));
      else
        add(where, "is there", presence(before != nullptr), presence(after != nullptr));
    }
  }

  void compare_nodes() {
    std::set<uint32_t> all;
    for (const auto* chassis : {&before_, &after_})
      for (const auto& [if_index, node] : chassis->nodes) all.insert(if_index);
    for (uint32_t if_index : all) {
      auto before = before_.nodes.find(if_index);
      auto after = after_.nodes.find(if_index);
      const bool was_there = before != before_.nodes.end();
      const bool is_there = after != after_.nodes.end();
      if (was_there && is_there)
        compare_node(vswitch::interface_name(if_index), before->second, after->second);
      else
        add(vswitch::interface_name(if_index), "node", presence(was_there), presence(is_there));
    }
  }

  void compare_node(const std::string& where, const vswitch::node_descriptor& before,
                    const vswitch::node_descriptor& after) {
    auto flags = [](uint32_t value) { return shown_value{int64_t{value}, fmt::format("{:08X}", value)}; };
    auto tag = [](uint16_t value) { return shown_value{int64_t{value}, fmt::format("{:04X}", value)}; };
    add(where, "node code page", number_value(before.codepage), number_value(after.codepage));
    add(where, "node flags", flags(before.flags), flags(after.flags));
    for (const auto& field : vswitch::kNodeTexts)
      add(where, fmt::format("node {}", field.name), text_value(vswitch::without_blanks(before.*field.text)),
          text_value(vswitch::without_blanks(after.*field.text)));
    add(where, "node tag", tag(before.tag), tag(after.tag));
  }

  std::string place_of(uint32_t index) const {
    auto port = vswitch::port_at_index(after_, index);
    if (!port) port = vswitch::port_at_index(before_, index);
    return port ? fmt::format("index {} ({})", index, vswitch::interface_name(*port)) : fmt::format("index {}", index);
  }

  void compare_entries() {
    for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
      const auto& before = before_.map.port_to_pn[index];
      const auto& after = after_.map.port_to_pn[index];
      std::string where = place_of(index);
      add(where, "pn", pn_value(before.pn), pn_value(after.pn), index);
      add(where, "pa", pa_value(before.pa), pa_value(after.pa), index);
      add(where, "vsans", vsans_value(before), vsans_value(after), index);
      add(where, "vsan", vsan_value(before_.map.port_to_vsan[index]), vsan_value(after_.map.port_to_vsan[index]), index);
    }
  }

  static shown_value bound_value(uint32_t if_index) {
    return text_value(if_index == 0 ? "" : vswitch::interface_name(if_index));
  }

  void compare_tables() {
    for (unsigned pn = 0; pn < vswitch::kNumbers; ++pn)
      add(fmt::format("PN {}", pn), "binding", bound_value(before_.map.pn_to_if[pn]), bound_value(after_.map.pn_to_if[pn]));
    for (unsigned pa = 0; pa < vswitch::kNumbers; ++pa)
      add(fmt::format("PA {:02X}", pa), "pn of address", pn_value(before_.map.pa_to_pn[pa]),
          pn_value(after_.map.pa_to_pn[pa]));
    add("port map", "VSAN array", bytes_value(before_.map.vsan_array), bytes_value(after_.map.vsan_array));
  }

  const chassis_description& before_;
  const chassis_description& after_;
  std::vector<difference> found_;
};

std::string key_of(std::string title) {
  std::transform(title.begin(), title.end(), title.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return title;
}

} // namespace

std::vector<difference> differences(const chassis_description& before, const chassis_description& after) {
  return comparison(before, after).run();
}

void add_difference_columns(const std::string& before, const std::string& after, std::vector<column>& columns) {
  columns.insert(columns.end(), {{"where", "WHERE"},
                                 {"index", "", 0, false, column::data_only},
                                 {"field", "FIELD"},
                                 {"before_text", before, 0, false, column::table_only},
                                 {"after_text", after, 0, false, column::table_only},
                                 {key_of(before), "", 2, false, column::data_only},
                                 {key_of(after), "", 2, false, column::data_only}});
}

void add_difference_cells(const difference& found, std::vector<cell>& cells) {
  cells.insert(cells.end(), {found.where, optional_cell(found.index), found.field, found.before_text, found.after_text,
                             found.before, found.after});
}

} // namespace chnsw_tool
