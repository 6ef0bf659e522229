// Port number to physical interface: ficon_pmap_get_pn_to_phyif_withpvsan and its wrappers.
//
// The VSAN table's fetch fails only when its allocation is refused, which ends the operation. So the choice without that
// table, by the entries' slots alone, cannot be provoked here as it can in the fast forms of port number to interface.
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

class NumberToPhysicalInterface : public PortMapTest {
 protected:
  found find(int32_t pn, const uint32_t* vsan = nullptr, int32_t pn_bound = 254) {
    return find_with(map.pn_to_if.data(), pn, vsan, pn_bound);
  }

  static found find_fetching(int32_t pn, const uint32_t* vsan = nullptr, int32_t pn_bound = 254) {
    return find_with(nullptr, pn, vsan, pn_bound);
  }

  static found find_with(const uint32_t* pn_to_if, int32_t pn, const uint32_t* vsan = nullptr, int32_t pn_bound = 254) {
    found found = {0, kUntouched32, kUntouched32};
    found.status = ficon_pmap_get_pn_to_phyif_withpvsan(pn, vsan, pn_bound, &found.if_index, pn_to_if, &found.flag);
    return found;
  }
};

// ---- arguments ----

TEST_F(NumberToPhysicalInterface, NullAddressesAreRefusedBeforeAnythingElse) {
  uint32_t word = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif_withpvsan(7, &kVsan10, 254, nullptr, nullptr, &word), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif_withpvsan(7, &kVsan10, 254, &word, nullptr, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif_withpvsan(7, &kVsan10, 254, nullptr, nullptr, nullptr), kInvalidArg);
  EXPECT_EQ(word, kUntouched32);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// ---- fetching ----

TEST_F(NumberToPhysicalInterface, WithVsanAndWithoutATableFetchesVsansThenPortsThenInterfaces) {
  map.entry(5, 7, 7, {10}, 10);
  EXPECT_EQ(find_fetching(7, &kVsan10), (found{0, physical_interface(0, 5), 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstVsanFetch,
                                         kFirstPortFetch,
                                         kFirstInterfaceFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)"}})));
}

TEST_F(NumberToPhysicalInterface, WithoutVsanAndWithATableFetchesOnlyThePorts) {
  map.entry(5, 7, 7, {10}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstPortFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)"}})));
}

TEST_F(NumberToPhysicalInterface, EveryCallFetchesAnew) {
  map.entry(5, 7, 7, {10}, 10);
  ASSERT_EQ(find_fetching(7, &kVsan10).if_index, physical_interface(0, 5));
  map.entry(5, 512, 512, {}).bind(7, 0x4000001);
  platform.forget_calls();
  EXPECT_EQ(find_fetching(7, &kVsan10), (found{0, 0x4000001, 1}));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kVsanFetch, kPortFetch, kInterfaceFetch})));
}

TEST_F(NumberToPhysicalInterface, RefusedVsanTableIsPassedOnWithoutAReport) {
  map.entry(5, 7, 7, {10}, 10);
  platform.refuse_allocation(1);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoMemory, kUntouched32, 1})); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(1420, 2560)));
  EXPECT_THAT(platform.calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)"));
}

TEST_F(NumberToPhysicalInterface, RefusedPortTableIsReportedAndPassedOn) {
  platform.refuse_allocation(2);
  const auto reports = reports_of([&] { EXPECT_EQ(find_fetching(7, &kVsan10), (found{kNoMemory, kUntouched32, 1})); });
  EXPECT_THAT(reports,
              ElementsAre("error ficon_pmap_get_pn_to_phyif_withpvsan(3447):failed to get pmap_portpn 1\n",
                          "printed " + allocation_warning(1453, 25600) +
                              "FICON_ERR: ficon_pmap_get_pn_to_phyif_withpvsan(3447):failed to get pmap_portpn 1\n"));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstVsanFetch, {"memacct_alloc(206, 5, 25600)"}})));
}

