// Who may change a switch's folder while a manager serves it, and when the manager is gone.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vswitch/switch_store.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <thread>

#include "child_end.h"
#include "store/lmdb/manager_lock.h"
#include "test_switch.h"

namespace {

using namespace vswitch;
using vswitch_test::map_of;
using vswitch_test::number_of;
using vswitch_test::small_switch;
namespace fs = std::filesystem;

std::string refusal_of(const std::function<void()>& act) {
  try {
    act();
  } catch (const switch_error& error) {
    return error.what();
  }
  return "";
}

// A forked process, and a line each way.
class other_process {
 public:
  explicit other_process(const std::function<void(const other_process&)>& run) {
    if (pipe(to_) != 0 || pipe(from_) != 0) throw std::runtime_error("no pipe");
    pid_ = fork();
    if (pid_ != 0) return;
    std::swap(to_, from_);
    run(*this);
    end_child(0);
  }
  ~other_process() {
    if (pid_ > 0) end();
    for (int end : {to_[0], to_[1], from_[0], from_[1]}) close(end);
  }
  other_process(const other_process&) = delete;
  other_process& operator=(const other_process&) = delete;

  pid_t pid() const { return pid_; }
  void tell(const std::string& line) const {
    EXPECT_EQ(write(to_[1], (line + "\n").data(), line.size() + 1), ssize_t(line.size() + 1));
  }
  std::string hear() const {
    std::string line;
    for (char character = 0; read(from_[0], &character, 1) == 1 && character != '\n';) line += character;
    return line;
  }
  void end() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = 0;
  }

 private:
  int to_[2];
  int from_[2];
  pid_t pid_ = 0;
};

class ManagerLock : public ::testing::Test {
 protected:
  ManagerLock() { switch_store::create(path(), small_switch()); }
  std::string path() const { return folder_.path("switch"); }
  std::string refusal_while_served_by(pid_t process) const {
    return path() + ": a manager (process " + std::to_string(process) +
           ") serves this switch and alone may change it; have the manager do it, or end the manager first";
  }

  vswitch_test::temporary_folder folder_;
};

void make_map_of_3(switch_store& store) {
  store.change_map([](port_map& map) { map = map_of(3); });
}

TEST_F(ManagerLock, EveryChangeOfAnotherProcessIsRefused) {
  auto store = switch_store::open(path());
  auto lock = store->serve();
  other_process other([&](const other_process& parent) {
    parent.tell(refusal_of([&] { make_map_of_3(*switch_store::open(path())); }));
    parent.tell(refusal_of([&] { switch_store::open(path())->set_time_reference(10, time_reference{{1, 2}, 3}); }));
    parent.tell(refusal_of([&] { switch_store::create(path(), small_switch()); }));
  });
  EXPECT_EQ(other.hear(), refusal_while_served_by(getpid()));
  EXPECT_EQ(other.hear(), refusal_while_served_by(getpid()));
  EXPECT_EQ(other.hear(), refusal_while_served_by(getpid()));
  EXPECT_EQ(store->describe(), small_switch());
  EXPECT_EQ(store->generation(), 1u);
}

TEST_F(ManagerLock, OtherProcessesStillRead) {
  auto store = switch_store::open(path());
  auto lock = store->serve();
  other_process other([&](const other_process& parent) {
    parent.tell(std::to_string(number_of(switch_store::open(path())->describe().map)));
    parent.hear();
    parent.tell(std::to_string(number_of(switch_store::open(path())->describe().map)));
  });
  EXPECT_EQ(other.hear(), "-1");
  make_map_of_3(*store);
  other.tell("changed");
  EXPECT_EQ(other.hear(), "3");
}

TEST_F(ManagerLock, ManagersOwnStoreChangesAndNoOtherOfItsProcess) {
  auto store = switch_store::open(path());
  auto lock = store->serve();
  EXPECT_EQ(store->change_map([](port_map& map) { map = map_of(3); }), 8u);
  EXPECT_FALSE(store->set_time_reference(10, time_reference{{1, 2}, 3}));
  EXPECT_EQ(refusal_of([&] { make_map_of_3(*switch_store::open(path())); }), refusal_while_served_by(getpid()));
  EXPECT_EQ(refusal_of([&] { switch_store::create(path(), small_switch()); }), refusal_while_served_by(getpid()));
  EXPECT_EQ(number_of(store->describe().map), 3);
}

TEST_F(ManagerLock, GivenUpItLeavesTheSwitchToEverybody) {
  auto store = switch_store::open(path());
  store->serve().reset();
  EXPECT_EQ(switch_store::open(path())->change_map([](port_map& map) { map = map_of(3); }), 8u);
  EXPECT_EQ(store->change_map([](port_map&) {}), 9u);
  switch_store::create(path(), small_switch());
  EXPECT_EQ(vswitch_test::text_of_file(path() + "/manager.lock"), "");
}

