// Interface to port number, address and index: ficon_pmap_get_if_to_pnpa_index_with2pmaps and its wrappers.
#include <ios>
#include <ostream>

#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct found {
  uint32_t status;
  ficon_pmap_port_entry entry;
  uint32_t index;
  bool operator==(const found&) const = default;
};

void PrintTo(const found& found, std::ostream* stream) {
  *stream << std::hex << "{status 0x" << found.status << std::dec << ", entry ";
  ::PrintTo(found.entry, stream);
  *stream << ", index " << found.index << '}';
}

found nothing(uint32_t status) {
  return {status, kUntouchedEntry, kUntouched32};
}

// What a logical interface is answered with: its entry's VSANs are left alone.
found numbers(uint16_t pn, uint16_t pa, uint32_t index) {
  found numbers = {0, kUntouchedEntry, index};
  numbers.entry.pn = pn;
  numbers.entry.pa = pa;
  return numbers;
}

constexpr uint32_t kPort5 = 0x1000005;    // slot 0, port 5
constexpr uint32_t kChannel1 = 0x4000001; // type 4
constexpr uint32_t kTunnel1 = 0xA000001;  // type 10

class InterfaceToNumber : public PortMapTest {
 protected:
  // The core with both tables given.
  found find(uint32_t if_index, int32_t skip_lag_check = 0) {
    return find_with(if_index, map.pn_to_if.data(), map.port_to_pn.data(), skip_lag_check);
  }

  static found find_with(uint32_t if_index, const uint32_t* pn_to_if, const ficon_pmap_port_entry* port_to_pn,
                         int32_t skip_lag_check = 0) {
    found found = nothing(0);
    found.status = static_cast<uint32_t>(ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &found.entry, &found.index,
                                                                                    pn_to_if, port_to_pn, skip_lag_check));
    return found;
  }
};

// ---- arguments ----

TEST_F(InterfaceToNumber, NullEntryIsRefusedBeforeAnythingElse) {
  uint32_t index = kUntouched32;
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_index_with2pmaps(kPort5, nullptr, &index, nullptr, nullptr, 0), 0x40850003);
  EXPECT_EQ(index, kUntouched32);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// ---- tables ----

TEST_F(InterfaceToNumber, WithoutTablesFetchesInterfacesThenPorts) {
  map.entry(5, 7, 9, {10, 20}, 10);
  EXPECT_EQ(find_with(kPort5, nullptr, nullptr), (found{0, make_entry(7, 9, {10, 20}), 5}));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch,
                                                           kFirstPortFetch,
                                                           {"if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)",
                                                            "if_index_get_port(0x1000005)", "lagmap_get_port(0x1000005)"},
                                                           kFirstSlotConversion})));
}

TEST_F(InterfaceToNumber, EveryCallWithoutTablesFetchesAnew) {
  map.entry(5, 7, 9, {10}, 10);
  ASSERT_EQ(find_with(kPort5, nullptr, nullptr).entry.pn, 7);
  map.entry(5, 8, 10, {20}, 10);
  platform.forget_calls();
  EXPECT_EQ(find_with(kPort5, nullptr, nullptr), (found{0, make_entry(8, 10, {20}), 5}));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kInterfaceFetch,
                                                           kPortFetch,
                                                           {"if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)",
                                                            "if_index_get_port(0x1000005)", "lagmap_get_port(0x1000005)"},
                                                           kSlotConversion})));
}

TEST_F(InterfaceToNumber, GivenInterfaceTableIsNotFetched) {
  const std::vector<uint32_t> given = [] {
    std::vector<uint32_t> table(254);
    table[30] = kChannel1;
    return table;
  }();
  map.bind(40, kChannel1).entry(1030, 30, 31, {}).entry(1040, 40, 41, {});
  EXPECT_EQ(find_with(kChannel1, given.data(), nullptr), numbers(30, 31, 1030));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstPortFetch, {"if_index_get_type(0x4000001)"}})));
}

TEST_F(InterfaceToNumber, GivenPortTableIsNotFetched) {
  const auto given = map.bind(30, kChannel1).entry(1030, 30, 31, {}).entry(5, 7, 9, {10}).port_to_pn;
  map.entry(1030, 512, 512, {}).entry(5, 8, 10, {20});
  EXPECT_EQ(find_with(kChannel1, nullptr, given.data()), numbers(30, 31, 1030));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, {"if_index_get_type(0x4000001)"}})));
  EXPECT_EQ(find_with(kPort5, nullptr, given.data()), (found{0, make_entry(7, 9, {10}), 5}));
}

