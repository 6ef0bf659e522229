// Where ports stand in the port map, and its two limits.
#include <gmock/gmock.h>
#include <vswitch/port_place.h>

namespace {

using namespace vswitch;
using ::testing::Optional;

TEST(PortPlace, CountsPortsOfEachCardFrom254OnEach) {
  EXPECT_THAT(port_place(0u, 1), Optional(0u));
  EXPECT_THAT(port_place(0u, 254), Optional(253u));
  EXPECT_THAT(port_place(1u, 1), Optional(254u));
  EXPECT_THAT(port_place(5u, 10), Optional(1279u));
}

TEST(PortPlace, PortsThatACardHasNoRoomForHaveNone) {
  EXPECT_EQ(port_place(0u, 0), std::nullopt);
  EXPECT_EQ(port_place(0u, 255), std::nullopt);
}

int32_t card_behind_supervisors(uint8_t slot, uint8_t* line_card) {
  if (slot < 2) return 1;
  *line_card = static_cast<uint8_t>(slot - 2);
  return 0;
}

TEST(PortPlace, FollowsTheNumberingOfLineCards) {
  EXPECT_THAT(port_place({3, 1}, card_behind_supervisors), Optional(0u));
  EXPECT_THAT(port_place({4, 2}, card_behind_supervisors), Optional(255u));
  EXPECT_EQ(port_place({2, 1}, card_behind_supervisors), std::nullopt);
  EXPECT_EQ(port_place({3, 255}, card_behind_supervisors), std::nullopt);
}

TEST(PortPlace, EntriesOfPhysicalPortsEndBeforeTheTableDoes) {
  EXPECT_TRUE(has_entry(1023));
  EXPECT_FALSE(has_entry(1024));
  EXPECT_TRUE(may_be_asked_for(1024));
  EXPECT_TRUE(may_be_asked_for(1279));
  EXPECT_FALSE(may_be_asked_for(1280));
}

} // namespace
