// The chassis as a record with parts.
#include "commands/info_command.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "inspect/chassis/chassis_facts.h"
#include "inspect/words/printable_text.h"
#include "output/cells.h"
#include "output/node_records.h"
#include "output/record_table.h"
#include "vswitch/interface_index.h"
#include "vswitch/node_descriptor.h"

namespace chnsw_tool {

namespace {

using inspect::card_facts;
using inspect::chassis_facts;
using inspect::library_session;
using inspect::vsan_facts;
using nlohmann::ordered_json;
using vswitch::chassis_description;

std::string record_text(const chassis_description& chassis) {
  return fmt::format("{:02x}", fmt::join(chassis.platform_record, " "));
}

// -1 for a card that the library finds no place for.
int64_t line_card_number(const card_facts& card) {
  return card.line_card ? int64_t{*card.line_card} : -1;
}

// ---- Data ----

std::vector<std::string> names_of(const std::vector<uint32_t>& interfaces) {
  std::vector<std::string> names;
  names.reserve(interfaces.size());
  for (uint32_t interface : interfaces) names.push_back(vswitch::interface_name(interface));
  return names;
}

ordered_json parts_of(const chassis_description& chassis, const chassis_facts& facts) {
  ordered_json cards = ordered_json::array();
  for (const auto& card : facts.cards)
    cards.push_back(
        {{"slot", card.slot}, {"line_card", line_card_number(card)}, {"ports", card.ports}, {"name", card.name}});
  ordered_json vsans = ordered_json::array();
  for (const auto& vsan : facts.vsans) vsans.push_back({{"vsan", vsan.vsan}, {"name", vsan.name}, {"ports", vsan.ports}});
  ordered_json interfaces = ordered_json::array();
  for (const auto& interface : chassis.interfaces)
    interfaces.push_back({{"interface", vswitch::interface_name(interface.if_index)},
                          {"if_index", interface.if_index},
                          {"if_index_hex", fmt::format("0x{:08X}", interface.if_index)},
                          {"members", names_of(interface.members)}});
  return {{"line_cards", cards}, {"vsans", vsans}, {"logical_interfaces", interfaces}, {"nodes", node_records(chassis)}};
}

ordered_json record_of(const library_session& session, const chassis_facts& facts) {
  const auto& chassis = session.chassis();
  ordered_json record = {{"name", chassis.name},
                         {"switch", session.opened().path},
                         {"slots", chassis.slots()},
                         {"type", chassis.type},
                         {"supervisors", chassis.supervisors},
                         {"platform_record", record_text(chassis)},
                         {"highest_port_number", facts.highest_port_number},
                         {"max_ficon_ports", facts.max_ficon_ports},
                         {"change_counter", facts.change_counter}};
  record.update(parts_of(chassis, facts));
  return record;
}

// ---- Tables ----

std::string summary_table(const library_session& session, const chassis_facts& facts) {
  const auto& chassis = session.chassis();
  std::string text;
  auto line = [&text](const char* label, const std::string& value) { text += fmt::format("{:<21}{}\n", label, value); };
  line("name", chassis.name.empty() ? "-" : inspect::printable(chassis.name));
  line("switch", inspect::printable(session.opened().path));
  line("slots", std::to_string(chassis.slots()));
  line("type", std::to_string(chassis.type));
  line("supervisors in slots", chassis.supervisors.empty() ? "-" : fmt::format("{}", fmt::join(chassis.supervisors, ", ")));
  line("platform record", record_text(chassis));
  line("highest port number", std::to_string(facts.highest_port_number));
  line("change counter", std::to_string(facts.change_counter));
  return text;
}

std::span<const record_column<card_facts>> card_table() {
  static const record_column<card_facts> kTable[] = {
      {{"slot", "SLOT"}, [](const card_facts& of) -> cell { return int64_t{of.slot}; }},
      {{"line_card", "LINE CARD"}, [](const card_facts& of) -> cell { return line_card_number(of); }},
      {{"ports", "PORTS"}, [](const card_facts& of) -> cell { return int64_t{of.ports}; }},
      {{"name", "NAME"}, [](const card_facts& of) -> cell { return of.name; }}};
  return kTable;
}

std::span<const record_column<vsan_facts>> vsan_table() {
  static const record_column<vsan_facts> kTable[] = {
      {{"vsan", "VSAN"}, [](const vsan_facts& of) -> cell { return int64_t{of.vsan}; }},
      {{"ports", "PORTS"}, [](const vsan_facts& of) -> cell { return int64_t{of.ports}; }},
      {{"name", "NAME"}, [](const vsan_facts& of) -> cell { return of.name; }}};
  return kTable;
}

std::span<const record_column<vswitch::logical_interface>> logical_interface_table() {
  using vswitch::logical_interface;
  static const record_column<logical_interface> kTable[] = {
      {{"interface", "INTERFACE"}, [](const logical_interface& of) { return interface_name_cell(of.if_index); }},
      {{"if_index", "IF-INDEX", 8, true}, [](const logical_interface& of) { return interface_cell(of.if_index); }},
      {{"members", "MEMBERS"}, [](const logical_interface& of) -> cell { return interface_names(of.members); }}};
  return kTable;
}

struct node_row {
  uint32_t if_index;
  vswitch::node_descriptor node;
};

std::span<const record_column<node_row>> node_table() {
  using vswitch::without_blanks;
  static const record_column<node_row> kTable[] = {
      {{"interface", "INTERFACE"}, [](const node_row& of) { return interface_name_cell(of.if_index); }},
      {{"type", "TYPE"}, [](const node_row& of) -> cell { return without_blanks(of.node.type); }},
      {{"model", "MODEL"}, [](const node_row& of) -> cell { return without_blanks(of.node.model); }},
      {{"manufacturer", "MANUFACTURER"}, [](const node_row& of) -> cell { return without_blanks(of.node.manufacturer); }},
      {{"plant", "PLANT"}, [](const node_row& of) -> cell { return without_blanks(of.node.plant); }},
      {{"sequence", "SEQUENCE"}, [](const node_row& of) -> cell { return without_blanks(of.node.sequence); }},
      {{"tag", "TAG", 4, true}, [](const node_row& of) -> cell { return int64_t{of.node.tag}; }},
      {{"flags", "FLAGS", 8, true}, [](const node_row& of) -> cell { return int64_t{of.node.flags}; }},
      {{"codepage", "CODE PAGE"}, [](const node_row& of) -> cell { return int64_t{of.node.codepage}; }}};
  return kTable;
}

std::string section(const char* title, const result_document& document, const output_style& style) {
  if (document.rows.empty()) return "";
  return fmt::format("\n{}\n{}", coloured(title, tone::strong, style.colour), render(document, style));
}

std::string tables_of(const library_session& session, const chassis_facts& facts, const output_style& style) {
  const auto& chassis = session.chassis();
  std::vector<node_row> nodes;
  for (const auto& [if_index, node] : chassis.nodes) nodes.push_back({if_index, node});
  return summary_table(session, facts) + section("Line cards", document_of(card_table(), facts.cards), style) +
         section("VSANs", document_of(vsan_table(), facts.vsans), style) +
         section("Logical interfaces", document_of(logical_interface_table(), chassis.interfaces), style) +
         section("Nodes", document_of(node_table(), nodes), style);
}

exit_code show_info(const command_context& context) {
  const library_session session = context.open_session();
  const chassis_facts facts = facts_of(session);
  std::string tables = context.style.format == output_format::table ? tables_of(session, facts, context.style) : "";
  context.results.write(render_record(record_of(session, facts), tables, context.style));
  return kFound;
}

} // namespace

command info_command() {
  return {.name = "info",
          .what = "The chassis: slots, cards, VSANs, highest port number, change counter",
          .examples = "  chnsw -s FILE info\n  chnsw -s FILE info --format json",
          .arguments = {},
          .run = show_info,
          .parts = {}};
}

} // namespace chnsw_tool
