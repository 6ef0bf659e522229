// What the transport promises to whoever holds an end: every line of its header, within one process where that is enough.
#include "message_parties.h"

#include <poll.h>
#include <signal.h>
#include <sys/time.h>
#include <vswitch/vswitch.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>

namespace {

using namespace vswitch_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class MessageTransport : public ::testing::Test {
 protected:
  static bool readable(const end& asked) {
    pollfd state{msgq_descriptor(asked.get()), POLLIN, 0};
    return poll(&state, 1, 0) == 1;
  }

  // A message that the server has received.
  message sent_and_received(std::string_view payload, uint32_t opcode = 1, uintptr_t send_arg = 0) {
    EXPECT_EQ(request(client, payload, opcode, send_arg), 0);
    return receive(server);
  }

  switch_with_messages place;
  end server = open_end(kPoint);
  end client = open_end();
};

// ---- Requests

TEST_F(MessageTransport, RequestArrivesWithItsOpcodeAndItsBytes) {
  const message received = sent_and_received("hello", 0x1EB2);
  ASSERT_TRUE(received);
  EXPECT_EQ(payload_of(received), "hello");
  EXPECT_EQ(msgq_opcode_get(received.get()), 0x1EB2u);
  EXPECT_EQ(msgq_is_reply(received.get()), 0);
}

TEST_F(MessageTransport, RequestKeepsItsSendArgToItself) {
  EXPECT_EQ(msgq_send_arg_get(sent_and_received("x", 1, 77).get()), 0u);
}

class MessageTransportSize : public MessageTransport, public ::testing::WithParamInterface<size_t> {};

TEST_P(MessageTransportSize, ArrivesWholeAndComesBackWhole) {
  std::string bytes(GetParam(), '\0');
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + 1);
  const message received = sent_and_received(bytes);
  ASSERT_TRUE(received);
  EXPECT_EQ(msgq_payload_size(received.get()), GetParam());
  EXPECT_TRUE(payload_of(received) == bytes);
  EXPECT_EQ(reply(server, received, bytes), 0);
  const message answer = receive(client);
  ASSERT_TRUE(answer);
  EXPECT_TRUE(payload_of(answer) == bytes);
}

// 4096 and 4097 lie on either side of what is copied together before it is sent.
INSTANTIATE_TEST_SUITE_P(Sizes, MessageTransportSize, ::testing::Values(1, 7, 8, 9, 4095, 4096, 4097, 65535, 65536));

TEST_F(MessageTransport, MessageOfLengthNothingHasNoPayload) {
  const message received = sent_and_received("");
  ASSERT_TRUE(received);
  EXPECT_EQ(msgq_payload_get(received.get()), nullptr);
  EXPECT_EQ(msgq_payload_size(received.get()), 0u);
}

TEST_F(MessageTransport, PayloadPointerIsNotLookedAtWhenTheLengthIsNothing) {
  int anything = 0;
  EXPECT_EQ(msgq_send(client.get(), &kServer, 1, &anything, 0, 0, nullptr, 0), 0);
  const message received = receive(server);
  ASSERT_TRUE(received);
  EXPECT_EQ(msgq_payload_get(received.get()), nullptr);
}

TEST_F(MessageTransport, OneByteTooLongIsRefusedAndDoesNotArrive) {
  EXPECT_EQ(request(client, std::string(65537, 'x')), EMSGSIZE);
  EXPECT_EQ(request(client, "after"), 0);
  EXPECT_EQ(payload_of(receive(server)), "after");
}

TEST_F(MessageTransport, ZerosFollowEveryPayloadAlsoWhereALongerOneLayBefore) {
  for (const size_t size : {65536u, 3u, 60000u, 1u, 24u, 1500u}) {
    const message received = sent_and_received(std::string(size, '\xFF'));
    ASSERT_TRUE(received);
    const auto* behind = static_cast<const char*>(msgq_payload_get(received.get())) + size;
    EXPECT_EQ(std::count(behind, behind + 1024, '\0'), 1024) << size;
  }
}

TEST_F(MessageTransport, PayloadsBeginAtMultiplesOfEight) {
  std::vector<message> held;
  for (size_t i = 0; i < 10; ++i) {
    held.push_back(sent_and_received(std::string(i + 1, 'x')));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(msgq_payload_get(held.back().get())) % 8, 0u);
  }
}

