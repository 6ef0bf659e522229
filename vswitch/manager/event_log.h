// Where the parts of the manager log what happens.
#ifndef VSWITCH_MANAGER_EVENT_LOG_H
#define VSWITCH_MANAGER_EVENT_LOG_H

#include <cstdint>
#include <functional>
#include <string>

namespace vswitch {

// peer: 0 for none; result: a FICON_RC_ code.
using event_log = std::function<void(uint64_t peer, const std::string& what, uint32_t result)>;

} // namespace vswitch

#endif
