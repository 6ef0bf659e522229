// Platform and hardware inventory services.
#include <platform/hwinv.h>
#include <platform/platform_info.h>

#include <cerrno>
#include <cstring>

#include "services/process_state.h"
#include "vswitch/service_status.h"

using namespace vswitch;

VSWITCH_SERVICE int get_platform_info(ficon_platform_info* info) {
  if (info == nullptr) {
    errno = EINVAL;
    return kInventoryBadRequest;
  }
  const switch_view* view = current_view();
  if (view == nullptr) return kInventoryNoSwitch;
  static_assert(sizeof *info == sizeof view->chassis().platform_record);
  std::memcpy(info, view->chassis().platform_record.data(), sizeof *info);
  return 0;
}

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