TEST_F(InterfaceToNumber, GivenTablesNeedNoFetchAndNoNumberOfPorts) {
  map.entry(5, 7, 9, {10});
  know_ports(0);
  EXPECT_EQ(find(kPort5), (found{0, make_entry(7, 9, {10}), 5}));
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

TEST_F(InterfaceToNumber, RefusedInterfaceTableIsReportedAndPassedOn) {
  platform.refuse_type(3);
  const auto reports = reports_of([&] { EXPECT_EQ(find_with(kPort5, nullptr, nullptr), nothing(kNoMemory)); });
  EXPECT_THAT(reports,
              ElementsAre("error ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1\n",
                          "printed " + allocation_warning(1530, 1016) +
                              "FICON_ERR: ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1\n"));
  EXPECT_THAT(platform.calls(), ElementsAre("memacct_alloc(206, 3, 1016)"));
}

TEST_F(InterfaceToNumber, UnknownNumberOfPortsIsReportedAndPassedOn) {
  hide_ports();
  const auto reports = reports_of([&] { EXPECT_EQ(find_with(kPort5, nullptr, nullptr), nothing(kPlatform)); });
  EXPECT_THAT(
      reports,
      ElementsAre("error get_platform_info failed, errno = 5",
                  "error ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1082458122\n",
                  "printed FICON_ERR: get_platform_info failed, errno = 5"
                  "FICON_ERR: ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif 1082458122\n"));
}

TEST_F(InterfaceToNumber, RefusedPortTableIsReportedAndPassedOn) {
  platform.refuse_type(5);
  const auto reports = reports_of([&] { EXPECT_EQ(find_with(kPort5, nullptr, nullptr), nothing(kNoMemory)); });
  EXPECT_THAT(reports,
              ElementsAre("error ficon_pmap_get_if_to_pnpa_index_with2pmaps(2894):failed to get pmap_portpn 1\n",
                          "printed " + allocation_warning(1453, 25600) +
                              "FICON_ERR: ficon_pmap_get_if_to_pnpa_index_with2pmaps(2894):failed to get pmap_portpn 1\n"));
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, {"memacct_alloc(206, 5, 25600)"}})));
}

// ---- type, slot and port ----

TEST_F(InterfaceToNumber, UnknownTypeIsReportedAndPassedOn) {
  platform.interface(kPort5).type_status = 77;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(77)); });
  EXPECT_THAT(reports, ElementsAre("error failed to get if type for if_index:0x1000005 (77)\n",
                                   "printed FICON_ERR: failed to get if type for if_index:0x1000005 (77)\n"));
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x1000005)"));
}

TEST_F(InterfaceToNumber, OtherTypeIsReportedAndRefusedWithThePlainEleven) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(0x2000005), nothing(11)); });
  EXPECT_THAT(reports, ElementsAre("error if_index 0x2000005 not fc port. type = 2\n",
                                   "printed FICON_ERR: if_index 0x2000005 not fc port. type = 2\n"));
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x2000005)"));
}

TEST_F(InterfaceToNumber, EveryTypeButThreeIsRefused) {
  for (int type = 0; type <= 255; ++type) {
    if (type == 1 || type == 4 || type == 10) continue;
    platform.interface(kPort5).type = static_cast<uint8_t>(type);
    const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(11)); });
    ASSERT_EQ(reports.at(0), "error if_index 0x1000005 not fc port. type = " + std::to_string(type) + "\n");
  }
}

TEST_F(InterfaceToNumber, UnknownSlotIsReportedAndPassedOn) {
  platform.interface(kPort5).slot_status = 78;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(78)); });
  EXPECT_THAT(reports, ElementsAre("error Failed to get slot for if_index 0x1000005 (78)\n",
                                   "printed FICON_ERR: Failed to get slot for if_index 0x1000005 (78)\n"));
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)"));
}

TEST_F(InterfaceToNumber, UnknownPortIsReportedAndPassedOn) {
  platform.interface(kPort5).port_status = -79;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(0xFFFFFFB1)); });
  EXPECT_THAT(reports, ElementsAre("error Failed to get port for if_index 0x1000005 (-79)\n",
                                   "printed FICON_ERR: Failed to get port for if_index 0x1000005 (-79)\n"));
  EXPECT_THAT(platform.calls(),
              ElementsAre("if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)", "if_index_get_port(0x1000005)"));
}

TEST_F(InterfaceToNumber, NegativeStatusesAreFailuresToo) {
  platform.interface(kPort5).slot_status = -78;
  auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(0xFFFFFFB2)); });
  EXPECT_EQ(reports.at(0), "error Failed to get slot for if_index 0x1000005 (-78)\n");
  platform.interface(kPort5).type_status = -77;
  reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(0xFFFFFFB3)); });
  EXPECT_EQ(reports.at(0), "error failed to get if type for if_index:0x1000005 (-77)\n");
}

