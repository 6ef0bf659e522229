// What follows what in a swap, and the swaps that are under way, without messages and without time.
#include <gmock/gmock.h>
#include <pending_swaps.h>
#include <platform/if_index.h>
#include <vswitch/vswitch.h>

#include <cerrno>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::ElementsAre;
using testing::IsEmpty;
using enum swap_phase;

// ---- The table ----

TEST(SwapHandshake, AsksThreeTimesThenWritesTheMap) {
  swap_state state;
  EXPECT_EQ(question_in(state.phase), (swap_question{0x56530011, false, ""}));
  state = after_response(state, 0);
  EXPECT_EQ(question_in(state.phase), (swap_question{0x56530012, false, ""}));
  state = after_response(state, 0);
  EXPECT_EQ(question_in(state.phase), (swap_question{0x56530013, false, ""}));
  state = after_response(state, 0);
  EXPECT_EQ(state.phase, map);
  EXPECT_EQ(question_in(map), std::nullopt);
  EXPECT_EQ(after_map(state, true), (swap_state{done, {0, 0, 0}}));
}

TEST(SwapHandshake, RefusedAtCheckLockIsUnlocked) {
  const auto state = after_response({check_lock, {}}, 17);
  EXPECT_EQ(state, (swap_state{unlock_again, {0x4085000A, 1, 17}}));
  EXPECT_EQ(question_in(state.phase), (swap_question{0x56530013, false, ""}));
}

TEST(SwapHandshake, RefusedAtDoSwapIsUnlocked) {
  EXPECT_EQ(after_response({do_swap, {}}, 18), (swap_state{unlock_again, {0x4085000A, 2, 18}}));
}

TEST(SwapHandshake, RefusedAtUnlockIsSwappedBackAndUnlocked) {
  auto state = after_response({unlock, {}}, 19);
  EXPECT_EQ(state, (swap_state{swap_back, {0x4085000A, 3, 19}}));
  EXPECT_EQ(question_in(state.phase), (swap_question{0x56530012, true, ""}));
  state = after_response(state, 0);
  EXPECT_EQ(state, (swap_state{unlock_again, {0x4085000A, 3, 19}}));
}

TEST(SwapHandshake, MapThatIsNotWrittenIsSwappedBackAndUnlocked) {
  EXPECT_EQ(after_map({map, {}}, false), (swap_state{swap_back, {0x4085000A, 4, 0}}));
}

TEST(SwapHandshake, SilenceIsARefusalOfStatusZero) {
  EXPECT_EQ(after_silence({check_lock, {}}), (swap_state{unlock_again, {0x4085000A, 1, 0}}));
  EXPECT_EQ(after_silence({do_swap, {}}), (swap_state{swap_back, {0x4085000A, 2, 0}})); // it may swap yet
  EXPECT_EQ(after_silence({unlock, {}}), (swap_state{swap_back, {0x4085000A, 3, 0}}));
}

TEST(SwapHandshake, WhatTheClientSaysToTheUndoingChangesNothing) {
  const swap_result refusal = {0x4085000A, 3, 19};
  EXPECT_EQ(after_response({swap_back, refusal}, 99), (swap_state{unlock_again, refusal}));
  EXPECT_EQ(after_silence({swap_back, refusal}), (swap_state{unlock_again, refusal}));
  EXPECT_EQ(after_response({unlock_again, refusal}, 99), (swap_state{done, refusal}));
  EXPECT_EQ(after_silence({unlock_again, refusal}), (swap_state{done, refusal}));
}

TEST(SwapHandshake, RequestCarriesNumberInterfacesAndVsans) {
  vsan_block vsans = {512, {}};
  vsans.bitmap[1] = 0x20;
  const auto request = swap_request(*question_in(do_swap), 5, kFc1_1, kFc1_2, vsans);
  EXPECT_EQ(request.swap_word0, 5u);
  EXPECT_EQ(request.if_index_a, hton_if_index(kFc1_1));
  EXPECT_EQ(request.if_index_b, hton_if_index(kFc1_2));
  EXPECT_EQ(request.vsans.bytes, 512u);
  EXPECT_EQ(request.vsans.bitmap[1], 0x20);
}

TEST(SwapHandshake, RequestOfTheUndoingDoSwapIsTheOtherWayRound) {
  const auto request = swap_request(*question_in(swap_back), 5, kFc1_1, kFc1_2, {});
  EXPECT_EQ(request.if_index_a, hton_if_index(kFc1_2));
  EXPECT_EQ(request.if_index_b, hton_if_index(kFc1_1));
}

// ---- Swaps under way ----

class SwapDesk : public testing::Test {
 protected:
  SwapDesk() : desk_(actions(), 100) { use_switch(switch_store::in_memory(chassis_)); }
  ~SwapDesk() override { use_switch(nullptr); }