TEST_F(NumberToPhysicalInterface, RefusedInterfaceTableIsReportedAndPassedOn) {
  map.entry(5, 7, 7, {10}, 10);
  platform.refuse_type(3);
  const auto reports = reports_of([&] { EXPECT_EQ(find_fetching(7), (found{kNoMemory, kUntouched32, 1})); });
  EXPECT_THAT(reports,
              ElementsAre("error ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif 1\n",
                          "printed " + allocation_warning(1530, 1016) +
                              "FICON_ERR: ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif 1\n"));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstPortFetch, {"memacct_alloc(206, 3, 1016)"}})));
}

TEST_F(NumberToPhysicalInterface, UnknownNumberOfPortsIsReportedAndPassedOn) {
  hide_ports();
  const auto reports = reports_of([&] { EXPECT_EQ(find_fetching(7), (found{kPlatform, kUntouched32, 1})); });
  EXPECT_THAT(reports,
              ElementsAre("error get_platform_info failed, errno = 5",
                          "error ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif 1082458122\n",
                          "printed FICON_ERR: get_platform_info failed, errno = 5"
                          "FICON_ERR: ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif 1082458122\n"));
}

TEST_F(NumberToPhysicalInterface, GivenTableNeedsNoNumberOfPorts) {
  map.entry(5, 7, 7, {10}, 10);
  know_ports(0);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

// ---- range ----

TEST_F(NumberToPhysicalInterface, NumberAtTheBoundIsOutOfRangeBeforeTheInterfacesAreFetched) {
  map.entry(5, 100, 100, {10}, 10).bind(100, 0x4000001);
  EXPECT_EQ(find_fetching(100, &kVsan10, 100), (found{kPnRange, kUntouched32, 1}));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstVsanFetch, kFirstPortFetch})));
  EXPECT_EQ(find_fetching(100, &kVsan10, 101), (found{0, 0x4000001, 1}));
}

TEST_F(NumberToPhysicalInterface, BoundIsComparedSigned) {
  EXPECT_EQ(find(0, nullptr, 0), (found{kPnRange, kUntouched32, 1}));
  EXPECT_EQ(find(0, nullptr, -1), (found{kPnRange, kUntouched32, 1}));
  EXPECT_EQ(find(std::numeric_limits<int32_t>::max(), nullptr, std::numeric_limits<int32_t>::max()),
            (found{kPnRange, kUntouched32, 1}));
}

TEST_F(NumberToPhysicalInterface, BoundIsTheCallersAndNotTheNumberOfPorts) {
  map.entry(5, 300, 7, {10}, 10);
  EXPECT_EQ(find(300, nullptr, 301), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToPhysicalInterface, NegativeNumberIsNotRejected) {
  const uint32_t interfaces[2] = {0x4000009, 0};
  EXPECT_EQ(find_with(interfaces + 1, -1), (found{0, 0x4000009, 1}));
}

TEST_F(NumberToPhysicalInterface, NegativeNumberIsNotTheEntryWithTheSameLowBits) {
  const uint32_t interfaces[2] = {0, 0};
  map.entry(5, 0xFFFF, 7, {10}, 10).entry(1100, 0xFFFF, 7, {10}, 10);
  EXPECT_EQ(find_with(interfaces + 1, -1), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, NumberAboveSixteenBitsIsComparedWhole) {
  const std::vector<uint32_t> interfaces(70000);
  map.entry(5, 7, 7, {10}, 10).entry(1100, 8, 8, {10}, 10);
  EXPECT_EQ(find_with(interfaces.data(), 65536 + 7, nullptr, 70000), (found{kNoIf, 0, 1}));
  EXPECT_EQ(find_with(interfaces.data(), 65536 + 8, nullptr, 70000), (found{kNoIf, 0, 1}));
  EXPECT_EQ(find_with(interfaces.data(), 7, nullptr, 70000), (found{0, physical_interface(0, 5), 1}));
}

// ---- bound interfaces and numbers without a physical port ----

TEST_F(NumberToPhysicalInterface, BoundInterfaceAnswersWhateverTheVsan) {
  map.bind(7, 0x4000001).entry(5, 7, 7, {20}, 20).entry(1100, 7, 7, {20}, 20);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{0, 0x4000001, 1})); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(NumberToPhysicalInterface, GivenTableIsReadInsteadOfTheCachedOne) {
  std::vector<uint32_t> given(254);
  given[7] = 0x4000001;
  map.bind(7, 0x4000002).bind(8, 0x4000003).entry(5, 8, 8, {10}, 10);
  cache_map();
  EXPECT_EQ(find_with(given.data(), 7), (found{0, 0x4000001, 1}));
  EXPECT_EQ(find_with(given.data(), 8), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);
}

TEST_F(NumberToPhysicalInterface, NumberWithoutAPhysicalPortGivesZeroAndSuccess) {
  for (const size_t index : {size_t{1024}, size_t{1100}, size_t{1279}}) {
    map.entry(index, 7, 7, {}, 20);
    const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{0, 0, 1})) << index; });
    EXPECT_THAT(reports, IsEmpty());
    map.entry(index, 512, 512, {});
  }
  EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, EveryEntryBeyondThePhysicalPortsIsLookedAt) {
  for (size_t index = 1024; index < 1280; ++index) {
    map.entry(index, 7, 7, {});
    ASSERT_EQ(find(7), (found{0, 0, 1})) << index;
    map.entry(index, 512, 512, {});
  }
}

