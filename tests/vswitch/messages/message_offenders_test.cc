// Peers that send no valid message, or too many, or do not read: no other peer is affected.
#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <map>
#include <random>

#include "message_parties.h"

namespace {

using namespace vswitch_test;
using ::testing::SizeIs;

class MessageOffenders : public ::testing::Test {
 protected:
  MessageOffenders() { EXPECT_EQ(connect(honest), 0); }

  // The server hears the honest client, and what others did before does not come in between.
  void expect_service(const char* after) {
    ASSERT_EQ(request(honest, "hello", 1, 5), 0) << after;
    const message received = receive(server);
    ASSERT_EQ(payload_of(received), "hello") << after;
    ASSERT_EQ(reply(server, received, "yes"), 0) << after;
    const message answer = receive(honest);
    ASSERT_EQ(payload_of(answer), "yes") << after;
    ASSERT_EQ(msgq_send_arg_get(answer.get()), 5u) << after;
  }

  switch_with_messages place;
  end server = open_end(kPoint);
  end honest = open_end();
};

constexpr const char* kArrayMagic = std::endian::native == std::endian::little ? "AVLT" : "TLVA";

std::string tlv_array(uint32_t said_size, size_t size) {
  std::string bytes = kArrayMagic;
  bytes.append(reinterpret_cast<const char*>(&said_size), sizeof said_size);
  bytes.resize(size);
  return bytes;
}

struct no_frame {
  const char* name;
  std::string packet;
};

std::vector<no_frame> what_is_no_frame() {
  const std::string whole = frame{.payload = "12345678"}.bytes();
  std::vector<no_frame> all = {
      {"nothing", ""},
      {"one byte", "x"},
      {"a header that is cut off", whole.substr(0, 23)},
      {"another magic", frame{.magic = 0x46514D32, .payload = ""}.bytes()},
      {"the magic in the other byte order", frame{.magic = 0x314D5146, .payload = ""}.bytes()},
      {"kind 0", frame{.kind = 0, .payload = ""}.bytes()},
      {"kind 3", frame{.kind = 3, .payload = ""}.bytes()},
      {"a payload that is cut off", whole.substr(0, whole.size() - 1)},
      {"a payload that is too long", whole + "9"},
      {"a length of none with a payload", frame{.length = 0, .payload = "x"}.bytes()},
      {"the greatest length", frame{.length = 0xFFFFFFFF, .payload = ""}.bytes()},
      {"one byte more than a message may have", frame{.payload = std::string(65537, 'x')}.bytes()},
      {"twice as much as a message may have", frame{.payload = std::string(131072, 'x')}.bytes()},
      {"an array that says to be longer than it is", frame{.payload = tlv_array(13, 12)}.bytes()},
      {"the greatest array", frame{.payload = tlv_array(0xFFFFFFFF, 100)}.bytes()},
      {"an array without its size", frame{.payload = kArrayMagic}.bytes()},
      {"an array that is cut off in its header", frame{.payload = tlv_array(4, 11)}.bytes()},
      {"a reply that is no array", frame{.kind = 2, .payload = tlv_array(13, 12)}.bytes()},
  };
  return all;
}

TEST_F(MessageOffenders, PeerThatSendsNoFramesIsDropped) {
  for (const no_frame& each : what_is_no_frame()) {
    const bare_socket offender(place.socket_path());
    ASSERT_TRUE(offender.send(frame{.payload = "a good one"}.bytes()));
    ASSERT_TRUE(offender.send(each.packet)) << each.name;
    ASSERT_TRUE(offender.send(frame{.payload = "too late"}.bytes()));
    EXPECT_EQ(payload_of(receive(server)), "a good one") << each.name;
    EXPECT_EQ(receive_error(server, 0), 0) << each.name;
    offender.wait_until_dropped();
    EXPECT_THAT(peers_of(server), SizeIs(1)) << each.name;
    expect_service(each.name);
  }
}

TEST_F(MessageOffenders, ArraysThatStayWithinThePayloadArrive) {
  const bare_socket peer(place.socket_path());
  for (const std::string& payload : {tlv_array(12, 12), tlv_array(12, 13), std::string("AVL"), std::string(40, '\0')}) {
    ASSERT_TRUE(peer.send(frame{.payload = payload}.bytes()));
    EXPECT_EQ(payload_of(receive(server)), payload);
  }
}

TEST_F(MessageOffenders, ServerThatSendsNoFramesIsLostToItsClient) {
  server.reset();
  EXPECT_EQ(receive_error(honest, kLongEnoughMs), ECONNRESET);
  const bare_server other(place.socket_path());
  for (const no_frame& each : what_is_no_frame()) {
    ASSERT_EQ(request(honest, "ask"), 0) << each.name;
    const bare_socket offender = other.accept();
    ASSERT_FALSE(offender.receive().empty());
    ASSERT_TRUE(offender.send(frame{.kind = 2, .payload = "good"}.bytes()));
    ASSERT_TRUE(offender.send(each.packet)) << each.name;
    EXPECT_EQ(payload_of(receive(honest)), "good") << each.name;
    EXPECT_EQ(receive_error(honest, kLongEnoughMs), ECONNRESET) << each.name;
    EXPECT_EQ(receive_error(honest, 0), 0) << each.name;
    offender.wait_until_dropped();
  }
}

TEST_F(MessageOffenders, FramesAreAsTheyAreWritten) {
  const bare_socket peer(place.socket_path());
  ASSERT_TRUE(peer.send(frame{.opcode = 7858, .send_arg = 0x1122334455667788, .payload = "ask"}.bytes()));
  const message received = receive(server);
  EXPECT_EQ(msgq_opcode_get(received.get()), 7858u);
  ASSERT_EQ(reply(server, received, "answer"), 0);
  EXPECT_EQ(peer.receive(), (frame{.opcode = 0, .kind = 2, .send_arg = 0x1122334455667788, .payload = "answer"}.bytes()));
  ASSERT_EQ(send_to_peer(server, msgq_peer_get(received.get()), "notice", 9), 0);
  EXPECT_EQ(peer.receive(), (frame{.opcode = 9, .kind = 1, .payload = "notice"}.bytes()));
}

// Good frames with some bytes changed, cut off, or drawn out. The honest client sees nothing of it.
std::string random_packet(std::mt19937& random) {
  frame good;
  good.opcode = static_cast<uint32_t>(random());
  good.kind = static_cast<uint32_t>(1 + random() % 2);
  good.payload = random() % 2 == 0 ? tlv_array(static_cast<uint32_t>(random() % 64), 12 + random() % 64)
                                   : std::string(random() % 3000u, 'x');
  std::string packet = good.bytes();
  for (unsigned changes = random() % 4u; changes != 0; --changes)
    packet[random() % (random() % 2 == 0 ? 24 : packet.size())] = static_cast<char>(random());
  if (random() % 4 == 0) packet.resize(random() % (packet.size() + 1));
  if (random() % 8 == 0) packet.append(random() % 100u, static_cast<char>(random()));
  return packet;
}

TEST_F(MessageOffenders, ThousandsOfRandomFramesLeaveTheServerServing) {
  std::mt19937 random(7);
  unsigned arrived = 0;
  for (int i = 0; i < 1000; ++i) {
    const bare_socket offender(place.socket_path());
    for (int n = 0; n < 6; ++n) offender.send(random_packet(random));
    for (message each; (each = receive(server, 0));) {
      ++arrived;
      EXPECT_LE(msgq_payload_size(each.get()), 65536u);
      const auto* bytes = static_cast<const char*>(msgq_payload_get(each.get()));
      ASSERT_TRUE(bytes == nullptr || bytes[msgq_payload_size(each.get()) + 1023] == 0);
      reply(server, each, payload_of(each));
    }
    if (i % 50 == 0) expect_service("random frames");
  }
  EXPECT_GT(arrived, 500u) << "some of them are frames";
}

TEST_F(MessageOffenders, ThousandsOfRandomFramesLeaveAClientAsking) {
  server.reset();
  std::mt19937 random(8);
  const bare_server other(place.socket_path());
  for (int i = 0; i < 500; ++i) {
    ASSERT_EQ(request(honest, "ask"), 0);
    {
      const bare_socket offender = other.accept();
      for (int n = 0; n < 6; ++n) offender.send(random_packet(random));
    }
    for (message each; (each = receive(honest, 0));) EXPECT_LE(msgq_payload_size(each.get()), 65536u);
    EXPECT_EQ(msgq_errno_get(honest.get()), ECONNRESET);
  }
}

// ---- Descriptors that come along

TEST_F(MessageOffenders, DescriptorsThatAreSentAlongDoNotGetIn) {
  const bare_socket offender(place.socket_path());
  const std::string packet = frame{.payload = "with a gift"}.bytes();
  ASSERT_TRUE(offender.send(frame{.payload = "first"}.bytes()));
  ASSERT_TRUE(receive(server));
  const int gift = open("/dev/zero", O_RDONLY | O_CLOEXEC);
  const size_t before = open_descriptors();
  for (int i = 0; i < 50; ++i) {
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof gift)]{};
    iovec bytes{const_cast<char*>(packet.data()), packet.size()};
    msghdr sent{};
    sent.msg_iov = &bytes;
    sent.msg_iovlen = 1;
    sent.msg_control = control;
    sent.msg_controllen = sizeof control;
    cmsghdr* rights = CMSG_FIRSTHDR(&sent);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof gift);
    std::memcpy(CMSG_DATA(rights), &gift, sizeof gift);
    ASSERT_EQ(sendmsg(offender.descriptor(), &sent, MSG_NOSIGNAL), static_cast<ssize_t>(packet.size()));
    EXPECT_EQ(payload_of(receive(server)), "with a gift");
  }
  EXPECT_EQ(open_descriptors(), before);
  close(gift);
}

