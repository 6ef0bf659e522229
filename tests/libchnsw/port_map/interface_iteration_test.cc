// Walking the physical interfaces, and port address to interface.
#include <cstdlib>

#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr uint32_t kPort10 = 0x100000A; // slot 0, port 10

class InterfaceIteration : public PortMapTest {
 protected:
  uint32_t next(uint32_t if_index) {
    result = kUntouched32;
    return static_cast<uint32_t>(ficon_pmap_get_next_if(if_index, &result));
  }

  uint32_t last(uint32_t if_index) {
    result = kUntouched32;
    return static_cast<uint32_t>(ficon_pmap_get_last_if(if_index, &result));
  }

  // Gives ports a number and an address.
  void numbered(std::initializer_list<uint16_t> indexes) {
    for (const uint16_t index : indexes) {
      const auto number = static_cast<uint16_t>(index % 254);
      map.entry(index, number, number, {10}, 10);
    }
  }

  // Runs action at the second fetch of the port-to-PN table, the walk's own; the first is the look-up's.
  void at_own_port_fetch(std::function<void()> action) {
    platform.on_call = [action = std::move(action), fetches = 0](const std::string& call) mutable {
      if (call == kPortFetch[0] && ++fetches == 2) action();
    };
  }

  // Takes the port-to-PN table away after the look-up, and refuses another.
  void refuse_own_port_fetch() {
    platform.on_call = [this](const std::string& call) {
      if (call.rfind("dbgout(1, evtrc_dbg_modname, 0, \"if_index:", 0) != 0) return;
      free(ficon_pmap_port_to_pn);
      ficon_pmap_port_to_pn = nullptr;
      platform.refuse_type(5);
    };
  }

  uint32_t result = kUntouched32;
};

// ---- next ----

using NextInterface = InterfaceIteration;

TEST_F(NextInterface, FollowingIndexIsTheNextInterface) {
  numbered({10, 11, 254});
  const auto reports = reports_of([&] { EXPECT_EQ(next(kPort10), 0u); });
  EXPECT_EQ(result, physical_interface(0, 11));
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x100000a, slot:1base1, port:11base1, port-number:10\n"));
}

TEST_F(NextInterface, LooksUpFetchesThePortsAgainAndBuildsTheInterface) {
  numbered({1016, 1017});
  ASSERT_EQ(next(0x1000600), 0u);
  EXPECT_EQ(result, physical_interface(6, 1));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch,
                                                           kFirstPortFetch,
                                                           {"if_index_get_type(0x1000600)", "if_index_get_slot(0x1000600)",
                                                            "if_index_get_port(0x1000600)", "lagmap_get_port(0x1000600)"},
                                                           kFirstSlotConversion,
                                                           kPortFetch,
                                                           kSlotConversion,
                                                           {"if_index_phy_fc_port_init(6, 1, 0)"}})));
}

TEST_F(NextInterface, LastPositionOfALineCardLeadsToTheNextCard) {
  numbered({253, 254});
  EXPECT_EQ(next(0x10000FD), 0u);
  EXPECT_EQ(result, physical_interface(1, 0));
}

TEST_F(NextInterface, PositionBeforeTheLastOfALineCard) {
  numbered({252, 253});
  EXPECT_EQ(next(0x10000FC), 0u);
  EXPECT_EQ(result, physical_interface(0, 253));
}