TEST_F(InterfaceToNumber, PositiveStatusOfThePortIsAFailureToo) {
  platform.interface(kPort5).port_status = 79;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(79)); });
  EXPECT_EQ(reports.at(0), "error Failed to get port for if_index 0x1000005 (79)\n");
}

// ---- physical ports ----

TEST_F(InterfaceToNumber, PhysicalPortYieldsItsWholeEntryAndIsTracedFromOne) {
  map.entry(1016, 7, 9, {1, 2, 3, 4, 5, 6, 7, 8});
  const auto reports = reports_of([&] {
    EXPECT_EQ(find(0x1000600), (found{0, make_entry(7, 9, {1, 2, 3, 4, 5, 6, 7, 8}), 1016}));
  });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x1000600, slot:7base1, port:1base1, port-number:7\n"));
}

TEST_F(InterfaceToNumber, PhysicalPortWithoutANumberIsAnsweredAllTheSame) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), (found{0, make_entry(512, 512), 5})); });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x1000005, slot:1base1, port:6base1, port-number:512\n"));
}

TEST_F(InterfaceToNumber, NotAMemberStatusIsNoMembership) {
  map.entry(5, 7, 9, {10});
  platform.interface(kPort5).lag_status = kLagmapNotMember;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), (found{0, make_entry(7, 9, {10}), 5})); });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x1000005, slot:1base1, port:6base1, port-number:7\n"));
}

TEST_F(InterfaceToNumber, PortChannelQueryStartsWithoutAChannel) {
  find(kPort5);
  ASSERT_EQ(platform.lag_queries().size(), 1u);
  EXPECT_EQ(platform.lag_queries()[0].if_index, kPort5);
  EXPECT_EQ(platform.lag_queries()[0].channel, 0u);
}

// A port above 253 is not rejected: it reads the next line card's entries.
TEST_F(InterfaceToNumber, PortAboveTheLineCardsBlockIsNotRejected) {
  map.entry(255, 7, 9, {10});
  const auto reports = reports_of([&] { EXPECT_EQ(find(0x10000FF), (found{0, make_entry(7, 9, {10}), 255})); });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x10000ff, slot:1base1, port:256base1, port-number:7\n"));
}

TEST_F(InterfaceToNumber, SupervisorSlotIsReportedAndPassedOn) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(0x1000400), nothing(kInvalidArg)); });
  EXPECT_THAT(reports, ElementsAre("error Invalid slot number for linecard 4 (1082458115)\n",
                                   "printed FICON_ERR: Invalid slot number for linecard 4 (1082458115)\n"));
}

TEST_F(InterfaceToNumber, SlotThatTheChassisDoesNotHaveIsReportedAndPassedOn) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(0x1000A00), nothing(kInvalidArg)); });
  EXPECT_THAT(reports, ElementsAre("error Invalid slot number for linecard 10 (1082458115)\n",
                                   "printed FICON_ERR: Invalid slot number for linecard 10 (1082458115)\n"));
}

TEST_F(InterfaceToNumber, UnknownPlatformIsReportedAndPassedOn) {
  platform.info_answer = {-1, 5};
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(kPlatform)); });
  EXPECT_THAT(reports, ElementsAre("error Invalid slot number for linecard 0 (1082458122)\n",
                                   "printed FICON_ERR: Invalid slot number for linecard 0 (1082458122)\n"));
}

TEST_F(InterfaceToNumber, UnknownChassisTypeIsReportedTwiceAndPassedOn) {
  platform.chassis_answer = {-1, 6};
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(kPlatform)); });
  EXPECT_THAT(reports, ElementsAre("error hwinv_get_chassis_type failed, errno = 6",
                                   "error Invalid slot number for linecard 0 (1082458122)\n",
                                   "printed FICON_ERR: hwinv_get_chassis_type failed, errno = 6"
                                   "FICON_ERR: Invalid slot number for linecard 0 (1082458122)\n"));
}

TEST_F(InterfaceToNumber, PlatformRecordThatCannotBeCachedIsReportedAndPassedOn) {
  platform.refuse_type(5);
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(kPlatform)); });
  EXPECT_THAT(reports, ElementsAre("error Invalid slot number for linecard 0 (1082458122)\n",
                                   "printed " + allocation_warning(81, 8) +
                                       "FICON_ERR: Invalid slot number for linecard 0 (1082458122)\n"));
}

// ---- without the port-channel check ----

