// The chassis as a record with parts.
#include "commands/info_command.h"
#include "inspect/words/printable_text.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "output/node_records.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using nlohmann::ordered_json;

struct library_facts {
  int32_t highest_port_number = 0;
  uint32_t change_counter = 0;
};

library_facts ask_library() {
  library_facts facts;
  facts.highest_port_number = ficon_cmi_get_max_portnumber();
  ficon_cmi_get_pmap_change_counter(&facts.change_counter);
  return facts;
}

int64_t line_card_of(unsigned slot) {
  uint8_t card = 0;
  return ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &card) == 0 ? int64_t{card} : -1;
}

std::string record_text(const vswitch::chassis_description& chassis) {
  return fmt::format("{:02x}", fmt::join(chassis.platform_record, " "));
}

std::vector<std::string> names_of(const std::vector<uint32_t>& interfaces) {
  std::vector<std::string> names;
  names.reserve(interfaces.size());
  for (uint32_t interface : interfaces) names.push_back(vswitch::interface_name(interface));
  return names;
}

unsigned ports_in_vsan(const library_session& session, uint16_t vsan) {
  unsigned ports = 0;
  const uint16_t* table = session.port_to_vsan();
  for (unsigned index = 0; index < FICON_PMAP_PHYS_ENTRIES; ++index)
    if (table[index] == vsan) ++ports;
  return ports;
}

ordered_json parts(const library_session& session) {
  const auto& chassis = session.chassis();
  ordered_json cards = ordered_json::array();
  for (const auto& card : chassis.line_cards)
    cards.push_back(
        {{"slot", card.slot}, {"line_card", line_card_of(card.slot)}, {"ports", card.ports}, {"name", card.name}});
  ordered_json vsans = ordered_json::array();
  for (const auto& [number, name] : chassis.vsans)
    vsans.push_back({{"vsan", number}, {"name", name}, {"ports", ports_in_vsan(session, number)}});
  ordered_json interfaces = ordered_json::array();
  for (const auto& interface : chassis.interfaces)
    interfaces.push_back({{"interface", vswitch::interface_name(interface.if_index)},
                          {"if_index", interface.if_index},
                          {"if_index_hex", fmt::format("0x{:08X}", interface.if_index)},
                          {"members", names_of(interface.members)}});
  return {{"line_cards", cards}, {"vsans", vsans}, {"logical_interfaces", interfaces}, {"nodes", node_records(chassis)}};
}

ordered_json record_of(const library_session& session) {
  const auto& chassis = session.chassis();
  library_facts facts = ask_library();
  ordered_json record = {{"name", chassis.name},
                         {"switch", session.opened().path},
                         {"slots", chassis.slots()},
                         {"type", chassis.type},
                         {"supervisors", chassis.supervisors},
                         {"platform_record", record_text(chassis)},
                         {"highest_port_number", facts.highest_port_number},
                         {"max_ficon_ports", session.ports()},
                         {"change_counter", facts.change_counter}};
  record.update(parts(session));
  return record;
}

// ---- Table ----

std::string text_or_dash(const std::string& text) {
  return text.empty() ? "-" : printable(text);
}

std::string summary_table(const ordered_json& record) {
  std::string text;
  auto line = [&text](const char* label, const std::string& value) { text += fmt::format("{:<21}{}\n", label, value); };
  line("name", text_or_dash(record["name"].get<std::string>()));
  line("switch", printable(record["switch"].get<std::string>()));
  line("slots", record["slots"].dump());
  line("type", record["type"].dump());
  line("supervisors in slots",
       record["supervisors"].empty()
           ? "-"
           : fmt::format("{}", fmt::join(record["supervisors"].get<std::vector<unsigned>>(), ", ")));
  line("platform record", record["platform_record"].get<std::string>());
  line("highest port number", record["highest_port_number"].dump());
  line("change counter", record["change_counter"].dump());
  return text;
}

std::string section(const char* title, const result_document& document, const output_style& style) {
  if (document.rows.empty()) return "";
  return fmt::format("\n{}\n{}", coloured(title, tone::strong, style.colour), render(document, style));
}

std::string joined_names(const ordered_json& names) {
  return fmt::format("{}", fmt::join(names.get<std::vector<std::string>>(), " "));
}

result_document nodes_table(const ordered_json& record) {
  result_document nodes{{{"interface", "INTERFACE"},
                         {"type", "TYPE"},
                         {"model", "MODEL"},
                         {"manufacturer", "MANUFACTURER"},
                         {"plant", "PLANT"},
                         {"sequence", "SEQUENCE"},
                         {"tag", "TAG", 4, true},
                         {"flags", "FLAGS", 8, true},
                         {"codepage", "CODE PAGE"}},
                        {}};
  for (const auto& node : record["nodes"]) {
    auto text = [&node](const char* key) { return node[key].get<std::string>(); };
    nodes.add({text("interface"), text("type"), text("model"), text("manufacturer"), text("plant"), text("sequence"),
               node["tag"].get<int64_t>(), node["flags"].get<int64_t>(), node["codepage"].get<int64_t>()});
  }
  return nodes;
}

std::string table_of(const ordered_json& record, const output_style& style) {
  result_document cards{{{"slot", "SLOT"}, {"line_card", "LINE CARD"}, {"ports", "PORTS"}, {"name", "NAME"}}, {}};
  for (const auto& card : record["line_cards"])
    cards.add({card["slot"].get<int64_t>(), card["line_card"].get<int64_t>(), card["ports"].get<int64_t>(),
               card["name"].get<std::string>()});
  result_document vsans{{{"vsan", "VSAN"}, {"ports", "PORTS"}, {"name", "NAME"}}, {}};
  for (const auto& vsan : record["vsans"])
    vsans.add({vsan["vsan"].get<int64_t>(), vsan["ports"].get<int64_t>(), vsan["name"].get<std::string>()});
  result_document interfaces{{{"interface", "INTERFACE"}, {"if_index", "IF-INDEX", 8, true}, {"members", "MEMBERS"}}, {}};
  for (const auto& interface : record["logical_interfaces"])
    interfaces.add({interface["interface"].get<std::string>(), interface["if_index"].get<int64_t>(),
                    joined_names(interface["members"])});
  return summary_table(record) + section("Line cards", cards, style) + section("VSANs", vsans, style) +
         section("Logical interfaces", interfaces, style) + section("Nodes", nodes_table(record), style);
}

} // namespace

exit_code show_info(const command_context& context, const no_options&) {
  library_session session = context.open_session();
  ordered_json record = record_of(session);
  std::string table = context.style.format == output_format::table ? table_of(record, context.style) : "";
  context.results.write(render_record(record, table, context.style));
  return kFound;
}

command info_command() {
  return {.name = "info",
          .what = "The chassis: slots, cards, VSANs, highest port number, change counter",
          .examples = "  chnsw -s FILE info\n  chnsw -s FILE info --format json",
          .arguments = {},
          .run = runs(show_info, std::make_shared<no_options>()),
          .parts = {}};
}

} // namespace chnsw_tool
