// Setting up the command line: commands, options, help.
#include "command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <map>
#include <memory>
#include <sstream>

#include "commands/ask_commands.h"
#include "commands/change_commands.h"
#include "commands/check_command.h"
#include "commands/codepage_command.h"
#include "commands/compare_commands.h"
#include "commands/default_command.h"
#include "commands/front_command.h"
#include "commands/info_command.h"
#include "commands/listen_command.h"
#include "commands/manager_command.h"
#include "commands/map_commands.h"
#include "commands/message_command.h"
#include "commands/order_commands.h"
#include "commands/resolve_commands.h"
#include "commands/swap_command.h"
#include "commands/tod_command.h"
#include "commands/watch_command.h"
#include "inspect/messages/message_table.h"
#include "inspect/words/nearest_word.h"

namespace chnsw_tool {

namespace {

constexpr char kVersion[] = "chnsw " CHNSW_VERSION;

constexpr char kGeneralHelp[] =
    "Numbers: bare digits are hexadecimal for a port address (PA) and a TOD clock value, decimal for everything else; 0x\n"
    "always makes them hexadecimal. One number, a list or a range: C0  10-1F,30  all\n"
    "\n"
    "Exit status: 0 found, 1 not found or findings, 2 wrong command line or chassis file, 3 a folder, a service or the "
    "output\n"
    "failed.\n"
    "\n"
    "Examples:\n"
    "  chnsw -s examples/director-10.toml pa 20 --vsan 10 --explain\n"
    "  chnsw -s examples/director-10.toml check\n"
    "  chnsw create /tmp/director examples/director-10.toml && CHNSW_SWITCH=/tmp/director chnsw map\n";

constexpr char kCommonOptions[] = "chnsw --help tells the options of every command: --switch, --format, --color.";

// Options live as long as the command that was made from them.
template <typename options>
using shared_options = std::shared_ptr<options>;

// A decimal number from lowest to highest; CLI11 tells bounds of its own in full, even those of all numbers.
template <typename number>
CLI::Validator between(number lowest, number highest) {
  return {[lowest, highest](const std::string& word) -> std::string {
            number read{};
            auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), read);
            if (error == std::errc{} && end == word.data() + word.size() && read >= lowest && read <= highest) return {};
            return fmt::format("found \"{}\", expected a decimal number from {} to {}", word, lowest, highest);
          },
          ""};
}

// How often something is to be done before the command ends; 0: without end.
CLI::Validator a_count() {
  return between(uint64_t{0}, uint64_t{UINT32_MAX});
}

CLI::Validator seconds_to_wait() {
  return between(0.01, 3600.0);
}

// Adds a command: what it does, and examples for its help.
CLI::App* add_command(CLI::App& app, const std::string& name, const std::string& what, const std::string& examples) {
  CLI::App* sub = app.add_subcommand(name, what);
  sub->fallthrough();
  sub->footer(examples.empty() ? kCommonOptions : fmt::format("Examples:\n{}\n\n{}", examples, kCommonOptions));
  return sub;
}

template <typename options>
using command_function = exit_code (*)(const command_context&, const options&);

template <typename options>
void runs(CLI::App* sub, command_function<options> function, const shared_options<options>& with,
          parsed_command_line& line) {
  sub->callback([&line, function, with] {
    line.run = [function, with](const command_context& context) { return function(context, *with); };
  });
}

// ---- pa, pn, if, slot, index ----

constexpr char kHexadecimal[] = "Bare digits are hexadecimal.";
constexpr char kDecimal[] = "Bare digits are decimal; 0x makes them hexadecimal.";

shared_options<resolve_options> add_question(CLI::App* sub, const std::string& what) {
  auto options = std::make_shared<resolve_options>();
  sub->add_option("WHAT", options->what, what)->required()->type_name("");
  sub->add_flag("--explain", options->explain,
                "Show every entry that was considered, the counters and the rule that decided");
  return options;
}

void add_search_options(CLI::App* sub, const shared_options<resolve_options>& options) {
  sub->add_option("--vsan", options->vsan, "The VSAN that is asked about, 0 to 4095, decimal; none when left out")
      ->type_name("V");
  sub->add_flag("--fast", options->fast, "Ask the library's fast forms, which read the tables once");
}

