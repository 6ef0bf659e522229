// The transport between processes: order, servers and clients that are killed, forks, other users.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vswitch/vswitch.h>

#include <cerrno>
#include <filesystem>
#include <thread>

#include "message_parties.h"

namespace {

using namespace vswitch_test;
using ::testing::SizeIs;

constexpr uid_t kOtherUser = 65534;

class MessageProcesses : public ::testing::Test {
 protected:
  // A request that is answered, whatever was lost before.
  static std::string asked(const end& client, const std::string& payload) {
    int error = EAGAIN;
    while (error == EAGAIN) error = request(client, payload);
    if (error != 0) return std::to_string(error);
    for (;;) {
      msgq_message* received = nullptr;
      const int result = msgq_receive(client.get(), &received, kLongEnoughMs);
      if (result == 1) return payload_of(message(received));
      if (result == 0) return "no answer";
    }
  }

  switch_with_messages place;
};

TEST_F(MessageProcesses, ThousandsOfMessagesArriveInTheOrderInWhichTheyWereSent) {
  constexpr int kMessages = 20000;
  const end server = open_end(kPoint);
  other_process sender([](const other_process::line&) {
    const end client = open_end();
    for (int i = 0; i < kMessages; ++i) {
      const std::string payload = std::to_string(i) + std::string(static_cast<size_t>(i % 2000), '.');
      int error = EAGAIN;
      while (error == EAGAIN) error = request(client, payload, static_cast<uint32_t>(i));
      if (error != 0) return 1;
    }
    return receive_error(client, kLongEnoughMs) == ECONNRESET ? 0 : 2; // stays until all was read
  });
  uint64_t peer = 0;
  for (int i = 0; i < kMessages; ++i) {
    const message received = receive(server);
    ASSERT_TRUE(received) << i;
    ASSERT_EQ(msgq_opcode_get(received.get()), static_cast<uint32_t>(i));
    ASSERT_EQ(payload_of(received), std::to_string(i) + std::string(static_cast<size_t>(i % 2000), '.'));
    if (i == 0) peer = msgq_peer_get(received.get());
    ASSERT_EQ(msgq_peer_get(received.get()), peer);
  }
  sender.kill_at_once();
}

TEST_F(MessageProcesses, ManyClientsAtOnceAreEachAnsweredTheirOwn) {
  const auto server = echo_server();
  std::vector<std::unique_ptr<other_process>> clients;
  for (int number = 0; number < 12; ++number)
    clients.push_back(std::make_unique<other_process>([number](const other_process::line&) {
      const end client = open_end();
      for (int i = 0; i < 300; ++i) {
        const std::string payload = std::to_string(number) + "/" + std::to_string(i);
        if (asked(client, payload) != payload) return 1;
      }
      return 0;
    }));
  for (const auto& client : clients) EXPECT_EQ(client->exit_status(), 0);
}

TEST_F(MessageProcesses, KilledServerIsToldAndItsSuccessorReached) {
  const end client = open_end();
  for (int i = 0; i < 10; ++i) {
    const auto server = echo_server(); // over the socket that the one before left
    ASSERT_EQ(asked(client, "hello"), "hello");
    server->kill_at_once();
    EXPECT_EQ(receive_error(client, kLongEnoughMs), ECONNRESET);
    EXPECT_TRUE(std::filesystem::exists(place.socket_path()));
    EXPECT_EQ(request(client, "x"), ECONNREFUSED);
  }
}

TEST_F(MessageProcesses, WaitingClientIsToldAtOnceThatItsServerWasKilled) {
  auto server = echo_server();
  other_process client([](const other_process::line& parent) {
    const end asking = open_end();
    if (asked(asking, "hello") != "hello") return 1;
    parent.say();
    return receive_error(asking, -1) == ECONNRESET ? 0 : 2;
  });
  client.wait();
  server->kill_at_once();
  EXPECT_EQ(client.exit_status(), 0);
}

TEST_F(MessageProcesses, KilledClientsCostTheServerNothing) {
  const end server = open_end(kPoint);
  ASSERT_GE(msgq_descriptor(server.get()), 0);
  const size_t before = open_descriptors();
  std::vector<message> unanswered;
  for (int i = 0; i < 20; ++i) {
    other_process client([](const other_process::line& parent) {
      const end asking = open_end();
      for (int n = 0; n < 5; ++n)
        if (request(asking, "ask") != 0) return 1;
      parent.say();
      return receive_error(asking, -1);
    });
    client.wait();
    if (i % 2 == 0) unanswered.push_back(receive(server));
    client.kill_at_once();
    unanswered.push_back(receive(server)); // what it had sent
  }
  for (const message& each : unanswered) {
    ASSERT_TRUE(each);
    EXPECT_EQ(reply(server, each, "answer"), ECONNREFUSED);
  }
  while (receive(server, 0)) {
  }
  EXPECT_EQ(open_descriptors(), before);
}

// Were it not so, this process would end here.
TEST_F(MessageProcesses, BrokenConnectionsSendNoSignal) {
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  struct sigaction before {};
  sigaction(SIGPIPE, &usual, &before);
  end server = open_end(kPoint);
  end client = open_end();
  ASSERT_EQ(request(client, "ask"), 0);
  const message received = receive(server);
  const uint64_t peer = msgq_peer_get(received.get());
  client.reset();
  EXPECT_EQ(reply(server, received, "x"), ECONNREFUSED);
  EXPECT_EQ(send_to_peer(server, peer, std::string(60000, 'x')), ECONNREFUSED);
  client = open_end();
  ASSERT_EQ(connect(client), 0);
  server.reset();
  EXPECT_EQ(request(client, std::string(60000, 'x')), ECONNREFUSED);
  sigaction(SIGPIPE, &before, nullptr);
}

// ---- Who serves

// A server that was killed left its socket, and all of them find it at once.
TEST_F(MessageProcesses, OfManyStartersOneServes) {
  for (int round = 0; round < 10; ++round) {
    echo_server()->kill_at_once();
    std::vector<std::unique_ptr<other_process>> starters;
    for (int i = 0; i < 8; ++i)
      starters.push_back(std::make_unique<other_process>([](const other_process::line& parent) {
        parent.say();
        parent.wait();
        const end served(msgq_open(kPoint));
        const int result = served ? 1 : errno == EADDRINUSE ? 0 : 50;
        parent.say();
        parent.wait(); // until all have tried
        if (!served) return result;
        const message received = receive(served);
        if (!received) return 51;
        return reply(served, received, "") == 0 ? result : 52;
      }));
    for (const auto& each : starters) each->wait();
    for (const auto& each : starters) each->say();
    for (const auto& each : starters) each->wait();
    for (const auto& each : starters) each->say();
    const end client = open_end();
    EXPECT_EQ(asked(client, "who serves?"), "");
    int serving = 0;
    for (const auto& each : starters) {
      const int result = each->exit_status();
      EXPECT_LE(result, 1);
      serving += result;
    }
    EXPECT_EQ(serving, 1);
  }
}

TEST_F(MessageProcesses, ClosingOneServerLeavesItsSuccessorsSocket) {
  end first = open_end(kPoint);
  EXPECT_EQ(msgq_open(kPoint), nullptr);
  first.reset();
  const end second = open_end(kPoint);
  first.reset();
  const end client = open_end();
  EXPECT_EQ(request(client, "x"), 0);
}

// ---- Forks

TEST_F(MessageProcesses, ChildCannotUseWhatItInheritedNorDisturbIt) {
  end server = open_end(kPoint);
  end client = open_end();
  ASSERT_EQ(request(client, "before"), 0);
  message received = receive(server);
  const int watched = msgq_descriptor(server.get());
  other_process child([&](const other_process::line&) {
    msgq_message* none = nullptr;
    if (request(client, "x") != EINVAL || connect(client) != EINVAL) return 1;
    if (reply(server, received, "x") != EINVAL || send_to_peer(server, 1, "x") != EINVAL) return 2;
    if (msgq_receive(server.get(), &none, 0) != -1 || errno != EINVAL) return 3;
    if (msgq_descriptor(client.get()) != -1 || msgq_peers_get(server.get(), nullptr, 0) != 0) return 4;
    if (fcntl(watched, F_GETFD) != -1) return 5;
    if (payload_of(received) != "before") return 6;
    received.reset();
    server.reset();
    client.reset();
    return 0;
  });
  EXPECT_EQ(child.exit_status(), 0);
  EXPECT_EQ(msgq_open(kPoint), nullptr) << "the parent still serves";
  EXPECT_EQ(reply(server, received, "after"), 0);
  EXPECT_EQ(payload_of(receive(client)), "after");
  ASSERT_EQ(request(client, "again"), 0);
  EXPECT_EQ(payload_of(receive(server)), "again");
  const end newcomer = open_end();
  ASSERT_EQ(request(newcomer, "new"), 0);
  EXPECT_EQ(payload_of(receive(server)), "new");
}

TEST_F(MessageProcesses, ChildHasEndsOfItsOwn) {
  const end client = open_end();
  const auto server = echo_server();
  EXPECT_EQ(asked(client, "hello"), "hello");
}

// The child lives on; what it inherited would keep the point taken and its connections open.
TEST_F(MessageProcesses, ServerIsGoneWhenItIsKilledAlsoIfAChildOfItLivesOn) {
  other_process parent_of_child([](const other_process::line& parent) {
    const end served = open_end(kPoint);
    const pid_t child = fork();
    if (child == 0) {
      parent.say(); // it has let go of what it inherited
      for (;;) pause();
    }
    const message received = receive(served);
    const std::string answer = std::to_string(child);
    if (reply(served, received, answer) != 0) return 1;
    parent.say();
    for (;;) pause();
  });
  const end client = open_end();
  int error = ECONNREFUSED;
  while (error == ECONNREFUSED) error = request(client, "who is your child?");
  ASSERT_EQ(error, 0);
  const pid_t child = std::stoi(payload_of(receive(client)));
  parent_of_child.wait();
  parent_of_child.wait();
  parent_of_child.kill_at_once();
  EXPECT_EQ(receive_error(client, kLongEnoughMs), ECONNRESET);
  EXPECT_EQ(kill(child, 0), 0) << "it is there";
  EXPECT_NE(end(msgq_open(kPoint)), nullptr);
  kill(child, SIGKILL);
}

size_t descriptors_that_programs_inherit() {
  size_t count = 0;
  for (const auto& each : std::filesystem::directory_iterator("/proc/self/fd"))
    count += (fcntl(std::stoi(each.path().filename()), F_GETFD) & FD_CLOEXEC) == 0;
  return count;
}

TEST_F(MessageProcesses, StartedProgramsInheritNoDescriptor) {
  const size_t before = descriptors_that_programs_inherit();
  const end server = open_end(kPoint);
  const end client = open_end();
  ASSERT_EQ(request(client, "x"), 0);
  ASSERT_TRUE(receive(server));
  ASSERT_GE(msgq_descriptor(server.get()), 0);
  EXPECT_EQ(descriptors_that_programs_inherit(), before);
}

// ---- Threads

TEST_F(MessageProcesses, ThreadsHaveEndsOfTheirOwn) {
  const auto server = echo_server();
  std::vector<end> ends;
  for (int i = 0; i < 4; ++i) ends.push_back(open_end());
  std::vector<std::thread> threads;
  std::vector<int> right(4);
  for (size_t i = 0; i < 4; ++i)
    threads.emplace_back([&, i] {
      for (int n = 0; n < 200; ++n) {
        const std::string payload = std::to_string(i) + "/" + std::to_string(n);
        right[i] += asked(ends[i], payload) == payload;
      }
    });
  for (auto& each : threads) each.join();
  EXPECT_THAT(right, ::testing::Each(200));
}

// ---- Users

// Becomes another user when it may. Otherwise the test has another way to see the refusal.
bool become_other_user() {
  return geteuid() == 0 && setgid(kOtherUser) == 0 && setuid(kOtherUser) == 0;
}

void let_everybody_in(const switch_with_messages& place) {
  namespace fs = std::filesystem;
  for (fs::path folder = place.path(); folder != fs::temp_directory_path(); folder = folder.parent_path())
    fs::permissions(folder, fs::perms::all);
}

// A folder of sockets without any permission: only root can open it, not even its owner.
TEST_F(MessageProcesses, ShutFolderIsNotPermitted) {
  const end server = open_end(kPoint);
  let_everybody_in(place);
  if (geteuid() != 0) std::filesystem::permissions(place.path("msgq"), std::filesystem::perms::none);
  other_process stranger([](const other_process::line&) {
    const end client = open_end();
    if (geteuid() == 0 && !become_other_user()) return 1;
    if (request(client, "x") != EPERM || connect(client) != EPERM) return 2;
    return msgq_open(102) == nullptr && errno == EPERM ? 0 : 3;
  });
  EXPECT_EQ(stranger.exit_status(), 0);
  EXPECT_THAT(peers_of(server), SizeIs(0));
}

class MessageUsers : public MessageProcesses {
 protected:
  // Permissions do not tell users apart for whoever may become another one, which is what the tests are about.
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only root has another user to be";
  }
};

