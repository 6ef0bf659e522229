/* Slots and line cards, both counted from 0, and the port map entry of a slot's port. */
#include <cerrno>

#include "library_test.h"

namespace {

using chnsw_test::kUntouched32;
using chnsw_test::kUntouched8;
using chnsw_test::kUntouchedEntry;
using chnsw_test::make_entry;
using chnsw_test::output_of;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;

constexpr int32_t kInvalidArg = 0x40850003;
constexpr int32_t kPlatform = 0x4085000A;

class SlotNumbering : public chnsw_test::LibraryTest {
 protected:
  // Puts another chassis into the machine, as if the library had just been loaded.
  void set_chassis(int num_slots, int32_t type) {
    chnsw_test::make_library_fresh();
    platform.set_chassis(num_slots, type);
  }

  int32_t to_line_card(int slot) {
    lc = kUntouched8;
    return ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot), &lc);
  }

  int32_t to_slot(int line_card) {
    slot_found = kUntouched8;
    return ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(line_card), &slot_found);
  }

  uint8_t lc = kUntouched8;
  uint8_t slot_found = kUntouched8;
};

// ---- slot to line card ----

class SlotToLineCard : public SlotNumbering {};

constexpr int kNone = -1; // a supervisor's slot

struct chassis_row {
  int num_slots;
  std::vector<int32_t> types;
  std::vector<int> line_card_of_slot;
  std::vector<int> slot_of_line_card;
};

const chassis_row kChassis[] = {
    {6, {34}, {0, 1, kNone, kNone, 2, 3}, {0, 1, 4, 5}},
    {6, {-1, 0, 5, 32, 33, 35, 38, 34 + 256}, {0, 1, 2, 3, kNone, kNone}, {0, 1, 2, 3}},
    {9, {-1, 0, 32, 34, 38}, {0, 1, 2, 3, kNone, kNone, 4, 5, 6}, {0, 1, 2, 3, 6, 7, 8}},
    {10, {-1, 0, 32, 34, 38}, {0, 1, 2, 3, kNone, kNone, 4, 5, 6, 7}, {0, 1, 2, 3, 6, 7, 8, 9}},
    {13, {-1, 0, 32, 34, 38}, {0, 1, 2, 3, 4, 5, kNone, kNone, 6, 7, 8, 9, 10}, {0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12}},
    {18,
     {-1, 0, 32, 34, 38},
     {0, 1, 2, 3, 4, 5, 6, 7, kNone, kNone, 8, 9, 10, 11, 12, 13, 14, 15},
     {0, 1, 2, 3, 4, 5, 6, 7, 10, 11, 12, 13, 14, 15, 16, 17}},
};

bool has_supervisors(int num_slots) {
  return num_slots == 6 || num_slots == 9 || num_slots == 10 || num_slots == 13 || num_slots == 18;
}

TEST_F(SlotToLineCard, SkipsTheSupervisorsOfEveryChassisWithSome) {
  for (const auto& row : kChassis) {
    for (const int32_t type : row.types) {
      set_chassis(row.num_slots, type);
      for (int slot = 0; slot < row.num_slots; ++slot) {
        const int expected = row.line_card_of_slot[static_cast<size_t>(slot)];
        const int32_t status = to_line_card(slot);
        EXPECT_EQ(status, expected == kNone ? kInvalidArg : 0)
            << row.num_slots << " slots, type " << type << ", slot " << slot;
        EXPECT_EQ(lc, expected == kNone ? kUntouched8 : expected)
            << row.num_slots << " slots, type " << type << ", slot " << slot;
      }
    }
  }
}

TEST_F(SlotToLineCard, IsTheSlotItselfOnEveryOtherChassis) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    if (has_supervisors(num_slots)) continue;
    for (const int32_t type : {-1, 32, 34, 38}) {
      set_chassis(num_slots, type);
      platform.forget_calls();
      for (int slot = 0; slot < num_slots; ++slot) {
        ASSERT_EQ(to_line_card(slot), 0) << num_slots << " slots, type " << type << ", slot " << slot;
        ASSERT_EQ(lc, slot) << num_slots << " slots, type " << type << ", slot " << slot;
      }
    }
  }
}