void add_resolve_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* pa =
      add_command(app, "pa", "What belongs to a port address",
                  "  chnsw -s FILE pa C0\n  chnsw -s FILE pa 10-1F,30 --vsan 10\n  chnsw -s FILE pa all --format csv\n"
                  "  chnsw -s FILE pa 20 --vsan 10 --explain");
  auto options = add_question(pa, fmt::format("Port addresses: C0, 10-1F,30 or all. {}", kHexadecimal));
  add_search_options(pa, options);
  runs(pa, resolve_addresses, options, line);

  CLI::App* pn =
      add_command(app, "pn", "What belongs to a port number",
                  "  chnsw -s FILE pn 12\n  chnsw -s FILE pn 0-47,240 --vsan 10\n  chnsw -s FILE pn all --format jsonl");
  options = add_question(pn, fmt::format("Port numbers: 12, 0-47,240 or all. {}", kDecimal));
  add_search_options(pn, options);
  runs(pn, resolve_numbers, options, line);

  CLI::App* interface = add_command(app, "if", "What belongs to an interface",
                                    "  chnsw -s FILE if fc3/5\n  chnsw -s FILE if fc3/1-48,port-channel5\n"
                                    "  chnsw -s FILE if 0x01020400 --explain\n  chnsw -s FILE if all");
  options = add_question(interface,
                         "Interfaces: fc3/5, fc3/1-48, port-channel5, fcip3, an index like 0x01020400, or all. "
                         "Slots and ports count from 1 and are decimal.");
  interface->add_flag("--skip-lag-check", options->skip_lag_check, "Answer a port-channel's member like any other port");
  runs(interface, resolve_interfaces, options, line);

  CLI::App* slot = add_command(app, "slot", "What belongs to a slot and port",
                               "  chnsw -s FILE slot 3/5\n  chnsw -s FILE slot 3/1-8,4/1\n  chnsw -s FILE slot 3");
  options = add_question(
      slot, fmt::format("Slot and port, both from 1: 3/5, 3/1-48, 3 for the whole card, or all. {}", kDecimal));
  runs(slot, resolve_slots, options, line);

  CLI::App* index = add_command(app, "index", "What belongs to a port map index",
                                "  chnsw -s FILE index 254\n  chnsw -s FILE index 0-47,1024\n  chnsw -s FILE index all");
  options = add_question(index, fmt::format("Port map indexes, 0 to 1279: 254, 0-47,1024 or all. {}", kDecimal));
  runs(index, resolve_indexes, options, line);
}

// ---- map, vsan, logical, next, last, default, info, check, front ----

void add_list_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* map =
      add_command(app, "map", "The port map",
                  "  chnsw -s FILE map\n  chnsw -s FILE map --index 0-47,1024\n  chnsw -s FILE map --format csv");
  auto map_with = std::make_shared<map_options>();
  map->add_option(
      "--index", map_with->indexes,
      fmt::format("Port map indexes, 0 to 1279: 254, 0-47,1024 or all; without it every entry that holds anything. {}",
                  kDecimal));
  runs(map, show_map, map_with, line);

  CLI::App* vsan =
      add_command(app, "vsan", "The ports that are in a VSAN now",
                  "  chnsw -s FILE vsan 10\n  chnsw -s FILE vsan 10,20 --format json\n  chnsw -s FILE vsan all");
  auto vsan_with = std::make_shared<vsan_options>();
  vsan->add_option("VSAN", vsan_with->vsans, fmt::format("VSANs: 10, 10,20 or all. {}", kDecimal))
      ->required()
      ->type_name("");
  runs(vsan, show_vsans, vsan_with, line);

  CLI::App* logical =
      add_command(app, "logical", "The port numbers that are bound to an interface", "  chnsw -s FILE logical");
  runs(logical, show_logical_interfaces, std::make_shared<no_options>(), line);

  CLI::App* info = add_command(app, "info", "The chassis: slots, cards, VSANs, highest port number, change counter",
                               "  chnsw -s FILE info\n  chnsw -s FILE info --format json");
  runs(info, show_info, std::make_shared<no_options>(), line);
}

void add_walk_commands(CLI::App& app, parsed_command_line& line) {
  constexpr char kStart[] =
      "Interfaces to start from: fc3/5, fc3/1-48, an index like 0x01020400, or all. Slots and ports are decimal.";
  CLI::App* next =
      add_command(app, "next", "The next numbered port after an interface",
                  "  chnsw -s FILE next fc1/1\n  chnsw -s FILE next fc1/1-8,fc2/3\n  chnsw -s FILE next fc1/1 --all");
  auto next_with = std::make_shared<walk_options>();
  next->add_option("WHAT", next_with->what, kStart)->required()->type_name("");
  next->add_flag("--all", next_with->all, "Go on to the end of the walk");
  runs(next, show_next, next_with, line);

  CLI::App* last = add_command(app, "last", "The last numbered port of an interface's line card",
                               "  chnsw -s FILE last fc1/1\n  chnsw -s FILE last fc1/1,fc2/1");
  auto last_with = std::make_shared<walk_options>();
  last->add_option("WHAT", last_with->what, kStart)->required()->type_name("");
  runs(last, show_last, last_with, line);
}

