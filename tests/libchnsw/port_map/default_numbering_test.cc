/* Default port numbers: laying them out, telling whether a table still has them, and listing those of one slot. The rows of
 * the chassis stand here once more, written down and not computed, because the three operations deliberately disagree. */
#include <climits>
#include <numeric>

#include "library_test.h"

namespace {

using chnsw_test::kUntouched16;
using chnsw_test::kUntouchedEntry;
using chnsw_test::make_entry;
using chnsw_test::output_of;
using ::testing::AllOf;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::SizeIs;

constexpr uint32_t kBase = 0x40850000;
constexpr uint32_t kInvalidArg = 0x40850003;
constexpr uint32_t kPlatform = 0x4085000A;

constexpr size_t kLargestLayout = 3318; // entries that the 18-slot layout with stride 254 reaches
constexpr int32_t kAnyType = INT_MIN;
constexpr int32_t kTypes[] = {-1, 0, 4, 5, 6, 14, 15, 16, 26, 27, 28, 31, 32, 33, 34, 35, 37, 38, 39};

using entries = std::vector<ficon_pmap_port_entry>;

// The row of a chassis, or a row of nothing.
template <class Row, size_t count>
Row row_of(const Row (&rows)[count], int num_slots, int32_t type) {
  Row any{};
  for (const Row& row : rows) {
    if (row.num_slots != num_slots) continue;
    if (row.chassis_type == type) return row;
    if (row.chassis_type == kAnyType) any = row;
  }
  return any;
}

// All types for the chassis that have rows, a few for the many that have none.
std::vector<int32_t> types_worth_trying(int num_slots) {
  if (num_slots <= 20) return {std::begin(kTypes), std::end(kTypes)};
  return {-1, 34, 38};
}

// ---- laying out ----

struct init_row {
  int num_slots;
  int32_t chassis_type; // kAnyType: any that has no row of its own
  size_t groups;
  size_t pns;
  size_t stride;
  uint16_t first_extra; // and the result
};

constexpr init_row kInitRows[] = {
    {1, 5, 1, 20, 254, 20},           {1, 15, 1, 34, 254, 34},          {1, 27, 1, 40, 254, 240},
    {1, kAnyType, 1, 40, 254, 40},    {2, kAnyType, 2, 32, 254, 64},    {6, 34, 4, 48, 254, 240},
    {6, kAnyType, 4, 32, 254, 128},   {9, kAnyType, 7, 32, 254, 224},   {10, 32, 5, 48, 64, 240},
    {10, kAnyType, 8, 16, 64, 224},   {13, kAnyType, 11, 16, 254, 224}, {18, 38, 9, 48, 64, 240},
    {18, kAnyType, 14, 16, 254, 224},
};

// Writes a layout's numbers: groups first, then the extra numbers, which may fall on a group.
void lay_out(entries& table, size_t groups, size_t pns, size_t stride, uint16_t first_extra) {
  for (size_t group = 0; group < groups; ++group) {
    for (size_t k = 0; k < pns; ++k) table.at(group * stride + k).pn = static_cast<uint16_t>(group * pns + k);
  }
  for (size_t k = 0; k < 14; ++k) table.at(1024 + k).pn = static_cast<uint16_t>(first_extra + k);
}

class DefaultNumbering : public chnsw_test::LibraryTest {
 protected:
  int32_t init(int32_t count = 1280) { return ficon_port_to_pn_init(count, table.data(), 0, nullptr); }

  // First entry that differs, in words; empty when there is none.
  std::string difference(const entries& expected) const {
    for (size_t i = 0; i < expected.size(); ++i) {
      if (!(table[i] == expected[i])) {
        return "entry " + std::to_string(i) + ": " + ::testing::PrintToString(table[i]) + ", expected " +
               ::testing::PrintToString(expected[i]);
      }
    }
    return "";
  }

  entries table = entries(kLargestLayout, kUntouchedEntry);
};

TEST_F(DefaultNumbering, IsThatOfEveryChassisRowAndNothingForEveryOtherSlotCount) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    for (const int32_t type : types_worth_trying(num_slots)) {
      platform.set_chassis(num_slots, type);
      platform.forget_calls();
      table.assign(kLargestLayout, kUntouchedEntry);
      const init_row row = row_of(kInitRows, num_slots, type);
      entries expected(kLargestLayout, make_entry(512, 512));
      if (row.groups != 0) lay_out(expected, row.groups, row.pns, row.stride, row.first_extra);

      int32_t result = 0;
      output_of([&] { result = init(kLargestLayout); });

      ASSERT_EQ(result, row.first_extra) << num_slots << " slots, type " << type;
      ASSERT_EQ(difference(expected), "") << num_slots << " slots, type " << type;
    }
  }
}

// The caller's count bounds what is reset, not what is numbered.
TEST_F(DefaultNumbering, GroupsReachBeyondTheCountAndWriteTheNumberOnly) {
  const std::pair<int, int32_t> chassis[] = {{9, 0}, {13, 38}, {18, 0}, {18, 38}, {6, 34}, {10, 32}};
  for (const auto& [num_slots, type] : chassis) {
    platform.set_chassis(num_slots, type);
    table.assign(kLargestLayout, kUntouchedEntry);
    const init_row row = row_of(kInitRows, num_slots, type);
    entries expected(kLargestLayout, kUntouchedEntry);
    std::fill(expected.begin(), expected.begin() + 1280, make_entry(512, 512));
    lay_out(expected, row.groups, row.pns, row.stride, row.first_extra);

    output_of([&] { init(1280); });

    EXPECT_EQ(difference(expected), "") << num_slots << " slots, type " << type;
  }
}

