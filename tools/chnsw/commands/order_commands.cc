// install and notify.
#include "commands/order_commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "inspect/messages/manager_client.h"
#include "inspect/messages/manager_orders.h"
#include "inspect/port_map/vsan_ports.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"
#include "output/port_row.h"
#include "output/record_table.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

// ---- install ----

struct install_options {
  std::string vsans;
  std::vector<std::string> interfaces;
  bool uninstall = false;
  double timeout_seconds = inspect::kUsualTimeoutSeconds;
};

struct answered_install {
  inspect::install_order order;
  uint32_t status;
};

std::string names_of(const std::vector<uint32_t>& if_indexes) {
  std::string names;
  for (uint32_t if_index : if_indexes) names += (names.empty() ? "" : " ") + vswitch::interface_name(if_index);
  return names;
}

const record_column<answered_install> kInstallColumns[] = {
    {{"order", "ORDER"},
     [](const answered_install& answered) -> cell {
       return std::string(answered.order.uninstall ? "uninstall" : "install");
     }},
    {{"vsans", "VSANS"},
     [](const answered_install& answered) -> cell {
       return number_list(answered.order.vsans.begin(), answered.order.vsans.end());
     }},
    {{"interfaces", "INTERFACES"},
     [](const answered_install& answered) -> cell { return names_of(answered.order.if_indexes); }},
    {{"status", "STATUS"}, [](const answered_install& answered) -> cell { return status{answered.status}; }},
};

exit_code install_vsans(const command_context& context, const install_options& options) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  inspect::install_order order{options.uninstall, {}, {}};
  order.vsans = inspect::parse_numbers(inspect::kVsan, {options.vsans}, inspect::vsans_of(manager.chassis()));
  order.if_indexes = inspect::parse_interfaces(manager.chassis(), options.interfaces);
  if (order.vsans.empty() || order.if_indexes.empty())
    throw inspect::question_error("this switch has no VSANs, or no interfaces, that \"all\" means");
  const uint32_t status = inspect::order_install(manager, order);
  context.print(document_of<answered_install>(kInstallColumns, {{order, status}}));
  return status == 0 ? kFound : kNotFound;
}

// ---- notify ----

struct notify_options {
  std::string vsans;
  std::vector<std::string> interfaces;
  std::string state; // "up", "down", "on", "off"
  uint32_t reason = 0;
  double timeout_seconds = inspect::kUsualTimeoutSeconds;
};

struct answered_notice {
  inspect::notice_order notice;
  inspect::notice_answer answer;
};

const record_column<answered_notice> kNoticeColumns[] = {
    {{"notice", "NOTICE"}, [](const answered_notice& sent) -> cell { return sent.notice.name; }},
    {{"vsan", "VSAN"}, [](const answered_notice& sent) { return optional_cell(sent.notice.vsan); }},
    {{"interface", "INTERFACE"}, [](const answered_notice& sent) { return interface_name_cell(sent.notice.if_index); }},
    {{"if_index", "", 8, false, column::data_only},
     [](const answered_notice& sent) { return interface_cell(sent.notice.if_index); }},
    {{"state", "STATE"},
     [](const answered_notice& sent) { return known_cell(sent.notice.state.has_value(), sent.notice.state.value_or("")); }},
    {{"reason", "REASON"}, [](const answered_notice& sent) { return optional_cell(sent.notice.reason); }},
    {{"listeners", "LISTENERS"},
     [](const answered_notice& sent) { return known_cell(sent.answer.status == 0, int64_t{sent.answer.listeners}); }},
    {{"status", "STATUS"}, [](const answered_notice& sent) -> cell { return status{sent.answer.status}; }},
};

exit_code send_notices(const command_context& context, inspect::manager_client& manager,
                       const std::vector<inspect::notice_order>& notices) {
  std::vector<answered_notice> sent;
  sent.reserve(notices.size());
  for (const auto& notice : notices) sent.push_back({notice, inspect::order_notice(manager, notice)});
  context.print(document_of<answered_notice>(kNoticeColumns, sent));
  const bool all_sent = std::all_of(sent.begin(), sent.end(), [](const auto& one) { return one.answer.status == 0; });
  return all_sent && !sent.empty() ? kFound : kNotFound;
}

// A notice about each interface.
template <typename make_notice>
exit_code notify_about_interfaces(const command_context& context, const notify_options& options, make_notice make) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<inspect::notice_order> notices;
  for (uint32_t if_index : inspect::parse_interfaces(manager.chassis(), options.interfaces))
    notices.push_back(make(if_index));
  return send_notices(context, manager, notices);
}

exit_code notify_vsan(const command_context& context, const notify_options& options) {
  inspect::manager_client manager(managed_folder(context), options.timeout_seconds);
  std::vector<inspect::notice_order> notices;
  const auto all = inspect::vsans_of(manager.chassis());
  for (uint32_t vsan : inspect::parse_numbers(inspect::kVsan, {options.vsans}, all))
    notices.push_back(inspect::vsan_notice(vsan, options.state));
  return send_notices(context, manager, notices);
}

exit_code notify_port(const command_context& context, const notify_options& options) {
  return notify_about_interfaces(context, options, [&](uint32_t if_index) {
    return inspect::port_notice(if_index, options.state, static_cast<uint8_t>(options.reason));
  });
}

exit_code notify_enable(const command_context& context, const notify_options& options) {
  return notify_about_interfaces(context, options,
                                 [&](uint32_t if_index) { return inspect::enable_notice(if_index, options.state); });
}

exit_code notify_rnid(const command_context& context, const notify_options& options) {
  return notify_about_interfaces(context, options, inspect::rnid_notice);
}

// ---- The commands ----

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