TEST_F(NextInterface, GapLeadsToTheNextCardEvenIfThePortBehindItIsNumbered) {
  numbered({10, 12, 254});
  EXPECT_EQ(next(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(1, 0));
}

TEST_F(NextInterface, GapBeforeAnEmptyCardEndsTheWalk) {
  numbered({10, 12, 255, 508});
  EXPECT_EQ(next(kPort10), kPlatform);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(NextInterface, MissingNumberOrMissingAddressAloneMakesAGap) {
  numbered({10, 254});
  map.entry(11, 512, 11, {10});
  EXPECT_EQ(next(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(1, 0));
  map.entry(11, 11, 512, {10});
  EXPECT_EQ(next(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(1, 0));
}

TEST_F(NextInterface, MissingNumberOrMissingAddressOfTheNextCardEndsTheWalk) {
  numbered({10});
  map.entry(254, 512, 11, {10});
  EXPECT_EQ(next(kPort10), kPlatform);
  map.entry(254, 11, 512, {10});
  EXPECT_EQ(next(kPort10), kPlatform);
  EXPECT_EQ(result, kUntouched32);
}

// Only the mark is no number.
TEST_F(NextInterface, NumbersAboveTheMarkAreNumbersToo) {
  numbered({10});
  map.entry(11, 513, 0xFFFF, {10});
  EXPECT_EQ(next(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 11));
}

TEST_F(NextInterface, NegativeStatusOfTheLookUpIsPassedOn) {
  numbered({10, 11});
  platform.interface(kPort10).type_status = -3;
  output_of([&] { EXPECT_EQ(next(kPort10), 0xFFFFFFFDu); });
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, JumpsGoFromEachCardToTheFollowingOne) {
  numbered({254, 508, 762, 1016});
  EXPECT_EQ(next(physical_interface(1, 0)), 0u);
  EXPECT_EQ(result, physical_interface(2, 0));
  EXPECT_EQ(next(physical_interface(2, 0)), 0u);
  EXPECT_EQ(result, physical_interface(3, 0));
  EXPECT_EQ(next(physical_interface(3, 0)), 0u);
  EXPECT_EQ(result, physical_interface(6, 0)); // line card 4
  EXPECT_EQ(next(physical_interface(6, 0)), kPlatform);
}

TEST_F(NextInterface, Index1015LeadsTo1016) {
  numbered({1015, 1016});
  EXPECT_EQ(next(physical_interface(3, 253)), 0u);
  EXPECT_EQ(result, physical_interface(6, 0));
}

TEST_F(NextInterface, Index1015Tries1016TwiceWhenItIsEmpty) {
  numbered({1015, 1017});
  EXPECT_EQ(next(physical_interface(3, 253)), kPlatform);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, Index1022LeadsTo1023) {
  numbered({1022, 1023});
  EXPECT_EQ(next(physical_interface(6, 6)), 0u);
  EXPECT_EQ(result, physical_interface(6, 7));
}

TEST_F(NextInterface, GapOnTheLastCardEndsTheWalk) {
  numbered({1016, 1018, 1270});
  EXPECT_EQ(next(physical_interface(6, 0)), kPlatform);
  EXPECT_EQ(result, kUntouched32);
  numbered({1022});
  EXPECT_EQ(next(physical_interface(6, 6)), kPlatform);
}

TEST_F(NextInterface, Index1023HasNoNextAndFetchesNothingMore) {
  numbered({1023, 1024});
  EXPECT_EQ(next(physical_interface(6, 7)), kPlatform);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 3"), 1);
}

TEST_F(NextInterface, Index1023WithoutANumberIsRefused) {
  map.entry(1023, 512, 7, {10});
  EXPECT_EQ(next(physical_interface(6, 7)), kInvalidArg);
}

TEST_F(NextInterface, InterfaceWithoutNumberOrAddressIsRefused) {
  numbered({11});
  map.entry(10, 512, 10, {10});
  EXPECT_EQ(next(kPort10), kInvalidArg);
  map.entry(10, 10, 512, {10});
  EXPECT_EQ(next(kPort10), kInvalidArg);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 3"), 2); // the two look-ups' own
}

// The plain 11 is what clients compare with.
TEST_F(NextInterface, IndexBeyondThePhysicalPortsGivesThePlainEleven) {
  map.bind(30, 0x4000001).entry(1030, 30, 31, {});
  EXPECT_EQ(next(0x4000001), 11u);
  // A physical port beyond the end of the last card's block, without a number.
  EXPECT_EQ(next(physical_interface(6, 8)), 11u);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, OwnFetchDecides) {
  numbered({10, 254});
  at_own_port_fetch([&] { numbered({11}); });
  EXPECT_EQ(next(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 11));
}

TEST_F(NextInterface, RefusedOwnFetchIsPassedOnWithoutAReport) {
  numbered({10, 11});
  refuse_own_port_fetch();
  const auto reports = reports_of([&] { EXPECT_EQ(next(kPort10), kNoMemory); });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x100000a, slot:1base1, port:11base1, port-number:10\n",
                                   "printed " + allocation_warning(1453, 25600)));
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, NextCardWithoutASlotIsPassedOnSilently) {
  platform.set_chassis(6, 5); // line cards 0 to 3
  numbered({1015, 1016});
  const auto reports = reports_of([&] { EXPECT_EQ(next(physical_interface(3, 253)), kInvalidArg); });
  EXPECT_EQ(reports.size(), 1u);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, StatusOfTheInterfaceServiceIsPassedOnSilently) {
  numbered({10, 11});
  platform.fail_port_init(0, 11, 77);
  const auto reports = reports_of([&] { EXPECT_EQ(next(kPort10), 77u); });
  EXPECT_EQ(reports.size(), 1u);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, NullResultAddressIsHandedToTheInterfaceService) {
  numbered({10, 11});
  EXPECT_EQ(ficon_pmap_get_next_if(kPort10, nullptr), 14);
  EXPECT_EQ(platform.calls().back(), "if_index_phy_fc_port_init(NULL, 0, 11, 0)");
}

TEST_F(NextInterface, StatusesOfTheLookUpArePassedOn) {
  numbered({10, 11});
  output_of([&] { EXPECT_EQ(next(0x200000A), 11u); });
  EXPECT_EQ(next(0x4000001), kNotAssociated);
  output_of([&] { EXPECT_EQ(next(physical_interface(4, 0)), kInvalidArg); });
  platform.interface(kPort10).type_status = 77;
  output_of([&] { EXPECT_EQ(next(kPort10), 77u); });
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(NextInterface, RefusedTableOfTheLookUpIsReportedAndPassedOn) {
  platform.refuse_type(3);
  const auto reports = reports_of([&] { EXPECT_EQ(next(kPort10), kNoMemory); });
  EXPECT_EQ(reports.at(0), "error ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1\n");
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, UnknownNumberOfPortsIsReportedAndPassedOn) {
  hide_ports();
  const auto reports = reports_of([&] { EXPECT_EQ(next(kPort10), kPlatform); });
  EXPECT_EQ(reports.at(1), "error ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1082458122\n");
}

TEST_F(NextInterface, MemberOfAPortChannelIsNotWalkedFrom) {
  numbered({10, 11});
  platform.interface(kPort10).channel = 1;
  output_of([&] { EXPECT_EQ(next(kPort10), kLagMember); });
  // Bound to a number of its own, it stands beyond the physical ports.
  map.bind(30, kPort10).entry(1030, 30, 31, {});
  output_of([&] { EXPECT_EQ(next(kPort10), 11u); });
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, NextInterfaceMayBeAMember) {
  numbered({10, 11});
  platform.interface(physical_interface(0, 11)).channel = 1;
  EXPECT_EQ(next(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 11));
}

// The look-up then succeeds with nothing written, which reads as an interface without a number.
TEST_F(NextInterface, FailingPortChannelServiceReadsAsNoNumber) {
  numbered({10, 11});
  platform.interface(kPort10).lag_status = 0x40470005;
  const auto reports = reports_of([&] { EXPECT_EQ(next(kPort10), kInvalidArg); });
  EXPECT_EQ(reports.at(1), "trace if_index:0x100000a, slot:1base1, port:11base1, port-number:512\n");
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(NextInterface, WalkOverTwoCardsVisitsEveryPortOnce) {
  numbered({0, 1, 2, 254, 255, 508});
  std::vector<uint32_t> visited;
  for (uint32_t at = physical_interface(0, 0); next(at) == 0; at = result) visited.push_back(result);
  EXPECT_THAT(visited, ElementsAre(physical_interface(0, 1), physical_interface(0, 2), physical_interface(1, 0),
                                   physical_interface(1, 1), physical_interface(2, 0)));
}

// ---- last ----

using LastInterface = InterfaceIteration;

TEST_F(LastInterface, HighestNumberedPositionOfTheLineCardAnswers) {
  for (uint16_t index = 0; index <= 199; ++index) numbered({index});
  numbered({254});
  const auto reports = reports_of([&] { EXPECT_EQ(last(kPort10), 0u); });
  EXPECT_EQ(result, physical_interface(0, 199));
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x100000a, slot:1base1, port:11base1, port-number:10\n"));
}

TEST_F(LastInterface, LooksUpFetchesThePortsAgainAndBuildsTheInterface) {
  numbered({764, 800});
  ASSERT_EQ(last(0x1000302), 0u);
  EXPECT_EQ(result, physical_interface(3, 38));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch,
                                                           kFirstPortFetch,
                                                           {"if_index_get_type(0x1000302)", "if_index_get_slot(0x1000302)",
                                                            "if_index_get_port(0x1000302)", "lagmap_get_port(0x1000302)"},
                                                           kFirstSlotConversion,
                                                           kPortFetch,
                                                           kSlotConversion,
                                                           {"if_index_phy_fc_port_init(3, 38, 0)"}})));
}