TEST_F(DefaultNumbering, OfATwoSlotChassis) {
  platform.set_chassis(2, 5);

  EXPECT_EQ(init(), 64);

  EXPECT_EQ(table[0].pn, 0);
  EXPECT_EQ(table[31].pn, 31);
  EXPECT_EQ(table[32].pn, 512);
  EXPECT_EQ(table[253].pn, 512);
  EXPECT_EQ(table[254].pn, 32);
  EXPECT_EQ(table[285].pn, 63);
  EXPECT_EQ(table[286].pn, 512);
  EXPECT_EQ(table[1023].pn, 512);
  EXPECT_EQ(table[1024].pn, 64);
  EXPECT_EQ(table[1037].pn, 77);
  EXPECT_EQ(table[1038].pn, 512);
  for (size_t i = 0; i < 1280; ++i) EXPECT_EQ(table[i].pa, 512) << "entry " << i;
  EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 1);
}

// Oddity: 40 ports, and the extra numbers start at 240.
TEST_F(DefaultNumbering, OfAOneSlotChassisOfTypeTwentySevenLeavesAGap) {
  platform.set_chassis(1, 27);

  EXPECT_EQ(init(), 240);

  EXPECT_EQ(table[39].pn, 39);
  EXPECT_EQ(table[40].pn, 512);
  EXPECT_EQ(table[1024].pn, 240);
  EXPECT_EQ(table[1037].pn, 253);
}

// Oddity: the ports of the fifth line card reach entry 1024, where the extra numbers are written over them.
TEST_F(DefaultNumbering, OfANineSlotChassisHasExtraNumbersWrittenOverItsPorts) {
  platform.set_chassis(9, 32);

  EXPECT_EQ(init(), 224);

  EXPECT_EQ(table[1016].pn, 128);
  EXPECT_EQ(table[1023].pn, 135);
  EXPECT_EQ(table[1024].pn, 224); // 136 was here
  EXPECT_EQ(table[1037].pn, 237); // 149 was here
  EXPECT_EQ(table[1038].pn, 150);
  EXPECT_EQ(table[1047].pn, 159);
  EXPECT_EQ(table[1270].pn, 160);
  EXPECT_EQ(table[1555].pn, 223);
  EXPECT_EQ(table[1556], kUntouchedEntry);
}

TEST_F(DefaultNumbering, OfAThirteenSlotChassisHasExtraNumbersWrittenOverItsPorts) {
  platform.set_chassis(13, 38);

  EXPECT_EQ(init(), 224);

  EXPECT_EQ(table[1016].pn, 64);
  EXPECT_EQ(table[1023].pn, 71);
  EXPECT_EQ(table[1024].pn, 224);
  EXPECT_EQ(table[1031].pn, 231);
  EXPECT_EQ(table[1032].pn, 232);
  EXPECT_EQ(table[1037].pn, 237);
  EXPECT_EQ(table[2555].pn, 175);
  EXPECT_EQ(table[2556], kUntouchedEntry);
}

TEST_F(DefaultNumbering, OfAnEighteenSlotChassisReachesEntry3317) {
  platform.set_chassis(18, 37);
  EXPECT_EQ(init(), 224);
  EXPECT_EQ(table[3302].pn, 208);
  EXPECT_EQ(table[3317].pn, 223);
}

// Oddity: the 10-slot layouts, and the 18-slot layout of type 38, stand 64 entries apart.
TEST_F(DefaultNumbering, OfAnEighteenSlotChassisOfTypeThirtyEightHasNineGroupsOfFortyEight) {
  platform.set_chassis(18, 38);
  EXPECT_EQ(init(), 240);
  EXPECT_EQ(table[47].pn, 47);
  EXPECT_EQ(table[48].pn, 512);
  EXPECT_EQ(table[64].pn, 48);
  EXPECT_EQ(table[559].pn, 431);
  EXPECT_EQ(table[560].pn, 512);
  EXPECT_EQ(table[1024].pn, 240);
}

TEST_F(DefaultNumbering, OfATenSlotChassisOfTypeThirtyTwoPrintsAndIsNotItsOwnDefault) {
  platform.set_chassis(10, 32);
  int32_t result = 0;

  const std::string printed = output_of([&] { result = init(); });

  EXPECT_EQ(result, 240);
  EXPECT_EQ(printed, "chassis_type: 32\nnum_slots:    10\n");
  EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 0);
}

TEST_F(DefaultNumbering, OfATenSlotChassisOfAnotherTypePrintsToo) {
  platform.set_chassis(10, -7);
  EXPECT_EQ(output_of([&] { EXPECT_EQ(init(), 224); }), "chassis_type: -7\nnum_slots:    10\n");
  platform.set_chassis(10, 38);
  EXPECT_EQ(output_of([&] { EXPECT_EQ(init(), 224); }), "chassis_type: 38\nnum_slots:    10\n");
}