TEST_F(NumberToPhysicalInterface, NumberWithoutAPhysicalPortWinsOverPhysicalPorts) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10).entry(1279, 7, 7, {}, 0);
  EXPECT_EQ(find(7, &kVsan10), (found{0, 0, 1}));
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

// ---- the walk ----

TEST_F(NumberToPhysicalInterface, WalkRunsDownwardOverThePhysicalPorts) {
  map.entry(0, 7, 7, {10}, 10).entry(254, 7, 7, {10}, 10).entry(1023, 7, 7, {10}, 10);
  EXPECT_EQ(find(7), (found{kMultiIf, 0, 1}));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstPortFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(6, 7, 0)", "portidx_port_by_if_index(0x1000607)"},
                                         kSlotConversion,
                                         {"if_index_phy_fc_port_init(1, 0, 0)", "portidx_port_by_if_index(0x1000100)"},
                                         kSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 0, 0)", "portidx_port_by_if_index(0x1000000)"}})));
}

TEST_F(NumberToPhysicalInterface, FirstAndLastPhysicalIndexAnswer) {
  map.entry(0, 7, 7, {10}, 10).entry(1023, 8, 8, {10}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 0), 1}));
  EXPECT_EQ(find(8), (found{0, physical_interface(6, 7), 1}));
}

TEST_F(NumberToPhysicalInterface, EveryPhysicalIndexIsFoundAlone) {
  constexpr uint32_t kSlotOfCard[] = {0, 1, 2, 3, 6};
  for (size_t index = 0; index <= 1023; ++index) {
    map.entry(index, 7, 7, {});
    ASSERT_EQ(find(7), (found{0, physical_interface(kSlotOfCard[index / 254], static_cast<uint32_t>(index % 254)), 1}))
        << index;
    map.entry(index, 512, 512, {});
  }
}

TEST_F(NumberToPhysicalInterface, EntriesBoundToNoVsanCount) {
  map.entry(5, 7, 7, {}, 10);
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 5), 1}));
  map.entry(6, 7, 7, {}, 10);
  EXPECT_EQ(find(7), (found{kMultiIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, OtherNumbersAreIgnored) {
  map.entry(4, 6, 7, {10}, 10).entry(5, 7, 9, {10}, 10).entry(6, 8, 7, {10}, 10).entry(7, 263, 7, {10}, 10);
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
}

TEST_F(NumberToPhysicalInterface, MembersOfPortChannelsAnswerLikeAnyPort) {
  map.entry(5, 7, 7, {10}, 10);
  platform.interface(physical_interface(0, 5)).channel = 1;
  EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1}));
  EXPECT_EQ(platform.count("lagmap_get_port"), 0);
}