TEST_F(LastInterface, NegativeStatusOfTheLookUpIsPassedOn) {
  numbered({10, 11});
  platform.interface(kPort10).type_status = -3;
  output_of([&] { EXPECT_EQ(last(kPort10), 0xFFFFFFFDu); });
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(LastInterface, LastPositionOfTheBlockIsLookedAt) {
  numbered({10, 253});
  EXPECT_EQ(last(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 253));
}

TEST_F(LastInterface, GapsDoNotEndTheWalk) {
  numbered({10, 20, 40});
  EXPECT_EQ(last(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 40));
}

TEST_F(LastInterface, OnlyNumberedPortIsItsOwnLast) {
  numbered({10, 9});
  EXPECT_EQ(last(kPort10), 0u);
  EXPECT_EQ(result, kPort10);
}

TEST_F(LastInterface, MissingNumberOrMissingAddressDisqualifies) {
  numbered({10, 11});
  map.entry(12, 512, 12, {10}).entry(13, 13, 512, {10});
  EXPECT_EQ(last(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 11));
}

TEST_F(LastInterface, LastOnePhysicalIndexIsAllowed) {
  numbered({1023});
  EXPECT_EQ(last(physical_interface(6, 7)), 0u);
  EXPECT_EQ(result, physical_interface(6, 7));
}

// Line card 4 has only eight physical indexes, but is walked like every other.
TEST_F(LastInterface, OnLineCardFourEntriesBeyondThePhysicalOnesAreLookedAt) {
  numbered({1016, 1023, 1100, 1270});
  EXPECT_EQ(last(physical_interface(6, 0)), 0u);
  EXPECT_EQ(result, physical_interface(6, 84));
  numbered({1269});
  EXPECT_EQ(last(physical_interface(6, 0)), 0u);
  EXPECT_EQ(result, physical_interface(6, 253));
}

TEST_F(LastInterface, OnLineCardFourWithoutThem) {
  numbered({1016, 1023});
  EXPECT_EQ(last(physical_interface(6, 0)), 0u);
  EXPECT_EQ(result, physical_interface(6, 7));
}

TEST_F(LastInterface, OwnFetchDecides) {
  numbered({10, 100});
  at_own_port_fetch([&] { numbered({200}); });
  EXPECT_EQ(last(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 200));
}

// Falls out of the walk, when the table no longer agrees with the look-up.
TEST_F(LastInterface, WithoutAnyNumberedPortThePositionBeforeTheOwnAnswers) {
  numbered({10});
  at_own_port_fetch([&] { map.entry(10, 512, 512, {}); });
  EXPECT_EQ(last(kPort10), 0u);
  EXPECT_EQ(result, physical_interface(0, 9));
}

TEST_F(LastInterface, WithoutAnyNumberedPortPositionZeroWrapsTo255) {
  numbered({254, 10});
  at_own_port_fetch([&] { map.entry(254, 512, 512, {}); });
  EXPECT_EQ(last(physical_interface(1, 0)), 0u);
  EXPECT_EQ(result, physical_interface(1, 255));
  EXPECT_EQ(platform.calls().back(), "if_index_phy_fc_port_init(1, 255, 0)");
}

TEST_F(LastInterface, InterfaceWithoutNumberOrAddressIsRefused) {
  numbered({11});
  map.entry(10, 512, 10, {10});
  EXPECT_EQ(last(kPort10), kInvalidArg);
  map.entry(10, 10, 512, {10});
  EXPECT_EQ(last(kPort10), kInvalidArg);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 3"), 2); // the two look-ups' own
}

TEST_F(LastInterface, IndexBeyondThePhysicalPortsGivesThePlainEleven) {
  map.bind(30, 0x4000001).entry(1030, 30, 31, {});
  EXPECT_EQ(last(0x4000001), 11u);
  EXPECT_EQ(last(physical_interface(6, 8)), 11u);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(LastInterface, RefusedOwnFetchIsPassedOnWithoutAReport) {
  numbered({10, 11});
  refuse_own_port_fetch();
  const auto reports = reports_of([&] { EXPECT_EQ(last(kPort10), kNoMemory); });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x100000a, slot:1base1, port:11base1, port-number:10\n",
                                   "printed " + allocation_warning(1453, 25600)));
  EXPECT_EQ(result, kUntouched32);
}