TEST_F(SlotToLineCard, RejectsEverySlotBeyondTheLast) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    for (const int32_t type : {-1, 34}) {
      set_chassis(num_slots, type);
      platform.forget_calls();
      for (int slot = num_slots; slot <= 255; ++slot) {
        ASSERT_EQ(to_line_card(slot), kInvalidArg) << num_slots << " slots, type " << type << ", slot " << slot;
        ASSERT_EQ(lc, kUntouched8);
      }
    }
  }
}

TEST_F(SlotToLineCard, OfATenSlotChassis) {
  set_chassis(10, 0);
  EXPECT_EQ(to_line_card(3), 0);
  EXPECT_EQ(lc, 3);
  EXPECT_EQ(to_line_card(4), kInvalidArg);
  EXPECT_EQ(to_line_card(5), kInvalidArg);
  EXPECT_EQ(to_line_card(6), 0);
  EXPECT_EQ(lc, 4);
  EXPECT_EQ(to_line_card(9), 0);
  EXPECT_EQ(lc, 7);
  EXPECT_EQ(to_line_card(10), kInvalidArg);
}

TEST_F(SlotToLineCard, FirstCallAsksForTheRecordAndTheType) {
  to_line_card(0);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "memacct_alloc(206, 5, 8)", "hwinv_get_chassis_type(-1)"));
}

TEST_F(SlotToLineCard, LaterCallsUseTheCachedRecordAndAskForTheType) {
  to_line_card(0);
  platform.set_chassis(2, 0); // not seen any more
  platform.forget_calls();
  EXPECT_EQ(to_line_card(9), 0);
  EXPECT_EQ(lc, 7);
  EXPECT_THAT(platform.all_calls(), ElementsAre("hwinv_get_chassis_type(-1)"));
}

TEST_F(SlotToLineCard, ChassisTypeIsAskedAnewOnEveryCall) {
  set_chassis(6, 0);
  EXPECT_EQ(to_line_card(2), 0);
  platform.chassis_type = 34;
  EXPECT_EQ(to_line_card(2), kInvalidArg);
  EXPECT_EQ(to_line_card(4), 0);
  EXPECT_EQ(lc, 2);
}

TEST_F(SlotToLineCard, IsPlatformWithoutAReportWhenTheRecordIsUnavailable) {
  platform.info_answer = {5, 19};
  EXPECT_EQ(output_of([&] { EXPECT_EQ(to_line_card(0), kPlatform); }), "");
  EXPECT_EQ(lc, kUntouched8);
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()"));
}

TEST_F(SlotToLineCard, IsPlatformAfterTheWarningWhenTheRecordCannotBeCached) {
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([&] { EXPECT_EQ(to_line_card(0), kPlatform); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[81] for size 8\n");
  EXPECT_EQ(lc, kUntouched8);
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "memacct_alloc(206, 5, 8)"));
}

TEST_F(SlotToLineCard, IsPlatformWithAReportWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {5, 19};
  EXPECT_EQ(output_of([&] { EXPECT_EQ(to_line_card(0), kPlatform); }),
            "FICON_ERR: hwinv_get_chassis_type failed, errno = 19");
  EXPECT_EQ(lc, kUntouched8);
  EXPECT_THAT(platform.errors(), ElementsAre("hwinv_get_chassis_type failed, errno = 19"));
}

TEST_F(SlotToLineCard, ChassisTypeIsAskedBeforeTheSlotIsTested) {
  platform.chassis_answer = {5, 19};
  output_of([&] { EXPECT_EQ(to_line_card(200), kPlatform); });
}

