#include "inspect/messages/manager_questions.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "inspect/error.h"
#include "inspect/words/status_names.h"
#include "vswitch/vsan_set.h"

namespace inspect {

namespace {

// What a manager logs beside a question.
constexpr char kAskerText[] = "chnsw";
constexpr char kReasonText[] = "ask portmap";

// The library hands out the list without its length, which the list itself tells.
std::vector<uint16_t> vsans_in(msgq_message* answer) {
  void* list = nullptr;
  const uint32_t status = ficon_parse_get_enabled_vsans(answer, &list);
  if (status != 0) throw platform_error("the manager's answer has no list of VSANs: " + status_text(status));
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

} // namespace

port_map_answer ask_port_map(manager_client& manager, uint32_t if_index) {
  auto answer = manager.ask([&](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(
        ficon_send_get_portmap_nonblock(handle, kAskerText, kReasonText, 0, 0, if_index, 0, 0, send_arg));
  });
  uint32_t answered = 0;
  uint16_t pn = FICON_PMAP_NO_NUMBER;
  uint16_t pa = FICON_PMAP_NO_NUMBER;
  const uint32_t status = ficon_parse_get_portmap(answer.get(), &answered, &pn, &pa);
  if (status != 0) return {if_index, status, FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER};
  return {if_index, status, pn, pa};
}

std::vector<enabled_vsan> ask_enabled_vsans(manager_client& manager) {
  auto answer = manager.ask([](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(ficon_send_get_enabled_vsans(handle, send_arg));
  });
  std::vector<enabled_vsan> vsans;
  for (uint16_t vsan : vsans_in(answer.get())) vsans.push_back({vsan, name_of_vsan(manager.chassis(), vsan)});
  return vsans;
}

vsan_state_answer ask_vsan_state(manager_client& manager, uint32_t if_index, uint32_t vsan) {
  auto answer = manager.ask([&](msgq* handle, uintptr_t send_arg) {
    const ficon_ifvsan_query query = {0, 0, vsan, if_index, 0};
    return static_cast<uint32_t>(ficon_send_query_ifvsan_state(handle, &query, send_arg));
  });
  ficon_ifvsan_query answered{};
  const uint32_t status = ficon_parse_query_ifvsan(answer.get(), &answered);
  return {if_index, vsan, status, status == 0 ? std::optional(answered.state) : std::nullopt};
}

// Asked for as the host sent it, so that both forms can be shown; the conversion is the one that the parser would make.
node_answer ask_node(manager_client& manager, uint32_t if_index) {
  auto answer = manager.ask([&](msgq* handle, uintptr_t send_arg) {
    return static_cast<uint32_t>(ficon_send_get_rnid_nonblock(handle, if_index, 0, 0, 0, 0, send_arg));
  });
  uint32_t codepage = 0;
  ficon_node_descriptor sent{};
  node_answer node{if_index, 0, {}};
  node.status = ficon_parse_get_rnid(answer.get(), nullptr, nullptr, nullptr, &codepage, nullptr, nullptr, &sent);
  if (node.status == 0) node.node = identity_of(codepage, sent);
  return node;
}

} // namespace inspect