// Slots of an unknown chassis convert into more line cards than convert back.
TEST_F(LastInterface, CardThatDoesNotConvertBackIsPassedOn) {
  platform.set_chassis(5, 5);
  numbered({762});
  EXPECT_EQ(last(physical_interface(3, 0)), kInvalidArg);
  EXPECT_EQ(result, kUntouched32);
  numbered({763});
  EXPECT_EQ(next(physical_interface(3, 0)), kInvalidArg);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(LastInterface, StatusOfTheInterfaceServiceIsPassedOnSilently) {
  numbered({10});
  platform.fail_port_init(0, 10, 77);
  const auto reports = reports_of([&] { EXPECT_EQ(last(kPort10), 77u); });
  EXPECT_EQ(reports.size(), 1u);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(LastInterface, NullResultAddressIsHandedToTheInterfaceService) {
  numbered({10});
  EXPECT_EQ(ficon_pmap_get_last_if(kPort10, nullptr), 14);
  EXPECT_EQ(platform.calls().back(), "if_index_phy_fc_port_init(NULL, 0, 10, 0)");
}

TEST_F(LastInterface, StatusesOfTheLookUpArePassedOn) {
  numbered({10});
  output_of([&] { EXPECT_EQ(last(0x200000A), 11u); });
  EXPECT_EQ(last(0x4000001), kNotAssociated);
  platform.interface(kPort10).channel = 1;
  output_of([&] { EXPECT_EQ(last(kPort10), kLagMember); });
  platform.interface(kPort10).lag_status = 0x40470005; // nothing written: no number
  output_of([&] { EXPECT_EQ(last(kPort10), kInvalidArg); });
  platform.interface(kPort10).type_status = 77;
  output_of([&] { EXPECT_EQ(last(kPort10), 77u); });
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

// ---- address to interface ----

class AddressToInterface : public PortMapTest {
 protected:
  // Address 9 stands for port number 7 in VSAN 10 and for 8 in VSAN 20; both numbers are carried twice, so that the second
  // step needs the VSAN as much as the first.
  void share_address() {
    map.entry(5, 7, 9, {10}, 10).entry(6, 8, 9, {20}, 20).entry(15, 7, 17, {20}, 20).entry(16, 8, 18, {10}, 10);
  }

  uint32_t result = kUntouched32;
};

TEST_F(AddressToInterface, AddressAloneFetchesForBothSteps) {
  map.entry(5, 7, 9, {10}, 10);
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), 0u); });
  EXPECT_EQ(result, physical_interface(0, 5));
  EXPECT_THAT(
      reports,
      ElementsAre("trace ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(7) pa(9) (5) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(1) Bound(0) Bound PN(9) Vsan(0) In Vsan(0) gvp(0) "
                  "vsan_pn(9)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2254) pn(7) inst if(0x1000005) vsans(10 0 0 0 0 0 0 0)\n",
                  "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(0) Bound If(0) Vsan(0) In Vsan(0) "
                  "gvp(0) vsan_if(0)\n"));
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstPortFetch,
                                         kFirstInterfaceFetch,
                                         kPortFetch,
                                         kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)",
                                          "lagmap_get_port(0x1000005)"}})));
}

