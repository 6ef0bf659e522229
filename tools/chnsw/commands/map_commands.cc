// Lists and walks over the port map.
#include "commands/map_commands.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "inspect/port_map/map_findings.h"
#include "inspect/port_map/port_map_walk.h"
#include "inspect/words/target_numbers.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

// ---- map ----

bool holds_anything(const library_session& session, uint32_t index) {
  const auto& entry = session.port_to_pn()[index];
  return entry.pn != FICON_PMAP_NO_NUMBER || entry.pa != FICON_PMAP_NO_NUMBER || is_bound(entry) ||
         session.port_to_vsan()[index] != 0 || vswitch::port_at_index(session.chassis(), index).has_value();
}

std::vector<column> map_columns() {
  return {{"index", "INDEX"},
          {"pn", "PN", 2},
          {"pa", "PA", 2, true},
          {"vsans", "VSANS"},
          {"port_vsan", "VSAN"},
          {"slot_port", "SLOT/PORT", 0, false, column::table_only},
          {"slot", "", 0, false, column::data_only},
          {"port", "", 0, false, column::data_only},
          {"if_index", "IF-INDEX", 8, true},
          {"interface", "INTERFACE"},
          {"there", "THERE"},
          {"port_channel", "PORT-CHANNEL"}};
}

std::optional<uint32_t> interface_at(const library_session& session, uint32_t index, uint32_t pn) {
  if (index >= FICON_PMAP_PHYS_ENTRIES && pn >= session.ports()) return std::nullopt;
  uint32_t interface = 0;
  const uint32_t answer = ficon_pmap_get_index_to_if(static_cast<int32_t>(index), pn, &interface);
  if (answer == FICON_RC_NO_MEMORY) throw platform_error("the library was refused memory: " + status_text(answer));
  return answer == 0 ? std::optional(interface) : std::nullopt;
}

// Whether a port is plugged behind an index, and the port-channel that it is a member of.
cell is_there(const library_session& session, uint32_t index) {
  if (index >= FICON_PMAP_PHYS_ENTRIES) return {};
  return vswitch::port_at_index(session.chassis(), index).has_value();
}

cell channel_of(const library_session& session, std::optional<uint32_t> if_index) {
  if (!if_index) return {};
  for (const auto& interface : session.chassis().interfaces)
    if (std::find(interface.members.begin(), interface.members.end(), *if_index) != interface.members.end())
      return int64_t{vswitch::logical_number(interface.if_index)};
  return {};
}

result_row map_row(const library_session& session, uint32_t index) {
  const auto entry = session.port_to_pn()[index];
  uint16_t vsan = session.port_to_vsan()[index];
  auto interface = interface_at(session, index, entry.pn);
  auto place = slot_and_port_of(std::nullopt, index);
  return {{int64_t{index}, number_cell(entry.pn), number_cell(entry.pa), bound_vsans(entry), vsan_cell(vsan), place.text,
           place.slot, place.port, interface_cell(interface), interface_name_cell(interface), is_there(session, index),
           channel_of(session, interface)},
          {},
          nullptr};
}

// ---- vsan ----

using library_array = std::unique_ptr<void, decltype(&std::free)>;

struct vsan_ports {
  uint16_t* pns = nullptr;
  uint16_t* pas = nullptr;
  uint32_t* interfaces = nullptr;
  uint32_t* bound = nullptr;
  uint32_t count = 0;
};

