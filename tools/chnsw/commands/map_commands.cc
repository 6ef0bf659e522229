// Lists and walks over the port map.
#include "commands/map_commands.h"

#include <fmt/format.h>

#include <string>
#include <vector>

#include "inspect/port_map/bound_numbers.h"
#include "inspect/port_map/interface_walk.h"
#include "inspect/port_map/map_entries.h"
#include "inspect/port_map/vsan_ports.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"
#include "output/map_document.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using inspect::bound_number;
using inspect::library_session;
using inspect::vsan_port;
using inspect::walk_step;

// ---- map ----

struct map_options {
  std::vector<std::string> indexes; // empty: every entry that holds anything
};

exit_code show_map(const command_context& context, const map_options& options) {
  constexpr inspect::number_kind kMapIndex = {"port map index", 10, 0, FICON_PMAP_PORT_ENTRIES - 1, "254 or 0-47,1024"};
  const library_session session = context.open_session();
  auto indexes = options.indexes.empty()
                     ? indexes_in_use(session)
                     : parse_numbers(kMapIndex, options.indexes, inspect::numbers_below(FICON_PMAP_PORT_ENTRIES));
  context.print(map_document(session, indexes));
  return indexes.empty() ? kNotFound : kFound;
}

// ---- vsan ----

struct vsan_options {
  std::vector<std::string> vsans;
};

std::span<const record_column<vsan_port>> vsan_table() {
  static const record_column<vsan_port> kTable[] = {
      {{"vsan", "VSAN"}, [](const vsan_port& of) -> cell { return int64_t{of.vsan}; }},
      {{"pn", "PN", 2}, [](const vsan_port& of) { return number_cell(of.pn); }},
      {{"pa", "PA", 2, true}, [](const vsan_port& of) { return number_cell(of.pa); }},
      {{"slot_port", "SLOT/PORT", 0, false, column::table_only},
       [](const vsan_port& of) { return slot_and_port_cell(of.port); }},
      {{"slot", "", 0, false, column::data_only}, [](const vsan_port& of) { return slot_cell(of.port); }},
      {{"port", "", 0, false, column::data_only}, [](const vsan_port& of) { return port_cell(of.port); }},
      {{"index", "INDEX"}, [](const vsan_port& of) { return optional_cell(of.index); }},
      {{"if_index", "IF-INDEX", 8, true}, [](const vsan_port& of) { return interface_cell(of.if_index); }},
      {{"interface", "INTERFACE"}, [](const vsan_port& of) { return interface_name_cell(of.if_index); }},
      {{"bound", "BOUND"}, [](const vsan_port& of) -> cell { return of.bound; }}};
  return kTable;
}

exit_code show_vsans(const command_context& context, const vsan_options& options) {
  const library_session session = context.open_session();
  result_document document{columns_of(vsan_table()), {}};
  bool every_one_has_ports = true;
  for (uint32_t vsan : parse_numbers(inspect::kVsan, options.vsans, inspect::vsans_of(session.chassis()))) {
    const auto ports = inspect::ports_in_vsan(vsan);
    for (const auto& port : ports) document.add(cells_of(vsan_table(), port));
    if (ports.empty()) every_one_has_ports = false;
  }
  context.print(document);
  return every_one_has_ports && !document.rows.empty() ? kFound : kNotFound;
}

// ---- logical ----

std::span<const record_column<bound_number>> bound_number_table() {
  static const record_column<bound_number> kTable[] = {
      {{"pn", "PN", 2}, [](const bound_number& of) -> cell { return int64_t{of.pn}; }},
      {{"if_index", "IF-INDEX", 8, true}, [](const bound_number& of) { return interface_cell(of.if_index); }},
      {{"interface", "INTERFACE"}, [](const bound_number& of) { return interface_name_cell(of.if_index); }},
      {{"members", "MEMBERS"}, [](const bound_number& of) -> cell { return interface_names(of.members); }}};
  return kTable;
}

exit_code show_logical_interfaces(const command_context& context) {
  const library_session session = context.open_session();
  const auto numbers = bound_numbers(session);
  context.print(document_of(bound_number_table(), numbers));
  return numbers.empty() ? kNotFound : kFound;
}

// ---- next, last ----

struct walk_options {
  std::vector<std::string> what; // interfaces to start from
  bool all = false;
};

// A walk asks nothing about physical interfaces or VSANs.
bool is_in_walk(const column& column) {
  return !column.key.starts_with("phyif") && column.key != "if_status" && column.key != "asked_vsan";
}