TEST_F(DefaultNumbering, OfEveryOtherChassisPrintsNothing) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    if (num_slots == 10) continue;
    for (const int32_t type : types_worth_trying(num_slots)) {
      platform.set_chassis(num_slots, type);
      ASSERT_EQ(output_of([&] { init(); }), "") << num_slots << " slots, type " << type;
    }
  }
}

TEST_F(DefaultNumbering, AsksThePlatformForBothAndMakesOneTrace) {
  platform.set_chassis(6, 34);

  EXPECT_EQ(init(), 240);

  EXPECT_THAT(platform.calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  EXPECT_THAT(platform.traces(), ElementsAre("ficon_port_to_pn_init(1602): Num Slots: 6 Chassis Type: 34\n"));
  EXPECT_THAT(platform.errors(), IsEmpty());
}

TEST_F(DefaultNumbering, MakesTheTraceForAnUnknownChassisToo) {
  platform.set_chassis(200, -1);
  EXPECT_EQ(init(), 0);
  EXPECT_THAT(platform.traces(), ElementsAre("ficon_port_to_pn_init(1602): Num Slots: 200 Chassis Type: -1\n"));
}

TEST_F(DefaultNumbering, NeitherUsesNorFillsTheCachedPlatformRecord) {
  init();
  EXPECT_THAT(libchnsw_pinfo, IsNull());

  ficon_platform_info cached;
  ficon_get_platform_info(&cached); // 10 slots
  platform.set_chassis(2, 0);
  EXPECT_EQ(init(), 64);
}

TEST_F(DefaultNumbering, OfAnUnknownChassisIsZeroWithEverythingReset) {
  platform.set_chassis(3, 5);
  EXPECT_EQ(init(), 0);
  EXPECT_EQ(difference(entries(1280, make_entry(512, 512))), "");
  EXPECT_EQ(table[1280], kUntouchedEntry);
}

TEST_F(DefaultNumbering, OfAnUnknownChassisGivesNoPortAddresses) {
  platform.set_chassis(3, 5);
  const uint16_t pa_to_pn[] = {512};
  EXPECT_EQ(ficon_port_to_pn_init(1280, table.data(), 1, pa_to_pn), 0);
  EXPECT_EQ(difference(entries(1280, make_entry(512, 512))), "");
}

TEST_F(DefaultNumbering, IsMinusOneWithTheEntriesResetWhenThePlatformInformationIsUnavailable) {
  platform.info_answer = {5, 19};

  EXPECT_EQ(init(), -1);

  EXPECT_EQ(difference(entries(1280, make_entry(512, 512))), "");
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()"));
}

TEST_F(DefaultNumbering, IsMinusTwoWithTheEntriesResetWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {5, 19};

  EXPECT_EQ(init(), -2);

  EXPECT_EQ(difference(entries(1280, make_entry(512, 512))), "");
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
}

TEST_F(DefaultNumbering, FailuresOfThePlatformPrintNothing) {
  platform.info_answer = {5, 19};
  EXPECT_EQ(output_of([&] { init(); }), "");
  platform.info_answer = {};
  platform.chassis_answer = {5, 19};
  EXPECT_EQ(output_of([&] { init(); }), "");
}

TEST_F(DefaultNumbering, CountBelow1280IsRejectedWithTheEntriesReset) {
  platform.set_chassis(2, 5);
  for (const int32_t count : {1, 1000, 1279}) {
    table.assign(kLargestLayout, kUntouchedEntry);
    platform.forget_calls();

    EXPECT_EQ(init(count), -3);

    EXPECT_EQ(difference(entries(static_cast<size_t>(count), make_entry(512, 512))), "") << count;
    EXPECT_EQ(table[static_cast<size_t>(count)], kUntouchedEntry);
    EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  }
}

TEST_F(DefaultNumbering, CountOfZeroOrLessResetsNothing) {
  for (const int32_t count : {0, -1, INT_MIN}) {
    EXPECT_EQ(init(count), -3);
    EXPECT_EQ(table[0], kUntouchedEntry);
    EXPECT_EQ(ficon_port_to_pn_init(count, nullptr, 0, nullptr), -3);
  }
}

TEST_F(DefaultNumbering, PlatformFailuresComeBeforeTheCount) {
  platform.info_answer = {-1, 0};
  EXPECT_EQ(init(1000), -1);
  platform.info_answer = {};
  platform.chassis_answer = {-1, 0};
  EXPECT_EQ(init(1000), -2);
}

TEST_F(DefaultNumbering, CountOf1280IsEnough) {
  platform.set_chassis(2, 5);
  table.resize(1280);
  EXPECT_EQ(init(1280), 64);
}

TEST_F(DefaultNumbering, VsanSlotsAreReset) {
  platform.set_chassis(2, 5);
  init();
  for (size_t i = 0; i < 1280; ++i) EXPECT_THAT(table[i].vsans, Each(0)) << "entry " << i;
}

// ---- port addresses of the layout ----

class DefaultAddresses : public DefaultNumbering {
 protected:
  DefaultAddresses() { platform.set_chassis(2, 5); }

  int32_t init_with(const std::vector<uint16_t>& pa_to_pn, int32_t count = 1280) {
    return ficon_port_to_pn_init(count, table.data(), static_cast<int32_t>(pa_to_pn.size()), pa_to_pn.data());
  }
};

TEST_F(DefaultAddresses, AreThePlacesOfTheNumbers) {
  EXPECT_EQ(init_with({7, 0, 5}), 64);

  EXPECT_EQ(table[7], make_entry(7, 0));
  EXPECT_EQ(table[0], make_entry(0, 1));
  EXPECT_EQ(table[5], make_entry(5, 2));
  EXPECT_EQ(table[9], make_entry(9, 512));
  EXPECT_EQ(table[40], make_entry(512, 512));
}

TEST_F(DefaultAddresses, CanBeASingleOne) {
  init_with({5});
  EXPECT_EQ(table[5], make_entry(5, 0));
  EXPECT_EQ(table[4], make_entry(4, 512));
}

TEST_F(DefaultAddresses, AreTheLowestOfSeveral) {
  init_with({9, 5, 5, 9, 5});
  EXPECT_EQ(table[5].pa, 1);
  EXPECT_EQ(table[9].pa, 0);
}

TEST_F(DefaultAddresses, AreGivenToNumbersWithoutAPhysicalPortToo) {
  init_with({77, 64});
  EXPECT_EQ(table[1024], make_entry(64, 1));
  EXPECT_EQ(table[1037], make_entry(77, 0));
}

// Oddity: entries without a number receive the first address without one.
TEST_F(DefaultAddresses, AreGivenToEntriesWithoutANumberToo) {
  init_with({1, 512, 512});
  EXPECT_EQ(table[1], make_entry(1, 0));
  EXPECT_EQ(table[0], make_entry(0, 512));
  EXPECT_EQ(table[32], make_entry(512, 1));
  EXPECT_EQ(table[1279], make_entry(512, 1));
}

TEST_F(DefaultAddresses, StopAtTheCount) {
  init_with({512, 0}, 1280);
  EXPECT_EQ(table[1279], make_entry(512, 0));
  EXPECT_EQ(table[1280], kUntouchedEntry);
}

TEST_F(DefaultAddresses, GoOnToTheCount) {
  init_with({512, 0}, 3000);
  EXPECT_EQ(table[2999], make_entry(512, 0));
  EXPECT_EQ(table[3000], kUntouchedEntry);
}

TEST_F(DefaultAddresses, BeyondTheCountAreNotGivenEvenWhereTheLayoutReaches) {
  platform.set_chassis(9, 0);
  init_with({223, 150});
  EXPECT_EQ(table[1038], make_entry(150, 1));
  EXPECT_EQ(table[1555].pn, 223);
  EXPECT_EQ(table[1555].pa, kUntouched16);
}

TEST_F(DefaultAddresses, OfOverwrittenPortsAreThoseOfTheExtraNumbers) {
  platform.set_chassis(9, 0);
  init_with({136, 224});
  EXPECT_EQ(table[1024], make_entry(224, 1));
}

TEST_F(DefaultAddresses, OfTheWholeRangeInReverse) {
  std::vector<uint16_t> pa_to_pn(256);
  for (size_t pa = 0; pa < 256; ++pa) pa_to_pn[pa] = static_cast<uint16_t>(255 - pa);
  init_with(pa_to_pn);
  EXPECT_EQ(table[0].pa, 255);
  EXPECT_EQ(table[31].pa, 224);
  EXPECT_EQ(table[254].pa, 223);
  EXPECT_EQ(table[285].pa, 192);
  EXPECT_EQ(table[1037].pa, 178);
  EXPECT_EQ(table[300].pa, 512);
}

TEST_F(DefaultAddresses, CanLieAnywhereInAnArrayOfAnyLength) {
  std::vector<uint16_t> pa_to_pn(40001, 0xFFFF);
  pa_to_pn[40000] = 31;
  pa_to_pn[513] = 30;
  init_with(pa_to_pn);
  EXPECT_EQ(table[31].pa, 40000);
  EXPECT_EQ(table[30].pa, 513);
  EXPECT_EQ(table[29].pa, 512);
}

TEST_F(DefaultAddresses, OfNumbersThatNoEntryHasAreGivenToNone) {
  init_with({0xFFFF, 513, 511, 78});
  for (size_t i = 0; i < 1280; ++i) EXPECT_EQ(table[i].pa, 512) << "entry " << i;
}

TEST_F(DefaultAddresses, AreLeftOutWhenTheirNumberIsZeroOrLess) {
  const uint16_t pa_to_pn[] = {0};
  for (const int32_t pa_count : {0, -1, INT_MIN}) {
    EXPECT_EQ(ficon_port_to_pn_init(1280, table.data(), pa_count, pa_to_pn), 64);
    EXPECT_EQ(table[0], make_entry(0, 512));
  }
}

// ---- is it still the default? ----

struct is_default_row {
  int num_slots;
  int32_t chassis_type;
  size_t groups;
  size_t pns;
  size_t length; // of a group, in entries
  uint16_t first_extra;
};

// Without the 9-slot row, which no table satisfies, and the counts that never have a default.
constexpr is_default_row kIsDefaultRows[] = {
    {1, 5, 1, 20, 254, 20},        {1, 15, 1, 34, 254, 34},  {1, 27, 1, 40, 254, 240},       {1, kAnyType, 1, 40, 254, 40},
    {2, kAnyType, 2, 32, 254, 64}, {6, 34, 4, 48, 254, 240}, {6, kAnyType, 4, 32, 254, 128}, {10, kAnyType, 8, 48, 64, 240},
};

class IsDefaultNumbering : public chnsw_test::LibraryTest {
 protected:
  // As long as the operation may look, and not an entry longer. Port addresses and VSANs do not matter.
  static entries table_of(const is_default_row& row) {
    entries table(1038, make_entry(512, 7, {1, 2, 3}));
    lay_out(table, row.groups, row.pns, row.length, row.first_extra);
    return table;
  }

  int32_t type_of(const is_default_row& row) { return row.chassis_type == kAnyType ? 77 : row.chassis_type; }
};

TEST_F(IsDefaultNumbering, HoldsForTheTableOfEveryRowAndNoOther) {
  for (const auto& of_table : kIsDefaultRows) {
    const entries table = table_of(of_table);
    for (const auto& row : kIsDefaultRows) {
      platform.set_chassis(row.num_slots, type_of(row));
      EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), &row == &of_table ? 1 : 0)
          << row.num_slots << " slots, type " << type_of(row);
    }
  }
}