  swap_actions actions() {
    return {[this](uint64_t peer, uint32_t opcode, const ficon_if_swap_req& request) {
              if (peer == unreachable_) return ECONNREFUSED;
              if (peer == full_) return EAGAIN;
              sent_.push_back(step_name(opcode) + " " + std::to_string(request.swap_word0) + " to " + std::to_string(peer));
              return 0;
            },
            [this](uint32_t a, uint32_t b) {
              sent_.push_back("write " + interface_name(a) + " " + interface_name(b));
              return writes_;
            },
            [this](msgq_message* order, const swap_result& result) {
              EXPECT_EQ(order, nullptr);
              sent_.push_back("answer " + std::to_string(result.result == 0 ? 0 : 1) + " " +
                              std::to_string(result.refused_step) + " " + std::to_string(result.swap_status));
            },
            [this](uint64_t, const std::string& what, uint32_t) { log_.push_back(what); }};
  }
  static std::string step_name(uint32_t opcode) {
    return opcode == 0x56530011 ? "check-lock" : opcode == 0x56530012 ? "do-swap" : opcode == 0x56530013 ? "unlock" : "?";
  }

  uint32_t may_begin(uint32_t a, uint32_t b) const { return desk_.may_begin(chassis_, tables_of(chassis_.map), a, b); }
  void begin(uint64_t peer, uint32_t a, uint32_t b, int64_t now = 0) { desk_.begin(nullptr, peer, a, b, {}, now); }
  bool respond(uint64_t peer, uint32_t number, uint32_t status, int64_t now = 0) {
    return desk_.respond(peer, {status, number, 0, 0, {}}, now);
  }

  const chassis_description chassis_ = full_switch();
  uint64_t unreachable_ = 0;
  uint64_t full_ = 0;
  bool writes_ = true;
  std::vector<std::string> sent_;
  std::vector<std::string> log_;
  pending_swaps desk_;
};

TEST_F(SwapDesk, AcceptedSwapIsWrittenAndAnswered) {
  begin(3, kFc1_1, kFc1_2);
  for (int step = 0; step < 3; ++step) EXPECT_TRUE(respond(3, 1, 0));
  EXPECT_THAT(sent_,
              ElementsAre("check-lock 1 to 3", "do-swap 1 to 3", "unlock 1 to 3", "write fc1/1 fc1/2", "answer 0 0 0"));
  EXPECT_TRUE(desk_.empty());
}

TEST_F(SwapDesk, ClientWithoutRoomIsAskedAgain) {
  full_ = 3;
  begin(3, kFc1_1, kFc1_2, 0);
  EXPECT_TRUE(desk_.has_unsent_question());
  desk_.resend_questions(50);
  EXPECT_THAT(sent_, IsEmpty());
  full_ = 0;
  desk_.resend_questions(60);
  EXPECT_FALSE(desk_.has_unsent_question());
  desk_.resend_questions(70);
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3"));
}

TEST_F(SwapDesk, ClientThatNeverHasRoomIsGivenUpInTime) {
  full_ = 3;
  begin(3, kFc1_1, kFc1_2, 0);
  desk_.resend_questions(99);
  EXPECT_EQ(desk_.next_deadline_ms(), 100);
  desk_.give_up_overdue(100); // the undoing has no room either
  EXPECT_EQ(desk_.next_deadline_ms(), 200);
  desk_.give_up_overdue(200);
  EXPECT_THAT(sent_, ElementsAre("answer 1 1 0"));
  EXPECT_TRUE(desk_.empty());
}

TEST_F(SwapDesk, MapThatIsNotWrittenIsUndoneAndAnswered) {
  writes_ = false;
  begin(3, kFc1_1, kFc1_2);
  for (int step = 0; step < 5; ++step) EXPECT_TRUE(respond(3, 1, 0));
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3", "do-swap 1 to 3", "unlock 1 to 3", "write fc1/1 fc1/2",
                                 "do-swap 1 to 3", "unlock 1 to 3", "answer 1 4 0"));
}

TEST_F(SwapDesk, ResponseToNothingIsNotTaken) {
  EXPECT_FALSE(respond(3, 1, 0));
  begin(3, kFc1_1, kFc1_2);
  EXPECT_FALSE(respond(4, 1, 0)); // another client
  EXPECT_FALSE(respond(3, 2, 0)); // another swap
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3"));
}

TEST_F(SwapDesk, SwapsOfDifferentInterfacesGoOnBesideEachOther) {
  begin(3, kFc1_1, kFc1_2);
  EXPECT_EQ(may_begin(kFc1_5, kFcip3), 0u);
  begin(3, kFc1_5, kFcip3);
  EXPECT_TRUE(respond(3, 2, 0));
  EXPECT_TRUE(respond(3, 1, 17));
  EXPECT_TRUE(respond(3, 2, 0));
  EXPECT_TRUE(respond(3, 2, 0));
  EXPECT_TRUE(respond(3, 1, 0));
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3", "check-lock 2 to 3", "do-swap 2 to 3", "unlock 1 to 3",
                                 "unlock 2 to 3", "write fc1/5 fcip3", "answer 0 0 0", "answer 1 1 17"));
}

