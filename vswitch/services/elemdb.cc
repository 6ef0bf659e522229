// Element database service.
#include <platform/elemdb.h>

#include <cerrno>
#include <cstddef>

#include "services/process_state.h"
#include "vswitch/service_status.h"

namespace vswitch {

namespace {

bool well_formed(const elemdb_request* request) {
  return request != nullptr && request->first == 1 && request->key != nullptr && request->key_length != 0 &&
         (request->value != nullptr || request->value_length == 0);
}

} // namespace

} // namespace vswitch

using namespace vswitch;

VSWITCH_SERVICE int elemdb_lookup_element(elemdb_request* request) {
  if (!well_formed(request)) {
    errno = EINVAL;
    return kElementBadRequest;
  }
  switch_store* store = switch_in_use();
  if (store == nullptr) {
    errno = this_process().in_use.no_switch_errno;
    return kElementNoSwitch;
  }
  const std::span key(static_cast<const std::byte*>(request->key), request->key_length);
  return store->look_up(request->table, key, request->value, request->value_length) ? 0 : kElementNotThere;
}