// The columns of a walk: where a step begins, and then those of the port that it leads to.
std::vector<column> walk_columns() {
  std::vector<column> columns = {{"from", "FROM"}, {"from_index", "", 8, false, column::data_only}};
  for (const auto& each : port_table())
    if (is_in_walk(each.description)) columns.push_back(each.description);
  return columns;
}

std::vector<cell> walk_cells(const walk_step& step) {
  std::vector<cell> cells = {vswitch::interface_name(step.from), int64_t{step.from}};
  for (const auto& each : port_table())
    if (is_in_walk(each.description)) cells.push_back(each.get(step.found));
  return cells;
}

void add_step(const walk_step& step, result_document& document) {
  if (step.found.unasked)
    notice(fmt::format("{} is beyond the port map: the library is not asked", vswitch::interface_name(step.from)));
  document.add(walk_cells(step));
}

using step_function = walk_step (*)(const library_session&, uint32_t);

bool add_one_step(step_function take_step, const library_session& session, uint32_t from, result_document& document) {
  const walk_step step = take_step(session, from);
  add_step(step, document);
  return step.is_found();
}

bool add_whole_walk(const library_session& session, uint32_t from, result_document& document) {
  const auto walk = walk_to_end(session, from);
  for (const auto& step : walk.steps) add_step(step, document);
  return walk.reached_end;
}

// From every interface of a list.
exit_code walk_from_each(const command_context& context, step_function take_step, const walk_options& options) {
  const library_session session = context.open_session();
  result_document document{walk_columns(), {}};
  bool all_found = true;
  for (uint32_t from : inspect::parse_interfaces(session.chassis(), options.what)) {
    bool found = options.all ? add_whole_walk(session, from, document) : add_one_step(take_step, session, from, document);
    all_found = all_found && found;
  }
  context.print(document);
  return all_found && !document.rows.empty() ? kFound : kNotFound;
}

exit_code show_next(const command_context& context, const walk_options& options) {
  return walk_from_each(context, inspect::step_to_next, options);
}

exit_code show_last(const command_context& context, const walk_options& options) {
  return walk_from_each(context, inspect::step_to_last, options);
}

// ---- The commands ----

command map_command() {
  auto options = std::make_shared<map_options>();
  return {
      .name = "map",
      .what = "The port map",
      .examples = "  chnsw -s FILE map\n  chnsw -s FILE map --index 0-47,1024\n  chnsw -s FILE map --format csv",
      .arguments = {option("--index", "TEXT", &options->indexes,
                           fmt::format("Port map indexes, 0 to 1279: 254, 0-47,1024 or all; without it every entry that "
                                       "holds anything. {}",
                                       kDecimalDigits))},
      .run = runs(show_map, options),
      .parts = {}};
}

command vsan_command() {
  auto options = std::make_shared<vsan_options>();
  return {.name = "vsan",
          .what = "The ports that are in a VSAN now",
          .examples = "  chnsw -s FILE vsan 10\n  chnsw -s FILE vsan 10,20 --format json\n  chnsw -s FILE vsan all",
          .arguments =
              {word("VSAN", &options->vsans, fmt::format("VSANs: 10, 10,20 or all. {}", kDecimalDigits)).offering({"all"})},
          .run = runs(show_vsans, options),
          .parts = {}};
}

command logical_command() {
  return {.name = "logical",
          .what = "The port numbers that are bound to an interface",
          .examples = "  chnsw -s FILE logical",
          .arguments = {},
          .run = show_logical_interfaces,
          .parts = {}};
}

argument start_words(walk_options& options) {
  return word("WHAT", &options.what,
              "Interfaces to start from: fc3/5, fc3/1-48, an index like 0x01020400, or all. Slots and ports are decimal.")
      .offering({"all"});
}

command next_command() {
  auto options = std::make_shared<walk_options>();
  return {.name = "next",
          .what = "The next numbered port after an interface",
          .examples = "  chnsw -s FILE next fc1/1\n  chnsw -s FILE next fc1/1-8,fc2/3\n  chnsw -s FILE next fc1/1 --all",
          .arguments = {start_words(*options), flag("--all", &options->all, "Go on to the end of the walk")},
          .run = runs(show_next, options),
          .parts = {}};
}

command last_command() {
  auto options = std::make_shared<walk_options>();
  return {.name = "last",
          .what = "The last numbered port of an interface's line card",
          .examples = "  chnsw -s FILE last fc1/1\n  chnsw -s FILE last fc1/1,fc2/1",
          .arguments = {start_words(*options)},
          .run = runs(show_last, options),
          .parts = {}};
}

} // namespace

std::vector<command> map_commands() {
  return {map_command(), vsan_command(), logical_command()};
}

std::vector<command> walk_commands() {
  return {next_command(), last_command()};
}

} // namespace chnsw_tool