TEST_F(SlotToLineCard, ReportReadsErrnoAfreshForEachOutput) {
  platform.chassis_answer = {5, 19};
  platform.debug_flags = {102};
  platform.on_call = [](const std::string& call) {
    if (call.starts_with("evtrc_hist_event_subtype_check")) errno = 21;
    if (call.starts_with("evtrc_chk_int")) errno = 22;
    if (call.starts_with("dbgout")) errno = 23;
  };
  const std::string printed = output_of([&] { to_line_card(0); });
  EXPECT_THAT(platform.errors(), ElementsAre("hwinv_get_chassis_type failed, errno = 21"));
  EXPECT_EQ(platform.debug_output().at(0).text, "hwinv_get_chassis_type failed, errno = 22");
  EXPECT_EQ(printed, "FICON_ERR: hwinv_get_chassis_type failed, errno = 23");
}

TEST_F(SlotToLineCard, RejectionIsNotReported) {
  EXPECT_EQ(output_of([&] {
              to_line_card(4);
              to_line_card(10);
            }),
            "");
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

// ---- line card to slot ----

class LineCardToSlot : public SlotNumbering {};

TEST_F(LineCardToSlot, SkipsTheSupervisorsOfEveryChassisWithSome) {
  for (const auto& row : kChassis) {
    for (const int32_t type : row.types) {
      set_chassis(row.num_slots, type);
      for (int card = 0; card < row.num_slots - 2; ++card) {
        EXPECT_EQ(to_slot(card), 0) << row.num_slots << " slots, type " << type << ", line card " << card;
        EXPECT_EQ(slot_found, row.slot_of_line_card[static_cast<size_t>(card)])
            << row.num_slots << " slots, type " << type << ", line card " << card;
      }
    }
  }
}

// Oddity: two slots are taken off even where no supervisor is known, so not every line card of a slot converts back.
TEST_F(LineCardToSlot, IsTheLineCardItselfOnEveryOtherChassis) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    if (has_supervisors(num_slots)) continue;
    const int cards = num_slots > 2 ? num_slots - 2 : num_slots;
    for (const int32_t type : {-1, 32, 34, 38}) {
      set_chassis(num_slots, type);
      platform.forget_calls();
      for (int card = 0; card < cards; ++card) {
        ASSERT_EQ(to_slot(card), 0) << num_slots << " slots, type " << type << ", line card " << card;
        ASSERT_EQ(slot_found, card) << num_slots << " slots, type " << type << ", line card " << card;
      }
    }
  }
}

TEST_F(LineCardToSlot, RejectsEveryLineCardBeyondTheLast) {
  for (int num_slots = 0; num_slots <= 255; ++num_slots) {
    const int cards = num_slots > 2 ? num_slots - 2 : num_slots;
    for (const int32_t type : {-1, 34}) {
      set_chassis(num_slots, type);
      platform.forget_calls();
      for (int card = cards; card <= 255; ++card) {
        ASSERT_EQ(to_slot(card), kInvalidArg) << num_slots << " slots, type " << type << ", line card " << card;
        ASSERT_EQ(slot_found, kUntouched8);
      }
    }
  }
}

TEST_F(LineCardToSlot, OfATenSlotChassis) {
  set_chassis(10, 0);
  EXPECT_EQ(to_slot(3), 0);
  EXPECT_EQ(slot_found, 3);
  EXPECT_EQ(to_slot(4), 0);
  EXPECT_EQ(slot_found, 6);
  EXPECT_EQ(to_slot(7), 0);
  EXPECT_EQ(slot_found, 9);
  EXPECT_EQ(to_slot(8), kInvalidArg);
}

TEST_F(LineCardToSlot, OfChassisOfOneTwoAndThreeSlots) {
  set_chassis(1, 0);
  EXPECT_EQ(to_slot(0), 0);
  EXPECT_EQ(to_slot(1), kInvalidArg);
  set_chassis(2, 0);
  EXPECT_EQ(to_slot(1), 0);
  EXPECT_EQ(slot_found, 1);
  EXPECT_EQ(to_slot(2), kInvalidArg);
  set_chassis(3, 0);
  EXPECT_EQ(to_slot(0), 0);
  EXPECT_EQ(to_slot(1), kInvalidArg);
}

