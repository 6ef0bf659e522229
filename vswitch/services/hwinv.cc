// Hardware inventory service.
#include <platform/hwinv.h>

#include <cerrno>

#include "services/process_state.h"
#include "vswitch/service_status.h"

using namespace vswitch;

VSWITCH_SERVICE int hwinv_get_chassis_type(int32_t* chassis_type) {
  if (chassis_type == nullptr) {
    errno = EINVAL;
    return kInventoryBadRequest;
  }
  const switch_view* view = current_view();
  if (view == nullptr) return kInventoryNoSwitch;
  *chassis_type = view->chassis().type;
  return 0;
}
