// Port map index to interface: ficon_pmap_get_index_to_if_withpmap, ficon_pmap_get_index_to_if and
// ficon_pmap_get_index_to_phyif.
#include <limits>

#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class IndexToInterface : public PortMapTest {
 protected:
  uint32_t find(int32_t index, uint32_t pn, const uint32_t* table) {
    if_index = kUntouched32;
    return ficon_pmap_get_index_to_if_withpmap(index, pn, &if_index, table);
  }

  uint32_t find_fetching(int32_t index, uint32_t pn) {
    if_index = kUntouched32;
    return ficon_pmap_get_index_to_if(index, pn, &if_index);
  }

  uint32_t if_index = kUntouched32;
  std::vector<uint32_t> interfaces = std::vector<uint32_t>(254);
};

// ---- range ----

TEST_F(IndexToInterface, IndexAboveTheTableIsRefusedAndNothingIsAsked) {
  for (const int32_t index : {1280, 1281, std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(find(index, 7, nullptr), kInvalidArg) << index;
    EXPECT_EQ(if_index, kUntouched32);
  }
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(IndexToInterface, LastIndexOfTheTableIsLookedUpByNumber) {
  interfaces[7] = 0x4000001;
  EXPECT_EQ(find(1279, 7, interfaces.data()), 0u);
  EXPECT_EQ(if_index, 0x4000001u);
}

TEST_F(IndexToInterface, Index1023IsPhysicalAnd1024IsNot) {
  interfaces[7] = 0x4000001;
  EXPECT_EQ(find(1023, 7, interfaces.data()), 0u);
  EXPECT_EQ(if_index, physical_interface(6, 7));
  EXPECT_EQ(find(1024, 7, interfaces.data()), 0u);
  EXPECT_EQ(if_index, 0x4000001u);
}

// ---- physical indexes ----

TEST_F(IndexToInterface, PhysicalIndexBuildsTheInterfaceFromSlotAndPort) {
  EXPECT_EQ(find(1016, 7, nullptr), 0u);
  EXPECT_EQ(if_index, physical_interface(6, 0));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstSlotConversion, {"if_index_phy_fc_port_init(6, 0, 0)"}})));
}

TEST_F(IndexToInterface, EveryPhysicalIndexOfATenSlotChassis) {
  constexpr uint32_t kSlotOfCard[] = {0, 1, 2, 3, 6};
  for (int32_t index = 0; index <= 1023; ++index) {
    ASSERT_EQ(find(index, 512, nullptr), 0u) << index;
    ASSERT_EQ(if_index, physical_interface(kSlotOfCard[index / 254], static_cast<uint32_t>(index % 254))) << index;
  }
}

TEST_F(IndexToInterface, SlotFollowsTheChassis) {
  struct row {
    int num_slots;
    int32_t type;
    int32_t index;
    uint32_t slot;
    uint32_t port;
  };
  constexpr row kRows[] = {{6, 34, 508, 4, 0}, {6, 34, 761, 4, 253}, {6, 34, 762, 5, 0},   {6, 5, 762, 3, 0},
                           {9, 5, 1016, 6, 0}, {13, 38, 1016, 4, 0}, {18, 38, 1023, 4, 7}, {1, 5, 253, 0, 253},
                           {2, 5, 254, 1, 0},  {7, 5, 1016, 4, 0}};
  for (const row& row : kRows) {
    make_library_fresh();
    platform.set_chassis(row.num_slots, row.type);
    EXPECT_EQ(find(row.index, 7, nullptr), 0u) << row.num_slots << ' ' << row.index;
    EXPECT_EQ(if_index, physical_interface(row.slot, row.port)) << row.num_slots << ' ' << row.index;
  }
}

TEST_F(IndexToInterface, NumberDoesNotMatterForAPhysicalIndex) {
  for (const uint32_t pn : {0u, 254u, 512u, 0xFFFFFFFFu}) {
    EXPECT_EQ(find(5, pn, nullptr), 0u) << pn;
    EXPECT_EQ(if_index, physical_interface(0, 5)) << pn;
  }
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
}

