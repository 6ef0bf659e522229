// The map's entries, a VSAN's ports and bound numbers.
#include <gmock/gmock.h>

#include "asked_switch.h"
#include "inspect/port_map/bound_numbers.h"
#include "inspect/port_map/map_entries.h"
#include "inspect/port_map/port_place.h"
#include "inspect/port_map/vsan_ports.h"

namespace inspect_test {
namespace {

using inspect::library_session;
using inspect::port_map_place;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr uint16_t kNone = FICON_PMAP_NO_NUMBER;

TEST(MapEntries, EntryOfAPortAndOfALogicalInterface) {
  const library_session session(example("director-10"));
  const auto member = map_entry_at(session, 762);
  EXPECT_TRUE(member.pn == kNone && member.pa == kNone && member.port_vsan == 0);
  EXPECT_EQ(member.if_index, 0x01030000U);
  EXPECT_EQ(member.there, true);
  EXPECT_EQ(member.channel, 5U);
  const auto logical = map_entry_at(session, 1025);
  EXPECT_EQ(logical.pn, 241);
  EXPECT_EQ(logical.pa, 0xF1);
  EXPECT_THAT(logical.vsans, ElementsAre(10, 20));
  EXPECT_EQ(logical.if_index, 0x0A000001U);
  EXPECT_FALSE(logical.there || logical.channel || logical.port);
}

TEST(MapEntries, AbsentPortHasAnInterfaceAndIsNotThere) {
  const library_session session(opened(campus()));
  const auto absent = map_entry_at(session, 8);
  EXPECT_EQ(absent.if_index, vswitch::fc_port_index(1, 9));
  EXPECT_EQ(absent.there, false);
  EXPECT_EQ(absent.port->port, 9U);
}

TEST(MapEntries, NumberBeyondTheTableHasNoInterface) {
  auto chassis = campus();
  chassis.map.port_to_pn[1030].pn = 254;
  const library_session session(opened(chassis));
  EXPECT_FALSE(map_entry_at(session, 1030).if_index);
  EXPECT_EQ(map_entry_at(session, 1024).if_index, 0x04000001U);
}

TEST(MapEntries, InUseIsWhatHoldsANumberAVsanOrAPort) {
  auto chassis = campus();
  chassis.map.port_to_pn[600].pn = 1;
  chassis.map.port_to_pn[601].pa = 1;
  chassis.map.port_to_pn[602].vsans[7] = 1;
  chassis.map.port_to_vsan[603] = 1;
  const library_session session(opened(chassis));
  EXPECT_THAT(indexes_in_use(session), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 254, 255, 256, 257, 258, 259, 260, 261, 508, 509,
                                                   510, 511, 600, 601, 602, 603, 1024));
}

TEST(PortPlace, LineCardsCountWithoutSupervisorsAndHold254Ports) {
  const library_session session(opened(campus()));
  EXPECT_EQ(port_map_place(5, 1), 508U);
  EXPECT_EQ(port_map_place(1, 254), 253U);
  EXPECT_FALSE(port_map_place(1, 255) || port_map_place(3, 1));
  EXPECT_FALSE(port_map_place(0x04000001));
  EXPECT_EQ(inspect::port_at_place(508)->slot, 5U);
  EXPECT_EQ(inspect::port_at_place(253)->port, 254U);
  EXPECT_EQ(inspect::port_at_place(1015)->slot, 6U);
  EXPECT_FALSE(inspect::port_at_place(1016)); // of a fifth line card, which has no slot
  EXPECT_FALSE(inspect::port_at_place(1024));
}

TEST(VsanPorts, EveryVsanThatTheSwitchOrItsMapNames) {
  auto chassis = campus();
  EXPECT_THAT(inspect::vsans_of(chassis), ElementsAre(10, 20));
  chassis.map.port_to_vsan[1279] = 30;
  chassis.map.port_to_pn[1278].vsans[7] = 5;
  EXPECT_THAT(inspect::vsans_of(chassis), ElementsAre(5, 10, 20, 30));
}

TEST(VsanPorts, PortsThatAreInItBoundOrNot) {
  const library_session session(example("director-10"));
  const auto open_systems = inspect::ports_in_vsan(300);
  ASSERT_THAT(open_systems, SizeIs(8));
  EXPECT_EQ(open_systems[0].vsan, 300U);
  EXPECT_EQ(open_systems[0].if_index, 0x01060000U);
  EXPECT_EQ(open_systems[0].index, 1016U);
  EXPECT_EQ(open_systems[0].pn, kNone);
  EXPECT_FALSE(open_systems[0].bound);
  const auto test = inspect::ports_in_vsan(20);
  ASSERT_THAT(test, SizeIs(48));
  EXPECT_TRUE(test[0].bound && test[0].pn == 48 && test[0].pa == 0 && test[0].port->slot == 2);
  EXPECT_THAT(inspect::ports_in_vsan(11), IsEmpty());
}

TEST(BoundNumbers, MembersAreThoseOfThePortChannel) {
  const library_session session(example("director-10"));
  const auto numbers = bound_numbers(session);
  ASSERT_THAT(numbers, SizeIs(3));
  EXPECT_EQ(numbers[0].pn, 240U);
  EXPECT_THAT(numbers[0].members, ElementsAre(0x01030000, 0x01030100, 0x01030200, 0x01030300));
  EXPECT_EQ(numbers[2].if_index, 0x0A000002U);
  EXPECT_THAT(numbers[2].members, IsEmpty());
}

} // namespace
} // namespace inspect_test