TEST_F(IsDefaultNumbering, HoldsForEveryTypeWithoutARowOfItsOwn) {
  for (const auto& row : kIsDefaultRows) {
    const entries table = table_of(row);
    for (const int32_t type : kTypes) {
      const is_default_row own = row_of(kIsDefaultRows, row.num_slots, type);
      platform.set_chassis(row.num_slots, type);
      EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), own.chassis_type == row.chassis_type ? 1 : 0)
          << row.num_slots << " slots, type " << type;
    }
  }
}

TEST_F(IsDefaultNumbering, FailsAtEveryEntryThatIsLookedAtAndAtNoOther) {
  for (const auto& row : kIsDefaultRows) {
    entries table = table_of(row);
    for (const int32_t type : {type_of(row), 32, 38}) {
      if (row.chassis_type != kAnyType && type != row.chassis_type) continue;
      platform.set_chassis(row.num_slots, type);
      for (size_t i = 0; i < table.size(); ++i) {
        const bool looked_at = i < row.groups * row.length || i >= 1024;
        const uint16_t pn = table[i].pn;
        for (const int by : {1, -1}) {
          table[i].pn = static_cast<uint16_t>(pn + by);
          ASSERT_EQ(ficon_port_to_pn_is_default(table.data()), looked_at ? 0 : 1)
              << row.num_slots << " slots, type " << type << ", entry " << i;
        }
        table[i].pn = pn;
      }
      platform.forget_calls();
    }
  }
}