void add_judging_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* by_default = add_command(app, "default", "The default port numbering, and whether the map still is the default",
                                     "  chnsw -s FILE default\n  chnsw -s FILE default --verdict\n"
                                     "  chnsw -s FILE default --slot 1-2 --logical");
  auto default_with = std::make_shared<default_options>();
  auto* verdict =
      by_default->add_flag("--verdict", default_with->verdict,
                           "Only whether the map is the default by the library's word, and where it first differs; "
                           "exit status 1 when it is not");
  by_default
      ->add_option("--slot", default_with->slots, fmt::format("Default numbers of slots: 3, 1-4 or all. {}", kDecimal))
      ->type_name("LIST")
      ->excludes(verdict);
  by_default->add_flag("--logical", default_with->logical, "Default numbers without a physical port")->excludes(verdict);
  runs(by_default, show_default, default_with, line);

  CLI::App* check = add_command(app, "check", "Try every number in every VSAN; exit status 1 when anything is wrong",
                                "  chnsw -s FILE check\n  chnsw -s FILE check --notes --format json");
  auto check_with = std::make_shared<check_options>();
  check->add_flag("--notes", check_with->notes, "Also list what is as it should be but good to know");
  runs(check, check_switch, check_with, line);

  CLI::App* front = add_command(
      app, "front", "A picture of the chassis front, coloured by VSAN",
      "  chnsw -s FILE front\n  chnsw -s FILE front --svg front.svg\n  chnsw -s FILE front --svg - > front.svg");
  auto front_with = std::make_shared<front_options>();
  front->add_option("--svg", front_with->svg, "Draw an SVG picture into a file; - for standard output")->type_name("FILE");
  runs(front, show_front, front_with, line);
}

// ---- diff, export, create, set, watch ----

void add_file_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* diff = add_command(app, "diff", "Where two chassis files or switches differ; exit status 1 when they do",
                               "  chnsw diff before.toml after.toml\n  chnsw diff /tmp/director examples/director-10.toml\n"
                               "The change counter is not compared.");
  auto diff_with = std::make_shared<diff_options>();
  diff->add_option("A", diff_with->a, "Chassis file or switch's folder")->required()->type_name("");
  diff->add_option("B", diff_with->b, "Chassis file or switch's folder")->required()->type_name("");
  runs(diff, show_diff, diff_with, line);

  CLI::App* exports =
      add_command(app, "export", "The whole switch in another form, on standard output",
                  "  chnsw -s /tmp/director export > director.toml\n  chnsw -s FILE export --to csv > map.csv");
  auto export_with = std::make_shared<export_options>();
  exports
      ->add_option("--to", export_with->to,
                   "toml: chassis file (default); json: everything; csv: the port map; without it --format decides")
      ->check(CLI::IsMember({"toml", "json", "csv"}))
      ->type_name("FORM");
  runs(exports, export_switch, export_with, line);

  CLI::App* create =
      add_command(app, "create", "Make a switch's folder from a chassis file, or replace the switch that is in it",
                  "  chnsw create /tmp/director examples/director-10.toml");
  auto create_with = std::make_shared<create_options>();
  create->add_option("FOLDER", create_with->folder, "Folder of the switch; made when it is not there")
      ->required()
      ->type_name("");
  create->add_option("FILE", create_with->from, "Chassis file, or folder of another switch")->required()->type_name("");
  runs(create, create_switch, create_with, line);

  CLI::App* watch = add_command(app, "watch", "Draw the port map again whenever it changes",
                                "  chnsw -s /tmp/director watch\n  chnsw -s /tmp/director watch --format jsonl\n"
                                "  chnsw -s /tmp/director watch --count 2 --interval 0.1");
  auto watch_with = std::make_shared<watch_options>();
  watch
      ->add_option("--interval", watch_with->interval_seconds,
                   "Seconds between looks at the change counter; 1 when left out")
      ->check(seconds_to_wait())
      ->type_name("SECONDS");
  watch->add_option("--count", watch_with->count, "End after this many drawings; 0: go on until interrupted")
      ->check(a_count())
      ->type_name("N");
  runs(watch, watch_switch, watch_with, line);
}

