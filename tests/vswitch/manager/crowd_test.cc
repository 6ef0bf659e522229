// Many clients at once: every answer is looked at, and must be the one to its request. A manager that is killed under them,
// and one that is sent random bytes meanwhile.
//
// CHNSW_CROWD_SECONDS makes the clients of each test, and the processes that disturb them, go on for that long:
//
//     CHNSW_CROWD_SECONDS=60 manager_crowd_tests --gtest_filter='*RandomBytes*'
#include <fcntl.h>
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vswitch/manager/manager_protocol.h>
#include <vswitch/switch_store.h>
#include <vswitch/vswitch.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <stdexcept>
#include <thread>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using namespace std::chrono_literals;
using clock_type = std::chrono::steady_clock;

constexpr unsigned kPorts = 48;
constexpr unsigned kClients = 16;

// 48 ports: fc1/1 is PN 100, PA 40; fc1/2 is PN 101, PA 41 ... Odd ones are in VSAN 10 and bound to 10, even ones to 20.
// Behind each there is a device whose sequence number ends with its port.
chassis_description crowded_switch() {
  auto chassis = vswitch_test::small_switch();
  chassis.map = port_map();
  for (unsigned port = 1; port <= kPorts; ++port) {
    const auto pn = static_cast<uint16_t>(99 + port);
    const auto pa = static_cast<uint16_t>(0x3F + port);
    const uint16_t vsan = port % 2 == 1 ? 10 : 20;
    chassis.map.port_to_pn[port - 1] = {pn, pa, {vsan}};
    chassis.map.port_to_vsan[port - 1] = vsan;
    chassis.map.pa_to_pn[pa] = pn;
    char sequence[13];
    std::snprintf(sequence, sizeof sequence, "%012u", port);
    chassis.nodes[fc_port_index(1, port)].sequence = sequence;
  }
  chassis.interfaces.clear(); // nobody is in a port-channel
  return chassis;
}

class dice {
 public:
  explicit dice(uint32_t seed) : engine_(seed) {}
  uint32_t any() { return static_cast<uint32_t>(engine_()); }
  uint32_t below(uint32_t bound) { return any() % bound; }
  std::byte byte() { return static_cast<std::byte>(any() >> 8); }

 private:
  std::mt19937 engine_;
};

std::chrono::seconds asked_duration() {
  const char* seconds = std::getenv("CHNSW_CROWD_SECONDS");
  return std::chrono::seconds(seconds == nullptr ? 0 : std::atoi(seconds));
}

// How long somebody goes on: for so many requests, and as long as the environment says.
class stint {
 public:
  explicit stint(uint64_t requests) : requests_(requests) {}
  bool over(uint64_t done) const { return done >= requests_ && clock_type::now() >= until_; }

 private:
  uint64_t requests_;
  clock_type::time_point until_ = clock_type::now() + asked_duration();
};

// Throws what is wrong with an answer.
void require(bool right, const char* what) {
  if (!right) throw std::runtime_error(what);
}

struct request {
  unsigned kind; // 0 to 3
  unsigned port; // from 1
};

class client {
 public:
  explicit client(uint32_t id) : dice_(id), mark_(uintptr_t{id} << kCountBits) {}

  // Whether it could be sent.
  bool send_next() {
    const request asked = {dice_.below(4), dice_.below(kPorts) + 1};
    const uintptr_t send_arg = mark_ | ++sent_;
    if (!send(asked, send_arg)) return false;
    open_[send_arg] = asked;
    return true;
  }

  void take_answer(msgq_message* message) {
    const uintptr_t send_arg = msgq_send_arg_get(message);
    const auto found = open_.find(send_arg);
    require(msgq_is_reply(message) == 1 && found != open_.end(), "an answer to no request");
    check(found->second, send_arg, message);
    open_.erase(found);
    ++answered_;
  }

  void reconnect() {
    open_.clear();
    end_.reset();
    end_ = open_client();
  }

  msgq* end() const { return end_.get(); }
  size_t open() const { return open_.size(); }
  uint64_t answered() const { return answered_; }

 private:
  static constexpr int kCountBits = std::numeric_limits<uintptr_t>::digits - 8; // of requests; the rest says whose

  static uint32_t mark_of(uintptr_t send_arg) {
    return static_cast<uint32_t>(send_arg ^ static_cast<uint64_t>(send_arg) >> 32);
  }
  static uint32_t vsan_of(unsigned port) { return port % 2 == 1 ? 10 : 20; }

