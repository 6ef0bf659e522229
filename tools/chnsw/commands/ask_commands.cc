// ask: port map entries, enabled VSANs, states in VSANs, node descriptors.
#include "commands/ask_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "inspect/messages/manager_client.h"
#include "inspect/messages/manager_questions.h"
#include "inspect/port_map/vsan_ports.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "output/node_columns.h"
#include "output/port_row.h"
#include "output/record_table.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

using inspect::enabled_vsan;
using inspect::node_answer;
using inspect::port_map_answer;
using inspect::vsan_state_answer;

struct ask_options {
  std::vector<std::string> interfaces; // as in "fc3/1-48"; not of every question
  std::string vsans;                   // of vsan-state
  double timeout_seconds = inspect::kUsualTimeoutSeconds;
};

const record_column<port_map_answer> kPortMapColumns[] = {
    {{"interface", "INTERFACE"}, [](const port_map_answer& answer) { return interface_name_cell(answer.if_index); }},
    {{"if_index", "IF-INDEX", 8, true}, [](const port_map_answer& answer) { return interface_cell(answer.if_index); }},
    {{"pn", "PN", 2}, [](const port_map_answer& answer) { return number_cell(answer.pn); }},
    {{"pa", "PA", 2, true}, [](const port_map_answer& answer) { return number_cell(answer.pa); }},
    {{"status", "STATUS"}, [](const port_map_answer& answer) -> cell { return status{answer.status}; }},
};

const record_column<enabled_vsan> kVsanColumns[] = {
    {{"vsan", "VSAN"}, [](const enabled_vsan& enabled) -> cell { return int64_t{enabled.vsan}; }},
    {{"name", "NAME"}, [](const enabled_vsan& enabled) -> cell { return enabled.name; }},
};

const record_column<vsan_state_answer> kVsanStateColumns[] = {
    {{"interface", "INTERFACE"}, [](const vsan_state_answer& answer) { return interface_name_cell(answer.if_index); }},
    {{"if_index", "IF-INDEX", 8, true}, [](const vsan_state_answer& answer) { return interface_cell(answer.if_index); }},
    {{"vsan", "VSAN"}, [](const vsan_state_answer& answer) -> cell { return int64_t{answer.vsan}; }},
    {{"member", "MEMBER"},
     [](const vsan_state_answer& answer) { return known_cell(answer.state.has_value(), answer.is_member()); }},
    {{"bound", "BOUND"},
     [](const vsan_state_answer& answer) { return known_cell(answer.state.has_value(), answer.is_bound()); }},
    {{"state", "", 0, false, column::data_only},
     [](const vsan_state_answer& answer) { return optional_cell(answer.state); }},
    {{"status", "STATUS"}, [](const vsan_state_answer& answer) -> cell { return status{answer.status}; }},
};

// ---- Node descriptors ----

const record_column<node_answer> kNodeInterfaceColumns[] = {
    {{"interface", "INTERFACE"}, [](const node_answer& answer) { return interface_name_cell(answer.if_index); }},
    {{"if_index", "IF-INDEX", 8, true}, [](const node_answer& answer) { return interface_cell(answer.if_index); }},
};

const record_column<node_answer> kNodeBytesColumns[] = {
    {{"as_sent", ""},
     [](const node_answer& answer) -> cell {
       return answer.node ? cell(inspect::descriptor_hex(answer.node->sent, "")) : cell();
     }},
    {{"converted", ""},
     [](const node_answer& answer) -> cell {
       return answer.is_readable() ? cell(inspect::descriptor_hex(answer.node->converted, "")) : cell();
     }},
    {{"conversion_status", ""},
     [](const node_answer& answer) { return answer.node ? cell(status{answer.node->conversion}) : cell(); }},
    {{"status", ""}, [](const node_answer& answer) -> cell { return status{answer.status}; }},
};

std::vector<column> node_answer_columns() {
  auto columns = columns_of<node_answer>(kNodeInterfaceColumns);
  append(columns, node_columns());
  append(columns, columns_of<node_answer>(kNodeBytesColumns));
  return columns;
}

