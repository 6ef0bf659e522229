// Port number to interface: ficon_pmap_get_pn_to_if_withpvsan and its wrappers.
#include <cstdlib>
#include <ios>
#include <limits>
#include <ostream>

#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct found {
  uint32_t status;
  uint32_t if_index;
  uint32_t flag;
  bool operator==(const found&) const = default;
};

void PrintTo(const found& found, std::ostream* stream) {
  *stream << std::hex << "{status 0x" << found.status << ", if_index 0x" << found.if_index << ", flag 0x" << found.flag
          << '}';
}

constexpr uint32_t kVsan10 = 10;

class NumberToInterface : public PortMapTest {
 protected:
  static found find(int32_t pn, const uint32_t* vsan = nullptr, int32_t fast = 0) {
    found found = {0, kUntouched32, kUntouched32};
    found.status = ficon_pmap_get_pn_to_if_withpvsan(pn, vsan, &found.if_index, &found.flag, fast);
    return found;
  }

  static found find_fast(int32_t pn, const uint32_t* vsan = nullptr) { return find(pn, vsan, 1); }
};

// ---- arguments ----

TEST_F(NumberToInterface, NullResultAddressIsRefusedBeforeAnythingElse) {
  uint32_t flag = kUntouched32;
  for (const int32_t fast : {0, 1}) {
    const auto reports =
        reports_of([&] { EXPECT_EQ(ficon_pmap_get_pn_to_if_withpvsan(7, &kVsan10, nullptr, &flag, fast), kInvalidArg); });
    EXPECT_THAT(reports, IsEmpty());
  }
  EXPECT_EQ(flag, kUntouched32);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(NumberToInterface, NullFlagAddressIsRefusedBeforeAnythingElse) {
  uint32_t if_index = kUntouched32;
  for (const int32_t fast : {0, 1}) {
    const auto reports = reports_of(
        [&] { EXPECT_EQ(ficon_pmap_get_pn_to_if_withpvsan(7, &kVsan10, &if_index, nullptr, fast), kInvalidArg); });
    EXPECT_THAT(reports, IsEmpty());
  }
  EXPECT_EQ(if_index, kUntouched32);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// ---- fetching ----

TEST_F(NumberToInterface, WithoutVsanFetchesInterfacesThenPortsAndAsksForThePort) {
  map.entry(5, 7, 7, {10}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstInterfaceFetch,
                                         kFirstPortFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)",
                                          "lagmap_get_port(0x1000005)"}})));
}

TEST_F(NumberToInterface, WithVsanFetchesTheVsanTableLast) {
  map.entry(5, 7, 7, {10}, 10);
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 5), 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstInterfaceFetch,
                                         kFirstPortFetch,
                                         kFirstVsanFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)",
                                          "lagmap_get_port(0x1000005)"}})));
}

TEST_F(NumberToInterface, EveryCallFetchesAnewIntoTheSameTables) {
  map.entry(5, 7, 7, {10}, 10);
  ASSERT_EQ(find(7, &kVsan10).if_index, physical_interface(0, 5));
  map.entry(5, 8, 8, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.forget_calls();
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 6), 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kInterfaceFetch,
                                         kPortFetch,
                                         kVsanFetch,
                                         kSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 6, 0)", "portidx_port_by_if_index(0x1000006)",
                                          "lagmap_get_port(0x1000006)"}})));
}

TEST_F(NumberToInterface, FetchMakesTheNumberOfPortsKnownFirst) {
  know_ports(0);
  map.bind(7, 0x4000001);
  EXPECT_EQ(find(7), (found{0, 0x4000001, 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence(
                  {{"get_platform_info()", "hwinv_get_chassis_type(-1)"}, kFirstInterfaceFetch, kFirstPortFetch})));
}

TEST_F(NumberToInterface, UnknownNumberOfPortsIsPassedOnWithoutAReportOfItsOwn) {
  hide_ports();
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kPlatform, kUntouched32, 1})); });
  EXPECT_THAT(reports, ElementsAre("error get_platform_info failed, errno = 5",
                                   "printed FICON_ERR: get_platform_info failed, errno = 5"));
  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()"));
}

TEST_F(NumberToInterface, RefusedInterfaceTableIsPassedOnAndNothingElseIsFetched) {
  platform.refuse_type(3);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoMemory, kUntouched32, 1})); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(1530, 1016)));
  EXPECT_THAT(platform.calls(), ElementsAre("memacct_alloc(206, 3, 1016)"));
}

TEST_F(NumberToInterface, RefusedPortTableIsPassedOnAndTheVsanTableIsNotFetched) {
  platform.refuse_allocation(2);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoMemory, kUntouched32, 1})); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(1453, 25600)));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, {"memacct_alloc(206, 5, 25600)"}})));
}