TEST_F(AddressToInterface, AddressAndVsanFetchForBothSteps) {
  share_address();
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(9, 10, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 5));
  EXPECT_THAT(
      platform.calls(),
      ElementsAreArray(sequence(
          {kFirstPortFetch,
           kFirstVsanFetch,
           kFirstInterfaceFetch,
           kPortFetch,
           kVsanFetch,
           kFirstSlotConversion,
           {"if_index_phy_fc_port_init(0, 15, 0)", "portidx_port_by_if_index(0x100000f)", "lagmap_get_port(0x100000f)"},
           kSlotConversion,
           {"if_index_phy_fc_port_init(0, 5, 0)", "portidx_port_by_if_index(0x1000005)", "lagmap_get_port(0x1000005)"}})));
}

TEST_F(AddressToInterface, VsanGoesToBothSteps) {
  share_address();
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(9, 20, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 6));
  EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), kMultiIf);
}

TEST_F(AddressToInterface, FastFormsNeverAskTheElementDatabase) {
  share_address();
  cache_map();
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(9, 20, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 6));
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(9, 10, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 5));
  result = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_pa_to_if_fast(9, &result), kMultiIf);
  EXPECT_EQ(result, kUntouched32);

  map.entry(50, 70, 90, {30}, 30);
  cache_map();
  EXPECT_EQ(ficon_pmap_get_pa_to_if_fast(90, &result), 0u);
  EXPECT_EQ(result, physical_interface(0, 50));
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
}

