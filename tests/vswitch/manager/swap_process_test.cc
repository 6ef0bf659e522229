// Swaps through a manager in its own process: clients that agree, refuse, die, do not answer, and get in each other's way.
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/if_index.h>
#include <signal.h>
#include <unistd.h>
#include <vswitch/manager/manager_protocol.h>
#include <vswitch/switch_store.h>
#include <vswitch/vswitch.h>

#include <string>
#include <utility>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::ElementsAre;

// Never waited for in a test that does not say so.
constexpr int kLongPatienceMs = 600000;

struct step {
  uint32_t opcode = 0;
  uint32_t number = 0;
  uint32_t if_index_a = 0;
  uint32_t if_index_b = 0;
  vsan_block vsans = {};
  owned_message message;
};

std::string name_of(uint32_t opcode) {
  return opcode == kOpSwapCheckLock ? "check-lock" : opcode == kOpSwapDoSwap ? "do-swap" : "unlock";
}

// A client of swaps, with an end of its own.
class swap_client {
 public:
  void order(uint32_t if_index_a, uint32_t if_index_b) const {
    const swap_order request = {hton_if_index(if_index_a), hton_if_index(if_index_b)};
    if (msgq_send(end_.get(), &kManagerAddress, kOpSwap, &request, sizeof request, 5, nullptr, 0) != 0)
      throw std::runtime_error("the order cannot be sent");
  }

  // The next request of a swap.
  step next_step() const {
    step asked;
    asked.message = receive(end_.get());
    asked.opcode = msgq_opcode_get(asked.message.get());
    if (msgq_payload_size(asked.message.get()) != sizeof(ficon_if_swap_req))
      throw std::runtime_error("this is no swap step");
    parse(asked);
    return asked;
  }

  void respond(const step& asked, uint32_t status) const {
    const auto send = asked.opcode == kOpSwapCheckLock ? ficon_if_swap_chk_lock_send_resp
                      : asked.opcode == kOpSwapDoSwap  ? ficon_if_swap_do_swap_send_resp
                                                       : ficon_if_swap_unlock_send_resp;
    send(end_.get(), asked.message.get(), asked.number, asked.if_index_a, asked.if_index_b, status);
  }

  swap_result result() const {
    auto message = receive(end_.get());
    EXPECT_EQ(msgq_is_reply(message.get()), 1);
    EXPECT_EQ(msgq_send_arg_get(message.get()), 5u);
    EXPECT_EQ(msgq_payload_size(message.get()), 12u);
    return payload_record<swap_result>(message.get());
  }

  // Answers with status at the nth step (from 1), which 0 agrees with; 0 at all others. Returns the steps, as "do-swap fc1/1
  // fc1/2", and stores the result.
  std::vector<std::string> take_part(size_t nth, uint32_t status, swap_result& result_of_order) const {
    std::vector<std::string> steps;
    for (;;) {
      auto message = receive(end_.get());
      if (msgq_is_reply(message.get()) == 1) {
        result_of_order = payload_record<swap_result>(message.get());
        return steps;
      }
      step asked;
      asked.opcode = msgq_opcode_get(message.get());
      asked.message = std::move(message);
      parse(asked);
      steps.push_back(name_of(asked.opcode) + " " + interface_name(asked.if_index_a) + " " +
                      interface_name(asked.if_index_b));
      respond(asked, steps.size() == nth ? status : 0);
    }
  }

  msgq* end() const { return end_.get(); }

 private:
  static void parse(step& asked) {
    const auto read = asked.opcode == kOpSwapCheckLock ? ficon_if_swap_chk_lock_parse_with_vsan
                      : asked.opcode == kOpSwapDoSwap  ? ficon_if_swap_do_swap_parse_with_vsan
                                                       : ficon_if_swap_unlock_parse_with_vsan;
    read(asked.message.get(), &asked.number, &asked.if_index_a, &asked.if_index_b, &asked.vsans);
  }