void add_set_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* set = add_command(
      app, "set", "Change an entry of the port map, or a time reference, in a switch's folder",
      "  chnsw -s /tmp/director set port fc3/5 --pa 2F\n  chnsw -s /tmp/director set port 1030 --pn none --pa none\n"
      "  chnsw -s /tmp/director set binding 240 port-channel5\n  chnsw -s /tmp/director set address 2F 12\n"
      "  chnsw -s /tmp/director set time 10 now");
  set->require_subcommand(1);

  CLI::App* port = add_command(*set, "port", "A port's numbers and VSANs",
                               "  chnsw -s /tmp/director set port fc3/5 --pa 2F --vsans 10,20 --vsan 10\n"
                               "  chnsw -s /tmp/director set port 1030 --pn none");
  auto port_with = std::make_shared<set_port_options>();
  port->add_option("PORT", port_with->where, "Interface like fc3/5, or a port map index, decimal")
      ->required()
      ->type_name("");
  port->add_option("--pn", port_with->pn, "Port number, decimal, or none")->type_name("PN");
  port->add_option("--pa", port_with->pa, "Port address, hexadecimal, or none")->type_name("PA");
  port->add_option("--vsans", port_with->vsans, "Up to 8 VSANs that the port is bound to, as in 10,20, or none")
      ->type_name("VSANS");
  port->add_option("--vsan", port_with->vsan, "The VSAN that the port is in now, or none")->type_name("VSAN");
  runs(port, set_port, port_with, line);

  CLI::App* binding = add_command(*set, "binding", "The interface that answers for a port number",
                                  "  chnsw -s /tmp/director set binding 240 port-channel5\n"
                                  "  chnsw -s /tmp/director set binding 240 none");
  auto binding_with = std::make_shared<set_binding_options>();
  binding->add_option("PN", binding_with->pn, "Port number, decimal")->required()->type_name("");
  binding->add_option("IF", binding_with->interface, "Interface like port-channel5, or none")->required()->type_name("");
  runs(binding, set_binding, binding_with, line);

  CLI::App* address = add_command(*set, "address", "The port number that the address table gives for an address",
                                  "  chnsw -s /tmp/director set address 2F 12");
  auto address_with = std::make_shared<set_address_options>();
  address->add_option("PA", address_with->pa, "Port address, hexadecimal")->required()->type_name("");
  address->add_option("PN", address_with->pn, "Port number, decimal, or none")->required()->type_name("");
  runs(address, set_address, address_with, line);
}

// ---- tod, set time ----

void add_time_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* tod =
      add_command(app, "tod", "The mainframe's time (TOD clock values) and the host's, and a VSAN's time stamp",
                  "  chnsw tod CE4F44C40DC3B000\n  chnsw tod now 2015-01-05T09:07:03.000123Z @1420448823.9\n"
                  "  chnsw tod - --format csv < values.txt\n  chnsw tod CE4F44C4 --leap-seconds 27 --explain\n"
                  "  chnsw -s FILE tod --vsan 10\n  chnsw -s FILE tod --vsan all --at 2015-01-05T09:07:04.1Z --explain");
  auto options = std::make_shared<tod_options>();
  tod->add_option("WHAT", options->what,
                  "TOD clock values (4 to 16 digits, hexadecimal, padded with zeros on the right), times in UTC like "
                  "2015-01-05T09:07:03.9Z, host seconds since 1970 like @1420448823.9 (decimal), now; - for the lines of "
                  "standard input")
      ->type_name("");
  tod->add_option("--vsan", options->vsans,
                  "The time stamps of VSANs by their references: 10, 10,20 or all that have one, decimal")
      ->type_name("VSANS");
  tod->add_option("--at", options->at, "The host's time for them: a time, @seconds or now, the default")->type_name("TIME");
  tod->add_option("--leap-seconds", options->leap_seconds,
                  "The TOD clock counts this many leap seconds: subtracted for UTC and host seconds, 0 to 999")
      ->check(between(0, 999))
      ->type_name("N");
  tod->add_flag("--explain", options->explain, "Show the arithmetic, and how far a time stamp drifts by it");
  runs(tod, show_tod, options, line);
}

