// The chassis front as data.
#include "inspect/chassis/front.h"

#include <gmock/gmock.h>

#include "asked_switch.h"
#include "vswitch/interface_index.h"

namespace inspect_test {
namespace {

using inspect::library_session;
using inspect::slot_content;

TEST(ChassisFront, EverySlotHoldsACardASupervisorOrNothing) {
  const auto front = front_of(library_session(opened(campus())));
  EXPECT_EQ(front.name, "campus");
  EXPECT_EQ(front.type, 34);
  ASSERT_EQ(front.slots.size(), 6U);
  EXPECT_EQ(front.slots[0].slot, 1U);
  EXPECT_EQ(front.slots[0].holds, slot_content::card);
  EXPECT_EQ(front.slots[0].name, "channels");
  EXPECT_EQ(front.slots[2].holds, slot_content::supervisor);
  EXPECT_EQ(front.slots[5].holds, slot_content::empty);
  EXPECT_TRUE(front.slots[2].ports.empty() && front.slots[5].ports.empty());
  EXPECT_STREQ(content_name(slot_content::empty), "empty");
}

TEST(ChassisFront, PortHasItsNumbersItsVsanAndItsChannel) {
  const auto front = front_of(library_session(opened(campus())));
  const auto& numbered = front.slots[1].ports.at(0);
  EXPECT_EQ(numbered.port, 1U);
  EXPECT_EQ(numbered.index, 254U);
  EXPECT_EQ(numbered.pn, 48U);
  EXPECT_EQ(numbered.pa, 0U);
  EXPECT_EQ(numbered.vsan, 20U);
  EXPECT_EQ(numbered.channel, 0U);
  const auto& member = front.slots[4].ports.at(0);
  EXPECT_EQ(member.channel, 1U);
  EXPECT_FALSE(member.pn || member.pa);
  EXPECT_EQ(member.vsan, 0U);
}

TEST(ChassisFront, PortWithoutAPlaceHasNoIndex) {
  const auto front = front_of(library_session(example("director-10")));
  EXPECT_EQ(front.slots[6].ports.at(7).index, 1023U);
  EXPECT_FALSE(front.slots[6].ports.at(8).index);
}

TEST(ChassisFront, VsansArePlacedInAscendingOrderOfThoseThatPortsAreIn) {
  auto chassis = campus();
  chassis.map.port_to_vsan[7] = 7; // has no name
  const auto front = front_of(library_session(opened(chassis)));
  ASSERT_EQ(front.vsans.size(), 3U);
  EXPECT_EQ(front.vsans[0].vsan, 7U);
  EXPECT_EQ(front.vsans[0].name, "");
  EXPECT_EQ(front.vsans[1].name, "production");
  EXPECT_EQ(front.slots[0].ports.at(7).vsan_place, 0U);
  EXPECT_EQ(front.slots[1].ports.at(0).vsan_place, 2U);
}

} // namespace
} // namespace inspect_test
