/* Port address to port number, and back. What both directions decide alike is tested once for both, full and fast. */
#include <cstdlib>
#include <optional>

#include "library_test.h"

namespace {

using chnsw_test::kUntouched16;
using chnsw_test::kUntouched32;
using chnsw_test::make_entry;
using chnsw_test::output_of;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::Not;

constexpr uint32_t kInvalidArg = 0x40850003;
constexpr uint32_t kPlatform = 0x4085000A;
constexpr uint32_t kPaRange = 0x40850018;
constexpr uint32_t kPnRange = 0x40850019;
constexpr uint32_t kMultiIf = 0x40850052;

// ---- what both directions share ----

struct variant {
  const char* name;
  bool pa_to_pn;
  bool fast;
};

constexpr variant kPaToPnFull = {"PaToPn", true, false};
constexpr variant kPaToPnFast = {"PaToPnFast", true, true};
constexpr variant kPnToPaFull = {"PnToPa", false, false};
constexpr variant kPnToPaFast = {"PnToPaFast", false, true};

void PrintTo(const variant& which, std::ostream* stream) {
  *stream << which.name;
}

struct outcome {
  uint32_t status;
  uint16_t number;
  uint32_t flag;
  bool operator==(const outcome&) const = default;
};

void PrintTo(const outcome& seen, std::ostream* stream) {
  *stream << "{status " << std::hex << seen.status << std::dec << ", number " << seen.number << ", flag " << seen.flag
          << '}';
}

// An entry at index i that carries the searched number carries 100 + i as the other one.
class NumberTranslation : public chnsw_test::LibraryTest, public ::testing::WithParamInterface<variant> {
 protected:
  NumberTranslation() { know_ports(254); }

  void carry(size_t index, uint16_t number, std::initializer_list<uint16_t> vsans, uint16_t current_vsan) {
    const auto other = static_cast<uint16_t>(100 + index);
    if (GetParam().pa_to_pn) map.entry(index, other, number, vsans, current_vsan);
    if (!GetParam().pa_to_pn) map.entry(index, number, other, vsans, current_vsan);
  }

  outcome translate(int32_t number, std::optional<uint32_t> vsan = std::nullopt) {
    if (GetParam().fast) cache_map(got_vsan_port);
    outcome seen = {0, kUntouched16, kUntouched32};
    const uint32_t* given = vsan ? &*vsan : nullptr;
    const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
    seen.status = operation(number, given, &seen.number, &seen.flag, GetParam().fast ? 1 : 0);
    return seen;
  }

  uint32_t range_status() const { return GetParam().pa_to_pn ? kPaRange : kPnRange; }

  int32_t got_vsan_port = 1;
};

std::string name_of(const ::testing::TestParamInfo<variant>& info) {
  return info.param.name;
}

// The port-to-VSAN table is in use: always in the full form, in the fast form when it was prepared.
class NumberChoice : public NumberTranslation {};
INSTANTIATE_TEST_SUITE_P(All, NumberChoice, ::testing::Values(kPaToPnFull, kPaToPnFast, kPnToPaFull, kPnToPaFast), name_of);

TEST_P(NumberChoice, OneEntryAnswersWithoutAVsan) {
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(10), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, OneEntryAnswersForEveryVsan) {
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1}));
  EXPECT_EQ(translate(10, 30), (outcome{0, 105, 1}));
  EXPECT_EQ(translate(10, 0), (outcome{0, 105, 1}));
  EXPECT_EQ(translate(10, 0xFFFFFFFF), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, FirstAndLastIndexAnswer) {
  carry(0, 10, {20}, 20);
  carry(1279, 11, {20}, 20);
  EXPECT_EQ(translate(10), (outcome{0, 100, 1}));
  EXPECT_EQ(translate(11), (outcome{0, 1379, 1}));
}

TEST_P(NumberChoice, EveryIndexIsMetOnceBesideItsNeighbour) {
  for (size_t index = 0; index < 1279; ++index) {
    map.port_to_pn.fill(make_entry(512, 512));
    carry(index, 10, {20}, 20);
    carry(index + 1, 10, {30}, 30);
    const auto other = static_cast<uint16_t>(100 + index);
    ASSERT_EQ(translate(10, 20), (outcome{0, other, 1})) << "index " << index;
    ASSERT_EQ(translate(10, 30), (outcome{0, static_cast<uint16_t>(other + 1), 1})) << "index " << index;
    ASSERT_EQ(translate(10), (outcome{kMultiIf, kUntouched16, 1})) << "index " << index;
    platform.forget_calls();
  }
}

TEST_P(NumberChoice, EntriesWithoutAPhysicalPortCountToo) {
  carry(1023, 10, {20}, 20);
  carry(1024, 10, {20}, 20);
  EXPECT_EQ(translate(10), (outcome{kMultiIf, kUntouched16, 1}));
}

TEST_P(NumberChoice, NumberThatNothingCarriesComesBackItself) {
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(11), (outcome{kPlatform, 11, 1}));
  EXPECT_EQ(translate(11, 20), (outcome{kPlatform, 11, 1}));
}

TEST_P(NumberChoice, OnlyTheSearchedFieldIsCompared) {
  carry(5, 10, {20}, 20); // its other number is 105
  EXPECT_EQ(translate(105), (outcome{kPlatform, 105, 1}));
}

TEST_P(NumberChoice, TwoEntriesWithoutAVsanAreAmbiguous) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {30}, 30);
  EXPECT_EQ(translate(10), (outcome{kMultiIf, kUntouched16, 1}));
}