TEST_F(MessageTransport, HeldMessagesKeepTheirBytes) {
  std::vector<message> held;
  for (int i = 0; i < 30; ++i) held.push_back(sent_and_received(std::to_string(i)));
  for (int i = 0; i < 30; ++i) EXPECT_EQ(payload_of(held[static_cast<size_t>(i)]), std::to_string(i));
}

TEST_F(MessageTransport, PayloadMayBeWrittenTo) {
  const message received = sent_and_received("hello");
  std::memset(msgq_payload_get(received.get()), 'x', 5 + 1024);
  EXPECT_EQ(payload_of(received), "xxxxx");
  EXPECT_EQ(payload_of(sent_and_received("later")), "later");
}

// ---- What is refused

TEST_F(MessageTransport, NothingFailedAtFirst) {
  EXPECT_EQ(msgq_errno_get(client.get()), 0);
}

TEST_F(MessageTransport, NoHandleIsAnArgumentThatCannotBe) {
  msgq_message* received = nullptr;
  const auto refused = [](int result) { return result == -1 && errno == EINVAL; };
  EXPECT_TRUE(refused(msgq_send(nullptr, &kServer, 1, nullptr, 0, 0, nullptr, 0)));
  EXPECT_TRUE(refused(msgq_connect(nullptr, &kServer)));
  EXPECT_TRUE(refused(msgq_receive(nullptr, &received, 0)));
  EXPECT_TRUE(refused(msgq_descriptor(nullptr)));
  EXPECT_TRUE(refused(msgq_send_to_peer(nullptr, 1, 1, nullptr, 0)));
  EXPECT_EQ(msgq_peers_get(nullptr, nullptr, 0), 0u);
  EXPECT_EQ(msgq_errno_get(nullptr), EINVAL);
  msgq_close(nullptr);
}

TEST_F(MessageTransport, NoMessageHasNothing) {
  EXPECT_EQ(msgq_payload_get(nullptr), nullptr);
  EXPECT_EQ(msgq_payload_size(nullptr), 0u);
  EXPECT_EQ(msgq_opcode_get(nullptr), 0u);
  EXPECT_EQ(msgq_is_reply(nullptr), 0);
  EXPECT_EQ(msgq_send_arg_get(nullptr), 0u);
  EXPECT_EQ(msgq_peer_get(nullptr), 0u);
  msgq_release(nullptr);
}

TEST_F(MessageTransport, ArgumentsThatCannotBeAreRefused) {
  const auto sent = [&](const msgq_addr* to, const void* payload, uint32_t length, uint32_t zero) {
    return msgq_send(client.get(), to, 1, payload, length, 0, nullptr, zero) == 0 ? 0 : msgq_errno_get(client.get());
  };
  msgq_message* received = nullptr;
  EXPECT_EQ(sent(nullptr, "x", 1, 0), EINVAL);
  EXPECT_EQ(sent(&kServer, nullptr, 1, 0), EINVAL);
  EXPECT_EQ(sent(&kServer, "x", 1, 1), EINVAL);
  EXPECT_EQ(msgq_connect(client.get(), nullptr), -1);
  EXPECT_EQ(msgq_errno_get(client.get()), EINVAL);
  EXPECT_EQ(msgq_receive(client.get(), nullptr, 0), -1);
  EXPECT_EQ(msgq_receive(client.get(), &received, -2), -1);
  EXPECT_EQ(receive_error(server, 0), 0) << "nothing of it was sent";
}

TEST_F(MessageTransport, ArrayThatSaysToBeLongerThanItIsCannotBeSent) {
  const uint32_t header[] = {0x544C5641, 13, 0}; // 13 bytes, it says
  std::string array(sizeof header, '\0');
  std::memcpy(array.data(), header, sizeof header);
  const message received = sent_and_received("x");
  EXPECT_EQ(request(client, array), EINVAL);
  EXPECT_EQ(reply(server, received, array), EINVAL);
  EXPECT_EQ(send_to_peer(server, msgq_peer_get(received.get()), array), EINVAL);
  EXPECT_EQ(request(client, array + "x"), 0);
}

