// No query allocates once it was asked before: neither the library nor the virtual switch behind it. The operations that hand
// arrays to their caller are the only ones that may.
#include <gtest/gtest.h>
#include <vswitch/vswitch.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <libchnsw.h>
#include <vswitch/chassis_file.h>

#include "allocation_count.h"

namespace {

using chnsw_test::allocations_of;

constexpr char kSwitch[] = R"(
[chassis]
slots = 6
type = 34
supervisors = [3, 4]
[[line_card]]
slot = 1
ports = 48
[[vsan]]
number = 10
[[port]]
interface = "fc1/1-48"
pn = 0
pa = 0
vsans = [10]
)";

struct query {
  const char* name;
  std::function<void()> ask;
};

std::vector<query> queries() {
  static uint16_t number;
  static uint32_t if_index;
  static uint32_t word;
  static uint32_t port;
  ficon_pmap_get_pn_to_if(5, &port);
  return {
      {"PA to PN", [] { ficon_pmap_get_pa_to_pn(5, &number); }},
      {"PA to PN in a VSAN", [] { ficon_pmap_get_pa_vsan_to_pn(5, 10, &number); }},
      {"PA to PN, fast", [] { ficon_pmap_get_pa_vsan_to_pn_fast(5, 10, &number); }},
      {"PN to PA in a VSAN", [] { ficon_pmap_get_pn_vsan_to_pa(5, 10, &number); }},
      {"PN to interface in a VSAN", [] { ficon_pmap_get_pn_vsan_to_if(5, 10, &if_index); }},
      {"PN to interface, fast", [] { ficon_pmap_get_pn_to_if_fast(5, &if_index); }},
      {"PA to interface in a VSAN", [] { ficon_pmap_get_pa_vsan_to_if(5, 10, &if_index); }},
      {"PN to physical interface",
       [] { ficon_pmap_get_pn_vsan_to_phyif(5, 10, &if_index, MAX_FICON_PORTS, ficon_pmap_pn_to_logif); }},
      {"PA to physical interface", [] { ficon_pmap_get_pa_vsan_to_phyif(5, 10, &if_index); }},
      {"index to interface", [] { ficon_pmap_get_index_to_phyif(5, &if_index); }},
      {"interface to PN", [] { ficon_pmap_get_if_to_pn(port, &number); }},
      {"interface to PA", [] { ficon_pmap_get_if_to_pa(port, &number); }},
      {"interface to index", [] { ficon_pmap_get_if_to_index(port, &word); }},
      {"next interface", [] { ficon_pmap_get_next_if(port, &if_index); }},
      {"last interface", [] { ficon_pmap_get_last_if(port, &if_index); }},
      {"change counter", [] { ficon_cmi_get_pmap_change_counter(&word); }},
      {"highest port number", [] { ficon_cmi_get_max_portnumber(); }},
      {"address that nothing carries", [] { ficon_pmap_get_pa_to_if(200, &if_index); }},
  };
}

TEST(QueryAllocations, AreCounted) {
  EXPECT_EQ(allocations_of([] {
              void* volatile block = ::operator new(100); // volatile: nobody looks at it otherwise
              ::operator delete(block);
            }),
            1u);
  // By the library through the virtual switch's memory accounting, one of each array.
  vswitch::use_switch(vswitch::switch_store::in_memory(vswitch::parse_chassis_text(kSwitch, "switch")));
  uint16_t* numbers[2];
  uint32_t* words[2];
  uint32_t count;
  ficon_pmap_get_info_in_vsan(10, &numbers[0], &numbers[1], &words[0], &words[1], &count);
  for (int i = 0; i < 2; ++i) std::free(numbers[i]), std::free(words[i]);
  EXPECT_GE(
      allocations_of([&] { ficon_pmap_get_info_in_vsan(10, &numbers[0], &numbers[1], &words[0], &words[1], &count); }), 4u);
  for (int i = 0; i < 2; ++i) std::free(numbers[i]), std::free(words[i]);
}

TEST(QueryAllocations, NoQueryMakesOneOnceItWasAskedBefore) {
  vswitch::use_switch(vswitch::switch_store::in_memory(vswitch::parse_chassis_text(kSwitch, "switch")));
  ASSERT_EQ(ficon_get_max_ficon_ports(), 254);
  ASSERT_EQ(ficon_pmap_prepare_fastpath(10), 0);
  for (const query& query : queries()) {
    query.ask();
    EXPECT_EQ(allocations_of(query.ask), 0u) << query.name;
  }
}

TEST(QueryAllocations, NoQueryMakesOneAfterTheMapChanged) {
  auto store = vswitch::switch_store::in_memory(vswitch::parse_chassis_text(kSwitch, "switch"));
  vswitch::switch_store& changed = *store;
  vswitch::use_switch(std::move(store));
  for (const query& query : queries()) {
    query.ask();
    changed.change_map([](vswitch::port_map& map) { ++map.port_to_pn[7].pa; });
    EXPECT_EQ(allocations_of(query.ask), 0u) << query.name;
  }
}

} // namespace
