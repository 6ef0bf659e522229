// Every kind of field in which two switches can differ, as data and as people write it.
#include "inspect/chassis/switch_differences.h"

#include <gmock/gmock.h>

#include <functional>

#include "inspect_test.h"
#include "test_switch.h"
#include "vswitch/interface_index.h"

namespace inspect {
namespace {

using testing::ElementsAre;
using vswitch::chassis_description;

// "WHERE FIELD: BEFORE > AFTER" of each difference that an edit makes.
std::vector<std::string> after(const std::function<void(chassis_description&)>& edit) {
  const chassis_description before = vswitch_test::small_switch();
  chassis_description changed = before;
  edit(changed);
  std::vector<std::string> texts;
  for (const auto& found : differences(before, changed))
    texts.push_back(found.where + " " + found.field + ": " + found.before.text + " > " + found.after.text);
  return texts;
}

difference only(const std::function<void(chassis_description&)>& edit) {
  const chassis_description before = vswitch_test::small_switch();
  chassis_description changed = before;
  edit(changed);
  const auto found = differences(before, changed);
  EXPECT_EQ(found.size(), 1u);
  return found.at(0);
}

const uint32_t kFc1_1 = vswitch::fc_port_index(1, 1);

TEST(Differences, OfTheChassis) {
  EXPECT_THAT(after([](auto& chassis) { chassis.name = ""; }), ElementsAre("chassis name: small > -"));
  EXPECT_THAT(after([](auto& chassis) { chassis.type = -1; }), ElementsAre("chassis type: 32 > -1"));
  EXPECT_THAT(after([](auto& chassis) { chassis.supervisors = {5}; }), ElementsAre("chassis supervisors: 5,6 > 5"));
  EXPECT_THAT(
      after([](auto& chassis) { chassis.platform_record[2] = 18; }),
      ElementsAre("chassis slots: 10 > 18", "chassis platform record: 01 02 0a 04 05 06 07 08 > 01 02 12 04 05 06 07 08"));
}

TEST(Differences, OfANameOfADashAndNone) {
  const difference found = only([](auto& chassis) { chassis.vsans[20] = "-"; });
  EXPECT_EQ(found.before.text, found.after.text);
  EXPECT_EQ(found.before.data, difference_value::any(std::string()));
  EXPECT_EQ(found.after.data, difference_value::any(std::string("-")));
}

TEST(Differences, OfCards) {
  EXPECT_THAT(after([](auto& chassis) { chassis.line_cards.pop_back(); }),
              ElementsAre("slot 7 ports: 24 > -", "slot 7 card name: behind the supervisors > -"));
  EXPECT_THAT(after([](auto& chassis) {
                chassis.line_cards.push_back({255, 1, ""});
              }),
              ElementsAre("slot 255 ports: - > 1", "slot 255 card name: - > -"));
}

TEST(Differences, OfVsansAndTheirTimes) {
  EXPECT_THAT(after([](auto& chassis) { chassis.vsans[20] = "test"; }), ElementsAre("VSAN 20 name: - > test"));
  EXPECT_THAT(after([](auto& chassis) {
                chassis.vsans = {{10, "production"}, {30, ""}};
              }),
              ElementsAre("VSAN 20 is there: yes > no", "VSAN 30 is there: no > yes"));
  EXPECT_THAT(after([](auto& chassis) {
                chassis.times[10] = {{-1, 5}, 0x1F};
              }),
              ElementsAre("VSAN 10 time reference: - > -1 s 5 us = 000000000000001F"));
}

TEST(Differences, OfATimeReferenceAlone) {
  const vswitch::time_reference reference{{1, 2}, 3};
  const auto set = differences(10, std::nullopt, reference);
  ASSERT_EQ(set.size(), 1u);
  EXPECT_EQ(set[0].where, "VSAN 10");
  EXPECT_EQ(set[0].before.data, difference_value::any());
  EXPECT_EQ(set[0].after.text, "1 s 2 us = 0000000000000003");
  EXPECT_TRUE(differences(10, reference, reference).empty());
  EXPECT_TRUE(differences(10, std::nullopt, std::nullopt).empty());
}

TEST(Differences, OfInterfaces) {
  EXPECT_THAT(after([](auto& chassis) { chassis.interfaces[1].members.pop_back(); }),
              ElementsAre("port-channel5 members: fc1/3 fc1/4 > fc1/3"));
  EXPECT_THAT(after([](auto& chassis) { chassis.interfaces.pop_back(); }), ElementsAre("fcip3 is there: yes > no"));
}

TEST(Differences, OfNodes) {
  EXPECT_THAT(after([](auto& chassis) { chassis.nodes[kFc1_1] = {}; }), ElementsAre("fc1/1 node: no > yes"));
  chassis_description before = vswitch_test::small_switch();
  before.nodes[kFc1_1].manufacturer = "AC ";
  chassis_description changed = before;
  changed.nodes[kFc1_1] = {500, 0x2000001F, "000001", "00A", "AB ", "7 ", "00000000000B", 0x0040};
  std::vector<std::string> texts;
  for (const auto& found : differences(before, changed))
    texts.push_back(found.field + ": " + found.before.text + " > " + found.after.text);
  EXPECT_THAT(texts,
              ElementsAre("node code page: 37 > 500", "node flags: 00000000 > 2000001F", "node type: 000000 > 000001",
                          "node model: 000 > 00A", "node manufacturer: AC > AB", "node plant: - > 7",
                          "node sequence: 000000000000 > 00000000000B", "node tag: 0000 > 0040"));
}

TEST(Differences, OfAnEntrysNumbers) {
  EXPECT_THAT(after([](auto& chassis) {
                chassis.map.port_to_pn[0] = {FICON_PMAP_NO_NUMBER, 0x0F, {10}};
              }),
              ElementsAre("index 0 (fc1/1) pn: 0 > -", "index 0 (fc1/1) pa: 20 > 0F"));
  const difference found = only([](auto& chassis) { chassis.map.port_to_pn[1279].pa = 0x0A; });
  EXPECT_EQ(found.where, "index 1279");
  EXPECT_EQ(found.index, 1279u);
  EXPECT_EQ(found.before.data, difference_value::any());
  EXPECT_EQ(found.after.data, difference_value::any(int64_t{10}));
}

TEST(Differences, OfTheSlotsThatVsansStandIn) {
  const difference found = only([](auto& chassis) {
    chassis.map.port_to_pn[0].vsans[0] = 0;
    chassis.map.port_to_pn[0].vsans[1] = 10;
  });
  EXPECT_EQ(found.field, "vsans");
  EXPECT_EQ(found.before.text, "10");
  EXPECT_EQ(found.after.text, "0,10");
  EXPECT_EQ(found.after.data, difference_value::any(std::vector<uint16_t>{0, 10}));
  EXPECT_THAT(after([](auto& chassis) { chassis.map.port_to_pn[0].vsans[0] = 0; }),
              ElementsAre("index 0 (fc1/1) vsans: 10 > -"));
  EXPECT_THAT(after([](auto& chassis) { chassis.map.port_to_pn[0].vsans[7] = 1; }),
              ElementsAre("index 0 (fc1/1) vsans: 10 > 10,0,0,0,0,0,0,1"));
}

TEST(Differences, OfTheTablesBesideTheEntries) {
  EXPECT_THAT(after([](auto& chassis) { chassis.map.port_to_vsan[0] = 0; }), ElementsAre("index 0 (fc1/1) vsan: 10 > -"));
  EXPECT_THAT(after([](auto& chassis) { chassis.map.pn_to_if[255] = kFc1_1; }), ElementsAre("PN 255 binding: - > fc1/1"));
  EXPECT_THAT(after([](auto& chassis) { chassis.map.pa_to_pn[0x20] = FICON_PMAP_NO_NUMBER; }),
              ElementsAre("PA 20 pn of address: 0 > -"));
  const difference found = only([](auto& chassis) { chassis.map.vsan_array[0] = 0x80; });
  EXPECT_EQ(found.where + " " + found.field, "port map VSAN array");
  EXPECT_EQ(found.after.text.substr(0, 5), "80 00");
}

TEST(Differences, DoNotCountTheChangeCounter) {
  EXPECT_THAT(after([](auto& chassis) { ++chassis.change_counter; }), ElementsAre());
}

// No chassis has a slot 256; a card in it is looked at nowhere.
TEST(Differences, OfWhatHasNoNameAreNotPassedOver) {
  const std::string failure = inspect_test::platform_failure([] {
    after([](auto& chassis) { chassis.line_cards.push_back({256, 1, ""}); });
  });
  EXPECT_EQ(failure, "internal error: the switches differ in something that has no name here; please report it");
}

} // namespace
} // namespace inspect