// ---- Too many connections

size_t still_there(const std::vector<bare_socket>& sockets) {
  size_t count = 0;
  for (const bare_socket& each : sockets) {
    pollfd state{each.descriptor(), 0, 0};
    count += poll(&state, 1, 0) == 0;
  }
  return count;
}

void allow_descriptors(rlim_t count) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = count;
  setrlimit(RLIMIT_NOFILE, &limit);
}

// A process that opens this many connections, signals its parent, and keeps them open.
std::unique_ptr<other_process> crowd(const std::string& path, int connections) {
  return std::make_unique<other_process>([=](const other_process::line& parent) {
    allow_descriptors(static_cast<rlim_t>(connections) + 100);
    std::vector<bare_socket> sockets;
    while (sockets.size() < static_cast<size_t>(connections)) sockets.emplace_back(path);
    parent.say();
    parent.wait();
    return static_cast<int>(std::min<size_t>(still_there(sockets), 250));
  });
}

TEST_F(MessageOffenders, ThousandsOfConnectionsOfOneProcessKeepNobodyOut) {
  const size_t before = open_descriptors();
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  const int connections = limit.rlim_max >= 3100 ? 3000 : 900;
  const auto offender = crowd(place.socket_path(), connections);
  other_process newcomer([&](const other_process::line& parent) {
    offender->wait();
    parent.say();
    const end client = open_end();
    int error = EAGAIN;
    while (error == EAGAIN) error = request(client, "let me in", 1, 9);
    return error == 0 && msgq_send_arg_get(receive(client).get()) == 9 ? 0 : 1;
  });
  message received;
  while (!received) received = receive(server, 10);
  EXPECT_EQ(payload_of(received), "let me in");
  EXPECT_EQ(reply(server, received, "welcome"), 0);
  EXPECT_EQ(newcomer.exit_status(), 0);
  expect_service("thousands of connections");
  EXPECT_LE(open_descriptors(), before + 256 + 3); // the lines to two processes, and what many are waited for with
  while (receive(server, 0)) {
  }
  offender->say();
  EXPECT_GE(offender->exit_status(), 200) << "it keeps what nobody else wanted";
}

