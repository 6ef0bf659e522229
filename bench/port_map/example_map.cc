// The port map that the benchmarks ask.
#include "example_map.h"

#include <cstddef>

namespace {

constexpr int kMiddle = FICON_PMAP_PORT_ENTRIES / 2;
constexpr std::array<int, 4> kSeveral = {100, 350, 700, 900};

void number(bench::example_map& map, int index, uint16_t pn, uint16_t vsan) {
  map.port_to_pn[static_cast<size_t>(index)] = {pn, pn, {vsan}};
  map.port_to_vsan[static_cast<size_t>(index)] = vsan;
}

} // namespace

bench::example_map::example_map() {
  for (ficon_pmap_port_entry& entry : port_to_pn) entry.pn = entry.pa = FICON_PMAP_NO_NUMBER;
  for (int card = 0; card < kLineCards; ++card) {
    for (int port = 0; port < kNumberedPerLineCard; ++port) {
      const auto pn = static_cast<uint16_t>(card * kNumberedPerLineCard + port);
      number(*this, card * FICON_PMAP_PORTS_PER_LC + port, pn, card % 2 == 0 ? kVsan : kOtherVsan);
    }
  }
  number(*this, kMiddle, kCarriedByOne, kVsan);
  for (const int index : kSeveral) number(*this, index, kCarriedBySeveral, index == kSeveral[0] ? kVsan : kOtherVsan);
  for (size_t pa = 0; pa < pa_to_pn.size(); ++pa) pa_to_pn[pa] = static_cast<uint16_t>(pa);
}
