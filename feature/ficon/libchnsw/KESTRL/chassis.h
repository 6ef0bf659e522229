// What depends on the chassis: every per-chassis constant, one row a chassis.
#ifndef KESTRL_CHASSIS_H
#define KESTRL_CHASSIS_H

#include <cstdint>

namespace chnsw {

// What selects a row.
struct chassis_identity {
  uint8_t num_slots = 0;
  int32_t type = -1;
};

// Outcomes of asking the platform, other than 0. Clients of the numbering operations know them by these numbers.
inline constexpr int32_t kNoPlatformInfo = -1;
inline constexpr int32_t kNoChassisType = -2;

// Asks the platform itself on every call, platform information first. Reports nothing; errno is the failing service's.
int32_t ask_chassis(chassis_identity& chassis);

// The error report of a chassis type that cannot be read, with errno.
void report_no_chassis_type();

inline constexpr int kNoSupervisor = -1;

// Default port numbers: group g of groups holds PNs g x ports + 0 ... g x ports + ports - 1.
struct numbering {
  int groups;          // 0: no default known
  int ports;           // per group
  int stride;          // entries from one group to the next
  uint16_t logical_pn; // first of the numbers without a physical port
};

struct chassis_row {
  int num_slots;      // kAny in the last row
  int32_t type;       // kAny: every type that no earlier row names
  int highest_pn;     // 0: unknown
  int supervisor;     // first of the two supervisor slots, from 0, or kNoSupervisor
  int cards;          // line cards with default numbers
  bool announced;     // laying out prints the chassis on standard output
  numbering laid_out; // as it is laid out
  numbering expected; // as it is tested for
};

// The row of a chassis; an unknown one has a row that knows nothing.
const chassis_row& chassis_row_of(const chassis_identity& chassis);

} // namespace chnsw

#endif