void add_vsan(uint32_t vsan, result_document& document) {
  vsan_ports ports;
  uint32_t answer =
      ficon_pmap_get_info_in_vsan(vsan, &ports.pns, &ports.pas, &ports.interfaces, &ports.bound, &ports.count);
  library_array owned[] = {
      {ports.pns, &std::free}, {ports.pas, &std::free}, {ports.interfaces, &std::free}, {ports.bound, &std::free}};
  if (answer != 0) throw platform_error(fmt::format("the ports of VSAN {} cannot be read: {}", vsan, status_text(answer)));
  for (const auto& array : owned)
    if (array == nullptr) throw platform_error(fmt::format("the ports of VSAN {} cannot be read: no memory", vsan));
  for (uint32_t i = 0; i < ports.count; ++i) {
    uint32_t interface = ports.interfaces[i];
    auto port = vswitch::fc_port_of(interface);
    std::optional<uint32_t> index;
    if (port) index = port_map_place(port->slot, port->port);
    auto place = slot_and_port_of(interface, index);
    document.add({int64_t{vsan}, number_cell(ports.pns[i]), number_cell(ports.pas[i]), place.text, place.slot, place.port,
                  optional_cell(index), interface_cell(interface), interface_name_cell(interface), ports.bound[i] != 0});
  }
}

// ---- next, last ----

using interface_walk = int32_t (*)(uint32_t, uint32_t*);

// A walk asks nothing about physical interfaces or VSANs.
bool in_walk(const column& column) {
  return !column.key.starts_with("phyif") && column.key != "if_status" && column.key != "asked_vsan";
}

std::vector<column> walk_columns() {
  std::vector<column> columns = {{"from", "FROM"}, {"from_index", "", 8, false, column::data_only}};
  for (const auto& column : port_columns())
    if (in_walk(column)) columns.push_back(column);
  return columns;
}

// One step's row: the interface that was found with all that belongs to it, or the status that ended the walk.
result_row walk_row(const library_session& session, uint32_t from, std::optional<uint32_t> answer, uint32_t found) {
  port_row row;
  row.answer = answer;
  if (answer && *answer == 0) {
    row.if_index = found;
    auto port = vswitch::fc_port_of(found);
    if (port) row.index = port_map_place(port->slot, port->port);
    if (row.index && *row.index < FICON_PMAP_PORT_ENTRIES) {
      row.pn = session.port_to_pn()[*row.index].pn;
      row.pa = session.port_to_pn()[*row.index].pa;
    }
  }
  result_row whole = show(row, session);
  result_row result{{cell(vswitch::interface_name(from)), cell(int64_t{from})}, {}, nullptr};
  auto columns = port_columns();
  for (size_t i = 0; i < columns.size(); ++i)
    if (in_walk(columns[i])) result.cells.push_back(whole.cells[i]);
  return result;
}

struct walk_step {
  std::optional<uint32_t> answer; // no value: the library was not asked
  uint32_t found = 0;
};

bool is_found(const walk_step& step) {
  return step.answer && *step.answer == 0;
}

walk_step take_step(interface_walk walk, uint32_t from) {
  if (is_beyond_port_map(from)) {
    notice(fmt::format("{} is beyond the port map: the library is not asked", vswitch::interface_name(from)));
    return {};
  }
  walk_step step;
  step.answer = static_cast<uint32_t>(walk(from, &step.found));
  return step;
}

// One step; whether it found anything.
bool walk_once(const library_session& session, interface_walk walk, uint32_t from, result_document& document) {
  walk_step step = take_step(walk, from);
  document.rows.push_back(walk_row(session, from, step.answer, step.found));
  return is_found(step);
}

// Every step to the end. The end itself is no row, unless the walk ended otherwise than by there being no next interface.
bool walk_to_the_end(const library_session& session, interface_walk walk, uint32_t from, result_document& document) {
  walk_step step = take_step(walk, from);
  bool found_any = is_found(step);
  while (is_found(step)) {
    document.rows.push_back(walk_row(session, from, step.answer, step.found));
    from = step.found;
    step = take_step(walk, from);
  }
  bool ended = found_any && step.answer == FICON_RC_PLATFORM;
  if (!ended) document.rows.push_back(walk_row(session, from, step.answer, step.found));
  return ended;
}

