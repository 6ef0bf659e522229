// How a command ends.
#ifndef CHNSW_EXIT_CODE_H
#define CHNSW_EXIT_CODE_H

#include "inspect/error.h"

namespace chnsw_tool {

enum exit_code {
  kFound = 0,    // also: nothing wrong, no difference
  kNotFound = 1, // also: findings, differences
  kUsage = 2,    // a wrong command line, or a wrong chassis file
  kPlatform = 3  // a folder, a service or an output that failed
};

inline exit_code exit_code_of(const inspect::error& error) {
  return error.failed() == inspect::failure::platform ? kPlatform : kUsage;
}

} // namespace chnsw_tool

#endif