// Folders that are open to all: what is left is that the server looks at who comes.
TEST_F(MessageUsers, ServerTurnsAnotherUserAway) {
  const end server = open_end(kPoint);
  let_everybody_in(place);
  std::filesystem::permissions(place.path("msgq"), std::filesystem::perms::all);
  std::filesystem::permissions(place.socket_path(), std::filesystem::perms::all);
  other_process stranger([&](const other_process::line&) {
    if (!become_other_user()) return 1;
    const bare_socket socket(place.socket_path());
    socket.send(frame{.payload = "let me in"}.bytes());
    socket.wait_until_dropped();
    return 0;
  });
  const end client = open_end();
  EXPECT_EQ(receive_error(server, 200), 0);
  EXPECT_EQ(stranger.exit_status(), 0);
  ASSERT_EQ(request(client, "mine"), 0);
  EXPECT_EQ(payload_of(receive(server)), "mine");
  EXPECT_THAT(peers_of(server), SizeIs(1));
}

// Also when the client may everything.
TEST_F(MessageUsers, ClientTurnsAServerOfAnotherUserAway) {
  std::filesystem::create_directory(place.path("msgq"));
  let_everybody_in(place);
  std::filesystem::permissions(place.path("msgq"), std::filesystem::perms::all);
  other_process stranger([&](const other_process::line& parent) {
    if (!become_other_user()) return 1;
    const bare_server server(place.socket_path());
    parent.say();
    parent.wait();
    return 0;
  });
  stranger.wait();
  const end client = open_end();
  EXPECT_EQ(request(client, "secret"), EPERM);
  EXPECT_EQ(connect(client), EPERM);
  stranger.say();
  EXPECT_EQ(stranger.exit_status(), 0);
}

TEST_F(MessageUsers, FolderOfAnotherUserIsNotServedFrom) {
  std::filesystem::create_directory(place.path("msgq"));
  ASSERT_EQ(chown(place.path("msgq").c_str(), kOtherUser, kOtherUser), 0);
  EXPECT_EQ(msgq_open(kPoint), nullptr);
  EXPECT_EQ(errno, EPERM);
}

} // namespace