TEST_F(SwapDesk, InterfaceOfASwapUnderWayIsNotSwapped) {
  begin(3, kFc1_1, kFc1_2);
  EXPECT_EQ(may_begin(kFc1_1, kFc1_5), 0x40850000u);
  EXPECT_EQ(may_begin(kFc1_5, kFc1_1), 0x40850000u);
  EXPECT_EQ(may_begin(kFcip3, kFc1_2), 0x40850000u);
  respond(3, 1, 17);
  EXPECT_EQ(may_begin(kFc1_1, kFc1_5), 0x40850000u); // until it is undone
  respond(3, 1, 0);
  EXPECT_EQ(may_begin(kFc1_1, kFc1_5), 0u);
}

TEST_F(SwapDesk, OrdersThatCannotBeAreRefused) {
  EXPECT_EQ(may_begin(kFc1_1, kFc1_1), 0x40850003u);
  EXPECT_EQ(may_begin(kFc1_49, kFc1_49), 0x40850003u);
  EXPECT_EQ(may_begin(kFc1_1, kFc1_49), 0x4085004Au);
  EXPECT_EQ(may_begin(kFc1_9, kFc1_1), 0x4085004Au);
  EXPECT_EQ(may_begin(kFc1_1, kFc1_3), 0x4085001Au);
}

TEST_F(SwapDesk, SilenceIsWaitedForAsLongAsPatienceLasts) {
  begin(3, kFc1_1, kFc1_2, 1000);
  EXPECT_EQ(desk_.next_deadline_ms(), 1100);
  desk_.give_up_overdue(1099);
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3"));
  desk_.give_up_overdue(1100);
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3", "unlock 1 to 3"));
  desk_.give_up_overdue(1199);
  EXPECT_FALSE(desk_.empty());
  desk_.give_up_overdue(1200);
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3", "unlock 1 to 3", "answer 1 1 0"));
  EXPECT_EQ(desk_.next_deadline_ms(), std::nullopt);
}

TEST_F(SwapDesk, EachStepHasItsOwnPatience) {
  begin(3, kFc1_1, kFc1_2, 1000);
  respond(3, 1, 0, 1090);
  EXPECT_EQ(desk_.next_deadline_ms(), 1190);
}

TEST_F(SwapDesk, ClientThatIsGoneIsNotAskedAnyMore) {
  begin(3, kFc1_1, kFc1_2);
  respond(3, 1, 0);
  respond(3, 1, 0);
  unreachable_ = 3;
  desk_.give_up_disconnected(std::vector<uint64_t>{1, 2, 4}, 0);
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3", "do-swap 1 to 3", "unlock 1 to 3", "answer 1 3 0"));
  EXPECT_TRUE(desk_.empty());
}

TEST_F(SwapDesk, ClientThatIsThereIsWaitedFor) {
  begin(3, kFc1_1, kFc1_2);
  desk_.give_up_disconnected(std::vector<uint64_t>{1, 3}, 0);
  EXPECT_THAT(sent_, ElementsAre("check-lock 1 to 3"));
}

TEST_F(SwapDesk, ClientThatIsGoneBeforeItIsAskedRefuses) {
  unreachable_ = 3;
  begin(3, kFc1_1, kFc1_2);
  EXPECT_THAT(sent_, ElementsAre("answer 1 1 0"));
}

TEST_F(SwapDesk, ManagerThatEndsUndoesAllAndWaitsForNobody) {
  begin(3, kFc1_1, kFc1_2);
  begin(4, kFc1_5, kFcip3);
  respond(4, 2, 0);
  respond(4, 2, 0);
  sent_.clear();
  desk_.give_up_all();
  EXPECT_THAT(sent_, ElementsAre("unlock 1 to 3", "answer 1 1 0", "do-swap 2 to 4", "unlock 2 to 4", "answer 1 3 0"));
  EXPECT_TRUE(desk_.empty());
}

TEST_F(SwapDesk, LogsEachStep) {
  begin(3, kFc1_1, kFc1_2);
  respond(3, 1, 17);
  respond(3, 1, 0);
  EXPECT_THAT(
      log_,
      ElementsAre("swap 1 of fc1/1 and fc1/2: ordered", "swap 1 of fc1/1 and fc1/2: check-lock asked",
                  "swap 1 of fc1/1 and fc1/2: check-lock answered", "swap 1 of fc1/1 and fc1/2: unlock after all asked",
                  "swap 1 of fc1/1 and fc1/2: unlock after all answered", "swap 1 of fc1/1 and fc1/2: not done"));
}

} // namespace
