#include "inspect/messages/manager_orders.h"

#include <libchnsw.h>
#include <platform/if_index.h>

#include "vswitch/vsan_set.h"

namespace inspect {

namespace {

vsan_block block_of(const std::vector<uint32_t>& vsans) {
  vsan_block block = vswitch::no_vsans();
  for (uint32_t vsan : vsans) vswitch::add_vsan(block, vsan);
  return block;
}

// One VSAN goes out by its number, several as a set: the library builds the same message from both.
uint32_t send_install(msgq* handle, const install_order& order) {
  const vsan_block block = block_of(order.vsans);
  const bool single = order.vsans.size() == 1;
  return ficon_send_vsan_install(handle, static_cast<uint32_t>(order.if_indexes.size()), order.if_indexes.data(),
                                 order.uninstall ? vswitch::kUninstall : vswitch::kInstall, single,
                                 single ? static_cast<int32_t>(order.vsans.front()) : 0, &block);
}

vswitch::notify_order record_of(const notice_order& notice) {
  vswitch::notify_order record{};
  record.opcode = notice.opcode;
  record.vsan = notice.vsan.value_or(0);
  record.if_index = notice.if_index ? hton_if_index(*notice.if_index) : 0;
  record.state = notice.state == "up" || notice.state == "on";
  record.reason = notice.reason.value_or(0);
  return record;
}

} // namespace

uint32_t order_install(manager_client& manager, const install_order& order) {
  auto answer = manager.ask_unmarked([&](msgq* handle) { return send_install(handle, order); });
  return record_in<vswitch::manager_result>(answer.get()).result;
}

notice_order vsan_notice(uint32_t vsan, const std::string& state) {
  return {vswitch::kOpVsanStateChange, "vsan", vsan, {}, state, {}};
}

notice_order port_notice(uint32_t if_index, const std::string& state, uint8_t reason) {
  return {vswitch::kOpPortUpDown, "port", {}, if_index, state, reason};
}

notice_order enable_notice(uint32_t if_index, const std::string& state) {
  return {vswitch::kOpPortEnable, "enable", {}, if_index, state, {}};
}

notice_order rnid_notice(uint32_t if_index) {
  return {vswitch::kOpRnidNotification, "rnid", {}, if_index, {}, {}};
}

notice_answer order_notice(manager_client& manager, const notice_order& notice) {
  const vswitch::notify_order record = record_of(notice);
  auto answer = manager.order(vswitch::kOpNotify, &record, sizeof record);
  const auto result = record_in<vswitch::notify_result>(answer.get());
  return {result.result, result.listeners};
}

} // namespace inspect