  bool send(const request& asked, uintptr_t send_arg) const {
    const uint32_t if_index = fc_port_index(1, asked.port);
    const ficon_ifvsan_query query = {0, 0, 10, if_index, mark_of(send_arg)};
    switch (asked.kind) {
      case 0:
        return ficon_send_get_portmap_nonblock(end_.get(), "crowd", nullptr, 1, 0, if_index, 0, 0, send_arg) == 0;
      case 1:
        return ficon_send_get_enabled_vsans(end_.get(), send_arg) == 0;
      case 2:
        return ficon_send_query_ifvsan_state(end_.get(), &query, send_arg) == 0;
      default:
        return ficon_send_get_rnid_nonblock(end_.get(), if_index, 7, mark_of(send_arg), 2, 9, send_arg) == 0;
    }
  }

  static void check(const request& asked, uintptr_t send_arg, msgq_message* message) {
    switch (asked.kind) {
      case 0:
        return check_port_map(asked.port, message);
      case 1:
        return check_vsans(message);
      case 2:
        return check_state(asked.port, mark_of(send_arg), message);
      default:
        return check_rnid(asked.port, mark_of(send_arg), message);
    }
  }
  static void check_port_map(unsigned port, msgq_message* message) {
    uint32_t if_index = 0;
    uint16_t pn = 0;
    uint16_t pa = 0;
    require(ficon_parse_get_portmap(message, &if_index, &pn, &pa) == 0, "port map: result");
    require(if_index == fc_port_index(1, port) && pn == 99 + port && pa == 0x3F + port, "port map: numbers");
  }
  static void check_vsans(msgq_message* message) {
    void* list = nullptr;
    require(ficon_parse_get_enabled_vsans(message, &list) == 0, "enabled VSANs: result");
    vsan_block expected = {512, {}};
    expected.bitmap[1] = 0x20; // 10
    expected.bitmap[2] = 0x08; // 20
    const bool same = std::memcmp(list, &expected, sizeof expected) == 0;
    std::free(list);
    require(same, "enabled VSANs: list");
  }
  static void check_state(unsigned port, uint32_t mark, msgq_message* message) {
    ficon_ifvsan_query answer = {};
    require(ficon_parse_query_ifvsan(message, &answer) == 0, "VSAN state: result");
    require(answer.arg_a == 10 && answer.arg_b == mark && answer.if_index == fc_port_index(1, port),
            "VSAN state: question");
    require(answer.state == (vsan_of(port) == 10 ? 3u : 0u), "VSAN state: state");
  }
  static void check_rnid(unsigned port, uint32_t mark, msgq_message* message) {
    uint32_t if_index = 0;
    uint32_t word8 = 0;
    char descriptor[32] = {};
    require(ficon_parse_get_rnid(message, &if_index, nullptr, &word8, nullptr, nullptr, nullptr, descriptor) == 0,
            "RNID: result");
    require(if_index == fc_port_index(1, port) && word8 == mark, "RNID: question");
    char sequence[13];
    std::snprintf(sequence, sizeof sequence, "%012u", port);
    require(std::memcmp(descriptor + 18, sequence, 12) == 0, "RNID: descriptor");
  }

  dice dice_;
  uintptr_t mark_;
  uint32_t sent_ = 0;
  uint64_t answered_ = 0;
  std::map<uintptr_t, request> open_;
  owned_end end_ = open_client();
};

// Asks with up to eight requests open, and sees every answer.
void ask_and_check(uint32_t id, uint64_t requests) {
  client one(id);
  const stint duration(requests);
  while (!duration.over(one.answered())) {
    while (one.open() < 8) require(one.send_next(), "a request cannot be sent");
    one.take_answer(receive(one.end()).get());
  }
  while (one.open() > 0) one.take_answer(receive(one.end()).get());
}

// The same with a manager that comes and goes: what was asked of the one that is gone is asked anew.
void ask_whoever_is_there(uint32_t id, uint64_t requests, int reports) {
  client one(id);
  const stint duration(requests);
  const auto latest = clock_type::now() + asked_duration() + 120s;
  bool reported = false;
  while (!duration.over(one.answered())) {
    require(clock_type::now() < latest, "the answers do not come");
    bool lost = false;
    while (!lost && one.open() < 8) lost = !one.send_next();
    msgq_message* message = nullptr;
    if (!lost) lost = msgq_receive(one.end(), &message, 60000) != 1;
    const owned_message keeper(message);
    if (message != nullptr) one.take_answer(message);
    if (!lost) continue;
    if (!reported) require(write(reports, "x", 1) == 1, "nobody listens");
    reported = true;
    std::this_thread::sleep_for(1ms);
    one.reconnect();
  }
}

