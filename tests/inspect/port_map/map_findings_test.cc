// Findings by kind, each of a map that is wrong in one way.
#include "inspect/port_map/map_findings.h"

#include <gmock/gmock.h>

#include "asked_switch.h"
#include "platform/if_index.h"
#include "vswitch/interface_index.h"

namespace inspect_test {
namespace {

using inspect::finding;
using inspect::finding_kind;
using inspect::library_session;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<finding> check(const vswitch::chassis_description& chassis) {
  return find_in_map(library_session(opened(chassis)));
}

std::vector<finding> about(const std::string& what, const vswitch::chassis_description& chassis) {
  std::vector<finding> chosen;
  for (auto& one : check(chassis))
    if (one.what == what) chosen.push_back(one);
  return chosen;
}

std::vector<std::string> kinds_of(const std::vector<finding>& findings) {
  std::vector<std::string> kinds;
  for (const auto& one : findings) kinds.emplace_back(kind_name(one.kind));
  return kinds;
}

std::vector<std::string> kinds_about(const std::string& what, const vswitch::chassis_description& chassis) {
  return kinds_of(about(what, chassis));
}

std::vector<finding> wrong_ones(const std::vector<finding>& findings) {
  std::vector<finding> wrong;
  for (const auto& one : findings)
    if (!is_note(one.kind)) wrong.push_back(one);
  return wrong;
}

TEST(MapFindings, NotesBeginWithShared) {
  EXPECT_FALSE(is_note(finding_kind::ambiguous));
  EXPECT_FALSE(is_note(finding_kind::mismatch));
  EXPECT_TRUE(is_note(finding_kind::shared));
  EXPECT_TRUE(is_note(finding_kind::unnumbered));
  EXPECT_STREQ(kind_name(finding_kind::mismatch), "mismatch");
  EXPECT_STREQ(kind_name(finding_kind::unnumbered), "unnumbered");
}

TEST(MapFindings, ConsistentMapHasNotesAlone) {
  EXPECT_THAT(wrong_ones(check(campus())), IsEmpty());
  const auto shared = about("PA 00", campus());
  ASSERT_EQ(shared.size(), 1U);
  EXPECT_EQ(shared[0].kind, finding_kind::shared);
  EXPECT_FALSE(shared[0].vsan);
  EXPECT_THAT(shared[0].indexes, ElementsAre(0, 254));
  EXPECT_EQ(shared[0].status, uint32_t{FICON_RC_MULTI_IF});
  EXPECT_THAT(kinds_about("fc1/5", campus()), ElementsAre("unnumbered"));
  EXPECT_THAT(kinds_about("fc5/1", campus()), IsEmpty()); // a member needs no number
}

TEST(MapFindings, WrongOnesComeBeforeNotes) {
  auto chassis = campus();
  chassis.map.pa_to_pn[0] = 99;
  const auto findings = check(chassis);
  EXPECT_STREQ(kind_name(findings.front().kind), "mismatch");
  EXPECT_EQ(wrong_ones(findings).size(), 1U);
}

TEST(MapFindings, AddressTwiceInAVsanIsAmbiguousThere) {
  auto chassis = campus();
  chassis.map.port_to_pn[1].pa = 0;
  const auto findings = wrong_ones(about("PA 00", chassis));
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].kind, finding_kind::ambiguous);
  EXPECT_EQ(findings[0].vsan, 10U);
  EXPECT_THAT(findings[0].indexes, ElementsAre(0, 1));
  const auto ports = about("fc1/2", chassis);
  ASSERT_EQ(ports.size(), 1U);
  EXPECT_EQ(ports[0].why, "its own numbers, PN 1 and PA 00, do not lead to it: PA 00 is not translated");
  EXPECT_EQ(ports[0].status, uint32_t{FICON_RC_MULTI_IF});
}

TEST(MapFindings, NumbersLeadToAnotherPort) {
  auto chassis = campus();
  chassis.map.port_to_pn[2].pn = 240; // that of the port-channel
  const auto ports = about("fc1/3", chassis);
  ASSERT_FALSE(ports.empty());
  EXPECT_EQ(ports[0].kind, finding_kind::unreachable);
  EXPECT_EQ(ports[0].vsan, 10U);
}

