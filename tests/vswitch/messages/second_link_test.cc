// Ends over a link of another kind: queues in this process's memory, with no socket and no folder.
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/msgq.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vswitch/descriptor.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "messages/message_end.h"

namespace {

using namespace vswitch;

constexpr pid_t kProcess = 4711;
constexpr size_t kQueueRoom = 3;

// A descriptor that is readable as long as it is told to be.
class readable_signal {
 public:
  readable_signal() : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
  void set(bool readable) {
    uint64_t count = 1;
    const ssize_t size =
        readable ? write(event_.number(), &count, sizeof count) : read(event_.number(), &count, sizeof count);
    EXPECT_TRUE(size > 0 || errno == EAGAIN);
  }
  int number() const { return event_.number(); }
  bool wait(int timeout_ms) const {
    pollfd state{number(), POLLIN, 0};
    return poll(&state, 1, timeout_ms) > 0;
  }

 private:
  descriptor event_;
};

// What is on its way to one side.
struct queue {
  std::deque<std::string> packets;
  bool is_closed = false;
  readable_signal readable;
};

class memory_connection final : public message_connection {
 public:
  memory_connection(std::shared_ptr<queue> in, std::shared_ptr<queue> out) : in_(std::move(in)), out_(std::move(out)) {}
  ~memory_connection() override {
    for (queue* each : {in_.get(), out_.get()}) {
      each->is_closed = true;
      each->readable.set(true);
    }
  }

  void abandon() noexcept override {}
  int ready_descriptor() const noexcept override { return in_->readable.number(); }
  pid_t process() const noexcept override { return kProcess; }
  bool is_connected() const noexcept override { return !out_->is_closed; }

  int send(const frame_header& header, const void* payload) noexcept override {
    if (out_->is_closed) return ECONNREFUSED;
    if (out_->packets.size() == kQueueRoom) return EAGAIN;
    std::string packet(reinterpret_cast<const char*>(&header), sizeof header);
    packet.append(static_cast<const char*>(payload), header.length);
    out_->packets.push_back(std::move(packet));
    out_->readable.set(true);
    return 0;
  }

  ssize_t receive(void* packet, int timeout_ms) noexcept override {
    if (in_->packets.empty() && in_->is_closed) return 0;
    if (in_->packets.empty() && !in_->readable.wait(timeout_ms)) {
      errno = EAGAIN;
      return -1;
    }
    const std::string first = std::move(in_->packets.front());
    in_->packets.pop_front();
    if (in_->packets.empty() && !in_->is_closed) in_->readable.set(false);
    std::memcpy(packet, first.data(), first.size());
    return static_cast<ssize_t>(first.size());
  }

 private:
  std::shared_ptr<queue> in_;
  std::shared_ptr<queue> out_;
};

// Who serves which point, and who waits to be accepted there.
struct waiting_clients {
  std::deque<std::unique_ptr<message_connection>> server_sides;
  readable_signal readable;
};
using served_points = std::map<uint32_t, waiting_clients>;

class memory_listener final : public message_listener {
 public:
  memory_listener(served_points& points, uint32_t point) : points_(points), point_(point) {}
  ~memory_listener() override { points_.erase(point_); }

  void abandon() noexcept override {}
  int ready_descriptor() const noexcept override { return points_.at(point_).readable.number(); }
  std::unique_ptr<message_connection> accept() override {
    waiting_clients& clients = points_.at(point_);
    if (clients.server_sides.empty()) {
      errno = EAGAIN;
      return nullptr;
    }
    auto first = std::move(clients.server_sides.front());
    clients.server_sides.pop_front();
    if (clients.server_sides.empty()) clients.readable.set(false);
    return first;
  }

 private:
  served_points& points_;
  uint32_t point_;
};

class memory_link final : public message_link {
 public:
  explicit memory_link(served_points& points) : points_(points) {}

  void abandon() noexcept override {}

  std::unique_ptr<message_listener> serve(uint32_t service_point) override {
    if (points_.contains(service_point)) {
      errno = EADDRINUSE;
      return nullptr;
    }
    points_[service_point];
    return std::make_unique<memory_listener>(points_, service_point);
  }

  std::unique_ptr<message_connection> connect(uint32_t service_point) override {
    const auto found = points_.find(service_point);
    if (found == points_.end()) {
      errno = ECONNREFUSED;
      return nullptr;
    }
    const auto to_server = std::make_shared<queue>();
    const auto to_client = std::make_shared<queue>();
    found->second.server_sides.push_back(std::make_unique<memory_connection>(to_server, to_client));
    found->second.readable.set(true);
    return std::make_unique<memory_connection>(to_client, to_server);
  }

