#include "commands/export_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>

#include "inspect/port_map/map_entries.h"
#include "inspect/port_map/port_map_tables.h"
#include "output/map_document.h"
#include "output/node_records.h"
#include "vswitch/chassis_file.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

struct export_options {
  std::string to; // csv, json, toml; empty: what --format says, else toml
};

// Adds a number under its name, with its hexadecimal text beside it; null for a missing one.
void add_number(const char* name, uint32_t number, uint32_t missing, unsigned digits, ordered_json& object) {
  bool there = number != missing;
  object[name] = there ? ordered_json(number) : ordered_json();
  object[std::string(name) + "_hex"] = there ? ordered_json(fmt::format("0x{:0{}X}", number, digits)) : ordered_json();
}

void add_interface(uint32_t if_index, ordered_json& object) {
  object["interface"] = if_index == 0 ? ordered_json() : ordered_json(vswitch::interface_name(if_index));
  add_number("if_index", if_index, 0, 8, object);
}

bool holds_anything(const vswitch::port_map& map, unsigned index) {
  const auto& entry = map.port_to_pn[index];
  return entry.pn != FICON_PMAP_NO_NUMBER || entry.pa != FICON_PMAP_NO_NUMBER || inspect::is_bound(entry) ||
         map.port_to_vsan[index] != 0;
}

ordered_json entries_of(const vswitch::chassis_description& chassis) {
  ordered_json entries = ordered_json::array();
  for (unsigned index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (!holds_anything(chassis.map, index)) continue;
    const auto& entry = chassis.map.port_to_pn[index];
    ordered_json object = {{"index", index}};
    add_interface(vswitch::port_at_index(chassis, index).value_or(0), object);
    add_number("pn", entry.pn, FICON_PMAP_NO_NUMBER, 2, object);
    add_number("pa", entry.pa, FICON_PMAP_NO_NUMBER, 2, object);
    object["vsans"] = inspect::bound_vsans(entry);
    uint16_t vsan = chassis.map.port_to_vsan[index];
    object["port_vsan"] = vsan == 0 ? ordered_json() : ordered_json(vsan);
    entries.push_back(object);
  }
  return entries;
}

ordered_json bindings_of(const vswitch::port_map& map) {
  ordered_json bindings = ordered_json::array();
  for (unsigned pn = 0; pn < vswitch::kNumbers; ++pn) {
    if (map.pn_to_if[pn] == 0) continue;
    ordered_json object;
    add_number("pn", pn, FICON_PMAP_NO_NUMBER, 2, object);
    add_interface(map.pn_to_if[pn], object);
    bindings.push_back(object);
  }
  return bindings;
}

ordered_json addresses_of(const vswitch::port_map& map) {
  ordered_json addresses = ordered_json::array();
  for (unsigned pa = 0; pa < vswitch::kNumbers; ++pa) {
    if (map.pa_to_pn[pa] == FICON_PMAP_NO_NUMBER) continue;
    ordered_json object;
    add_number("pa", pa, FICON_PMAP_NO_NUMBER, 2, object);
    add_number("pn", map.pa_to_pn[pa], FICON_PMAP_NO_NUMBER, 2, object);
    addresses.push_back(object);
  }
  return addresses;
}

ordered_json times_of(const vswitch::chassis_description& chassis) {
  ordered_json times = ordered_json::array();
  for (const auto& [vsan, reference] : chassis.times)
    times.push_back({{"vsan", vsan},
                     {"host_time", vswitch::utc_text(vswitch::instant_of(reference.host))},
                     {"host_seconds", reference.host.seconds},
                     {"host_microseconds", reference.host.microseconds},
                     {"tod", reference.tod},
                     {"tod_hex", fmt::format("0x{:016X}", reference.tod)}});
  return times;
}

ordered_json chassis_of(const vswitch::chassis_description& chassis) {
  ordered_json cards = ordered_json::array();
  for (const auto& card : chassis.line_cards)
    cards.push_back({{"slot", card.slot}, {"ports", card.ports}, {"name", card.name}});
  ordered_json vsans = ordered_json::array();
  for (const auto& [number, name] : chassis.vsans) vsans.push_back({{"vsan", number}, {"name", name}});
  ordered_json interfaces = ordered_json::array();
  for (const auto& interface : chassis.interfaces) {
    ordered_json object;
    add_interface(interface.if_index, object);
    object["members"] = ordered_json::array();
    for (uint32_t member : interface.members) object["members"].push_back(vswitch::interface_name(member));
    interfaces.push_back(object);
  }
  return {{"name", chassis.name},
          {"slots", chassis.slots()},
          {"type", chassis.type},
          {"supervisors", chassis.supervisors},
          {"platform_record", fmt::format("{:02x}", fmt::join(chassis.platform_record, " "))},
          {"change_counter", chassis.change_counter},
          {"line_cards", cards},
          {"vsans", vsans},
          {"logical_interfaces", interfaces}};
}

std::string as_json(const vswitch::chassis_description& chassis, int indent) {
  ordered_json whole = chassis_of(chassis);
  whole["ports"] = entries_of(chassis);
  whole["bindings"] = bindings_of(chassis.map);
  whole["addresses"] = addresses_of(chassis.map);
  whole["time_references"] = times_of(chassis);
  whole["nodes"] = node_records(chassis);
  whole["port_vsan_array"] = fmt::format("{:02x}", fmt::join(chassis.map.vsan_array, " "));
  return whole.dump(indent, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

exit_code export_switch(const command_context& context, const export_options& options) {
  const output_format format = context.style.format;
  if (options.to == "csv" || (options.to.empty() && format == output_format::csv)) {
    inspect::library_session session = context.open_session();
    context.results.write(render(map_document(session, indexes_in_use(session)), {output_format::csv, false}));
    return kFound;
  }
  const inspect::opened_switch opened = inspect::open_switch(context.named_switch());
  bool json = options.to == "json" || (options.to.empty() && format != output_format::table);
  context.results.write(json ? as_json(opened.chassis, format == output_format::jsonl ? -1 : 2)
                             : vswitch::write_chassis_file(opened.chassis));
  return kFound;
}

} // namespace

command export_command() {
  auto options = std::make_shared<export_options>();
  return {.name = "export",
          .what = "The whole switch in another form, on standard output",
          .examples = "  chnsw -s /tmp/director export > director.toml\n  chnsw -s FILE export --to csv > map.csv",
          .arguments = {option("--to", "FORM", &options->to,
                               "toml: chassis file (default); json: everything; csv: the port map; without it --format "
                               "decides")
                            .one_of({"toml", "json", "csv"})},
          .run = runs(export_switch, options),
          .parts = {}};
}

} // namespace chnsw_tool