TEST_F(IndexToInterface, LineCardWithoutASlotIsRefused) {
  platform.set_chassis(6, 5); // line cards 0 to 3
  const auto reports = reports_of([&] { EXPECT_EQ(find(1016, 7, nullptr), kInvalidArg); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(IndexToInterface, UnknownPlatformIsPassedOnWithoutAReport) {
  platform.info_answer = {-1, 5};
  const auto reports = reports_of([&] { EXPECT_EQ(find(5, 7, nullptr), kPlatform); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToInterface, UnknownChassisTypeIsPassedOnWithItsReport) {
  platform.chassis_answer = {-1, 6};
  const auto reports = reports_of([&] { EXPECT_EQ(find(5, 7, nullptr), kPlatform); });
  EXPECT_THAT(reports, ElementsAre("error hwinv_get_chassis_type failed, errno = 6",
                                   "printed FICON_ERR: hwinv_get_chassis_type failed, errno = 6"));
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToInterface, PlatformRecordThatCannotBeCachedIsAPlatformFailure) {
  platform.refuse_type(5);
  const auto reports = reports_of([&] { EXPECT_EQ(find(5, 7, nullptr), kPlatform); });
  EXPECT_THAT(reports, ElementsAre("printed " + allocation_warning(81, 8)));
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToInterface, StatusOfTheInterfaceServiceIsPassedOnWithoutAReport) {
  platform.fail_port_init(0, 5, 77);
  const auto reports = reports_of([&] { EXPECT_EQ(find(5, 7, nullptr), 77u); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToInterface, NegativeStatusOfTheInterfaceServiceIsPassedOn) {
  platform.fail_port_init(0, 5, -2);
  EXPECT_EQ(find(5, 7, nullptr), 0xFFFFFFFEu);
}

TEST_F(IndexToInterface, NullResultAddressIsHandedToTheInterfaceService) {
  EXPECT_EQ(ficon_pmap_get_index_to_if_withpmap(1023, 7, nullptr, nullptr), 14u);
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstSlotConversion, {"if_index_phy_fc_port_init(NULL, 6, 7, 0)"}})));
}

// Only the upper bound is tested. The division goes towards 0, and line card and port are cut to 8 bits.
TEST_F(IndexToInterface, NegativeIndexIsNotRejected) {
  EXPECT_EQ(find(-1, 7, nullptr), 0u);
  EXPECT_EQ(if_index, physical_interface(0, 255));
  EXPECT_EQ(find(-253, 7, nullptr), 0u);
  EXPECT_EQ(if_index, physical_interface(0, 3));
}

TEST_F(IndexToInterface, NegativeIndexBelowACardNamesALineCardThatIsNotThere) {
  EXPECT_EQ(find(-254, 7, nullptr), kInvalidArg);
  EXPECT_EQ(find(std::numeric_limits<int32_t>::min(), 7, nullptr), kInvalidArg);
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToInterface, NegativeIndexOnAChassisWithAllSlots) {
  platform.set_chassis(255, 5);
  EXPECT_EQ(find(-1016 - 2, 7, nullptr), 0u); // line card -4 as 8 bits is 252, the last one
  EXPECT_EQ(if_index, physical_interface(252, 254));
}

// ---- indexes beyond the physical ports ----

TEST_F(IndexToInterface, IndexBeyondThePhysicalPortsNeedsANumber) {
  const auto reports = reports_of([&] {
    EXPECT_EQ(find(1024, 512, nullptr), kInvalidArg);
    EXPECT_EQ(if_index, kUntouched32);
    EXPECT_EQ(find(1279, 512, interfaces.data()), kInvalidArg);
    EXPECT_EQ(if_index, kUntouched32);
  });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(IndexToInterface, GivenTableAnswersWithoutAnyCall) {
  interfaces[253] = 0x4000001;
  map.bind(253, 0x4000002);
  EXPECT_EQ(find(1100, 253, interfaces.data()), 0u);
  EXPECT_EQ(if_index, 0x4000001u);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(IndexToInterface, NumberWithoutAnInterfaceStoresZero) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(1024, 7, interfaces.data()), kPlatform); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, 0u);
}

TEST_F(IndexToInterface, NumberIsNotComparedWithTheNumberOfPorts) {
  interfaces.resize(70000);
  interfaces[600] = 0x4000001;
  interfaces[65536 + 512] = 0x4000002;
  EXPECT_EQ(find(1024, 600, interfaces.data()), 0u);
  EXPECT_EQ(if_index, 0x4000001u);
  // Not the number that marks a missing one, although its low 16 bits are.
  EXPECT_EQ(find(1024, 65536 + 512, interfaces.data()), 0u);
  EXPECT_EQ(if_index, 0x4000002u);
}

TEST_F(IndexToInterface, WithoutATableTheInterfacesAreFetched) {
  map.bind(7, 0x4000001);
  EXPECT_EQ(find(1024, 7, nullptr), 0u);
  EXPECT_EQ(if_index, 0x4000001u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(kFirstInterfaceFetch));

  map.bind(7, 0x4000002);
  EXPECT_EQ(find(1024, 7, nullptr), 0u);
  EXPECT_EQ(if_index, 0x4000002u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, kInterfaceFetch})));
}