TEST_F(NumberToInterface, RefusedVsanTableIsPassedOn) {
  map.entry(5, 7, 7, {10}, 10);
  platform.refuse_allocation(3);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoMemory, kUntouched32, 1})); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(1420, 2560)));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstInterfaceFetch,
                                         kFirstPortFetch,
                                         {"elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)"}})));
}

TEST_F(NumberToInterface, RefusedTablesAreTriedAgainByTheNextCall) {
  map.entry(5, 7, 7, {10}, 10);
  platform.refuse_type(3);
  output_of([&] { ASSERT_EQ(find(7).status, kNoMemory); });
  platform.grant_allocations();
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToInterface, MissingElementsAreAnEmptyMap) {
  for (const uint32_t key : {2u, 3u, 4u, 5u}) platform.remove_element(2, key);
  EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1}));
  // Port number 0 of the cleared entries is bound to no VSAN.
  EXPECT_EQ(find(0), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToInterface, FetchingFormUsesTheVsanTableEvenWithoutAPreparedFastPath) {
  map.entry(5, 7, 7, {20}, 20).entry(6, 7, 7, {20}, 10);
  fastpath_got_vsan_port = 0;
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 6), 1}));
  EXPECT_EQ(fastpath_got_vsan_port, 0);
}

// ---- the fast form ----

TEST_F(NumberToInterface, FastFormNeverAsksTheElementDatabase) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 20);
  cache_map();
  EXPECT_EQ(find_fast(7, &kVsan10), (found{0, physical_interface(0, 5), 1}));
  EXPECT_THAT(
      platform.calls(),
      ElementsAreArray(sequence(
          {kFirstSlotConversion,
           {"if_index_phy_fc_port_init(0, 6, 0)", "portidx_port_by_if_index(0x1000006)", "lagmap_get_port(0x1000006)"},
           kSlotConversion,
           {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)", "lagmap_get_port(0x1000005)"}})));
}

TEST_F(NumberToInterface, AnyNonZeroFastIsFast) {
  map.entry(5, 7, 7, {10}, 10);
  cache_map();
  for (const int32_t fast : {1, 2, -1, std::numeric_limits<int32_t>::min()}) {
    EXPECT_EQ(find(7, &kVsan10, fast), (found{0, physical_interface(0, 5), 1})) << fast;
  }
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
}

TEST_F(NumberToInterface, FastFormReadsTheTablesBehindThePointersAtEveryCall) {
  map.entry(5, 7, 7, {10}, 10);
  cache_map();
  ASSERT_EQ(find_fast(7, &kVsan10).if_index, physical_interface(0, 5));

  ficon_pmap_port_to_pn[5].pn = 8;
  ficon_pmap_port_to_pn[6] = make_entry(7, 7, {10});
  EXPECT_EQ(find_fast(7, &kVsan10).if_index, physical_interface(0, 6));

  map.entry(9, 7, 7, {10}, 10).entry(5, 8, 8, {10}, 10);
  cache_map(); // other buffers
  EXPECT_EQ(find_fast(7, &kVsan10).if_index, physical_interface(0, 9));

  ficon_pmap_pn_to_logif[7] = 0x4000003;
  EXPECT_EQ(find_fast(7, &kVsan10).if_index, 0x4000003u);
}

TEST_F(NumberToInterface, FastFormReadsTheVsanTableAtEveryCall) {
  map.entry(5, 7, 7, {20}, 10).entry(6, 7, 7, {20}, 20);
  cache_map();
  ASSERT_EQ(find_fast(7, &kVsan10).if_index, physical_interface(0, 5));
  ficon_pmap_port_to_vsan[5] = 20;
  ficon_pmap_port_to_vsan[6] = 10;
  EXPECT_EQ(find_fast(7, &kVsan10).if_index, physical_interface(0, 6));
}

TEST_F(NumberToInterface, FastFormWithoutPortsKnownRefusesEveryNumber) {
  cache_map();
  know_ports(0);
  EXPECT_EQ(find_fast(0), (found{kPnRange, kUntouched32, 1}));
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(NumberToInterface, FastFormWithoutAVsanDoesWithoutTheVsanTable) {
  map.entry(5, 7, 7, {10}, 10);
  cache_map();
  free(ficon_pmap_port_to_vsan);
  ficon_pmap_port_to_vsan = nullptr;
  EXPECT_EQ(find_fast(7), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToInterface, TraceTellsTheFastPathFlagAsItStands) {
  map.entry(5, 7, 7, {10}, 10);
  cache_map(5);
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(7, &kVsan10), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(
      reports,
      ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(1) Bound If(0x1000005) Vsan(10) "
                  "In Vsan(1) gvp(5) vsan_if(0x1000005)\n"));
}

// ---- range ----

TEST_F(NumberToInterface, NumberAtTheBoundIsOutOfRangeAfterTheFetch) {
  map.entry(5, 254, 254, {10}, 10).bind(254, 0x4000001);
  const auto reports = reports_of([&] { EXPECT_EQ(find(254, &kVsan10), (found{kPnRange, kUntouched32, 1})); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, kFirstPortFetch, kFirstVsanFetch})));
}

TEST_F(NumberToInterface, RangeOfTheFastForm) {
  map.entry(5, 253, 253, {10}, 10).entry(6, 254, 254, {10}, 10);
  cache_map();
  EXPECT_EQ(find_fast(253), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(find_fast(254), (found{kPnRange, kUntouched32, 1}));
  EXPECT_EQ(find_fast(std::numeric_limits<int32_t>::max()), (found{kPnRange, kUntouched32, 1}));
}

TEST_F(NumberToInterface, RangeFollowsTheNumberOfPorts) {
  map.entry(5, 100, 100, {10}, 10);
  know_ports(101);
  EXPECT_EQ(find(100), (found{0, physical_interface(0, 5), 1}));
  know_ports(100);
  EXPECT_EQ(find(100), (found{kPnRange, kUntouched32, 1}));
}

// The range test is signed and has no lower bound.
TEST_F(NumberToInterface, NegativeNumberIsNotRejected) {
  cache_map();
  uint32_t interfaces[2] = {0x4000009, 0};
  free(ficon_pmap_pn_to_logif);
  ficon_pmap_pn_to_logif = interfaces + 1;
  const found negative = find_fast(-1);
  ficon_pmap_pn_to_logif = nullptr;
  EXPECT_EQ(negative, (found{0, 0x4000009, 1}));
}

TEST_F(NumberToInterface, NegativeNumberIsNotTheEntryWithTheSameLowBits) {
  map.entry(5, 0xFFFF, 7, {10}, 10);
  cache_map();
  uint32_t interfaces[2] = {0, 0};
  free(ficon_pmap_pn_to_logif);
  ficon_pmap_pn_to_logif = interfaces + 1;
  const found negative = find_fast(-1);
  ficon_pmap_pn_to_logif = nullptr;
  EXPECT_EQ(negative, (found{kNoIf, 0, 1}));
}

TEST_F(NumberToInterface, NumberAboveSixteenBitsIsComparedWhole) {
  map.entry(5, 7, 7, {10}, 10);
  know_ports(70000);
  EXPECT_EQ(find(65536 + 7), (found{kNoIf, 0, 1}));
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
}

// ---- the bound interface ----

TEST_F(NumberToInterface, BoundInterfaceAnswersWithoutTraceWhateverTheVsan) {
  map.bind(7, 0x4000001).entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{0, 0x4000001, 1})); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, kFirstPortFetch, kFirstVsanFetch})));
}