TEST_F(MessageTransport, OtherNodesAreNotThere) {
  EXPECT_EQ(request(client, "x", 1, 0, {0xFE000002, kPoint}), EHOSTUNREACH);
  EXPECT_EQ(request(client, "x", 1, 0, {FICON_REPLY_NODE, 0}), EHOSTUNREACH) << "it is for replies";
  EXPECT_EQ(connect(client, {0, kPoint}), EHOSTUNREACH);
}

TEST_F(MessageTransport, PointsThatNobodyServesRefuse) {
  EXPECT_EQ(request(client, "x", 1, 0, {0xFE000001, 102}), ECONNREFUSED);
  EXPECT_EQ(request(client, "x", 1, 0, {0xFE000001, 0}), ECONNREFUSED);
  EXPECT_EQ(connect(client, {0xFE000001, 0xFFFFFFFF}), ECONNREFUSED);
}

TEST_F(MessageTransport, LastFailureStaysUntilTheNextOne) {
  EXPECT_EQ(request(client, "x", 1, 0, {1, 1}), EHOSTUNREACH);
  EXPECT_EQ(request(client, "x"), 0);
  EXPECT_EQ(msgq_errno_get(client.get()), EHOSTUNREACH);
  EXPECT_EQ(msgq_errno_get(server.get()), 0);
}

TEST_F(MessageTransport, FullQueueIsToldAtOnceAndWhatWasTakenArrivesInOrder) {
  int taken = 0;
  while (request(client, std::to_string(taken)) == 0) ASSERT_LT(++taken, 1000000);
  EXPECT_EQ(msgq_errno_get(client.get()), EAGAIN);
  EXPECT_GE(taken, 50);
  for (int i = 0; i < taken; ++i) ASSERT_EQ(payload_of(receive(server)), std::to_string(i));
  EXPECT_EQ(receive_error(server, 0), 0);
  EXPECT_EQ(request(client, "again"), 0);
  EXPECT_EQ(payload_of(receive(server)), "again");
}

TEST_F(MessageTransport, QueueHoldsALongestMessageAtLeastTwice) {
  EXPECT_EQ(request(client, std::string(65536, 'x')), 0);
  EXPECT_EQ(request(client, std::string(65536, 'y')), 0);
}

// ---- Replies

TEST_F(MessageTransport, ReplyBringsTheSendArgBack) {
  const uintptr_t arguments[] = {0, 1, UINTPTR_MAX, reinterpret_cast<uintptr_t>(this)};
  for (const uintptr_t argument : arguments) {
    const message received = sent_and_received("ask", 5, argument);
    ASSERT_EQ(reply(server, received, "answer"), 0);
    const message answer = receive(client);
    ASSERT_TRUE(answer);
    EXPECT_EQ(msgq_send_arg_get(answer.get()), argument);
    EXPECT_EQ(msgq_is_reply(answer.get()), 1);
    EXPECT_EQ(msgq_opcode_get(answer.get()), 0u);
    EXPECT_EQ(msgq_peer_get(answer.get()), 0u);
    EXPECT_EQ(payload_of(answer), "answer");
  }
}

TEST_F(MessageTransport, ReplyFindsItsWayByTheRequestAndNotByTheAddress) {
  const msgq_addr nonsense{123, 456};
  message received = sent_and_received("ask");
  EXPECT_EQ(msgq_send(server.get(), &nonsense, 9, "1", 1, 0, received.get(), 0), 0);
  const message answer = receive(client);
  EXPECT_EQ(payload_of(answer), "1");
  EXPECT_EQ(msgq_opcode_get(answer.get()), 9u);
  received = sent_and_received("ask");
  EXPECT_EQ(msgq_send(server.get(), nullptr, 0, "2", 1, 0, received.get(), 0), 0);
  EXPECT_EQ(payload_of(receive(client)), "2");
}

TEST_F(MessageTransport, RequestsAreAnsweredInAnyOrder) {
  const message first = sent_and_received("1", 1, 11);
  const message second = sent_and_received("2", 1, 22);
  ASSERT_EQ(reply(server, second, ""), 0);
  ASSERT_EQ(reply(server, first, ""), 0);
  EXPECT_EQ(msgq_send_arg_get(receive(client).get()), 22u);
  EXPECT_EQ(msgq_send_arg_get(receive(client).get()), 11u);
}

