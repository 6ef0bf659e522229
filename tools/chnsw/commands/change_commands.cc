// create and set: everything that writes to a switch's folder.
#include "commands/change_commands.h"

#include <fmt/format.h>

#include "commands/tod_command.h"

#include <algorithm>
#include <functional>

#include "inspect/chassis/switch_differences.h"
#include "inspect/words/target_numbers.h"
#include "vswitch/interface_index.h"
#include "vswitch/switch_store.h"

namespace chnsw_tool {

namespace {

using vswitch::chassis_description;
using vswitch::port_map;

constexpr char kNone[] = "none";
constexpr number_kind kTableNumber = {"port number", 10, 0, 255, "240"};
constexpr number_kind kTableAddress = {"port address", 16, 0, 0xFF, "C0"};
constexpr number_kind kRealVsan = {"VSAN", 10, 1, 4095, "10 or 10,20"};

uint16_t number_or_none(const number_kind& kind, const std::string& word) {
  if (word == kNone) return FICON_PMAP_NO_NUMBER;
  const uint32_t number = parse_number(kind, word);
  if (number == FICON_PMAP_NO_NUMBER)
    throw question_error(fmt::format("{} \"{}\" is {}, which the port map takes for no number; write {} if you mean that",
                                     kind.what, word, number, kNone));
  return static_cast<uint16_t>(number);
}

// Prints what was done; that it was done is told even when the result cannot be.
void print_done(const command_context& context, const result_document& document, const std::string& what) {
  try {
    context.print(document);
  } catch (const error&) {
    notice(what);
    throw;
  }
}

std::vector<uint32_t> vsans_or_none(const std::string& word) {
  if (word == kNone) return {};
  auto vsans = parse_numbers(kRealVsan, {word}, {});
  if (vsans.empty() || vsans.size() > FICON_PMAP_VSAN_SLOTS)
    throw question_error(fmt::format("VSANs \"{}\": found {}; a port is bound to 1 to {} VSANs, or none", word,
                                     vsans.size(), int{FICON_PMAP_VSAN_SLOTS}));
  return vsans;
}

// "fc3/5", or a bare port map index.
uint32_t place_of(const chassis_description& chassis, const std::string& where) {
  constexpr number_kind kPlace = {"port", 10, 0, FICON_PMAP_PORT_ENTRIES - 1, "fc3/5, or 1024 for a port map index"};
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

// The table of addresses follows the ports as long as it says what they say; one that was set by hand is left alone.
void edit_ports(port_map& map, const std::function<void(port_map&)>& edit) {
  bool follows = map.pa_to_pn == vswitch::addresses_of_ports(map);
  edit(map);
  if (follows) map.pa_to_pn = vswitch::addresses_of_ports(map);
}

// A change that changes nothing: thrown out of the transaction, so that the change counter stays.
struct nothing_to_change {};

struct applied_change {
  chassis_description before;
  chassis_description after;
  uint32_t change_counter = 0;
};

applied_change apply_edit(vswitch::switch_store& store, const std::function<void(port_map&)>& edit) {
  applied_change change;
  change.before = store.describe();
  change.after = change.before;
  change.change_counter = change.before.change_counter;
  try {
    change.change_counter = store.change_map([&](port_map& map) {
      change.before.map = map;
      edit(map);
      change.after.map = map;
      if (change.after.map == change.before.map) throw nothing_to_change();
    });
  } catch (const nothing_to_change&) {
    notice("nothing to change: the switch holds these values already");
  }
  return change;
}

exit_code print_change(const command_context& context, const applied_change& change) {
  result_document document{{{"change_counter", "CHANGE"}}, {}};
  add_difference_columns("BEFORE", "AFTER", document.columns);
  for (const auto& found : differences(change.before, change.after)) {
    document.add({int64_t{change.change_counter}});
    add_difference_cells(found, document.rows.back().cells);
  }
  const bool changed = !(change.before.map == change.after.map);
  print_done(context, document,
             changed ? fmt::format("the change was made, the change counter is {}", change.change_counter)
                     : "nothing was changed");
  return kFound;
}

// Opens the folder, applies the edit that make_edit finds for it, and prints what changed.
exit_code change_folder(const command_context& context,
                        const std::function<std::function<void(port_map&)>(const chassis_description&)>& make_edit) {
  const std::string& folder = context.named_folder("edit the file, or make a folder of it with chnsw create");
  try {
    auto store = vswitch::switch_store::open(folder);
    return print_change(context, apply_edit(*store, make_edit(store->describe())));
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

} // namespace

exit_code create_switch(const command_context& context, const create_options& options) {
  opened_switch opened = open_switch(options.from);
  chassis_description made;
  try {
    vswitch::switch_store::create(options.folder, opened.chassis);
    made = vswitch::switch_store::open(options.folder)->describe();
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
  int64_t ports = 0;
  for (const auto& card : made.line_cards) ports += card.ports;
  result_document document{{{"switch", "SWITCH"},
                            {"from", "FROM"},
                            {"name", "NAME"},
                            {"slots", "SLOTS"},
                            {"type", "TYPE"},
                            {"ports", "PORTS"},
                            {"change_counter", "CHANGE"}},
                           {}};
  document.add({options.folder, options.from, made.name, int64_t{made.slots()}, int64_t{made.type}, ports,
                int64_t{made.change_counter}});
  print_done(context, document, fmt::format("{} was made", options.folder));
  return kFound;
}

exit_code set_port(const command_context& context, const set_port_options& options) {
  if (!options.pn && !options.pa && !options.vsans && !options.vsan)
    throw question_error("nothing to set; give --pn, --pa, --vsans or --vsan");
  return change_folder(context, [&](const chassis_description& chassis) -> std::function<void(port_map&)> {
    uint32_t index = place_of(chassis, options.where);
    ficon_pmap_port_entry values{};
    if (options.pn) values.pn = number_or_none(kPortNumber, *options.pn);
    if (options.pa) values.pa = number_or_none(kPortAddress, *options.pa);
    auto vsans = options.vsans ? vsans_or_none(*options.vsans) : std::vector<uint32_t>();
    std::copy(vsans.begin(), vsans.end(), values.vsans);
    uint16_t vsan = 0;
    if (options.vsan && *options.vsan != kNone) vsan = static_cast<uint16_t>(parse_number(kRealVsan, *options.vsan));
    return [=](port_map& whole) {
      edit_ports(whole, [&](port_map& map) {
        auto& entry = map.port_to_pn[index];
        if (options.pn) entry.pn = values.pn;
        if (options.pa) entry.pa = values.pa;
        if (options.vsans) std::copy(std::begin(values.vsans), std::end(values.vsans), entry.vsans);
        if (options.vsan) map.port_to_vsan[index] = vsan;
      });
    };
  });
}

exit_code set_binding(const command_context& context, const set_binding_options& options) {
  return change_folder(context, [&](const chassis_description& chassis) -> std::function<void(port_map&)> {
    uint32_t pn = parse_number(kTableNumber, options.pn);
    uint32_t interface = options.interface == kNone ? 0 : parse_interface(options.interface);
    auto port = vswitch::fc_port_of(interface);
    bool there = port ? vswitch::has_port(chassis, port->slot, port->port)
                      : std::any_of(chassis.interfaces.begin(), chassis.interfaces.end(),
                                    [&](const auto& known) { return known.if_index == interface; });
    if (interface != 0 && !there)
      throw question_error(fmt::format("there is no {}; chnsw info lists cards and logical interfaces", options.interface));
    return [=](port_map& map) { map.pn_to_if[pn] = interface; };
  });
}

exit_code set_address(const command_context& context, const set_address_options& options) {
  return change_folder(context, [&](const chassis_description&) -> std::function<void(port_map&)> {
    uint32_t pa = parse_number(kTableAddress, options.pa);
    uint16_t pn = number_or_none(kPortNumber, options.pn);
    return [=](port_map& map) { map.pa_to_pn[pa] = pn; };
  });
}

// ---- The commands ----

command create_command() {
  auto options = std::make_shared<create_options>();
  return {.name = "create",
          .what = "Make a switch's folder from a chassis file, or replace the switch that is in it",
          .examples = "  chnsw create /tmp/director examples/director-10.toml",
          .arguments = {word("FOLDER", &options->folder, "Folder of the switch; made when it is not there").path(),
                        word("FILE", &options->from, "Chassis file, or folder of another switch").path()},
          .run = runs(create_switch, options),
          .parts = {}};
}

namespace {

command set_port_command() {
  auto options = std::make_shared<set_port_options>();
  return {.name = "port",
          .what = "A port's numbers and VSANs",
          .examples =
              "  chnsw -s /tmp/director set port fc3/5 --pa 2F --vsans 10,20 --vsan 10\n"
              "  chnsw -s /tmp/director set port 1030 --pn none",
          .arguments = {word("PORT", &options->where, "Interface like fc3/5, or a port map index, decimal"),
                        option("--pn", "PN", &options->pn, "Port number, decimal, or none"),
                        option("--pa", "PA", &options->pa, "Port address, hexadecimal, or none"),
                        option("--vsans", "VSANS", &options->vsans,
                               "Up to 8 VSANs that the port is bound to, as in 10,20, or none"),
                        option("--vsan", "VSAN", &options->vsan, "The VSAN that the port is in now, or none")},
          .run = runs(set_port, options),
          .parts = {}};
}

command set_binding_command() {
  auto options = std::make_shared<set_binding_options>();
  return {.name = "binding",
          .what = "The interface that answers for a port number",
          .examples =
              "  chnsw -s /tmp/director set binding 240 port-channel5\n"
              "  chnsw -s /tmp/director set binding 240 none",
          .arguments = {word("PN", &options->pn, "Port number, decimal"),
                        word("IF", &options->interface, "Interface like port-channel5, or none")},
          .run = runs(set_binding, options),
          .parts = {}};
}

command set_address_command() {
  auto options = std::make_shared<set_address_options>();
  return {.name = "address",
          .what = "The port number that the address table gives for an address",
          .examples = "  chnsw -s /tmp/director set address 2F 12",
          .arguments = {word("PA", &options->pa, "Port address, hexadecimal"),
                        word("PN", &options->pn, "Port number, decimal, or none")},
          .run = runs(set_address, options),
          .parts = {}};
}

} // namespace

command set_command() {
  return {.name = "set",
          .what = "Change an entry of the port map, or a time reference, in a switch's folder",
          .examples =
              "  chnsw -s /tmp/director set port fc3/5 --pa 2F\n"
              "  chnsw -s /tmp/director set port 1030 --pn none --pa none\n"
              "  chnsw -s /tmp/director set binding 240 port-channel5\n"
              "  chnsw -s /tmp/director set address 2F 12\n  chnsw -s /tmp/director set time 10 now",
          .arguments = {},
          .run = {},
          .parts = {set_port_command(), set_binding_command(), set_address_command(), set_time_command()}};
}

} // namespace chnsw_tool
