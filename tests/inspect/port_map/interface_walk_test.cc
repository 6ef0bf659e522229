// Walks: single steps, and every step to the end.
#include "inspect/port_map/interface_walk.h"

#include <gmock/gmock.h>

#include "asked_switch.h"

namespace inspect_test {
namespace {

using inspect::library_session;
using testing::ElementsAre;
using testing::IsEmpty;

uint32_t fc(unsigned slot, unsigned port) {
  return vswitch::fc_port_index(slot, port);
}

std::vector<std::string> names_of(const inspect::whole_walk& walk) {
  std::vector<std::string> names;
  for (const auto& step : walk.steps) names.push_back(vswitch::interface_name(step.found.if_index.value_or(0)));
  return names;
}

TEST(InterfaceWalk, StepLeadsToTheWholePort) {
  const library_session session(example("director-10"));
  const auto step = step_to_next(session, fc(3, 30));
  EXPECT_TRUE(step.is_found());
  EXPECT_EQ(step.from, fc(3, 30));
  EXPECT_EQ(step.found.if_index, fc(3, 31));
  EXPECT_EQ(step.found.index, 538U);
  EXPECT_EQ(step.found.pn, 126U);
  EXPECT_EQ(step.found.pa, 0x7EU);
  EXPECT_EQ(step.found.port_vsan, 10U);
  EXPECT_FALSE(step.found.if_status || step.found.phyif_status);
  EXPECT_EQ(step_to_last(session, fc(1, 1)).found.if_index, fc(1, 48));
}

TEST(InterfaceWalk, EndForWantOfANextPortIsNoStep) {
  const library_session session(example("director-10"));
  const auto walk = walk_to_end(session, fc(3, 30));
  EXPECT_TRUE(walk.reached_end);
  EXPECT_THAT(names_of(walk), ElementsAre("fc3/31", "fc3/32"));
  EXPECT_EQ(walk.steps[1].from, fc(3, 31));
  EXPECT_EQ(walk_to_end(session, fc(1, 1)).steps.size(), 127U); // 48 + 48 + 32 ports with numbers
}

TEST(InterfaceWalk, WalkThatFindsNothingIsOneStepThatSaysWhy) {
  const library_session session(example("director-10"));
  const auto from_last = walk_to_end(session, fc(3, 32));
  EXPECT_FALSE(from_last.reached_end);
  ASSERT_EQ(from_last.steps.size(), 1U);
  EXPECT_EQ(from_last.steps[0].found.status, uint32_t{FICON_RC_PLATFORM});
  EXPECT_FALSE(from_last.steps[0].found.if_index);
  EXPECT_EQ(walk_to_end(session, 0x04000005).steps.at(0).found.status, uint32_t{FICON_RC_NOT_FC_PORT});
}

TEST(InterfaceWalk, LibraryIsNotAskedBeyondItsTables) {
  const library_session session(example("director-18"));
  const auto walk = walk_to_end(session, fc(6, 11));
  EXPECT_FALSE(walk.reached_end);
  ASSERT_EQ(walk.steps.size(), 1U);
  EXPECT_TRUE(walk.steps[0].found.unasked);
  EXPECT_EQ(walk.steps[0].found.unasked->found, 1280U);
  EXPECT_FALSE(walk.steps[0].found.status);
  EXPECT_EQ(step_to_next(session, fc(6, 10)).found.status, uint32_t{FICON_RC_INVALID_ARG}); // the last that may be asked
}

} // namespace
} // namespace inspect_test