TEST_F(NumberToPhysicalInterface, LineCardWithoutASlotIsSkippedSilently) {
  platform.set_chassis(6, 5); // line cards 0 to 3
  map.entry(1016, 7, 7, {10}, 10).entry(5, 7, 7, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(NumberToPhysicalInterface, UnknownChassisTypeIsReportedAndThePortSkipped) {
  platform.chassis_answer = {-1, 6};
  map.entry(5, 7, 7, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("error hwinv_get_chassis_type failed, errno = 6",
                                   "printed FICON_ERR: hwinv_get_chassis_type failed, errno = 6"));
}

TEST_F(NumberToPhysicalInterface, PortIsSkippedWhenThePlatformRecordCannotBeCached) {
  map.entry(5, 7, 7, {10}, 10);
  platform.refuse_allocation(2);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(81, 8)));
}

TEST_F(NumberToPhysicalInterface, PortWhoseInterfaceCannotBeBuiltIsSkippedSilently) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.fail_port_init(0, 6, 77);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(platform.count("portidx_port_by_if_index"), 1);
}

TEST_F(NumberToPhysicalInterface, PortWithoutAPortIndexIsTracedAndNoCandidate) {
  map.entry(5, 7, 7, {10}, 10);
  platform.interface(physical_interface(0, 5)).portidx_status = kPortidxNoPort;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1})); });
  EXPECT_THAT(reports, ElementsAre("trace portidx lookup failed for IfIndex 1000005 with err (1078329346)\n"));
}

TEST_F(NumberToPhysicalInterface, AnyFailureOfThePortIndexSkipsThePort) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {10}, 10);
  platform.interface(physical_interface(0, 6)).portidx_status = -3;
  const auto reports = reports_of([&] { EXPECT_EQ(find(7), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(reports, ElementsAre("trace portidx lookup failed for IfIndex 1000006 with err (-3)\n"));
}

TEST_F(NumberToPhysicalInterface, PortIndexServiceIsAskedAboutTheInterfaceThatWasBuilt) {
  map.entry(5, 7, 7, {10}, 10);
  platform.override_port_init(0, 5, 0xFEDCBA98);
  EXPECT_EQ(find(7), (found{0, 0xFEDCBA98, 1}));
  EXPECT_EQ(platform.count("portidx_port_by_if_index(0xfedcba98)"), 1);
}

// ---- the decision ----

TEST_F(NumberToPhysicalInterface, OneCandidateAnswersWhateverItsVsans) {
  map.entry(5, 7, 7, {20}, 20);
  const auto reports = reports_of([&] { EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 5), 1})); });
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(NumberToPhysicalInterface, NoCandidate) {
  EXPECT_EQ(find(7), (found{kNoIf, 0, 1}));
  EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, TwoCandidatesWithoutVsanAreAmbiguous) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 20);
  EXPECT_EQ(find(7), (found{kMultiIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, OnePortInTheVsanAnswersEvenIfNotBoundToIt) {
  map.entry(5, 7, 7, {10}, 20).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 6), 1}));
}

TEST_F(NumberToPhysicalInterface, NoPortInTheVsanIsNotFoundEvenIfOneIsBound) {
  map.entry(5, 7, 7, {10}, 20).entry(6, 7, 7, {20}, 20);
  EXPECT_EQ(find(7, &kVsan10), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, OfSeveralInTheVsanTheOneBoundAnswers) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {1, 2, 3, 4, 5, 6, 7, 10}, 10).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 5), 1}));
}

// The one case that hands an interface back together with an ambiguity status, and the only one that clears the flag.
TEST_F(NumberToPhysicalInterface, OfSeveralInTheVsanAndNoneBoundTheLowestComesBackWithFlagCleared) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {}, 10).entry(6, 7, 7, {10}, 20);
  EXPECT_EQ(find(7, &kVsan10), (found{kMultiIf, physical_interface(0, 4), 0}));
}