TEST_F(MessageTransport, ReplyReachesWhoAskedAndNobodyElse) {
  const end other = open_end();
  const message received = sent_and_received("ask");
  ASSERT_EQ(request(other, "ask too"), 0);
  const message too = receive(server);
  EXPECT_EQ(reply(server, too, "to the other"), 0);
  EXPECT_EQ(receive_error(client, 0), 0);
  EXPECT_EQ(payload_of(receive(other)), "to the other");
  EXPECT_EQ(reply(server, received, "to the first"), 0);
  EXPECT_EQ(payload_of(receive(client)), "to the first");
}

TEST_F(MessageTransport, RequestIsAnsweredOnce) {
  const message received = sent_and_received("ask");
  EXPECT_EQ(reply(server, received, "1"), 0);
  EXPECT_EQ(reply(server, received, "2"), EINVAL);
  EXPECT_EQ(payload_of(receive(client)), "1");
  EXPECT_EQ(receive_error(client, 0), 0);
}

TEST_F(MessageTransport, ReplyThatWasRefusedMayBeTriedAgain) {
  const message received = sent_and_received("ask");
  EXPECT_EQ(reply(server, received, std::string(65537, 'x')), EMSGSIZE);
  EXPECT_EQ(reply(server, received, "short"), 0);
  EXPECT_EQ(payload_of(receive(client)), "short");
}

TEST_F(MessageTransport, ReplyToAFullQueueIsToldAtOnce) {
  const message received = sent_and_received("ask");
  while (send_to_peer(server, msgq_peer_get(received.get()), "fill") == 0) {
  }
  EXPECT_EQ(reply(server, received, "answer"), EAGAIN);
  while (payload_of(receive(client, 0)) == "fill") {
  }
  EXPECT_EQ(reply(server, received, "answer"), 0);
  EXPECT_EQ(payload_of(receive(client)), "answer");
}

TEST_F(MessageTransport, ReplyIsNotAnswered) {
  const message received = sent_and_received("ask");
  ASSERT_EQ(reply(server, received, "answer"), 0);
  EXPECT_EQ(reply(client, receive(client), "answer to the answer"), EINVAL);
}

TEST_F(MessageTransport, ReplyGoesThroughTheEndThatReceivedTheRequest) {
  const end other = open_end(102);
  const message received = sent_and_received("ask");
  EXPECT_EQ(reply(other, received, "answer"), EINVAL);
  EXPECT_EQ(reply(server, received, "answer"), 0);
}

TEST_F(MessageTransport, RequesterThatIsGoneCannotBeAnswered) {
  const message received = sent_and_received("ask");
  client.reset();
  EXPECT_EQ(reply(server, received, "answer"), ECONNREFUSED);
  EXPECT_EQ(receive_error(server, 0), 0);
  EXPECT_EQ(reply(server, received, "answer"), ECONNREFUSED) << "also when the server has noticed";
}

// The next client's connection has the number of the descriptor of the one before.
TEST_F(MessageTransport, ReplyNeverReachesWhoCameLater) {
  const message received = sent_and_received("ask");
  client.reset();
  EXPECT_EQ(receive_error(server, 0), 0);
  client = open_end();
  const message later = sent_and_received("ask later");
  EXPECT_EQ(reply(server, received, "answer"), ECONNREFUSED);
  EXPECT_EQ(receive_error(client, 0), 0);
  EXPECT_EQ(reply(server, later, "answer later"), 0);
  EXPECT_EQ(payload_of(receive(client)), "answer later");
}

TEST_F(MessageTransport, MessageOutlivesItsEndButIsNotAnswered) {
  const message received = sent_and_received("ask");
  server.reset();
  server = open_end(kPoint);
  ASSERT_EQ(connect(client), 0);
  EXPECT_EQ(payload_of(received), "ask");
  EXPECT_EQ(reply(server, received, "answer"), EINVAL);
}

// ---- Peers