// The fifth group and the extra numbers claim the same entries.
TEST_F(IsDefaultNumbering, NeverHoldsForANineSlotChassis) {
  platform.set_chassis(9, 0);
  entries table(1778, make_entry(512, 512));
  lay_out(table, 7, 32, 254, 224);
  EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 0);
  for (size_t k = 8; k < 22; ++k) table[1016 + k].pn = static_cast<uint16_t>(128 + k); // the groups on top
  EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 0);
}

// Nor is an entry behind the 1778 that a client has to have looked at, whatever the others hold.
TEST_F(IsDefaultNumbering, OfANineSlotChassisNeverHoldsForNeighbouringLayouts) {
  for (const size_t groups : {6u, 7u, 8u, 32u}) {
    for (const size_t pns : {7u, 31u, 32u, 33u, 254u}) {
      for (const size_t length : {32u, 224u, 253u, 254u, 255u}) {
        for (const uint16_t first_extra : std::initializer_list<uint16_t>{0, 223, 224, 225, 254}) {
          entries table(1778, make_entry(512, 512));
          for (size_t k = 0; k < 14; ++k) table[1024 + k].pn = static_cast<uint16_t>(first_extra + k);
          const entries extra_numbers_only = table;
          for (size_t i = 0; i < std::min(groups * length, table.size()); ++i) {
            table[i].pn = static_cast<uint16_t>(i % length < pns ? i / length * pns + i % length : 512);
          }
          entries groups_below = table;
          std::copy_n(extra_numbers_only.begin() + 1024, 14, groups_below.begin() + 1024);
          for (const int32_t type : {0, 32, 38}) {
            platform.set_chassis(9, type);
            platform.forget_calls();
            ASSERT_EQ(ficon_port_to_pn_is_default(table.data()), 0) << groups << ' ' << pns << ' ' << length;
            ASSERT_EQ(ficon_port_to_pn_is_default(groups_below.data()), 0) << groups << ' ' << pns << ' ' << length;
          }
        }
      }
    }
  }
}

// Oddity: it expects eight groups of 48, which the laying out never writes.
TEST_F(IsDefaultNumbering, OfATenSlotChassisNeverHoldsForWhatWasLaidOut) {
  for (const int32_t type : {32, 38, 0}) {
    platform.set_chassis(10, type);
    entries table(1280, make_entry(512, 512));
    output_of([&] { ficon_port_to_pn_init(1280, table.data(), 0, nullptr); });
    EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 0);
  }
}

