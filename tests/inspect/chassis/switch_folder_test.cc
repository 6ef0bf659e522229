// A switch's folder, changed and watched.
#include <gmock/gmock.h>

#include <filesystem>

#include "inspect/chassis/switch_changes.h"
#include "inspect/chassis/switch_watch.h"
#include "inspect_test.h"
#include "test_switch.h"

namespace inspect {
namespace {

using inspect_test::complaint;
using inspect_test::platform_failure;

class SwitchFolder : public testing::Test {
 protected:
  SwitchFolder() : made(create_folder(path, vswitch_test::small_switch())) {}

  map_change set_pn(const std::string& pn) const {
    return change_map(path, [&](const auto& chassis) { return edit_of_port(chassis, {"fc1/1", pn, {}, {}, {}}); });
  }

  vswitch_test::temporary_folder folder;
  const std::string path = folder.path("d");
  const vswitch::chassis_description made;
};

TEST_F(SwitchFolder, IsReadBackAsItWasMade) {
  EXPECT_EQ(made, vswitch_test::small_switch());
}

TEST_F(SwitchFolder, ChangeMovesTheCounterAndTellsWhatDiffers) {
  const map_change change = set_pn("5");
  EXPECT_TRUE(change.changed);
  EXPECT_EQ(change.change_counter, 8u);
  ASSERT_EQ(change.differences.size(), 2u);
  EXPECT_EQ(change.differences[0].field, "pn");
  EXPECT_EQ(change.differences[1].where, "PA 20");
}

TEST_F(SwitchFolder, ChangeOfNothingLeavesTheCounter) {
  const map_change change = set_pn("0");
  EXPECT_FALSE(change.changed);
  EXPECT_EQ(change.change_counter, 7u);
  EXPECT_TRUE(change.differences.empty());
}

TEST_F(SwitchFolder, RefusedChangeLeavesTheSwitch) {
  EXPECT_NE(complaint([&] { set_pn("512"); }), "(nothing is wrong)");
  EXPECT_EQ(set_pn("0").change_counter, 7u);
}

TEST_F(SwitchFolder, TimeReferenceIsSetOnce) {
  const vswitch::time_reference reference{{1, 2}, 3};
  EXPECT_EQ(change_time_reference(path, 10, reference).size(), 1u);
  EXPECT_TRUE(change_time_reference(path, 10, reference).empty());
  EXPECT_EQ(set_pn("0").change_counter, 7u);
}

TEST_F(SwitchFolder, ThatIsNotThereIsAFailure) {
  const std::string nowhere = folder.path("nowhere");
  EXPECT_NE(platform_failure([&] { change_map(nowhere, [](const auto&) { return edit_of_address("20", "1"); }); }),
            "(nothing is wrong)");
  EXPECT_NE(platform_failure([&] { change_time_reference(nowhere, 10, std::nullopt); }), "(nothing is wrong)");
  EXPECT_NE(platform_failure([&] { switch_watch watch(nowhere); }), "(nothing is wrong)");
}

TEST_F(SwitchFolder, WatchSeesEachChangeOnce) {
  switch_watch watch(path);
  EXPECT_EQ(watch.seen().change_counter, 7u);
  EXPECT_FALSE(watch.look().has_value());
  set_pn("5");
  const auto found = watch.look();
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->size(), 2u);
  EXPECT_EQ(watch.seen().change_counter, 8u);
  EXPECT_EQ(watch.seen().map.port_to_pn[0].pn, 5);
  EXPECT_FALSE(watch.look().has_value());
}

TEST_F(SwitchFolder, WatchEndsWithItsChassis) {
  switch_watch watch(path);
  auto other = vswitch_test::small_switch();
  other.type = 33;
  other.change_counter = 9;
  create_folder(path, other);
  EXPECT_EQ(platform_failure([&] { watch.look(); }),
            "the switch was replaced by one with another chassis; start watch again");
}

TEST_F(SwitchFolder, WatchEndsWithItsFolder) {
  switch_watch watch(path);
  std::filesystem::remove_all(path);
  EXPECT_EQ(platform_failure([&] { watch.look(); }), path + ": the switch was removed");
  create_folder(path, vswitch_test::small_switch());
  EXPECT_EQ(platform_failure([&] { watch.look(); }), path + ": the switch was removed and made anew; start watch again");
}

} // namespace
} // namespace inspect