TEST_F(InterfaceToNumber, SkippedCheckAsksNoServiceAndMakesNoTrace) {
  map.entry(5, 7, 9, {10});
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5, 1), (found{0, make_entry(7, 9, {10}), 5})); });
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({{"if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)",
                                                            "if_index_get_port(0x1000005)"},
                                                           kFirstSlotConversion})));
}

TEST_F(InterfaceToNumber, SkippedCheckAnswersAMemberLikeAnyPort) {
  map.entry(5, 7, 9, {10});
  platform.interface(kPort5).channel = 1;
  for (const int32_t skip : {1, 2, -1}) EXPECT_EQ(find(kPort5, skip), (found{0, make_entry(7, 9, {10}), 5})) << skip;
}

TEST_F(InterfaceToNumber, SkippedCheckReportsASlotWithoutALineCard) {
  const auto reports = reports_of([&] { EXPECT_EQ(find(0x1000505, 1), nothing(kInvalidArg)); });
  EXPECT_THAT(reports, ElementsAre("error Invalid slot number for linecard 5 (1082458115)\n",
                                   "printed FICON_ERR: Invalid slot number for linecard 5 (1082458115)\n"));
}

TEST_F(InterfaceToNumber, SkippedCheckDoesNotMatterForALogicalInterface) {
  map.bind(30, kChannel1).entry(1030, 30, 31, {});
  EXPECT_EQ(find(kChannel1, 1), numbers(30, 31, 1030));
}

// ---- the lenient outcome ----

// Clients rely on success with nothing written when the port-channel service fails.
TEST_F(InterfaceToNumber, FailingPortChannelServiceWritesNothingAndSucceeds) {
  map.entry(5, 7, 9, {10});
  platform.interface(kPort5).lag_status = 0x40470005;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(0)); });
  EXPECT_THAT(reports, ElementsAre("error lagmap_get_port failed: if_index:0x1000005,rc:1078394885\n",
                                   "trace if_index:0x1000005, slot:1base1, port:6base1, port-number:61166\n",
                                   "printed FICON_ERR: lagmap_get_port failed: if_index:0x1000005,rc:1078394885\n"));
  EXPECT_EQ(platform.count("get_platform_info"), 0);
  EXPECT_EQ(platform.count("hwinv_get_chassis_type"), 0);
}

TEST_F(InterfaceToNumber, FailingPortChannelServiceHidesEvenASlotThatIsNotThere) {
  platform.interface(0x100FFFF).lag_status = -1;
  const auto reports = reports_of([&] { EXPECT_EQ(find(0x100FFFF), nothing(0)); });
  EXPECT_THAT(reports, ElementsAre("error lagmap_get_port failed: if_index:0x100ffff,rc:-1\n",
                                   "trace if_index:0x100ffff, slot:256base1, port:256base1, port-number:61166\n",
                                   "printed FICON_ERR: lagmap_get_port failed: if_index:0x100ffff,rc:-1\n"));
}

// ---- members of port-channels ----

TEST_F(InterfaceToNumber, MemberIsReportedAndAnsweredThroughItsBinding) {
  map.entry(5, 7, 9, {10}).bind(30, kPort5).entry(1030, 30, 31, {20});
  platform.interface(kPort5).channel = 1;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), numbers(30, 31, 1030)); });
  EXPECT_THAT(reports, ElementsAre("error if_index 0x1000005 is a port thats part of port-channel\n",
                                   "trace Found ifindex in pn to logif map for : 0x1000005\n ",
                                   "printed FICON_ERR: if_index 0x1000005 is a port thats part of port-channel\n"));
  EXPECT_EQ(platform.count("get_platform_info"), 0);
}

TEST_F(InterfaceToNumber, MemberWithoutABindingIsAMember) {
  map.entry(5, 7, 9, {10});
  platform.interface(kPort5).channel = 0x80000000;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), nothing(kLagMember)); });
  EXPECT_THAT(reports, ElementsAre("error if_index 0x1000005 is a port thats part of port-channel\n",
                                   "trace if_index:0x1000005 not associated\n",
                                   "printed FICON_ERR: if_index 0x1000005 is a port thats part of port-channel\n"));
}

TEST_F(InterfaceToNumber, MemberWhoseNumberIsNotReservedKeepsTheNumberAndIsAMember) {
  map.bind(30, kPort5).entry(5, 30, 31, {10});
  platform.interface(kPort5).channel = 1;
  found expected = nothing(kLagMember);
  expected.entry.pn = 30;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kPort5), expected); });
  EXPECT_THAT(reports, ElementsAre("error if_index 0x1000005 is a port thats part of port-channel\n",
                                   "trace Found ifindex in pn to logif map for : 0x1000005\n ",
                                   "trace if_index:0x1000005 not reserved\n", "trace if_index:0x1000005 not associated\n",
                                   "printed FICON_ERR: if_index 0x1000005 is a port thats part of port-channel\n"));
}