TEST_F(ManagerLock, ManagerThatWasKilledLeavesTheSwitchToEverybody) {
  auto store = switch_store::open(path());
  other_process manager([&](const other_process& parent) {
    auto own = switch_store::open(path());
    auto lock = own->serve();
    parent.tell("serving");
    pause();
  });
  ASSERT_EQ(manager.hear(), "serving");
  EXPECT_EQ(refusal_of([&] { make_map_of_3(*store); }), refusal_while_served_by(manager.pid()));
  manager.end();
  EXPECT_EQ(store->change_map([](port_map& map) { map = map_of(3); }), 8u);
  EXPECT_NE(store->serve(), nullptr);
}

TEST_F(ManagerLock, SwitchHasOneManager) {
  auto store = switch_store::open(path());
  auto lock = store->serve();
  const std::string expected = path() + ": a manager (process " + std::to_string(getpid()) +
                               ") serves this switch already, and a switch has one; end that one first";
  other_process other(
      [&](const other_process& parent) { parent.tell(refusal_of([&] { switch_store::open(path())->serve(); })); });
  EXPECT_EQ(other.hear(), expected);
  EXPECT_EQ(refusal_of([&] { store->serve(); }), expected);
  make_map_of_3(*store); // still the manager's
}

// The manager's first look at the switch is behind every change of others.
TEST_F(ManagerLock, WaitsForAChangeThatIsUnderWay) {
  other_process other([&](const other_process& parent) {
    auto store = switch_store::open(path());
    store->change_map([&](port_map& map) {
      map = map_of(3);
      parent.tell("changing");
      parent.hear();
    });
  });
  ASSERT_EQ(other.hear(), "changing");
  auto store = switch_store::open(path());
  std::atomic<bool> serving = false;
  int number = -1;
  std::thread manager([&] {
    auto lock = store->serve();
    serving = true;
    number = number_of(store->describe().map);
  });
  usleep(50000); // time enough to serve too early
  EXPECT_FALSE(serving);
  other.tell("go on");
  manager.join();
  EXPECT_EQ(number, 3);
}

TEST_F(ManagerLock, ChildOfTheManagerIsNoManagerAndLeavesItTheLock) {
  auto store = switch_store::open(path());
  auto lock = store->serve();
  other_process child([&](const other_process& parent) {
    parent.tell(refusal_of([&] { make_map_of_3(*store); }));
    lock.reset();
    parent.tell("done");
  });
  EXPECT_EQ(child.hear(), refusal_while_served_by(getpid()));
  EXPECT_EQ(child.hear(), "done");
  child.end();
  EXPECT_EQ(refusal_of([&] { switch_store::create(path(), small_switch()); }), refusal_while_served_by(getpid()));
  make_map_of_3(*store);
}

// The file alone is no lock.
TEST_F(ManagerLock, NumberThatADeadManagerLeftDoesNotMatter) {
  folder_.file("switch/manager.lock", "1\n");
  auto store = switch_store::open(path());
  make_map_of_3(*store);
  auto lock = store->serve();
  EXPECT_EQ(refusal_of([&] { make_map_of_3(*switch_store::open(path())); }), refusal_while_served_by(getpid()));
}

TEST_F(ManagerLock, ManagerWithoutANumberYetIsToldWithoutOne) {
  auto store = switch_store::open(path());
  auto lock = store->serve();
  fs::resize_file(path() + "/manager.lock", 0);
  EXPECT_EQ(
      refusal_of([&] { make_map_of_3(*switch_store::open(path())); }),
      path() + ": a manager serves this switch and alone may change it; have the manager do it, or end the manager first");
}

TEST_F(ManagerLock, FileThatCannotBeOpenedIsTold) {
  fs::remove(path() + "/manager.lock");
  fs::create_directory(path() + "/manager.lock");
  auto store = switch_store::open(path());
  EXPECT_EQ(refusal_of([&] { store->serve(); }), path() + ": cannot be locked: Is a directory");
  EXPECT_EQ(store->describe(), small_switch());
}

TEST_F(ManagerLock, SwitchInMemoryNeedsNone) {
  auto store = switch_store::in_memory(small_switch());
  EXPECT_EQ(store->serve(), nullptr);
  make_map_of_3(*store);
  EXPECT_EQ(number_of(store->describe().map), 3);
}

// What a switch that was removed by hand left behind.
TEST_F(ManagerLock, FolderWithTheLockAndTheMessagesAloneHasRoomForASwitch) {
  const std::string left = folder_.path("left");
  fs::create_directories(left + "/msgq");
  folder_.file("left/manager.lock", "");
  folder_.file("left/lock.mdb", "");
  switch_store::create(left, small_switch());
  EXPECT_EQ(switch_store::open(left)->describe(), small_switch());
}

} // namespace
