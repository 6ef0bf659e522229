// The default numbering and where a map leaves it.
#include "inspect/port_map/default_numbering.h"

#include <gmock/gmock.h>

#include "asked_switch.h"

namespace inspect_test {
namespace {

using inspect::library_session;

TEST(DefaultNumbering, FirstDifferenceIsOneThatTheLibraryMinds) {
  const library_session session(example("one-slot"));
  const auto numbering = compare_with_default(session);
  EXPECT_FALSE(numbering.is_default);
  EXPECT_TRUE(numbering.can_be_default);
  EXPECT_TRUE(numbering.is_known);
  ASSERT_TRUE(numbering.first_difference); // indexes from 40 on differ before, but the library does not look there
  EXPECT_EQ(numbering.first_difference->index, 1024U);
  EXPECT_EQ(numbering.first_difference->default_pn, 240);
  EXPECT_EQ(numbering.first_difference->map_pn, FICON_PMAP_NO_NUMBER);
  EXPECT_FALSE(numbering.first_difference->port);
  EXPECT_EQ(numbering.expected.back().index, 1037U);
  EXPECT_EQ(numbering.expected.back().default_pn, 253);
}

TEST(DefaultNumbering, WhereNoMapIsTheDefaultEveryPlaceCounts) {
  const library_session session(example("director-10"));
  const auto numbering = compare_with_default(session);
  EXPECT_FALSE(numbering.can_be_default);
  ASSERT_TRUE(numbering.first_difference);
  EXPECT_EQ(numbering.first_difference->index, 64U);
  EXPECT_EQ(numbering.first_difference->default_pn, 48);
  EXPECT_EQ(numbering.first_difference->port->port, 65U);
}

TEST(DefaultNumbering, MapThatIsTheDefaultDiffersNowhere) {
  auto chassis = campus();
  for (auto& entry : chassis.map.port_to_pn) entry.pn = FICON_PMAP_NO_NUMBER;
  for (const auto& entry : compare_with_default(library_session(opened(campus()))).expected)
    chassis.map.port_to_pn[entry.index].pn = entry.default_pn;
  const library_session session(opened(chassis));
  const auto numbering = compare_with_default(session);
  EXPECT_TRUE(numbering.is_default);
  EXPECT_FALSE(numbering.first_difference);
}

TEST(DefaultNumbering, NumbersOfASlotCountItsPortsFromOne) {
  const library_session session(example("director-10"));
  const auto numbers = inspect::default_numbers_of_slot(1);
  ASSERT_EQ(numbers.size(), 48U);
  EXPECT_EQ(numbers[0].slot, 1U);
  EXPECT_EQ(numbers[0].port, 1U);
  EXPECT_EQ(numbers[0].pn, 0U);
  EXPECT_EQ(numbers[47].port, 48U);
  EXPECT_EQ(numbers[47].pn, 47U);
}

TEST(DefaultNumbering, SlotWithoutNumbersTellsTheStatus) {
  const library_session session(example("director-10"));
  const auto numbers = inspect::default_numbers_of_slot(5); // a supervisor's
  ASSERT_EQ(numbers.size(), 1U);
  EXPECT_EQ(numbers[0].slot, 5U);
  EXPECT_FALSE(numbers[0].port || numbers[0].pn);
  EXPECT_EQ(numbers[0].status, uint32_t{FICON_RC_INVALID_ARG});
}

TEST(DefaultNumbering, FourteenNumbersHaveNoPort) {
  const library_session session(example("director-10"));
  const auto numbers = inspect::default_numbers_without_port();
  ASSERT_EQ(numbers.size(), 14U);
  EXPECT_EQ(numbers.front().pn, 240U);
  EXPECT_EQ(numbers.back().pn, 253U);
  EXPECT_FALSE(numbers[0].slot || numbers[0].port);
}

} // namespace
} // namespace inspect_test
