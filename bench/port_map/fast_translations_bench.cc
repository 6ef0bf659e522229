// The fast translations against a plain loop and against memchr over the same table, and the default numbering against two
// plain loops, and operations that go through others of the library's own against a plain form that does not. The platform is a
// quiet one, so that only the library is measured.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <vector>

#include <libchnsw.h>

#include "composed_cases.h"
#include "example_map.h"
#include "fast_cases.h"
#include "plain_forms.h"
#include "ratio.h"

namespace {

// What is promised of a search that meets no or one port. With more of them, what they have to be asked outweighs the search.
constexpr double kAgainstPlainLoop = 0.6;
constexpr double kAgainstMemchr = 1.4;
constexpr double kNumberingAgainstPlainLoop = 0.3;

// The limit: tables may change between two calls, so no index can be kept, and every byte has to be looked at.
void search_for_absent_byte(int times) {
  for (int i = 0; i < times; ++i) {
    const void* found =
        std::memchr(ficon_pmap_port_to_pn, bench::kAbsentByte, FICON_PMAP_PORT_ENTRIES * sizeof(ficon_pmap_port_entry));
    benchmark::DoNotOptimize(found);
  }
}

void add_fast_translations() {
  for (const bench::fast_case& tried : bench::fast_cases()) {
    const bool has_bar = tried.carried_by != bench::carriers::several;
    bench::add_ratio(
        tried.name, [tried] { benchmark::DoNotOptimize(tried.library(tried.number)); },
        {{"plain loop", [tried] { benchmark::DoNotOptimize(tried.plain(tried.number)); }, has_bar ? kAgainstPlainLoop : 0},
         {"memchr", [tried] { search_for_absent_byte(tried.walks); }, has_bar ? kAgainstMemchr : 0}});
  }
}

void add_default_numbering() {
  constexpr plain::layout kLayout = {4, 48, FICON_PMAP_PORTS_PER_LC, 240};
  static std::vector<ficon_pmap_port_entry> entries(FICON_PMAP_PORT_ENTRIES);
  static const bench::example_map map;
  constexpr int32_t kAddresses = 256;
  bench::add_ratio(
      "default numbering with 256 addresses",
      [] { ficon_port_to_pn_init(FICON_PMAP_PORT_ENTRIES, entries.data(), kAddresses, map.pa_to_pn.data()); },
      {{"plain loop",
        [=] { plain::port_to_pn_init(kLayout, FICON_PMAP_PORT_ENTRIES, entries.data(), kAddresses, map.pa_to_pn.data()); },
        kNumberingAgainstPlainLoop}});
}

void add_composed_operations() {
  for (const bench::composed_case& tried : bench::composed_cases()) {
    bench::add_ratio(tried.name, [tried] { benchmark::DoNotOptimize(tried.library()); },
                     {{"plain form", [tried] { benchmark::DoNotOptimize(tried.plain()); }, tried.bar}});
  }
}

} // namespace

int main(int argc, char** argv) try {
  add_fast_translations();
  add_default_numbering();
  add_composed_operations();
  return bench::run_benchmarks(argc, argv);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 3;
}