class Crowd : public testing::Test {
 protected:
  Crowd() {
    switch_store::create(path(), crowded_switch());
    manager_ = std::make_unique<running_manager>(path());
  }

  std::string path() const { return folder_.path("switch"); }

  pid_t start(const std::function<void()>& act) const {
    return in_child([&] {
      use_switch(switch_store::open(path()));
      act();
    });
  }

  vswitch_test::temporary_folder folder_;
  std::unique_ptr<running_manager> manager_;
};

TEST_F(Crowd, OfSixteenIsAnsweredEachItsOwn) {
  std::vector<pid_t> children;
  for (uint32_t id = 1; id <= kClients; ++id) children.push_back(start([id] { ask_and_check(id, 6250); }));
  for (pid_t child : children) EXPECT_TRUE(ended_well(child));
  EXPECT_EQ(manager_->end().exit_code, 0);
}

TEST_F(Crowd, NeverHearsAWrongAnswerWhenTheManagerIsKilled) {
  int reports[2] = {};
  ASSERT_EQ(pipe2(reports, O_CLOEXEC | O_NONBLOCK), 0);
  std::vector<pid_t> children;
  for (uint32_t id = 1; id <= 4; ++id)
    children.push_back(start([id, pipe = reports[1]] { ask_whoever_is_there(id, 5000, pipe); }));
  dice random(1);
  const stint duration(20);
  for (uint64_t kills = 0; !duration.over(kills); ++kills) {
    std::this_thread::sleep_for(std::chrono::milliseconds(random.below(20)));
    manager_->kill_at_once();
    manager_ = std::make_unique<running_manager>(path());
  }
  for (pid_t child : children) EXPECT_TRUE(ended_well(child));
  char lost = 0;
  EXPECT_EQ(read(reports[0], &lost, 1), 1) << "nobody noticed that the manager was killed";
  close(reports[0]);
  close(reports[1]);
}

// Each install binds eight ports to a VSAN or takes it out again. Every second manager is left alone until one was answered,
// however slow the machine is.
TEST_F(Crowd, SeesWholeInstallsWhenTheManagerIsKilled) {
  dice random(2);
  const std::vector<uint32_t> ports = {0x01000000, 0x01000100, 0x01000200, 0x01000300,
                                       0x01000400, 0x01000500, 0x01000600, 0x01000700};
  bool moved = false;
  for (int round = 0; round < 20; ++round) {
    int answers[2] = {};
    ASSERT_EQ(pipe2(answers, O_CLOEXEC), 0);
    const pid_t child = start([&] {
      auto end = open_client();
      bool answered = false;
      const vsan_block unused = {512, {}};
      for (uint8_t byte0 = 1;; byte0 ^= 1) {
        if (ficon_send_vsan_install(end.get(), 8, ports.data(), byte0, 1, 99, &unused) != 0) return;
        msgq_message* message = nullptr;
        if (msgq_receive(end.get(), &message, 60000) != 1) return;
        require(payload_record<manager_result>(message).result == 0, "install: result");
        msgq_release(message);
        if (!answered) require(write(answers[1], "x", 1) == 1, "nobody listens");
        answered = true;
      }
    });
    close(answers[1]);
    char answer = 0;
    if (round % 2 == 1) {
      EXPECT_EQ(read(answers[0], &answer, 1), 1) << "no install was answered";
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(random.below(30)));
    manager_->kill_at_once();
    EXPECT_TRUE(ended_well(child));
    close(answers[0]);
    const auto chassis = switch_store::open(path())->describe();
    for (size_t index = 0; index < 8; ++index)
      ASSERT_EQ(chassis.map.port_to_pn[index].vsans[1], chassis.map.port_to_pn[0].vsans[1]) << "index " << index;
    ASSERT_EQ(chassis.map.port_to_pn[8].vsans[1], 0);
    moved = moved || chassis.change_counter > 7;
    manager_ = std::make_unique<running_manager>(path());
  }
  EXPECT_TRUE(moved);
}

// ---- Random bytes ----

// Requests that change nothing by right: random ones, and well-formed ones with some bytes changed.
class random_requests {
 public:
  struct request {
    uint32_t opcode;
    payload_bytes payload;
  };

  request next() {
    const uint32_t opcode = some_opcode();
    const uint32_t kind = dice_.below(4);
    if (kind == 0) return {opcode, bytes(dice_.below(2000))};
    if (kind == 1) return {opcode, bytes(dice_.below(65537))};
    return {opcode, damaged(well_formed(opcode))};
  }