TEST_F(MessageTransport, PeersAreToldApart) {
  const end other = open_end();
  const uint64_t first = msgq_peer_get(sent_and_received("1").get());
  EXPECT_EQ(msgq_peer_get(sent_and_received("2").get()), first);
  ASSERT_EQ(request(other, "3"), 0);
  const uint64_t second = msgq_peer_get(receive(server).get());
  EXPECT_NE(first, 0u);
  EXPECT_NE(second, 0u);
  EXPECT_NE(first, second);
}

TEST_F(MessageTransport, PeerThatComesAgainIsAnotherOne) {
  std::vector<uint64_t> seen;
  for (int i = 0; i < 20; ++i) {
    client = open_end();
    seen.push_back(msgq_peer_get(sent_and_received("x").get()));
  }
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(std::unique(seen.begin(), seen.end()), seen.end());
}

TEST_F(MessageTransport, ServerSpeaksUnaskedAndIsAnswered) {
  const uint64_t peer = msgq_peer_get(sent_and_received("x", 1, 5).get());
  ASSERT_EQ(send_to_peer(server, peer, "order", 0x56530011), 0);
  const message order = receive(client);
  ASSERT_TRUE(order);
  EXPECT_EQ(payload_of(order), "order");
  EXPECT_EQ(msgq_opcode_get(order.get()), 0x56530011u);
  EXPECT_EQ(msgq_is_reply(order.get()), 0);
  EXPECT_EQ(msgq_peer_get(order.get()), 0u);
  EXPECT_EQ(msgq_send_arg_get(order.get()), 0u);

  ASSERT_EQ(reply(client, order, "done"), 0);
  const message done = receive(server);
  ASSERT_TRUE(done);
  EXPECT_EQ(payload_of(done), "done");
  EXPECT_EQ(msgq_is_reply(done.get()), 1);
  EXPECT_EQ(msgq_peer_get(done.get()), peer);
}

// A client answers whom it was asked by, and not who serves the point by now.
TEST_F(MessageTransport, OrderOfAServerThatIsGoneIsNotAnswered) {
  ASSERT_EQ(send_to_peer(server, msgq_peer_get(sent_and_received("x").get()), "order"), 0);
  const message order = receive(client);
  server.reset();
  server = open_end(kPoint);
  EXPECT_EQ(reply(client, order, "done"), ECONNREFUSED);
  EXPECT_EQ(request(client, "hello"), 0);
  EXPECT_EQ(reply(client, order, "done"), ECONNREFUSED);
  EXPECT_EQ(payload_of(receive(server)), "hello");
  EXPECT_EQ(receive_error(server, 0), 0);
}

TEST_F(MessageTransport, PeerThatIsNotThereRefuses) {
  const uint64_t peer = msgq_peer_get(sent_and_received("x").get());
  EXPECT_EQ(send_to_peer(server, peer + 1, "x"), ECONNREFUSED);
  EXPECT_EQ(send_to_peer(server, 0, "x"), ECONNREFUSED);
  EXPECT_EQ(send_to_peer(client, 1, "x"), ECONNREFUSED) << "its connection to the server";
  client.reset();
  EXPECT_EQ(send_to_peer(server, peer, "x"), ECONNREFUSED);
}

TEST_F(MessageTransport, WhoHasReachedAServerIsAPeerBeforeItSendsAnything) {
  EXPECT_THAT(peers_of(server), IsEmpty());
  ASSERT_EQ(connect(client), 0);
  EXPECT_THAT(peers_of(server), SizeIs(1));
  ASSERT_EQ(send_to_peer(server, peers_of(server)[0], "notice"), 0);
  EXPECT_EQ(payload_of(receive(client)), "notice");
  EXPECT_EQ(msgq_peer_get(sent_and_received("x").get()), peers_of(server)[0]);
}

TEST_F(MessageTransport, PeersAreListedAsTheyCameAndNoLongerThanTheyAreThere) {
  std::vector<end> many;
  for (int i = 0; i < 40; ++i) {
    many.push_back(open_end());
    ASSERT_EQ(connect(many.back()), 0);
  }
  const auto all = peers_of(server);
  ASSERT_THAT(all, SizeIs(40));
  EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
  many.erase(many.begin(), many.end() - 2);
  EXPECT_THAT(peers_of(server), ElementsAre(all[38], all[39]));

  uint64_t room[2] = {1, 1};
  EXPECT_EQ(msgq_peers_get(server.get(), room, 1), 2u);
  EXPECT_EQ(room[0], all[38]);
  EXPECT_EQ(room[1], 1u) << "beyond the capacity";
  EXPECT_EQ(msgq_peers_get(server.get(), nullptr, 2), 0u);
}

