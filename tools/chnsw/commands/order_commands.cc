// install and notify.
#include "commands/order_commands.h"

#include <fmt/format.h>
#include <platform/if_index.h>

#include <optional>

#include "inspect/port_map/map_findings.h"
#include "inspect/words/target_numbers.h"
#include "output/port_row.h"
#include "vswitch/interface_index.h"
#include "vswitch/vsan_set.h"

namespace chnsw_tool {

namespace {

// ---- install ----

vsan_block block_of(const std::vector<uint32_t>& vsans) {
  vsan_block block = vswitch::no_vsans();
  for (uint32_t vsan : vsans) vswitch::add_vsan(block, vsan);
  return block;
}

// One VSAN goes out by its number, several as a set: the library builds the same message from both.
uint32_t send_install(msgq* handle, const std::vector<uint32_t>& vsans, const std::vector<uint32_t>& if_indexes,
                      uint8_t what) {
  const vsan_block block = block_of(vsans);
  const bool single = vsans.size() == 1;
  return ficon_send_vsan_install(handle, static_cast<uint32_t>(if_indexes.size()), if_indexes.data(), what, single,
                                 single ? static_cast<int32_t>(vsans.front()) : 0, &block);
}

std::string names_of(const std::vector<uint32_t>& if_indexes) {
  std::string names;
  for (uint32_t if_index : if_indexes) names += (names.empty() ? "" : " ") + vswitch::interface_name(if_index);
  return names;
}

// ---- notify ----

std::vector<column> notify_columns() {
  return {
      {"notice", "NOTICE"}, {"vsan", "VSAN"},     {"interface", "INTERFACE"}, {"if_index", "", 8, false, column::data_only},
      {"state", "STATE"},   {"reason", "REASON"}, {"listeners", "LISTENERS"}, {"status", "STATUS"}};
}

// A notice as it is ordered, and what a row says about it.
struct ordered_notice {
  vswitch::notify_order order{};
  std::string name;
  std::optional<uint32_t> vsan;
  std::optional<uint32_t> if_index;
  std::optional<std::string> state;
  std::optional<uint32_t> reason;
};

void add_row(const ordered_notice& notice, const vswitch::notify_result& result, result_document& document) {
  document.add({notice.name, optional_cell(notice.vsan), interface_name_cell(notice.if_index),
                interface_cell(notice.if_index), known_cell(notice.state.has_value(), notice.state.value_or("")),
                optional_cell(notice.reason), known_cell(result.result == 0, int64_t{result.listeners}),
                status{result.result}});
}

exit_code send_notices(const command_context& context, manager_client& manager,
                       const std::vector<ordered_notice>& notices) {
  result_document document{notify_columns(), {}};
  exit_code code = notices.empty() ? kNotFound : kFound;
  for (const auto& notice : notices) {
    auto answer = manager.order(vswitch::kOpNotify, &notice.order, sizeof notice.order);
    const auto result = record_in<vswitch::notify_result>(answer.get());
    add_row(notice, result, document);
    if (result.result != 0) code = kNotFound;
  }
  context.print(document);
  return code;
}

bool is_on(const std::string& state) {
  return state == "up" || state == "on";
}

ordered_notice about_interface(uint32_t opcode, const char* name, uint32_t if_index) {
  ordered_notice notice;
  notice.order.opcode = opcode;
  notice.order.if_index = hton_if_index(if_index);
  notice.name = name;
  notice.if_index = if_index;
  return notice;
}

void set_state(ordered_notice& notice, const std::string& state) {
  notice.order.state = is_on(state);
  notice.state = state;
}

} // namespace

exit_code install_vsans(const command_context& context, const install_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  const auto vsans = parse_numbers(kVsan, {options.vsans}, vsans_of(manager.chassis()));
  const auto if_indexes = parse_interfaces(manager.chassis(), options.interfaces);
  if (vsans.empty() || if_indexes.empty())
    throw question_error("this switch has no VSANs, or no interfaces, that \"all\" means");
  const uint8_t what = options.uninstall ? vswitch::kUninstall : vswitch::kInstall;
  auto answer = manager.ask_unmarked([&](msgq* handle) { return send_install(handle, vsans, if_indexes, what); });
  const auto result = record_in<vswitch::manager_result>(answer.get());
  result_document document{{{"order", "ORDER"}, {"vsans", "VSANS"}, {"interfaces", "INTERFACES"}, {"status", "STATUS"}},
                           {}};
  document.add({std::string(options.uninstall ? "uninstall" : "install"), number_list(vsans.begin(), vsans.end()),
                names_of(if_indexes), status{result.result}});
  context.print(document);
  return result.result == 0 ? kFound : kNotFound;
}

exit_code notify_vsan(const command_context& context, const notify_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<ordered_notice> notices;
  for (uint32_t vsan : parse_numbers(kVsan, {options.vsans}, vsans_of(manager.chassis()))) {
    ordered_notice notice;
    notice.order.opcode = vswitch::kOpVsanStateChange;
    notice.order.vsan = vsan;
    notice.name = "vsan";
    notice.vsan = vsan;
    set_state(notice, options.state);
    notices.push_back(std::move(notice));
  }
  return send_notices(context, manager, notices);
}

exit_code notify_port(const command_context& context, const notify_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<ordered_notice> notices;
  for (uint32_t if_index : parse_interfaces(manager.chassis(), options.interfaces)) {
    notices.push_back(about_interface(vswitch::kOpPortUpDown, "port", if_index));
    set_state(notices.back(), options.state);
    notices.back().order.reason = static_cast<uint8_t>(options.reason);
    notices.back().reason = options.reason;
  }
  return send_notices(context, manager, notices);
}

exit_code notify_enable(const command_context& context, const notify_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<ordered_notice> notices;
  for (uint32_t if_index : parse_interfaces(manager.chassis(), options.interfaces)) {
    notices.push_back(about_interface(vswitch::kOpPortEnable, "enable", if_index));
    set_state(notices.back(), options.state);
  }
  return send_notices(context, manager, notices);
}

exit_code notify_rnid(const command_context& context, const notify_options& options) {
  manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<ordered_notice> notices;
  for (uint32_t if_index : parse_interfaces(manager.chassis(), options.interfaces))
    notices.push_back(about_interface(vswitch::kOpRnidNotification, "rnid", if_index));
  return send_notices(context, manager, notices);
}

// ---- The commands ----

command install_command() {
  auto options = std::make_shared<install_options>();
  return {.name = "install",
          .what = "Have the manager install FICON in VSANs for interfaces: bind them to it",
          .examples =
              "  chnsw -s /tmp/director install 30 fc1/1-4\n"
              "  chnsw -s /tmp/director install 30,31 fc1/1-4,fc2/1\n"
              "  chnsw -s /tmp/director install 30 fc1/1-4 --uninstall",
          .arguments = {vsans_word(&options->vsans), interfaces_word(&options->interfaces),
                        flag("--uninstall", &options->uninstall, "Take the VSANs out instead"),
                        timeout_option(&options->timeout_seconds)},
          .run = runs(install_vsans, options),
          .parts = {}};
}

namespace {

argument state_word(notify_options& options, const std::string& on, const std::string& off) {
  return word("STATE", &options.state, fmt::format("{} or {}", on, off)).one_of({on, off});
}

command notify_vsan_command() {
  auto options = std::make_shared<notify_options>();
  return {.name = "vsan",
          .what = "A VSAN came up or went down",
          .examples = "  chnsw -s /tmp/director notify vsan 10,20 down",
          .arguments = {vsans_word(&options->vsans), state_word(*options, "up", "down"),
                        timeout_option(&options->timeout_seconds)},
          .run = runs(notify_vsan, options),
          .parts = {}};
}

command notify_port_command() {
  auto options = std::make_shared<notify_options>();
  return {
      .name = "port",
      .what = "A port came up or went down",
      .examples = "  chnsw -s /tmp/director notify port fc1/1-4 down --reason 3",
      .arguments = {interfaces_word(&options->interfaces).single(), state_word(*options, "up", "down"),
                    timeout_option(&options->timeout_seconds),
                    option("--reason", "N", &options->reason, "Why, 0 to 255, decimal; 0 when left out").between(0, 255)},
      .run = runs(notify_port, options),
      .parts = {}};
}

command notify_enable_command() {
  auto options = std::make_shared<notify_options>();
  return {.name = "enable",
          .what = "A port was enabled or disabled",
          .examples = "  chnsw -s /tmp/director notify enable fc1/1 off",
          .arguments = {interfaces_word(&options->interfaces).single(), state_word(*options, "on", "off"),
                        timeout_option(&options->timeout_seconds)},
          .run = runs(notify_enable, options),
          .parts = {}};
}

command notify_rnid_command() {
  auto options = std::make_shared<notify_options>();
  return {.name = "rnid",
          .what = "The node descriptor of the device behind an interface",
          .examples = "  chnsw -s /tmp/director notify rnid fc3/1",
          .arguments = {interfaces_word(&options->interfaces).single(), timeout_option(&options->timeout_seconds)},
          .run = runs(notify_rnid, options),
          .parts = {}};
}

} // namespace

command notify_command() {
  return {.name = "notify",
          .what = "Have the manager send a notice to all that listen",
          .examples =
              "  chnsw -s /tmp/director notify vsan 10 down\n"
              "  chnsw -s /tmp/director notify port fc1/1-4 down --reason 3\n"
              "  chnsw -s /tmp/director notify enable fc1/1 off\n  chnsw -s /tmp/director notify rnid fc3/1",
          .arguments = {},
          .run = {},
          .parts = {notify_vsan_command(), notify_port_command(), notify_enable_command(), notify_rnid_command()}};
}

} // namespace chnsw_tool
