// A switch's folder: made, opened, changed, replaced, refused.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <lmdb.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vswitch/switch_store.h>

#include <cstring>
#include <filesystem>

#include "child_end.h"
#include "test_switch.h"

namespace {

using namespace vswitch;
using ::testing::ElementsAre;
using ::testing::StartsWith;
using vswitch_test::map_of;
using vswitch_test::number_of;
using vswitch_test::small_switch;
namespace fs = std::filesystem;

template <typename action>
std::string refusal_of(action act) {
  try {
    act();
  } catch (const switch_error& error) {
    return error.what();
  }
  return "";
}

std::span<const std::byte> as_key(const uint32_t& key) {
  return std::as_bytes(std::span(&key, 1));
}

uint32_t counter_in(switch_store& store) {
  const uint32_t key = FICON_PMAP_ELEM_CHANGE_COUNTER;
  uint32_t counter = 0;
  EXPECT_TRUE(store.look_up(FICON_ELEMDB_TABLE_PMAP, as_key(key), &counter, sizeof counter));
  return counter;
}

// A folder and a switch in memory answer alike.
class SwitchStore : public ::testing::TestWithParam<bool> {
 protected:
  std::unique_ptr<switch_store> make(const chassis_description& chassis) {
    if (GetParam()) return switch_store::in_memory(chassis);
    switch_store::create(folder_.path("switch"), chassis);
    return switch_store::open(folder_.path("switch"));
  }