TEST_F(NumberToInterface, BoundInterfaceAnswersTheFastFormWithoutAnyCall) {
  map.bind(7, 0x4000001).entry(5, 7, 7, {10}, 10);
  cache_map();
  EXPECT_EQ(find_fast(7, &kVsan10), (found{0, 0x4000001, 1}));
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(NumberToInterface, BoundInterfaceIsHandedBackWithAllItsBits) {
  map.bind(0, 0xFFFFFFFF).bind(253, 1);
  EXPECT_EQ(find(0), (found{0, 0xFFFFFFFF, 1}));
  EXPECT_EQ(find(253), (found{0, 1, 1}));
}

// ---- the walk ----

TEST_F(NumberToInterface, EntriesBoundToNoVsanAreIgnored) {
  map.entry(5, 7, 7, {}, 10).entry(6, 7, 7, {}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(10) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(NumberToInterface, EntriesBoundToNoVsanDoNotMakeAnAnswerAmbiguous) {
  map.entry(4, 7, 7, {}, 10).entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToInterface, AnyOfTheEightSlotsMakesAnEntryCount) {
  for (int slot = 0; slot < 8; ++slot) {
    map.port_to_pn[5] = make_entry(7, 7);
    map.port_to_pn[5].vsans[slot] = 0x8000;
    map.install();
    EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})) << slot;
  }
}

