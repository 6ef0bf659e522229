// Bulk queries: ficon_pmap_get_pn_logif and ficon_pmap_get_info_in_vsan.
#include <cstdlib>

#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

// ---- numbers bound to interfaces ----

class LogicalInterfaces : public PortMapTest {
 protected:
  uint32_t list() { return ficon_pmap_get_pn_logif(pns.data(), if_indexes.data(), &count); }

  std::vector<uint16_t> pns = std::vector<uint16_t>(254, kUntouched16);
  std::vector<uint32_t> if_indexes = std::vector<uint32_t>(254, kUntouched32);
  uint32_t count = kUntouched32;
};

TEST_F(LogicalInterfaces, BoundNumbersAreListedInAscendingOrder) {
  map.bind(200, 0x4000001).bind(0, 0xA000001).bind(253, 0xFFFFFFFF).bind(7, 0x4000001);
  const auto reports = reports_of([&] { EXPECT_EQ(list(), 0u); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(count, 4u);
  EXPECT_THAT(std::vector<uint16_t>(pns.begin(), pns.begin() + 5), ElementsAre(0, 7, 200, 253, kUntouched16));
  EXPECT_THAT(std::vector<uint32_t>(if_indexes.begin(), if_indexes.begin() + 5),
              ElementsAre(0xA000001u, 0x4000001u, 0x4000001u, 0xFFFFFFFFu, kUntouched32));
  EXPECT_THAT(platform.calls(), ElementsAreArray(kFirstInterfaceFetch));
}

TEST_F(LogicalInterfaces, NothingBoundIsAnEmptyList) {
  EXPECT_EQ(list(), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_THAT(pns, Each(kUntouched16));
  EXPECT_THAT(if_indexes, Each(kUntouched32));
}

TEST_F(LogicalInterfaces, EveryNumberBoundFillsBothArrays) {
  for (size_t pn = 0; pn < 254; ++pn) map.bind(pn, static_cast<uint32_t>(0x4000000 + pn));
  EXPECT_EQ(list(), 0u);
  EXPECT_EQ(count, 254u);
  for (size_t pn = 0; pn < 254; ++pn) {
    EXPECT_EQ(pns[pn], pn);
    EXPECT_EQ(if_indexes[pn], 0x4000000 + pn);
  }
}

TEST_F(LogicalInterfaces, NumbersFromTheNumberOfPortsOnAreNotListed) {
  map.bind(99, 0x4000001).bind(100, 0x4000002);
  know_ports(100);
  EXPECT_EQ(list(), 0u);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(pns[0], 99);
}

TEST_F(LogicalInterfaces, EveryCallFetchesAnew) {
  map.bind(7, 0x4000001);
  EXPECT_EQ(list(), 0u);
  map.bind(7, 0).bind(8, 0x4000002);
  EXPECT_EQ(list(), 0u);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(pns[0], 8);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, kInterfaceFetch})));
}

TEST_F(LogicalInterfaces, RefusedTableIsReportedAndNothingWritten) {
  platform.refuse_type(3);
  const auto reports = reports_of([&] { EXPECT_EQ(list(), kNoMemory); });
  EXPECT_THAT(reports, ElementsAre("error ficon_pmap_get_pn_logif(3607):failed to get pmap_pnif 1\n",
                                   "printed " + allocation_warning(1530, 1016) +
                                       "FICON_ERR: ficon_pmap_get_pn_logif(3607):failed to get pmap_pnif 1\n"));
  EXPECT_EQ(count, kUntouched32);
  EXPECT_THAT(pns, Each(kUntouched16));
  EXPECT_THAT(if_indexes, Each(kUntouched32));
}

TEST_F(LogicalInterfaces, UnknownNumberOfPortsIsReportedAndNothingWritten) {
  hide_ports();
  const auto reports = reports_of([&] { EXPECT_EQ(list(), kPlatform); });
  EXPECT_THAT(reports, ElementsAre("error get_platform_info failed, errno = 5",
                                   "error ficon_pmap_get_pn_logif(3607):failed to get pmap_pnif 1082458122\n",
                                   "printed FICON_ERR: get_platform_info failed, errno = 5"
                                   "FICON_ERR: ficon_pmap_get_pn_logif(3607):failed to get pmap_pnif 1082458122\n"));
  EXPECT_EQ(count, kUntouched32);
}