void add_set_time_command(CLI::App& set, parsed_command_line& line) {
  CLI::App* time = add_command(set, "time", "The reference of a VSAN's time stamps",
                               "  chnsw -s /tmp/director set time 10 now\n"
                               "  chnsw -s /tmp/director set time 10 2015-01-05T09:07:03.9Z CE4F44C4E976\n"
                               "  chnsw -s /tmp/director set time 10 none");
  auto options = std::make_shared<set_time_options>();
  time->add_option("VSAN", options->vsan, "VSAN, decimal")->required()->type_name("");
  time->add_option("HOST", options->host_time, "The host's time: a time in UTC, @seconds, now; or none")
      ->required()
      ->type_name("");
  time->add_option("TOD", options->tod,
                   "The TOD clock value of the same moment, 4 to 16 digits, hexadecimal, or now; the host's time when left "
                   "out")
      ->type_name("");
  runs(time, set_time, options, line);
}

// ---- manager, ask, install, swap, listen, notify ----

constexpr char kInterfaces[] =
    "Interfaces: fc3/5, fc3/1-48, port-channel5, an index like 0x01020400, or all. Slots and ports are decimal.";

void add_interfaces(CLI::App* sub, const std::string& name, std::vector<std::string>& interfaces) {
  sub->add_option(name, interfaces, kInterfaces)->required()->type_name("");
}

// One word of them, where another word follows.
void add_interface_word(CLI::App* sub, std::vector<std::string>& interfaces) {
  sub->add_option_function<std::string>(
         "IF", [&interfaces](const std::string& word) { interfaces = {word}; }, kInterfaces)
      ->required()
      ->type_name("");
}

void add_vsans(CLI::App* sub, const std::string& name, std::string& vsans) {
  sub->add_option(name, vsans, fmt::format("VSANs: 10, 10,20 or all. {}", kDecimal))->required()->type_name("");
}

void add_timeout(CLI::App* sub, double& seconds) {
  sub->add_option("--timeout", seconds,
                  fmt::format("Seconds to wait for each of the manager's messages; {:g} when left out", seconds))
      ->check(seconds_to_wait())
      ->type_name("SECONDS");
}

void add_manager_command(CLI::App& app, parsed_command_line& line) {
  CLI::App* manager = add_command(app, "manager", "Be the FICON manager of a switch's folder, until interrupted",
                                  "  chnsw manager /tmp/director\n  chnsw manager /tmp/director 2> manager.log &");
  auto options = std::make_shared<manager_command_options>();
  manager->add_option("FOLDER", options->folder, "Folder of the switch; the one of --switch when left out")->type_name("");
  runs(manager, serve_folder, options, line);
}

// Adds a question of ask; what it is about is the caller's to add.
CLI::App* add_ask(CLI::App& ask, parsed_command_line& line, const std::string& name, const std::string& what,
                  const std::string& examples, command_function<ask_options> function,
                  const shared_options<ask_options>& options) {
  CLI::App* sub = add_command(ask, name, what, examples);
  add_timeout(sub, options->timeout_seconds);
  runs(sub, function, options, line);
  return sub;
}

void add_ask_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* ask = add_command(app, "ask", "Ask the manager of a switch's folder, by the library's own messages",
                              "  chnsw -s /tmp/director ask portmap fc1/1-4\n  chnsw -s /tmp/director ask vsans\n"
                              "  chnsw -s /tmp/director ask vsan-state fc1/1-4 10,20\n"
                              "  chnsw -s /tmp/director ask rnid fc3/1");
  ask->require_subcommand(1);
  auto with = std::make_shared<ask_options>();
  CLI::App* portmap = add_ask(*ask, line, "portmap", "Port numbers and port addresses of interfaces",
                              "  chnsw -s /tmp/director ask portmap fc1/1-4,port-channel5\n"
                              "  chnsw -s /tmp/director ask portmap all --format csv",
                              ask_portmap, with);
  add_interfaces(portmap, "IF", with->interfaces);
  add_ask(*ask, line, "vsans", "The enabled VSANs", "  chnsw -s /tmp/director ask vsans --format json", ask_vsans, with);
  CLI::App* state = add_ask(*ask, line, "vsan-state", "Whether interfaces are in VSANs, and bound to them",
                            "  chnsw -s /tmp/director ask vsan-state fc1/1-4 10,20\n"
                            "  chnsw -s /tmp/director ask vsan-state fc1/1 all --timeout 0.5",
                            ask_vsan_state, with);
  add_interface_word(state, with->interfaces);
  add_vsans(state, "VSANS", with->vsans);
  CLI::App* rnid = add_ask(*ask, line, "rnid", "What the devices behind interfaces say they are",
                           "  chnsw -s /tmp/director ask rnid fc3/1\n  chnsw -s /tmp/director ask rnid all --format jsonl",
                           ask_rnid, with);
  add_interfaces(rnid, "IF", with->interfaces);
}