TEST_F(IndexToInterface, FetchedTableWithoutAnInterfaceStoresZero) {
  EXPECT_EQ(find(1024, 7, nullptr), kPlatform);
  EXPECT_EQ(if_index, 0u);
}

TEST_F(IndexToInterface, RefusedTableIsReportedAndPassedOn) {
  platform.refuse_type(3);
  const auto reports = reports_of([&] { EXPECT_EQ(find(1024, 7, nullptr), kNoMemory); });
  EXPECT_THAT(reports, ElementsAre("error ficon_pmap_get_index_to_if_withpmap(2580):failed to get pmap_pnif 1\n",
                                   "printed " + allocation_warning(1530, 1016) +
                                       "FICON_ERR: ficon_pmap_get_index_to_if_withpmap(2580):failed to get pmap_pnif 1\n"));
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToInterface, UnknownNumberOfPortsIsReportedAndPassedOn) {
  hide_ports();
  const auto reports = reports_of([&] { EXPECT_EQ(find(1024, 7, nullptr), kPlatform); });
  EXPECT_THAT(reports,
              ElementsAre("error get_platform_info failed, errno = 5",
                          "error ficon_pmap_get_index_to_if_withpmap(2580):failed to get pmap_pnif 1082458122\n",
                          "printed FICON_ERR: get_platform_info failed, errno = 5"
                          "FICON_ERR: ficon_pmap_get_index_to_if_withpmap(2580):failed to get pmap_pnif 1082458122\n"));
  EXPECT_EQ(if_index, kUntouched32);
}

// Four bytes a port: the size of such a table does not fit the 32 bits that an allocation can ask for.
TEST_F(IndexToInterface, TableTooLargeToAllocateIsReportedAndPassedOn) {
  know_ports(0x40000000);
  const auto reports = reports_of([&] { EXPECT_EQ(find(1024, 7, nullptr), kNoMemory); });
  EXPECT_EQ(reports.at(0), "error ficon_pmap_get_index_to_if_withpmap(2580):failed to get pmap_pnif 1\n");
  EXPECT_EQ(if_index, kUntouched32);
  EXPECT_THAT(platform.calls(), IsEmpty());
  EXPECT_EQ(ficon_pmap_pn_to_logif, nullptr);
}

// ---- the wrapper ----

TEST_F(IndexToInterface, WrapperPassesIndexAndNumberAndNoTable) {
  map.bind(7, 0x4000001);
  EXPECT_EQ(find_fetching(1024, 7), 0u);
  EXPECT_EQ(if_index, 0x4000001u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(kFirstInterfaceFetch));
  EXPECT_EQ(find_fetching(1015, 7), 0u);
  EXPECT_EQ(if_index, physical_interface(3, 253));
}