TEST_F(NumberToPhysicalInterface, OfSeveralInTheVsanAndSeveralBoundNoneAnswers) {
  map.entry(4, 7, 7, {10}, 10).entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 10);
  EXPECT_EQ(find(7, &kVsan10), (found{kMultiIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, RejectedPortsDoNotCountInTheVsan) {
  map.entry(4, 7, 7, {20}, 10).entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 20);
  platform.interface(physical_interface(0, 5)).portidx_status = kPortidxNoPort;
  EXPECT_EQ(find(7, &kVsan10), (found{0, physical_interface(0, 4), 1}));
}

TEST_F(NumberToPhysicalInterface, VsanAboveSixteenBitsIsInNoPortsVsan) {
  map.entry(5, 7, 7, {10}, 10).entry(6, 7, 7, {20}, 20);
  const uint32_t vsan = 0x1000A;
  EXPECT_EQ(find(7, &vsan), (found{kNoIf, 0, 1}));
}

TEST_F(NumberToPhysicalInterface, FlagIsSetBeforeTheVsanIsRead) {
  map.entry(5, 7, 7, {1}, 1).entry(6, 7, 7, {10}, 10);
  uint32_t word = 10; // the VSAN and the flag
  uint32_t if_index = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif_withpvsan(7, &word, 254, &if_index, map.pn_to_if.data(), &word), 0u);
  EXPECT_EQ(if_index, physical_interface(0, 5));
}

TEST_F(NumberToPhysicalInterface, VsanZeroFindsEmptySlots) {
  const uint32_t vsan = 0;
  map.entry(5, 7, 7, {1, 2, 3, 4, 5, 6, 7}, 0).entry(6, 7, 7, {1, 2, 3, 4, 5, 6, 7, 8}, 0);
  EXPECT_EQ(find(7, &vsan), (found{0, physical_interface(0, 5), 1}));
}

// ---- wrappers ----

class NumberToPhysicalInterfaceWrapper : public PortMapTest {
 protected:
  NumberToPhysicalInterfaceWrapper() { map.entry(5, 7, 9, {10}, 10).entry(6, 7, 11, {20}, 20).entry(15, 8, 9, {20}, 20); }

  uint32_t result = kUntouched32;
};

TEST_F(NumberToPhysicalInterfaceWrapper, NumberAloneGivesNoVsan) {
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif(7, &result, 254, map.pn_to_if.data()), kMultiIf);
  EXPECT_EQ(result, 0u);
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif(8, &result, 254, map.pn_to_if.data()), 0u);
  EXPECT_EQ(result, physical_interface(0, 15));
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 5"), 0);
}

TEST_F(NumberToPhysicalInterfaceWrapper, NumberAndVsan) {
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 10, &result, 254, map.pn_to_if.data()), 0u);
  EXPECT_EQ(result, physical_interface(0, 5));
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 20, &result, 254, map.pn_to_if.data()), 0u);
  EXPECT_EQ(result, physical_interface(0, 6));
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 0x1000A, &result, 254, map.pn_to_if.data()), kNoIf);
  EXPECT_EQ(result, 0u);
}

TEST_F(NumberToPhysicalInterfaceWrapper, BothPassTheBound) {
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif(7, &result, 7, map.pn_to_if.data()), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 10, &result, 7, map.pn_to_if.data()), kPnRange);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NumberToPhysicalInterfaceWrapper, BothPassTheTable) {
  std::vector<uint32_t> given(254);
  given[7] = 0x4000001;
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif(7, &result, 254, given.data()), 0u);
  EXPECT_EQ(result, 0x4000001u);
  result = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 10, &result, 254, given.data()), 0u);
  EXPECT_EQ(result, 0x4000001u);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);
}

TEST_F(NumberToPhysicalInterfaceWrapper, BothFetchWithoutATable) {
  map.bind(7, 0x4000001);
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif(7, &result, 254, nullptr), 0u);
  EXPECT_EQ(result, 0x4000001u);
  map.bind(7, 0x4000002);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 10, &result, 254, nullptr), 0u);
  EXPECT_EQ(result, 0x4000002u);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 2);
}

