// What install and swap make of a port map.
#include <gmock/gmock.h>
#include <map_changes.h>
#include <vswitch/vswitch.h>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;
using testing::ElementsAre;

class MapChanges : public testing::Test {
 protected:
  MapChanges() : chassis_(full_switch()), map_(chassis_.map) { use_switch(switch_store::in_memory(chassis_)); }
  ~MapChanges() override { use_switch(nullptr); }

  uint32_t install(std::vector<uint32_t> if_indexes, std::vector<uint16_t> vsans) {
    return install_vsans(chassis_, map_, {true, std::move(if_indexes), std::move(vsans)});
  }
  uint32_t uninstall(std::vector<uint32_t> if_indexes, std::vector<uint16_t> vsans) {
    return install_vsans(chassis_, map_, {false, std::move(if_indexes), std::move(vsans)});
  }
  const auto& vsans_at(size_t index) const { return map_.port_to_pn[index].vsans; }

  uint32_t find(uint32_t if_index, map_place& place) const {
    return find_swappable(chassis_, tables_of(map_), if_index, place);
  }
  uint32_t refusal_of(uint32_t if_index) const {
    map_place place;
    return find(if_index, place);
  }
  void swap(uint32_t a, uint32_t b) {
    map_place place_a;
    map_place place_b;
    ASSERT_EQ(find(a, place_a), 0u);
    ASSERT_EQ(find(b, place_b), 0u);
    swap_interfaces(map_, place_a, place_b);
  }
  void expect_entry(size_t index, uint16_t pn, uint16_t pa, std::vector<uint16_t> vsans) const {
    const auto& entry = map_.port_to_pn[index];
    EXPECT_EQ(entry.pn, pn) << "index " << index;
    EXPECT_EQ(entry.pa, pa) << "index " << index;
    vsans.resize(8);
    EXPECT_THAT(entry.vsans, testing::ElementsAreArray(vsans)) << "index " << index;
  }

  chassis_description chassis_;
  port_map map_;
};

// ---- Install ----

