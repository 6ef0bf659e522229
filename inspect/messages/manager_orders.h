// What the manager is ordered: to install FICON in VSANs, and to send notices.
#ifndef INSPECT_MANAGER_ORDERS_H
#define INSPECT_MANAGER_ORDERS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/messages/manager_client.h"

namespace inspect {

// Each throws error when there is no answer. A status is the manager's.

struct install_order {
  bool uninstall = false;
  std::vector<uint32_t> vsans;      // at least one
  std::vector<uint32_t> if_indexes; // at least one
};
uint32_t order_install(manager_client& manager, const install_order& order);

// A notice that the manager passes on to those who listen.
struct notice_order {
  uint32_t opcode = 0; // of the notice
  std::string name;    // "vsan", "port", "enable" or "rnid"
  std::optional<uint32_t> vsan;
  std::optional<uint32_t> if_index;
  std::optional<std::string> state; // "up", "down", "on" or "off"
  std::optional<uint8_t> reason;
};
notice_order vsan_notice(uint32_t vsan, const std::string& state);
notice_order port_notice(uint32_t if_index, const std::string& state, uint8_t reason);
notice_order enable_notice(uint32_t if_index, const std::string& state);
notice_order rnid_notice(uint32_t if_index);

struct notice_answer {
  uint32_t status;
  uint32_t listeners; // that it was sent to, with status 0
};
notice_answer order_notice(manager_client& manager, const notice_order& notice);

} // namespace inspect

#endif
