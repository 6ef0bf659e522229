// What the library makes of a chassis.
#include "inspect/chassis/chassis_facts.h"

#include <gmock/gmock.h>

#include "asked_switch.h"

namespace inspect_test {
namespace {

using inspect::library_session;

TEST(ChassisFacts, CardsAreNumberedWithoutTheSupervisors) {
  const auto facts = facts_of(library_session(example("director-10")));
  EXPECT_EQ(facts.highest_port_number, 253);
  EXPECT_EQ(facts.max_ficon_ports, 254U);
  EXPECT_EQ(facts.change_counter, 17U);
  ASSERT_EQ(facts.cards.size(), 5U);
  EXPECT_EQ(facts.cards[4].slot, 7U);
  EXPECT_EQ(facts.cards[4].line_card, 4U);
  EXPECT_EQ(facts.cards[4].ports, 24U);
  EXPECT_EQ(facts.cards[4].name, "open systems");
}

TEST(ChassisFacts, VsansCountThePhysicalPortsThatAreInThem) {
  const auto facts = facts_of(library_session(example("director-10"))); // VSAN 10 also has an entry from 1024 on
  ASSERT_EQ(facts.vsans.size(), 3U);
  EXPECT_EQ(facts.vsans[0].vsan, 10U);
  EXPECT_EQ(facts.vsans[0].ports, 80U);
  EXPECT_EQ(facts.vsans[2].name, "open systems");
  EXPECT_EQ(facts.vsans[2].ports, 8U);
}

TEST(ChassisFacts, HighestPortNumberIsTheChassissOwn) {
  const auto facts = facts_of(library_session(example("director-13")));
  EXPECT_EQ(facts.highest_port_number, 237);
  EXPECT_EQ(facts.max_ficon_ports, 238U);
  EXPECT_EQ(facts.cards.back().line_card, 6U);
}

} // namespace
} // namespace inspect_test