TEST_F(AddressToInterface, VsanIsPassedWhole) {
  share_address();
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(9, 0x1000A, &result), kPlatform);
  cache_map();
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(9, 0x1000A, &result), kPlatform);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(AddressToInterface, FastFormsMindTheFastPathFlag) {
  share_address();
  cache_map(0);
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(9, 10, &result), 0u); });
  EXPECT_EQ(
      reports.back(),
      "trace ficon_pmap_get_pn_to_if_withpvsan(2286): Count(2) Bound(1) Bound If(0x1000005) Vsan(10) In Vsan(0) gvp(0) "
      "vsan_if(0)\n");
}

TEST_F(AddressToInterface, UntranslatableAddressEndsWithTheFirstStep) {
  share_address();
  cache_map();
  platform.forget_calls();
  EXPECT_EQ(ficon_pmap_get_pa_to_if(3, &result), kPlatform);   // carried by nothing
  EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), kMultiIf);    // carried twice
  EXPECT_EQ(ficon_pmap_get_pa_to_if(254, &result), kPlatform); // the control unit port
  EXPECT_EQ(ficon_pmap_get_pa_to_if(255, &result), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(3, 10, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(9, 30, &result), kPlatform); // in no such VSAN
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(255, 10, &result), kPaRange);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0); // the second step's first fetch
  EXPECT_EQ(ficon_pmap_get_pa_to_if_fast(3, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_to_if_fast(255, &result), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(3, 10, &result), kPlatform);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(255, 10, &result), kPaRange);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

// The first step then hands a number back, but its status counts.
TEST_F(AddressToInterface, AmbiguousAddressWithANumberEndsWithTheFirstStep) {
  map.entry(5, 7, 9, {20}, 10).entry(6, 8, 9, {20}, 10);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(9, 10, &result), kMultiIf);
  EXPECT_EQ(result, kUntouched32);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);
}

TEST_F(AddressToInterface, StatusAndResultOfTheSecondStepAreHandedBack) {
  map.entry(5, 7, 9, {10}, 10);
  cache_map();
  platform.interface(physical_interface(0, 5)).channel = 1;
  for (const auto& answer :
       {ficon_pmap_get_pa_to_if(9, &result), ficon_pmap_get_pa_to_if_fast(9, &result),
        ficon_pmap_get_pa_vsan_to_if(9, 10, &result), ficon_pmap_get_pa_vsan_to_if_fast(9, 10, &result)}) {
    EXPECT_EQ(answer, kNoIf);
  }
  EXPECT_EQ(result, 0u);
}

TEST_F(AddressToInterface, NumberAnsweredByABoundInterface) {
  map.entry(5, 7, 9, {10}, 10).bind(7, 0x4000001);
  EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), 0u);
  EXPECT_EQ(result, 0x4000001u);
}

TEST_F(AddressToInterface, EntryWithAddressButWithoutNumberIsOutOfTheSecondStepsRange) {
  map.entry(5, 512, 9, {10}, 10);
  EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), kPnRange);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(AddressToInterface, NullResultAddressIsRefusedByTheSecondStep) {
  map.entry(5, 7, 9, {10}, 10);
  cache_map();
  platform.forget_calls();
  EXPECT_EQ(ficon_pmap_get_pa_to_if(9, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if(9, 10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_to_if_fast(9, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_if_fast(9, 10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_to_if(3, nullptr), kPlatform); // the first step needs it not
}

TEST_F(AddressToInterface, FreshLibraryAnswersAddressRange) {
  map.entry(5, 7, 9, {10}, 10);
  know_ports(0);
  EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), kPaRange);
  EXPECT_EQ(MAX_FICON_PORTS, 0);
  EXPECT_EQ(result, kUntouched32);
}

TEST_F(AddressToInterface, RefusedTablesArePassedOn) {
  map.entry(5, 7, 9, {10}, 10);
  platform.refuse_allocation(1);
  output_of([&] { EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), kNoMemory); }); // first step
  platform.refuse_type(3);
  output_of([&] { EXPECT_EQ(ficon_pmap_get_pa_to_if(9, &result), kNoMemory); }); // second step
  EXPECT_EQ(result, kUntouched32);
}

} // namespace
