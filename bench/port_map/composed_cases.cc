// The cases of the operations that go through others.
#include "composed_cases.h"

#include <cstdlib>
#include <stdexcept>

#include <libchnsw.h>

#include "example_map.h"
#include "plain_forms.h"

namespace {

using bench::composed_answer;

using info_operation = uint32_t (*)(uint32_t, uint16_t**, uint16_t**, uint32_t**, uint32_t**, uint32_t*);

template <info_operation operation>
composed_answer ask_for_ports() {
  uint16_t* pns = nullptr;
  uint16_t* pas = nullptr;
  uint32_t* if_indexes = nullptr;
  uint32_t* bound = nullptr;
  uint32_t count = 0;
  const uint32_t status = operation(bench::kLargeVsan, &pns, &pas, &if_indexes, &bound, &count);
  std::free(pns);
  std::free(pas);
  std::free(if_indexes);
  std::free(bound);
  return {status, count};
}

using index_operation = int32_t (*)(uint32_t, uint32_t*, const uint32_t*, const ficon_pmap_port_entry*, int32_t);

// The interfaces of the quiet platform: type, slot and port from the highest byte down.
constexpr int kLineCard = 2;
constexpr uint32_t kPort = 7;
constexpr uint32_t kInterface = 1u << 24 | (bench::kLineCardSlots[kLineCard] - 1) << 8 | kPort;
constexpr uint32_t kIndex = kLineCard * bench::kPortsPerLineCard + kPort;

template <index_operation operation, int32_t skip_lag_check>
composed_answer ask_for_index() {
  uint32_t index = 0;
  const int32_t status = operation(kInterface, &index, ficon_pmap_pn_to_logif, ficon_pmap_port_to_pn, skip_lag_check);
  return {static_cast<uint32_t>(status), index};
}

struct expected_case {
  bench::composed_case tried;
  composed_answer answer;
};

const expected_case kCases[] = {
    {{"all ports of a VSAN, 256 of them", ask_for_ports<ficon_pmap_get_info_in_vsan>, ask_for_ports<plain::info_in_vsan>,
      1.25},
     {0, bench::kLargeVsanPorts}},
    {{"interface to index with both tables", ask_for_index<ficon_pmap_get_if_to_index_with2pmaps, 0>,
      ask_for_index<plain::if_to_index, 0>, 1.4},
     {0, kIndex}},
    {{"interface to index with both tables, in any port-channel", ask_for_index<ficon_pmap_get_if_to_index_with2pmaps, 1>,
      ask_for_index<plain::if_to_index, 1>, 1.4},
     {0, kIndex}},
};

} // namespace

std::vector<bench::composed_case> bench::composed_cases() {
  if (ficon_pmap_prepare_fastpath(kVsan) != 0) throw std::runtime_error("the port map cannot be fetched");
  std::vector<composed_case> cases;
  for (const expected_case& expected : kCases) {
    if (expected.tried.library() != expected.answer || expected.tried.plain() != expected.answer) {
      throw std::runtime_error(expected.tried.name + ": another answer than expected");
    }
    cases.push_back(expected.tried);
  }
  return cases;
}