TEST_P(NumberChoice, OnePortInTheVsanAnswers) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {30}, 30);
  EXPECT_EQ(translate(10, 20), (outcome{0, 103, 1}));
  EXPECT_EQ(translate(10, 30), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, OnePortInTheVsanAnswersWithoutListingIt) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {30}, 30);
  EXPECT_EQ(translate(10, 20), (outcome{0, 103, 1}));
}

TEST_P(NumberChoice, OnePortInTheVsanAnswersAlthoughAnotherListsIt) {
  carry(3, 10, {20}, 30);
  carry(5, 10, {30}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, NoPortInTheVsanIsNotFoundAlthoughBothListIt) {
  carry(3, 10, {20}, 30);
  carry(5, 10, {20}, 30);
  EXPECT_EQ(translate(10, 20), (outcome{kPlatform, kUntouched16, 1}));
}

TEST_P(NumberChoice, OfTwoPortsInTheVsanTheOneThatListsItAnswers) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, OfThreePortsInTheVsanTheOneThatListsItAnswers) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {40, 20}, 20);
  carry(7, 10, {30}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, EverySlotCanListTheVsan) {
  for (size_t slot = 0; slot < 8; ++slot) {
    map.port_to_pn.fill(make_entry(512, 512));
    carry(3, 10, {30}, 20);
    carry(5, 10, {1, 2, 3, 4, 5, 6, 7, 8}, 20);
    map.port_to_pn[5].vsans[slot] = 20;
    map.install();
    EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1})) << "slot " << slot;
  }
}

TEST_P(NumberChoice, TwoPortsThatAreInTheVsanAndListItAreAmbiguous) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{kMultiIf, kUntouched16, 1}));
}

// Oddity: the one ambiguity that hands a number back, and the one case that clears the flag.
TEST_P(NumberChoice, OfTwoPortsInTheVsanThatDoNotListItTheLowerIndexComesBackWithFlagZero) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {40}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{kMultiIf, 103, 0}));
}

TEST_P(NumberChoice, EntryThatListsTheVsanElsewhereIsNotBound) {
  carry(3, 10, {20}, 30);
  carry(5, 10, {40}, 20);
  carry(7, 10, {40}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{kMultiIf, 105, 0}));
}

TEST_P(NumberChoice, VsanAboveSixteenBitsIsInNoPort) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {30}, 20);
  EXPECT_EQ(translate(10, 0x10014), (outcome{kPlatform, kUntouched16, 1}));
}

TEST_P(NumberChoice, VsanZeroMatchesEveryEmptySlot) {
  carry(3, 10, {1, 2, 3, 4, 5, 6, 7, 8}, 0);
  carry(5, 10, {1, 2, 3, 4, 5, 6, 7}, 0);
  EXPECT_EQ(translate(10, 0), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, VsanZeroMatchesEmptySlotsOfTwoPorts) {
  carry(3, 10, {1}, 0);
  carry(5, 10, {2}, 0);
  EXPECT_EQ(translate(10, 0), (outcome{kMultiIf, kUntouched16, 1}));
}

TEST_P(NumberChoice, NumberEqualToTheNumberOfPortsIsOutOfRange) {
  know_ports(54);
  carry(3, 54, {20}, 20);
  carry(5, 53, {20}, 20);
  EXPECT_EQ(translate(54), (outcome{range_status(), kUntouched16, 1}));
  EXPECT_EQ(translate(54, 20), (outcome{range_status(), kUntouched16, 1}));
  EXPECT_EQ(translate(55), (outcome{range_status(), kUntouched16, 1}));
  EXPECT_EQ(translate(0x7FFFFFFF), (outcome{range_status(), kUntouched16, 1}));
  EXPECT_EQ(translate(53), (outcome{0, 105, 1}));
}

TEST_P(NumberChoice, EveryNumberIsOutOfRangeUntilTheNumberOfPortsIsKnown) {
  know_ports(0);
  carry(3, 0, {20}, 20);
  EXPECT_EQ(translate(0), (outcome{range_status(), kUntouched16, 1}));
  EXPECT_EQ(MAX_FICON_PORTS, 0);
}

TEST_P(NumberChoice, NegativeNumberIsNotRejectedButNotFound) {
  carry(3, 0xFFFF, {20}, 20);
  carry(5, 0xFFFE, {20}, 20);
  EXPECT_EQ(translate(-1), (outcome{kPlatform, 0xFFFF, 1}));
  EXPECT_EQ(translate(-2), (outcome{kPlatform, 0xFFFE, 1}));
  EXPECT_EQ(translate(-0x7FFFFFFF - 1), (outcome{kPlatform, 0, 1}));
}

TEST_P(NumberChoice, NegativeNumberPassesTheRangeTestEvenWithoutPorts) {
  know_ports(0);
  EXPECT_EQ(translate(-1), (outcome{kPlatform, 0xFFFF, 1}));
}

TEST_P(NumberChoice, NumberAboveSixteenBitsMatchesNoEntry) {
  know_ports(0x20000);
  carry(3, 10, {20}, 20);
  EXPECT_EQ(translate(0x1000A), (outcome{kPlatform, 10, 1}));
  EXPECT_EQ(translate(0x1000A, 20), (outcome{kPlatform, 10, 1}));
}

TEST_P(NumberChoice, LargestSixteenBitNumberMatches) {
  know_ports(0x20000);
  carry(3, 0xFFFF, {20}, 20);
  EXPECT_EQ(translate(0xFFFF), (outcome{0, 103, 1}));
}

TEST_P(NumberChoice, ZeroIsANumberLikeAnyOther) {
  carry(3, 0, {20}, 20);
  EXPECT_EQ(translate(0), (outcome{0, 103, 1}));
}

TEST_P(NumberChoice, NoNumberMarkIsANumberLikeAnyOther) {
  know_ports(600);
  for (size_t i = 0; i < 1280; ++i) carry(i, 1, {20}, 20);
  carry(3, 512, {20}, 20);
  EXPECT_EQ(translate(512), (outcome{0, 103, 1}));
}

TEST_P(NumberChoice, ControlUnitPortComesBackItselfWithPlatform) {
  carry(3, 254, {20}, 20);
  EXPECT_EQ(translate(254), (outcome{kPlatform, 254, 1}));
  EXPECT_EQ(translate(254, 20), (outcome{kPlatform, 254, 1}));
}

TEST_P(NumberChoice, ControlUnitPortIsNeverOutOfRange) {
  for (const int32_t ports : {254, 34, 1, 0, -1}) {
    know_ports(ports);
    EXPECT_EQ(translate(254), (outcome{kPlatform, 254, 1})) << ports << " ports";
  }
}

TEST_P(NumberChoice, ControlUnitPortIsNotSearchedAlthoughInRange) {
  know_ports(300);
  carry(3, 254, {20}, 20);
  EXPECT_EQ(translate(254), (outcome{kPlatform, 254, 1}));
  carry(4, 255, {20}, 20);
  EXPECT_EQ(translate(255), (outcome{0, 104, 1}));
}

TEST_P(NumberChoice, ReportsNoErrorWhateverTheOutcome) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {20}, 20);
  carry(7, 11, {20}, 20);
  platform.debug_flags = {102};
  const std::string printed = output_of([&] {
    translate(10);
    translate(10, 20);
    translate(10, 30);
    translate(11);
    translate(12);
    translate(254);
    translate(300);
    translate(-1);
  });
  EXPECT_EQ(printed, "");
  EXPECT_THAT(platform.errors(), IsEmpty());
  EXPECT_THAT(platform.debug_output(), IsEmpty());
}