TEST_F(NumberToInterface, OtherNumbersAreIgnored) {
  map.entry(4, 6, 7, {10}, 10).entry(5, 7, 9, {10}, 10).entry(6, 8, 7, {10}, 10).entry(7, 263, 7, {10}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToInterface, WalkReachesTheFirstAndTheLastPhysicalIndex) {
  map.entry(0, 7, 7, {10}, 10).entry(1023, 8, 8, {10}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 0), 1}));
  EXPECT_EQ(find(8), (found{0, physical_interface(6, 7), 1}));
}

TEST_F(NumberToInterface, WalkRunsDownward) {
  map.entry(0, 7, 7, {10}, 10).entry(254, 7, 7, {10}, 10).entry(1023, 7, 7, {10}, 10);
  EXPECT_EQ(find(7), (found{kMultiIf, 0, 1}));
  EXPECT_THAT(
      platform.calls(),
      ElementsAreArray(sequence(
          {kFirstInterfaceFetch,
           kFirstPortFetch,
           kFirstSlotConversion,
           {"if_index_phy_fc_port_init(6, 7, 0)", "portidx_port_by_if_index(0x1000607)", "lagmap_get_port(0x1000607)"},
           kSlotConversion,
           {"if_index_phy_fc_port_init(1, 0, 0)", "portidx_port_by_if_index(0x1000100)", "lagmap_get_port(0x1000100)"},
           kSlotConversion,
           {"if_index_phy_fc_port_init(0, 0, 0)", "portidx_port_by_if_index(0x1000000)", "lagmap_get_port(0x1000000)"}})));
}

TEST_F(NumberToInterface, EveryPhysicalIndexIsFoundAlone) {
  constexpr uint32_t kSlotOfCard[] = {0, 1, 2, 3, 6};
  for (uint16_t index = 0; index <= 1023; ++index) {
    map.port_to_pn[index] = make_entry(7, 7, {10});
    cache_map();
    ASSERT_EQ(find_fast(7), (found{0, physical_interface(kSlotOfCard[index / 254], index % 254u), 1})) << index;
    map.port_to_pn[index] = make_entry(512, 512);
  }
}

// The search compares several entries a step; it must meet exactly what a plain loop meets, in its order.
TEST_F(NumberToInterface, WalkMeetsWhatAPlainLoopMeets) {
  constexpr uint32_t kSlotOfCard[] = {0, 1, 2, 3, 6};
  uint32_t random = 12345;
  for (const uint32_t one_in : {1u, 2u, 5u, 16u, 17u, 100u}) {
    for (auto& entry : map.port_to_pn) {
      random = random * 1664525u + 1013904223u;
      entry = make_entry((random >> 16) % one_in == 0 ? 7 : 8, 7, {10});
    }
    std::vector<std::string> expected;
    for (uint32_t index = 1023; index <= 1023; --index) {
      if (map.port_to_pn[index].pn != 7) continue;
      expected.push_back("if_index_phy_fc_port_init(" + std::to_string(kSlotOfCard[index / 254]) + ", " +
                         std::to_string(index % 254) + ", 0)");
    }
    cache_map();
    platform.forget_calls();
    find_fast(7);
    std::vector<std::string> met;
    for (const auto& call : platform.calls()) {
      if (call.rfind("if_index_phy_fc_port_init", 0) == 0) met.push_back(call);
    }
    ASSERT_EQ(met, expected) << one_in;
  }
}

// Their interface would be the one bound to the number, and a bound one has answered already.
TEST_F(NumberToInterface, EntriesBeyondThePhysicalPortsNeverAnswer) {
  map.entry(1024, 7, 7, {10}, 10).entry(1279, 7, 7, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(10) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, kFirstPortFetch, kFirstVsanFetch})));
}

TEST_F(NumberToInterface, EntryOnALineCardWithoutASlotIsSkippedSilently) {
  platform.set_chassis(6, 5); // line cards 0 to 3
  map.entry(1016, 7, 7, {10}, 10).entry(1015, 7, 7, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(3, 253), 1})); });
  EXPECT_THAT(
      reports,
      ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x10003fd) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) "
                  "gvp(0) vsan_if(0)\n"));
}

TEST_F(NumberToInterface, EntryOfAnUnknownChassisTypeIsSkippedAndReported) {
  platform.chassis_answer = {-1, 6};
  map.entry(5, 7, 7, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("error hwinv_get_chassis_type failed, errno = 6",
                                   "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(0) "
                                   "In Vsan(0) gvp(0) vsan_if(0)\n",
                                   "printed FICON_ERR: hwinv_get_chassis_type failed, errno = 6"));
}

