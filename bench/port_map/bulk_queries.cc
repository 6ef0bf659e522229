// The operations over many ports. What they take is what the platform's services take, so they are only to be no slower than
// their plain forms.
#include <cstdlib>
#include <stdexcept>

#include <libchnsw.h>

#include "example_map.h"
#include "plain_forms.h"
#include "ratio.h"
#include "virtual_switch_benchmarks.h"

namespace {

// No slower, as far as this can be told apart from a ratio of 1.
constexpr double kNoSlower = 1.05;

using info_operation = uint32_t (*)(uint32_t, uint16_t**, uint16_t**, uint32_t**, uint32_t**, uint32_t*);
using next_operation = int32_t (*)(uint32_t, uint32_t*);

// Returns the number of ports reported.
uint32_t ask_for_ports_of_vsan(info_operation operation) {
  uint16_t* pns = nullptr;
  uint16_t* pas = nullptr;
  uint32_t* if_indexes = nullptr;
  uint32_t* bound = nullptr;
  uint32_t count = 0;
  operation(bench::kVsan, &pns, &pas, &if_indexes, &bound, &count);
  std::free(pns);
  std::free(pas);
  std::free(if_indexes);
  std::free(bound);
  return count;
}

uint32_t first_interface() {
  uint32_t if_index = 0;
  ficon_pmap_get_index_to_phyif(0, &if_index);
  return if_index;
}

// Returns the number of ports passed.
uint32_t walk_all_ports(next_operation next) {
  uint32_t passed = 0;
  for (uint32_t if_index = first_interface(); if_index != 0; ++passed) {
    uint32_t next_if_index = 0;
    if_index = next(if_index, &next_if_index) == 0 ? next_if_index : 0;
  }
  return passed;
}

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

} // namespace

void bench::add_bulk_queries(const std::function<void()>& use_switch) {
  add_ratio(
      "all ports of a VSAN", [] { ask_for_ports_of_vsan(ficon_pmap_get_info_in_vsan); },
      {{"plain loop", [] { ask_for_ports_of_vsan(plain::info_in_vsan); }, kNoSlower}},
      [use_switch] {
        use_switch();
        const uint32_t ports = ask_for_ports_of_vsan(ficon_pmap_get_info_in_vsan);
        require(ports > 2 * kNumberedPerLineCard, "a VSAN's ports are not reported");
        require(ports == ask_for_ports_of_vsan(plain::info_in_vsan), "the plain form reports other ports");
      });
  add_ratio(
      "walk over all ports", [] { walk_all_ports(ficon_pmap_get_next_if); },
      {{"plain loop", [] { walk_all_ports(plain::next_if); }, kNoSlower}},
      [use_switch] {
        use_switch();
        ficon_get_max_ficon_ports();
        require(walk_all_ports(ficon_pmap_get_next_if) == kLineCards * kNumberedPerLineCard, "the walk misses ports");
        require(walk_all_ports(plain::next_if) == kLineCards * kNumberedPerLineCard, "the plain walk misses ports");
      });
}