// Its own share goes down as others come.
TEST_F(MessageOffenders, ProcessWithMostConnectionsMakesRoom) {
  std::vector<bare_socket> many;
  for (int i = 0; i < 255; ++i) {
    many.emplace_back(place.socket_path());
    if (i % 50 == 0) peers_of(server);
  }
  EXPECT_THAT(peers_of(server), SizeIs(256)); // with the honest one
  EXPECT_EQ(still_there(many), 255u);
  other_process other([&](const other_process::line& parent) {
    std::vector<bare_socket> few;
    for (int i = 0; i < 3; ++i) few.emplace_back(place.socket_path());
    parent.say();
    parent.wait();
    return static_cast<int>(still_there(few));
  });
  other.wait();
  EXPECT_THAT(peers_of(server), SizeIs(256));
  EXPECT_EQ(still_there(many), 252u);
  many[254].wait_until_dropped();
  many[253].wait_until_dropped();
  many[252].wait_until_dropped();
  other.say();
  EXPECT_EQ(other.exit_status(), 3);
}

TEST_F(MessageOffenders, NewcomerOfTheProcessWithMostConnectionsIsTurnedAwayItself) {
  std::vector<bare_socket> many;
  for (int i = 0; i < 256; ++i) {
    many.emplace_back(place.socket_path());
    if (i % 50 == 0) peers_of(server);
  }
  EXPECT_THAT(peers_of(server), SizeIs(256));
  many[255].wait_until_dropped();
  EXPECT_EQ(still_there(many), 255u);
  expect_service("the limit");
}

