// A manager in its own process, asked through the library's senders and answered to its parsers.
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/if_index.h>
#include <unistd.h>
#include <vswitch/manager/manager_protocol.h>
#include <vswitch/switch_store.h>
#include <vswitch/vswitch.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

constexpr uint32_t kInvalidArg = 0x40850003;

class ManagerProcess : public testing::Test {
 protected:
  ManagerProcess() {
    switch_store::create(path(), full_switch());
    manager_ = std::make_unique<running_manager>(path());
    use_switch(switch_store::open(path()));
    client_ = open_client();
  }
  ~ManagerProcess() override {
    client_.reset();
    use_switch(nullptr);
  }

  std::string path() const { return folder_.path("switch"); }

  owned_message reply(uintptr_t send_arg) const {
    auto message = receive(client_.get());
    EXPECT_EQ(msgq_is_reply(message.get()), 1);
    EXPECT_EQ(msgq_send_arg_get(message.get()), send_arg);
    return message;
  }
  owned_message ask(uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg = 9) const {
    EXPECT_EQ(msgq_send(client_.get(), &kManagerAddress, opcode, payload, length, send_arg, nullptr, 0), 0);
    return reply(send_arg);
  }
  template <typename record>
  owned_message ask(uint32_t opcode, const record& request) const {
    return ask(opcode, &request, sizeof request);
  }
  uint32_t install(uint8_t byte0, std::vector<uint32_t> if_indexes, std::vector<unsigned> vsans) const {
    if_indexes.reserve(1); // an array, also when it is empty
    vsan_block set = {512, {}};
    for (unsigned vsan : vsans) set.bitmap[vsan / 8] |= static_cast<uint8_t>(0x80 >> vsan % 8);
    EXPECT_EQ(ficon_send_vsan_install(client_.get(), static_cast<uint32_t>(if_indexes.size()), if_indexes.data(), byte0, 0,
                                      0, &set),
              0u);
    auto answer = reply(0);
    EXPECT_EQ(msgq_payload_size(answer.get()), 4u);
    return payload_record<manager_result>(answer.get()).result;
  }
  chassis_description now() const { return switch_in_use()->describe(); }

  // An end that hears notices.
  static owned_end open_listener() {
    auto end = open_client();
    EXPECT_EQ(msgq_connect(end.get(), &kNoticeAddress), 0);
    return end;
  }
  notify_result notify(const notify_order& order) const {
    return payload_record<notify_result>(ask(kOpNotify, order).get());
  }

  vswitch_test::temporary_folder folder_;
  std::unique_ptr<running_manager> manager_;
  owned_end client_;
};

TEST_F(ManagerProcess, AnswersPortMap) {
  const auto send_arg = static_cast<uintptr_t>(0x1122334455667788); // as much of it as a pointer holds
  ASSERT_EQ(ficon_send_get_portmap_nonblock(client_.get(), "nightly", "of the lab", 17, 0, kFc1_2, 0, 0, send_arg), 0);
  uint32_t if_index = 0;
  uint16_t pn = 0;
  uint16_t pa = 0;
  EXPECT_EQ(ficon_parse_get_portmap(reply(send_arg).get(), &if_index, &pn, &pa), 0u);
  EXPECT_EQ(if_index, kFc1_2);
  EXPECT_EQ(pn, 1);
  EXPECT_EQ(pa, 0x21);
  EXPECT_TRUE(manager_->logged("port map of fc1/2, code 17, \"nightly\", \"of the lab\": 0x00000000"));
}

TEST_F(ManagerProcess, AnswersPortMapWithTheLibrarysStatus) {
  ASSERT_EQ(ficon_send_get_portmap_nonblock(client_.get(), nullptr, nullptr, 0, 0, kFc1_3, 0, 0, 1), 0);
  uint16_t pn = 0;
  EXPECT_EQ(ficon_parse_get_portmap(reply(1).get(), nullptr, &pn, nullptr), 0x4085001Au);
  EXPECT_EQ(pn, 512);
}

