// The platform's port services as the translations use them: a port built from its index, accepted or not, bundled or not.
#ifndef KESTRL_PORT_SERVICES_H
#define KESTRL_PORT_SERVICES_H

#include <cstdint>

#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/portidx.h>

#include "report.h"

namespace chnsw {

// Asks the port index service whether it knows the interface; traces when it does not. Returns the service's status.
inline int find_port_index(uint32_t if_index) {
  uint16_t port_index = 0;
  const int status = portidx_port_by_if_index(if_index, &port_index);
  if (status != 0) {
    ficon_log_debug("portidx lookup failed for IfIndex %x with err (%d)\n", if_index, status);
  }
  return status;
}

enum class membership { none, member, unknown };

// Asks the port-channel service. status receives its answer, for the report that each caller words for itself.
inline membership port_channel_membership(uint32_t if_index, int& status) {
  lagmap_port_query query = {if_index, 0};
  status = lagmap_get_port(&query);
  if (status == 0) return query.channel != 0 ? membership::member : membership::none;
  return static_cast<uint32_t>(status) == FICON_LAGMAP_NOT_MEMBER ? membership::none : membership::unknown;
}

} // namespace chnsw

#endif