// ---- logical interfaces ----

TEST_F(InterfaceToNumber, LogicalInterfaceYieldsNumberAddressAndIndexOnly) {
  know_ports(400);
  map.bind(300, kChannel1).entry(1030, 300, 31, {20});
  const auto reports = reports_of([&] { EXPECT_EQ(find(kChannel1), numbers(300, 31, 1030)); });
  // The blank after the line end is part of the text.
  EXPECT_THAT(reports, ElementsAre("trace Found ifindex in pn to logif map for : 0x4000001\n "));
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x4000001)"));
}

TEST_F(InterfaceToNumber, BothLogicalTypesAreSearchedFor) {
  map.bind(30, kChannel1).entry(1030, 30, 31, {}).bind(40, kTunnel1).entry(1031, 40, 41, {});
  EXPECT_EQ(find(kChannel1), numbers(30, 31, 1030));
  EXPECT_EQ(find(kTunnel1), numbers(40, 41, 1031));
}

TEST_F(InterfaceToNumber, LogicalInterfaceNotInTheTableIsNotAssociated) {
  map.bind(30, 0x4000002).entry(1030, 30, 31, {});
  for (const uint32_t if_index : {kChannel1, kTunnel1}) EXPECT_EQ(find(if_index), nothing(kNotAssociated));
  const auto reports = reports_of([&] { find(kChannel1); });
  EXPECT_THAT(reports, ElementsAre("trace if_index:0x4000001 not associated\n"));
}

TEST_F(InterfaceToNumber, NumberThatIsNotReservedStaysInTheEntry) {
  // Carried by a physical port, by the last entry before the further ones too.
  map.bind(30, kChannel1).entry(5, 30, 31, {}).entry(1023, 30, 31, {});
  found expected = nothing(kNotAssociated);
  expected.entry.pn = 30;
  const auto reports = reports_of([&] { EXPECT_EQ(find(kChannel1), expected); });
  EXPECT_THAT(reports, ElementsAre("trace Found ifindex in pn to logif map for : 0x4000001\n ",
                                   "trace if_index:0x4000001 not reserved\n", "trace if_index:0x4000001 not associated\n"));
}

TEST_F(InterfaceToNumber, LowestNumberOfAnInterfaceAnswers) {
  map.bind(0, kChannel1).bind(1, kChannel1).entry(1024, 1, 11, {}).entry(1025, 0, 10, {});
  EXPECT_EQ(find(kChannel1), numbers(0, 10, 1025));
}

// The search does not go on when the first position's number is not reserved.
TEST_F(InterfaceToNumber, OnlyTheLowestNumberIsTried) {
  map.bind(20, kChannel1).bind(30, kChannel1).entry(1030, 30, 31, {});
  found expected = nothing(kNotAssociated);
  expected.entry.pn = 20;
  EXPECT_EQ(find(kChannel1), expected);
}

TEST_F(InterfaceToNumber, NumbersAreSearchedUpToTheNumberOfPorts) {
  map.bind(100, kChannel1).entry(1030, 100, 31, {});
  know_ports(101);
  EXPECT_EQ(find(kChannel1), numbers(100, 31, 1030));
  know_ports(100);
  EXPECT_EQ(find(kChannel1), nothing(kNotAssociated));
}

TEST_F(InterfaceToNumber, WithoutPortsKnownNothingIsSearched) {
  map.bind(0, kChannel1).entry(1024, 0, 31, {});
  for (const int32_t ports : {0, -1}) {
    know_ports(ports);
    const auto reports = reports_of([&] { EXPECT_EQ(find(kChannel1), nothing(kNotAssociated)) << ports; });
    EXPECT_THAT(reports, ElementsAre("trace if_index:0x4000001 not associated\n"));
  }
}

TEST_F(InterfaceToNumber, LowestReservedEntryAnswers) {
  map.bind(30, kChannel1).entry(1024, 30, 31, {}).entry(1279, 30, 32, {});
  EXPECT_EQ(find(kChannel1), numbers(30, 31, 1024));
  map.entry(1024, 512, 512, {});
  EXPECT_EQ(find(kChannel1), numbers(30, 32, 1279));
}

TEST_F(InterfaceToNumber, InterfaceZeroIsFoundAtTheFirstFreeNumber) {
  platform.interface(0).type = 4;
  map.bind(0, kChannel1).entry(1030, 1, 31, {});
  EXPECT_EQ(find(0), numbers(1, 31, 1030));
}

