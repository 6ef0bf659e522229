// One switch's folder and several processes: writers that are killed, readers of another program, a switch that is replaced.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vswitch/switch_store.h>
#include <vswitch/vswitch.h>

#include <chrono>
#include <cstring>
#include <functional>
#include <random>
#include <set>
#include <span>
#include <thread>
#include <utility>

#include "child_end.h"
#include "test_switch.h"

namespace {

using namespace vswitch;
using vswitch_test::map_of;
using vswitch_test::number_of;
using vswitch_test::small_switch;
using namespace std::chrono_literals;

class SharedSwitch : public ::testing::Test {
 protected:
  SharedSwitch() { switch_store::create(path(), numbered_switch(1)); }

  static chassis_description numbered_switch(uint16_t number) {
    auto chassis = small_switch();
    chassis.map = map_of(number);
    chassis.change_counter = number;
    return chassis;
  }

  std::string path() const { return folder_.path("switch"); }
  std::string variable() const { return "CHNSW_SWITCH=" + path(); }

  // A child process that is killed at the end of the test, also of a failed one.
  class child_process {
   public:
    // Does the same again and again until it is killed.
    template <typename action>
    explicit child_process(action act) : pid_(fork()) {
      if (pid_ != 0) return;
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      try {
        for (;;) act();
      } catch (...) {
        end_child(1);
      }
    }
    ~child_process() {
      if (pid_ > 0) kill_at_once();
    }
    child_process(const child_process&) = delete;
    child_process& operator=(const child_process&) = delete;

    void kill_at_once() {
      kill(pid_, SIGKILL);
      int status = 0;
      waitpid(std::exchange(pid_, 0), &status, 0);
      EXPECT_TRUE(WIFSIGNALED(status)) << "the child failed by itself";
    }

   private:
    pid_t pid_;
  };

  // What a writer does again and again: every element of the map moves to the next number.
  auto changes() const {
    return [folder = path(), store = std::shared_ptr<switch_store>()]() mutable {
      if (!store) store = switch_store::open(folder);
      store->change_map([](port_map& map) { map = map_of(static_cast<uint16_t>(map.port_to_vsan[0] + 1)); });
    };
  }