TEST_F(LineCardToSlot, FirstCallAsksForTheRecordAndTheTypeAndLaterCallsForTheType) {
  to_slot(0);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "memacct_alloc(206, 5, 8)", "hwinv_get_chassis_type(-1)"));
  platform.forget_calls();
  to_slot(0);
  EXPECT_THAT(platform.all_calls(), ElementsAre("hwinv_get_chassis_type(-1)"));
}

TEST_F(LineCardToSlot, IsPlatformWithoutAReportWhenTheRecordIsUnavailable) {
  platform.info_answer = {5, 19};
  EXPECT_EQ(output_of([&] { EXPECT_EQ(to_slot(0), kPlatform); }), "");
  EXPECT_EQ(slot_found, kUntouched8);
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()"));
}

TEST_F(LineCardToSlot, IsPlatformAfterTheWarningWhenTheRecordCannotBeCached) {
  platform.refuse_allocation(1);
  EXPECT_EQ(output_of([&] { EXPECT_EQ(to_slot(0), kPlatform); }),
            "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[81] for size 8\n");
  EXPECT_EQ(slot_found, kUntouched8);
}

TEST_F(LineCardToSlot, IsPlatformWithAReportWhenTheChassisTypeIsUnavailable) {
  platform.chassis_answer = {5, 19};
  EXPECT_EQ(output_of([&] { EXPECT_EQ(to_slot(200), kPlatform); }), "FICON_ERR: hwinv_get_chassis_type failed, errno = 19");
  EXPECT_EQ(slot_found, kUntouched8);
  EXPECT_THAT(platform.errors(), ElementsAre("hwinv_get_chassis_type failed, errno = 19"));
}

TEST_F(LineCardToSlot, RejectionIsNotReported) {
  EXPECT_EQ(output_of([&] { to_slot(8); }), "");
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

// ---- the entry of a slot's port ----

class SlotPort : public SlotNumbering {
 protected:
  SlotPort() {
    for (uint16_t i = 0; i < 1280; ++i)
      map.port_to_pn[i] = make_entry(i, static_cast<uint16_t>(5000 + i), {i, 2, 3, 4, 5, 6, 7, 8});
    cache_map();
  }

  // What stands at index i of the cached table.
  static ficon_pmap_port_entry cached(uint16_t i) {
    return make_entry(i, static_cast<uint16_t>(5000 + i), {i, 2, 3, 4, 5, 6, 7, 8});
  }

  ficon_pmap_port_entry entry = kUntouchedEntry;
  uint32_t index = kUntouched32;
};

TEST_F(SlotPort, IndexIsLineCardTimes254PlusPort) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(2, 5, &entry, &index), 0);
  EXPECT_EQ(index, 513u);
  EXPECT_EQ(entry, cached(513));
}

TEST_F(SlotPort, IndexSkipsTheSupervisors) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(6, 0, &entry, &index), 0);
  EXPECT_EQ(index, 1016u);
  EXPECT_EQ(entry, cached(1016));
}

TEST_F(SlotPort, FirstAndLastPortOfALineCard) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(0, 0, &entry, &index), 0);
  EXPECT_EQ(index, 0u);
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(3, 253, &entry, &index), 0);
  EXPECT_EQ(index, 1015u);
  EXPECT_EQ(entry, cached(1015));
}

TEST_F(SlotPort, PortIsNotRangeChecked) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(0, 1279, &entry, &index), 0);
  EXPECT_EQ(index, 1279u);
  EXPECT_EQ(entry, cached(1279));
}

TEST_F(SlotPort, OnlyTheLowEightBitsOfTheSlotCount) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(0xFFFFFF02, 5, &entry, &index), 0);
  EXPECT_EQ(index, 513u);
}