void add_order_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* install = add_command(app, "install", "Have the manager install FICON in VSANs for interfaces: bind them to it",
                                  "  chnsw -s /tmp/director install 30 fc1/1-4\n"
                                  "  chnsw -s /tmp/director install 30,31 fc1/1-4,fc2/1\n"
                                  "  chnsw -s /tmp/director install 30 fc1/1-4 --uninstall");
  auto install_with = std::make_shared<install_options>();
  add_vsans(install, "VSANS", install_with->vsans);
  add_interfaces(install, "IF", install_with->interfaces);
  install->add_flag("--uninstall", install_with->uninstall, "Take the VSANs out instead");
  add_timeout(install, install_with->timeout_seconds);
  runs(install, install_vsans, install_with, line);

  CLI::App* swap = add_command(app, "swap", "Have the manager swap two interfaces, and answer each step of the handshake",
                               "  chnsw -s /tmp/director swap fc1/1 fc2/1\n"
                               "  chnsw -s /tmp/director swap fc1/1 fc2/1 --refuse do-swap --reason 7");
  auto swap_with = std::make_shared<swap_options>();
  swap->add_option("A", swap_with->a, "Interface like fc3/5, or an index like 0x01020400")->required()->type_name("");
  swap->add_option("B", swap_with->b, "The other one")->required()->type_name("");
  auto* refuse = swap->add_option("--refuse", swap_with->refuse, "Refuse a step: check-lock, do-swap or unlock")
                     ->check(CLI::IsMember({"check-lock", "do-swap", "unlock"}))
                     ->type_name("STEP");
  swap->add_option("--reason", swap_with->reason, "The swap status that refuses it, decimal; 1 when left out")
      ->check(between(uint32_t{1}, UINT32_MAX))
      ->needs(refuse)
      ->type_name("N");
  add_timeout(swap, swap_with->timeout_seconds);
  runs(swap, swap_interfaces, swap_with, line);
}

// ---- listen, notify ----

// Adds a notice of notify; what it is about is the caller's to add.
CLI::App* add_notice(CLI::App& notify, parsed_command_line& line, const std::string& name, const std::string& what,
                     const std::string& examples, command_function<notify_options> function,
                     const shared_options<notify_options>& options) {
  CLI::App* sub = add_command(notify, name, what, examples);
  add_timeout(sub, options->timeout_seconds);
  runs(sub, function, options, line);
  return sub;
}

void add_state(CLI::App* sub, const shared_options<notify_options>& options, const std::string& on,
               const std::string& off) {
  sub->add_option("STATE", options->state, fmt::format("{} or {}", on, off))
      ->required()
      ->check(CLI::IsMember({on, off}))
      ->type_name("");
}

void add_notice_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* listen = add_command(app, "listen", "The manager's notices as they come, until interrupted",
                                 "  chnsw -s /tmp/director listen\n  chnsw -s /tmp/director listen --format jsonl\n"
                                 "  chnsw -s /tmp/director listen --count 1");
  auto listen_with = std::make_shared<listen_options>();
  listen->add_option("--count", listen_with->count, "End after this many notices; 0: go on until interrupted")
      ->check(a_count())
      ->type_name("N");
  runs(listen, listen_to_manager, listen_with, line);

  CLI::App* notify = add_command(app, "notify", "Have the manager send a notice to all that listen",
                                 "  chnsw -s /tmp/director notify vsan 10 down\n"
                                 "  chnsw -s /tmp/director notify port fc1/1-4 down --reason 3\n"
                                 "  chnsw -s /tmp/director notify enable fc1/1 off\n"
                                 "  chnsw -s /tmp/director notify rnid fc3/1");
  notify->require_subcommand(1);
  auto with = std::make_shared<notify_options>();
  CLI::App* vsan = add_notice(*notify, line, "vsan", "A VSAN came up or went down",
                              "  chnsw -s /tmp/director notify vsan 10,20 down", notify_vsan, with);
  add_vsans(vsan, "VSANS", with->vsans);
  add_state(vsan, with, "up", "down");
  CLI::App* port = add_notice(*notify, line, "port", "A port came up or went down",
                              "  chnsw -s /tmp/director notify port fc1/1-4 down --reason 3", notify_port, with);
  add_interface_word(port, with->interfaces);
  add_state(port, with, "up", "down");
  port->add_option("--reason", with->reason, "Why, 0 to 255, decimal; 0 when left out")
      ->check(between(0, 255))
      ->type_name("N");
  CLI::App* enable = add_notice(*notify, line, "enable", "A port was enabled or disabled",
                                "  chnsw -s /tmp/director notify enable fc1/1 off", notify_enable, with);
  add_interface_word(enable, with->interfaces);
  add_state(enable, with, "on", "off");
  CLI::App* rnid = add_notice(*notify, line, "rnid", "The node descriptor of the device behind an interface",
                              "  chnsw -s /tmp/director notify rnid fc3/1", notify_rnid, with);
  add_interface_word(rnid, with->interfaces);
}