TEST_F(NumberToPhysicalInterfaceWrapper, BothRefuseANullResultAddress) {
  EXPECT_EQ(ficon_pmap_get_pn_to_phyif(7, nullptr, 254, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 10, nullptr, 254, nullptr), kInvalidArg);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(NumberToPhysicalInterfaceWrapper, VsanFormHandsBackTheInterfaceOfTheAmbiguousCase) {
  map.entry(5, 7, 9, {20}, 10).entry(6, 7, 11, {20}, 10);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_phyif(7, 10, &result, 254, map.pn_to_if.data()), kMultiIf);
  EXPECT_EQ(result, physical_interface(0, 5));
}

// ---- from a port address ----

using AddressToPhysicalInterface = NumberToPhysicalInterfaceWrapper;

TEST_F(AddressToPhysicalInterface, AddressAloneFetchesForBothStepsAndTheInterfacesIfTheyNeverWere) {
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(11, &result), kMultiIf); // number 7, carried twice
  EXPECT_EQ(result, 0u);
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstPortFetch,
                                         kPortFetch,
                                         kFirstInterfaceFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 6, 0)", "portidx_port_by_if_index(0x1000006)"},
                                         kSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)"}})));
}

TEST_F(AddressToPhysicalInterface, AddressAndVsanFetchForBothSteps) {
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 10, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 5));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstPortFetch,
                                         kFirstVsanFetch,
                                         kVsanFetch,
                                         kPortFetch,
                                         kFirstInterfaceFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 6, 0)", "portidx_port_by_if_index(0x1000006)"},
                                         kSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)"}})));
}

TEST_F(AddressToPhysicalInterface, VsanGoesToBothSteps) {
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 20, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 15));
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(11, 20, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 6));
}

TEST_F(AddressToPhysicalInterface, CachedInterfacesAreUsedAsTheyAre) {
  cache_map();
  map.bind(7, 0x4000001).bind(8, 0x4000001); // the cached table does not know
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 10, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 5));
  map.entry(25, 8, 25, {30}, 30).entry(15, 512, 512, {});
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(25, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 25));
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);
}

TEST_F(AddressToPhysicalInterface, BoundIsTheNumberOfPorts) {
  map.entry(25, 254, 25, {30}, 30);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(25, &result), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(25, 30, &result), kPnRange);
  EXPECT_EQ(result, kUntouched32);
  map.entry(25, 253, 25, {30}, 30);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(25, &result), 0u);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(25, 30, &result), 0u);
}

TEST_F(AddressToPhysicalInterface, UntranslatableAddressEndsWithTheFirstStep) {
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(3, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(9, &result), kMultiIf);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(254, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(255, &result), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(3, 10, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 30, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 0x1000A, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(255, 10, &result), kPaRange);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(AddressToPhysicalInterface, AmbiguousAddressWithANumberEndsWithTheFirstStep) {
  map.entry(5, 7, 9, {20}, 10).entry(15, 8, 9, {20}, 10);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 10, &result), kMultiIf);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(AddressToPhysicalInterface, AddressOfANumberWithoutAPhysicalPortGivesZero) {
  map.entry(1030, 50, 51, {10}, 10);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(51, &result), 0u);
  EXPECT_EQ(result, 0u);
}

TEST_F(AddressToPhysicalInterface, NullResultAddressIsRefusedByTheSecondStep) {
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(11, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(11, 20, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(3, nullptr), kPlatform);
}

TEST_F(AddressToPhysicalInterface, FreshLibraryAnswersAddressRange) {
  know_ports(0);
  EXPECT_EQ(ficon_pmap_get_pa_to_phyif(9, &result), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_phyif(9, 10, &result), kPaRange);
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

TEST_F(AddressToPhysicalInterface, RefusedTablesArePassedOn) {
  platform.refuse_allocation(1);
  output_of([&] { EXPECT_EQ(ficon_pmap_get_pa_to_phyif(11, &result), kNoMemory); }); // first step, without a report
  EXPECT_THAT(platform.errors(), IsEmpty());
  platform.refuse_type(3);
  output_of([&] { EXPECT_EQ(ficon_pmap_get_pa_to_phyif(11, &result), kNoMemory); }); // second step
  EXPECT_THAT(platform.errors(), ElementsAre("ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif 1\n"));
  EXPECT_EQ(result, kUntouched32);
}

} // namespace