TEST_F(InterfaceToNumber, NumberAboveSixteenBitsIsComparedWholeAndStoredCut) {
  std::vector<uint32_t> pn_to_if(70000);
  pn_to_if[65536 + 30] = kChannel1;
  know_ports(70000);
  map.entry(1030, 30, 31, {});
  found expected = nothing(kNotAssociated);
  expected.entry.pn = 30;
  EXPECT_EQ(find_with(kChannel1, pn_to_if.data(), map.port_to_pn.data()), expected);
}

// ---- wrappers ----

class InterfaceToNumberWrapper : public PortMapTest {
 protected:
  static uint32_t status(int32_t plain) { return static_cast<uint32_t>(plain); }

  // Bound in this table only.
  InterfaceToNumberWrapper() : given(254) { given[30] = kChannel1; }

  void make_service_fail() { platform.interface(kPort5).lag_status = 0x40470005; }

  std::vector<uint32_t> given;
  ficon_pmap_port_entry entry = kUntouchedEntry;
  uint32_t index = kUntouched32;
  uint16_t number = kUntouched16;
};

TEST_F(InterfaceToNumberWrapper, WithpmapPassesTheInterfaceTableAndFetchesThePorts) {
  map.entry(1030, 30, 31, {});
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_index_withpmap(kChannel1, &entry, &index, given.data(), 0), 0);
  EXPECT_EQ(entry, numbers(30, 31, 0).entry);
  EXPECT_EQ(index, 1030u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstPortFetch, {"if_index_get_type(0x4000001)"}})));
}

TEST_F(InterfaceToNumberWrapper, WithpmapFetchesBothWithoutATable) {
  map.bind(40, kChannel1).entry(1040, 40, 41, {});
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_index_withpmap(kChannel1, &entry, &index, nullptr, 0), 0);
  EXPECT_EQ(entry, numbers(40, 41, 0).entry);
  EXPECT_EQ(index, 1040u);
  EXPECT_THAT(platform.calls(),
              ElementsAreArray(sequence({kFirstInterfaceFetch, kFirstPortFetch, {"if_index_get_type(0x4000001)"}})));
}

TEST_F(InterfaceToNumberWrapper, WithpmapPassesTheSkippedCheck) {
  map.entry(5, 7, 9, {10});
  platform.interface(kPort5).channel = 1;
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_index_withpmap(kPort5, &entry, &index, given.data(), 1), 0);
  EXPECT_EQ(entry, make_entry(7, 9, {10}));
  EXPECT_EQ(index, 5u);
  output_of([&] {
    EXPECT_EQ(status(ficon_pmap_get_if_to_pnpa_index_withpmap(kPort5, &entry, &index, given.data(), 0)), kLagMember);
  });
}

TEST_F(InterfaceToNumberWrapper, WithpmapRefusesANullEntry) {
  EXPECT_EQ(status(ficon_pmap_get_if_to_pnpa_index_withpmap(kPort5, nullptr, &index, nullptr, 0)), kInvalidArg);
  EXPECT_EQ(index, kUntouched32);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(InterfaceToNumberWrapper, PnpaPassesTableAndSkippedCheck) {
  map.entry(1030, 30, 31, {}).entry(5, 7, 9, {10});
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_withpmap(kChannel1, &entry, given.data(), 0), 0);
  EXPECT_EQ(entry, numbers(30, 31, 0).entry);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);

  platform.interface(kPort5).channel = 1;
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_withpmap(kPort5, &entry, given.data(), 1), 0);
  EXPECT_EQ(entry, make_entry(7, 9, {10}));
  output_of([&] { EXPECT_EQ(status(ficon_pmap_get_if_to_pnpa_withpmap(kPort5, &entry, given.data(), 0)), kLagMember); });
}

TEST_F(InterfaceToNumberWrapper, PnpaFetchesWithoutATable) {
  map.bind(40, kChannel1).entry(1040, 40, 41, {});
  EXPECT_EQ(ficon_pmap_get_if_to_pnpa_withpmap(kChannel1, &entry, nullptr, 0), 0);
  EXPECT_EQ(entry, numbers(40, 41, 0).entry);
}

TEST_F(InterfaceToNumberWrapper, PnpaRefusesANullEntry) {
  EXPECT_EQ(status(ficon_pmap_get_if_to_pnpa_withpmap(kPort5, nullptr, nullptr, 0)), kInvalidArg);
}

TEST_F(InterfaceToNumberWrapper, PnpaLeavesTheEntryAloneInTheLenientOutcome) {
  make_service_fail();
  output_of([&] { EXPECT_EQ(ficon_pmap_get_if_to_pnpa_withpmap(kPort5, &entry, nullptr, 0), 0); });
  EXPECT_EQ(entry, kUntouchedEntry);
}