// ---- codepage, message ----

void add_codepage_command(CLI::App& app, parsed_command_line& line) {
  CLI::App* codepage = add_command(app, "codepage", "Code pages of mainframe hosts, and text in them",
                                   "  chnsw codepage\n  chnsw codepage 273\n  chnsw codepage 37 --from-host C6C9C3D6D5\n"
                                   "  chnsw codepage 37,273 --to-host 'ACM $1'\n"
                                   "  chnsw codepage 500 --to-host - --format csv < texts.txt");
  auto options = std::make_shared<codepage_options>();
  codepage
      ->add_option("PAGES", options->pages,
                   fmt::format("Code pages: 37, 37,500 or all; without them a list of those that there are. {}", kDecimal))
      ->type_name("");
  auto* to_host = codepage
                      ->add_option("--to-host", options->to_host,
                                   "The switch's text into the host's bytes; - for the lines of standard input")
                      ->allow_extra_args(false)
                      ->type_name("TEXT");
  codepage
      ->add_option("--from-host", options->from_host,
                   "The host's bytes, hexadecimal, into the switch's text; - for standard input")
      ->type_name("HEX")
      ->excludes(to_host);
  runs(codepage, show_codepages, options, line);
}

std::string kinds_text() {
  return fmt::format("One of {}", fmt::join(names_of(message_kinds()), ", "));
}

void add_byte_order(CLI::App* sub, const shared_options<message_options>& options) {
  sub->add_option(
         "--byte-order", options->order,
         "Order of the bytes of a number: big, as a switch writes them (default), or little, as this machine does. "
         "Interfaces in requests and answers are big-endian in both")
      ->check(CLI::IsMember({"big", "little"}))
      ->type_name("ORDER");
}

void add_message_commands(CLI::App& app, parsed_command_line& line) {
  CLI::App* message =
      add_command(app, "message", "What the bytes of a manager message say, and bytes for what is to be said",
                  "  chnsw message\n"
                  "  chnsw message decode ifvsan-answer 00000000 00000003 0000000A 01020400 00000000\n"
                  "  chnsw message encode vsan-install install_byte0=1 vsans=10,20-29 interfaces=fc1/1-4");
  message->require_subcommand(0, 1);
  message->callback([&line, message] {
    if (message->get_subcommands().empty())
      line.run = [](const command_context& context) { return list_messages(context, {}); };
  });

  CLI::App* list = add_command(*message, "list", "The kinds of messages and their fields",
                               "  chnsw message list\n  chnsw message list rnid-answer vsan-install --format csv");
  auto list_with = std::make_shared<message_list_options>();
  list->add_option("KIND", list_with->kinds, kinds_text())->type_name("");
  runs(list, list_messages, list_with, line);

  CLI::App* decode = add_command(*message, "decode", "Every field of a message's bytes",
                                 "  chnsw message decode ifvsan-answer 00000000 00000003 0000000A 01020400 00000000\n"
                                 "  hexdump -C captured | chnsw message decode rnid-answer - --format json");
  auto decode_with = std::make_shared<message_options>();
  decode->add_option("KIND", decode_with->kind, kinds_text())->required()->type_name("");
  decode
      ->add_option("HEX", decode_with->words,
                   "The payload in hexadecimal: C1F1, 0xC1 F1, or a dump with offsets; - for standard input")
      ->type_name("");
  add_byte_order(decode, decode_with);
  decode->add_flag("--value", decode_with->value_alone,
                   "The bytes are the value alone, also if they begin like a TLV array of this virtual switch");
  runs(decode, decode_message, decode_with, line);

  CLI::App* encode =
      add_command(*message, "encode", "The bytes of a message with these fields",
                  "  chnsw message encode vsan-install install_byte0=1 vsans=10,20-29 interfaces=fc1/1-4\n"
                  "  chnsw message encode rnid-answer if_index=fc3/1 codepage=37 node=8401-C02-ACM-83-A1234 --value");
  auto encode_with = std::make_shared<message_options>();
  encode->add_option("KIND", encode_with->kind, kinds_text())->required()->type_name("");
  encode
      ->add_option("FIELD=VALUE", encode_with->words,
                   "Fields as chnsw message list KIND names them; the others hold what is usual")
      ->type_name("");
  add_byte_order(encode, encode_with);
  encode->add_flag("--value", encode_with->value_alone, "The value alone, without the TLV array of this virtual switch");
  runs(encode, encode_message, encode_with, line);
}