TEST_F(MessageTransport, EndsThatOnlyAskHaveNoPeers) {
  ASSERT_EQ(connect(client), 0);
  EXPECT_THAT(peers_of(client), IsEmpty());
}

TEST_F(MessageTransport, ServerMayAskAnotherServerAndItself) {
  const end other = open_end(102);
  ASSERT_EQ(request(server, "from 101", 1, 7, {0xFE000001, 102}), 0);
  const message asked = receive(other);
  ASSERT_EQ(payload_of(asked), "from 101");
  ASSERT_EQ(request(server, "to myself"), 0);
  const message own = receive(server);
  EXPECT_EQ(payload_of(own), "to myself");
  ASSERT_EQ(reply(server, own, "from myself"), 0);
  ASSERT_EQ(reply(other, asked, "from 102"), 0);
  std::vector<std::string> answers{payload_of(receive(server)), payload_of(receive(server))};
  EXPECT_THAT(answers, ::testing::UnorderedElementsAre("from myself", "from 102"));
}

// ---- Receiving

TEST_F(MessageTransport, ReceivingWaitsNoLongerThanItWasTold) {
  using clock = std::chrono::steady_clock;
  ASSERT_EQ(connect(client), 0);
  for (const end* waiting : {&server, &client}) {
    const auto start = clock::now();
    EXPECT_EQ(receive_error(*waiting, 0), 0);
    EXPECT_EQ(receive_error(*waiting, 30), 0);
    EXPECT_GE(clock::now() - start, std::chrono::milliseconds(30));
  }
  EXPECT_EQ(msgq_errno_get(server.get()), 0) << "it is no failure";
}

TEST_F(MessageTransport, NothingIsStoredWhenNothingCame) {
  auto* const before = reinterpret_cast<msgq_message*>(8);
  msgq_message* received = before;
  EXPECT_EQ(msgq_receive(server.get(), &received, 0), 0);
  EXPECT_EQ(received, before);
}

TEST_F(MessageTransport, ServerThatIsGoneIsToldOnceAfterWhatItHadSent) {
  ASSERT_EQ(request(client, "ask"), 0);
  ASSERT_EQ(reply(server, receive(server), "answer"), 0);
  ASSERT_EQ(send_to_peer(server, peers_of(server)[0], "notice"), 0);
  server.reset();
  EXPECT_EQ(payload_of(receive(client)), "answer");
  EXPECT_EQ(payload_of(receive(client)), "notice");
  EXPECT_EQ(receive_error(client, 0), ECONNRESET);
  EXPECT_EQ(receive_error(client, 0), 0);
}

// The server leaves a request unread, which the system tells the client before what is still to be read.
TEST_F(MessageTransport, ServerThatWentWithoutReadingIsToldAfterWhatItHadSent) {
  ASSERT_EQ(request(client, "ask"), 0);
  ASSERT_EQ(reply(server, receive(server), "answer"), 0);
  ASSERT_EQ(request(client, "never read"), 0);
  server.reset();
  EXPECT_EQ(payload_of(receive(client)), "answer");
  EXPECT_EQ(receive_error(client, 0), ECONNRESET);
  EXPECT_EQ(receive_error(client, 0), 0);
}

TEST_F(MessageTransport, ServerThatCameAgainIsReachedAnewAndItsLossIsStillTold) {
  ASSERT_EQ(request(client, "ask"), 0);
  ASSERT_EQ(reply(server, receive(server), "old"), 0);
  server.reset();
  server = open_end(kPoint);
  ASSERT_EQ(request(client, "ask again"), 0);
  const message again = receive(server);
  EXPECT_EQ(payload_of(again), "ask again");
  ASSERT_EQ(reply(server, again, "new"), 0);
  EXPECT_EQ(payload_of(receive(client)), "old");
  EXPECT_EQ(receive_error(client, 0), ECONNRESET);
  EXPECT_EQ(payload_of(receive(client)), "new");
}

