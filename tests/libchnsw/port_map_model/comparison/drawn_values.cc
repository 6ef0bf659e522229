#include "drawn_values.h"

#include <climits>
#include <iterator>

#include "programmable_platform.h"

namespace chnsw_test {
namespace {

constexpr chassis_kind kChassis[] = {{10, 32}, {10, 32}, {10, 32}, {10, 32}, {10, 38}, {10, 38}, {10, 5}, {10, 34},
                                     {6, 34},  {6, 34},  {6, 34},  {6, 1},   {13, 38}, {13, 38}, {13, 0}, {18, 38},
                                     {18, 38}, {18, 1},  {18, 32}, {9, 32},  {9, 38},  {9, -1},  {2, 7},  {2, 32},
                                     {1, 5},   {1, 15},  {1, 27},  {1, 34},  {5, 34},  {0, 32},  {255, 1}};

// Few, so that ports share them.
constexpr uint16_t kNumbersOfEntries[] = {0, 1, 2, 3, 4,  5,   6,   7,   1,   2,   3,   1,
                                          2, 1, 2, 3, 40, 253, 254, 255, 299, 511, 512, 65535};
constexpr int32_t kNumbersAsked[] = {0,   1,    2,       3,       4,     5,     6,     7,   1,   2,   3,   1,   2,   1,
                                     2,   3,    1,       2,       3,     1,     2,     3,   1,   2,   3,   4,   5,   6,
                                     7,   1,    2,       3,       253,   254,   33,    34,  40,  47,  53,  54,  77,  141,
                                     142, 237,  238,     254,     255,   256,   299,   300, 511, 512, 513, 599, 600, -1,
                                     -2,  -254, INT_MIN, INT_MAX, 65535, 65536, 65537, 0,   1,   2};
constexpr uint16_t kVsansOfEntries[] = {0, 0, 0, 1, 2, 3, 1, 2, 1, 1, 2, 10, 4095, 65535};
constexpr uint32_t kVsansAsked[] = {1, 2, 3, 1, 2, 1, 2, 1, 0, 10, 4095, 65535, 0x10001, 0x10002, 0x10000, 0xFFFFFFFF};
constexpr uint16_t kIndexes[] = {0,    1,    2,    3,    4,    5,    6,    7,    10,   11,   12,   15,   16,   47,
                                 200,  252,  253,  254,  255,  256,  260,  507,  508,  509,  514,  761,  762,  763,
                                 1014, 1015, 1016, 1017, 1020, 1022, 1023, 1024, 1025, 1026, 1030, 1037, 1038, 1100,
                                 1268, 1269, 1270, 1278, 1279, 0,    1,    2,    254,  255,  256,  508,  1016, 1024};
constexpr int32_t kIndexesAsked[] = {0,    1,    2,    3,    253,    254,    255,    507,     508,     762,   1015, 1016,
                                     1017, 1022, 1023, 1024, 1025,   1026,   1030,   1100,    1279,    1280,  1281, -1,
                                     -2,   -253, -254, -508, -63754, -65024, -65023, INT_MIN, INT_MAX, 65536, 256,  0,
                                     1024, 1025, 1100, 1279, 1024,   1030,   1278,   1,       4,       5};
constexpr uint8_t kSlots[] = {0, 1, 2, 3, 0, 1, 2, 6, 6, 4, 5, 7, 8, 9, 10, 11, 12, 13, 16, 17, 18, 127, 200, 254, 255};
constexpr uint8_t kPorts[] = {0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 10, 11, 12, 200, 252, 253, 254, 255};
constexpr uint32_t kLogicalInterfaces[] = {port_channel_interface(1),
                                           port_channel_interface(2),
                                           port_channel_interface(3),
                                           fcip_interface(1),
                                           fcip_interface(2),
                                           0x02000001,
                                           0x00000001};
constexpr int32_t kPortsPreset[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 254, 254, 300, 512, 600, 1, 2, -1};

} // namespace

step::step(const uint8_t* data, size_t size) : data_(data), size_(size) {}

unsigned step::byte() {
  if (size_ == 0) return 0;
  --size_;
  return *data_++;
}

chassis_kind draw_chassis(step& from) {
  return from.one_of(kChassis);
}
int32_t draw_max_ficon_ports(step& from) {
  return from.one_of(kPortsPreset);
}
uint16_t draw_number_of_entry(step& from) {
  return from.one_of(kNumbersOfEntries);
}
uint16_t draw_vsan_of_entry(step& from) {
  return from.one_of(kVsansOfEntries);
}
uint16_t draw_index(step& from) {
  return from.one_of(kIndexes);
}
int32_t draw_number_to_ask(step& from) {
  return from.one_of(kNumbersAsked);
}
uint32_t draw_vsan_to_ask(step& from) {
  return from.one_of(kVsansAsked);
}
int32_t draw_index_to_ask(step& from) {
  return from.one_of(kIndexesAsked);
}
uint8_t draw_slot(step& from) {
  return from.one_of(kSlots);
}
uint8_t draw_port(step& from) {
  return from.one_of(kPorts);
}

uint32_t draw_interface(step& from) {
  const unsigned kind = from.byte();
  const unsigned place = from.byte();
  if (kind < 160) return physical_interface(kSlots[kind % 9], kPorts[place % 8]);
  if (kind < 200) return physical_interface(kSlots[kind % std::size(kSlots)], kPorts[place % std::size(kPorts)]);
  if (kind == 255) return 0;
  return kLogicalInterfaces[place % std::size(kLogicalInterfaces)];
}

uint32_t vsan_to_ask(unsigned byte) {
  return kVsansAsked[byte % std::size(kVsansAsked)];
}

} // namespace chnsw_test