// The number of ports can only be gone after a fetch that needs it when something changes it meanwhile.
TEST_F(LogicalInterfaces, WithoutPortsTheTableIsNotLookedAt) {
  map.bind(0, 0x4000001).bind(7, 0x4000002);
  for (const int32_t ports : {0, -1}) {
    know_ports(254);
    platform.on_call = [&](const std::string& call) {
      if (call == kInterfaceFetch[0]) know_ports(ports);
    };
    count = kUntouched32;
    EXPECT_EQ(list(), 0u);
    EXPECT_EQ(count, 0u);
  }
  EXPECT_THAT(pns, Each(kUntouched16));
}

// The list of interfaces lies over the number of ports itself, so that storing an interface changes the bound.
TEST_F(LogicalInterfaces, NumberOfPortsIsReadAgainAtEveryStep) {
  map.bind(3, 4).bind(10, 0x4000001);
  EXPECT_EQ(ficon_pmap_get_pn_logif(pns.data(), reinterpret_cast<uint32_t*>(&MAX_FICON_PORTS), &count), 0u);
  EXPECT_EQ(MAX_FICON_PORTS, 4);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(pns[0], 3);
  EXPECT_EQ(pns[1], kUntouched16);
}

TEST_F(LogicalInterfaces, NumbersAboveSixteenBitsAreCut) {
  std::vector<uint32_t> element(70000);
  element[65536 + 7] = 0x4000001;
  platform.set_element(2, 2, element.data(), element.size());
  know_ports(70000);
  EXPECT_EQ(list(), 0u);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(pns[0], 7);
}

// ---- the ports of a VSAN ----

class VsanPorts : public PortMapTest {
 protected:
  ~VsanPorts() override { release(); }

  uint32_t list(uint32_t vsan) {
    release();
    return ficon_pmap_get_info_in_vsan(vsan, &pns, &pas, &if_indexes, &bound, &count);
  }

  void release() {
    if (pns != kNowhere16) free(pns);
    if (pas != kNowhere16) free(pas);
    if (if_indexes != kNowhere32) free(if_indexes);
    if (bound != kNowhere32) free(bound);
    pns = pas = kNowhere16;
    if_indexes = bound = kNowhere32;
    count = kUntouched32;
  }

  template <class Value>
  std::vector<Value> listed(const Value* values) const {
    return values == nullptr ? std::vector<Value>() : std::vector<Value>(values, values + count);
  }

  bool nothing_written() const {
    return pns == kNowhere16 && pas == kNowhere16 && if_indexes == kNowhere32 && bound == kNowhere32 &&
           count == kUntouched32;
  }

  // Three ports in VSAN 10; one of them is bound to it.
  void three_ports() { map.entry(5, 7, 9, {20}, 10).entry(254, 70, 90, {20, 10}, 10).entry(1023, 71, 91, {}, 10); }

  static inline uint16_t nowhere16_ = 0;
  static inline uint32_t nowhere32_ = 0;
  static inline uint16_t* const kNowhere16 = &nowhere16_;
  static inline uint32_t* const kNowhere32 = &nowhere32_;

  uint16_t* pns = kNowhere16;
  uint16_t* pas = kNowhere16;
  uint32_t* if_indexes = kNowhere32;
  uint32_t* bound = kNowhere32;
  uint32_t count = kUntouched32;
};

TEST_F(VsanPorts, PortsAreListedInIndexOrderAsFourArrays) {
  three_ports();
  map.entry(6, 8, 10, {10}, 20); // bound to the VSAN, but not in it
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(listed(pns), ElementsAre(7, 70, 71));
  EXPECT_THAT(listed(pas), ElementsAre(9, 90, 91));
  EXPECT_THAT(listed(if_indexes), ElementsAre(0x1000005u, 0x1000100u, 0x1000607u));
  EXPECT_THAT(listed(bound), ElementsAre(0u, 1u, 0u));
}

TEST_F(VsanPorts, FetchesVsansThenPortsThenAllocatesThenAsksForEachPort) {
  map.entry(5, 7, 9, {20}, 10).entry(254, 70, 90, {10}, 10);
  EXPECT_EQ(list(10), 0u);
  EXPECT_THAT(
      platform.calls(),
      ElementsAreArray(sequence(
          {kFirstVsanFetch,
           kFirstPortFetch,
           {"memacct_alloc(206, 5, 4)", "memacct_alloc(206, 5, 4)", "memacct_alloc(206, 1, 8)", "memacct_alloc(206, 5, 8)"},
           kFirstSlotConversion,
           {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)", "lagmap_get_port(0x1000005)"},
           kSlotConversion,
           {"if_index_phy_fc_port_init(1, 0, 0)", "portidx_port_by_if_index(0x1000100)", "lagmap_get_port(0x1000100)"}})));
}

