// message against the library: what it encodes is what the library sends through the transport, and what the library parses
// is what it encoded.
#include <message_parties.h>

#include <bit>
#include <cstdlib>
#include <cstring>

#include "tool_test.h"

namespace chnsw_test {
namespace {

using vswitch_test::end;
using vswitch_test::message;
using vswitch_test::payload_of;

constexpr uint32_t kPort = 0x01020400; // fc3/5
constexpr uint32_t kChannel = 0x04000005;
constexpr vsan_block kNoVsans = {512, {}};
constexpr const char* kOrder = std::endian::native == std::endian::little ? "little" : "big"; // the library's

std::string bytes_of(const std::string& hex) {
  std::string bytes;
  for (size_t n = 0; n < hex.size(); n += 2) bytes += static_cast<char>(std::stoi(hex.substr(n, 2), nullptr, 16));
  return bytes;
}

class MessageOfTheLibrary : public tool_test {
 protected:
  std::string encoded(std::vector<std::string> words) const {
    words.insert(words.begin(), {"message", "encode"});
    words.insert(words.end(), {"--byte-order", kOrder, "--format", "json"});
    auto result = run(words);
    EXPECT_EQ(result.status, 0) << result.err;
    return bytes_of(parse_json(result.out)[0]["payload"]);
  }

  // What the manager got from the library.
  std::string sent() { return payload_of(asked_ = vswitch_test::receive(manager)); }

  // A payload as the client receives it.
  msgq_message* received(const std::string& payload) {
    EXPECT_EQ(vswitch_test::request(client, "?"), 0);
    asked_ = vswitch_test::receive(manager);
    EXPECT_EQ(vswitch_test::reply(manager, asked_, payload), 0);
    return (answer_ = vswitch_test::receive(client)).get();
  }

  // What the tool makes of such a payload.
  std::map<std::string, std::string> decoded(const char* kind, const std::string& payload, bool in_order = true) const {
    std::string hex;
    char digits[3];
    for (char byte : payload) {
      std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
      hex += digits;
    }
    std::vector<std::string> words = {"message", "decode", kind, hex, "--format", "json"};
    if (in_order) words.insert(words.end(), {"--byte-order", kOrder});
    auto result = run(words);
    EXPECT_EQ(result.status, 0) << result.err;
    std::map<std::string, std::string> texts;
    for (const auto& row : parse_json(result.out))
      if (row["value"].is_string()) texts[row["field"]] = row["value"];
    return texts;
  }

  vswitch_test::switch_with_messages place;
  end manager = vswitch_test::open_end(FICON_MGR_SERVICE_POINT);
  end client = vswitch_test::open_end();

