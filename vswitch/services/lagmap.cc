// Port-channel membership service.
#include <platform/lagmap.h>

#include "services/process_state.h"
#include "vswitch/service_status.h"

using namespace vswitch;

VSWITCH_SERVICE int lagmap_get_port(lagmap_port_query* query) {
  if (query == nullptr) return kLagmapBadRequest;
  const switch_view* view = current_view();
  if (view == nullptr) return kLagmapNoSwitch;
  if (!view->port_index(query->if_index)) return kLagmapUnknownPort;
  const uint32_t channel = channel_of(view->chassis(), query->if_index);
  if (channel == 0) return FICON_LAGMAP_NOT_MEMBER;
  query->channel = channel;
  return 0;
}