TEST_F(VsanPorts, EveryCallFetchesAnewAndMakesNewArrays) {
  three_ports();
  EXPECT_EQ(list(10), 0u);
  map.entry(5, 8, 10, {10}, 10);
  platform.forget_calls();
  EXPECT_EQ(list(10), 0u);
  EXPECT_THAT(listed(pns), ElementsAre(8, 70, 71));
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 3);
  EXPECT_EQ(platform.count("memacct_alloc"), 4);
}

TEST_F(VsanPorts, ArraysAreTheOnesThatWereAllocatedInOrder) {
  three_ports();
  EXPECT_EQ(list(10), 0u);
  ASSERT_GE(platform.allocations().size(), 6u);
  EXPECT_EQ(platform.allocations()[2].address, pns);
  EXPECT_EQ(platform.allocations()[3].address, pas);
  EXPECT_EQ(platform.allocations()[4].address, if_indexes);
  EXPECT_EQ(platform.allocations()[5].address, bound);
}

TEST_F(VsanPorts, EachArrayIsStoredBeforeTheNextIsAllocated) {
  map.entry(5, 7, 9, {20}, 10);
  ASSERT_EQ(list(10), 0u); // the cached tables are there from now on
  release();
  std::vector<int> stored;
  platform.on_call = [&](const std::string& call) {
    if (call.rfind("memacct_alloc", 0) != 0) return;
    stored.push_back((pns != kNowhere16) + (pas != kNowhere16) + (if_indexes != kNowhere32) + (bound != kNowhere32));
  };
  EXPECT_EQ(ficon_pmap_get_info_in_vsan(10, &pns, &pas, &if_indexes, &bound, &count), 0u);
  EXPECT_THAT(stored, ElementsAre(0, 1, 2, 3));
}

TEST_F(VsanPorts, PortsOfOtherVsansDoNotEnlargeTheArrays) {
  map.entry(5, 7, 9, {10}, 10).entry(6, 8, 10, {11}, 11).entry(7, 9, 11, {9}, 9).entry(8, 10, 12, {4000}, 4000);
  EXPECT_EQ(list(10), 0u);
  EXPECT_THAT(listed(pns), ElementsAre(7));
  EXPECT_EQ(platform.count("memacct_alloc(206, 5, 2)"), 2);
  EXPECT_EQ(platform.count("memacct_alloc(206, 1, 4)"), 1);
}

TEST_F(VsanPorts, VsanWithoutPortsYieldsFourEmptyAllocations) {
  three_ports();
  EXPECT_EQ(list(30), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstVsanFetch,
                                                           kFirstPortFetch,
                                                           {"memacct_alloc(206, 5, 0)", "memacct_alloc(206, 5, 0)",
                                                            "memacct_alloc(206, 1, 0)", "memacct_alloc(206, 5, 0)"}})));
  ASSERT_EQ(platform.allocations().size(), 6u);
  EXPECT_EQ(platform.allocations()[2].address, pns);
  EXPECT_EQ(platform.allocations()[5].address, bound);
}

TEST_F(VsanPorts, EntriesBeyondThePhysicalPortsEnlargeTheArraysButAreNotListed) {
  map.entry(5, 7, 9, {20}, 10).entry(1100, 70, 90, {10}, 10).current_vsan(1024, 10).current_vsan(1279, 10);
  EXPECT_EQ(list(10), 0u);
  EXPECT_EQ(count, 1u);
  EXPECT_THAT(listed(pns), ElementsAre(7));
  EXPECT_EQ(platform.count("memacct_alloc(206, 5, 8)"), 3); // PNs, PAs and the platform record
  EXPECT_EQ(platform.count("memacct_alloc(206, 1, 16)"), 1);
  EXPECT_EQ(platform.count("memacct_alloc(206, 5, 16)"), 1);
}

