// The switch that the benchmarks ask: a 6-slot chassis of type 34, and a port map in which one number is carried by nobody,
// one by a port in the middle, one by several ports, and 192 by ports that a walk passes.
#ifndef BENCH_PORT_MAP_EXAMPLE_MAP_H
#define BENCH_PORT_MAP_EXAMPLE_MAP_H

#include <array>
#include <cstdint>

#include <libchnsw.h>

namespace bench {

inline constexpr int kSlots = 6;
inline constexpr int32_t kChassisType = 34;
inline constexpr int kLineCards = 4;
inline constexpr int kPortsPerLineCard = 254;
inline constexpr std::array<unsigned, kLineCards> kLineCardSlots = {1, 2, 5, 6}; // counted from 1
inline constexpr int32_t kPorts = 254;                                           // MAX_FICON_PORTS

inline constexpr int kNumberedPerLineCard = 48;

inline constexpr uint16_t kVsan = 10;
inline constexpr uint16_t kOtherVsan = 20;
inline constexpr uint16_t kLargeVsan = 30; // on the quiet platform alone
inline constexpr int kLargeVsanPorts = 256;

// Port numbers, and the port addresses of the same ports.
inline constexpr uint16_t kCarriedByOne = 200;
inline constexpr uint16_t kCarriedByNone = 201;
inline constexpr uint16_t kCarriedBySeveral = 202; // by one in kVsan

// A byte that the port table does not hold.
inline constexpr int kAbsentByte = 0xEE;

struct example_map {
  std::array<ficon_pmap_port_entry, FICON_PMAP_PORT_ENTRIES> port_to_pn{};
  std::array<uint16_t, FICON_PMAP_PORT_ENTRIES> port_to_vsan{};
  std::array<uint16_t, 256> pa_to_pn{};
  std::array<uint32_t, 256> pn_to_if{}; // nothing is bound

  example_map();
};

} // namespace bench

#endif