TEST_P(NumberChoice, MissingResultAddressIsRejectedWithTheFlagUntouched) {
  carry(5, 10, {20}, 20);
  cache_map();
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  uint32_t flag = kUntouched32;
  EXPECT_EQ(operation(10, nullptr, nullptr, &flag, GetParam().fast ? 1 : 0), kInvalidArg);
  EXPECT_EQ(flag, kUntouched32);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_P(NumberChoice, MissingFlagAddressIsRejectedWithTheResultUntouched) {
  carry(5, 10, {20}, 20);
  cache_map();
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  uint16_t number = kUntouched16;
  EXPECT_EQ(operation(10, nullptr, &number, nullptr, GetParam().fast ? 1 : 0), kInvalidArg);
  EXPECT_EQ(number, kUntouched16);
  EXPECT_EQ(operation(10, nullptr, nullptr, nullptr, GetParam().fast ? 1 : 0), kInvalidArg);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// The fast path without the port-to-VSAN table. The full form gets there only when the fetch of that table returns
// FICON_RC_PLATFORM, which it never does.
class NumberChoiceWithoutVsanTable : public NumberTranslation {
 protected:
  NumberChoiceWithoutVsanTable() { got_vsan_port = 0; }
};
INSTANTIATE_TEST_SUITE_P(All, NumberChoiceWithoutVsanTable, ::testing::Values(kPaToPnFast, kPnToPaFast), name_of);

TEST_P(NumberChoiceWithoutVsanTable, OneEntryAnswersForEveryVsan) {
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(10, 30), (outcome{0, 105, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, NumberThatNothingCarriesComesBackItself) {
  EXPECT_EQ(translate(10, 20), (outcome{kPlatform, 10, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, TwoEntriesWithoutAVsanAreAmbiguous) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {30}, 30);
  EXPECT_EQ(translate(10), (outcome{kMultiIf, kUntouched16, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, OneEntryThatListsTheVsanAnswers) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {20}, 30);
  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, EverySlotCanListTheVsan) {
  for (size_t slot = 0; slot < 8; ++slot) {
    carry(3, 10, {30}, 20);
    carry(5, 10, {1, 2, 3, 4, 5, 6, 7, 8}, 30);
    map.port_to_pn[5].vsans[slot] = 20;
    EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1})) << "slot " << slot;
  }
}

TEST_P(NumberChoiceWithoutVsanTable, TwoEntriesThatListTheVsanAreAmbiguous) {
  carry(3, 10, {20}, 20);
  carry(5, 10, {20}, 30);
  EXPECT_EQ(translate(10, 20), (outcome{kMultiIf, kUntouched16, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, NoEntryThatListsTheVsanIsNotFoundAlthoughBothAreInIt) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {30}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{kPlatform, kUntouched16, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, VsanAboveSixteenBitsMatchesSlotsByItsLowSixteen) {
  carry(3, 10, {30}, 0);
  carry(5, 10, {20}, 0);
  EXPECT_EQ(translate(10, 0x10014), (outcome{0, 105, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, VsanZeroMatchesEveryEmptySlot) {
  carry(3, 10, {1, 2, 3, 4, 5, 6, 7, 8}, 0);
  carry(5, 10, {1, 2, 3, 4, 5, 6, 7}, 0);
  EXPECT_EQ(translate(10, 0), (outcome{0, 105, 1}));
}

TEST_P(NumberChoiceWithoutVsanTable, TableIsNotTouched) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {20}, 30);
  cache_map(0);
  free(ficon_pmap_port_to_vsan);
  ficon_pmap_port_to_vsan = nullptr;
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  const uint32_t vsan = 20;
  uint16_t number = kUntouched16;
  uint32_t flag = kUntouched32;
  EXPECT_EQ(operation(10, &vsan, &number, &flag, 1), 0u);
  EXPECT_EQ(number, 105);
}

// ---- fetching ----

class NumberFetch : public NumberTranslation {};
INSTANTIATE_TEST_SUITE_P(All, NumberFetch, ::testing::Values(kPaToPnFull, kPnToPaFull), name_of);

TEST_P(NumberFetch, WithoutAVsanIsOfThePortTableOnly) {
  translate(10);
  EXPECT_THAT(platform.calls(),
              ElementsAre("memacct_alloc(206, 5, 25600)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)"));
}

TEST_P(NumberFetch, WithAVsanIsOfThePortTableThenOfTheVsanTable) {
  translate(10, 20);
  EXPECT_THAT(platform.calls(), ElementsAre("memacct_alloc(206, 5, 25600)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)",
                                            "elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)",
                                            "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
}

TEST_P(NumberFetch, IsRepeatedOnEveryCall) {
  carry(3, 10, {20}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 103, 1}));
  map.port_to_pn[3] = make_entry(512, 512);
  carry(5, 10, {20}, 20);
  platform.forget_calls();

  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1}));

  EXPECT_THAT(platform.calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 3, 25600)", "elemdb_lookup_element(1, 2, 4, key 4, 32)",
                          "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
}

TEST_P(NumberFetch, ComesBeforeEveryTestOfTheNumber) {
  for (const int32_t number : {254, 300, -1}) {
    platform.forget_calls();
    translate(number, 20);
    EXPECT_EQ(platform.count("elemdb_lookup_element"), 3) << "number " << number;
  }
}

TEST_P(NumberFetch, RefusedPortTableIsPassedUpWithTheFlagSet) {
  platform.refuse_allocation(1);
  EXPECT_EQ(translate(10, 20), (outcome{1, kUntouched16, 1}));
  EXPECT_THAT(platform.all_calls(), ElementsAre("memacct_alloc(206, 5, 25600)"));
}

TEST_P(NumberFetch, RefusedPortTableIsPassedUpForTheControlUnitPortToo) {
  platform.refuse_allocation(1);
  EXPECT_EQ(translate(254), (outcome{1, kUntouched16, 1}));
}

TEST_P(NumberFetch, RefusedVsanTableIsPassedUpWithTheFlagSet) {
  carry(3, 10, {20}, 20);
  platform.refuse_allocation(2);
  EXPECT_EQ(translate(10, 20), (outcome{1, kUntouched16, 1}));
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("memacct_alloc(206, 5, 25600)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)",
                          "elemdb_lookup_element(1, 2, 4, key 4, 32)", "memacct_alloc(206, 5, 2560)"));
}

TEST_P(NumberFetch, IsFollowedByReadingTheVsanAgainForEveryEntry) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {20}, 30);
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  uint32_t vsan = 20;
  uint16_t number = kUntouched16;
  uint32_t flag = kUntouched32;
  platform.on_call = [&](const std::string& call) {
    if (call == "elemdb_lookup_element(1, 2, 4, key 5, 2560)") vsan = 30;
  };

  EXPECT_EQ(operation(10, &vsan, &number, &flag, 0), 0u);

  EXPECT_EQ(number, 105);
}

TEST_P(NumberFetch, DoesNotMakeTheNumberOfPortsKnown) {
  know_ports(0);
  translate(10, 20);
  EXPECT_EQ(MAX_FICON_PORTS, 0);
  EXPECT_EQ(platform.count("get_platform_info"), 0);
}

TEST_P(NumberFetch, UsesTheVsanTableWhateverTheFastPathHasPrepared) {
  carry(3, 10, {30}, 20);
  carry(5, 10, {20}, 30);
  for (const int32_t prepared : {0, 1}) {
    fastpath_got_vsan_port = prepared;
    EXPECT_EQ(translate(10, 20), (outcome{0, 103, 1}));
    EXPECT_EQ(fastpath_got_vsan_port, prepared);
  }
}

class FastNumber : public NumberTranslation {};
INSTANTIATE_TEST_SUITE_P(All, FastNumber, ::testing::Values(kPaToPnFast, kPnToPaFast), name_of);

TEST_P(FastNumber, FetchesNothing) {
  carry(3, 10, {20}, 20);
  translate(10);
  translate(10, 20);
  translate(11, 20);
  translate(254, 20);
  translate(300, 20);
  EXPECT_THAT(platform.calls(), IsEmpty());
}

TEST_P(FastNumber, AnswersFromTheCachedTablesAsTheyAre) {
  carry(3, 10, {20}, 20);
  cache_map();
  map.entry(3, 1, 1, {1}, 1); // the database has moved on
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  uint16_t number = kUntouched16;
  uint32_t flag = kUntouched32;
  EXPECT_EQ(operation(10, nullptr, &number, &flag, 1), 0u);
  EXPECT_EQ(number, 103);
}

TEST_P(FastNumber, ReadsTheExportedPointersAtEveryCall) {
  carry(3, 10, {20}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 103, 1}));
  map.port_to_pn[3] = make_entry(512, 512);
  carry(5, 10, {20}, 20);
  EXPECT_EQ(translate(10, 20), (outcome{0, 105, 1})); // cache_map() has put new tables there
}

