// create and set: everything that writes to a switch's folder, but for its time references.
#include "commands/change_commands.h"

#include <fmt/format.h>

#include <functional>
#include <string>

#include "commands/tod_command.h"
#include "inspect/chassis/port_map_edit.h"
#include "inspect/chassis/switch_changes.h"
#include "output/difference_columns.h"
#include "output/record_table.h"

namespace chnsw_tool {

namespace {

using inspect::new_port_values;
using vswitch::chassis_description;

// Prints what was done. When that cannot be written, a notice says that it was done all the same.
void print_done(const command_context& context, const result_document& document, const std::string& what) {
  try {
    context.print(document);
  } catch (const inspect::error&) {
    notice(what);
    throw;
  }
}

exit_code print_change(const command_context& context, const inspect::map_change& change) {
  if (!change.changed) notice(kNothingToChange);
  print_done(context, change_document(change.change_counter, change.differences),
             change.changed ? fmt::format("the change was made, the change counter is {}", change.change_counter)
                            : "nothing was changed");
  return kFound;
}

exit_code change_folder(const command_context& context,
                        const std::function<inspect::port_map_edit(const chassis_description&)>& make_edit) {
  return print_change(context, inspect::change_map(context.named_folder(kChangesNeedFolder), make_edit));
}

// ---- create ----

struct create_options {
  std::string folder;
  std::string from;
};

struct created_switch {
  const create_options& options;
  chassis_description chassis;
};

int64_t ports_of(const chassis_description& chassis) {
  int64_t ports = 0;
  for (const auto& card : chassis.line_cards) ports += card.ports;
  return ports;
}

const record_column<created_switch> kCreatedColumns[] = {
    {{"switch", "SWITCH"}, [](const created_switch& made) -> cell { return made.options.folder; }},
    {{"from", "FROM"}, [](const created_switch& made) -> cell { return made.options.from; }},
    {{"name", "NAME"}, [](const created_switch& made) -> cell { return made.chassis.name; }},
    {{"slots", "SLOTS"}, [](const created_switch& made) -> cell { return int64_t{made.chassis.slots()}; }},
    {{"type", "TYPE"}, [](const created_switch& made) -> cell { return int64_t{made.chassis.type}; }},
    {{"ports", "PORTS"}, [](const created_switch& made) -> cell { return ports_of(made.chassis); }},
    {{"change_counter", "CHANGE"}, [](const created_switch& made) -> cell { return int64_t{made.chassis.change_counter}; }},
};

exit_code create_switch(const command_context& context, const create_options& options) {
  const inspect::opened_switch opened = inspect::open_switch(options.from);
  const created_switch made{options, inspect::create_folder(options.folder, opened.chassis)};
  print_done(context, document_of<created_switch>(kCreatedColumns, {made}), fmt::format("{} was made", options.folder));
  return kFound;
}

// ---- set ----

struct set_binding_options {
  std::string pn;
  std::string interface;
};

struct set_address_options {
  std::string pa;
  std::string pn;
};

exit_code set_port(const command_context& context, const new_port_values& options) {
  if (!options.pn && !options.pa && !options.vsans && !options.vsan)
    throw inspect::question_error("nothing to set; give --pn, --pa, --vsans or --vsan");
  return change_folder(context, [&](const auto& chassis) { return inspect::edit_of_port(chassis, options); });
}

exit_code set_binding(const command_context& context, const set_binding_options& options) {
  return change_folder(
      context, [&](const auto& chassis) { return inspect::edit_of_binding(chassis, options.pn, options.interface); });
}

exit_code set_address(const command_context& context, const set_address_options& options) {
  return change_folder(context, [&](const auto&) { return inspect::edit_of_address(options.pa, options.pn); });
}

// ---- The commands ----

command set_port_command() {
  auto options = std::make_shared<new_port_values>();
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