TEST_F(IndexToInterface, WrapperFetchesEvenWhenTheTableIsCached) {
  map.bind(7, 0x4000001);
  cache_map();
  map.bind(7, 0x4000002);
  EXPECT_EQ(find_fetching(1024, 7), 0u);
  EXPECT_EQ(if_index, 0x4000002u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(kInterfaceFetch));
}

TEST_F(IndexToInterface, WrapperHandsBackTheStatus) {
  EXPECT_EQ(find_fetching(1280, 7), kInvalidArg);
  EXPECT_EQ(find_fetching(1024, 512), kInvalidArg);
  EXPECT_EQ(if_index, kUntouched32);
  EXPECT_EQ(find_fetching(1024, 8), kPlatform);
  EXPECT_EQ(if_index, 0u);
}

// ---- physical interface of an index ----

class IndexToPhysicalInterface : public PortMapTest {
 protected:
  uint32_t find(int32_t index) {
    if_index = kUntouched32;
    return ficon_pmap_get_index_to_phyif(index, &if_index);
  }

  uint32_t if_index = kUntouched32;
};

TEST_F(IndexToPhysicalInterface, AsksForInterfacePortIndexAndPortChannelInThisOrder) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(1023), 0u); });
  EXPECT_EQ(if_index, physical_interface(6, 7));
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstSlotConversion,
                                         {"if_index_phy_fc_port_init(6, 7, 0)", "portidx_port_by_if_index(0x1000607)",
                                          "lagmap_get_port(0x1000607)"}})));
}

TEST_F(IndexToPhysicalInterface, EveryPhysicalIndexOfAnEighteenSlotChassis) {
  platform.set_chassis(18, 38);
  for (int32_t index = 0; index <= 1023; ++index) {
    ASSERT_EQ(find(index), 0u) << index;
    ASSERT_EQ(if_index, physical_interface(static_cast<uint32_t>(index / 254), static_cast<uint32_t>(index % 254)))
        << index;
  }
}

TEST_F(IndexToPhysicalInterface, IndexBeyondThePhysicalPortsIsRefused) {
  for (const int32_t index : {1024, 1279, std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(find(index), kInvalidArg) << index;
    EXPECT_EQ(if_index, kUntouched32) << index;
  }
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(IndexToPhysicalInterface, NegativeIndexIsNotRejected) {
  EXPECT_EQ(find(-1), 0u);
  EXPECT_EQ(if_index, physical_interface(0, 255));
  EXPECT_EQ(find(-254), kInvalidArg);
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToPhysicalInterface, LineCardWithoutASlotIsRefusedSilently) {
  platform.set_chassis(6, 5);
  const auto reports = reports_of([&] { EXPECT_EQ(find(1016), kInvalidArg); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, kUntouched32);
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init"), 0);
}

TEST_F(IndexToPhysicalInterface, UnknownChassisTypeIsPassedOnWithItsReport) {
  platform.chassis_answer = {-1, 6};
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), kPlatform); });
  EXPECT_THAT(reports, ElementsAre("error hwinv_get_chassis_type failed, errno = 6",
                                   "printed FICON_ERR: hwinv_get_chassis_type failed, errno = 6"));
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToPhysicalInterface, UnknownPlatformIsPassedOn) {
  platform.info_answer = {-1, 5};
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), kPlatform); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, kUntouched32);
}

TEST_F(IndexToPhysicalInterface, InterfaceThatCannotBeBuiltIsReported) {
  platform.fail_port_init(3, 253, 77);
  const auto reports = reports_of([&] { EXPECT_EQ(find(1015), 77u); });
  EXPECT_THAT(reports, ElementsAre("error Failed to compute ifindex for index 1015(0x4d)\n",
                                   "printed FICON_ERR: Failed to compute ifindex for index 1015(0x4d)\n"));
  EXPECT_EQ(if_index, kUntouched32);
  EXPECT_EQ(platform.count("portidx_port_by_if_index"), 0);
}