TEST_P(FastNumber, SeesAChangeInsideTheCachedTable) {
  carry(3, 10, {20}, 20);
  cache_map();
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  uint16_t number = kUntouched16;
  uint32_t flag = kUntouched32;
  operation(10, nullptr, &number, &flag, 1);
  ficon_pmap_port_to_pn[3] = make_entry(512, 512);
  ficon_pmap_port_to_pn[900] = GetParam().pa_to_pn ? make_entry(77, 10, {20}) : make_entry(10, 77, {20});

  EXPECT_EQ(operation(10, nullptr, &number, &flag, 1), 0u);

  EXPECT_EQ(number, 77);
}

TEST_P(FastNumber, AnyNonZeroMeansFast) {
  carry(3, 10, {20}, 20);
  cache_map();
  const auto operation = GetParam().pa_to_pn ? ficon_pmap_get_pa_to_pn_withpvsan : ficon_pmap_get_pn_to_pa_withpvsan;
  for (const int32_t fast : {1, 2, -1, 0x100}) {
    uint16_t number = kUntouched16;
    uint32_t flag = kUntouched32;
    EXPECT_EQ(operation(10, nullptr, &number, &flag, fast), 0u);
    EXPECT_EQ(number, 103);
  }
  EXPECT_THAT(platform.calls(), IsEmpty());
}

