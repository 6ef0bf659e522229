// Failures by the name of what failed.
#ifndef VSWITCH_STORE_LMDB_NAMED_FAILURES_H
#define VSWITCH_STORE_LMDB_NAMED_FAILURES_H

#include <filesystem>
#include <string>

#include "vswitch/switch_error.h"

namespace vswitch {

// Runs a step so that what it throws is a switch_error whose message begins with the place: the switch's folder.
template <typename step>
auto naming(const std::string& place, step run) {
  try {
    return run();
  } catch (const switch_error& error) {
    const std::string what = error.what();
    throw switch_error(what.starts_with(place + ":") ? what : place + ": " + what);
  } catch (const std::filesystem::filesystem_error& error) {
    throw switch_error(place + ": " + error.code().message());
  }
}

} // namespace vswitch

#endif
