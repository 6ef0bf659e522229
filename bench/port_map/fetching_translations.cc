// The translations that fetch their tables at every call, against what cannot be left out: a memcpy of the same bytes, and a
// memchr over the ports' wherever a number is searched for.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include <libchnsw.h>

#include "example_map.h"
#include "ratio.h"
#include "virtual_switch_benchmarks.h"

namespace {

constexpr double kAgainstCopyAndSearch = 1.6;

// A translation's way: the tables that it fetches, and searches through the ports'.
enum step { kPorts, kVsans, kVsanArray, kInterfaces, kTables, kSearch };
constexpr size_t kBytes[kTables] = {
    FICON_PMAP_PORT_ENTRIES * sizeof(ficon_pmap_port_entry),
    FICON_PMAP_PORT_ENTRIES * sizeof(uint16_t),
    sizeof ficon_port_to_vsan_array,
    bench::kPorts * sizeof(uint32_t),
};
using steps = std::vector<step>;

struct fetching_translation {
  const char* name;
  uint32_t (*run)(int32_t number); // returns the status
  steps without_match;             // when nothing carries the number
  steps with_match;                // when a port carries it
};

template <typename result, uint32_t (*operation)(int32_t, result*)>
uint32_t ask(int32_t number) {
  result value = 0;
  const uint32_t status = operation(number, &value);
  benchmark::DoNotOptimize(value);
  return status;
}

template <typename result, uint32_t (*operation)(int32_t, uint32_t, result*)>
uint32_t ask_in_vsan(int32_t number) {
  result value = 0;
  const uint32_t status = operation(number, bench::kVsan, &value);
  benchmark::DoNotOptimize(value);
  return status;
}

uint32_t pn_to_physical_interface(int32_t pn) {
  uint32_t if_index = 0;
  return ficon_pmap_get_pn_to_phyif(pn, &if_index, MAX_FICON_PORTS, nullptr);
}

uint32_t pn_to_physical_interface_in_vsan(int32_t pn) {
  uint32_t if_index = 0;
  return ficon_pmap_get_pn_vsan_to_phyif(pn, bench::kVsan, &if_index, MAX_FICON_PORTS, nullptr);
}

const std::vector<fetching_translation>& translations() {
  static const steps ports = {kPorts, kSearch};
  static const steps ports_vsan = {kPorts, kVsanArray, kVsans, kSearch};
  static const steps interfaces_ports = {kInterfaces, kPorts, kSearch};
  static const steps interfaces_ports_vsan = {kInterfaces, kPorts, kVsanArray, kVsans, kSearch};
  // An address gives a number, and the number is searched for afresh.
  static const steps twice_interfaces = {kPorts, kSearch, kInterfaces, kPorts, kSearch};
  static const steps twice_interfaces_vsan = {kPorts, kVsanArray, kVsans, kSearch, kInterfaces,
                                              kPorts, kVsanArray, kVsans, kSearch};
  static const steps twice = {kPorts, kSearch, kPorts, kSearch};
  static const steps twice_vsan = {kPorts, kVsanArray, kVsans, kSearch, kPorts, kVsanArray, kVsans, kSearch};
  static const std::vector<fetching_translation> all = {
      {"PA to PN", ask<uint16_t, ficon_pmap_get_pa_to_pn>, ports, ports},
      {"PA to PN in a VSAN", ask_in_vsan<uint16_t, ficon_pmap_get_pa_vsan_to_pn>, ports_vsan, ports_vsan},
      {"PN to PA", ask<uint16_t, ficon_pmap_get_pn_to_pa>, ports, ports},
      {"PN to PA in a VSAN", ask_in_vsan<uint16_t, ficon_pmap_get_pn_vsan_to_pa>, ports_vsan, ports_vsan},
      {"PN to interface", ask<uint32_t, ficon_pmap_get_pn_to_if>, interfaces_ports, interfaces_ports},
      {"PN to interface in a VSAN", ask_in_vsan<uint32_t, ficon_pmap_get_pn_vsan_to_if>, interfaces_ports_vsan,
       interfaces_ports_vsan},
      {"PA to interface", ask<uint32_t, ficon_pmap_get_pa_to_if>, ports, twice_interfaces},
      {"PA to interface in a VSAN", ask_in_vsan<uint32_t, ficon_pmap_get_pa_vsan_to_if>, ports_vsan, twice_interfaces_vsan},
      {"PN to physical interface", pn_to_physical_interface, interfaces_ports, interfaces_ports},
      {"PN to physical interface in a VSAN", pn_to_physical_interface_in_vsan, interfaces_ports_vsan,
       interfaces_ports_vsan},
      {"PA to physical interface", ask<uint32_t, ficon_pmap_get_pa_to_phyif>, ports, twice},
      {"PA to physical interface in a VSAN", ask_in_vsan<uint32_t, ficon_pmap_get_pa_vsan_to_phyif>, ports_vsan,
       twice_vsan},
  };
  return all;
}

// Does what the steps say, and nothing else. Both places begin at a page and hold the tables alike, which is as fast as a copy
// can be: between cache lines that begin differently it takes up to half as long again.
class copies_and_searches {
 public:
  void run(const steps& way) const {
    for (const step next : way) {
      if (next == kSearch) {
        benchmark::DoNotOptimize(std::memchr(to_.get() + offset_of(kPorts), bench::kAbsentByte, kBytes[kPorts]));
      } else {
        std::memcpy(to_.get() + offset_of(next), from_.get() + offset_of(next), kBytes[next]);
      }
      benchmark::ClobberMemory();
    }
  }

 private:
  struct free_block {
    void operator()(char* block) const { std::free(block); }
  };
  using block = std::unique_ptr<char, free_block>;

  // Whole cache lines each.
  static size_t offset_of(int table) {
    constexpr size_t kLine = 64;
    size_t offset = 0;
    for (int before = 0; before < table; ++before) offset += (kBytes[before] + kLine - 1) / kLine * kLine;
    return offset;
  }

  static block allocate() {
    constexpr size_t kPage = 4096;
    const size_t whole_pages = (offset_of(kTables) + kPage - 1) / kPage * kPage;
    block allocated(static_cast<char*>(std::aligned_alloc(kPage, whole_pages)));
    if (allocated == nullptr) throw std::bad_alloc();
    std::memset(allocated.get(), 1, whole_pages);
    return allocated;
  }

  block from_ = allocate();
  block to_ = allocate();
};

// One translation of one number.
struct question {
  std::string name;
  const fetching_translation& translation;
  int32_t number;
  bool is_answered;
  const steps& way;
};

void add(const question& asked, const std::function<void()>& use_switch) {
  static const copies_and_searches plain;
  const auto prepare = [asked, use_switch] {
    use_switch();
    ficon_get_max_ficon_ports();
    ficon_get_pmap_pnif(); // an address turned into a physical interface takes this table as it is
    const bool is_answered = asked.translation.run(asked.number) == 0;
    if (is_answered != asked.is_answered) throw std::runtime_error(asked.name + ": another answer than expected");
  };
  bench::add_ratio(
      asked.name, [asked] { asked.translation.run(asked.number); },
      {{"copy+memchr", [asked] { plain.run(asked.way); }, kAgainstCopyAndSearch}}, prepare);
}

} // namespace

void bench::add_fetching_translations(const std::string& where, const std::function<void()>& use_switch) {
  for (const fetching_translation& tried : translations()) {
    const std::string name = tried.name;
    add({name + ", no match, " + where, tried, kCarriedByNone, false, tried.without_match}, use_switch);
    add({name + ", one match, " + where, tried, kCarriedByOne, true, tried.with_match}, use_switch);
  }
}