// ---- port address to port number: what is its own ----

class PaToPn : public chnsw_test::LibraryTest {
 protected:
  PaToPn() { know_ports(254); }

  uint32_t translate(int32_t pa, const uint32_t* given_vsan, int32_t fast = 0) {
    if (fast != 0) cache_map();
    pn = kUntouched16;
    flag = kUntouched32;
    return ficon_pmap_get_pa_to_pn_withpvsan(pa, given_vsan, &pn, &flag, fast);
  }

  uint16_t pn = kUntouched16;
  uint32_t flag = kUntouched32;
  uint32_t vsan = 20;
};

// Oddity: entries without a VSAN are not counted, but the last one met is the one that answers.
TEST_F(PaToPn, CountOneAnswersWithLowestIndexEvenIfItsSlotsAreEmpty) {
  map.entry(5, 105, 10, {20}).entry(3, 103, 10, {});
  EXPECT_EQ(translate(10, nullptr), 0u);
  EXPECT_EQ(pn, 103);
  EXPECT_EQ(flag, 1u);
}

TEST_F(PaToPn, CountOneAnswersWithTheCountedEntryWhenItIsTheLowest) {
  map.entry(5, 105, 10, {}).entry(3, 103, 10, {20});
  EXPECT_EQ(translate(10, nullptr), 0u);
  EXPECT_EQ(pn, 103);
}

// Oddity: the port is there, but without a VSAN it counts as not found.
TEST_F(PaToPn, OnlyEntriesWithEmptySlotsAreNotFound) {
  map.entry(5, 105, 10, {}).entry(3, 103, 10, {});
  EXPECT_EQ(translate(10, nullptr), kPlatform);
  EXPECT_EQ(pn, 10);
}

TEST_F(PaToPn, OnlyEntriesWithEmptySlotsAreNotFoundEvenInTheVsan) {
  map.entry(5, 105, 10, {}, 20);
  EXPECT_EQ(translate(10, &vsan), kPlatform);
  EXPECT_EQ(pn, 10);
}

TEST_F(PaToPn, AnySlotMakesAnEntryCount) {
  for (size_t slot = 0; slot < 8; ++slot) {
    map.port_to_pn[5] = make_entry(105, 10);
    map.port_to_pn[5].vsans[slot] = 1;
    map.install();
    EXPECT_EQ(translate(10, nullptr), 0u) << "slot " << slot;
    EXPECT_EQ(pn, 105);
  }
}

TEST_F(PaToPn, EmptyEntryInTheVsanAnswersWhenOthersCount) {
  map.entry(3, 103, 10, {}, 20).entry(5, 105, 10, {20}, 30).entry(7, 107, 10, {20}, 30);
  EXPECT_EQ(translate(10, &vsan), 0u);
  EXPECT_EQ(pn, 103);
}

TEST_F(PaToPn, EmptyEntryInTheVsanMakesTwoOfThem) {
  map.entry(3, 103, 10, {}, 20).entry(5, 105, 10, {30}, 20).entry(7, 107, 10, {30}, 30);
  EXPECT_EQ(translate(10, &vsan), kMultiIf);
  EXPECT_EQ(pn, 103);
  EXPECT_EQ(flag, 0u);
}

TEST_F(PaToPn, TracesEveryEntryFromTheHighestIndexDownThenTheCounters) {
  map.entry(3, 103, 10, {30}, 20).entry(5, 105, 10, {20, 1, 2, 3, 4, 5, 6, 7}, 20).entry(1279, 9, 10, {}, 30);

  EXPECT_EQ(translate(10, &vsan), 0u);

  EXPECT_EQ(pn, 105);
  EXPECT_THAT(
      platform.traces(),
      ElementsAre("ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(9) pa(10) (1279) vsans(0 0 0 0 0 0 0 0)\n",
                  "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(105) pa(10) (5) vsans(20 1 2 3 4 5 6 7)\n",
                  "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(103) pa(10) (3) vsans(30 0 0 0 0 0 0 0)\n",
                  "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(2) Bound(1) Bound PN(105) Vsan(20) In Vsan(2) gvp(1) "
                  "vsan_pn(103)\n"));
}

TEST_F(PaToPn, TracesLargeSlotsAsUnsignedNumbers) {
  map.entry(5, 0xFFFE, 10, {0xFFFF, 0x8000});
  translate(10, nullptr);
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(65534) pa(10) (5) vsans(65535 32768 0 0 0 0 0 0)\n");
}

