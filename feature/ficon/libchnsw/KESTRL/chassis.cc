// Every per-chassis constant, as rows that are looked up by slot count and chassis type.
#include "chassis.h"

#include <platform/hwinv.h>
#include <platform/platform_info.h>

namespace {

using chnsw::chassis_row;
using chnsw::kNoSupervisor;
using chnsw::numbering;

constexpr int kAny = -2;
constexpr numbering kNone = {0, 0, 0, 0};

// The first row that fits holds. What looks like a slip is not: clients were built against these numbers.
// - Highest port number 253 stands in rows whose default numbering has no room for it (9 slots of types 32 and 38, 10 and
// 13
//   slots of type 38).
// - 1 slot of type 27: 40 ports, yet the numbers without a port start at 240.
// - 10 slots, and 18 slots of type 38, are laid out with stride 64; all others with one line card's 254 indexes. With that
//   stride the 9-, 13- and 18-slot layouts reach the entries from 1024 on, which the logical numbers then overwrite.
// - What is tested for is not always what is laid out: every 10-slot chassis is expected to hold eight groups of 48, and 13
//   and 18 slots never count as default.
// - 10 slots of type 32 and 18 slots of type 38: eight cards have default numbers, five and nine groups are laid out.
constexpr chassis_row kRows[] = {
    // slots type  highest  supervisor     laid out              announced  cards  expected
    //                                     groups ports stride N                   groups ports stride N
    {1, 5, 33, kNoSupervisor, {1, 20, 254, 20}, false, 1, {1, 20, 254, 20}},
    {1, 15, 47, kNoSupervisor, {1, 34, 254, 34}, false, 1, {1, 34, 254, 34}},
    {1, 27, 253, kNoSupervisor, {1, 40, 254, 240}, false, 1, {1, 40, 254, 240}},
    {1, kAny, 53, kNoSupervisor, {1, 40, 254, 40}, false, 1, {1, 40, 254, 40}},
    {2, kAny, 77, kNoSupervisor, {2, 32, 254, 64}, false, 2, {2, 32, 254, 64}},
    {6, 34, 253, 2, {4, 48, 254, 240}, false, 4, {4, 48, 254, 240}},
    {6, kAny, 141, 4, {4, 32, 254, 128}, false, 4, {4, 32, 254, 128}},
    {9, 32, 253, 4, {7, 32, 254, 224}, false, 7, {7, 32, 254, 224}},
    {9, 38, 253, 4, {7, 32, 254, 224}, false, 7, {7, 32, 254, 224}},
    {9, kAny, 237, 4, {7, 32, 254, 224}, false, 7, {7, 32, 254, 224}},
    {10, 32, 253, 4, {5, 48, 64, 240}, true, 8, {8, 48, 64, 240}},
    {10, 38, 253, 4, {8, 16, 64, 224}, true, 8, {8, 48, 64, 240}},
    {10, kAny, 237, 4, {8, 16, 64, 224}, true, 8, {8, 48, 64, 240}},
    {13, 38, 253, 6, {11, 16, 254, 224}, false, 11, kNone},
    {13, kAny, 237, 6, {11, 16, 254, 224}, false, 11, kNone},
    {18, 38, 253, 8, {9, 48, 64, 240}, false, 8, kNone},
    {18, kAny, 237, 8, {14, 16, 254, 224}, false, 14, kNone},
    {kAny, kAny, 0, kNoSupervisor, kNone, false, 0, kNone},
};

bool fits(const chassis_row& row, const chnsw::chassis_identity& chassis) {
  return row.num_slots == kAny || (row.num_slots == chassis.num_slots && (row.type == kAny || row.type == chassis.type));
}

} // namespace

int32_t chnsw::ask_chassis(chassis_identity& chassis) {
  ficon_platform_info info = {};
  if (get_platform_info(&info) != 0) return kNoPlatformInfo;
  chassis.num_slots = info.num_slots;
  if (hwinv_get_chassis_type(&chassis.type) != 0) return kNoChassisType;
  return 0;
}

const chnsw::chassis_row& chnsw::chassis_row_of(const chassis_identity& chassis) {
  const chassis_row* row = kRows;
  while (!fits(*row, chassis)) ++row;
  return *row;
}
