// How the physical ports of a chassis fill the port map.
#include <gmock/gmock.h>
#include <vswitch/interface_index.h>

#include "test_switch.h"

namespace {

using namespace vswitch;
using ::testing::Optional;
using vswitch_test::small_switch;

TEST(ChassisDescription, LineCardsCountFromZeroAndSkipSupervisors) {
  const auto chassis = small_switch();
  EXPECT_THAT(line_card_number(chassis, 1), Optional(0u));
  EXPECT_THAT(line_card_number(chassis, 4), Optional(3u));
  EXPECT_THAT(line_card_number(chassis, 7), Optional(4u));
  EXPECT_THAT(line_card_number(chassis, 10), Optional(7u));
}

TEST(ChassisDescription, SupervisorsAndSlotsThatAreNotThereHaveNoLineCardNumber) {
  const auto chassis = small_switch();
  for (unsigned slot : {0u, 5u, 6u, 11u, 255u}) EXPECT_EQ(line_card_number(chassis, slot), std::nullopt) << slot;
}

TEST(ChassisDescription, IndexIsLineCardTimes254PlusPortAndEndsAt1023) {
  const auto chassis = small_switch();
  EXPECT_THAT(port_map_index(chassis, 1, 1), Optional(0u));
  EXPECT_THAT(port_map_index(chassis, 1, 254), Optional(253u));
  EXPECT_THAT(port_map_index(chassis, 2, 16), Optional(269u));
  EXPECT_THAT(port_map_index(chassis, 7, 1), Optional(1016u));
  EXPECT_THAT(port_map_index(chassis, 7, 8), Optional(1023u));
  EXPECT_EQ(port_map_index(chassis, 7, 9), std::nullopt);
  EXPECT_EQ(port_map_index(chassis, 8, 1), std::nullopt);
  EXPECT_EQ(port_map_index(chassis, 1, 0), std::nullopt);
  EXPECT_EQ(port_map_index(chassis, 1, 255), std::nullopt);
  EXPECT_EQ(port_map_index(chassis, 5, 1), std::nullopt);
}

TEST(ChassisDescription, PortAtIndexIsThereOnlyWhenACardHasIt) {
  const auto chassis = small_switch();
  EXPECT_THAT(port_at_index(chassis, 0), Optional(0x01000000u));
  EXPECT_THAT(port_at_index(chassis, 47), Optional(0x01002F00u));
  EXPECT_EQ(port_at_index(chassis, 48), std::nullopt);
  EXPECT_THAT(port_at_index(chassis, 1016), Optional(0x01060000u));
  EXPECT_EQ(port_at_index(chassis, 508), std::nullopt); // slot 3 is empty
  EXPECT_EQ(port_at_index(chassis, 1024), std::nullopt);
}

TEST(ChassisDescription, HasPort) {
  const auto chassis = small_switch();
  EXPECT_TRUE(has_port(chassis, 2, 16));
  EXPECT_FALSE(has_port(chassis, 2, 17));
  EXPECT_FALSE(has_port(chassis, 2, 0));
  EXPECT_FALSE(has_port(chassis, 3, 1));
  EXPECT_FALSE(has_port(chassis, 5, 1));
}

TEST(ChassisDescription, AddressBelongsToTheLowestIndexThatCarriesIt) {
  port_map map;
  map.port_to_pn[9] = {90, 5, {}};
  map.port_to_pn[4] = {40, 5, {}};
  map.port_to_pn[1279] = {7, 255, {}};
  map.port_to_pn[2] = {8, 256, {}}; // no address of the mainframe
  const auto addresses = addresses_of_ports(map);
  EXPECT_EQ(addresses[5], 40);
  EXPECT_EQ(addresses[255], 7);
  EXPECT_EQ(addresses[0], 512);
}

TEST(ChassisDescription, EmptyMapHasNoNumbers) {
  const port_map map;
  EXPECT_EQ(map.port_to_pn[0].pn, 512);
  EXPECT_EQ(map.port_to_pn[1279].pa, 512);
  EXPECT_EQ(map.port_to_pn[5].vsans[7], 0);
  EXPECT_EQ(map.pa_to_pn[255], 512);
  EXPECT_EQ(map.pn_to_if[255], 0u);
  EXPECT_EQ(map.port_to_vsan[1279], 0);
}

TEST(ChassisDescription, InterfacesAreThereThatACardHasOrThatWereMade) {
  const auto chassis = vswitch_test::small_switch();
  EXPECT_TRUE(has_interface(chassis, fc_port_index(2, 16)));
  EXPECT_FALSE(has_interface(chassis, fc_port_index(2, 17)));
  EXPECT_TRUE(has_interface(chassis, logical_index(IF_TYPE_FCIP, 3)));
  EXPECT_FALSE(has_interface(chassis, logical_index(IF_TYPE_FCIP, 4)));
}

TEST(ChassisDescription, MembersOfAPortChannelHaveItsNumber) {
  const auto chassis = vswitch_test::small_switch();
  EXPECT_EQ(channel_of(chassis, fc_port_index(1, 3)), 5u);
  EXPECT_EQ(channel_of(chassis, fc_port_index(1, 4)), 5u);
  EXPECT_EQ(channel_of(chassis, fc_port_index(1, 5)), 0u);
  EXPECT_EQ(channel_of(chassis, logical_index(IF_TYPE_PORT_CHANNEL, 5)), 0u);
}

} // namespace