TEST_F(IsDefaultNumbering, OfATenSlotChassisHoldsForEightGroupsOfFortyEight) {
  platform.set_chassis(10, 32);
  entries table(1038, make_entry(512, 512));
  for (size_t i = 0; i < 512; ++i) {
    if (i % 64 < 48) table[i].pn = static_cast<uint16_t>(i / 64 * 48 + i % 64);
  }
  for (size_t k = 0; k < 14; ++k) table[1024 + k].pn = static_cast<uint16_t>(240 + k);
  EXPECT_EQ(table[511 - 16].pn, 383);
  EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 1);
}

TEST_F(IsDefaultNumbering, HoldsForWhatWasLaidOutOnSmallChassis) {
  const std::pair<int, int32_t> chassis[] = {{1, 5}, {1, 15}, {1, 27}, {1, 0}, {2, 0}, {6, 34}, {6, 0}};
  for (const auto& [num_slots, type] : chassis) {
    platform.set_chassis(num_slots, type);
    entries table(1280, kUntouchedEntry);
    ficon_port_to_pn_init(1280, table.data(), 0, nullptr);
    EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 1) << num_slots << " slots, type " << type;
  }
}

// Oddity: 13 and 18 slots have a layout, but never count as default.
TEST_F(IsDefaultNumbering, NeverHoldsForOtherSlotCounts) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    if (num_slots == 1 || num_slots == 2 || num_slots == 6 || num_slots == 10) continue;
    for (const int32_t type : types_worth_trying(num_slots)) {
      platform.set_chassis(num_slots, type);
      platform.forget_calls();
      entries table(kLargestLayout, make_entry(512, 512));
      output_of([&] { ficon_port_to_pn_init(kLargestLayout, table.data(), 0, nullptr); });
      ASSERT_EQ(ficon_port_to_pn_is_default(table.data()), 0) << num_slots << " slots, type " << type;
    }
  }
}

// Not even for numbers without a port that begin at 0.
TEST_F(IsDefaultNumbering, NeverHoldsForAnUnknownChassisWhateverItsNumbers) {
  platform.set_chassis(3, 5);
  entries table(1038, make_entry(512, 512));
  for (size_t k = 0; k < 14; ++k) table[1024 + k].pn = static_cast<uint16_t>(k);
  EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 0);
}

TEST_F(IsDefaultNumbering, AsksThePlatformForBothAndTellsNothing) {
  platform.set_chassis(2, 0);
  entries table(1280, make_entry(512, 512));

  EXPECT_EQ(output_of([&] { EXPECT_EQ(ficon_port_to_pn_is_default(table.data()), 0); }), "");

  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  EXPECT_THAT(libchnsw_pinfo, IsNull());
}

TEST_F(IsDefaultNumbering, IsMinusOneWhenThePlatformInformationIsUnavailable) {
  platform.info_answer = {5, 19};
  EXPECT_EQ(output_of([] { EXPECT_EQ(ficon_port_to_pn_is_default(nullptr), -1); }), "");
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()"));
}

TEST_F(IsDefaultNumbering, IsMinusTwoWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {5, 19};
  EXPECT_EQ(output_of([] { EXPECT_EQ(ficon_port_to_pn_is_default(nullptr), -2); }), "");
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
}

// ---- numbers of one slot ----

struct slot_row {
  int num_slots;
  int32_t chassis_type;
  uint16_t pns; // per card
  int cards;
  uint16_t first_extra;
};

constexpr slot_row kSlotRows[] = {
    {1, 5, 20, 1, 20},           {1, 15, 34, 1, 34},         {1, 27, 40, 1, 240},         {1, kAnyType, 40, 1, 40},
    {2, kAnyType, 32, 2, 64},    {6, 34, 48, 4, 240},        {6, kAnyType, 32, 4, 128},   {9, kAnyType, 32, 7, 224},
    {10, 32, 48, 8, 240},        {10, kAnyType, 16, 8, 224}, {13, kAnyType, 16, 11, 224}, {18, 38, 48, 8, 240},
    {18, kAnyType, 16, 14, 224},
};

constexpr int kSupervisor = -1;

// Line card of each slot, both from 0.
std::vector<int> line_cards(int num_slots, int32_t type) {
  if (num_slots == 6 && type == 34) return {0, 1, kSupervisor, kSupervisor, 2, 3};
  if (num_slots == 6) return {0, 1, 2, 3, kSupervisor, kSupervisor};
  if (num_slots == 9) return {0, 1, 2, 3, kSupervisor, kSupervisor, 4, 5, 6};
  if (num_slots == 10) return {0, 1, 2, 3, kSupervisor, kSupervisor, 4, 5, 6, 7};
  if (num_slots == 13) return {0, 1, 2, 3, 4, 5, kSupervisor, kSupervisor, 6, 7, 8, 9, 10};
  if (num_slots == 18) {
    return {0, 1, 2, 3, 4, 5, 6, 7, kSupervisor, kSupervisor, 8, 9, 10, 11, 12, 13, 14, 15};
  }
  std::vector<int> same(static_cast<size_t>(num_slots));
  std::iota(same.begin(), same.end(), 0);
  return same;
}

class DefaultNumbersOfASlot : public chnsw_test::LibraryTest {
 protected:
  // Puts another chassis into the machine, as if the library had just been loaded.
  void set_chassis(int num_slots, int32_t type) {
    chnsw_test::make_library_fresh();
    platform.set_chassis(num_slots, type);
  }