TEST_F(PaToPn, EachTraceIsAHistoryRecordThenAQuestionForTheFlag) {
  map.entry(5, 105, 10, {20});
  cache_map();
  ficon_pmap_get_pa_to_pn_withpvsan(10, nullptr, &pn, &flag, 1);
  EXPECT_THAT(platform.all_calls(),
              ElementsAre("evtrc_hist_event_subtype_check(0x730000, 103)",
                          "evtrc_hist_event(0x730000, 88, 103, \"ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(105) pa(10) "
                          "(5) vsans(20 0 0 0 0 0 0 0)\n\")",
                          "evtrc_chk_int(103, 0, 0, 1)", "evtrc_hist_event_subtype_check(0x730000, 103)",
                          "evtrc_hist_event(0x730000, 115, 103, \"ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(1) "
                          "Bound(0) Bound PN(10) Vsan(0) In Vsan(0) gvp(0) vsan_pn(10)\n\")",
                          "evtrc_chk_int(103, 0, 0, 1)"));
}

TEST_F(PaToPn, TracesZeroForTheVsanWhenNoneIsGiven) {
  map.entry(5, 105, 10, {20}, 20);
  translate(10, nullptr);
  EXPECT_EQ(platform.traces().at(1),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(1) Bound(0) Bound PN(10) Vsan(0) In Vsan(0) gvp(0) "
            "vsan_pn(10)\n");
}

TEST_F(PaToPn, TracesTheVsanAtOnceInTheFullForm) {
  translate(10, &vsan);
  EXPECT_THAT(platform.traces(), ElementsAre("ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) "
                                             "Vsan(20) In Vsan(0) gvp(1) vsan_pn(10)\n"));
}

TEST_F(PaToPn, TracesZeroForTheVsanInTheFastFormUntilAnEntryIsMet) {
  translate(10, &vsan, 1);
  EXPECT_THAT(platform.traces(), ElementsAre("ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) "
                                             "Vsan(0) In Vsan(0) gvp(1) vsan_pn(10)\n"));
}

TEST_F(PaToPn, TracesTheVsanInTheFastFormOnceAnEntryIsMet) {
  map.entry(5, 105, 10, {}, 30);
  translate(10, &vsan, 1);
  EXPECT_EQ(platform.traces().at(1),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) Vsan(20) In Vsan(0) gvp(1) "
            "vsan_pn(10)\n");
}

TEST_F(PaToPn, TracesTheVsanAsASignedNumber) {
  vsan = 0xFFFFFFFF;
  translate(10, &vsan);
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) Vsan(-1) In Vsan(0) gvp(1) "
            "vsan_pn(10)\n");
}

TEST_F(PaToPn, TracesTheFastPathMarkAsItIs) {
  map.entry(5, 105, 10, {20}, 20);
  cache_map(5);
  ficon_pmap_get_pa_to_pn_withpvsan(10, &vsan, &pn, &flag, 1);
  EXPECT_EQ(platform.traces().at(1),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(1) Bound(1) Bound PN(105) Vsan(20) In Vsan(1) gvp(5) "
            "vsan_pn(105)\n");
}

TEST_F(PaToPn, TracesEveryNumberInDecimal) {
  for (size_t index = 10; index < 22; ++index) {
    map.entry(index, static_cast<uint16_t>(100 + index), 10, {20, 11, 12, 13, 14, 15, 16, 17}, 20);
  }
  cache_map(16);
  ficon_pmap_get_pa_to_pn_withpvsan(10, &vsan, &pn, &flag, 1);
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(121) pa(10) (21) vsans(20 11 12 13 14 15 16 17)\n");
  EXPECT_EQ(platform.traces().at(12),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(12) Bound(12) Bound PN(110) Vsan(20) In Vsan(12) gvp(16) "
            "vsan_pn(110)\n");
}

TEST_F(PaToPn, NegativeFastPathMarkMeansTheVsanTableToo) {
  map.entry(3, 103, 10, {30}, 20).entry(5, 105, 10, {20}, 30);
  cache_map(-1);
  EXPECT_EQ(ficon_pmap_get_pa_to_pn_withpvsan(10, &vsan, &pn, &flag, 1), 0u);
  EXPECT_EQ(pn, 103);
}

TEST_F(PaToPn, TracesWithoutTheVsanTableOnlyWhatIsBound) {
  map.entry(5, 105, 10, {20}, 20).entry(7, 107, 10, {30}, 20);
  cache_map(0);
  EXPECT_EQ(ficon_pmap_get_pa_to_pn_withpvsan(10, &vsan, &pn, &flag, 1), 0u);
  EXPECT_EQ(platform.traces().at(2),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(2) Bound(1) Bound PN(105) Vsan(20) In Vsan(0) gvp(0) "
            "vsan_pn(10)\n");
}

TEST_F(PaToPn, TracesTheLowestIndexAsBoundAndAsInVsan) {
  map.entry(2, 102, 10, {20}, 30).entry(3, 103, 10, {20}, 20).entry(5, 105, 10, {20}, 20).entry(7, 107, 10, {}, 20);
  EXPECT_EQ(translate(10, &vsan), kMultiIf);
  EXPECT_EQ(platform.traces().at(4),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(3) Bound(2) Bound PN(103) Vsan(20) In Vsan(3) gvp(1) "
            "vsan_pn(103)\n");
}

TEST_F(PaToPn, TracesTheLowSixteenBitsOfANegativeAddressAsRemembered) {
  translate(-1, nullptr);
  EXPECT_THAT(platform.traces(),
              ElementsAre("ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(65535) Vsan(0) In Vsan(0) "
                          "gvp(0) vsan_pn(65535)\n"));
}

