// What goes wrong with a switch as a whole.
#ifndef VSWITCH_SWITCH_ERROR_H
#define VSWITCH_SWITCH_ERROR_H

#include <stdexcept>

namespace vswitch {

// A switch that cannot be made, opened, read, changed or served: what, where and what to do.
class switch_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

} // namespace vswitch

#endif