TEST(MapFindings, PortWithNumbersIsBoundToTheVsanThatItIsIn) {
  auto chassis = campus();
  chassis.map.port_to_pn[0].vsans[0] = 0;
  EXPECT_THAT(kinds_about("fc1/1", chassis), ElementsAre("unbound"));
  chassis = campus();
  chassis.map.port_to_vsan[0] = 20;
  const auto elsewhere = about("fc1/1", chassis);
  ASSERT_FALSE(elsewhere.empty());
  EXPECT_EQ(elsewhere[0].kind, finding_kind::unbound);
  EXPECT_EQ(elsewhere[0].why, "the port is in VSAN 20, but bound only to 10");
  chassis = campus();
  chassis.map.port_to_vsan[3] = 0; // in none: nothing to hold against
  for (const auto& one : about("fc1/4", chassis)) EXPECT_NE(one.kind, finding_kind::unbound);
}

TEST(MapFindings, OneNumberOfTwoIsIncomplete) {
  auto chassis = campus();
  chassis.map.port_to_pn[4] = {4, FICON_PMAP_NO_NUMBER, {10}};
  chassis.map.port_to_pn[5] = {FICON_PMAP_NO_NUMBER, 0x14, {10}};
  ASSERT_EQ(about("fc1/5", chassis).size(), 1U);
  EXPECT_EQ(about("fc1/5", chassis)[0].why, "it has PN 4, but no port address");
  EXPECT_EQ(about("fc1/6", chassis).at(0).why, "it has PA 14, but no port number");
}

TEST(MapFindings, HighestNumbersAreInRangeAndTheNextAreNot) {
  auto chassis = campus();
  chassis.map.port_to_pn[4] = {253, 253, {10}};
  EXPECT_THAT(kinds_about("PN 253", chassis), IsEmpty());
  chassis.map.port_to_pn[4] = {254, 254, {10}};
  const auto pn = about("PN 254", chassis);
  ASSERT_EQ(pn.size(), 1U);
  EXPECT_EQ(pn[0].status, uint32_t{FICON_RC_PN_RANGE});
  EXPECT_EQ(pn[0].why, "index 4 carries it, but the highest port number of this chassis is 253");
  EXPECT_EQ(about("PA FE", chassis).at(0).status, uint32_t{FICON_RC_PA_RANGE});
}

TEST(MapFindings, NumberWithoutAPortIsReservedUntilAVsanIsToldToUseIt) {
  auto chassis = campus();
  chassis.map.port_to_pn[600] = {96, 0x30, {}};
  EXPECT_THAT(kinds_about("PN 96", chassis), ElementsAre("reserved"));
  chassis.map.port_to_pn[600].vsans[7] = 20;
  EXPECT_THAT(kinds_about("PN 96", chassis), ElementsAre("unreachable"));
  chassis.map.port_to_pn[600].pa = FICON_PMAP_NO_NUMBER;
  EXPECT_THAT(kinds_about("PN 96", chassis), ElementsAre("reserved"));
  chassis.map.port_to_pn[1025] = {241, 0xF1, {20}}; // bound to a VSAN, but no interface is bound to the number
  EXPECT_EQ(about("PN 241", chassis).at(0).kind, finding_kind::reserved);
}

TEST(MapFindings, MemberDoesNotAnswerForItsNumber) {
  auto chassis = campus();
  chassis.map.port_to_pn[508] = {96, 0x30, {20}};
  const auto member = about("fc5/1", chassis);
  ASSERT_EQ(member.size(), 1U);
  EXPECT_EQ(member[0].kind, finding_kind::member);
  EXPECT_EQ(member[0].why, "as a member of port-channel1 it does not answer for PN 96");
}

TEST(MapFindings, BindingLeadsBackToItsNumber) {
  auto chassis = campus();
  chassis.map.pn_to_if[241] = vswitch::fc_port_index(1, 1);
  EXPECT_EQ(about("PN 241", chassis).at(0).why, "it is bound to fc1/1, which leads back to PN 0");
  chassis.map.pn_to_if[241] = vswitch::logical_index(IF_TYPE_FCIP, 3);
  EXPECT_EQ(about("fcip3", chassis).at(0).kind, finding_kind::unreachable);
}

TEST(MapFindings, PortsForWhichTheMapHasNoRoomAreNamedAsARange) {
  const library_session session(example("director-10"));
  std::vector<std::string> ranges;
  for (const auto& one : find_in_map(session))
    if (one.indexes.empty()) ranges.push_back(one.what);
  EXPECT_THAT(ranges, ElementsAre("fc7/9-24"));
}

} // namespace
} // namespace inspect_test