TEST_F(MessageTransport, NothingIsSentTwice) {
  ASSERT_EQ(request(client, "lost"), 0);
  server.reset();
  server = open_end(kPoint);
  ASSERT_EQ(request(client, "next"), 0);
  EXPECT_EQ(payload_of(receive(server)), "next");
  EXPECT_EQ(receive_error(server, 0), 0);
}

TEST_F(MessageTransport, ConnectReachesAServerThatCameAgain) {
  ASSERT_EQ(connect(client), 0);
  ASSERT_EQ(connect(client), 0);
  EXPECT_THAT(peers_of(server), SizeIs(1));
  server.reset();
  EXPECT_EQ(connect(client), ECONNREFUSED);
  server = open_end(kPoint);
  EXPECT_EQ(connect(client), 0);
  EXPECT_THAT(peers_of(server), SizeIs(1));
  EXPECT_EQ(receive_error(client, 0), ECONNRESET);
  EXPECT_EQ(receive_error(client, 0), 0);
}

// Whoever sends again and again and never receives does not gather what servers left behind.
TEST_F(MessageTransport, LostConnectionsDoNotPileUp) {
  const size_t before = open_descriptors();
  for (int i = 0; i < 50; ++i) {
    ASSERT_EQ(request(client, "x"), 0);
    server.reset();
    server = open_end(kPoint);
  }
  EXPECT_LE(open_descriptors(), before + 8);
  ASSERT_EQ(request(client, "still works"), 0);
  EXPECT_EQ(payload_of(receive(server)), "still works");
}

TEST_F(MessageTransport, SignalEndsTheWait) {
  ASSERT_EQ(connect(client), 0);
  struct sigaction handled {};
  handled.sa_handler = [](int) {};
  struct sigaction before {};
  sigaction(SIGALRM, nullptr, &before);
  for (const end* waiting : {&server, &client})
    for (const auto& [timeout_ms, flags] : {std::pair(-1, 0), {kLongEnoughMs, 0}, {kLongEnoughMs, SA_RESTART}}) {
      handled.sa_flags = flags;
      sigaction(SIGALRM, &handled, nullptr);
      const itimerval soon{{0, 20000}, {0, 20000}};
      setitimer(ITIMER_REAL, &soon, nullptr);
      EXPECT_EQ(receive_error(*waiting, timeout_ms), EINTR);
      const itimerval never{};
      setitimer(ITIMER_REAL, &never, nullptr);
    }
  sigaction(SIGALRM, &before, nullptr);
}

TEST_F(MessageTransport, DescriptorIsReadableWhenThereIsSomethingToReceive) {
  EXPECT_FALSE(readable(server));
  EXPECT_FALSE(readable(client));
  const int of_server = msgq_descriptor(server.get());
  ASSERT_EQ(request(client, "1"), 0);
  ASSERT_EQ(request(client, "2"), 0);
  EXPECT_TRUE(readable(server));
  const message first = receive(server, 0);
  EXPECT_TRUE(readable(server));
  const message second = receive(server, 0);
  ASSERT_TRUE(second);
  EXPECT_FALSE(readable(server));
  EXPECT_EQ(reply(server, first, ""), 0);
  EXPECT_TRUE(readable(client));
  EXPECT_TRUE(receive(client, 0));
  EXPECT_FALSE(readable(client));
  EXPECT_EQ(msgq_descriptor(server.get()), of_server);
}

TEST_F(MessageTransport, DescriptorTellsOfALostServerHoweverItWasNoticed) {
  ASSERT_EQ(connect(client), 0);
  EXPECT_FALSE(readable(client));
  server.reset();
  EXPECT_TRUE(readable(client));
  EXPECT_EQ(request(client, "x"), ECONNREFUSED);
  EXPECT_TRUE(readable(client));
  EXPECT_EQ(receive_error(client, 0), ECONNRESET);
  EXPECT_FALSE(readable(client));
}

// A connection that was lost before somebody asked for the descriptor.
TEST_F(MessageTransport, DescriptorThatIsAskedForLateTellsAllTheSame) {
  ASSERT_EQ(connect(client), 0);
  server.reset();
  EXPECT_EQ(request(client, "x"), ECONNREFUSED);
  EXPECT_TRUE(readable(client));
}