std::vector<cell> node_answer_cells(const node_answer& answer) {
  auto cells = cells_of<node_answer>(kNodeInterfaceColumns, answer);
  append(cells, node_cells(answer.node));
  append(cells, cells_of<node_answer>(kNodeBytesColumns, answer));
  return cells;
}

void add_line(const char* label, const std::string& value, std::string& text) {
  text += fmt::format("  {:<9}  {}\n", label, value);
}

void add_node(const inspect::node_identity& node, std::string& text) {
  const bool readable = node.is_readable();
  add_line("node", readable ? inspect::printable(inspect::node_text(node)) : "-", text);
  add_line("flags", inspect::descriptor_hex(node.sent, " ").substr(0, 2 * sizeof node.sent.flags), text);
  add_line("tag", fmt::format("{:02X}{:02X}", node.sent.tag[0], node.sent.tag[1]), text);
  add_line("code page", inspect::codepage_text(node.codepage), text);
  add_line("as sent", inspect::descriptor_hex(node.sent, " "), text);
  add_line("converted", readable ? inspect::descriptor_hex(node.converted, " ") : inspect::status_text(node.conversion),
           text);
}

// One below the other: side by side they would not fit a terminal.
std::string text_of(const node_answer& answer) {
  std::string text = fmt::format("{} 0x{:08X}\n", vswitch::interface_name(answer.if_index), answer.if_index);
  if (answer.node) add_node(*answer.node, text);
  add_line("status", inspect::status_text(answer.status), text);
  return text;
}

void print_nodes(const command_context& context, const std::vector<node_answer>& answers) {
  result_document document{node_answer_columns(), {}};
  std::string text;
  for (const auto& answer : answers) {
    document.add(node_answer_cells(answer));
    text += (text.empty() ? "" : "\n") + text_of(answer);
  }
  if (context.style.format == output_format::table)
    context.results.write(text);
  else
    context.print(document);
}

// Whether there are answers, and all of them are good.
template <typename answer, typename check>
exit_code code_of(const std::vector<answer>& answers, check is_good) {
  return !answers.empty() && std::all_of(answers.begin(), answers.end(), is_good) ? kFound : kNotFound;
}

exit_code ask_portmap(const command_context& context, const ask_options& options) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<port_map_answer> answers;
  for (uint32_t if_index : inspect::parse_interfaces(manager.chassis(), options.interfaces))
    answers.push_back(inspect::ask_port_map(manager, if_index));
  context.print(document_of<port_map_answer>(kPortMapColumns, answers));
  return code_of(answers, [](const auto& answer) { return answer.is_whole(); });
}

exit_code ask_vsans(const command_context& context, const ask_options& options) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  const auto vsans = inspect::ask_enabled_vsans(manager);
  context.print(document_of<enabled_vsan>(kVsanColumns, vsans));
  return vsans.empty() ? kNotFound : kFound;
}

exit_code ask_vsan_state(const command_context& context, const ask_options& options) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  const auto vsans = inspect::parse_numbers(inspect::kVsan, {options.vsans}, inspect::vsans_of(manager.chassis()));
  std::vector<vsan_state_answer> answers;
  for (uint32_t if_index : inspect::parse_interfaces(manager.chassis(), options.interfaces))
    for (uint32_t vsan : vsans) answers.push_back(inspect::ask_vsan_state(manager, if_index, vsan));
  context.print(document_of<vsan_state_answer>(kVsanStateColumns, answers));
  return code_of(answers, [](const auto& answer) { return answer.status == 0; });
}

exit_code ask_rnid(const command_context& context, const ask_options& options) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<node_answer> answers;
  for (uint32_t if_index : inspect::parse_interfaces(manager.chassis(), options.interfaces))
    answers.push_back(inspect::ask_node(manager, if_index));
  print_nodes(context, answers);
  return code_of(answers, [](const auto& answer) { return answer.is_readable(); });
}

// ---- The commands ----

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
