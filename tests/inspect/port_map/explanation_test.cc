// The search through the tables rule by rule, and explanations of whole answers.
#include "inspect/port_map/explanation.h"

#include <gmock/gmock.h>

#include "asked_switch.h"

namespace inspect_test {
namespace {

using inspect::library_session;
using inspect::search_counters;
using inspect::translation;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

// Tables that hold nothing but what a test puts there.
struct hand_made_tables {
  std::vector<ficon_pmap_port_entry> entries{FICON_PMAP_PORT_ENTRIES, {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}}};
  std::vector<uint16_t> vsans = std::vector<uint16_t>(FICON_PMAP_PORT_ENTRIES);
  std::vector<uint32_t> interfaces = std::vector<uint32_t>(256);
  uint32_t ports = 238;

  // A port with address 10 that is bound to one VSAN, or to none, and is in another, or in none.
  void add(unsigned index, uint16_t pn, uint16_t bound, uint16_t in) {
    entries[index] = {pn, 0x10, {bound}};
    vsans[index] = in;
  }

  inspect::search_result find(uint32_t pa, std::optional<uint32_t> vsan) const {
    return inspect::search_port_map({translation::pa_to_pn, pa, vsan},
                                    {entries.data(), vsans.data(), interfaces.data(), ports});
  }
};

TEST(PortMapSearch, NothingThatCountsHandsTheAddressBack) {
  hand_made_tables tables;
  auto result = tables.find(0x10, std::nullopt);
  EXPECT_EQ(result.rule, "no entry counts: not found, and the address itself is handed back");
  EXPECT_EQ(result.status, uint32_t{FICON_RC_PLATFORM});
  EXPECT_EQ(result.written, 0x10U);
  tables.add(7, 70, 0, 10);
  result = tables.find(0x10, 10);
  EXPECT_EQ(result.written, 0x10U);
  EXPECT_EQ(result.entries.at(0).passed_over, "bound to no VSAN");
  EXPECT_EQ(result.counters, (search_counters{0, 0, 1, true})); // looked at for the VSAN all the same
}

TEST(PortMapSearch, OneThatCountsAnswersWithTheLowestIndexEvenIfThatDoesNotCount) {
  hand_made_tables tables;
  tables.add(7, 70, 10, 10);
  EXPECT_EQ(tables.find(0x10, std::nullopt).rule, "one entry counts: its port number is the answer");
  tables.add(5, 50, 0, 0);
  const auto result = tables.find(0x10, std::nullopt);
  EXPECT_THAT(result.rule, StartsWith("one entry counts, but the lowest one that carries the address answers"));
  EXPECT_EQ(result.written, 50U);
  EXPECT_EQ(result.index, 5U);
}

TEST(PortMapSearch, SeveralAreAmbiguousWithoutAVsanAndNotFoundInAnother) {
  hand_made_tables tables;
  tables.add(7, 70, 10, 10);
  tables.add(5, 50, 20, 20);
  const auto without = tables.find(0x10, std::nullopt);
  EXPECT_EQ(without.status, uint32_t{FICON_RC_MULTI_IF});
  EXPECT_FALSE(without.written || without.index);
  const auto in_another = tables.find(0x10, 30);
  EXPECT_EQ(in_another.status, uint32_t{FICON_RC_PLATFORM});
  EXPECT_FALSE(in_another.written);
  EXPECT_EQ(tables.find(0x10, 10).written, 70U);
  EXPECT_EQ(tables.find(0x10, 20).index, 5U);
}

TEST(PortMapSearch, SeveralInOneVsanAreDecidedByWhatIsBoundToIt) {
  hand_made_tables tables;
  tables.add(7, 70, 30, 10);
  tables.add(5, 50, 30, 10);
  const auto unbound = tables.find(0x10, 10);
  EXPECT_EQ(unbound.status, uint32_t{FICON_RC_MULTI_IF});
  EXPECT_EQ(unbound.written, 50U);
  EXPECT_EQ(unbound.flag, 0U);
  tables.add(7, 70, 10, 10);
  const auto one_bound = tables.find(0x10, 10);
  EXPECT_EQ(one_bound.status, 0U);
  EXPECT_EQ(one_bound.written, 70U);
  EXPECT_EQ(one_bound.counters, (search_counters{2, 1, 2, true}));
  tables.add(5, 50, 10, 10);
  const auto both_bound = tables.find(0x10, 10);
  EXPECT_EQ(both_bound.status, uint32_t{FICON_RC_MULTI_IF});
  EXPECT_FALSE(both_bound.written);
  EXPECT_EQ(both_bound.flag, 1U);
}

TEST(PortMapSearch, ControlUnitPortComesBeforeTheRange) {
  const hand_made_tables tables;
  EXPECT_EQ(tables.find(254, std::nullopt).written, 254U);
  EXPECT_EQ(tables.find(238, std::nullopt).status, uint32_t{FICON_RC_PA_RANGE});
  EXPECT_EQ(tables.find(238, std::nullopt).rule, "the highest address of this chassis is 237");
  EXPECT_TRUE(tables.find(237, std::nullopt).searched);
}

TEST(Explanation, AddressIsExplainedByThreeCalls) {
  const library_session session(example("director-10"));
  const auto why = explain_address(session, answer_address(session, 0x20, {20U, false}), {20U, false});
  ASSERT_THAT(why, SizeIs(3));
  EXPECT_EQ(why[0].translation, "PA 20 to PN in VSAN 20");
  EXPECT_EQ(why[0].operation, "ficon_pmap_get_pa_to_pn_withpvsan");
  EXPECT_TRUE(why[0].traced);
  ASSERT_THAT(why[0].entries, SizeIs(2));
  EXPECT_TRUE(why[0].entries[0].index == 286 && why[0].entries[0].in_vsan && why[0].entries[0].bound);
  EXPECT_TRUE(why[0].entries[1].index == 32 && why[0].entries[1].counts && !why[0].entries[1].in_vsan);
  EXPECT_EQ(why[0].counters, (search_counters{2, 1, 1, true}));
  EXPECT_EQ(why[0].answer, "PN 80");
  EXPECT_EQ(why[0].result, 80U);
  EXPECT_THAT(why[0].traces, SizeIs(3));
  EXPECT_EQ(why[1].translation, "PN 80 to interface in VSAN 20");
  EXPECT_EQ(why[1].answer, "fc2/33 0x01012000");
  EXPECT_FALSE(why[2].traced);
}

TEST(Explanation, AddressThatHasNoNumberIsExplainedByOneCall) {
  const library_session session(example("director-10"));
  const auto why = explain_address(session, answer_address(session, 0x20, {}), {});
  ASSERT_THAT(why, SizeIs(1));
  EXPECT_EQ(why[0].rule, "several entries count and no VSAN chooses among them: ambiguous");
  EXPECT_EQ(why[0].answer, "nothing is handed back");
  EXPECT_FALSE(why[0].result);
}

TEST(Explanation, WhatIsDecidedWithoutEntriesHasNoCountersUnlessTheLibraryTracesThem) {
  const library_session session(opened(campus()));
  const auto number = explain_number(session, answer_number(session, 254, {}), {});
  EXPECT_FALSE(number.at(0).counters);
  EXPECT_EQ(number.at(0).answer, "PA FE is handed back");
  const auto address = explain_address(session, answer_address(session, 254, {}), {});
  EXPECT_EQ(address.at(0).counters, (search_counters{0, 0, 0, false}));
  EXPECT_THAT(address.at(0).entries, IsEmpty());
}

TEST(Explanation, NumberBoundToAnInterfaceAnswersWhateverTheVsan) {
  const library_session session(opened(campus()));
  const auto why = explain_number(session, answer_number(session, 240, {20U, false}), {20U, false});
  ASSERT_THAT(why, SizeIs(3));
  EXPECT_EQ(why[1].rule, "the port number is bound to an interface directly: that one is the answer, whatever the VSAN");
  EXPECT_EQ(why[2].answer, "port-channel1 0x04000001");
}

TEST(Explanation, MemberIsLookedForLikeALogicalInterface) {
  const library_session session(opened(campus()));
  const auto member = answer_interface(session, vswitch::fc_port_index(5, 1), false);
  const auto why = explain_interface(session, member, false);
  ASSERT_THAT(why, SizeIs(1));
  EXPECT_THAT(why[0].steps, ElementsAre("a physical port: slot 5, port 1",
                                        "it is a member of port-channel1, so it is looked for like a logical interface"));
  EXPECT_EQ(why[0].status, uint32_t{FICON_RC_LAG_MEMBER});
  const auto skipped = answer_interface(session, vswitch::fc_port_index(5, 1), true);
  const auto without_check = explain_interface(session, skipped, true);
  ASSERT_THAT(without_check, SizeIs(2));
  EXPECT_EQ(without_check[0].result, 508U);
  EXPECT_EQ(without_check[1].rule, "the port is a member of port-channel1");
}

TEST(Explanation, SlotAndIndexFollowFromTheNumberingOfLineCards) {
  const library_session session(opened(campus()));
  const auto slot = explain_slot(session, answer_slot(session, {2, 1}));
  ASSERT_THAT(slot, SizeIs(2));
  EXPECT_EQ(slot[0].translation, "slot 2, port 1 to PN, PA and index");
  EXPECT_EQ(slot[0].answer, "PN 48, PA 00, index 254");
  const auto index = explain_index(session, answer_index(session, 1024));
  ASSERT_THAT(index, SizeIs(1));
  EXPECT_EQ(index[0].rule, "an index from 1024 on has the interface that its port number, 240, is bound to");
  EXPECT_EQ(index[0].result, 0x04000001U);
}

TEST(Explanation, WhatWasNotAskedIsNotExplained) {
  const library_session session(example("director-18"));
  EXPECT_THAT(explain_slot(session, answer_slot(session, {6, 11})), IsEmpty());
  const uint32_t if_index = vswitch::fc_port_index(6, 11);
  EXPECT_THAT(explain_interface(session, answer_interface(session, if_index, false), false), IsEmpty());
}

// Each explanation is compared with the library's answer and trace; where they differ, it throws.
TEST(Explanation, EveryAddressAndNumberIsExplainedAsTheLibraryAnswers) {
  const library_session session(opened(campus()));
  for (std::optional<uint32_t> vsan : {std::optional<uint32_t>(), std::optional<uint32_t>(10)})
    for (uint32_t number = 0; number < 256; ++number) {
      const inspect::search_options options{vsan, false};
      ASSERT_NO_THROW(explain_address(session, answer_address(session, number, options), options)) << number;
      ASSERT_NO_THROW(explain_number(session, answer_number(session, number, options), options)) << number;
    }
}

} // namespace
} // namespace inspect_test
