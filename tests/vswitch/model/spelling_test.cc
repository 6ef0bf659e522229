// How near words are to each other.
#include <gmock/gmock.h>
#include <vswitch/spelling.h>

namespace {

using vswitch::edit_distance;

TEST(Spelling, DistanceCountsLettersToChangeAddOrTakeAway) {
  EXPECT_EQ(edit_distance("slots", "slots"), 0u);
  EXPECT_EQ(edit_distance("slots", "slets"), 1u);
  EXPECT_EQ(edit_distance("slots", "slot"), 1u);
  EXPECT_EQ(edit_distance("slots", "sllots"), 1u);
  EXPECT_EQ(edit_distance("slots", "slost"), 2u);
  EXPECT_EQ(edit_distance("kitten", "sitting"), 3u);
}

TEST(Spelling, AnEmptyWordIsAsFarAsTheOtherIsLong) {
  EXPECT_EQ(edit_distance("", ""), 0u);
  EXPECT_EQ(edit_distance("", "vsan"), 4u);
  EXPECT_EQ(edit_distance("vsan", ""), 4u);
}

} // namespace