TEST_F(NumberToInterface, EntryIsSkippedWhenThePlatformRecordCannotBeCached) {
  map.entry(5, 7, 7, {10}, 10);
  platform.refuse_allocation(3);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(0) "
                                   "In Vsan(0) gvp(0) vsan_if(0)\n",
                                   "printed " + allocation_warning(81, 8)));
}

TEST_F(NumberToInterface, EntryWhoseInterfaceCannotBeBuiltIsSkippedSilently) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.fail_port_init(0, 6, 77);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(platform.count("portidx_port_by_if_index"), 1);
  EXPECT_THAT(platform.errors(), IsEmpty());
  EXPECT_EQ(platform.traces().size(), 2u);
}

TEST_F(NumberToInterface, PortWithoutAPortIndexIsTracedAndSkipped) {
  map.entry(5, 7, 7, {10}, 10);
  platform.interface(0x1000005).portidx_status = kPortidxNoPort;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace portidx lookup failed for IfIndex 1000005 with err (1078329346)\n",
                                   "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(10) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
  EXPECT_EQ(platform.count("lagmap_get_port"), 0);
}

TEST_F(NumberToInterface, AnyFailureOfThePortIndexIsTracedAndSkipped) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.interface(0x1000006).portidx_status = -3;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(
      reports,
      ElementsAre("trace portidx lookup failed for IfIndex 1000006 with err (-3)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) "
                  "gvp(0) vsan_if(0)\n"));
}

TEST_F(NumberToInterface, NumberCarriedOnlyByPortChannelMembersHasNoInterface) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.interface(0x1000005).channel = 1;
  platform.interface(0x1000006).channel = 0x80000000;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace Port Number:7 is associated with a port thats part of port-channel\n",
                                   "trace Port Number:7 is associated with a port thats part of port-channel\n",
                                   "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(10) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
}

TEST_F(NumberToInterface, TraceOfAMemberShowsTheNumberInDecimal) {
  map.entry(5, 77, 7, {10}, 10);
  platform.interface(0x1000005).channel = 1;
  const auto reports = reports_of([&] { EXPECT_EQ(find(77).status, kNoIf); });
  EXPECT_EQ(reports.at(0), "trace Port Number:77 is associated with a port thats part of port-channel\n");
}

TEST_F(NumberToInterface, PortChannelMemberDoesNotMakeAnAnswerAmbiguous) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.interface(0x1000005).channel = 3;
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 6), 1}));
}

TEST_F(NumberToInterface, NotAMemberStatusIsNoMembership) {
  map.entry(5, 7, 7, {10}, 10);
  platform.interface(0x1000005).lag_status = kLagmapNotMember;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(
      reports,
      ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) "
                  "gvp(0) vsan_if(0)\n"));
}

TEST_F(NumberToInterface, FailingPortChannelServiceIsReportedAndThePortSkipped) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.interface(0x1000006).lag_status = 0x40470005;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(
      reports,
      ElementsAre("error lagmap_get_port failed: if_index:0x1000006\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) "
                  "gvp(0) vsan_if(0)\n",
                  "printed FICON_ERR: lagmap_get_port failed: if_index:0x1000006\n"));
}

TEST_F(NumberToInterface, PortChannelQueriesStartWithoutAChannel) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.interface(0x1000006).channel = 3;
  EXPECT_EQ(find(7).status, 0u);
  ASSERT_EQ(platform.lag_queries().size(), 2u);
  EXPECT_EQ(platform.lag_queries()[0].if_index, 0x1000006u);
  EXPECT_EQ(platform.lag_queries()[0].channel, 0u);
  EXPECT_EQ(platform.lag_queries()[1].if_index, 0x1000005u);
  EXPECT_EQ(platform.lag_queries()[1].channel, 0u);
}

TEST_F(NumberToInterface, ServicesAreAskedAboutTheInterfaceThatWasBuilt) {
  map.entry(5, 7, 7, {10}, 10);
  platform.override_port_init(0, 5, 0xFEDCBA98);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{0, 0xFEDCBA98, 1})); });
  EXPECT_THAT(
      reports,
      ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0xfedcba98) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(1) Bound If(0xfedcba98) Vsan(10) "
                  "In Vsan(1) gvp(1) vsan_if(0xfedcba98)\n"));
  EXPECT_EQ(platform.count("portidx_port_by_if_index(0xfedcba98)"), 1);
  EXPECT_EQ(platform.count("lagmap_get_port(0xfedcba98)"), 1);
}

TEST_F(NumberToInterface, TraceOfACandidateShowsItsEightSlotsUnsigned) {
  map.entry(5, 7, 9, {1, 20, 300, 4000, 0, 6, 7, 65535}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7).status, 0u); });
  EXPECT_EQ(reports.at(0),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(1 20 300 4000 0 6 7 65535)\n");
}