 private:
  message asked_;
  message answer_;
};

// ---- Encoded as it is sent ----

TEST_F(MessageOfTheLibrary, PortmapRequest) {
  ASSERT_EQ(ficon_send_get_portmap_nonblock(client.get(), "me", "here", 7, 1, kPort, 96, 0x30, 0), 0);
  const std::string payload = sent();
  EXPECT_EQ(encoded({"portmap-request", "code=7", "text1=me", "text2=here", "selector=1", "if_index=fc3/5", "number_a=96",
                     "number_b=0x30"}),
            payload);
  auto fields = decoded("portmap-request", payload, false);
  EXPECT_EQ(fields["if_index"], "fc3/5");
  EXPECT_EQ(fields["number_b"], "48");
}

TEST_F(MessageOfTheLibrary, EnabledVsansRequest) {
  ASSERT_EQ(ficon_send_get_enabled_vsans(client.get(), 0), 0);
  EXPECT_EQ(encoded({"enabled-vsans-request"}), sent());
}

TEST_F(MessageOfTheLibrary, RnidRequest) {
  ASSERT_EQ(ficon_send_get_rnid_nonblock(client.get(), kChannel, 0x1234, 8, 2, 24, 0), 0);
  EXPECT_EQ(encoded({"rnid-request", "if_index=port-channel5", "rnid_port=0x1234", "rnid_word8=8", "rnid_format=2",
                     "rnid_word24=24"}),
            sent());
}

TEST_F(MessageOfTheLibrary, IfvsanQuery) {
  const ficon_ifvsan_query query = {99, 99, 10, kPort, 0x01020304};
  ASSERT_EQ(ficon_send_query_ifvsan_state(client.get(), &query, 0), 0);
  EXPECT_EQ(encoded({"ifvsan-query", "arg_a=10", "if_index=fc3/5", "arg_b=0x01020304"}), sent());
}

TEST_F(MessageOfTheLibrary, VsanInstall) {
  const uint32_t interfaces[] = {kPort, kChannel};
  vsan_block vsans = {512, {}};
  vsans.bitmap[1] = 0x20;
  vsans.bitmap[2] = 0x0E;
  ASSERT_EQ(ficon_send_vsan_install(client.get(), 2, interfaces, 1, 0, 0, &vsans), 0u);
  const std::string payload = sent();
  EXPECT_EQ(encoded({"vsan-install", "install_byte0=1", "vsans=10,20-22", "interfaces=fc3/5,port-channel5"}), payload);
  auto fields = decoded("vsan-install", payload);
  EXPECT_EQ(fields["vsans"], "10,20-22");
  EXPECT_EQ(fields["interfaces"], "fc3/5,port-channel5");
}

TEST_F(MessageOfTheLibrary, VsanInstallForOneVsan) {
  const uint32_t interfaces[] = {kPort};
  ASSERT_EQ(ficon_send_vsan_install(client.get(), 1, interfaces, 0, 1, 4095, &kNoVsans), 0u);
  EXPECT_EQ(encoded({"vsan-install", "vsans=4095", "interfaces=fc3/5"}), sent());
}

TEST_F(MessageOfTheLibrary, SwapResponse) {
  ASSERT_EQ(vswitch_test::connect(client), 0);
  ASSERT_EQ(vswitch_test::request(client, "?"), 0); // the manager learns who the client is
  const uint64_t peer = msgq_peer_get(vswitch_test::receive(manager).get());
  ASSERT_EQ(vswitch_test::send_to_peer(
                manager, peer,
                encoded({"swap-request", "swap_word0=9", "if_index_a=fc3/5", "if_index_b=port-channel5", "vsans=10,4095"})),
            0);
  const message asked = vswitch_test::receive(client);
  uint32_t word = 0;
  uint32_t a = 0;
  uint32_t b = 0;
  vsan_block vsans{};
  ficon_if_swap_chk_lock_parse_with_vsan(asked.get(), &word, &a, &b, &vsans);
  EXPECT_EQ(word, 9u);
  EXPECT_EQ(a, kPort);
  EXPECT_EQ(b, kChannel);
  EXPECT_EQ(vsans.bytes, 512u);
  EXPECT_EQ(vsans.bitmap[1], 0x20);
  EXPECT_EQ(vsans.bitmap[511], 0x01);
  ficon_if_swap_chk_lock_send_resp(client.get(), asked.get(), word, a, b, FICON_RC_BASE);
  EXPECT_EQ(encoded({"swap-response", "swap_status=FICON_RC_BASE", "swap_word4=9", "if_index_a=fc3/5",
                     "if_index_b=port-channel5"}),
            sent());
}

// ---- Parsed as it was encoded ----

TEST_F(MessageOfTheLibrary, PortmapAnswer) {
  auto* answer =
      received(encoded({"portmap-answer", "if_index=fc3/5", "number_a=96", "number_b=65535", "result=0x4085004A"}));
  uint32_t if_index = 0;
  uint16_t number_a = 0;
  uint16_t number_b = 0;
  EXPECT_EQ(ficon_parse_get_portmap(answer, &if_index, &number_a, &number_b), 0x4085004Au);
  EXPECT_EQ(if_index, kPort);
  EXPECT_EQ(number_a, 96);
  EXPECT_EQ(number_b, 0xFFFF);
}

TEST_F(MessageOfTheLibrary, EnabledVsansAnswer) {
  auto* answer = received(encoded({"enabled-vsans-answer", "vsans=10,20-22"}));
  void* list = nullptr;
  ASSERT_EQ(ficon_parse_get_enabled_vsans(answer, &list), 0u);
  vsan_block set{};
  std::memcpy(&set, list, sizeof set);
  std::free(list);
  EXPECT_EQ(set.bytes, 512u);
  EXPECT_EQ(set.bitmap[1], 0x20);
  EXPECT_EQ(set.bitmap[2], 0x0E);
}

TEST_F(MessageOfTheLibrary, RnidAnswer) {
  const std::string payload = encoded({"rnid-answer", "if_index=fc3/5", "rnid_port=1", "rnid_word8=8", "codepage=273",
                                       "rnid_format=2", "rnid_word24=24", "node=8401-C02-ACM-83-A1234", "node.tag=0x0102"});
  uint32_t if_index = 0;
  uint32_t codepage = 0;
  ficon_node_descriptor node{};
  EXPECT_EQ(ficon_parse_get_rnid(received(payload), &if_index, nullptr, nullptr, &codepage, nullptr, nullptr, &node), 0u);
  EXPECT_EQ(if_index, kPort);
  EXPECT_EQ(codepage, 273u);
  EXPECT_EQ(std::string(node.type, 6), "008401");
  EXPECT_EQ(std::string(node.sequence, 12), "0000000A1234");
  EXPECT_EQ(node.tag[1], 2);
  EXPECT_EQ(decoded("rnid-answer", payload)["node"], "008401-C02-ACM-83-0000000A1234");
}

TEST_F(MessageOfTheLibrary, IfvsanAnswer) {
  ficon_ifvsan_query answer{};
  EXPECT_EQ(
      ficon_parse_query_ifvsan(
          received(encoded({"ifvsan-answer", "result=0", "state=3", "arg_a=10", "if_index=fc3/5", "arg_b=5"})), &answer),
      0u);
  EXPECT_EQ(answer.state, 3u);
  EXPECT_EQ(answer.arg_a, 10u);
  EXPECT_EQ(answer.if_index, kPort);
  EXPECT_EQ(answer.arg_b, 5u);
}

TEST_F(MessageOfTheLibrary, Notices) {
  ficon_vsan_state_change vsan{};
  EXPECT_EQ(ficon_parse_vsan_state_change_payload(received(encoded({"vsan-state-notice", "word0=20", "word1=1"})), &vsan),
            0u);
  EXPECT_EQ(vsan.word0, 20u);
  EXPECT_EQ(vsan.word1, 1u);
  ficon_updown_notice updown{};
  EXPECT_EQ(ficon_parse_updown_payload(received(encoded({"updown-notice", "word0=fc3/5", "byte4=1", "byte5=7"})), &updown),
            0u);
  EXPECT_EQ(updown.word0, kPort);
  EXPECT_EQ(updown.byte4, 1);
  EXPECT_EQ(updown.byte5, 7);
  ficon_enable_notice enable{};
  EXPECT_EQ(ficon_parse_enable_payload(received(encoded({"enable-notice", "word0=port-channel5", "byte4=1"})), &enable),
            0u);
  EXPECT_EQ(enable.word0, kChannel);
  EXPECT_EQ(enable.byte4, 1);
}

} // namespace
} // namespace chnsw_test