TEST_F(ManagerProcess, AnswersEnabledVsans) {
  ASSERT_EQ(ficon_send_get_enabled_vsans(client_.get(), 2), 0);
  void* list = nullptr;
  ASSERT_EQ(ficon_parse_get_enabled_vsans(reply(2).get(), &list), 0u);
  vsan_block vsans;
  std::memcpy(&vsans, list, sizeof vsans);
  std::free(list);
  EXPECT_EQ(vsans.bytes, 512u);
  EXPECT_EQ(vsans.bitmap[1], 0x20);
  EXPECT_EQ(vsans.bitmap[2], 0x08);
  EXPECT_EQ(vsans.bitmap[3], 0x02);
}

TEST_F(ManagerProcess, AnswersVsanState) {
  const ficon_ifvsan_query query = {0, 0, 10, kFc1_1, 77};
  ASSERT_EQ(ficon_send_query_ifvsan_state(client_.get(), &query, 3), 0);
  ficon_ifvsan_query answer = {};
  EXPECT_EQ(ficon_parse_query_ifvsan(reply(3).get(), &answer), 0u);
  EXPECT_EQ(answer.state, 3u);
  EXPECT_EQ(answer.arg_a, 10u);
  EXPECT_EQ(answer.if_index, kFc1_1);
  EXPECT_EQ(answer.arg_b, 77u);
}

TEST_F(ManagerProcess, AnswersRnidWhichTheParserConverts) {
  ASSERT_EQ(ficon_send_get_rnid_nonblock(client_.get(), kFc1_1, 5, 8, FICON_RNID_FORMAT_CONVERTED, 24, 4), 0);
  uint32_t codepage = 0;
  char descriptor[32] = {};
  EXPECT_EQ(ficon_parse_get_rnid(reply(4).get(), nullptr, nullptr, nullptr, &codepage, nullptr, nullptr, descriptor), 0u);
  EXPECT_EQ(codepage, 37u);
  EXPECT_EQ(std::string(descriptor + 4, 26), "008401C02ACM07000000012345");
}

TEST_F(ManagerProcess, AnswersAsTheMapIsNow) {
  ASSERT_EQ(install(kInstall, {kFc1_1}, {99}), 0u);
  const ficon_ifvsan_query query = {0, 0, 99, kFc1_1, 0};
  ASSERT_EQ(ficon_send_query_ifvsan_state(client_.get(), &query, 3), 0);
  ficon_ifvsan_query answer = {};
  EXPECT_EQ(ficon_parse_query_ifvsan(reply(3).get(), &answer), 0u);
  EXPECT_EQ(answer.state, 2u);
}

