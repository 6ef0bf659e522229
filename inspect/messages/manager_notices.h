// What the manager tells those who listen, unasked.
#ifndef INSPECT_MANAGER_NOTICES_H
#define INSPECT_MANAGER_NOTICES_H

#include <cstdint>
#include <optional>
#include <string>

#include "inspect/chassis/node_identity.h"
#include "platform/msgq.h"

namespace inspect {

struct manager_notice {
  uint32_t opcode = 0;
  std::string name;    // "vsan", "port", "enable", "rnid" or "unknown"
  uint32_t status = 0; // of the library's parser; the rest, which is as the notice has it, only with 0
  std::optional<uint32_t> vsan;
  std::optional<uint32_t> if_index;
  std::optional<std::string> state; // "up", "down", "on", "off"; a number for any other
  std::optional<uint32_t> reason;
  std::optional<node_identity> node;
};

manager_notice read_notice(msgq_message* message);

} // namespace inspect

#endif
