// Port index service.
#include <platform/portidx.h>

#include "services/process_state.h"
#include "vswitch/service_status.h"

using namespace vswitch;

VSWITCH_SERVICE int portidx_port_by_if_index(uint32_t if_index, uint16_t* port_index) {
  if (port_index == nullptr) return kPortIndexBadRequest;
  const switch_view* view = current_view();
  if (view == nullptr) return kPortIndexNoSwitch;
  auto index = view->port_index(if_index);
  if (!index) return FICON_PORTIDX_NO_PORT;
  *port_index = *index;
  return 0;
}