TEST_F(NumberToInterface, TracesShowEveryNumberInDecimal) {
  const uint32_t vsan = 20;
  for (size_t index = 10; index < 22; ++index) map.entry(index, 17, 7, {20, 11, 12, 13, 14, 15, 16, 18}, 20);
  cache_map(16);
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(17, &vsan), (found{kMultiIf, 0, 1})); });
  EXPECT_EQ(reports.at(0),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(17) inst if(0x1000015) vsans(20 11 12 13 14 15 16 18)\n");
  EXPECT_EQ(reports.at(12),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(12) Bound(12) Bound If(0x100000a) Vsan(20) In Vsan(12) "
            "gvp(16) vsan_if(0x100000a)\n");
}

// ---- reading the VSAN ----

TEST_F(NumberToInterface, VsanIsReadAgainForEveryEntry) {
  map.entry(9, 7, 7, {10}, 10).entry(5, 7, 7, {30}, 20);
  uint32_t vsan = 10;
  platform.on_call = [&](const std::string& call) {
    if (call == "lagmap_get_port(0x1000005)") vsan = 20;
  };
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &vsan), (found{0, physical_interface(0, 9), 1})); });
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000009) Vsan(20) In Vsan(2) gvp(1) "
      "vsan_if(0x1000005)\n");
}

TEST_F(NumberToInterface, VsanIsReadAfterTheCandidateIsTraced) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 30);
  uint32_t vsan = 20;
  platform.on_call = [&](const std::string& call) {
    if (call.find("inst if(0x1000005)") != std::string::npos) vsan = 10;
  };
  EXPECT_EQ(find(7, &vsan), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToInterface, FetchingFormTracesTheVsanThatItFetchedFor) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(10) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
}

TEST_F(NumberToInterface, FlagIsSetBeforeTheVsanIsRead) {
  map.entry(5, 7, 7, {1}, 1).entry(6, 7, 7, {10}, 10);
  uint32_t word = 10; // the VSAN and the flag
  uint32_t if_index = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pn_to_if_withpvsan(7, &word, &if_index, &word, 0), 0u);
  EXPECT_EQ(if_index, physical_interface(0, 5));
}

TEST_F(NumberToInterface, FetchingFormReadsTheVsanAfterTheOtherTables) {
  uint32_t vsan = 20;
  platform.on_call = [&](const std::string& call) {
    if (call == kPortFetch[0]) vsan = 10;
  };
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &vsan), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(10) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
}

TEST_F(NumberToInterface, FastFormTracesVsanZeroBeforeItReadTheVsan) {
  cache_map();
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(0) "
                                   "In Vsan(0) gvp(1) vsan_if(0)\n"));
}

// An entry that is no candidate does not make the fast form read the VSAN.
TEST_F(NumberToInterface, FastFormReadsTheVsanOnlyForACandidate) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {}, 10);
  platform.interface(0x1000005).channel = 2;
  cache_map();
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(0) Bound(0) Bound If(0) Vsan(0) In Vsan(0) gvp(1) "
            "vsan_if(0)\n");
}

TEST_F(NumberToInterface, VsanAboveSixteenBitsIsInNoPortsVsan) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  const uint32_t vsan = 0x1000A;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &vsan), (found{kNoIf, 0, 1})); });
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(0) Bound If(0) Vsan(65546) In Vsan(0) gvp(1) "
            "vsan_if(0)\n");
}

TEST_F(NumberToInterface, VsanAboveSixteenBitsIsFoundInTheSlotsByItsLowBits) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 10);
  cache_map(0);
  const uint32_t vsan = 0xFFFF000A;
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(7, &vsan), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000005) Vsan(-65526) In Vsan(0) "
            "gvp(0) vsan_if(0)\n");
}

TEST_F(NumberToInterface, VsanZeroFindsEmptySlots) {
  const uint32_t vsan = 0;
  map.entry(5, 7, 7, {1, 2, 3, 4, 5, 6, 7}, 0).entry(6, 7, 7, {1, 2, 3, 4, 5, 6, 7, 8}, 0);
  EXPECT_EQ(find(7, &vsan), (found{0, physical_interface(0, 5), 1}));
  cache_map(0);
  EXPECT_EQ(find_fast(7, &vsan), (found{0, physical_interface(0, 5), 1}));
}

// ---- the decision, fetched and fast ----

class NumberToInterfaceDecision : public NumberToInterface, public ::testing::WithParamInterface<int32_t> {
 protected:
  found decide(const uint32_t* vsan = &kVsan10) {
    if (GetParam() != 0) cache_map(1);
    reports = reports_of([&] { answer = find(7, vsan, GetParam()); });
    return answer;
  }

