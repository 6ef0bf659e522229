#include "inspect/chassis/port_map_edit.h"

#include <gmock/gmock.h>

#include "inspect_test.h"
#include "test_switch.h"
#include "vswitch/interface_index.h"

namespace inspect {
namespace {

using inspect_test::complaint;
using testing::ElementsAre;
using testing::HasSubstr;
using vswitch::port_map;

const vswitch::chassis_description kSwitch = vswitch_test::small_switch();

port_map after_port(const new_port_values& values) {
  port_map map = kSwitch.map;
  edit_of_port(kSwitch, values)(map);
  return map;
}

std::string refusal(const new_port_values& values) {
  return complaint([&] { edit_of_port(kSwitch, values); });
}

TEST(EditOfPort, LeavesWhatIsNotGiven) {
  const port_map map = after_port({"fc1/1", "255", {}, {}, {}});
  EXPECT_EQ(map.port_to_pn[0].pn, 255);
  EXPECT_EQ(map.port_to_pn[0].pa, 0x20);
  EXPECT_EQ(map.port_to_pn[0].vsans[0], 10);
  EXPECT_EQ(map.port_to_vsan[0], 10);
}

TEST(EditOfPort, TakesAwayWithNone) {
  const port_map map = after_port({"0", "none", "none", "none", "none"});
  EXPECT_EQ(map.port_to_pn[0].pn, FICON_PMAP_NO_NUMBER);
  EXPECT_EQ(map.port_to_pn[0].pa, FICON_PMAP_NO_NUMBER);
  EXPECT_THAT(map.port_to_pn[0].vsans, testing::Each(0));
  EXPECT_EQ(map.port_to_vsan[0], 0);
}

TEST(EditOfPort, BindsToUpToEightVsans) {
  EXPECT_THAT(after_port({"fc1/1", {}, {}, "1-8", {}}).port_to_pn[0].vsans, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_THAT(after_port({"fc1/1", {}, {}, "20", {}}).port_to_pn[0].vsans, ElementsAre(20, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(refusal({"fc1/1", {}, {}, "1-9", {}}), "VSANs \"1-9\": found 9; a port is bound to 1 to 8 VSANs, or none");
  EXPECT_EQ(refusal({"fc1/1", {}, {}, "all", {}}), "VSANs \"all\": found 0; a port is bound to 1 to 8 VSANs, or none");
}

TEST(EditOfPort, KnowsTheEndsOfNumbersAndPlaces) {
  EXPECT_EQ(after_port({"1279", "511", {}, {}, {}}).port_to_pn[1279].pn, 511);
  EXPECT_THAT(refusal({"1280", {}, {}, {}, {}}), HasSubstr("1280"));
  EXPECT_EQ(refusal({"0", "512", {}, {}, {}}),
            "port number \"512\" is 512, which the port map takes for no number; write none if you mean that");
  EXPECT_EQ(refusal({"0", {}, "200", {}, {}}),
            "port address \"200\" is 512, which the port map takes for no number; write none if you mean that");
  EXPECT_EQ(after_port({"0", {}, {}, {}, "4095"}).port_to_vsan[0], 4095);
  EXPECT_THAT(refusal({"0", {}, {}, {}, "0"}), HasSubstr("VSAN"));
}

TEST(EditOfPort, NeedsAPortThatIsThere) {
  EXPECT_EQ(refusal({"fc1/49", {}, {}, {}, {}}), "port fc1/49 is not there; chnsw info lists the cards and their ports");
  EXPECT_EQ(refusal({"fcip3", {}, {}, {}, {}}).substr(0, 6), "port \"");
  EXPECT_NE(refusal({"fc7/24", {}, {}, {}, {}}), "(nothing is wrong)");
}

TEST(EditOfPort, MovesTheAddressesWithIt) {
  const port_map map = after_port({"fc1/1", "7", {}, {}, {}});
  EXPECT_EQ(map.pa_to_pn[0x20], 7);
}

TEST(EditOfPort, LeavesAddressesThatSayOtherwise) {
  port_map map = kSwitch.map;
  map.pa_to_pn[0x21] = 9; // no port has it
  edit_of_port(kSwitch, {"fc1/1", "7", {}, {}, {}})(map);
  EXPECT_EQ(map.pa_to_pn[0x20], 0);
  EXPECT_EQ(map.pa_to_pn[0x21], 9);
}

TEST(EditOfBinding, NeedsAnInterfaceThatIsThere) {
  port_map map = kSwitch.map;
  edit_of_binding(kSwitch, "255", "port-channel5")(map);
  EXPECT_EQ(map.pn_to_if[255], 0x04000005u);
  edit_of_binding(kSwitch, "240", "none")(map);
  EXPECT_EQ(map.pn_to_if[240], 0u);
  edit_of_binding(kSwitch, "1", "fc1/48")(map);
  EXPECT_EQ(map.pn_to_if[1], 0x01002F00u);
  const std::string expected = "; chnsw info lists cards and logical interfaces";
  EXPECT_EQ(complaint([] { edit_of_binding(kSwitch, "1", "fc1/49"); }), "there is no fc1/49" + expected);
  EXPECT_EQ(complaint([] { edit_of_binding(kSwitch, "1", "port-channel6"); }), "there is no port-channel6" + expected);
  EXPECT_THAT(complaint([] { edit_of_binding(kSwitch, "256", "none"); }), HasSubstr("256"));
}

TEST(EditOfAddress, GivesAnAddressANumber) {
  port_map map = kSwitch.map;
  edit_of_address("FF", "12")(map);
  EXPECT_EQ(map.pa_to_pn[0xFF], 12);
  edit_of_address("20", "none")(map);
  EXPECT_EQ(map.pa_to_pn[0x20], FICON_PMAP_NO_NUMBER);
  EXPECT_THAT(complaint([] { edit_of_address("100", "12"); }), HasSubstr("100"));
}

} // namespace
} // namespace inspect