TEST_F(PaToPn, ControlUnitPortMakesTheEndTraceOnly) {
  map.entry(5, 105, 254, {20}, 20);
  EXPECT_EQ(translate(254, &vsan), kPlatform);
  EXPECT_THAT(platform.traces(), ElementsAre("ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(254) "
                                             "Vsan(20) In Vsan(0) gvp(1) vsan_pn(254)\n"));
}

TEST_F(PaToPn, ControlUnitPortTracesVsanZeroInTheFastForm) {
  EXPECT_EQ(translate(254, &vsan, 1), kPlatform);
  EXPECT_THAT(platform.traces(), ElementsAre("ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(254) "
                                             "Vsan(0) In Vsan(0) gvp(1) vsan_pn(254)\n"));
}

TEST_F(PaToPn, ControlUnitPortIsStoredBeforeItsTraceIsTold) {
  uint16_t pn_when_traced = 0;
  platform.on_call = [&](const std::string& call) {
    if (call.starts_with("evtrc_hist_event(")) pn_when_traced = pn;
  };
  EXPECT_EQ(translate(254, &vsan), kPlatform);
  EXPECT_EQ(pn_when_traced, 254);
}

TEST_F(PaToPn, AddressOutOfRangeMakesNoTrace) {
  EXPECT_EQ(translate(255, &vsan), kPaRange);
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

TEST_F(PaToPn, VsanIsReadAfterThePortTableWasFetched) {
  platform.on_call = [&](const std::string& call) {
    if (call == "elemdb_lookup_element(1, 2, 4, key 3, 25600)") vsan = 33;
  };
  translate(10, &vsan);
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) Vsan(33) In Vsan(0) gvp(1) "
            "vsan_pn(10)\n");
}

TEST_F(PaToPn, VsanIsReadBeforeTheVsanTableIsFetched) {
  platform.on_call = [&](const std::string& call) {
    if (call == "elemdb_lookup_element(1, 2, 4, key 4, 32)") vsan = 44;
  };
  translate(10, &vsan);
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) Vsan(20) In Vsan(0) gvp(1) "
            "vsan_pn(10)\n");
}

TEST_F(PaToPn, VsanIsReadAgainForEveryEntryAfterItsTrace) {
  map.entry(7, 107, 10, {30}, 30).entry(5, 105, 10, {40}, 40);
  platform.on_call = [&](const std::string& call) {
    if (!call.starts_with("evtrc_hist_event(")) return;
    if (call.find("(7) vsans(") != std::string::npos) vsan = 30;
    if (call.find("(5) vsans(") != std::string::npos) vsan = 40;
  };
  for (const int32_t fast : {0, 1}) {
    vsan = 20;
    platform.forget_calls();
    EXPECT_EQ(translate(10, &vsan, fast), kMultiIf);
    EXPECT_EQ(platform.traces().at(2),
              "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(2) Bound(2) Bound PN(105) Vsan(40) In Vsan(2) gvp(1) "
              "vsan_pn(105)\n");
  }
}

// ---- port number to port address: what is its own ----

class PnToPa : public chnsw_test::LibraryTest {
 protected:
  PnToPa() { know_ports(254); }

  uint32_t translate(int32_t pn, const uint32_t* given_vsan, int32_t fast = 0) {
    if (fast != 0) cache_map();
    pa = kUntouched16;
    flag = kUntouched32;
    return ficon_pmap_get_pn_to_pa_withpvsan(pn, given_vsan, &pa, &flag, fast);
  }

  uint16_t pa = kUntouched16;
  uint32_t flag = kUntouched32;
  uint32_t vsan = 20;
};

TEST_F(PnToPa, EntryWithEmptySlotsCounts) {
  map.entry(5, 10, 105, {});
  EXPECT_EQ(translate(10, nullptr), 0u);
  EXPECT_EQ(pa, 105);
  EXPECT_EQ(flag, 1u);
}

TEST_F(PnToPa, EntryWithEmptySlotsMakesAnAmbiguity) {
  map.entry(5, 10, 105, {20}).entry(3, 10, 103, {});
  EXPECT_EQ(translate(10, nullptr), kMultiIf);
  EXPECT_EQ(pa, kUntouched16);
}

TEST_F(PnToPa, TwoEntriesWithEmptySlotsInTheVsanComeBackWithFlagZero) {
  map.entry(5, 10, 105, {}, 20).entry(3, 10, 103, {}, 20);
  EXPECT_EQ(translate(10, &vsan), kMultiIf);
  EXPECT_EQ(pa, 103);
  EXPECT_EQ(flag, 0u);
}

TEST_F(PnToPa, AddressWithoutANumberIsHandedBackLikeAnyOther) {
  map.entry(5, 10, 512, {20});
  EXPECT_EQ(translate(10, nullptr), 0u);
  EXPECT_EQ(pa, 512);
}

