// SIGINT and SIGTERM, which end some commands in good order instead of killing them.
#ifndef CHNSW_INTERRUPTION_H
#define CHNSW_INTERRUPTION_H

#include "vswitch/descriptor.h"

namespace chnsw_tool {

// From its making on the two signals only make a descriptor readable.
class interruption {
 public:
  interruption();

  int descriptor() const { return descriptor_.number(); }
  bool has_come() const; // stays true

 private:
  vswitch::descriptor descriptor_;
};

} // namespace chnsw_tool

#endif