TEST_F(IndexToPhysicalInterface, NegativeStatusOfTheInterfaceServiceIsAFailureToo) {
  platform.fail_port_init(0, 5, -2);
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), 0xFFFFFFFEu); });
  EXPECT_THAT(reports, ElementsAre("error Failed to compute ifindex for index 5(0xfffffffe)\n",
                                   "printed FICON_ERR: Failed to compute ifindex for index 5(0xfffffffe)\n"));
  EXPECT_EQ(platform.count("portidx_port_by_if_index"), 0);
}

TEST_F(IndexToPhysicalInterface, NullResultAddressIsHandedToTheInterfaceService) {
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_index_to_phyif(5, nullptr), 14u); });
  EXPECT_THAT(reports, ElementsAre("error Failed to compute ifindex for index 5(0xe)\n",
                                   "printed FICON_ERR: Failed to compute ifindex for index 5(0xe)\n"));
  EXPECT_EQ(platform.count("if_index_phy_fc_port_init(NULL, 0, 5, 0)"), 1);
}

TEST_F(IndexToPhysicalInterface, PortThatIsNotThereHasNoInterface) {
  platform.interface(0x1000005).portidx_status = kPortidxNoPort;
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), kNoIf); });
  EXPECT_THAT(reports, ElementsAre("trace portidx lookup failed for IfIndex 1000005 with err (1078329346)\n"));
  EXPECT_EQ(if_index, 0u);
  EXPECT_EQ(platform.count("lagmap_get_port"), 0);
}

TEST_F(IndexToPhysicalInterface, OtherFailureOfThePortIndexIsPassedOn) {
  platform.interface(0x1000005).portidx_status = 0x40460009;
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), 0x40460009u); });
  EXPECT_THAT(reports, ElementsAre("trace portidx lookup failed for IfIndex 1000005 with err (1078329353)\n"));
  EXPECT_EQ(if_index, 0u);
  EXPECT_EQ(platform.count("lagmap_get_port"), 0);
}

TEST_F(IndexToPhysicalInterface, SmallAndNegativeStatusesOfThePortIndexArePassedOnToo) {
  for (const int status : {1, -1}) {
    platform.interface(0x1000005).portidx_status = status;
    EXPECT_EQ(find(5), static_cast<uint32_t>(status));
    EXPECT_EQ(if_index, 0u);
  }
}

// "portthats" is what log parsers match.
TEST_F(IndexToPhysicalInterface, PortChannelMemberIsTracedWithItsOddSpelling) {
  platform.interface(0x1000005).channel = 1;
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), kLagMember); });
  EXPECT_THAT(reports, ElementsAre("trace Index :5 is a portthats part of port-channel\n"));
  EXPECT_EQ(if_index, 0u);
}

TEST_F(IndexToPhysicalInterface, NotAMemberStatusIsNoMembership) {
  platform.interface(0x1000005).lag_status = kLagmapNotMember;
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), 0u); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_EQ(if_index, physical_interface(0, 5));
}

TEST_F(IndexToPhysicalInterface, FailingPortChannelServiceIsReportedAndTheInterfaceStays) {
  platform.interface(0x1000005).lag_status = 0x40470007;
  const auto reports = reports_of([&] { EXPECT_EQ(find(5), kPlatform); });
  EXPECT_THAT(reports, ElementsAre("error lagmap_get_port failed: if_index:0x1000005\n",
                                   "printed FICON_ERR: lagmap_get_port failed: if_index:0x1000005\n"));
  EXPECT_EQ(if_index, physical_interface(0, 5));
}

TEST_F(IndexToPhysicalInterface, ServicesAreAskedAboutTheInterfaceThatWasBuilt) {
  platform.override_port_init(0, 5, 0xFEDCBA98);
  EXPECT_EQ(find(5), 0u);
  EXPECT_EQ(if_index, 0xFEDCBA98u);
  EXPECT_EQ(platform.count("portidx_port_by_if_index(0xfedcba98)"), 1);
  EXPECT_EQ(platform.count("lagmap_get_port(0xfedcba98)"), 1);
}

} // namespace