  vswitch_test::temporary_folder folder_;
};

INSTANTIATE_TEST_SUITE_P(Kinds, SwitchStore, ::testing::Bool(),
                         [](const auto& test) { return test.param ? "InMemory" : "InAFolder"; });

TEST_P(SwitchStore, DescribesWhatItWasMadeFrom) {
  EXPECT_EQ(make(small_switch())->describe(), small_switch());
}

TEST_P(SwitchStore, DescribesAChassisAlmostWithoutAnything) {
  chassis_description chassis;
  chassis.platform_record[2] = 1;
  EXPECT_EQ(make(chassis)->describe(), chassis);
}

TEST_P(SwitchStore, ElementsHaveTheSizesThatClientsAskFor) {
  const std::pair<uint32_t, size_t> sizes[] = {{1, 512}, {2, 1024}, {3, 25600}, {4, 32}, {5, 2560}, {6, 4}};
  auto store = make(small_switch());
  for (const auto& [key, size] : sizes) {
    std::string value(size + 8, '\xEE');
    for (int time = 0; time < 2; ++time) { // the second time from where the first one found it
      EXPECT_TRUE(store->look_up(2, as_key(key), value.data(), value.size()));
      EXPECT_NE(value.substr(size - 4, 4), "\xEE\xEE\xEE\xEE") << key;
      EXPECT_EQ(value.substr(size), std::string(8, '\xEE')) << key;
    }
  }
}

TEST_P(SwitchStore, NoMoreThanIsAskedForIsCopied) {
  auto store = make(small_switch());
  for (int time = 0; time < 2; ++time) {
    std::string value(100, '\xEE');
    const uint32_t key = FICON_PMAP_ELEM_PORTPN;
    EXPECT_TRUE(store->look_up(2, as_key(key), value.data(), 10));
    EXPECT_EQ(value.substr(10), std::string(90, '\xEE'));
    uint16_t pa = 0;
    std::memcpy(&pa, value.data() + 2, sizeof pa);
    EXPECT_EQ(pa, 0x20);
    EXPECT_TRUE(store->look_up(2, as_key(key), nullptr, 0));
  }
}

TEST_P(SwitchStore, MissingElementsTablesAndOddKeysAreNotThere) {
  auto store = make(small_switch());
  uint32_t value = 0xEEEEEEEE;
  for (uint32_t key : {0u, 7u, 0xFFFFFFFFu}) EXPECT_FALSE(store->look_up(2, as_key(key), &value, sizeof value));
  const uint32_t key = FICON_PMAP_ELEM_CHANGE_COUNTER;
  for (uint32_t table : {0u, 1u, 3u, 0xFFFFFFFFu}) EXPECT_FALSE(store->look_up(table, as_key(key), &value, sizeof value));
  EXPECT_FALSE(store->look_up(2, as_key(key).first(3), &value, sizeof value));
  EXPECT_FALSE(store->look_up(2, as_key(key).first(0), &value, sizeof value));
  const std::string long_key(10000, 'k');
  EXPECT_FALSE(store->look_up(2, std::as_bytes(std::span(long_key)), &value, sizeof value));
  EXPECT_EQ(value, 0xEEEEEEEEu);
}

TEST_P(SwitchStore, ChangeOfTheMapMovesTheCounterAndNothingElse) {
  auto store = make(small_switch());
  EXPECT_EQ(store->change_map([](port_map& map) { map.port_to_pn[5].pn = 77; }), 8u);
  auto expected = small_switch();
  expected.map.port_to_pn[5].pn = 77;
  expected.change_counter = 8;
  EXPECT_EQ(store->describe(), expected);
  EXPECT_EQ(counter_in(*store), 8u);
}

TEST_P(SwitchStore, ChangeIsSeenByTheNextLookUp) {
  auto store = make(small_switch());
  for (uint32_t expected = 8; expected < 40; ++expected) {
    store->change_map([&](port_map& map) { map = map_of(static_cast<uint16_t>(expected)); });
    EXPECT_EQ(counter_in(*store), expected);
    std::array<uint16_t, 1280> vsans{};
    const uint32_t key = FICON_PMAP_ELEM_PORTVSAN;
    EXPECT_TRUE(store->look_up(2, as_key(key), vsans.data(), sizeof vsans));
    EXPECT_EQ(vsans[1279], expected);
  }
}

TEST_P(SwitchStore, ChangeSeesTheMapAsItIs) {
  auto store = make(small_switch());
  store->change_map([](port_map& map) { EXPECT_EQ(map, small_switch().map); });
}

TEST_P(SwitchStore, WhatAChangeThrowsLeavesTheOldMap) {
  auto store = make(small_switch());
  EXPECT_THROW(store->change_map([](port_map& map) {
    map = map_of(9);
    throw std::out_of_range("no such port");
  }),
               std::out_of_range);
  EXPECT_EQ(store->describe(), small_switch());
  EXPECT_EQ(store->change_map([](port_map&) {}), 8u); // and the switch can be changed again
}

TEST_P(SwitchStore, LookUpWithinAChangeSeesTheOldMap) {
  auto store = make(small_switch());
  store->change_map([&](port_map& map) {
    map = map_of(9);
    EXPECT_EQ(counter_in(*store), 7u);
  });
}

TEST_P(SwitchStore, TimeReferenceIsTheRecordThatClientsRead) {
  auto chassis = small_switch();
  chassis.times[10] = {{1420448823, -5}, 0xCE4F44C4E9760000};
  auto store = make(chassis);
  EXPECT_EQ(store->describe(), chassis);
  const uint32_t vsan = 10;
  std::array<unsigned char, 48> value;
  value.fill(0xEE);
  EXPECT_TRUE(store->look_up(1, as_key(vsan), value.data(), value.size()));
  const int32_t seconds = 1420448823;
  const int32_t microseconds = -5;
  const uint64_t tod = 0xCE4F44C4E9760000;
  std::array<unsigned char, 48> expected{};
  std::memcpy(&expected[12], &seconds, sizeof seconds);
  std::memcpy(&expected[16], &microseconds, sizeof microseconds);
  std::memcpy(&expected[24], &tod, sizeof tod);
  std::fill(expected.begin() + 40, expected.end(), 0xEE);
  EXPECT_EQ(value, expected);
  for (uint32_t other : {0u, 9u, 11u, 10u << 24}) EXPECT_FALSE(store->look_up(1, as_key(other), value.data(), 40));
}

TEST_P(SwitchStore, SetTimeReferenceReturnsWhatWasThereAndLeavesTheRest) {
  auto store = make(small_switch());
  const uint64_t generation = store->generation();
  const time_reference first{{1, 2}, 3};
  const time_reference second{{4, 5}, 6};
  EXPECT_FALSE(store->set_time_reference(10, first));
  EXPECT_FALSE(store->set_time_reference(4095, second));
  EXPECT_EQ(store->set_time_reference(10, second), first);
  auto expected = small_switch();
  expected.times = {{10, second}, {4095, second}};
  EXPECT_EQ(store->describe(), expected);
  EXPECT_EQ(store->set_time_reference(10, std::nullopt), second);
  EXPECT_FALSE(store->set_time_reference(10, std::nullopt));
  expected.times.erase(10);
  EXPECT_EQ(store->describe(), expected);
  EXPECT_EQ(counter_in(*store), 7u);
  EXPECT_EQ(store->generation(), generation);
}

TEST_P(SwitchStore, ChangeOfTheMapLeavesTheTimeReferences) {
  auto chassis = small_switch();
  chassis.times[10] = {{1, 2}, 3};
  auto store = make(chassis);
  store->change_map([](port_map& map) { map = map_of(9); });
  EXPECT_TRUE(store->describe().times == chassis.times);
}

TEST_P(SwitchStore, ChangeOfTheMapLeavesTheNodes) {
  auto chassis = small_switch();
  chassis.nodes[0x01000000].sequence = "0000000SN042";
  auto store = make(chassis);
  store->change_map([](port_map& map) { map = map_of(9); });
  EXPECT_EQ(store->describe().nodes, chassis.nodes);
}

// Clients take 0 for a counter that could not be read.
TEST_P(SwitchStore, CounterWrapsPastZero) {
  auto chassis = small_switch();
  chassis.change_counter = 0xFFFFFFFE;
  auto store = make(chassis);
  EXPECT_EQ(store->change_map([](port_map&) {}), 0xFFFFFFFFu);
  EXPECT_EQ(store->change_map([](port_map&) {}), 1u);
}

TEST_P(SwitchStore, ForkedProcessReadsTheSwitch) {
  auto store = make(small_switch());
  counter_in(*store); // the parent's reader is in use
  const pid_t child = fork();
  if (child == 0) {
    const bool same = counter_in(*store) == 7 && store->generation() == 1 && store->describe() == small_switch();
    store->change_map([](port_map& map) { map = map_of(3); });
    end_child(same && number_of(store->describe().map) == 3 ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  // The folder is shared with the child; what was in memory is this process's own.
  EXPECT_EQ(number_of(store->describe().map), GetParam() ? number_of(small_switch().map) : 3);
  EXPECT_EQ(counter_in(*store), GetParam() ? 7u : 8u);
}

TEST_P(SwitchStore, GenerationStaysWhenTheMapChanges) {
  auto store = make(small_switch());
  const uint64_t before = store->generation();
  EXPECT_NE(before, 0u);
  store->change_map([](port_map& map) { map = map_of(3); });
  EXPECT_EQ(store->generation(), before);
}

TEST(SwitchInMemory, LeavesNothingBehind) {
  vswitch_test::temporary_folder folder;
  const auto before = fs::current_path();
  fs::current_path(folder.path());
  auto store = switch_store::in_memory(small_switch());
  counter_in(*store);
  EXPECT_TRUE(fs::is_empty(folder.path()));
  fs::current_path(before);
}

// The child has a copy of its own, whatever its parent does to the pages that both once read.
TEST(SwitchInMemory, ForkedProcessKeepsWhatWasThereWhenItFirstLooked) {
  auto chassis = small_switch();
  chassis.map = map_of(1);
  auto store = switch_store::in_memory(chassis);
  const uint32_t key = FICON_PMAP_ELEM_PORTVSAN;
  std::array<uint16_t, 1280> vsans{};
  ASSERT_TRUE(store->look_up(2, as_key(key), vsans.data(), sizeof vsans)); // the parent knows the place now
  int looked[2];
  int changed[2];
  ASSERT_EQ(pipe(looked) | pipe(changed), 0);
  char word = 0;
  const pid_t child = fork();
  if (child == 0) {
    bool good = counter_in(*store) == 7 && write(looked[1], &word, 1) == 1 && read(changed[0], &word, 1) == 1;
    good = good && store->look_up(2, as_key(key), vsans.data(), sizeof vsans);
    for (uint16_t vsan : vsans) good = good && vsan == 1;
    end_child(good ? 0 : 1);
  }
  ASSERT_EQ(read(looked[0], &word, 1), 1);
  for (uint16_t number = 2; number < 10; ++number) store->change_map([&](port_map& map) { map = map_of(number); });
  ASSERT_EQ(write(changed[1], &word, 1), 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  for (int end : {looked[0], looked[1], changed[0], changed[1]}) close(end);
}

TEST(SwitchInMemory, TwoAreApart) {
  auto one = switch_store::in_memory(small_switch());
  auto two = switch_store::in_memory(small_switch());
  one->change_map([](port_map& map) { map = map_of(3); });
  EXPECT_EQ(two->describe(), small_switch());
}

class SwitchFolder : public ::testing::Test {
 protected:
  std::string path(const std::string& name = "switch") const { return folder_.path(name); }
  std::vector<std::string> names_in(const std::string& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  // Writes a record of the database "chassis" by hand, or takes it away.
  void put_chassis_record(const std::string& name, std::optional<std::string> content) const {
    MDB_env* environment = nullptr;
    MDB_txn* transaction = nullptr;
    MDB_dbi chassis = 0;
    mdb_env_create(&environment);
    mdb_env_set_maxdbs(environment, 6);
    ASSERT_EQ(mdb_env_open(environment, path().c_str(), 0, 0664), 0);
    ASSERT_EQ(mdb_txn_begin(environment, nullptr, 0, &transaction), 0);
    ASSERT_EQ(mdb_dbi_open(transaction, "chassis", 0, &chassis), 0);
    MDB_val key{name.size(), const_cast<char*>(name.data())};
    MDB_val value{content ? content->size() : 0, content ? content->data() : nullptr};
    ASSERT_EQ(content ? mdb_put(transaction, chassis, &key, &value, 0) : mdb_del(transaction, chassis, &key, nullptr), 0);
    ASSERT_EQ(mdb_txn_commit(transaction), 0);
    mdb_env_close(environment);
  }

  vswitch_test::temporary_folder folder_;
};

TEST_F(SwitchFolder, IsMadeInAnEmptyFolderToo) {
  fs::create_directory(path());
  switch_store::create(path(), small_switch());
  EXPECT_EQ(switch_store::open(path())->describe(), small_switch());
  EXPECT_THAT(names_in(path()), ElementsAre("data.mdb", "lock.mdb", "manager.lock"));
}

// As a copy leaves it that did not end. Touching a page that is not there would end the process.
TEST_F(SwitchFolder, FileThatWasCutShortIsRefused) {
  switch_store::create(path(), small_switch());
  const std::string data = path() + "/data.mdb";
  const auto whole = fs::file_size(data);
  fs::resize_file(data, 8192);
  EXPECT_EQ(refusal_of([&] { switch_store::open(path()); }),
            path() + ": is damaged: data.mdb has 8192 bytes, expected are " + std::to_string(whole) +
                "; copy it anew, or make the switch again in another folder");
}

TEST_F(SwitchFolder, OpenTwiceInOneProcessIsOneSwitch) {
  switch_store::create(path(), small_switch());
  auto one = switch_store::open(path());
  auto two = switch_store::open(path() + "/../switch");
  one->change_map([](port_map& map) { map = map_of(3); });
  EXPECT_EQ(number_of(two->describe().map), 3);
  one.reset();
  EXPECT_EQ(two->change_map([](port_map& map) { map = map_of(4); }), 9u);
  EXPECT_EQ(number_of(switch_store::open(path())->describe().map), 4);
}

TEST_F(SwitchFolder, ReplacedSwitchIsSeenByWhoHasItOpen) {
  switch_store::create(path(), small_switch());
  auto store = switch_store::open(path());
  const uint64_t generation = store->generation();
  auto other = small_switch();
  other.name = "other";
  other.line_cards.pop_back();
  other.interfaces.clear();
  other.vsans.clear();
  other.times = {{20, {{1, 2}, 3}}};
  other.nodes[0x01000000].tag = 7;
  other.change_counter = 100;
  store->set_time_reference(10, time_reference{{4, 5}, 6});
  switch_store::create(path(), other);
  EXPECT_NE(store->generation(), generation);
  EXPECT_EQ(store->describe(), other);
}

TEST_F(SwitchFolder, StateTellsWhetherItWasRemovedOrMadeAnew) {
  switch_store::create(path(), small_switch());
  auto store = switch_store::open(path());
  store->change_map([](port_map& map) { map = map_of(3); });
  switch_store::create(path(), small_switch());
  EXPECT_EQ(store->presence(), switch_presence::in_place);
  fs::rename(path(), path("moved"));
  EXPECT_EQ(store->presence(), switch_presence::removed);
  switch_store::create(path(), small_switch());
  EXPECT_EQ(store->presence(), switch_presence::made_anew);
  EXPECT_EQ(switch_store::open(path())->presence(), switch_presence::in_place);
  fs::remove(path() + "/data.mdb");
  EXPECT_EQ(store->presence(), switch_presence::removed);
}

TEST(SwitchInMemory, IsAlwaysInPlace) {
  EXPECT_EQ(switch_store::in_memory(small_switch())->presence(), switch_presence::in_place);
}

TEST_F(SwitchFolder, ReplacementMovesTheCounterWhenTheMapDiffers) {
  switch_store::create(path(), small_switch());
  auto other = small_switch();
  other.map.port_to_pn[0].pa = 0x21;
  switch_store::create(path(), other);
  EXPECT_EQ(switch_store::open(path())->describe().change_counter, 8u);
}

TEST_F(SwitchFolder, ReplacementKeepsTheCounterWhenTheMapIsTheSame) {
  switch_store::create(path(), small_switch());
  auto other = small_switch();
  other.name = "other";
  other.change_counter = 2;
  switch_store::create(path(), other);
  EXPECT_EQ(switch_store::open(path())->describe().change_counter, 7u);
}

TEST_F(SwitchFolder, HalfMadeSwitchIsNoneAndCanBeMadeAgain) {
  fs::create_directory(path());
  MDB_env* environment = nullptr;
  mdb_env_create(&environment);
  ASSERT_EQ(mdb_env_open(environment, path().c_str(), 0, 0664), 0); // what a creation leaves that is killed early
  mdb_env_close(environment);
  EXPECT_EQ(refusal_of([&] { switch_store::open(path()); }),
            path() + ": is not a switch: what its data.mdb holds is something else or unfinished");
  switch_store::create(path(), small_switch());
  EXPECT_EQ(switch_store::open(path())->describe(), small_switch());
}

TEST_F(SwitchFolder, FolderOfSomethingElseIsRefusedAndKept) {
  fs::create_directory(path());
  folder_.file("switch/notes.txt", "mine");
  EXPECT_EQ(
      refusal_of([&] { switch_store::create(path(), small_switch()); }),
      path() + ": is not empty and is not a switch (it holds notes.txt); name a folder that is empty or does not exist");
  EXPECT_THAT(names_in(path()), ElementsAre("notes.txt"));
}

TEST_F(SwitchFolder, DatabaseOfSomethingElseIsRefusedAndKept) {
  fs::create_directory(path());
  MDB_env* environment = nullptr;
  MDB_txn* transaction = nullptr;
  MDB_dbi main = 0;
  mdb_env_create(&environment);
  ASSERT_EQ(mdb_env_open(environment, path().c_str(), 0, 0664), 0);
  ASSERT_EQ(mdb_txn_begin(environment, nullptr, 0, &transaction), 0);
  ASSERT_EQ(mdb_dbi_open(transaction, nullptr, 0, &main), 0);
  char word[] = "mine";
  MDB_val value{4, word};
  ASSERT_EQ(mdb_put(transaction, main, &value, &value, 0), 0);
  ASSERT_EQ(mdb_txn_commit(transaction), 0);
  mdb_env_close(environment);
  const std::string before = vswitch_test::text_of_file(path() + "/data.mdb");

  EXPECT_EQ(refusal_of([&] { switch_store::create(path(), small_switch()); }),
            path() + ": holds a database of something else; name another folder");
  EXPECT_EQ(refusal_of([&] { switch_store::open(path()); }),
            path() + ": is not a switch: what its data.mdb holds is something else or unfinished");
  EXPECT_EQ(vswitch_test::text_of_file(path() + "/data.mdb"), before);
}

TEST_F(SwitchFolder, FileThatIsNoDatabaseIsRefusedAndKept) {
  fs::create_directory(path());
  folder_.file("switch/data.mdb", std::string(100000, 'x'));
  EXPECT_THAT(refusal_of([&] { switch_store::create(path(), small_switch()); }),
              StartsWith(path() + ": cannot be opened: MDB_INVALID"));
  EXPECT_THAT(refusal_of([&] { switch_store::open(path()); }), StartsWith(path() + ": cannot be opened: MDB_INVALID"));
  EXPECT_EQ(vswitch_test::text_of_file(path() + "/data.mdb"), std::string(100000, 'x'));
}

TEST_F(SwitchFolder, PlacesThatCannotBeASwitch) {
  folder_.file("file", "");
  fs::create_directory(path("empty"));
  EXPECT_EQ(refusal_of([&] { switch_store::open(path("none")); }), path("none") + ": there is no such folder");
  EXPECT_EQ(refusal_of([&] { switch_store::open(path("file")); }), path("file") + ": is a file; a switch is a folder");
  EXPECT_EQ(refusal_of([&] { switch_store::open(path("empty")); }),
            path("empty") + ": is not a switch: there is no data.mdb in it");
  EXPECT_EQ(refusal_of([&] { switch_store::create(path("file"), small_switch()); }),
            path("file") + ": is not a folder; name a folder that is empty or does not exist");
  EXPECT_EQ(refusal_of([&] { switch_store::create(path("none/below"), small_switch()); }),
            path("none/below") + ": cannot be made: No such file or directory");
  EXPECT_TRUE(fs::is_empty(path("empty")));
}

TEST_F(SwitchFolder, LayoutOfAnotherVersionIsNotRead) {
  switch_store::create(path(), small_switch());
  const uint32_t format = 2;
  put_chassis_record("format", std::string(reinterpret_cast<const char*>(&format), sizeof format));
  const std::string expected = path() + ": the switch is stored in format 2; this program reads format 1";
  EXPECT_EQ(refusal_of([&] { switch_store::open(path()); }), expected);
  EXPECT_EQ(refusal_of([&] { switch_store::create(path(), small_switch()); }), expected);
}

// As folders were before they could hold nodes.
TEST_F(SwitchFolder, FolderWithoutARecordOfNodesHasNone) {
  auto with_node = small_switch();
  with_node.nodes[0x01000000].tag = 7;
  switch_store::create(path(), with_node);
  put_chassis_record("nodes", std::nullopt);
  EXPECT_EQ(switch_store::open(path())->describe(), small_switch());
}

TEST_F(SwitchFolder, NodesOfTheReplacedSwitchAreGone) {
  auto with_node = small_switch();
  with_node.nodes[0x01000000].tag = 7;
  switch_store::create(path(), with_node);
  switch_store::create(path(), small_switch());
  EXPECT_EQ(switch_store::open(path())->describe(), small_switch());
}

TEST_F(SwitchFolder, RecordOfNodesThatIsCutIsDamaged) {
  switch_store::create(path(), small_switch());
  put_chassis_record("nodes", std::string(39, '0'));
  auto store = switch_store::open(path());
  EXPECT_EQ(refusal_of([&] { store->describe(); }), path() + ": the switch's database is damaged: nodes");
}

// A writer that failed in the middle, here for want of room, leaves the switch that was there.
TEST_F(SwitchFolder, ReplacementThatFailsLeavesTheOldSwitch) {
  switch_store::create(path(), small_switch());
  auto too_large = small_switch();
  too_large.name = std::string(size_t{150} << 20, 'x');
  too_large.line_cards[0].name = too_large.name; // the second one finds no room
  EXPECT_NE(refusal_of([&] { switch_store::create(path(), too_large); }), "");
  EXPECT_EQ(switch_store::open(path())->describe(), small_switch());
}

TEST_F(SwitchFolder, StaysSmallHoweverOftenItChanges) {
  switch_store::create(path(), small_switch());
  auto store = switch_store::open(path());
  for (uint16_t i = 0; i < 500; ++i) {
    store->change_map([&](port_map& map) { map = map_of(i); });
    counter_in(*store);
  }
  EXPECT_LT(fs::file_size(path() + "/data.mdb"), 1u << 20);
}

} // namespace
