// ask: port map entries, enabled VSANs, states in VSANs, node descriptors.
#include "commands/ask_commands.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include <cstdlib>
#include <cstring>

#include "inspect/chassis/node_identity.h"
#include "inspect/port_map/map_findings.h"
#include "inspect/words/target_numbers.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"
#include "vswitch/vsan_set.h"

namespace chnsw_tool {

namespace {

// What a manager logs beside a question.
constexpr char kAskerText[] = "chnsw";
constexpr char kReasonText[] = "ask portmap";

// ---- Port map entries ----

bool is_number(uint16_t number) {
  return number != FICON_PMAP_NO_NUMBER;
}

// Asks, and adds a row; whether the interface has both numbers.
bool add_numbers(manager_client& manager, uint32_t if_index, result_document& document) {
  auto answer = manager.ask([&](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(
        ficon_send_get_portmap_nonblock(handle, kAskerText, kReasonText, 0, 0, if_index, 0, 0, send_arg));
  });
  uint32_t answered = 0;
  uint16_t pn = FICON_PMAP_NO_NUMBER;
  uint16_t pa = FICON_PMAP_NO_NUMBER;
  const uint32_t result = ficon_parse_get_portmap(answer.get(), &answered, &pn, &pa);
  const bool known = result == 0;
  document.add({interface_name_cell(if_index), interface_cell(if_index), known_cell(known, number_cell(pn)),
                known_cell(known, number_cell(pa)), status{result}});
  return known && is_number(pn) && is_number(pa);
}

// ---- Enabled VSANs ----

// The library hands out the list without its length, which the list itself tells.
number_list enabled_vsans(msgq_message* answer) {
  void* list = nullptr;
  const uint32_t result = ficon_parse_get_enabled_vsans(answer, &list);
  if (result != 0) throw platform_error("the manager's answer has no list of VSANs: " + status_text(result));
  const std::unique_ptr<void, decltype(&std::free)> owned(list, &std::free);
  if (msgq_payload_size(answer) < sizeof(vsan_block)) throw platform_error("the manager's list of VSANs is too short");
  vsan_block vsans;
  std::memcpy(&vsans, list, sizeof vsans);
  return vswitch::vsans_of(vsans);
}

std::string name_of_vsan(const vswitch::chassis_description& chassis, uint16_t vsan) {
  auto found = chassis.vsans.find(vsan);
  return found == chassis.vsans.end() ? "" : found->second;
}

// ---- States in VSANs ----

bool add_state(manager_client& manager, uint32_t if_index, uint32_t vsan, result_document& document) {
  auto answer = manager.ask([&](msgq* handle, uintptr_t send_arg) {
    const ficon_ifvsan_query query = {0, 0, vsan, if_index, 0};
    return static_cast<uint32_t>(ficon_send_query_ifvsan_state(handle, &query, send_arg));
  });
  ficon_ifvsan_query state{};
  const uint32_t result = ficon_parse_query_ifvsan(answer.get(), &state);
  const bool known = result == 0;
  document.add({interface_name_cell(if_index), interface_cell(if_index), int64_t{vsan},
                known_cell(known, (state.state & vswitch::kIfVsanMember) != 0),
                known_cell(known, (state.state & vswitch::kIfVsanBound) != 0), known_cell(known, int64_t{state.state}),
                status{result}});
  return known;
}

// ---- Node descriptors ----

struct asked_node {
  uint32_t if_index = 0;
  uint32_t result = 0;
  node_identity node; // with result 0
};

// Asked for as the host sent it, so that both forms can be shown; the conversion is the one that the parser would make.
asked_node ask_for_node(manager_client& manager, uint32_t if_index) {
  auto answer = manager.ask([&](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(ficon_send_get_rnid_nonblock(handle, if_index, 0, 0, 0, 0, send_arg));
  });
  uint32_t codepage = 0;
  ficon_node_descriptor sent{};
  asked_node asked;
  asked.if_index = if_index;
  asked.result = ficon_parse_get_rnid(answer.get(), nullptr, nullptr, nullptr, &codepage, nullptr, nullptr, &sent);
  if (asked.result == 0) asked.node = identity_of(codepage, sent);
  return asked;
}

std::vector<column> rnid_columns() {
  std::vector<column> columns = {{"interface", "INTERFACE"}, {"if_index", "IF-INDEX", 8, true}};
  for (auto& column : node_columns()) columns.push_back(std::move(column));
  columns.push_back({"as_sent", ""});
  columns.push_back({"converted", ""});
  columns.push_back({"conversion_status", ""});
  columns.push_back({"status", ""});
  return columns;
}

std::vector<cell> rnid_cells(const asked_node& asked) {
  const bool known = asked.result == 0;
  std::vector<cell> cells = {interface_name_cell(asked.if_index), interface_cell(asked.if_index)};
  for (auto& value : known ? node_cells(asked.node) : no_node_cells()) cells.push_back(std::move(value));
  cells.push_back(known_cell(known, hex_of(asked.node.sent, "")));
  cells.push_back(known_cell(known && asked.node.is_readable(), hex_of(asked.node.converted, "")));
  cells.push_back(known_cell(known, status{asked.node.conversion}));
  cells.emplace_back(status{asked.result});
  return cells;
}

void add_line(const char* label, const std::string& value, std::string& text) {
  text += fmt::format("  {:<9}  {}\n", label, value);
}

// One below the other: side by side they would not fit a terminal.
std::string text_of(const asked_node& asked) {
  std::string text = fmt::format("{} 0x{:08X}\n", vswitch::interface_name(asked.if_index), asked.if_index);
  const node_identity& node = asked.node;
  if (asked.result == 0) {
    add_line("node", node.is_readable() ? printable(node_text(node)) : "-", text);
    add_line("flags", hex_of(node.sent, " ").substr(0, 2 * sizeof node.sent.flags), text);
    add_line("tag", fmt::format("{:02X}{:02X}", node.sent.tag[0], node.sent.tag[1]), text);
    add_line("code page", codepage_text(node.codepage), text);
    add_line("as sent", hex_of(node.sent, " "), text);
    add_line("converted", node.is_readable() ? hex_of(node.converted, " ") : status_text(node.conversion), text);
  }
  add_line("status", status_text(asked.result), text);
  return text;
}

void print_nodes(const command_context& context, const std::vector<asked_node>& nodes) {
  result_document document{rnid_columns(), {}};
  std::string text;
  for (const auto& asked : nodes) {
    document.add(rnid_cells(asked));
    text += (text.empty() ? "" : "\n") + text_of(asked);
  }
  if (context.style.format == output_format::table)
    context.results.write(text);
  else
    context.print(document);
}

exit_code code_of(bool all_well, bool any) {
  return all_well && any ? kFound : kNotFound;
}

} // namespace

exit_code ask_portmap(const command_context& context, const ask_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  result_document document{{{"interface", "INTERFACE"},
                            {"if_index", "IF-INDEX", 8, true},
                            {"pn", "PN", 2},
                            {"pa", "PA", 2, true},
                            {"status", "STATUS"}},
                           {}};
  bool all_well = true;
  for (uint32_t if_index : parse_interfaces(manager.chassis(), options.interfaces))
    if (!add_numbers(manager, if_index, document)) all_well = false;
  context.print(document);
  return code_of(all_well, !document.rows.empty());
}

exit_code ask_vsans(const command_context& context, const ask_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  auto answer = manager.ask([](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(ficon_send_get_enabled_vsans(handle, send_arg));
  });
  result_document document{{{"vsan", "VSAN"}, {"name", "NAME"}}, {}};
  for (uint16_t vsan : enabled_vsans(answer.get())) document.add({int64_t{vsan}, name_of_vsan(manager.chassis(), vsan)});
  context.print(document);
  return code_of(true, !document.rows.empty());
}

exit_code ask_vsan_state(const command_context& context, const ask_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  result_document document{{{"interface", "INTERFACE"},
                            {"if_index", "IF-INDEX", 8, true},
                            {"vsan", "VSAN"},
                            {"member", "MEMBER"},
                            {"bound", "BOUND"},
                            {"state", "", 0, false, column::data_only},
                            {"status", "STATUS"}},
                           {}};
  const auto vsans = parse_numbers(kVsan, {options.vsans}, vsans_of(manager.chassis()));
  bool all_well = true;
  for (uint32_t if_index : parse_interfaces(manager.chassis(), options.interfaces))
    for (uint32_t vsan : vsans)
      if (!add_state(manager, if_index, vsan, document)) all_well = false;
  context.print(document);
  return code_of(all_well, !document.rows.empty());
}

exit_code ask_rnid(const command_context& context, const ask_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<asked_node> nodes;
  bool all_well = true;
  for (uint32_t if_index : parse_interfaces(manager.chassis(), options.interfaces)) {
    nodes.push_back(ask_for_node(manager, if_index));
    if (nodes.back().result != 0 || !nodes.back().node.is_readable()) all_well = false;
  }
  print_nodes(context, nodes);
  return code_of(all_well, !nodes.empty());
}

// ---- The commands ----

namespace {

command ask_portmap_command() {
  auto options = std::make_shared<ask_options>();
  return {.name = "portmap",
          .what = "Port numbers and port addresses of interfaces",
          .examples =
              "  chnsw -s /tmp/director ask portmap fc1/1-4,port-channel5\n"
              "  chnsw -s /tmp/director ask portmap all --format csv",
          .arguments = {interfaces_word(&options->interfaces), timeout_option(&options->timeout_seconds)},
          .run = runs(ask_portmap, options),
          .parts = {}};
}

command ask_vsans_command() {
  auto options = std::make_shared<ask_options>();
  return {.name = "vsans",
          .what = "The enabled VSANs",
          .examples = "  chnsw -s /tmp/director ask vsans --format json",
          .arguments = {timeout_option(&options->timeout_seconds)},
          .run = runs(ask_vsans, options),
          .parts = {}};
}

command ask_vsan_state_command() {
  auto options = std::make_shared<ask_options>();
  return {.name = "vsan-state",
          .what = "Whether interfaces are in VSANs, and bound to them",
          .examples =
              "  chnsw -s /tmp/director ask vsan-state fc1/1-4 10,20\n"
              "  chnsw -s /tmp/director ask vsan-state fc1/1 all --timeout 0.5",
          .arguments = {interfaces_word(&options->interfaces).single(), vsans_word(&options->vsans),
                        timeout_option(&options->timeout_seconds)},
          .run = runs(ask_vsan_state, options),
          .parts = {}};
}

command ask_rnid_command() {
  auto options = std::make_shared<ask_options>();
  return {.name = "rnid",
          .what = "What the devices behind interfaces say they are",
          .examples = "  chnsw -s /tmp/director ask rnid fc3/1\n  chnsw -s /tmp/director ask rnid all --format jsonl",
          .arguments = {interfaces_word(&options->interfaces), timeout_option(&options->timeout_seconds)},
          .run = runs(ask_rnid, options),
          .parts = {}};
}

} // namespace

command ask_command() {
  return {.name = "ask",
          .what = "Ask the manager of a switch's folder, by the library's own messages",
          .examples =
              "  chnsw -s /tmp/director ask portmap fc1/1-4\n  chnsw -s /tmp/director ask vsans\n"
              "  chnsw -s /tmp/director ask vsan-state fc1/1-4 10,20\n"
              "  chnsw -s /tmp/director ask rnid fc3/1",
          .arguments = {},
          .run = {},
          .parts = {ask_portmap_command(), ask_vsans_command(), ask_vsan_state_command(), ask_rnid_command()}};
}

} // namespace chnsw_tool