// A process whose limit lies below what a server lets in.
TEST_F(MessageOffenders, ServerWithoutDescriptorsTurnsNewcomersAwayAndGoesOn) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const auto crowding = crowd(place.socket_path(), 100);
  crowding->wait();
  expect_service("a crowd");
  allow_descriptors(open_descriptors() + 20);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(receive_error(server, 1), 0);
  expect_service("no descriptors left");
  setrlimit(RLIMIT_NOFILE, &before);
  crowding->say();
  EXPECT_LE(crowding->exit_status(), 40) << "of a hundred";
}

// ---- Too much

// Its queue is full before the honest client says anything, and it fills it again all the time.
TEST_F(MessageOffenders, PeerThatFloodsDoesNotKeepOthersWaiting) {
  const bare_socket offender(place.socket_path());
  fcntl(offender.descriptor(), F_SETFL, O_NONBLOCK);
  const std::string packet = frame{.payload = "flood"}.bytes();
  const auto flood = [&] {
    while (offender.send(packet)) {
    }
  };
  for (int i = 0; i < 500; ++i) { // so that it is known to have much to say
    flood();
    ASSERT_EQ(payload_of(receive(server)), "flood");
  }
  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(request(honest, "hello"), 0);
    int before = 0;
    for (;; ++before) {
      flood();
      const message received = receive(server);
      if (payload_of(received) == "hello") break;
    }
    EXPECT_LE(before, 32);
  }
}

TEST_F(MessageOffenders, EveryOneOfManyFloodersIsHeard) {
  std::vector<bare_socket> flooders;
  for (int i = 0; i < 150; ++i) {
    flooders.emplace_back(place.socket_path());
    if (i % 50 == 0) peers_of(server);
    for (int n = 0; n < 20; ++n)
      ASSERT_TRUE(flooders.back().send(frame{.opcode = static_cast<uint32_t>(i), .payload = "flood"}.bytes()));
  }
  ASSERT_EQ(request(honest, "hello", 1000), 0);
  std::map<uint32_t, int> heard;
  int received = 0;
  while (heard[1000] == 0) {
    ASSERT_LT(++received, 151 * 4) << "nobody is heard often before everybody was heard";
    ++heard[msgq_opcode_get(receive(server).get())];
  }
}

TEST_F(MessageOffenders, PeerThatDoesNotReadDelaysNobody) {
  const bare_socket offender(place.socket_path());
  ASSERT_TRUE(offender.send(frame{.payload = "ask"}.bytes()));
  const message asked = receive(server);
  const uint64_t peer = msgq_peer_get(asked.get());
  int taken = 0;
  while (send_to_peer(server, peer, std::string(1000, 'x')) == 0) ASSERT_LT(++taken, 10000);
  EXPECT_EQ(msgq_errno_get(server.get()), EAGAIN);
  EXPECT_EQ(reply(server, asked, "answer"), EAGAIN);
  for (int i = 0; i < 100; ++i) expect_service("a full queue");
  EXPECT_THAT(peers_of(server), SizeIs(2)) << "it is still connected";
  for (int i = 0; i < taken; ++i) ASSERT_EQ(offender.receive().size(), 1024u);
  EXPECT_EQ(reply(server, asked, "answer"), 0);
}

// Garbage does not prolong a wait that should end.
TEST_F(MessageOffenders, WaitEndsAlsoUnderGarbage) {
  other_process offender([&](const other_process::line& parent) {
    parent.say();
    for (;;) bare_socket(place.socket_path()).send("garbage");
    return 0;
  });
  offender.wait();
  for (int i = 0; i < 20; ++i) EXPECT_EQ(receive_error(server, 10), 0);
  expect_service("garbage");
}

} // namespace