  found answer{};
  std::vector<std::string> reports;
};

INSTANTIATE_TEST_SUITE_P(Forms, NumberToInterfaceDecision, ::testing::Values(0, 1),
                         [](const auto& form) { return form.param != 0 ? "Fast" : "Fetched"; });

TEST_P(NumberToInterfaceDecision, OneCandidateAnswersWhateverItsVsans) {
  map.entry(5, 7, 7, {20}, 20);
  EXPECT_EQ(decide(), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(10) In Vsan(0) gvp(1) "
            "vsan_if(0)\n");
}

TEST_P(NumberToInterfaceDecision, OneCandidateWithoutVsan) {
  map.entry(5, 7, 7, {20}, 20);
  EXPECT_EQ(decide(nullptr), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) gvp(0) "
            "vsan_if(0)\n");
}

TEST_P(NumberToInterfaceDecision, NoCandidate) {
  EXPECT_EQ(decide(), (found{kNoIf, 0, 1}));
  EXPECT_EQ(decide(nullptr), (found{kNoIf, 0, 1}));
}

TEST_P(NumberToInterfaceDecision, TwoCandidatesWithoutVsanAreAmbiguous) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 20);
  EXPECT_EQ(decide(nullptr), (found{kMultiIf, 0, 1}));
  EXPECT_THAT(
      reports,
      ElementsAre("trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000006) vsans(20 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(0) Bound If(0) Vsan(0) In Vsan(0) "
                  "gvp(0) vsan_if(0)\n"));
}

TEST_P(NumberToInterfaceDecision, OnePortInTheVsanAnswersEvenIfNotBoundToIt) {
  map.entry(5, 7, 7, {10}, 20).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(decide(), (found{0, physical_interface(0, 6), 1}));
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(0) Bound If(0) Vsan(10) In Vsan(1) gvp(1) "
            "vsan_if(0x1000006)\n");
}

TEST_P(NumberToInterfaceDecision, OnePortInTheVsanAndBoundToIt) {
  map.entry(5, 7, 7, {20, 30, 40, 50, 60, 70, 80, 10}, 10).entry(6, 7, 7, {20}, 20);
  EXPECT_EQ(decide(), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000005) Vsan(10) In Vsan(1) gvp(1) "
      "vsan_if(0x1000005)\n");
}

TEST_P(NumberToInterfaceDecision, NoPortInTheVsanIsNotFoundEvenIfOneIsBound) {
  map.entry(5, 7, 7, {10}, 20).entry(6, 7, 7, {20}, 20);
  EXPECT_EQ(decide(), (found{kNoIf, 0, 1}));
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(0) Bound If(0) Vsan(10) In Vsan(0) gvp(1) "
            "vsan_if(0)\n");
}

TEST_P(NumberToInterfaceDecision, OfSeveralInTheVsanTheOneBoundAnswers) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {20, 10}, 10).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(decide(), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(3) Bound(1) Bound If(0x1000005) Vsan(10) In Vsan(3) gvp(1) "
      "vsan_if(0x1000004)\n");
}

// The one case that hands an interface back together with an ambiguity status, and the only one that clears the flag.
TEST_P(NumberToInterfaceDecision, OfSeveralInTheVsanAndNoneBoundTheLowestComesBackWithFlagCleared) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {20}, 10).entry(6, 7, 7, {10}, 20);
  EXPECT_EQ(decide(), (found{kMultiIf, physical_interface(0, 4), 0}));
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(3) Bound(0) Bound If(0) Vsan(10) In Vsan(2) gvp(1) "
            "vsan_if(0x1000004)\n");
}

TEST_P(NumberToInterfaceDecision, OfSeveralInTheVsanAndSeveralBoundNoneAnswers) {
  map.entry(4, 7, 7, {10}, 10).entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(decide(), (found{kMultiIf, 0, 1}));
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(3) Bound(2) Bound If(0x1000004) Vsan(10) In Vsan(3) gvp(1) "
      "vsan_if(0x1000004)\n");
}

// Without the VSAN table only the slots decide. The fetching form always has the table.
TEST_F(NumberToInterface, WithoutTheVsanTableTheOneBoundAnswers) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {20, 10}, 20).entry(6, 7, 7, {20}, 10);
  cache_map(0);
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(7, &kVsan10), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(3) Bound(1) Bound If(0x1000005) Vsan(10) In Vsan(0) gvp(0) "
      "vsan_if(0)\n");
}