TEST_F(MapChanges, InstallBindsEveryInterfaceToEveryVsan) {
  EXPECT_EQ(install({kFc1_1, kFc1_2}, {30, 40}), 0u);
  EXPECT_THAT(vsans_at(0), ElementsAre(10, 30, 40, 0, 0, 0, 0, 0));
  EXPECT_THAT(vsans_at(1), ElementsAre(20, 30, 40, 0, 0, 0, 0, 0));
  EXPECT_THAT(vsans_at(2), ElementsAre(10, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, InstallLeavesNumbersAndCurrentVsansAlone) {
  EXPECT_EQ(install({kFc1_1}, {30}), 0u);
  expect_entry(0, 0, 0x20, {10, 30});
  EXPECT_EQ(map_.port_to_vsan, chassis_.map.port_to_vsan);
  EXPECT_EQ(map_.pa_to_pn, chassis_.map.pa_to_pn);
  EXPECT_EQ(map_.pn_to_if, chassis_.map.pn_to_if);
}

TEST_F(MapChanges, InstallOfABoundVsanChangesNothing) {
  EXPECT_EQ(install({kFc1_1}, {10}), 0u);
  EXPECT_EQ(map_, chassis_.map);
}

TEST_F(MapChanges, InstallOfTheSameInterfaceTwiceBindsItOnce) {
  EXPECT_EQ(install({kFc1_1, kFc1_1}, {30}), 0u);
  EXPECT_THAT(vsans_at(0), ElementsAre(10, 30, 0, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, InstallFillsAGapBetweenSlots) {
  map_.port_to_pn[0] = {0, 0x20, {10, 0, 50}};
  EXPECT_EQ(install({kFc1_1}, {30}), 0u);
  EXPECT_THAT(vsans_at(0), ElementsAre(10, 30, 50, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, InstallOnALogicalInterfaceBindsTheEntryOfItsNumber) {
  EXPECT_EQ(install({kFcip3, kPortChannel5}, {40}), 0u);
  EXPECT_THAT(vsans_at(1024), ElementsAre(20, 40, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(vsans_at(1025), ElementsAre(10, 30, 40, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, InstallOnAMemberOfAPortChannelBindsItsOwnEntry) {
  EXPECT_EQ(install({kFc1_3}, {40}), 0u);
  EXPECT_THAT(vsans_at(2), ElementsAre(10, 40, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(vsans_at(1025), ElementsAre(10, 30, 0, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, InstallOnAPortWithoutNumbersBindsItsEntry) {
  EXPECT_EQ(install({kFc1_9}, {40}), 0u);
  expect_entry(8, 512, 512, {40});
}

TEST_F(MapChanges, InstallOnTheLastPortOfThePortMapBindsItsEntry) {
  EXPECT_EQ(install({0x01060700}, {40}), 0u); // fc7/8
  EXPECT_THAT(vsans_at(1023), ElementsAre(40, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, InstallTakesTheEighthSlot) {
  EXPECT_EQ(install({kFc1_1}, {11, 12, 13, 14, 15, 16, 17}), 0u);
  EXPECT_THAT(vsans_at(0), ElementsAre(10, 11, 12, 13, 14, 15, 16, 17));
}

TEST_F(MapChanges, InstallOfANinthVsanOfOneEntryChangesNothingAnywhere) {
  EXPECT_EQ(install({kFc1_2, kFc1_1}, {11, 12, 13, 14, 15, 16, 17, 20}), 0x4085000Au);
  EXPECT_EQ(map_, chassis_.map);
}

TEST_F(MapChanges, InstallOnSomethingWithoutAPlaceChangesNothingAnywhere) {
  for (uint32_t nowhere : {kFc1_49, kFc7_9, kFcip4, kManagement0, 0x0A000063u, 0x01FF0000u, 0x0100FF00u, 0u}) {
    EXPECT_EQ(install({kFc1_1, nowhere}, {30}), 0x4085004Au) << std::hex << nowhere;
    EXPECT_EQ(map_, chassis_.map);
  }
}

TEST_F(MapChanges, InstallOnNothingChangesNothing) {
  EXPECT_EQ(install({}, {30}), 0u);
  EXPECT_EQ(install({kFc1_1}, {}), 0u);
  EXPECT_EQ(map_, chassis_.map);
}

TEST_F(MapChanges, UninstallMovesTheVsansBehindToTheFront) {
  map_.port_to_pn[0] = {0, 0x20, {10, 20, 30, 40}};
  EXPECT_EQ(uninstall({kFc1_1}, {10, 30}), 0u);
  EXPECT_THAT(vsans_at(0), ElementsAre(20, 40, 0, 0, 0, 0, 0, 0));
}

TEST_F(MapChanges, UninstallOfAVsanThatIsNotBoundChangesNothing) {
  EXPECT_EQ(uninstall({kFc1_1}, {30}), 0u);
  EXPECT_EQ(map_, chassis_.map);
}

TEST_F(MapChanges, UninstallTakesAVsanOutOfEverySlot) {
  map_.port_to_pn[0] = {0, 0x20, {10, 20, 10, 0, 10}};
  EXPECT_EQ(uninstall({kFc1_1}, {10}), 0u);
  EXPECT_THAT(vsans_at(0), ElementsAre(20, 0, 0, 0, 0, 0, 0, 0));
}

// ---- Swap ----

TEST_F(MapChanges, SwapOfTwoPortsExchangesNumbersAddressesAndVsans) {
  swap(kFc1_1, kFc1_2);
  expect_entry(0, 1, 0x21, {20});
  expect_entry(1, 0, 0x20, {10});
  EXPECT_EQ(map_.port_to_vsan[0], 10);
  EXPECT_EQ(map_.port_to_vsan[1], 20);
  EXPECT_EQ(map_.pa_to_pn, chassis_.map.pa_to_pn);
  EXPECT_EQ(map_.pn_to_if, chassis_.map.pn_to_if);
}

TEST_F(MapChanges, SwapTwiceIsNoSwap) {
  swap(kFc1_1, kFcip3);
  swap(kFc1_1, kFcip3);
  EXPECT_EQ(map_, chassis_.map);
}

TEST_F(MapChanges, SwapOfAPortAndALogicalInterfaceTakesTheBindingAlong) {
  swap(kFc1_1, kFcip3);
  expect_entry(0, 240, 0xF0, {20});
  expect_entry(1024, 0, 0x20, {10});
  EXPECT_EQ(map_.pn_to_if[0], kFcip3);
  EXPECT_EQ(map_.pn_to_if[240], 0u);
  EXPECT_EQ(map_.port_to_vsan[0], 10);
  EXPECT_EQ(map_.port_to_vsan[1024], 0);
  EXPECT_EQ(map_.pa_to_pn[0x20], 0);
  EXPECT_EQ(map_.pa_to_pn[0xF0], 240);
}

TEST_F(MapChanges, SwapOfALogicalInterfaceAndAPortDoesTheSame) {
  swap(kFcip3, kFc1_1);
  expect_entry(0, 240, 0xF0, {20});
  expect_entry(1024, 0, 0x20, {10});
  EXPECT_EQ(map_.pn_to_if[0], kFcip3);
  EXPECT_EQ(map_.pn_to_if[240], 0u);
}

TEST_F(MapChanges, SwapOfTwoLogicalInterfacesExchangesBothBindings) {
  swap(kFcip3, kPortChannel5);
  expect_entry(1024, 241, 0xF1, {10, 30});
  expect_entry(1025, 240, 0xF0, {20});
  EXPECT_EQ(map_.pn_to_if[240], kPortChannel5);
  EXPECT_EQ(map_.pn_to_if[241], kFcip3);
}

TEST_F(MapChanges, SwappedLogicalInterfaceIsFoundUnderItsNewNumber) {
  swap(kFc1_1, kFcip3);
  map_place place;
  EXPECT_EQ(find(kFcip3, place), 0u);
  EXPECT_EQ(place.index, 1024u);
  ficon_pmap_port_entry entry = {512, 512, {}};
  uint32_t index = 0;
  EXPECT_EQ(
      ficon_pmap_get_if_to_pnpa_index_with2pmaps(kFcip3, &entry, &index, map_.pn_to_if.data(), map_.port_to_pn.data(), 0),
      0);
  EXPECT_EQ(entry.pn, 0);
  EXPECT_EQ(entry.pa, 0x20);
}

TEST_F(MapChanges, SwapTakesTheBindingOfAPortAlong) {
  map_.pn_to_if[0] = kFc1_1;
  swap(kFc1_1, kFc1_2);
  EXPECT_EQ(map_.pn_to_if[0], 0u);
  EXPECT_EQ(map_.pn_to_if[1], kFc1_1);
}

TEST_F(MapChanges, SwapLeavesABindingToAThirdInterfaceBetweenTwoPortsAlone) {
  map_.pn_to_if[0] = kFcip4;
  swap(kFc1_1, kFc1_2);
  EXPECT_EQ(map_.pn_to_if[0], kFcip4);
  EXPECT_EQ(map_.pn_to_if[1], 0u);
}

TEST_F(MapChanges, SwapOfAPortWithoutAnAddressGivesTheOtherNone) {
  map_.port_to_pn[0].pa = 512;
  swap(kFc1_1, kFc1_2);
  expect_entry(0, 1, 0x21, {20});
  expect_entry(1, 0, 512, {10});
}

TEST_F(MapChanges, SwapNeedsANumber) {
  EXPECT_EQ(refusal_of(kFc1_9), 0x4085004Au);
  EXPECT_EQ(refusal_of(kFcip4), 0x4085004Au);
  map_.port_to_pn[0].pn = 256;
  EXPECT_EQ(refusal_of(kFc1_1), 0x4085004Au);
}

TEST_F(MapChanges, SwapNeedsAnInterfaceThatIsThere) {
  for (uint32_t nowhere : {kFc1_49, kFc7_9, kManagement0, 0x0A000063u, 0x01FF0000u, 0u})
    EXPECT_EQ(refusal_of(nowhere), 0x4085004Au) << std::hex << nowhere;
}

TEST_F(MapChanges, SwapRefusesAMemberOfAPortChannelAlsoOneWithANumberOfItsOwn) {
  EXPECT_EQ(refusal_of(kFc1_3), 0x4085001Au);
  map_.pn_to_if[241] = kFc1_3;
  EXPECT_EQ(refusal_of(kFc1_3), 0x4085001Au);
}

} // namespace