 private:
  uint32_t some_opcode() {
    static constexpr uint32_t kKnown[] = {7858, 7859, 7869, 7882, 7888, kOpSwap, kOpNotify, kOpSwapCheckLock, 0};
    const uint32_t choice = dice_.below(10);
    return choice < std::size(kKnown) ? kKnown[choice] : dice_.any();
  }
  payload_bytes bytes(size_t size) {
    payload_bytes random(size);
    for (auto& byte : random) byte = dice_.byte();
    return random;
  }
  payload_bytes well_formed(uint32_t opcode) {
    const auto value = bytes(131);
    if (opcode == 7858) return tlv_array({{9, value.data(), 130}});
    if (opcode == 7869) return tlv_array({{15, value.data(), 60}});
    if (opcode == 7888) return bytes(20);
    if (opcode == kOpSwap) return bytes(8);
    if (opcode == kOpNotify) return bytes(16);
    if (opcode == 7882) return install();
    return tlv_array({{16, value.data(), 131}, {9, value.data(), 3}});
  }
  // Its interfaces are nowhere, or its count is not that of its length.
  payload_bytes install() {
    const uint32_t indexes = dice_.below(100) + 1;
    auto message = bytes(521 + indexes * 4);
    message[0] = std::byte{1};
    const uint32_t bitmap_bytes = 512;
    const uint32_t count = indexes + (dice_.below(2) == 0 ? 0 : dice_.any());
    std::memcpy(&message[1], &bitmap_bytes, 4);
    std::memcpy(&message[517], &count, 4);
    return message;
  }
  payload_bytes damaged(payload_bytes whole) {
    for (uint32_t n = dice_.below(3); n > 0; --n) whole[dice_.below(static_cast<uint32_t>(whole.size()))] = dice_.byte();
    if (dice_.below(8) == 0) whole.resize(dice_.below(static_cast<uint32_t>(whole.size()) + 1));
    return whole;
  }

  dice dice_{7};
};

// Sends as fast as the manager lets it, and has every request answered. An array that says to be longer than it is does not
// leave this process (EINVAL).
void send_random_bytes(uint64_t requests) {
  auto end = open_client();
  random_requests source;
  const stint duration(requests);
  uint64_t sent = 0;
  uint64_t answers = 0;
  while (!duration.over(sent)) {
    const auto one = source.next();
    const int status =
        msgq_send(end.get(), &kManagerAddress, one.opcode, one.payload.empty() ? nullptr : one.payload.data(),
                  static_cast<uint32_t>(one.payload.size()), static_cast<uintptr_t>(sent), nullptr, 0);
    if (status == 0) ++sent;
    require(status == 0 || errno == EAGAIN || errno == EINVAL, "random bytes cannot be sent");
    msgq_message* message = nullptr;
    for (int wait = status == 0 ? 0 : 1; msgq_receive(end.get(), &message, wait) == 1; wait = 0) {
      if (msgq_is_reply(message) == 1) ++answers;
      msgq_release(message);
    }
  }
  while (answers < sent)
    if (msgq_is_reply(receive(end.get()).get()) == 1) ++answers;
}

TEST_F(Crowd, IsAnsweredWhileRandomBytesCome) {
  const pid_t disturber = start([] { send_random_bytes(10000); });
  std::vector<pid_t> children;
  for (uint32_t id = 1; id <= 4; ++id) children.push_back(start([id] { ask_and_check(id, 1000); }));
  EXPECT_TRUE(ended_well(disturber));
  for (pid_t child : children) EXPECT_TRUE(ended_well(child));
  EXPECT_EQ(switch_store::open(path())->describe(), crowded_switch());
  EXPECT_EQ(manager_->end().exit_code, 0);
}

TEST_F(Crowd, IsAnsweredWhileOneAsksAndNeverReads) {
  const pid_t deaf = start([] {
    auto end = open_client();
    for (int n = 0; n < 20000; ++n) {
      if (ficon_send_get_enabled_vsans(end.get(), 1) == 0) continue;
      require(msgq_errno_get(end.get()) == EAGAIN, "the manager is gone");
      std::this_thread::sleep_for(100us);
    }
  });
  std::vector<pid_t> children;
  for (uint32_t id = 1; id <= 4; ++id) children.push_back(start([id] { ask_and_check(id, 1000); }));
  for (pid_t child : children) EXPECT_TRUE(ended_well(child));
  EXPECT_TRUE(ended_well(deaf));
}

} // namespace