  uint32_t ask(uint32_t slot, uint32_t logical = 0) {
    pns.assign(260, kUntouched16);
    return ficon_get_default_pn(slot, logical, pns.data());
  }

  // The whole array: first, first + 1, ... for count numbers, then 512 up to length, then untouched.
  static std::vector<uint16_t> numbers(uint16_t first, size_t count, size_t length) {
    std::vector<uint16_t> expected(260, kUntouched16);
    std::fill(expected.begin(), expected.begin() + static_cast<ptrdiff_t>(length), static_cast<uint16_t>(512));
    std::iota(expected.begin(), expected.begin() + static_cast<ptrdiff_t>(count), first);
    return expected;
  }

  std::vector<uint16_t> pns;
};

TEST_F(DefaultNumbersOfASlot, AreThoseOfEverySlotOfEveryChassis) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    for (const int32_t type : types_worth_trying(num_slots)) {
      set_chassis(num_slots, type);
      const slot_row row = row_of(kSlotRows, num_slots, type);
      const std::vector<int> cards = line_cards(num_slots, type);
      for (size_t slot = 0; slot < cards.size(); ++slot) {
        platform.forget_calls();
        const int card = cards[slot];
        const bool numbered = card != kSupervisor && card < row.cards;
        const auto first = static_cast<uint16_t>(card * row.pns);

        const uint32_t status = ask(static_cast<uint32_t>(slot + 1));

        ASSERT_EQ(status, card == kSupervisor ? kInvalidArg : 0u)
            << num_slots << " slots, type " << type << ", slot " << slot + 1;
        ASSERT_EQ(pns, card == kSupervisor ? numbers(0, 0, 0) : numbers(numbered ? first : 0, numbered ? row.pns : 0, 254))
            << num_slots << " slots, type " << type << ", slot " << slot + 1;
      }
      ASSERT_EQ(ask(static_cast<uint32_t>(num_slots + 1)), kInvalidArg);
      ASSERT_EQ(pns, numbers(0, 0, 0));
    }
  }
}

TEST_F(DefaultNumbersOfASlot, LogicalOnesAreTheFourteenOfTheChassisWhateverTheSlot) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    for (const int32_t type : kTypes) {
      set_chassis(num_slots, type);
      const slot_row row = row_of(kSlotRows, num_slots, type);
      for (const uint32_t slot : {0u, 1u, 5u, 300u, 0xFFFFFFFFu}) {
        platform.forget_calls();
        ASSERT_EQ(ask(slot, 1), 0u) << num_slots << " slots, type " << type;
        ASSERT_EQ(pns, numbers(row.first_extra, row.cards != 0 ? 14 : 0, 256)) << num_slots << " slots, type " << type;
      }
    }
  }
}

TEST_F(DefaultNumbersOfASlot, OfTheSecondLineCardOfASixSlotChassisOfTypeThirtyFour) {
  set_chassis(6, 34);
  EXPECT_EQ(ask(2), 0u);
  EXPECT_EQ(pns[0], 48);
  EXPECT_EQ(pns[47], 95);
  EXPECT_EQ(pns[48], 512);
  EXPECT_EQ(pns[253], 512);
  EXPECT_EQ(pns[254], kUntouched16);
}

TEST_F(DefaultNumbersOfASlot, LogicalOnesOfAThirteenSlotChassis) {
  set_chassis(13, 38);
  EXPECT_EQ(ask(1, 1), 0u);
  EXPECT_EQ(pns[0], 224);
  EXPECT_EQ(pns[13], 237);
  EXPECT_EQ(pns[14], 512);
  EXPECT_EQ(pns[255], 512);
  EXPECT_EQ(pns[256], kUntouched16);
}

// Oddity: eight cards here, where the layout of the whole table has five groups.
TEST_F(DefaultNumbersOfASlot, OfTheLastLineCardOfATenSlotChassisOfTypeThirtyTwo) {
  set_chassis(10, 32);
  EXPECT_EQ(ask(10), 0u);
  EXPECT_EQ(pns, numbers(336, 48, 254));
}

// Oddity: eight cards here, where the layout of the whole table has nine groups.
TEST_F(DefaultNumbersOfASlot, OfTheNinthLineCardOfAnEighteenSlotChassisOfTypeThirtyEightAreNone) {
  set_chassis(18, 38);
  EXPECT_EQ(ask(8), 0u);
  EXPECT_EQ(pns, numbers(336, 48, 254));
  EXPECT_EQ(ask(11), 0u); // line card 8
  EXPECT_EQ(pns, numbers(0, 0, 254));
}

TEST_F(DefaultNumbersOfASlot, OfTheLastTwoLineCardsOfAnEighteenSlotChassisAreNone) {
  set_chassis(18, 0);
  EXPECT_EQ(ask(16), 0u); // line card 13
  EXPECT_EQ(pns, numbers(208, 16, 254));
  EXPECT_EQ(ask(17), 0u);
  EXPECT_EQ(pns, numbers(0, 0, 254));
  EXPECT_EQ(ask(18), 0u);
  EXPECT_EQ(pns, numbers(0, 0, 254));
}