 private:
  served_points& points_;
};

struct releaser {
  void operator()(msgq_message* message) const { msgq_release(message); }
};
using message = std::unique_ptr<msgq_message, releaser>;

message receive(message_end& at, int timeout_ms = 1000) {
  msgq_message* received = nullptr;
  return message(at.receive(received, timeout_ms) == 0 ? received : nullptr);
}

std::string payload_of(const message& received) {
  if (!received) return "no message";
  return {static_cast<const char*>(msgq_payload_get(received.get())), msgq_payload_size(received.get())};
}

class SecondLink : public ::testing::Test {
 protected:
  SecondLink() {
    EXPECT_EQ(server_.open(std::make_unique<memory_link>(points_), kPoint), 0);
    EXPECT_EQ(client_.open(std::make_unique<memory_link>(points_), 0), 0);
  }

  static constexpr uint32_t kPoint = 101;
  static constexpr msgq_addr kServer = {FICON_MGR_NODE, kPoint};

  static int ask(message_end& from, const std::string& text, uintptr_t send_arg = 0) {
    return from.request(kServer, 1, text.data(), static_cast<uint32_t>(text.size()), send_arg);
  }

  served_points points_;
  message_end server_;
  message_end client_;
};

TEST_F(SecondLink, CarriesARequestAndItsReply) {
  ASSERT_EQ(ask(client_, "how much?", 42), 0);
  const message request = receive(server_);
  ASSERT_EQ(payload_of(request), "how much?");
  ASSERT_EQ(server_.reply(*request, 2, "enough", 6), 0);
  const message reply = receive(client_);
  EXPECT_EQ(payload_of(reply), "enough");
  EXPECT_EQ(msgq_send_arg_get(reply.get()), 42u);
  EXPECT_EQ(msgq_opcode_get(reply.get()), 2u);
}

TEST_F(SecondLink, PointIsServedOnceAndFreedWithItsEnd) {
  auto other = std::make_unique<message_end>();
  EXPECT_EQ(other->open(std::make_unique<memory_link>(points_), kPoint), EADDRINUSE);
  EXPECT_EQ(other->open(std::make_unique<memory_link>(points_), kPoint + 1), 0);
  other.reset();
  message_end next;
  EXPECT_EQ(next.open(std::make_unique<memory_link>(points_), kPoint + 1), 0);
}

TEST_F(SecondLink, NobodyServesRefuses) {
  EXPECT_EQ(client_.connect({FICON_MGR_NODE, 7}), ECONNREFUSED);
}

TEST_F(SecondLink, FullQueueIsTold) {
  for (size_t n = 0; n < kQueueRoom; ++n) EXPECT_EQ(ask(client_, "x"), 0);
  EXPECT_EQ(ask(client_, "x"), EAGAIN);
}

TEST_F(SecondLink, PendingMessagesOfALostServerComeBeforeItsLoss) {
  auto server = std::make_unique<message_end>();
  ASSERT_EQ(server->open(std::make_unique<memory_link>(points_), 7), 0);
  ASSERT_EQ(client_.connect({FICON_MGR_NODE, 7}), 0);
  uint64_t peer = 0;
  ASSERT_EQ(server->list_peers({&peer, 1}), 1u);
  ASSERT_EQ(server->send_to_peer(peer, 3, "bye", 3), 0);
  server.reset();
  EXPECT_EQ(payload_of(receive(client_)), "bye");
  msgq_message* none = nullptr;
  EXPECT_EQ(client_.receive(none, 0), ECONNRESET);
}

// More of them than are polled one by one.
TEST_F(SecondLink, ManyClientsAreAnsweredInTurn) {
  std::deque<message_end> clients(12);
  for (auto& each : clients) {
    ASSERT_EQ(each.open(std::make_unique<memory_link>(points_), 0), 0);
    ASSERT_EQ(ask(each, std::to_string(&each == &clients.front())), 0);
  }
  for (size_t n = 0; n < clients.size(); ++n) {
    const message request = receive(server_);
    ASSERT_NE(request, nullptr);
    EXPECT_EQ(server_.reply(*request, 2, "ok", 2), 0);
  }
  for (auto& each : clients) EXPECT_EQ(payload_of(receive(each)), "ok");
  EXPECT_EQ(server_.list_peers({}), 12u);
}

TEST_F(SecondLink, DescriptorTellsOfRequests) {
  int number = -1;
  ASSERT_EQ(server_.give_descriptor(number), 0);
  pollfd state{number, POLLIN, 0};
  EXPECT_EQ(poll(&state, 1, 0), 0);
  ASSERT_EQ(ask(client_, "there?"), 0);
  EXPECT_EQ(poll(&state, 1, 1000), 1);
  EXPECT_EQ(payload_of(receive(server_)), "there?");
  EXPECT_EQ(receive(server_, 0), nullptr);
}

TEST_F(SecondLink, WaitEndsInTime) {
  ASSERT_EQ(client_.connect(kServer), 0);
  msgq_message* none = nullptr;
  EXPECT_EQ(client_.receive(none, 20), ETIMEDOUT);
  EXPECT_EQ(server_.receive(none, 20), ETIMEDOUT);
}

} // namespace