TEST_F(VsanPorts, EveryEntryInOneVsan) {
  for (size_t index = 0; index < 1280; ++index) map.port_to_vsan[index] = 10;
  map.install();
  platform.set_chassis(18, 38);
  EXPECT_EQ(list(10), 0u);
  EXPECT_EQ(count, 1024u);
  EXPECT_EQ(platform.count("memacct_alloc(206, 5, 2560)"), 3); // the VSAN table's own is one of them
  EXPECT_EQ(platform.count("memacct_alloc(206, 1, 5120)"), 1);
  EXPECT_EQ(platform.count("memacct_alloc(206, 5, 5120)"), 1);
  EXPECT_THAT(listed(pns), Each(512));
  EXPECT_EQ(if_indexes[0], 0x1000000u);
  EXPECT_EQ(if_indexes[1023], 0x1000407u);
}

TEST_F(VsanPorts, AnyOfTheEightSlotsMakesAPortBound) {
  for (int slot = 0; slot < 8; ++slot) {
    map.entry(5, 7, 9, {1, 2, 3, 4, 5, 6, 7, 8}, 10);
    map.port_to_pn[5].vsans[slot] = 10;
    map.install();
    EXPECT_EQ(list(10), 0u);
    EXPECT_THAT(listed(bound), ElementsAre(1u)) << slot;
  }
}

TEST_F(VsanPorts, VsanZeroListsEveryPortThatIsInNoneAndBindsByEmptySlots) {
  for (size_t index = 0; index < 1280; ++index) map.port_to_vsan[index] = 10;
  map.entry(5, 7, 9, {1, 2, 3, 4, 5, 6, 7, 8}, 0).entry(6, 8, 10, {1, 2, 3, 4, 5, 6, 7}, 0);
  EXPECT_EQ(list(0), 0u);
  EXPECT_THAT(listed(pns), ElementsAre(7, 8));
  EXPECT_THAT(listed(bound), ElementsAre(0u, 1u));
}

TEST_F(VsanPorts, VsanAboveSixteenBitsHasNoPorts) {
  three_ports();
  EXPECT_EQ(list(0x1000A), 0u);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(platform.count("memacct_alloc(206, 1, 0)"), 1);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(VsanPorts, HighestVsanThatATableCanHold) {
  map.entry(5, 7, 9, {65535}, 65535);
  EXPECT_EQ(list(65535), 0u);
  EXPECT_THAT(listed(bound), ElementsAre(1u));
}

TEST_F(VsanPorts, NumberOfPortsNeedNotBeKnown) {
  three_ports();
  know_ports(0);
  EXPECT_EQ(list(10), 0u);
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

// ---- ports that are left out ----

TEST_F(VsanPorts, PortsWithoutAnInterfaceAreLeftOut) {
  three_ports();
  map.entry(300, 72, 92, {10}, 10).entry(301, 73, 93, {10}, 10);
  platform.interface(0x1000005).portidx_status = kPortidxNoPort;
  platform.interface(0x1000100).channel = 1;
  platform.fail_port_init(1, 46, 77);                          // index 300
  platform.interface(0x100012F).lag_status = 0x40470005;       // index 301
  platform.interface(0x1000607).lag_status = kLagmapNotMember; // index 1023
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_EQ(count, 1u);
  EXPECT_THAT(listed(pns), ElementsAre(71));
  EXPECT_THAT(listed(pas), ElementsAre(91));
  EXPECT_THAT(listed(if_indexes), ElementsAre(0x1000607u));
  EXPECT_THAT(listed(bound), ElementsAre(0u));
  EXPECT_THAT(reports, ElementsAre("trace portidx lookup failed for IfIndex 1000005 with err (1078329346)\n",
                                   "trace Index :254 is a portthats part of port-channel\n",
                                   "error Failed to compute ifindex for index 300(0x4d)\n",
                                   "error lagmap_get_port failed: if_index:0x100012f\n",
                                   "printed FICON_ERR: Failed to compute ifindex for index 300(0x4d)\n"
                                   "FICON_ERR: lagmap_get_port failed: if_index:0x100012f\n"));
  EXPECT_EQ(platform.count("memacct_alloc(206, 1, 20)"), 1); // room for all five
}

TEST_F(VsanPorts, PortsOnALineCardWithoutASlotAreLeftOut) {
  three_ports();
  platform.set_chassis(6, 5);
  EXPECT_EQ(list(10), 0u);
  EXPECT_THAT(listed(pns), ElementsAre(7, 70));
}

// ---- refused allocations ----

TEST_F(VsanPorts, RefusedVsanTableIsReportedAndNothingWritten) {
  three_ports();
  platform.refuse_allocation(1);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), kNoMemory); });
  EXPECT_THAT(reports, ElementsAre("error ficon_pmap_get_info_in_vsan(3637):failed to get pmap_portvsan (0x1)\n",
                                   "printed " + allocation_warning(1420, 2560) +
                                       "FICON_ERR: ficon_pmap_get_info_in_vsan(3637):failed to get pmap_portvsan (0x1)\n"));
  EXPECT_TRUE(nothing_written());
  EXPECT_THAT(platform.calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)"));
}