TEST_F(DefaultNumbersOfASlot, SlotIsCutToEightBits) {
  set_chassis(2, 0);
  EXPECT_EQ(ask(0x101), 0u); // slot 1
  EXPECT_EQ(pns, numbers(0, 32, 254));
  EXPECT_EQ(ask(0xABCDEF02), 0u); // slot 2
  EXPECT_EQ(pns, numbers(32, 32, 254));
}

TEST_F(DefaultNumbersOfASlot, SlotZeroIsTheSlotBelowTheFirstAndRejected) {
  for (const int num_slots : {1, 10, 255}) {
    set_chassis(num_slots, 0);
    EXPECT_EQ(ask(0), kInvalidArg);
    EXPECT_EQ(pns, numbers(0, 0, 0));
    EXPECT_EQ(ask(0x100), kInvalidArg);
  }
}

TEST_F(DefaultNumbersOfASlot, AnyNonZeroFlagMeansLogical) {
  set_chassis(2, 0);
  for (const uint32_t logical : {1u, 2u, 0x100u, 0x80000000u}) {
    EXPECT_EQ(ask(1, logical), 0u);
    EXPECT_EQ(pns, numbers(64, 14, 256));
  }
}

TEST_F(DefaultNumbersOfASlot, AreAskedOfThePlatformAnewAndOfTheSlotConversion) {
  ask(1);
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)", "get_platform_info()",
                                                "memacct_alloc(206, 5, 8)", "hwinv_get_chassis_type(-1)"));
  platform.forget_calls();
  ask(1);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)", "hwinv_get_chassis_type(-1)"));
}

TEST_F(DefaultNumbersOfASlot, LogicalOnesDoNotConvertTheSlot) {
  ask(1, 1);
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  EXPECT_THAT(libchnsw_pinfo, IsNull());
}

// The slot is converted by the cached record, the numbers are chosen by the fresh one.
TEST_F(DefaultNumbersOfASlot, ChooseTheRowByTheFreshPlatformRecord) {
  set_chassis(10, 0);
  ask(7); // caches a chassis of 10 slots
  platform.set_chassis(13, 0);
  EXPECT_EQ(ask(7), 0u); // slot 6 from 0 is line card 4 of 10 slots, a supervisor's of 13
  EXPECT_EQ(pns, numbers(64, 16, 254));
}

// So a line card that the fresh one does not have can be asked for: the cached chassis has 16.
TEST_F(DefaultNumbersOfASlot, EndWithTheCardsOfTheFreshPlatformRecord) {
  for (const int num_slots : {1, 2, 6, 9, 10, 13, 18}) {
    for (const int32_t type : kTypes) {
      set_chassis(18, 0);
      ask(1);
      platform.set_chassis(num_slots, type);
      const slot_row row = row_of(kSlotRows, num_slots, type);
      for (int card = 0; card < 16; ++card) {
        const int slot = card < 8 ? card + 1 : card + 3; // two supervisors behind the eighth
        const auto first = static_cast<uint16_t>(card < row.cards ? card * row.pns : 0);
        EXPECT_EQ(ask(static_cast<uint32_t>(slot)), 0u);
        EXPECT_EQ(pns, numbers(first, card < row.cards ? row.pns : 0, 254))
            << num_slots << " slots, type " << type << ", line card " << card;
      }
    }
  }
}

TEST_F(DefaultNumbersOfASlot, AreRefusedWhenThePlatformInformationIsUnavailable) {
  platform.info_answer = {5, 19};
  for (const uint32_t logical : {0u, 1u}) {
    platform.forget_calls();
    EXPECT_EQ(output_of([&] { EXPECT_EQ(ask(1, logical), kBase); }), "");
    EXPECT_EQ(pns, numbers(0, 0, 0));
    EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()"));
  }
}

TEST_F(DefaultNumbersOfASlot, AreRefusedWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {5, 19};
  for (const uint32_t logical : {0u, 1u}) {
    platform.forget_calls();
    EXPECT_EQ(output_of([&] { EXPECT_EQ(ask(1, logical), kBase); }), "");
    EXPECT_EQ(pns, numbers(0, 0, 0));
    EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "hwinv_get_chassis_type(-1)"));
  }
}

TEST_F(DefaultNumbersOfASlot, StatusOfTheSlotConversionIsPassedUpWhenThePlatformRecordCannotBeCached) {
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([&] { EXPECT_EQ(ask(1), kPlatform); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[81] for size 8\n");
  EXPECT_EQ(pns, numbers(0, 0, 0));
}

TEST_F(DefaultNumbersOfASlot, StatusOfTheSlotConversionIsPassedUpWhenItsChassisTypeIsUnavailable) {
  int asked = 0;
  platform.on_call = [&](const std::string& call) {
    if (call.starts_with("hwinv_get_chassis_type") && ++asked == 2) platform.chassis_answer = {5, 19};
  };
  EXPECT_EQ(output_of([&] { EXPECT_EQ(ask(1), kPlatform); }), "FICON_ERR: hwinv_get_chassis_type failed, errno = 19");
  EXPECT_EQ(pns, numbers(0, 0, 0));
}

TEST_F(DefaultNumbersOfASlot, TellNothing) {
  platform.debug_flags = {102, 103};
  EXPECT_EQ(output_of([&] {
              ask(1);
              ask(5); // a supervisor's
              ask(11);
              ask(1, 1);
            }),
            "");
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

} // namespace
