// Setting up the command line: commands, options, help.
#include "command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>
#include <sstream>

#include "change_commands.h"
#include "check_command.h"
#include "compare_commands.h"
#include "default_command.h"
#include "front_command.h"
#include "info_command.h"
#include "map_commands.h"
#include "resolve_commands.h"
#include "tod_command.h"
#include "watch_command.h"

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
      ->type_name("SECONDS");
  watch->add_option("--count", watch_with->count, "End after this many drawings; 0: go on until interrupted")
      ->check(CLI::NonNegativeNumber)
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
      ->check(CLI::Range(0, 999))
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

// How many letters apart two words are.
size_t distance(const std::string& a, const std::string& b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row.back();
}

std::string nearest_command(const CLI::App& app, const std::string& word) {
  std::string nearest;
  size_t least = 3;
  for (const CLI::App* sub : app.get_subcommands(nullptr)) {
    size_t apart = distance(word, sub->get_name());
    if (apart >= least || apart >= sub->get_name().size()) continue;
    least = apart;
    nearest = sub->get_name();
  }
  return nearest;
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
  auto subs = app.get_subcommands(nullptr);
  if (word.empty() || std::any_of(subs.begin(), subs.end(), [&](const CLI::App* sub) { return sub->get_name() == word; }))
    return;
  std::string nearest = nearest_command(app, word);
  throw usage_error(
      fmt::format("there is no command \"{}\"; {}", word,
                  nearest.empty() ? "chnsw --help lists them" : fmt::format("did you mean \"{}\"?", nearest)));
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
  if (!is_required || read.empty() || read.back()->get_require_subcommand_min() == 0) return error.what();
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
  try {
    if (std::string word = first_word(argc, argv); !word.empty()) check_command(app, word);
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream ignored;
    if (error.get_exit_code() != 0) throw usage_error(fmt::format("{}; see {}", complaint(app, error), help_command(app)));
    app.exit(error, out, ignored);
    line.text = out.str();
  }
  return line;
}

} // namespace chnsw_tool