TEST_F(MessageTransport, SeveralServersAreHeardThroughOneEnd) {
  const end other = open_end(102);
  ASSERT_EQ(connect(client), 0);
  ASSERT_EQ(connect(client, {0xFE000001, 102}), 0);
  EXPECT_EQ(receive_error(client, 10), 0);
  ASSERT_EQ(send_to_peer(server, peers_of(server)[0], "from 101"), 0);
  ASSERT_EQ(send_to_peer(other, peers_of(other)[0], "from 102"), 0);
  std::vector<std::string> heard{payload_of(receive(client)), payload_of(receive(client))};
  EXPECT_THAT(heard, ::testing::UnorderedElementsAre("from 101", "from 102"));
  server.reset();
  EXPECT_EQ(receive_error(client, kLongEnoughMs), ECONNRESET);
  ASSERT_EQ(send_to_peer(other, peers_of(other)[0], "still there"), 0);
  EXPECT_EQ(payload_of(receive(client)), "still there");
}

// ---- Opening and closing

TEST(MessageTransportWithoutASwitch, HasNoEnds) {
  vswitch::use_switch(nullptr);
  setenv("CHNSW_SWITCH", "", 1);
  EXPECT_EQ(msgq_open(0), nullptr);
  EXPECT_EQ(errno, ENODEV);
  unsetenv("CHNSW_SWITCH");
  vswitch::use_switch(vswitch::switch_store::in_memory(small_switch()));
  EXPECT_EQ(msgq_open(kPoint), nullptr);
  EXPECT_EQ(errno, ENODEV);
  vswitch::use_switch(nullptr);
}

TEST_F(MessageTransport, PointIsServedByOneEndAtATime) {
  EXPECT_EQ(msgq_open(kPoint), nullptr);
  EXPECT_EQ(errno, EADDRINUSE);
  EXPECT_EQ(payload_of(sent_and_received("still served")), "still served");
  server.reset();
  EXPECT_EQ(request(client, "x"), ECONNREFUSED);
  server = open_end(kPoint);
  EXPECT_EQ(payload_of(sent_and_received("served again")), "served again");
}

TEST_F(MessageTransport, ClosingReturnsEveryDescriptor) {
  const size_t before = open_descriptors();
  for (int i = 0; i < 10; ++i) {
    const end serving = open_end(102);
    const end asking = open_end();
    ASSERT_EQ(request(asking, "x", 1, 0, {0xFE000001, 102}), 0);
    ASSERT_TRUE(receive(serving));
    ASSERT_GE(msgq_descriptor(serving.get()), 0);
    EXPECT_EQ(msgq_open(kPoint), nullptr);
  }
  EXPECT_EQ(open_descriptors(), before);
}

TEST_F(MessageTransport, EndsStayWithTheirSwitch) {
  const switch_with_messages other("other"); // in use from now on
  const end of_other = open_end(kPoint);
  const end to_other = open_end();
  ASSERT_EQ(request(client, "to the first"), 0);
  ASSERT_EQ(request(to_other, "to the other"), 0);
  EXPECT_EQ(payload_of(receive(server)), "to the first");
  EXPECT_EQ(payload_of(receive(of_other)), "to the other");
  EXPECT_EQ(receive_error(server, 0), 0);
  EXPECT_EQ(receive_error(of_other, 0), 0);
}

TEST(MessageTransportPath, MayBeLongerThanASocketsAddress) {
  std::string name = "a";
  for (int i = 0; i < 10; ++i) name += "/" + std::string(40, 'b');
  const switch_with_messages place(name);
  ASSERT_GT(place.socket_path().size(), 400u);
  const end server = open_end(kPoint);
  const end client = open_end();
  ASSERT_EQ(request(client, "far down"), 0);
  EXPECT_EQ(payload_of(receive(server)), "far down");
}

TEST_F(MessageTransport, FolderOfTheSocketsIsTheUsersAlone) {
  namespace fs = std::filesystem;
  EXPECT_EQ(fs::status(place.path("msgq")).permissions(), fs::perms::owner_all);
  server.reset();
  fs::permissions(place.path("msgq"), fs::perms::all);
  server = open_end(kPoint);
  EXPECT_EQ(fs::status(place.path("msgq")).permissions(), fs::perms::owner_all);
}

} // namespace