  vswitch_test::temporary_folder folder_;
};

// The counter and all elements say the same number after every change.
TEST_F(SharedSwitch, WriterKilledAtAnyMomentLeavesTheOldMapOrTheNewOne) {
  std::mt19937 random(1);
  uint32_t last = 1;
  bool moved = false;
  unsigned longest_us = 20000; // more, until a writer gets as far as a change on this machine
  for (int round = 0; round < 60; ++round) {
    child_process writer(changes());
    std::this_thread::sleep_for(std::chrono::microseconds(random() % longest_us));
    writer.kill_at_once();
    const auto chassis = switch_store::open(path())->describe();
    ASSERT_EQ(number_of(chassis.map), static_cast<uint16_t>(chassis.change_counter)) << "round " << round;
    ASSERT_GE(chassis.change_counter, last);
    moved = moved || chassis.change_counter > last;
    if (!moved && longest_us < 2000000) longest_us += longest_us / 4;
    last = chassis.change_counter;
  }
  EXPECT_TRUE(moved);
}

TEST_F(SharedSwitch, CreatorKilledAtAnyMomentLeavesTheOldSwitchOrTheNewOne) {
  std::mt19937 random(2);
  for (int round = 0; round < 40; ++round) {
    child_process creator([&, number = uint16_t{1}]() mutable {
      auto chassis = numbered_switch(++number);
      chassis.name = std::to_string(number);
      chassis.line_cards = {{number % 4u + 1, 1, chassis.name}};
      chassis.change_counter = 1;
      switch_store::create(path(), chassis);
    });
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
    creator.kill_at_once();
    const auto chassis = switch_store::open(path())->describe();
    const int number = number_of(chassis.map);
    ASSERT_NE(number, -1) << "round " << round;
    if (number == 1) continue;
    EXPECT_EQ(chassis.name, std::to_string(number));
    EXPECT_EQ(chassis.line_cards, (std::vector<line_card>{{static_cast<unsigned>(number) % 4u + 1, 1, chassis.name}}));
  }
}

TEST_F(SharedSwitch, CreatorOfANewFolderKilledLeavesASwitchOrRoomForOne) {
  std::mt19937 random(3);
  for (int round = 0; round < 40; ++round) {
    const std::string fresh = folder_.path("fresh" + std::to_string(round));
    child_process creator([&] {
      switch_store::create(fresh, numbered_switch(9));
      pause();
    });
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
    creator.kill_at_once();
    switch_store::create(fresh, numbered_switch(10));
    ASSERT_EQ(number_of(switch_store::open(fresh)->describe().map), 10);
  }
}

TEST_F(SharedSwitch, TwoProgramsReadWholeMapsWhileAThirdProcessChangesThem) {
  child_process writer(changes());
  const auto client = vswitch_test::start({VSWITCH_CLIENT, "read", "100"}, {variable()});
  auto store = switch_store::open(path());
  std::set<int> numbers;
  for (const auto latest = std::chrono::steady_clock::now() + 60s;
       numbers.size() < 100 && std::chrono::steady_clock::now() < latest;) {
    std::array<ficon_pmap_port_entry, 1280> entries{};
    const uint32_t key = FICON_PMAP_ELEM_PORTPN;
    ASSERT_TRUE(store->look_up(2, std::as_bytes(std::span(&key, 1)), entries.data(), sizeof entries));
    for (const auto& entry : entries) ASSERT_EQ(entry.pn, entries[0].pn);
    numbers.insert(entries[0].pn);
  }
  const auto result = vswitch_test::finish(client);
  writer.kill_at_once();
  EXPECT_EQ(numbers.size(), 100u);
  EXPECT_EQ(result.exit_code, 0) << "the client read a mixture";
  EXPECT_EQ(result.output, "100 changes\n");
}

// What the handler of a protected page does before it opens the page.
std::function<void()> before_page_opens;
std::span<std::byte> protected_page;

void open_page(int) {
  before_page_opens();
  mprotect(protected_page.data(), protected_page.size(), PROT_READ | PROT_WRITE);
}

// The reader is held up in the middle of its copy until the pages that it reads from were written again.
TEST_F(SharedSwitch, ReaderThatIsHeldUpInTheMiddleOfItsCopyHasAWholeMapAllTheSame) {
  constexpr size_t kPage = 4096;
  constexpr size_t kRoom = 8 * kPage;
  auto store = switch_store::open(path());
  auto* room = static_cast<std::byte*>(mmap(nullptr, kRoom, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(room, MAP_FAILED);
  const uint32_t key = FICON_PMAP_ELEM_PORTPN;
  const auto key_bytes = std::as_bytes(std::span(&key, 1));
  constexpr size_t kBytes = FICON_PMAP_PORT_ENTRIES * sizeof(ficon_pmap_port_entry);
  ASSERT_TRUE(store->look_up(2, key_bytes, room, kBytes)); // from now on the place of the element is known

  protected_page = {room + 3 * kPage, kPage};
  before_page_opens = [this] {
    const pid_t writer = fork();
    if (writer == 0) {
      auto change = changes();
      for (int i = 0; i < 5; ++i) change();
      end_child(0);
    }
    waitpid(writer, nullptr, 0);
  };
  struct sigaction handler {};
  struct sigaction before {};
  handler.sa_handler = open_page;
  sigaction(SIGSEGV, &handler, &before);
  mprotect(protected_page.data(), protected_page.size(), PROT_NONE);
  const bool found = store->look_up(2, key_bytes, room, kBytes);
  sigaction(SIGSEGV, &before, nullptr);

  ASSERT_TRUE(found);
  std::vector<ficon_pmap_port_entry> entries(FICON_PMAP_PORT_ENTRIES);
  std::memcpy(entries.data(), room, kBytes);
  munmap(room, kRoom);
  for (const auto& entry : entries) ASSERT_EQ(entry.pn, 6);
}

TEST_F(SharedSwitch, ProcessesNoticeThatTheSwitchWasReplaced) {
  use_switch(switch_store::open(path()));
  ASSERT_EQ(chassis_in_use()->type, 32);
  const chassis_description* before = chassis_in_use();
  const pid_t creator = fork();
  if (creator == 0) {
    auto other = numbered_switch(5);
    other.type = 38;
    switch_store::create(path(), other);
    end_child(0);
  }
  int status = 0;
  waitpid(creator, &status, 0);
  ASSERT_EQ(status, 0);
  EXPECT_EQ(chassis_in_use()->type, 38);
  EXPECT_EQ(before->type, 32); // what a caller holds on to stays
  use_switch(nullptr);
}

TEST_F(SharedSwitch, ForkedClientIsServedByTheSameFolder) {
  use_switch(switch_store::open(path()));
  ASSERT_EQ(chassis_in_use()->type, 32);
  const pid_t child = fork();
  if (child == 0) {
    switch_in_use()->change_map([](port_map& map) { map = map_of(12); });
    end_child(chassis_in_use()->type == 32 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(number_of(switch_in_use()->describe().map), 12);
  use_switch(nullptr);
}

} // namespace