TEST_F(InterfaceToNumberWrapper, PnWithpmapPassesTableAndSkippedCheck) {
  map.entry(1030, 30, 31, {}).entry(5, 7, 9, {10});
  EXPECT_EQ(ficon_pmap_get_if_to_pn_withpmap(kChannel1, &number, given.data(), 0), 0);
  EXPECT_EQ(number, 30);
  EXPECT_EQ(platform.count("elemdb_lookup_element(1, 2, 4, key 2"), 0);

  platform.interface(kPort5).channel = 1;
  EXPECT_EQ(ficon_pmap_get_if_to_pn_withpmap(kPort5, &number, given.data(), 1), 0);
  EXPECT_EQ(number, 7);
  number = kUntouched16;
  output_of([&] { EXPECT_EQ(status(ficon_pmap_get_if_to_pn_withpmap(kPort5, &number, given.data(), 0)), kLagMember); });
  EXPECT_EQ(number, kUntouched16);
}

TEST_F(InterfaceToNumberWrapper, PnFetchesAndChecksThePortChannel) {
  map.entry(5, 7, 9, {10});
  EXPECT_EQ(ficon_pmap_get_if_to_pn(kPort5, &number), 0);
  EXPECT_EQ(number, 7);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch,
                                                           kFirstPortFetch,
                                                           {"if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)",
                                                            "if_index_get_port(0x1000005)", "lagmap_get_port(0x1000005)"},
                                                           kFirstSlotConversion})));
}

TEST_F(InterfaceToNumberWrapper, PaFetchesAndChecksThePortChannel) {
  map.entry(5, 7, 9, {10});
  EXPECT_EQ(ficon_pmap_get_if_to_pa(kPort5, &number), 0);
  EXPECT_EQ(number, 9);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch,
                                                           kFirstPortFetch,
                                                           {"if_index_get_type(0x1000005)", "if_index_get_slot(0x1000005)",
                                                            "if_index_get_port(0x1000005)", "lagmap_get_port(0x1000005)"},
                                                           kFirstSlotConversion})));
}

TEST_F(InterfaceToNumberWrapper, IndexFetchesAndChecksThePortChannel) {
  map.entry(1016, 7, 9, {10});
  EXPECT_EQ(ficon_pmap_get_if_to_index(0x1000600, &index), 0);
  EXPECT_EQ(index, 1016u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch,
                                                           kFirstPortFetch,
                                                           {"if_index_get_type(0x1000600)", "if_index_get_slot(0x1000600)",
                                                            "if_index_get_port(0x1000600)", "lagmap_get_port(0x1000600)"},
                                                           kFirstSlotConversion})));
}

TEST_F(InterfaceToNumberWrapper, LogicalInterfaceThroughTheShortForms) {
  map.bind(40, kTunnel1).entry(1040, 40, 41, {});
  EXPECT_EQ(ficon_pmap_get_if_to_pn(kTunnel1, &number), 0);
  EXPECT_EQ(number, 40);
  EXPECT_EQ(ficon_pmap_get_if_to_pa(kTunnel1, &number), 0);
  EXPECT_EQ(number, 41);
  EXPECT_EQ(ficon_pmap_get_if_to_index(kTunnel1, &index), 0);
  EXPECT_EQ(index, 1040u);
}

TEST_F(InterfaceToNumberWrapper, FailureStoresNothing) {
  EXPECT_EQ(status(ficon_pmap_get_if_to_pn(kChannel1, &number)), kNotAssociated);
  EXPECT_EQ(status(ficon_pmap_get_if_to_pa(kChannel1, &number)), kNotAssociated);
  EXPECT_EQ(status(ficon_pmap_get_if_to_index(kChannel1, &index)), kNotAssociated);
  output_of([&] {
    EXPECT_EQ(ficon_pmap_get_if_to_pn(0x2000005, &number), 11);
    EXPECT_EQ(ficon_pmap_get_if_to_pa(0x2000005, &number), 11);
    EXPECT_EQ(ficon_pmap_get_if_to_index(0x2000005, &index), 11);
  });
  EXPECT_EQ(number, kUntouched16);
  EXPECT_EQ(index, kUntouched32);
}

TEST_F(InterfaceToNumberWrapper, NegativeStatusStoresNothing) {
  platform.interface(kPort5).type_status = -77;
  output_of([&] {
    EXPECT_EQ(ficon_pmap_get_if_to_pn(kPort5, &number), -77);
    EXPECT_EQ(ficon_pmap_get_if_to_pa(kPort5, &number), -77);
  });
  EXPECT_EQ(number, kUntouched16);
}