// ---- The whole ----

void add_general_options(CLI::App& app, parsed_command_line& line) {
  static const std::map<std::string, output_format> kFormats = {{"table", output_format::table},
                                                                {"json", output_format::json},
                                                                {"jsonl", output_format::jsonl},
                                                                {"csv", output_format::csv}};
  app.add_option("-s,--switch", line.switch_path, "Chassis file, or folder of a switch; also from CHNSW_SWITCH")
      ->envname("CHNSW_SWITCH")
      ->type_name("PATH");
  app.add_option_function<std::string>(
         "--format", [&line](const std::string& name) { line.format = kFormats.at(name); },
         "Form of the result: table (default), json, jsonl, csv")
      ->check(CLI::IsMember({"table", "json", "jsonl", "csv"}))
      ->type_name("FORM");
  app.add_option("--color", line.colour, "Colour: auto (default: on a terminal, unless NO_COLOR is set), always, never")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN");
  app.set_version_flag("--version", kVersion, "Print the version");
}

std::vector<std::string> command_names(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* sub : app.get_subcommands(nullptr)) names.push_back(sub->get_name());
  return names;
}

// The first word that is no option and no option's value: the command. Empty when there is none.
std::string first_word(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    if (word == "-s" || word == "--switch" || word == "--format" || word == "--color") {
      ++i;
    } else if (!word.starts_with('-')) {
      return word;
    }
  }
  return "";
}

void check_command(const CLI::App& app, const std::string& word) {
  const auto names = command_names(app);
  if (word.empty() || std::find(names.begin(), names.end(), word) != names.end()) return;
  throw question_error(
      fmt::format("there is no command \"{}\"; {}", word, suggestion(word, names, "chnsw --help lists them")));
}

// The commands that were read before something went wrong: none, "pa", or "set" and "port".
std::vector<const CLI::App*> commands_read(const CLI::App& app) {
  std::vector<const CLI::App*> commands;
  for (auto inner = app.get_subcommands(); !inner.empty(); inner = inner.front()->get_subcommands())
    commands.push_back(inner.front());
  return commands;
}

std::string help_command(const CLI::App& app) {
  std::string command = "chnsw";
  for (const CLI::App* read : commands_read(app)) command += " " + read->get_name();
  return command + " --help";
}

// What is wrong, and what a command that wants another one after it would take there.
std::string complaint(const CLI::App& app, const CLI::ParseError& error) {
  auto read = commands_read(app);
  bool is_required = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
  bool is_extra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  if (!(is_required || is_extra) || read.empty() || read.back()->get_subcommands(nullptr).empty()) return error.what();
  std::string allowed;
  for (const CLI::App* sub : read.back()->get_subcommands(nullptr))
    allowed += (allowed.empty() ? "" : ", ") + sub->get_name();
  return fmt::format("{} is followed by one of: {}", read.back()->get_name(), allowed);
}

} // namespace

parsed_command_line parse_command_line(int argc, char** argv) {
  parsed_command_line line;
  CLI::App app("Asks the port map of a FICON switch which port, number, address and interface belong together, and why.",
               "chnsw");
  app.require_subcommand(1);
  app.footer(kGeneralHelp);
  add_general_options(app, line);
  add_resolve_commands(app, line);
  add_list_commands(app, line);
  add_walk_commands(app, line);
  add_judging_commands(app, line);
  add_file_commands(app, line);
  add_set_commands(app, line);
  add_time_commands(app, line);
  add_set_time_command(*app.get_subcommand("set"), line);
  add_manager_command(app, line);
  add_ask_commands(app, line);
  add_order_commands(app, line);
  add_notice_commands(app, line);
  add_codepage_command(app, line);
  add_message_commands(app, line);
  try {
    if (std::string word = first_word(argc, argv); !word.empty()) check_command(app, word);
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream ignored;
    if (error.get_exit_code() != 0)
      throw question_error(fmt::format("{}; see {}", complaint(app, error), help_command(app)));
    app.exit(error, out, ignored);
    line.text = out.str();
  }
  return line;
}

} // namespace chnsw_tool