TEST_F(VsanPorts, RefusedPortTableIsReportedAndNothingWritten) {
  three_ports();
  platform.refuse_allocation(2);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), kNoMemory); });
  EXPECT_THAT(reports, ElementsAre("error ficon_pmap_get_info_in_vsan(3644):failed to get pmap_portpn (0x1)\n",
                                   "printed " + allocation_warning(1453, 25600) +
                                       "FICON_ERR: ficon_pmap_get_info_in_vsan(3644):failed to get pmap_portpn (0x1)\n"));
  EXPECT_TRUE(nothing_written());
}

TEST_F(VsanPorts, RefusedNumbersLeaveTheOtherArraysFilled) {
  three_ports();
  platform.refuse_allocation(3);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(3665, 6)));
  EXPECT_EQ(pns, nullptr);
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(listed(pas), ElementsAre(9, 90, 91));
  EXPECT_THAT(listed(if_indexes), ElementsAre(0x1000005u, 0x1000100u, 0x1000607u));
  EXPECT_THAT(listed(bound), ElementsAre(0u, 1u, 0u));
}

TEST_F(VsanPorts, RefusedAddressesLeaveTheOtherArraysFilled) {
  three_ports();
  platform.refuse_allocation(4);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(3669, 6)));
  EXPECT_EQ(pas, nullptr);
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(listed(pns), ElementsAre(7, 70, 71));
  EXPECT_THAT(listed(if_indexes), ElementsAre(0x1000005u, 0x1000100u, 0x1000607u));
  EXPECT_THAT(listed(bound), ElementsAre(0u, 1u, 0u));
}

TEST_F(VsanPorts, RefusedInterfacesLeaveTheOtherArraysFilled) {
  three_ports();
  platform.refuse_allocation(5);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(3673, 12)));
  EXPECT_EQ(if_indexes, nullptr);
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(listed(pns), ElementsAre(7, 70, 71));
  EXPECT_THAT(listed(pas), ElementsAre(9, 90, 91));
  EXPECT_THAT(listed(bound), ElementsAre(0u, 1u, 0u));
}

TEST_F(VsanPorts, RefusedBoundFlagsLeaveTheOtherArraysFilled) {
  three_ports();
  platform.refuse_allocation(6);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(3677, 12)));
  EXPECT_EQ(bound, nullptr);
  EXPECT_EQ(count, 3u);
  EXPECT_THAT(listed(pns), ElementsAre(7, 70, 71));
  EXPECT_THAT(listed(pas), ElementsAre(9, 90, 91));
  EXPECT_THAT(listed(if_indexes), ElementsAre(0x1000005u, 0x1000100u, 0x1000607u));
}

TEST_F(VsanPorts, AllFourRefusedStillCountsThePorts) {
  three_ports();
  for (const int nth : {3, 4, 5, 6}) platform.refuse_allocation(nth);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(3665, 6) + allocation_warning(3669, 6) +
                                   allocation_warning(3673, 12) + allocation_warning(3677, 12)));
  EXPECT_EQ(pns, nullptr);
  EXPECT_EQ(pas, nullptr);
  EXPECT_EQ(if_indexes, nullptr);
  EXPECT_EQ(bound, nullptr);
  EXPECT_EQ(count, 3u);
}

TEST_F(VsanPorts, RefusedEmptyArraysWarnOfSizeZero) {
  for (const int nth : {3, 4, 5, 6}) platform.refuse_allocation(nth);
  const auto reports = reports_of([&] { EXPECT_EQ(list(30), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(3665, 0) + allocation_warning(3669, 0) +
                                   allocation_warning(3673, 0) + allocation_warning(3677, 0)));
  EXPECT_EQ(count, 0u);
}

TEST_F(VsanPorts, RefusedPlatformRecordLeavesThePortOut) {
  map.entry(5, 7, 9, {20}, 10).entry(6, 8, 10, {20}, 10);
  platform.refuse_allocation(7);
  const auto reports = reports_of([&] { EXPECT_EQ(list(10), 0u); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(81, 8)));
  EXPECT_THAT(listed(pns), ElementsAre(8)); // the next port's conversion asks again
}

} // namespace