TEST_F(ManagerProcess, InstallsAndUninstalls) {
  EXPECT_EQ(install(kInstall, {kFc1_1, kFcip3}, {40, 50}), 0u);
  EXPECT_THAT(now().map.port_to_pn[0].vsans, ElementsAre(10, 40, 50, 0, 0, 0, 0, 0));
  EXPECT_THAT(now().map.port_to_pn[1024].vsans, ElementsAre(20, 40, 50, 0, 0, 0, 0, 0));
  EXPECT_EQ(now().change_counter, 8u);
  EXPECT_EQ(install(kUninstall, {kFc1_1}, {10, 50}), 0u);
  EXPECT_THAT(now().map.port_to_pn[0].vsans, ElementsAre(40, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(now().change_counter, 9u);
}

TEST_F(ManagerProcess, RefusedInstallLeavesTheSwitch) {
  EXPECT_EQ(install(kInstall, {kFc1_1, kFc1_49}, {40}), 0x4085004Au);
  EXPECT_EQ(install(kInstall, {kFc1_1}, {1, 2, 3, 4, 5, 6, 7, 8}), 0x4085000Au);
  EXPECT_EQ(install(kInstall, {kFc1_1}, {0, 40}), kInvalidArg);
  EXPECT_EQ(install(2, {kFc1_1}, {40}), kInvalidArg);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(ManagerProcess, InstallOfNoInterfacesIsNoChange) {
  EXPECT_EQ(install(kInstall, {}, {40}), 0u);
  EXPECT_EQ(now(), full_switch());
}

TEST_F(ManagerProcess, InstallTakesAsManyInterfacesAsAMessageHolds) {
  EXPECT_EQ(install(kInstall, std::vector<uint32_t>(16253, kFc1_1), {40}), 0u); // 521 + 4 x 16253 = 65533
  EXPECT_THAT(now().map.port_to_pn[0].vsans, ElementsAre(10, 40, 0, 0, 0, 0, 0, 0));
}

TEST_F(ManagerProcess, AnythingElseIsRefused) {
  std::array<char, 600> bytes = {};
  const uint32_t opcodes[] = {0,
                              1,
                              FICON_OP_GET_PORTMAP,
                              FICON_OP_GET_RNID,
                              FICON_OP_VSAN_INSTALL,
                              kOpSwap,
                              kOpNotify,
                              FICON_OP_QUERY_IFVSAN_STATE,
                              7860,
                              kOpSwapCheckLock,
                              0xFFFFFFFF};
  for (uint32_t opcode : opcodes)
    for (uint32_t size : {0u, 3u, 600u}) {
      auto answer = ask(opcode, size == 0 ? nullptr : bytes.data(), size);
      EXPECT_EQ(msgq_payload_size(answer.get()), 4u) << opcode;
      EXPECT_EQ(payload_record<manager_result>(answer.get()).result, kInvalidArg) << opcode << " " << size;
    }
  auto answer = ask(FICON_OP_GET_ENABLED_VSANS, bytes.data(), 1);
  EXPECT_EQ(payload_record<manager_result>(answer.get()).result, kInvalidArg);
}

// ---- Notices ----

TEST_F(ManagerProcess, EveryListenerHearsANotice) {
  auto first = open_listener();
  auto second = open_listener();
  const auto result = notify({kOpPortUpDown, 0, hton_if_index(kFc1_2), 1, 7, {}});
  EXPECT_EQ(result.result, 0u);
  EXPECT_EQ(result.listeners, 2u);
  for (msgq* end : {first.get(), second.get()}) {
    auto message = receive(end);
    EXPECT_EQ(msgq_opcode_get(message.get()), 0x56530002u);
    EXPECT_EQ(msgq_is_reply(message.get()), 0);
    ficon_updown_notice heard = {};
    EXPECT_EQ(ficon_parse_updown_payload(message.get(), &heard), 0u);
    EXPECT_EQ(heard.word0, kFc1_2);
    EXPECT_EQ(heard.byte4, 1);
    EXPECT_EQ(heard.byte5, 7);
  }
}

TEST_F(ManagerProcess, EveryKindOfNoticeIsParsed) {
  auto listener = open_listener();
  EXPECT_EQ(notify({kOpVsanStateChange, 10, 0, 1, 0, {}}).listeners, 1u);
  EXPECT_EQ(notify({kOpPortEnable, 0, hton_if_index(kFcip3), 1, 0, {}}).listeners, 1u);
  EXPECT_EQ(notify({kOpRnidNotification, 0, hton_if_index(kFc1_2), 0, 0, {}}).listeners, 1u);
  ficon_vsan_state_change change = {};
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(receive(listener.get()).get(), &change), 0u);
  EXPECT_EQ(change.word0, 10u);
  EXPECT_EQ(change.word1, 1u);
  ficon_enable_notice enable = {};
  EXPECT_EQ(ficon_parse_enable_payload(receive(listener.get()).get(), &enable), 0u);
  EXPECT_EQ(enable.word0, kFcip3);
  EXPECT_EQ(enable.byte4, 1);
  uint32_t if_index = 0;
  char descriptor[32] = {};
  EXPECT_EQ(ficon_parse_rnid_notification(receive(listener.get()).get(), &if_index, nullptr, nullptr, nullptr, nullptr,
                                          descriptor),
            0u);
  EXPECT_EQ(if_index, kFc1_2);
  EXPECT_EQ(std::string(descriptor + 4, 26), "005570900ACM120000000ABC19");
}

TEST_F(ManagerProcess, NoticeThatCannotBeIsToldToNobody) {
  auto listener = open_listener();
  EXPECT_EQ(notify({kOpPortUpDown, 0, hton_if_index(kFc1_49), 1, 0, {}}).result, 0x4085004Au);
  EXPECT_EQ(notify({kOpVsanStateChange, 4096, 0, 1, 0, {}}).result, kInvalidArg);
  EXPECT_EQ(notify({kOpVsanStateChange, 1, 0, 1, 0, {}}).listeners, 1u);
  ficon_vsan_state_change change = {};
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(receive(listener.get()).get(), &change), 0u);
  EXPECT_EQ(change.word0, 1u);
}

TEST_F(ManagerProcess, NoticesGoToThoseWhoAreThereStill) {
  auto listener = open_listener();
  open_listener().reset();
  EXPECT_TRUE(comes_true([&] { return notify({kOpVsanStateChange, 1, 0, 1, 0, {}}).listeners == 1; }));
}

TEST_F(ManagerProcess, InstallAnnouncesTheVsansThatItEnables) {
  auto listener = open_listener();
  ASSERT_EQ(install(kInstall, {kFc1_1}, {20, 40}), 0u);
  ASSERT_EQ(install(kUninstall, {kFc1_1}, {20, 40}), 0u);
  ficon_vsan_state_change change = {};
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(receive(listener.get()).get(), &change), 0u);
  EXPECT_EQ(change.word0, 40u);
  EXPECT_EQ(change.word1, 1u);
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(receive(listener.get()).get(), &change), 0u);
  EXPECT_EQ(change.word0, 40u);
  EXPECT_EQ(change.word1, 0u);
}