// The core has found the number by then, but not the entry.
TEST_F(InterfaceToNumberWrapper, NumberThatIsNotReservedIsNotStored) {
  map.bind(40, kChannel1);
  EXPECT_EQ(status(ficon_pmap_get_if_to_pn(kChannel1, &number)), kNotAssociated);
  EXPECT_EQ(number, kUntouched16);
}

TEST_F(InterfaceToNumberWrapper, LenientOutcomeOfANumberIsNoNumber) {
  map.entry(5, 7, 9, {10});
  make_service_fail();
  const auto reports = reports_of([&] { EXPECT_EQ(ficon_pmap_get_if_to_pn(kPort5, &number), 0); });
  EXPECT_EQ(number, 512);
  EXPECT_THAT(reports, ElementsAre("error lagmap_get_port failed: if_index:0x1000005,rc:1078394885\n",
                                   "trace if_index:0x1000005, slot:1base1, port:6base1, port-number:512\n",
                                   "printed FICON_ERR: lagmap_get_port failed: if_index:0x1000005,rc:1078394885\n"));
}

TEST_F(InterfaceToNumberWrapper, LenientOutcomeOfANumberWithTableIsNoNumber) {
  map.entry(5, 7, 9, {10});
  make_service_fail();
  output_of([&] { EXPECT_EQ(ficon_pmap_get_if_to_pn_withpmap(kPort5, &number, given.data(), 0), 0); });
  EXPECT_EQ(number, 512);
}

TEST_F(InterfaceToNumberWrapper, LenientOutcomeOfAnAddressIsNoNumber) {
  map.entry(5, 7, 9, {10});
  make_service_fail();
  output_of([&] { EXPECT_EQ(ficon_pmap_get_if_to_pa(kPort5, &number), 0); });
  EXPECT_EQ(number, 512);
}

// The index address is the caller's, and nothing is written through it.
TEST_F(InterfaceToNumberWrapper, LenientOutcomeOfAnIndexLeavesItAlone) {
  map.entry(5, 7, 9, {10});
  make_service_fail();
  const auto reports = reports_of([&] {
    EXPECT_EQ(ficon_pmap_get_if_to_index(kPort5, &index), 0);
    EXPECT_EQ(ficon_pmap_get_if_to_index_with2pmaps(kPort5, &index, given.data(), map.port_to_pn.data(), 0), 0);
  });
  EXPECT_EQ(index, kUntouched32);
  EXPECT_EQ(reports.at(1), "trace if_index:0x1000005, slot:1base1, port:6base1, port-number:512\n");
  EXPECT_EQ(reports.at(3), "trace if_index:0x1000005, slot:1base1, port:6base1, port-number:512\n");
}

TEST_F(InterfaceToNumberWrapper, IndexWithBothTablesFetchesNothing) {
  const auto ports = map.entry(1030, 30, 31, {}).port_to_pn;
  map.entry(1030, 512, 512, {});
  EXPECT_EQ(ficon_pmap_get_if_to_index_with2pmaps(kChannel1, &index, given.data(), ports.data(), 0), 0);
  EXPECT_EQ(index, 1030u);
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x4000001)"));
}

TEST_F(InterfaceToNumberWrapper, IndexWithOneTableFetchesTheOther) {
  const auto ports = map.entry(1040, 40, 41, {}).bind(40, kChannel1).port_to_pn;
  EXPECT_EQ(ficon_pmap_get_if_to_index_with2pmaps(kChannel1, &index, nullptr, ports.data(), 0), 0);
  EXPECT_EQ(index, 1040u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstInterfaceFetch, {"if_index_get_type(0x4000001)"}})));
  platform.forget_calls();
  map.entry(1030, 30, 31, {});
  EXPECT_EQ(ficon_pmap_get_if_to_index_with2pmaps(kChannel1, &index, given.data(), nullptr, 0), 0);
  EXPECT_EQ(index, 1030u);
  EXPECT_THAT(platform.calls(), ElementsAreArray(sequence({kFirstPortFetch, {"if_index_get_type(0x4000001)"}})));
}

TEST_F(InterfaceToNumberWrapper, IndexWithBothTablesPassesTheSkippedCheck) {
  platform.interface(kPort5).channel = 1;
  EXPECT_EQ(ficon_pmap_get_if_to_index_with2pmaps(kPort5, &index, given.data(), map.port_to_pn.data(), 1), 0);
  EXPECT_EQ(index, 5u);
  index = kUntouched32;
  output_of([&] {
    EXPECT_EQ(status(ficon_pmap_get_if_to_index_with2pmaps(kPort5, &index, given.data(), map.port_to_pn.data(), 0)),
              kLagMember);
  });
  EXPECT_EQ(index, kUntouched32);
}

} // namespace