TEST_F(SlotPort, TableIsNotFetched) {
  ficonm_platform_slot_to_pnpa_index(2, 5, &entry, &index);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "memacct_alloc(206, 5, 8)", "hwinv_get_chassis_type(-1)"));
}

TEST_F(SlotPort, GivenTableIsReadInsteadOfTheCachedOne) {
  std::vector<ficon_pmap_port_entry> table(514, kUntouchedEntry);
  table[513] = make_entry(1, 2, {3, 4, 5, 6, 7, 8, 9, 10});
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index_withpmap(2, 5, &entry, &index, table.data()), 0);
  EXPECT_EQ(index, 513u);
  EXPECT_EQ(entry, make_entry(1, 2, {3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST_F(SlotPort, NullTableMeansTheCachedOneAsItIsNow) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index_withpmap(2, 5, &entry, &index, nullptr), 0);
  EXPECT_EQ(entry, cached(513));
  map.port_to_pn[513] = make_entry(1, 2, {3});
  cache_map();
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index_withpmap(2, 5, &entry, &index, nullptr), 0);
  EXPECT_EQ(entry, make_entry(1, 2, {3}));
}

TEST_F(SlotPort, RejectedSlotLeavesEntryAndIndexAlone) {
  for (const uint32_t slot : {4u, 5u, 10u, 255u}) {
    EXPECT_EQ(ficonm_platform_slot_to_pnpa_index_withpmap(slot, 5, &entry, &index, nullptr), kInvalidArg);
    EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(slot, 5, &entry, &index), kInvalidArg);
    EXPECT_EQ(ficonm_platform_slot_to_pnpa(slot, 5, &entry), kInvalidArg);
  }
  EXPECT_EQ(entry, kUntouchedEntry);
  EXPECT_EQ(index, kUntouched32);
}

TEST_F(SlotPort, PlatformFailureLeavesEntryAndIndexAlone) {
  platform.info_answer = {5, 19};
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index_withpmap(2, 5, &entry, &index, nullptr), kPlatform);
  EXPECT_EQ(ficonm_platform_slot_to_pnpa_index(2, 5, &entry, &index), kPlatform);
  EXPECT_EQ(ficonm_platform_slot_to_pnpa(2, 5, &entry), kPlatform);
  EXPECT_EQ(entry, kUntouchedEntry);
  EXPECT_EQ(index, kUntouched32);
}

TEST_F(SlotPort, EntryAlone) {
  EXPECT_EQ(ficonm_platform_slot_to_pnpa(2, 5, &entry), 0);
  EXPECT_EQ(entry, cached(513));
}

TEST_F(SlotPort, NumberAlone) {
  EXPECT_EQ(ficonm_platform_slot_to_pn(2, 5), 513);
}

TEST_F(SlotPort, NumberAloneUsesTheLowEightBitsOfTheSlot) {
  EXPECT_EQ(ficonm_platform_slot_to_pn(0x102, 5), 513);
}

TEST_F(SlotPort, NumberAloneIsNoNumberOnAnyFailure) {
  EXPECT_EQ(ficonm_platform_slot_to_pn(4, 5), 512);
  EXPECT_EQ(ficonm_platform_slot_to_pn(10, 5), 512);
  platform.chassis_answer = {5, 19};
  EXPECT_EQ(output_of([&] { EXPECT_EQ(ficonm_platform_slot_to_pn(2, 5), 512); }),
            "FICON_ERR: hwinv_get_chassis_type failed, errno = 19");
  chnsw_test::make_library_fresh();
  cache_map();
  platform.info_answer = {5, 19};
  EXPECT_EQ(output_of([&] { EXPECT_EQ(ficonm_platform_slot_to_pn(2, 5), 512); }), "");
  platform.info_answer = {};
  platform.refuse_type(5);
  output_of([&] { EXPECT_EQ(ficonm_platform_slot_to_pn(2, 5), 512); });
}

} // namespace
