// Platform information service.
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