TEST_F(ManagerProcess, ListenersHaveNothingToAsk) {
  auto listener = open_listener();
  ASSERT_EQ(msgq_send(listener.get(), &kNoticeAddress, FICON_OP_GET_ENABLED_VSANS, nullptr, 0, 5, nullptr, 0), 0);
  auto answer = receive(listener.get());
  EXPECT_EQ(msgq_send_arg_get(answer.get()), 5u);
  EXPECT_EQ(payload_record<manager_result>(answer.get()).result, kInvalidArg);
}

// ---- Beginning and end ----

TEST_F(ManagerProcess, EndsWhenItIsAskedTo) {
  const auto result = manager_->end();
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_THAT(result.errors, HasSubstr("manager: serves: 0x00000000\n"));
  EXPECT_THAT(result.errors, HasSubstr("manager: ends: 0x00000000\n"));
}

TEST_F(ManagerProcess, SecondManagerOfASwitchIsRefused) {
  const auto second = vswitch_test::run({MANAGER_PROCESS, path(), "1000"});
  EXPECT_EQ(second.exit_code, 1);
  EXPECT_THAT(second.output, Not(HasSubstr("ready")));
  EXPECT_THAT(second.errors, HasSubstr("manager"));
  ASSERT_EQ(ficon_send_get_enabled_vsans(client_.get(), 2), 0);
  EXPECT_EQ(ficon_parse_get_enabled_vsans(reply(2).get(), nullptr), 0u);
}

TEST_F(ManagerProcess, ThatWasKilledIsReplacedAtOnce) {
  manager_->kill_at_once();
  manager_ = std::make_unique<running_manager>(path());
  auto anew = open_client();
  ASSERT_EQ(ficon_send_get_enabled_vsans(anew.get(), 2), 0);
  EXPECT_EQ(ficon_parse_get_enabled_vsans(receive(anew.get()).get(), nullptr), 0u);
}

TEST_F(ManagerProcess, ThatIsGoneIsToldToItsClients) {
  ASSERT_EQ(ficon_send_get_enabled_vsans(client_.get(), 2), 0);
  reply(2);
  manager_->kill_at_once();
  msgq_message* message = nullptr;
  EXPECT_EQ(msgq_receive(client_.get(), &message, 60000), -1);
  EXPECT_EQ(msgq_errno_get(client_.get()), ECONNRESET);
  EXPECT_NE(ficon_send_get_enabled_vsans(client_.get(), 2), 0);
}

} // namespace