// From every interface of a list.
exit_code walk_from_each(const command_context& context, interface_walk walk, const walk_options& options) {
  library_session session = context.open_session();
  result_document document{walk_columns(), {}};
  bool all_found = true;
  for (uint32_t from : parse_interfaces(session.chassis(), options.what)) {
    bool found = options.all ? walk_to_the_end(session, walk, from, document) : walk_once(session, walk, from, document);
    all_found = all_found && found;
  }
  context.print(document);
  return all_found && !document.rows.empty() ? kFound : kNotFound;
}

} // namespace

std::vector<uint32_t> indexes_in_use(const library_session& session) {
  std::vector<uint32_t> indexes;
  for (uint32_t index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index)
    if (holds_anything(session, index)) indexes.push_back(index);
  return indexes;
}

result_document map_document(const library_session& session, const std::vector<uint32_t>& indexes) {
  result_document document{map_columns(), {}};
  for (uint32_t index : indexes) document.rows.push_back(map_row(session, index));
  return document;
}

exit_code show_map(const command_context& context, const map_options& options) {
  constexpr number_kind kMapIndex = {"port map index", 10, 0, FICON_PMAP_PORT_ENTRIES - 1, "254 or 0-47,1024"};
  library_session session = context.open_session();
  auto indexes = options.indexes.empty()
                     ? indexes_in_use(session)
                     : parse_numbers(kMapIndex, options.indexes, numbers_below(FICON_PMAP_PORT_ENTRIES));
  context.print(map_document(session, indexes));
  return indexes.empty() ? kNotFound : kFound;
}

exit_code show_vsans(const command_context& context, const vsan_options& options) {
  library_session session = context.open_session();
  result_document document{{{"vsan", "VSAN"},
                            {"pn", "PN", 2},
                            {"pa", "PA", 2, true},
                            {"slot_port", "SLOT/PORT", 0, false, column::table_only},
                            {"slot", "", 0, false, column::data_only},
                            {"port", "", 0, false, column::data_only},
                            {"index", "INDEX"},
                            {"if_index", "IF-INDEX", 8, true},
                            {"interface", "INTERFACE"},
                            {"bound", "BOUND"}},
                           {}};
  bool every_one_has_ports = true;
  for (uint32_t vsan : parse_numbers(kVsan, options.vsans, vsans_of(session.chassis()))) {
    size_t before = document.rows.size();
    add_vsan(vsan, document);
    if (document.rows.size() == before) every_one_has_ports = false;
  }
  context.print(document);
  return every_one_has_ports && !document.rows.empty() ? kFound : kNotFound;
}

exit_code show_logical_interfaces(const command_context& context, const no_options&) {
  library_session session = context.open_session();
  std::vector<uint16_t> pns(session.ports());
  std::vector<uint32_t> interfaces(session.ports());
  uint32_t count = 0;
  uint32_t answer = ficon_pmap_get_pn_logif(pns.data(), interfaces.data(), &count);
  if (answer != 0) throw platform_error("the logical interfaces cannot be read: " + status_text(answer));

  result_document document{
      {{"pn", "PN", 2}, {"if_index", "IF-INDEX", 8, true}, {"interface", "INTERFACE"}, {"members", "MEMBERS"}}, {}};
  for (uint32_t i = 0; i < count; ++i) {
    std::string members;
    for (const auto& interface : session.chassis().interfaces) {
      if (interface.if_index != interfaces[i]) continue;
      for (uint32_t member : interface.members) members += (members.empty() ? "" : " ") + vswitch::interface_name(member);
    }
    document.add({int64_t{pns[i]}, interface_cell(interfaces[i]), interface_name_cell(interfaces[i]), members});
  }
  context.print(document);
  return count == 0 ? kNotFound : kFound;
}

exit_code show_next(const command_context& context, const walk_options& options) {
  return walk_from_each(context, ficon_pmap_get_next_if, options);
}

exit_code show_last(const command_context& context, const walk_options& options) {
  return walk_from_each(context, ficon_pmap_get_last_if, options);
}

// ---- The commands ----

namespace {

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
          .run = runs(show_logical_interfaces, std::make_shared<no_options>()),
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