  owned_end end_ = open_client();
};

class SwapProcess : public testing::Test {
 protected:
  SwapProcess() {
    switch_store::create(path(), full_switch());
    use_switch(switch_store::open(path()));
  }
  ~SwapProcess() override { use_switch(nullptr); }

  void start(int patience_ms = kLongPatienceMs) { manager_ = std::make_unique<running_manager>(path(), patience_ms); }
  std::string path() const { return folder_.path("switch"); }
  static chassis_description now() { return switch_in_use()->describe(); }
  static void expect_result(const swap_result& result, uint32_t status, uint32_t step, uint32_t swap_status) {
    EXPECT_EQ(result.result, status);
    EXPECT_EQ(result.refused_step, step);
    EXPECT_EQ(result.swap_status, swap_status);
  }
  static void expect_swapped() {
    const auto map = now().map;
    EXPECT_EQ(map.port_to_pn[0].pn, 1);
    EXPECT_EQ(map.port_to_pn[0].pa, 0x21);
    EXPECT_THAT(map.port_to_pn[0].vsans, ElementsAre(20, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(map.port_to_pn[1].pn, 0);
    EXPECT_EQ(map.port_to_pn[1].pa, 0x20);
    EXPECT_THAT(map.port_to_pn[1].vsans, ElementsAre(10, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(map.port_to_vsan[0], 10);
    EXPECT_EQ(now().change_counter, 8u);
  }

  static swap_result swap_and_agree(uint32_t a, uint32_t b) {
    const swap_client client;
    client.order(a, b);
    swap_result result = {};
    client.take_part(0, 0, result);
    return result;
  }

  // Manager and map, when a child that ordered a swap of fc1/1 and fc1/2 dies at the nth step.
  void expect_undone_when_client_dies_at(int nth);

  vswitch_test::temporary_folder folder_;
  std::unique_ptr<running_manager> manager_;
};

TEST_F(SwapProcess, AcceptedAtEachStepChangesTheMap) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  swap_result result = {};
  EXPECT_THAT(client.take_part(0, 0, result),
              ElementsAre("check-lock fc1/1 fc1/2", "do-swap fc1/1 fc1/2", "unlock fc1/1 fc1/2"));
  expect_result(result, 0, 0, 0);
  expect_swapped();
}

TEST_F(SwapProcess, StepsCarryTheVsansOfBothAndTheMapStaysUntilTheLast) {
  start();
  const swap_client client;
  client.order(kFc1_1, kPortChannel5);
  for (uint32_t opcode : {kOpSwapCheckLock, kOpSwapDoSwap, kOpSwapUnlock}) {
    const auto asked = client.next_step();
    EXPECT_EQ(asked.opcode, opcode);
    EXPECT_EQ(asked.number, 1u);
    EXPECT_EQ(asked.vsans.bytes, 512u);
    EXPECT_EQ(asked.vsans.bitmap[1], 0x20); // 10
    EXPECT_EQ(asked.vsans.bitmap[2], 0x00);
    EXPECT_EQ(asked.vsans.bitmap[3], 0x02); // 30
    EXPECT_EQ(now(), full_switch());
    client.respond(asked, 0);
  }
  expect_result(client.result(), 0, 0, 0);
  EXPECT_EQ(now().map.pn_to_if[0], kPortChannel5);
  EXPECT_EQ(now().map.pn_to_if[241], 0u);
  EXPECT_EQ(now().map.port_to_pn[1025].pn, 0);
}

TEST_F(SwapProcess, RefusedAtCheckLockIsUnlocked) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  swap_result result = {};
  EXPECT_THAT(client.take_part(1, 17, result), ElementsAre("check-lock fc1/1 fc1/2", "unlock fc1/1 fc1/2"));
  expect_result(result, 0x4085000A, 1, 17);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(SwapProcess, RefusedAtDoSwapIsUnlocked) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  swap_result result = {};
  EXPECT_THAT(client.take_part(2, 18, result),
              ElementsAre("check-lock fc1/1 fc1/2", "do-swap fc1/1 fc1/2", "unlock fc1/1 fc1/2"));
  expect_result(result, 0x4085000A, 2, 18);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(SwapProcess, RefusedAtUnlockIsSwappedBackAndUnlocked) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  swap_result result = {};
  EXPECT_THAT(client.take_part(3, 19, result),
              ElementsAre("check-lock fc1/1 fc1/2", "do-swap fc1/1 fc1/2", "unlock fc1/1 fc1/2", "do-swap fc1/2 fc1/1",
                          "unlock fc1/1 fc1/2"));
  expect_result(result, 0x4085000A, 3, 19);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(SwapProcess, RefusalOfTheUndoingChangesNothing) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  for (uint32_t status : {17u, 99u}) client.respond(client.next_step(), status);
  expect_result(client.result(), 0x4085000A, 1, 17);
  expect_result(swap_and_agree(kFc1_1, kFc1_2), 0, 0, 0);
}

TEST_F(SwapProcess, OrdersThatCannotBeAreAnsweredAtOnce) {
  start();
  const swap_client client;
  const std::pair<std::pair<uint32_t, uint32_t>, uint32_t> orders[] = {
      {{kFc1_1, kFc1_1}, 0x40850003}, {{kFc1_1, kFc1_49}, 0x4085004A}, {{kFc1_9, kFc1_1}, 0x4085004A},
      {{kFc1_3, kFc1_1}, 0x4085001A}, {{kFc1_1, 0}, 0x4085004A},       {{kFcip4, kFcip3}, 0x4085004A}};
  for (const auto& [interfaces, status] : orders) {
    client.order(interfaces.first, interfaces.second);
    expect_result(client.result(), status, 0, 0);
  }
}

// ---- Clients that fall silent ----

TEST_F(SwapProcess, ClientThatDoesNotAnswerRefuses) {
  start(100);
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  client.respond(client.next_step(), 0);
  EXPECT_EQ(client.next_step().opcode, kOpSwapDoSwap);
  EXPECT_EQ(client.next_step().opcode, kOpSwapDoSwap); // the undoing, since it may have swapped
  EXPECT_EQ(client.next_step().opcode, kOpSwapUnlock);
  expect_result(client.result(), 0x4085000A, 2, 0);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(SwapProcess, ResponseThatComesTooLateIsNotTaken) {
  start(100);
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  const auto asked = client.next_step();
  EXPECT_EQ(client.next_step().opcode, kOpSwapUnlock);
  expect_result(client.result(), 0x4085000A, 1, 0);
  client.respond(asked, 0);
  EXPECT_TRUE(manager_->logged("a response to swap 1, which does not wait for it"));
  EXPECT_EQ(now(), full_switch());
}

void SwapProcess::expect_undone_when_client_dies_at(int nth) {
  start();
  EXPECT_TRUE(ended_well(in_child([&] {
    use_switch(switch_store::open(path()));
    const swap_client client;
    client.order(kFc1_1, kFc1_2);
    for (int n = 1; n < nth; ++n) client.respond(client.next_step(), 0);
    client.next_step();
  })));
  EXPECT_TRUE(manager_->logged("swap 1 of fc1/1 and fc1/2: not done: 0x4085000A"));
  EXPECT_EQ(now(), full_switch());
  expect_result(swap_and_agree(kFc1_1, kFc1_2), 0, 0, 0); // nobody holds them any more
}

TEST_F(SwapProcess, ClientThatDiesAtCheckLockIsUndone) {
  expect_undone_when_client_dies_at(1);
}

TEST_F(SwapProcess, ClientThatDiesAtDoSwapIsUndone) {
  expect_undone_when_client_dies_at(2);
}

TEST_F(SwapProcess, ClientThatDiesAtUnlockIsUndone) {
  expect_undone_when_client_dies_at(3);
}

TEST_F(SwapProcess, OthersAreAnsweredWhileASwapWaits) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  const auto asked = client.next_step();
  auto other = open_client();
  for (uintptr_t n = 1; n <= 100; ++n) {
    ASSERT_EQ(ficon_send_get_portmap_nonblock(other.get(), nullptr, nullptr, 0, 0, kFc1_1, 0, 0, n), 0);
    auto answer = receive(other.get());
    EXPECT_EQ(msgq_send_arg_get(answer.get()), n);
    uint16_t pn = 512;
    EXPECT_EQ(ficon_parse_get_portmap(answer.get(), nullptr, &pn, nullptr), 0u);
    EXPECT_EQ(pn, 0);
  }
  client.respond(asked, 0);
  EXPECT_EQ(client.next_step().opcode, kOpSwapDoSwap);
}

// ---- Several swaps ----

TEST_F(SwapProcess, SecondSwapOfAnInterfaceIsRefusedUntilTheFirstIsOver) {
  start();
  const swap_client first;
  const swap_client second;
  first.order(kFc1_1, kFc1_2);
  const auto asked = first.next_step();
  second.order(kFc1_2, kFc1_5);
  expect_result(second.result(), 0x40850000, 0, 0);
  first.respond(asked, 0);
  swap_result result = {};
  first.take_part(0, 0, result);
  expect_result(result, 0, 0, 0);
  expect_swapped();
  second.order(kFc1_2, kFc1_5);
  second.take_part(0, 0, result);
  expect_result(result, 0, 0, 0);
}

TEST_F(SwapProcess, SwapsOfDifferentInterfacesDoNotWaitForEachOther) {
  start();
  const swap_client first;
  const swap_client second;
  first.order(kFc1_1, kFc1_2);
  const auto asked = first.next_step();
  second.order(kFc1_5, kFcip3);
  swap_result result = {};
  second.take_part(0, 0, result);
  expect_result(result, 0, 0, 0);
  EXPECT_EQ(now().map.pn_to_if[4], kFcip3);
  first.respond(asked, 0);
  first.take_part(0, 0, result);
  expect_result(result, 0, 0, 0);
}

TEST_F(SwapProcess, AnotherClientsResponseIsNotTaken) {
  start();
  const swap_client first;
  const swap_client second;
  first.order(kFc1_1, kFc1_2);
  const auto asked = first.next_step();
  second.order(kFc1_5, kFcip3);
  auto stranger = second.next_step();
  stranger.number = asked.number;
  second.respond(stranger, 17);
  EXPECT_TRUE(manager_->logged("a response to swap 1, which does not wait for it"));
  first.respond(asked, 0);
  EXPECT_EQ(first.next_step().opcode, kOpSwapDoSwap);
}

TEST_F(SwapProcess, ManagerThatEndsUndoesTheSwap) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  for (int n = 0; n < 2; ++n) client.respond(client.next_step(), 0);
  EXPECT_EQ(client.next_step().opcode, kOpSwapUnlock);
  EXPECT_EQ(manager_->end().exit_code, 0);
  const auto back = client.next_step();
  EXPECT_EQ(back.opcode, kOpSwapDoSwap);
  EXPECT_EQ(back.if_index_a, kFc1_2);
  EXPECT_EQ(client.next_step().opcode, kOpSwapUnlock);
  expect_result(client.result(), 0x4085000A, 3, 0);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(SwapProcess, ManagerThatIsKilledLeavesTheMap) {
  start();
  const swap_client client;
  client.order(kFc1_1, kFc1_2);
  for (int n = 0; n < 2; ++n) client.respond(client.next_step(), 0);
  client.next_step();
  manager_->kill_at_once();
  EXPECT_EQ(now(), full_switch());
  start();
  expect_result(swap_and_agree(kFc1_1, kFc1_2), 0, 0, 0);
}

} // namespace
