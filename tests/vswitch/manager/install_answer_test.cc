// VSAN install: which messages are taken, and what a switch makes of them.
#include <gmock/gmock.h>
#include <install_answer.h>
#include <vswitch/vswitch.h>

#include <cstring>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::ElementsAre;
using testing::IsEmpty;

// The bytes of an install message, as they are drawn in libchnsw.h.
payload_bytes install_message(uint8_t byte0, uint32_t bitmap_bytes, uint32_t count, size_t indexes) {
  payload_bytes bytes(521 + 4 * indexes);
  bytes[0] = std::byte{byte0};
  std::memcpy(&bytes[1], &bitmap_bytes, 4);
  bytes[5 + 1] = std::byte{0x20}; // VSAN 10
  std::memcpy(&bytes[517], &count, 4);
  return bytes;
}

TEST(InstallMessage, IsAsLongAsItsCountSays) {
  EXPECT_TRUE(is_well_formed_install(install_message(1, 512, 0, 0)));
  EXPECT_TRUE(is_well_formed_install(install_message(0, 512, 3, 3)));
  EXPECT_FALSE(is_well_formed_install(install_message(1, 512, 2, 3)));
  EXPECT_FALSE(is_well_formed_install(install_message(1, 512, 4, 3)));
}

TEST(InstallMessage, CountThatIsRightIn32BitsOnlyIsRefused) {
  EXPECT_FALSE(is_well_formed_install(install_message(1, 512, 0x40000000, 0)));
  EXPECT_FALSE(is_well_formed_install(install_message(1, 512, 0x40000001, 1)));
  EXPECT_FALSE(is_well_formed_install(install_message(1, 512, 0xFFFFFFFF, 0)));
}

TEST(InstallMessage, EveryTruncationIsRefused) {
  const auto whole = install_message(1, 512, 2, 2);
  for (size_t size = 0; size < whole.size(); ++size)
    EXPECT_FALSE(is_well_formed_install(payload_view(whole).first(size))) << size;
}

TEST(InstallMessage, NeedsAWholeBitmapAndAKnownFirstByte) {
  EXPECT_FALSE(is_well_formed_install(install_message(1, 511, 0, 0)));
  EXPECT_FALSE(is_well_formed_install(install_message(1, 0, 0, 0)));
  EXPECT_FALSE(is_well_formed_install(install_message(2, 512, 0, 0)));
  EXPECT_FALSE(is_well_formed_install(install_message(255, 512, 0, 0)));
}

class InstallOnSwitch : public testing::Test {
 protected:
  InstallOnSwitch() { use_switch(switch_store::in_memory(full_switch())); }
  ~InstallOnSwitch() override { use_switch(nullptr); }

  uint32_t install(const install_request& request) {
    return install_on_switch(*switch_in_use(), *chassis_in_use(), request, changes_, why_);
  }
  static chassis_description now() { return switch_in_use()->describe(); }

  // The changes, as "+30" and "-10".
  std::vector<std::string> announced() const {
    std::vector<std::string> texts;
    for (const auto& change : changes_) texts.push_back((change.enabled ? "+" : "-") + std::to_string(change.vsan));
    return texts;
  }

  std::vector<vsan_change> changes_;
  std::string why_;
};

TEST_F(InstallOnSwitch, IsOneChangeOfTheMap) {
  EXPECT_EQ(install({true, {kFc1_1, kFc1_2}, {40, 50}}), 0u);
  EXPECT_EQ(now().change_counter, 8u);
  EXPECT_THAT(now().map.port_to_pn[0].vsans, ElementsAre(10, 40, 50, 0, 0, 0, 0, 0));
  EXPECT_THAT(now().map.port_to_pn[1].vsans, ElementsAre(20, 40, 50, 0, 0, 0, 0, 0));
}

TEST_F(InstallOnSwitch, ThatIsRefusedLeavesMapAndCounter) {
  EXPECT_EQ(install({true, {kFc1_1, kFc1_49}, {40}}), 0x4085004Au);
  EXPECT_EQ(install({true, {kFc1_1}, {1, 2, 3, 4, 5, 6, 7, 8}}), 0x4085000Au);
  EXPECT_EQ(now(), full_switch());
  EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(InstallOnSwitch, ThatChangesNothingLeavesTheCounter) {
  EXPECT_EQ(install({true, {kFc1_1}, {10}}), 0u);
  EXPECT_EQ(install({false, {kFc1_1}, {40}}), 0u);
  EXPECT_EQ(now().change_counter, 7u);
  EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(InstallOnSwitch, TellsTheVsansThatBecomeEnabled) {
  EXPECT_EQ(install({true, {kFc1_1}, {20, 30, 40, 4095}}), 0u);
  EXPECT_THAT(announced(), ElementsAre("+40", "+4095"));
}

TEST_F(InstallOnSwitch, TellsTheVsansThatAreEnabledNoMore) {
  EXPECT_EQ(install({false, {kPortChannel5}, {10, 30}}), 0u); // fc1/1 is bound to 10 still
  EXPECT_THAT(announced(), ElementsAre("-30"));
}

TEST(InstallLog, NamesVsansAndInterfaces) {
  EXPECT_EQ(description_of({true, {kFc1_1, kFcip3}, {10, 20}}), "install of VSANs 10 20 on fc1/1 fcip3");
  EXPECT_EQ(description_of({false, {}, {}}), "uninstall of VSANs from");
  EXPECT_EQ(description_of({false, std::vector<uint32_t>(9, kFc1_1), {1, 2, 3, 4, 5, 6, 7, 8, 9}}),
            "uninstall of VSANs 1 2 3 4 5 6 7 8 ... (9 of them) from fc1/1 fc1/1 fc1/1 fc1/1 fc1/1 fc1/1 fc1/1 fc1/1 ... "
            "(9 of them)");
}

} // namespace