TEST_F(NumberToInterface, WithoutTheVsanTableNoneBoundIsNotFound) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {20}, 10);
  cache_map(0);
  EXPECT_EQ(find_fast(7, &kVsan10), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToInterface, WithoutTheVsanTableSeveralBoundAreAmbiguous) {
  map.entry(4, 7, 7, {10}, 10).entry(5, 7, 7, {10}, 20).entry(6, 7, 7, {20}, 10);
  cache_map(0);
  const auto reports = reports_of([&] { EXPECT_EQ(find_fast(7, &kVsan10), (found{kMultiIf, 0, 1})); });
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(3) Bound(2) Bound If(0x1000004) Vsan(10) In Vsan(0) gvp(0) "
      "vsan_if(0)\n");
}

TEST_F(NumberToInterface, WithoutTheVsanTableItIsNotRead) {
  map.entry(4, 7, 7, {10}, 10);
  cache_map(0);
  free(ficon_pmap_port_to_vsan);
  ficon_pmap_port_to_vsan = nullptr;
  EXPECT_EQ(find_fast(7, &kVsan10), (found{0, physical_interface(0, 4), 1}));
}

// ---- wrappers ----

class NumberToInterfaceWrapper : public NumberToInterface {
 protected:
  // Two ports that only the VSAN tells apart; the cached tables hold the first, the database the second in VSAN 10.
  NumberToInterfaceWrapper() {
    map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 20);
    cache_map();
    map.entry(5, 7, 7, {20}, 20).entry(6, 7, 7, {10}, 10);
  }

  uint32_t if_index = kUntouched32;
};

TEST_F(NumberToInterfaceWrapper, NumberAloneFetchesAndGivesNoVsan) {
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pn_to_if(7, &if_index), kMultiIf); });
  EXPECT_EQ(if_index, 0u);
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(0) Bound If(0) Vsan(0) In Vsan(0) gvp(0) "
            "vsan_if(0)\n");
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 2);
}

TEST_F(NumberToInterfaceWrapper, NumberAndVsanFetch) {
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if(7, 10, &if_index), 0u); });
  EXPECT_EQ(if_index, physical_interface(0, 6));
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000006) Vsan(10) In Vsan(1) gvp(1) "
      "vsan_if(0x1000006)\n");
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 4);
}

TEST_F(NumberToInterfaceWrapper, FastNumberAloneFetchesNothing) {
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pn_to_if_fast(7, &if_index), kMultiIf); });
  EXPECT_EQ(if_index, 0u);
  EXPECT_EQ(reports.back(),
            "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(0) Bound If(0) Vsan(0) In Vsan(0) gvp(0) "
            "vsan_if(0)\n");
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
}

TEST_F(NumberToInterfaceWrapper, FastNumberAndVsanFetchNothing) {
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if_fast(7, 10, &if_index), 0u); });
  EXPECT_EQ(if_index, physical_interface(0, 5));
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000005) Vsan(10) In Vsan(1) gvp(1) "
      "vsan_if(0x1000005)\n");
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
}

TEST_F(NumberToInterfaceWrapper, VsanIsPassedWhole) {
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if(7, 0x1000A, &if_index), kNoIf);
  EXPECT_EQ(if_index, 0u);
  if_index = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if_fast(7, 0x1000A, &if_index), kNoIf);
  EXPECT_EQ(if_index, 0u);
}

TEST_F(NumberToInterfaceWrapper, FastWithVsanMindsTheFastPathFlag) {
  fastpath_got_vsan_port = 0;
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if_fast(7, 10, &if_index), 0u); });
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000005) Vsan(10) In Vsan(0) gvp(0) "
      "vsan_if(0)\n");
}

TEST_F(NumberToInterfaceWrapper, EveryOneHandsBackTheStatus) {
  EXPECT_EQ(ficon_pmap_get_pn_to_if(254, &if_index), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if(254, 10, &if_index), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_to_if_fast(254, &if_index), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if_fast(254, 10, &if_index), kPnRange);
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(NumberToInterfaceWrapper, EveryOneRefusesANullResultAddress) {
  EXPECT_EQ(ficon_pmap_get_pn_to_if(7, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if(7, 10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_to_if_fast(7, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if_fast(7, 10, nullptr), kInvalidArg);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(NumberToInterfaceWrapper, VsanFormsHandBackTheInterfaceOfTheAmbiguousCase) {
  map.entry(5, 7, 7, {20}, 10).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if(7, 10, &if_index), kMultiIf);
  EXPECT_EQ(if_index, physical_interface(0, 5));
  cache_map();
  if_index = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_if_fast(7, 10, &if_index), kMultiIf);
  EXPECT_EQ(if_index, physical_interface(0, 5));
}

} // namespace
