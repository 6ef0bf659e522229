// The record of an answer, asked from every side.
#include "inspect/port_map/port_answer.h"

#include <gmock/gmock.h>

#include "asked_switch.h"

namespace inspect_test {
namespace {

using inspect::library_session;
using inspect::not_asked;
using testing::ElementsAre;
using testing::Optional;

constexpr uint16_t kNone = FICON_PMAP_NO_NUMBER;

bool is_port(const std::optional<vswitch::fc_port>& port, unsigned slot, unsigned number) {
  return port && port->slot == slot && port->port == number;
}

TEST(PortAnswer, AddressInItsVsanIsTheWholePort) {
  const library_session session(example("director-10"));
  const auto answer = answer_address(session, 0x20, {20U, false});
  EXPECT_EQ(answer.pn, 80U);
  EXPECT_EQ(answer.pa, 0x20U);
  EXPECT_EQ(answer.index, 286U);
  EXPECT_EQ(answer.if_index, 0x01012000U);
  EXPECT_EQ(answer.phyif_index, 0x01012000U);
  EXPECT_EQ(answer.asked_vsan, 20U);
  EXPECT_TRUE(answer.status == 0U && answer.if_status == 0U && answer.phyif_status == 0U);
  EXPECT_TRUE(is_port(answer.port, 2, 33));
  EXPECT_THAT(answer.vsans, Optional(ElementsAre(20)));
  EXPECT_EQ(answer.port_vsan, 20U);
  EXPECT_FALSE(answer.unasked);
  EXPECT_TRUE(answer.is_found());
}

TEST(PortAnswer, AddressOfSeveralVsansHasNoNumberAndNoPlace) {
  const library_session session(example("director-10"));
  const auto answer = answer_address(session, 0x20, {});
  EXPECT_EQ(answer.status, uint32_t{FICON_RC_MULTI_IF});
  EXPECT_FALSE(answer.pn || answer.index || answer.port || answer.vsans || answer.port_vsan || answer.asked_vsan);
  EXPECT_FALSE(answer.is_found());
}

TEST(PortAnswer, NumberThatAnAmbiguityHandsBackIsKeptButIsNoAnswer) {
  auto chassis = campus();
  chassis.map.port_to_pn[0].vsans[0] = 30; // two ports in VSAN 10, neither of them bound to it
  chassis.map.port_to_pn[1] = {1, 0, {30}};
  const library_session session(opened(chassis));
  const auto answer = answer_address(session, 0, {10U, false});
  EXPECT_EQ(answer.status, uint32_t{FICON_RC_MULTI_IF});
  EXPECT_EQ(answer.pn, 0U);
  EXPECT_FALSE(answer.is_found());
}

TEST(PortAnswer, FastFormsAnswerAlike) {
  const library_session session(opened(campus()));
  for (std::optional<uint32_t> vsan : {std::optional<uint32_t>(), std::optional<uint32_t>(20)}) {
    inspect::prepare_fast_forms({vsan, true});
    for (uint32_t number : {0U, 3U, 4U, 48U, 240U, 253U, 254U}) {
      const auto plain = answer_address(session, number, {vsan, false});
      const auto fast = answer_address(session, number, {vsan, true});
      EXPECT_EQ(std::tie(fast.pn, fast.if_index, fast.phyif_index, fast.index, fast.status, fast.if_status),
                std::tie(plain.pn, plain.if_index, plain.phyif_index, plain.index, plain.status, plain.if_status))
          << number;
      EXPECT_EQ(answer_number(session, number, {vsan, true}).pa, answer_number(session, number, {vsan, false}).pa);
    }
  }
}

TEST(PortAnswer, NumberWithoutAnInterfaceStandsWhereItsAddressComesFrom) {
  auto chassis = campus();
  chassis.map.port_to_pn[1025] = {241, 0xF1, {10}};
  const library_session session(opened(chassis));
  const auto by_number = answer_number(session, 241, {});
  EXPECT_EQ(by_number.pa, 0xF1U);
  EXPECT_EQ(by_number.index, 1025U);
  EXPECT_EQ(by_number.if_status, uint32_t{FICON_RC_NO_IF});
  EXPECT_FALSE(by_number.port || by_number.is_found());
  EXPECT_EQ(answer_address(session, 0xF1, {}).index, 1025U);
}

TEST(PortAnswer, LogicalInterfaceHasNumbersButNoPort) {
  const library_session session(opened(campus()));
  const auto answer = answer_interface(session, 0x04000001, false);
  EXPECT_EQ(answer.pn, 240U);
  EXPECT_EQ(answer.pa, 0xF0U);
  EXPECT_EQ(answer.index, 1024U);
  EXPECT_FALSE(answer.port || answer.phyif_status || answer.phyif_index);
  EXPECT_TRUE(answer.is_found());
  EXPECT_EQ(answer_number(session, 240, {}).index, 1024U); // found by the interface
}

TEST(PortAnswer, MemberOfAPortChannelIsRefusedUnlessTheCheckIsSkipped) {
  const library_session session(example("director-10"));
  const auto answer = answer_interface(session, 0x01030000, false);
  EXPECT_EQ(answer.status, uint32_t{FICON_RC_LAG_MEMBER});
  EXPECT_EQ(answer.index, 762U);
  EXPECT_FALSE(answer.pn || answer.phyif_status);
  const auto skipped = answer_interface(session, 0x01030000, true);
  EXPECT_EQ(skipped.status, 0U);
  EXPECT_EQ(skipped.pn, kNone);
  EXPECT_EQ(skipped.phyif_status, uint32_t{FICON_RC_LAG_MEMBER});
  EXPECT_FALSE(skipped.is_found());
}

TEST(PortAnswer, PortBehindTheLastEntryIsNotAskedAbout) {
  const library_session session(example("director-18")); // slot 6 is line card 5, whose entries begin at 1270
  for (const auto& answer :
       {answer_slot(session, {6, 11}), answer_interface(session, vswitch::fc_port_index(6, 11), false)}) {
    ASSERT_TRUE(answer.unasked);
    EXPECT_EQ(answer.unasked->why, not_asked::cause::index_beyond_map);
    EXPECT_EQ(answer.unasked->found, 1280U);
    EXPECT_EQ(answer.unasked->highest, 1279U);
    EXPECT_EQ(answer.index, 1280U);
    EXPECT_TRUE(is_port(answer.port, 6, 11));
    EXPECT_FALSE(answer.status || answer.vsans || answer.is_found());
  }
}

TEST(PortAnswer, PortAtTheLastEntryIsAskedAbout) {
  const library_session session(example("director-18"));
  const auto answer = answer_slot(session, {6, 10});
  EXPECT_EQ(answer.status, 0U);
  EXPECT_EQ(answer.index, 1279U);
  EXPECT_EQ(answer.port_vsan, 0U);
  EXPECT_FALSE(answer.unasked || answer.phyif_status);
}

TEST(PortAnswer, SupervisorsSlotHasNoPlace) {
  const library_session session(example("director-10"));
  const auto answer = answer_slot(session, {5, 1});
  EXPECT_EQ(answer.status, uint32_t{FICON_RC_INVALID_ARG});
  EXPECT_TRUE(is_port(answer.port, 5, 1));
  EXPECT_FALSE(answer.index || answer.unasked);
}

TEST(PortAnswer, IndexWhoseNumberNoPortCanHaveIsNotAskedAbout) {
  auto chassis = campus();
  chassis.map.port_to_pn[1030].pn = 254;
  chassis.map.port_to_pn[1031].pn = 253;
  chassis.map.port_to_pn[1023].pn = 254; // a physical port: its interface needs no number
  const library_session session(opened(chassis));
  const auto answer = answer_index(session, 1030);
  ASSERT_TRUE(answer.unasked);
  EXPECT_EQ(answer.unasked->why, not_asked::cause::number_beyond_table);
  EXPECT_EQ(answer.unasked->found, 254U);
  EXPECT_EQ(answer.unasked->highest, 253U);
  EXPECT_EQ(answer_index(session, 1031).status, uint32_t{FICON_RC_PLATFORM});
  EXPECT_TRUE(answer_index(session, 1023).status);
}

TEST(PortAnswer, IndexesEndWithTheMap) {
  const library_session session(opened(campus()));
  EXPECT_EQ(answer_index(session, 1279).status, uint32_t{FICON_RC_INVALID_ARG}); // no number
  EXPECT_EQ(answer_index(session, 1279).pn, kNone);
  EXPECT_EQ(answer_index(session, 1280).status, uint32_t{FICON_RC_INVALID_ARG});
  EXPECT_FALSE(answer_index(session, 1280).pn);
}

TEST(PortAnswer, PortWithOneOfTwoNumbersIsNoWholeAnswer) {
  auto chassis = campus();
  chassis.map.port_to_pn[4].pn = 4;
  const library_session session(opened(chassis));
  const auto answer = answer_index(session, 4);
  EXPECT_TRUE(answer.status == 0U && answer.phyif_status == 0U);
  EXPECT_FALSE(answer.is_found());
}

} // namespace
} // namespace inspect_test