TEST_F(PnToPa, MakesNoTraceAtAll) {
  map.entry(5, 10, 105, {20}, 20).entry(3, 10, 103, {20}, 20);
  for (const int32_t number : {10, 11, 254, 255, -1}) {
    translate(number, nullptr);
    translate(number, &vsan);
    translate(number, &vsan, 1);
  }
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

// ---- wrappers ----
// Two ports carry number 10: index 3 in VSAN 20, index 5 in VSAN 30. The cached tables have them at 13 and 15, so that an
// answer tells which it came from.

class NumberWrapper : public chnsw_test::LibraryTest {
 protected:
  NumberWrapper() {
    know_ports(254);
    map.entry(13, 113, 10, {20}, 20).entry(15, 115, 10, {30}, 30).entry(23, 11, 123, {20}, 20).entry(25, 11, 125, {30}, 30);
    cache_map();
    map.port_to_pn.fill(make_entry(512, 512));
    map.port_to_vsan.fill(0);
    map.entry(3, 103, 10, {20}, 20).entry(5, 105, 10, {30}, 30).entry(43, 11, 143, {20}, 20).entry(45, 11, 145, {30}, 30);
  }

  uint16_t number = kUntouched16;
};

TEST_F(NumberWrapper, PaToPnFetchesAndGivesNoVsan) {
  EXPECT_EQ(ficon_pmap_get_pa_to_pn(10, &number), kMultiIf);
  EXPECT_EQ(number, kUntouched16);
  EXPECT_THAT(platform.calls(), ElementsAre("elemdb_lookup_element(1, 2, 4, key 3, 25600)"));
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(105) pa(10) (5) vsans(30 0 0 0 0 0 0 0)\n");
}

TEST_F(NumberWrapper, PaVsanToPnFetchesAndGivesTheVsan) {
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn(10, 30, &number), 0u);
  EXPECT_EQ(number, 105);
  EXPECT_THAT(platform.calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 3, 25600)", "elemdb_lookup_element(1, 2, 4, key 4, 32)",
                          "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
}

TEST_F(NumberWrapper, PaToPnFastReadsTheCacheAndGivesNoVsan) {
  EXPECT_EQ(ficon_pmap_get_pa_to_pn_fast(10, &number), kMultiIf);
  EXPECT_EQ(number, kUntouched16);
  EXPECT_THAT(platform.calls(), IsEmpty());
  EXPECT_EQ(platform.traces().at(0),
            "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(115) pa(10) (15) vsans(30 0 0 0 0 0 0 0)\n");
}

TEST_F(NumberWrapper, PaVsanToPnFastReadsTheCacheAndGivesTheVsan) {
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn_fast(10, 20, &number), 0u);
  EXPECT_EQ(number, 113);
  EXPECT_THAT(platform.calls(), IsEmpty());
}

TEST_F(NumberWrapper, PnToPaFetchesAndGivesNoVsan) {
  EXPECT_EQ(ficon_pmap_get_pn_to_pa(11, &number), kMultiIf);
  EXPECT_EQ(number, kUntouched16);
  EXPECT_EQ(ficon_pmap_get_pn_to_pa(103, &number), 0u);
  EXPECT_EQ(number, 10);
  EXPECT_THAT(platform.calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 3, 25600)", "elemdb_lookup_element(1, 2, 4, key 3, 25600)"));
}

TEST_F(NumberWrapper, PnVsanToPaFetchesAndGivesTheVsan) {
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa(11, 30, &number), 0u);
  EXPECT_EQ(number, 145);
  EXPECT_THAT(platform.calls(),
              ElementsAre("elemdb_lookup_element(1, 2, 4, key 3, 25600)", "elemdb_lookup_element(1, 2, 4, key 4, 32)",
                          "elemdb_lookup_element(1, 2, 4, key 5, 2560)"));
}

TEST_F(NumberWrapper, PnToPaFastReadsTheCacheAndGivesNoVsan) {
  EXPECT_EQ(ficon_pmap_get_pn_to_pa_fast(11, &number), kMultiIf);
  EXPECT_EQ(number, kUntouched16);
  EXPECT_EQ(ficon_pmap_get_pn_to_pa_fast(113, &number), 0u);
  EXPECT_EQ(number, 10);
  EXPECT_THAT(platform.calls(), IsEmpty());
}

TEST_F(NumberWrapper, PnVsanToPaFastReadsTheCacheAndGivesTheVsan) {
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa_fast(11, 20, &number), 0u);
  EXPECT_EQ(number, 123);
  EXPECT_THAT(platform.calls(), IsEmpty());
}

TEST_F(NumberWrapper, VsanZeroByValueIsAVsan) {
  map.current_vsan(3, 0); // now in VSAN 0; without a VSAN the answer would be an ambiguity
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn(10, 0, &number), 0u);
  EXPECT_EQ(number, 103);
  map.current_vsan(43, 0);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa(11, 0, &number), 0u);
  EXPECT_EQ(number, 143);
}

TEST_F(NumberWrapper, StatusesOfTheFullOperationComeThrough) {
  EXPECT_EQ(ficon_pmap_get_pa_to_pn(255, &number), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn(255, 20, &number), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_to_pn_fast(255, &number), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn_fast(255, 20, &number), kPaRange);
  EXPECT_EQ(ficon_pmap_get_pn_to_pa(255, &number), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa(255, 20, &number), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_to_pa_fast(255, &number), kPnRange);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa_fast(255, 20, &number), kPnRange);
  EXPECT_EQ(number, kUntouched16);
}

TEST_F(NumberWrapper, MissingResultAddressIsRejected) {
  EXPECT_EQ(ficon_pmap_get_pa_to_pn(10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn(10, 20, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_to_pn_fast(10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn_fast(10, 20, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_to_pa(10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa(10, 20, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_to_pa_fast(10, nullptr), kInvalidArg);
  EXPECT_EQ(ficon_pmap_get_pn_vsan_to_pa_fast(10, 20, nullptr), kInvalidArg);
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

TEST_F(NumberWrapper, AmbiguityInTheVsanStillHandsTheNumberBack) {
  map.entry(3, 103, 10, {30}, 20).entry(5, 105, 10, {30}, 20);
  EXPECT_EQ(ficon_pmap_get_pa_vsan_to_pn(10, 20, &number), kMultiIf);
  EXPECT_EQ(number, 103);
}

} // namespace
