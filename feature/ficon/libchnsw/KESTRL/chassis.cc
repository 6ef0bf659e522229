// Every per-chassis constant, as rows that are looked up by slot count and chassis type.
#include "chassis.h"

#include <cerrno>

#include <libchnsw.h>
#include <platform/hwinv.h>

#include "report.h"

namespace {

using chnsw::chassis_row;
using chnsw::kNoSupervisor;
using chnsw::numbering;

constexpr int kAny = -2;
constexpr int kCard = FICON_PMAP_PORTS_PER_LC; // stride: a line card's indexes
constexpr int kDense = 64;                     // stride of the dense layouts
constexpr numbering kNone = {0, 0, 0, 0};

// The first row that fits holds. What looks like a slip is not, clients were built against these numbers:
// - The highest port number is 253 in rows whose default numbering has no room for it: 9 slots of types 32 and 38, 10
//   and 13 slots of type 38.
// - One slot of type 27 has 40 ports, yet its numbers without a port start at 240.
// - With a whole card's stride the layouts of 9, 13 and 18 slots reach the entries from 1024 on, which the numbers
//   without a port then overwrite.
// - What is tested for is not always what is laid out: every chassis with 10 slots is expected to hold eight groups of
//   48, and 13 and 18 slots never count as default.
// - 10 slots of type 32 and 18 slots of type 38 have eight cards with default numbers, but five and nine groups laid out.
//
// clang-format off
constexpr chassis_row kRows[] = {
    // slots  type  highest  supervisor  cards  announced   laid out                   expected
    //                                                      groups ports stride first  groups ports stride first
    {    1,    5,     33, kNoSupervisor,    1, false,     {  1, 20, kCard,   20},    { 1, 20, kCard,   20}},
    {    1,   15,     47, kNoSupervisor,    1, false,     {  1, 34, kCard,   34},    { 1, 34, kCard,   34}},
    {    1,   27,    253, kNoSupervisor,    1, false,     {  1, 40, kCard,  240},    { 1, 40, kCard,  240}},
    {    1, kAny,     53, kNoSupervisor,    1, false,     {  1, 40, kCard,   40},    { 1, 40, kCard,   40}},
    {    2, kAny,     77, kNoSupervisor,    2, false,     {  2, 32, kCard,   64},    { 2, 32, kCard,   64}},
    {    6,   34,    253,             2,    4, false,     {  4, 48, kCard,  240},    { 4, 48, kCard,  240}},
    {    6, kAny,    141,             4,    4, false,     {  4, 32, kCard,  128},    { 4, 32, kCard,  128}},
    {    9,   32,    253,             4,    7, false,     {  7, 32, kCard,  224},    { 7, 32, kCard,  224}},
    {    9,   38,    253,             4,    7, false,     {  7, 32, kCard,  224},    { 7, 32, kCard,  224}},
    {    9, kAny,    237,             4,    7, false,     {  7, 32, kCard,  224},    { 7, 32, kCard,  224}},
    {   10,   32,    253,             4,    8, true,      {  5, 48, kDense, 240},    { 8, 48, kDense, 240}},
    {   10,   38,    253,             4,    8, true,      {  8, 16, kDense, 224},    { 8, 48, kDense, 240}},
    {   10, kAny,    237,             4,    8, true,      {  8, 16, kDense, 224},    { 8, 48, kDense, 240}},
    {   13,   38,    253,             6,   11, false,     { 11, 16, kCard,  224},    kNone},
    {   13, kAny,    237,             6,   11, false,     { 11, 16, kCard,  224},    kNone},
    {   18,   38,    253,             8,    8, false,     {  9, 48, kDense, 240},    kNone},
    {   18, kAny,    237,             8,   14, false,     { 14, 16, kCard,  224},    kNone},
    { kAny, kAny,      0, kNoSupervisor,    0, false,     kNone,                     kNone},
};
// clang-format on

// Who looks a number up relies on this: no default number reaches FICON_PMAP_NO_NUMBER.
constexpr bool every_number_is_a_number() {
  for (const chassis_row& row : kRows) {
    if (row.laid_out.groups * row.laid_out.ports > FICON_PMAP_NO_NUMBER) return false;
    if (row.laid_out.logical_pn + FICON_PMAP_LOGICAL_PNS > FICON_PMAP_NO_NUMBER) return false;
  }
  return true;
}
static_assert(every_number_is_a_number());

// Who looks a row up relies on this too: the rows of a slot count stand together, and the last of them is for any type.
constexpr bool every_slot_count_ends_with_any_type() {
  for (const chassis_row* row = kRows; row->num_slots != kAny; ++row) {
    if (row->type != kAny && row[1].num_slots != row->num_slots) return false;
  }
  return true;
}
static_assert(every_slot_count_ends_with_any_type());

// The first row for each slot count. Every operation that meets a slot looks a row up, and passing the rows before it took a
// tenth of the instructions of turning an interface into an index (docs/benchmarks.md).
struct first_rows {
  uint8_t of[UINT8_MAX + 1];
};

constexpr first_rows find_first_rows() {
  first_rows first = {};
  for (int slots = 0; slots <= UINT8_MAX; ++slots) {
    uint8_t& row = first.of[slots];
    while (kRows[row].num_slots != slots && kRows[row].num_slots != kAny) ++row;
  }
  return first;
}

constexpr first_rows kFirstRows = find_first_rows();

} // namespace

int32_t chnsw::ask_chassis(chassis_identity& chassis) {
  ficon_platform_info info = {};
  if (get_platform_info(&info) != 0) return kNoPlatformInfo;
  chassis.num_slots = info.num_slots;
  if (hwinv_get_chassis_type(&chassis.type) != 0) return kNoChassisType;
  return 0;
}

// Oddity: the report does not end its line, so neither does its line on standard output.
void chnsw::report_no_chassis_type() {
  ficon_log_error("hwinv_get_chassis_type failed, errno = %d", errno);
}

const chnsw::chassis_row& chnsw::chassis_row_of(const chassis_identity& chassis) {
  const chassis_row* row = kRows + kFirstRows.of[chassis.num_slots];
  while (row->type != kAny && row->type != chassis.type) ++row;
  return *row;
}
