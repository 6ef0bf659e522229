// Chassis files: what a file says, and every way in which one is wrong, with its literal message.
#include <gmock/gmock.h>
#include <vswitch/chassis_file.h>
#include <vswitch/interface_index.h>

#include "test_switch.h"

namespace {

using namespace vswitch;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::StartsWith;

constexpr const char* kTenSlots = "[chassis]\nslots = 10\ntype = 32\nsupervisors = [5, 6]\n"; // four lines
constexpr const char* kCard = "[[line_card]]\nslot = 1\nports = 48\n";                        // lines 5 to 7

std::vector<std::string> problems_of(const std::string& text) {
  try {
    parse_chassis_text(text, "f");
  } catch (const chassis_file_error& error) {
    std::vector<std::string> texts;
    for (const auto& problem : error.problems()) texts.push_back(problem.text());
    return texts;
  }
  return {};
}

// What is wrong with a file of ten slots and one card, whose eighth line is the first one of text.
std::vector<std::string> problems_with(const std::string& text) {
  return problems_of(kTenSlots + std::string(kCard) + text);
}

chassis_description read_with(const std::string& text) {
  return parse_chassis_text(kTenSlots + std::string(kCard) + text, "f");
}

// ---- What a file says

TEST(ChassisFile, ChassisTable) {
  const auto chassis = parse_chassis_text(
      "[chassis]\nname = \"a \\\"b\\\"\"\nslots = 18\ntype = -7\nsupervisors = [10, 9]\n"
      "platform_record = \"ff 01 12 03 04 05 06 07\"\nchange_counter = 4294967295\n"
      "port_vsan_array = \"000102030405060708090a0b0c0d0e0f 101112131415161718191a1b1c1d1e1F\"\n",
      "f");
  EXPECT_EQ(chassis.name, "a \"b\"");
  EXPECT_EQ(chassis.slots(), 18u);
  EXPECT_EQ(chassis.type, -7);
  EXPECT_THAT(chassis.supervisors, ElementsAre(9, 10));
  EXPECT_THAT(chassis.platform_record, ElementsAre(0xFF, 1, 18, 3, 4, 5, 6, 7));
  EXPECT_EQ(chassis.change_counter, 0xFFFFFFFFu);
  EXPECT_EQ(chassis.map.vsan_array[0], 0);
  EXPECT_EQ(chassis.map.vsan_array[31], 0x1F);
}

TEST(ChassisFile, SmallestFileLeavesTheRestEmpty) {
  chassis_description expected;
  expected.platform_record[2] = 2;
  expected.type = 4;
  EXPECT_EQ(parse_chassis_text("[chassis]\nslots = 2\ntype = 4\n", "f"), expected);
}

// A message goes to a terminal.
TEST(ChassisFile, ControlCharactersAreToldAsNumbers) {
  EXPECT_THAT(problems_of("[chassis]\nslots = 1\ntype = \"a\\u001Bb\\u009Bc\""),
              ::testing::Contains(::testing::HasSubstr("type is \"a\\x1Bb\\x9Bc\"; expected is a whole number")));
}

TEST(ChassisFile, SlotsAndTypesAtTheirLimits) {
  EXPECT_EQ(parse_chassis_text("[chassis]\nslots = 255\ntype = 2147483647\nsupervisors = []\n", "f").slots(), 255u);
  EXPECT_EQ(parse_chassis_text("[chassis]\nslots = 1\ntype = -2147483648\n", "f").type, INT32_MIN);
}

TEST(ChassisFile, LineCardsAreSortedBySlotAndTheirPlacesAreTold) {
  std::vector<card_place> places;
  const auto chassis =
      parse_chassis_text(std::string(kTenSlots) +
                             "[[line_card]]\nslot = 10\nports = 254\nname = \"x\"\n[[line_card]]\n  slot = 1\nports = 1\n",
                         "f", &places);
  EXPECT_THAT(chassis.line_cards, ElementsAre(line_card{1, 1, ""}, line_card{10, 254, "x"}));
  ASSERT_EQ(places.size(), 2u);
  EXPECT_EQ(places[0].slot, 10u);
  EXPECT_EQ(places[0].line, 6u);
  EXPECT_EQ(places[0].column, 8u);
  EXPECT_EQ(places[1].line, 10u);
  EXPECT_EQ(places[1].column, 10u);
}

TEST(ChassisFile, VsansPortChannelsAndInterfaces) {
  const auto chassis = read_with(
      "[[vsan]]\nnumber = 4095\n[[vsan]]\nnumber = 1\nname = \"one\"\n"
      "[[interface]]\nname = \"mgmt0\"\n[[interface]]\nname = \"0x20000007\"\n[[interface]]\nname = \"fcip3\"\n"
      "[[port_channel]]\nnumber = 5\nmembers = [\"fc1/7-8\", \"fc1/2\"]\n[[port_channel]]\nnumber = 16777215\n");
  EXPECT_THAT(chassis.vsans, ElementsAre(std::pair(1, "one"), std::pair(4095, "")));
  EXPECT_THAT(
      chassis.interfaces,
      ElementsAre(logical_interface{0x02000000, {}},
                  logical_interface{0x04000005, {fc_port_index(1, 2), fc_port_index(1, 7), fc_port_index(1, 8)}},
                  logical_interface{0x04FFFFFF, {}}, logical_interface{0x0A000003, {}}, logical_interface{0x20000007, {}}));
}

TEST(ChassisFile, PortRunCountsNumbersAndAddressesUp) {
  const auto map = read_with("[[port]]\ninterface = \"fc1/47-48\"\npn = 10\npa = 0x20\nvsans = [10, 20]\n").map;
  EXPECT_EQ(map.port_to_pn[45].pn, 512);
  EXPECT_EQ(map.port_to_pn[46].pn, 10);
  EXPECT_EQ(map.port_to_pn[46].pa, 0x20);
  EXPECT_THAT(map.port_to_pn[46].vsans, ElementsAre(10, 20, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(map.port_to_pn[47].pn, 11);
  EXPECT_EQ(map.port_to_pn[47].pa, 0x21);
  EXPECT_EQ(map.port_to_vsan[47], 10);
}

TEST(ChassisFile, PortByIndexNeedsNoCard) {
  const auto map =
      read_with("[[port]]\nindex = 700\npa = 65535\n[[port]]\nindex = \"1278-1279\"\npn = 65534\nvsan = 9\n").map;
  EXPECT_EQ(map.port_to_pn[700].pa, 65535);
  EXPECT_EQ(map.port_to_pn[700].pn, 512);
  EXPECT_EQ(map.port_to_pn[1279].pn, 65535);
  EXPECT_EQ(map.port_to_vsan[1278], 9);
}

TEST(ChassisFile, PortIsInTheFirstOfItsVsansUnlessItIsSaid) {
  const auto map = read_with(
                       "[[port]]\nindex = 0\nvsans = [20, 10]\n[[port]]\nindex = 1\nvsans = [20]\nvsan = 30\n"
                       "[[port]]\nindex = 2\nvsans = [20]\nvsan = \"none\"\n[[port]]\nindex = 3\n")
                       .map;
  EXPECT_EQ(map.port_to_vsan[0], 20);
  EXPECT_EQ(map.port_to_vsan[1], 30);
  EXPECT_EQ(map.port_to_vsan[2], 0);
  EXPECT_EQ(map.port_to_vsan[3], 0);
}

TEST(ChassisFile, BindingsOfDescribedInterfacesAndOfAnyIndex) {
  const auto map = read_with(
                       "[[interface]]\nname = \"fcip3\"\n[[binding]]\npn = 255\ninterface = \"fcip3\"\n"
                       "[[binding]]\npn = 0\ninterface = \"fc1/5\"\n[[binding]]\npn = 7\ninterface = \"0xDEADBEEF\"\n")
                       .map;
  EXPECT_EQ(map.pn_to_if[255], 0x0A000003u);
  EXPECT_EQ(map.pn_to_if[0], fc_port_index(1, 5));
  EXPECT_EQ(map.pn_to_if[7], 0xDEADBEEFu);
}

TEST(ChassisFile, AddressesFollowThePortsUnlessTheyAreDescribed) {
  const std::string ports = "[[port]]\ninterface = \"fc1/1-4\"\npn = 8\npa = 0x20\n";
  EXPECT_EQ(read_with(ports).map.pa_to_pn[0x23], 11);
  const auto map = read_with(ports + "[[address]]\npa = 0x20\npn = 65535\n[[address]]\npa = \"254-0xFF\"\npn = 3\n").map;
  EXPECT_EQ(map.pa_to_pn[0x20], 65535);
  EXPECT_EQ(map.pa_to_pn[0x21], 512);
  EXPECT_EQ(map.pa_to_pn[254], 3);
  EXPECT_EQ(map.pa_to_pn[255], 4);
}

// What the tables can hold can be described: it is what has to be reproduced.
TEST(ChassisFile, TimeReferenceTiesAHostTimeToATodValue) {
  const auto times = read_with(
                         "[[time_reference]]\nvsan = 10\nhost_time = \"2015-01-05T09:07:03.9Z\"\ntod = "
                         "\"CE4F44C4E976\"\n[[time_reference]]\nvsan = 4095\nhost_seconds = -7\nhost_microseconds = "
                         "-2147483648\ntod = \"0xFFFF\"\n[[time_reference]]\nvsan = 1\nhost_seconds = 7\n")
                         .times;
  const std::map<uint16_t, time_reference> expected = {{10, {{1420448823, 900000}, 0xCE4F44C4E9760000}},
                                                       {4095, {{-7, INT32_MIN}, 0xFFFF000000000000}},
                                                       {1, {{7, 0}, 0x7D91049276FC0000}}};
  EXPECT_TRUE(times == expected);
}

TEST(ChassisFile, TodValueThatIsLeftOutIsTheHostsTime) {
  const auto times = read_with("[[time_reference]]\nvsan = 10\nhost_time = \"2015-01-05T10:07:03.000123+01:00\"\n").times;
  EXPECT_TRUE(times.at(10) == (time_reference{{1420448823, 123}, 0xCE4F44C40DC3B000}));
}

TEST(ChassisFile, NowIsTheMomentOfReadingAndTheSameInTheWholeFile) {
  const auto before = current_instant();
  const auto times =
      read_with(
          "[[time_reference]]\nvsan = 10\nhost_time = \"now\"\n[[time_reference]]\nvsan = 20\nhost_time = \"now\"\n"
          "tod = \"now\"\n[[time_reference]]\nvsan = 30\nhost_time = \"2015-01-05\"\ntod = \"now\"\n")
          .times;
  const auto after = current_instant();
  EXPECT_LE(before, instant_of(times.at(10).host));
  EXPECT_GE(after, instant_of(times.at(10).host));
  EXPECT_TRUE(times.at(20) == times.at(10));
  EXPECT_EQ(times.at(30).tod, times.at(10).tod);
  EXPECT_EQ(instant_of(times.at(10).tod), instant_of(times.at(10).host));
  EXPECT_EQ(times.at(30).host.seconds, 1420416000);
}

TEST(ChassisFile, NodeIsADeviceBehindAnInterface) {
  const auto nodes = read_with(
                         "[[node]]\ninterface = \"fc1/5\"\ncodepage = 500\nflags = 0x90A1B2C3\ntype = \"4711\"\n"
                         "model = \"A01\"\nmanufacturer = \"ACM\"\nplant = \"07\"\nsequence = \"SN042\"\n"
                         "tag = 0xBEEF\n")
                         .nodes;
  node_descriptor expected;
  expected.codepage = 500;
  expected.flags = 0x90A1B2C3;
  expected.type = "004711";
  expected.model = "A01";
  expected.manufacturer = "ACM";
  expected.plant = "07";
  expected.sequence = "0000000SN042";
  expected.tag = 0xBEEF;
  EXPECT_EQ(nodes, (std::map<uint32_t, node_descriptor>{{fc_port_index(1, 5), expected}}));
}

TEST(ChassisFile, NodeThatSaysNothingIsZerosAndBlanksInTheUsualCodePage) {
  const auto node = read_with("[[node]]\ninterface = \"fc1/1\"\n").nodes.at(fc_port_index(1, 1));
  EXPECT_EQ(node.codepage, 37u);
  EXPECT_EQ(node.flags, 0u);
  EXPECT_EQ(node.type, "000000");
  EXPECT_EQ(node.model, "000");
  EXPECT_EQ(node.manufacturer, "   ");
  EXPECT_EQ(node.plant, "  ");
  EXPECT_EQ(node.sequence, "000000000000");
  EXPECT_EQ(node.tag, 0);
}

TEST(ChassisFile, NodesBehindEveryKindOfInterface) {
  const auto nodes = read_with(
                         "[[node]]\ninterface = \"fc1/48\"\nplant = \"1\"\n[[node]]\ninterface = \"fcip3\"\n"
                         "[[node]]\ninterface = \"port-channel5\"\n[[node]]\ninterface = \"0x20000007\"\n"
                         "[[port_channel]]\nnumber = 5\n[[interface]]\nname = \"fcip3\"\n"
                         "[[interface]]\nname = \"0x20000007\"\n")
                         .nodes;
  ASSERT_EQ(nodes.size(), 4u);
  EXPECT_EQ(nodes.at(fc_port_index(1, 48)).plant, "1 ");
  EXPECT_EQ(nodes.count(0x04000005), 1u);
  EXPECT_EQ(nodes.count(0x0A000003), 1u);
  EXPECT_EQ(nodes.count(0x20000007), 1u);
}

// A card may have ports that the port map has no room for.
TEST(ChassisFile, NodeNeedsNoPlaceInThePortMap) {
  EXPECT_EQ(read_with("[[line_card]]\nslot = 8\nports = 8\n[[node]]\ninterface = \"fc8/8\"\n").nodes.size(), 1u);
}

TEST(ChassisFile, NumbersOfANodeAtTheirLimits) {
  const auto node = read_with("[[node]]\ninterface = \"fc1/1\"\nflags = 4294967295\ntag = 65535\n").nodes.begin()->second;
  EXPECT_EQ(node.flags, 0xFFFFFFFFu);
  EXPECT_EQ(node.tag, 0xFFFF);
}

TEST(ChassisFile, InconsistentMapIsNoProblem) {
  EXPECT_THAT(problems_with("[[port]]\nindex = \"0-9\"\npn = 5\n[[port]]\nindex = 10\npn = 5\npa = 5\n"
                            "[[port]]\nindex = 11\npa = 5\nvsans = [10, 10]\nvsan = 77\n[[address]]\npa = 5\npn = 300\n"),
              ElementsAre());
}

TEST(ChassisFile, OrderOfTheTablesDoesNotMatter) {
  const std::string card = "[[line_card]]\nslot = 1\nports = 48\n";
  const std::string port = "[[port]]\ninterface = \"fc1/5\"\npn = 3\n";
  const std::string chassis = "[chassis]\nslots = 10\ntype = 32\nsupervisors = [5, 6]\n";
  EXPECT_EQ(parse_chassis_text(port + card + chassis, "f"), parse_chassis_text(chassis + card + port, "f"));
}

// ---- What is wrong with a file

struct wrong_file {
  const char* subject;
  const char* text; // the eighth line on
  const char* message;
};
void PrintTo(const wrong_file& file, std::ostream* out) {
  *out << file.subject;
}

class WrongChassisFile : public ::testing::TestWithParam<wrong_file> {};

TEST_P(WrongChassisFile, IsRefusedWithItsPlaceWhatWasFoundAndWhatIsAllowed) {
  EXPECT_THAT(problems_with(GetParam().text), ElementsAre(GetParam().message));
}

constexpr wrong_file kWrongFiles[] = {
    {"UnknownTable", "[[line_crad]]\nslot = 1\n", "f:8:3: unknown key \"line_crad\" in the file; did you mean line_card?"},
    {"UnknownTableFarFromAll", "[power]\n",
     "f:8:2: unknown key \"power\" in the file; allowed are chassis, line_card, vsan, port_channel, interface, port, "
     "binding, address, time_reference, node"},
    {"UnknownKey", "[[vsan]]\nnumber = 1\nnmae = \"x\"\n", "f:10:1: unknown key \"nmae\" in [[vsan]]; did you mean name?"},
    {"UnknownKeyOfPort", "[[port]]\nindex = 3\nvsns = [1]\n",
     "f:10:1: unknown key \"vsns\" in [[port]]; did you mean vsans?"},
    {"TableInsteadOfList", "[vsan]\nnumber = 1\n",
     "f:8:1: vsan is a table; expected is one or more tables that begin with [[vsan]]"},
    {"CardWithoutSlot", "[[line_card]]\nports = 8\n",
     "f:8:1: [[line_card]] has no slot; expected is a whole number, 1 to 10"},
    {"CardWithoutPorts", "[[line_card]]\nslot = 2\n",
     "f:8:1: [[line_card]] has no ports; expected is a whole number, 1 to 254"},
    {"CardBeyondTheChassis", "[[line_card]]\nslot = 11\nports = 8\n", "f:9:8: slot is 11; allowed are 1 to 10"},
    {"CardInSlotZero", "[[line_card]]\nslot = 0\nports = 8\n", "f:9:8: slot is 0; allowed are 1 to 10"},
    {"CardInSupervisorsSlot", "[[line_card]]\nslot = 6\nports = 8\n",
     "f:9:8: slot 6 holds a supervisor; a line card needs a slot without one"},
    {"TwoCardsInASlot", "[[line_card]]\nslot = 1\nports = 8\n",
     "f:9:8: slot 1 has two line cards; the first one stands in line 6, and a slot takes one"},
    {"CardWithTooManyPorts", "[[line_card]]\nslot = 2\nports = 255\n", "f:10:9: ports is 255; allowed are 1 to 254"},
    {"CardWithoutAnyPort", "[[line_card]]\nslot = 2\nports = 0\n", "f:10:9: ports is 0; allowed are 1 to 254"},
    {"TextInsteadOfNumber", "[[line_card]]\nslot = 2\nports = \"48\"\n",
     "f:10:9: ports is \"48\"; expected is a whole number, 1 to 254"},
    {"FractionInsteadOfNumber", "[[line_card]]\nslot = 2\nports = 4.5\n",
     "f:10:9: ports is a number with a fraction; expected is a whole number, 1 to 254"},
    {"NumberInsteadOfText", "[[line_card]]\nslot = 2\nports = 4\nname = 7\n",
     "f:11:8: name is 7; expected is a text in quotes"},
    {"VsanZero", "[[vsan]]\nnumber = 0\n", "f:9:10: number is 0; allowed are 1 to 4095"},
    {"VsanAbove4095", "[[vsan]]\nnumber = 4096\n", "f:9:10: number is 4096; allowed are 1 to 4095"},
    {"VsanTwice", "[[vsan]]\nnumber = 9\n[[vsan]]\nnumber = 9\n", "f:11:10: VSAN 9 is described twice; expected is once"},
    {"PortChannelZero", "[[port_channel]]\nnumber = 0\n", "f:9:10: number is 0; allowed are 1 to 16777215"},
    {"PortChannelTwice", "[[port_channel]]\nnumber = 2\n[[port_channel]]\nnumber = 2\n",
     "f:11:10: port-channel2 is described twice; the first time in line 9"},
    {"MemberOfTwoPortChannels",
     "[[port_channel]]\nnumber = 2\nmembers = [\"fc1/1-4\"]\n[[port_channel]]\nnumber = 3\nmembers = [\"fc1/9\", "
     "\"fc1/4\"]\n",
     "f:13:21: fc1/4 is a member twice; it became one in line 10, and a port belongs to one port-channel"},
    {"MemberThatIsNoPort", "[[port_channel]]\nnumber = 2\nmembers = [\"fcip1\"]\n",
     "f:10:12: a member is \"fcip1\"; expected is a port such as \"fc1/5\" or a run of ports such as \"fc1/1-48\""},
    {"MemberThatTheCardDoesNotHave", "[[port_channel]]\nnumber = 2\nmembers = [\"fc1/47-49\"]\n",
     "f:10:12: the line card in slot 1 has no port 49; its ports are 1 to 48"},
    {"InterfaceWithoutName", "[[interface]]\n",
     "f:8:1: [[interface]] has no name; expected is a logical interface such as \"fcip3\" or \"mgmt0\""},
    {"InterfaceThatIsNoName", "[[interface]]\nname = \"eth0\"\n",
     "f:9:8: name is \"eth0\"; expected is a logical interface such as \"fcip3\" or \"mgmt0\""},
    {"InterfaceThatIsAPort", "[[interface]]\nname = \"fc1/1\"\n",
     "f:9:8: fc1/1 is a physical port; its line card is described with [[line_card]]"},
    {"InterfaceThatIsAPortChannel", "[[interface]]\nname = \"port-channel4\"\n",
     "f:9:8: port-channel4 is a port-channel; it is described with [[port_channel]]"},
    {"InterfaceTwice", "[[interface]]\nname = \"fcip1\"\n[[interface]]\nname = \"fcip1\"\n",
     "f:11:8: fcip1 is described twice; the first time in line 9"},
    {"PortWithoutPlace", "[[port]]\npn = 1\n",
     "f:8:1: [[port]] has no interface; expected is a port such as \"fc1/5\" or a run of ports such as \"fc1/1-48\", or an "
     "index"},
    {"PortWithTwoPlaces", "[[port]]\ninterface = \"fc1/1\"\nindex = 0\n",
     "f:10:9: [[port]] has both interface and index; expected is one of them"},
    {"PortThatIsLogical", "[[port]]\ninterface = \"fcip1\"\n",
     "f:9:13: interface is \"fcip1\"; expected is a port such as \"fc1/5\" or a run of ports such as \"fc1/1-48\""},
    {"PortRunBackwards", "[[port]]\ninterface = \"fc1/8-7\"\n",
     "f:9:13: interface is \"fc1/8-7\"; expected is a port such as \"fc1/5\" or a run of ports such as \"fc1/1-48\""},
    {"PortThatTheCardDoesNotHave", "[[port]]\ninterface = \"fc1/49\"\n",
     "f:9:13: the line card in slot 1 has no port 49; its ports are 1 to 48"},
    {"PortRunThatLeavesTheCard", "[[port]]\ninterface = \"fc1/1-50\"\n",
     "f:9:13: the line card in slot 1 has no port 49; its ports are 1 to 48"},
    {"PortInASlotWithoutCard", "[[port]]\ninterface = \"fc3/1\"\n",
     "f:9:13: slot 3 has no line card; describe it with [[line_card]]"},
    {"PortInASupervisorsSlot", "[[port]]\ninterface = \"fc5/1\"\n",
     "f:9:13: slot 5 holds a supervisor, which has no ports; expected is the slot of a line card"},
    {"PortInASlotBeyondTheChassis", "[[port]]\ninterface = \"fc11/1\"\n",
     "f:9:13: there is no slot 11; the chassis has slots 1 to 10"},
    {"PortTwice", "[[port]]\ninterface = \"fc1/1-8\"\n[[port]]\ninterface = \"fc1/7-9\"\n",
     "f:11:13: fc1/7 (index 6) is described twice; the first time in line 9"},
    {"PortTwiceByInterfaceAndByIndex", "[[port]]\ninterface = \"fc1/1-8\"\n[[port]]\nindex = 7\n",
     "f:11:9: fc1/8 (index 7) is described twice; the first time in line 9"},
    {"IndexTwice", "[[port]]\nindex = 1024\n[[port]]\nindex = \"1000-1100\"\n",
     "f:11:9: index 1024 is described twice; the first time in line 9"},
    {"IndexBeyondTheMap", "[[port]]\nindex = 1280\n", "f:9:9: index is 1280; allowed are 0 to 1279"},
    {"IndexRunBeyondTheMap", "[[port]]\nindex = \"1270-1280\"\n", "f:9:9: index is \"1270-1280\"; allowed are 0 to 1279"},
    {"NegativeIndex", "[[port]]\nindex = -1\n", "f:9:9: index is -1; allowed are 0 to 1279"},
    {"IndexThatIsNoRun", "[[port]]\nindex = \"1024-\"\n",
     "f:9:9: index is \"1024-\"; expected is a number or a run such as \"1024-1037\", 0 to 1279"},
    {"IndexRunBackwards", "[[port]]\nindex = \"1037-1024\"\n",
     "f:9:9: index is \"1037-1024\"; expected is a number or a run such as \"1024-1037\", 0 to 1279"},
    {"NumberThatNoTableHolds", "[[port]]\nindex = 1\npn = 65536\n", "f:10:6: pn is 65536; allowed are 0 to 65535"},
    {"NegativeAddress", "[[port]]\nindex = 1\npa = -1\n", "f:10:6: pa is -1; allowed are 0 to 65535"},
    {"NumbersThatCountTooHigh", "[[port]]\nindex = \"0-9\"\npn = 65530\n",
     "f:10:6: pn counts from 65530 over 10 ports; the highest number is 65535"},
    {"PortInVsanZero", "[[port]]\nindex = 1\nvsan = 0\n", "f:10:8: vsan is 0; allowed are 1 to 4095"},
    {"PortInAVsanAbove4095", "[[port]]\nindex = 1\nvsan = 4096\n", "f:10:8: vsan is 4096; allowed are 1 to 4095"},
    {"PortInAVsanThatIsNoNumber", "[[port]]\nindex = 1\nvsan = \"no\"\n",
     "f:10:8: vsan is \"no\"; expected is a number, 1 to 4095, or \"none\""},
    {"PortBoundToVsanZero", "[[port]]\nindex = 1\nvsans = [10, 0]\n", "f:10:14: a VSAN is 0; allowed are 1 to 4095"},
    {"PortBoundToAVsanAbove4095", "[[port]]\nindex = 1\nvsans = [4096]\n",
     "f:10:10: a VSAN is 4096; allowed are 1 to 4095"},
    {"PortBoundToNineVsans", "[[port]]\nindex = 1\nvsans = [1, 2, 3, 4, 5, 6, 7, 8, 9]\n",
     "f:10:9: vsans has 9 VSANs; a port is bound to at most 8"},
    {"VsansThatAreNoList", "[[port]]\nindex = 1\nvsans = 10\n",
     "f:10:9: vsans is 10; expected is a list of VSANs such as [10, 20]"},
    {"BindingWithoutNumber", "[[binding]]\ninterface = \"fc1/1\"\n",
     "f:8:1: [[binding]] has no pn; expected is a whole number, 0 to 255"},
    {"BindingWithoutInterface", "[[binding]]\npn = 1\n",
     "f:8:1: [[binding]] has no interface; expected is an interface such as \"port-channel5\", \"fcip3\" or \"fc1/5\""},
    {"BindingOfANumberWithoutEntry", "[[binding]]\npn = 256\ninterface = \"fc1/1\"\n",
     "f:9:6: pn is 256; allowed are 0 to 255"},
    {"BindingToSomethingElse", "[[binding]]\npn = 1\ninterface = \"disk\"\n",
     "f:10:13: interface is \"disk\"; expected is an interface such as \"port-channel5\", \"fcip3\" or \"fc1/5\""},
    {"BindingToAnUnknownPortChannel", "[[binding]]\npn = 1\ninterface = \"port-channel5\"\n",
     "f:10:13: there is no port-channel5; describe it with [[port_channel]]"},
    {"BindingToAnUnknownLogicalInterface", "[[binding]]\npn = 1\ninterface = \"fcip5\"\n",
     "f:10:13: there is no fcip5; describe it with [[interface]]"},
    {"BindingToAPortThatIsNotThere", "[[binding]]\npn = 1\ninterface = \"fc1/60\"\n",
     "f:10:13: the line card in slot 1 has no port 60; its ports are 1 to 48"},
    {"NumberBoundTwice", "[[binding]]\npn = 1\ninterface = \"fc1/1\"\n[[binding]]\npn = 1\ninterface = \"fc1/2\"\n",
     "f:12:6: port number 1 is bound twice; the first time in line 9, and a number answers for one interface"},
    {"AddressWithoutNumber", "[[address]]\npa = 1\n",
     "f:8:1: [[address]] has no pn; expected is a whole number, 0 to 65535"},
    {"AddressWithoutAddress", "[[address]]\npn = 1\n",
     "f:8:1: [[address]] has no pa; expected is a number or a run such as \"0x20-0x2F\", 0 to 255"},
    {"AddressBeyondTheTable", "[[address]]\npa = 256\npn = 1\n",
     "f:9:6: pa is 256; expected is a number or a run such as \"0x20-0x2F\", 0 to 255"},
    {"AddressTwice", "[[address]]\npa = \"1-4\"\npn = 1\n[[address]]\npa = 3\npn = 1\n",
     "f:12:6: port address 3 is described twice; the first time in line 9"},
    {"AddressesThatCountTooHigh", "[[address]]\npa = \"1-4\"\npn = 65533\n",
     "f:10:6: pn counts from 65533 over 4 port addresses; the highest number is 65535"},
    {"TimeReferenceWithoutVsan", "[[time_reference]]\nhost_time = \"now\"\n",
     "f:8:1: [[time_reference]] has no vsan; expected is a whole number, 1 to 4095"},
    {"TimeReferenceOfVsanZero", "[[time_reference]]\nvsan = 0\nhost_time = \"now\"\n",
     "f:9:8: vsan is 0; allowed are 1 to 4095"},
    {"TimeReferenceWithoutTime", "[[time_reference]]\nvsan = 1\ntod = \"now\"\n",
     "f:8:1: [[time_reference]] has no host_time; expected is a time in UTC such as \"2015-01-05T09:07:03.9Z\", or "
     "\"now\""},
    {"TimeReferenceWithAnUnknownKey", "[[time_reference]]\nvsan = 1\nhost_time = \"now\"\ntodd = \"now\"\n",
     "f:11:1: unknown key \"todd\" in [[time_reference]]; did you mean tod?"},
    {"TimeReferenceTwice",
     "[[time_reference]]\nvsan = 1\nhost_time = \"now\"\n[[time_reference]]\nvsan = 1\nhost_time = \"now\"\n",
     "f:12:8: VSAN 1 has two time references; the first one stands in line 9, and a VSAN has one"},
    {"HostTimeThatIsNone", "[[time_reference]]\nvsan = 1\nhost_time = \"2015-02-29\"\n",
     "f:10:13: host_time is \"2015-02-29\"; expected is a time in UTC such as \"2015-01-05T09:07:03.9Z\", or \"now\""},
    {"HostTimeWithoutQuotes", "[[time_reference]]\nvsan = 1\nhost_time = 2015-01-05T09:07:03Z\n",
     "f:10:13: host_time is a date or time; expected is a text in quotes"},
    {"HostTimeBeyondThirtyTwoBits", "[[time_reference]]\nvsan = 1\nhost_time = \"2038-01-19T03:14:08Z\"\n",
     "f:10:13: host_time is \"2038-01-19T03:14:08Z\"; the 32 bits of a host's time hold 1901-12-13T20:45:52Z to "
     "2038-01-19T03:14:07Z"},
    {"HostTimeBesideSeconds", "[[time_reference]]\nvsan = 1\nhost_time = \"now\"\nhost_seconds = 5\n",
     "f:11:16: [[time_reference]] has both host_time and host_seconds; expected is one of them"},
    {"HostTimeBesideMicroseconds", "[[time_reference]]\nvsan = 1\nhost_microseconds = 5\nhost_time = \"now\"\n",
     "f:10:21: [[time_reference]] has both host_time and host_microseconds; expected is one of them"},
    {"MicrosecondsWithoutSeconds", "[[time_reference]]\nvsan = 1\nhost_microseconds = 5\n",
     "f:8:1: [[time_reference]] has no host_seconds; expected is a whole number, -2147483648 to 2147483647"},
    {"SecondsBeyondThirtyTwoBits", "[[time_reference]]\nvsan = 1\nhost_seconds = 2147483648\n",
     "f:10:16: host_seconds is 2147483648; allowed are -2147483648 to 2147483647"},
    {"MicrosecondsBeyondThirtyTwoBits", "[[time_reference]]\nvsan = 1\nhost_seconds = 0\nhost_microseconds = -2147483649\n",
     "f:11:21: host_microseconds is -2147483649; allowed are -2147483648 to 2147483647"},
    {"TodThatIsNone", "[[time_reference]]\nvsan = 1\nhost_time = \"now\"\ntod = \"CE4\"\n",
     "f:11:7: tod is \"CE4\"; expected are 4 to 16 hexadecimal digits such as \"CE4F44C4E976\", or \"now\""},
    {"TodThatIsANumber", "[[time_reference]]\nvsan = 1\nhost_time = \"now\"\ntod = 0xCE4F\n",
     "f:11:7: tod is 52815; expected is a text in quotes"},
    {"NodeWithoutInterface", "[[node]]\ntype = \"4711\"\n",
     "f:8:1: [[node]] has no interface; expected is an interface such as \"fc1/5\", \"port-channel5\" or \"fcip3\""},
    {"NodeWithAnUnknownKey", "[[node]]\ninterface = \"fc1/1\"\nserial = \"1\"\n",
     "f:10:1: unknown key \"serial\" in [[node]]; allowed are interface, codepage, flags, type, model, manufacturer, "
     "plant, "
     "sequence, tag"},
    {"NodeTwice", "[[node]]\ninterface = \"fc1/1\"\n[[node]]\ninterface = \"fc1/1\"\n",
     "f:11:13: fc1/1 has two nodes; the first one stands in line 9, and an interface has one device behind it"},
    {"NodeBehindNoInterface", "[[node]]\ninterface = \"tape\"\n",
     "f:9:13: interface is \"tape\"; expected is an interface such as \"fc1/5\", \"port-channel5\" or \"fcip3\""},
    {"NodeBehindARunOfPorts", "[[node]]\ninterface = \"fc1/1-4\"\n",
     "f:9:13: interface is \"fc1/1-4\"; expected is an interface such as \"fc1/5\", \"port-channel5\" or \"fcip3\""},
    {"NodeBehindANumber", "[[node]]\ninterface = 5\n", "f:9:13: interface is 5; expected is a text in quotes"},
    {"NodeBehindAPortThatTheCardDoesNotHave", "[[node]]\ninterface = \"fc1/49\"\n",
     "f:9:13: the line card in slot 1 has no port 49; its ports are 1 to 48"},
    {"NodeInASupervisorsSlot", "[[node]]\ninterface = \"fc5/1\"\n",
     "f:9:13: slot 5 holds a supervisor, which has no ports; expected is the slot of a line card"},
    {"NodeBehindAPortChannelThatIsNotThere", "[[node]]\ninterface = \"port-channel5\"\n",
     "f:9:13: there is no port-channel5; describe it with [[port_channel]]"},
    {"NodeBehindAnInterfaceThatIsNotThere", "[[node]]\ninterface = \"0x20000007\"\n",
     "f:9:13: there is no 0x20000007; describe it with [[interface]]"},
    {"NodeInAnUnknownCodePage", "[[node]]\ninterface = \"fc1/1\"\ncodepage = 277\n",
     "f:10:12: codepage is 277; expected is one of 1, 37, 273, 275, 280, 281, 284, 285, 297, 500"},
    {"NodeInACodePageByName", "[[node]]\ninterface = \"fc1/1\"\ncodepage = \"germany\"\n",
     "f:10:12: codepage is \"germany\"; expected is one of 1, 37, 273, 275, 280, 281, 284, 285, 297, 500"},
    {"NodeWithFlagsBeyondThirtyTwoBits", "[[node]]\ninterface = \"fc1/1\"\nflags = 0x100000000\n",
     "f:10:9: flags is 4294967296; allowed are 0 to 4294967295"},
    {"NodeWithFlagsAsText", "[[node]]\ninterface = \"fc1/1\"\nflags = \"00\"\n",
     "f:10:9: flags is \"00\"; expected is a whole number, 0 to 4294967295"},
    {"NodeWithATagBeyondSixteenBits", "[[node]]\ninterface = \"fc1/1\"\ntag = 65536\n",
     "f:10:7: tag is 65536; allowed are 0 to 65535"},
    {"NodeWhoseTypeIsANumber", "[[node]]\ninterface = \"fc1/1\"\ntype = 4711\n",
     "f:10:8: type is 4711; expected is a text in quotes"},
    {"NodeWhoseTypeIsTooLong", "[[node]]\ninterface = \"fc1/1\"\ntype = \"1234567\"\n",
     "f:10:8: type is \"1234567\"; expected are 1 to 6 upper-case letters or digits"},
    {"NodeWhoseModelIsTooLong", "[[node]]\ninterface = \"fc1/1\"\nmodel = \"1234\"\n",
     "f:10:9: model is \"1234\"; expected are 1 to 3 upper-case letters or digits"},
    {"NodeWhoseManufacturerIsInLowerCase", "[[node]]\ninterface = \"fc1/1\"\nmanufacturer = \"Acm\"\n",
     "f:10:16: manufacturer is \"Acm\"; expected are 1 to 3 upper-case letters or digits"},
    {"NodeWhosePlantIsEmpty", "[[node]]\ninterface = \"fc1/1\"\nplant = \"\"\n",
     "f:10:9: plant is \"\"; expected are 1 to 2 upper-case letters or digits"},
    {"NodeWhoseSequenceHasAnotherCharacter", "[[node]]\ninterface = \"fc1/1\"\nsequence = \"SN-042\"\n",
     "f:10:12: sequence is \"SN-042\"; expected are 1 to 12 upper-case letters or digits"},
};

INSTANTIATE_TEST_SUITE_P(All, WrongChassisFile, ::testing::ValuesIn(kWrongFiles),
                         [](const auto& test) { return std::string(test.param.subject); });

TEST(ChassisFileProblems, ChassisThatIsMissingIsToldOfTheFile) {
  EXPECT_THAT(problems_of("[[vsan]]\nnumber = 1\n"),
              ElementsAre("f: there is no [chassis]; expected is a table that begins with [chassis]"));
}

TEST(ChassisFileProblems, EmptyFile) {
  EXPECT_THAT(problems_of(""), ElementsAre("f: there is no [chassis]; expected is a table that begins with [chassis]"));
}

TEST(ChassisFileProblems, ChassisThatIsNoTable) {
  EXPECT_THAT(problems_of("chassis = 5\n"),
              ElementsAre("f:1:11: chassis is 5; expected is a table that begins with [chassis]"));
}

TEST(ChassisFileProblems, ListThatHoldsNoTables) {
  EXPECT_THAT(problems_of("vsan = [1]\n[chassis]\nslots = 1\ntype = 1\n"),
              ElementsAre("f:1:9: vsan holds 1; expected are tables that begin with [[vsan]]"));
}

TEST(ChassisFileProblems, ChassisKeysThatAreMissing) {
  EXPECT_THAT(problems_of("[chassis]\n"), ElementsAre("f:1:1: [chassis] has no slots; expected is a whole number, 1 to 255",
                                                      "f:1:1: [chassis] has no type; expected is a whole number, "
                                                      "-2147483648 to 2147483647"));
  EXPECT_THAT(
      problems_of("[chassis]\nslots = 3\ntype = 1\n"),
      ElementsAre("f:1:1: [chassis] has no supervisors; expected is a list of slots such as [5, 6], or [] for none"));
}

TEST(ChassisFileProblems, ChassisKeysThatAreOutOfRange) {
  EXPECT_THAT(problems_of("[chassis]\nslots = 256\ntype = 2147483648\nchange_counter = 0\n"),
              ElementsAre("f:2:9: slots is 256; allowed are 1 to 255",
                          "f:3:8: type is 2147483648; allowed are -2147483648 to 2147483647",
                          "f:4:18: change_counter is 0; allowed are 1 to 4294967295"));
}

TEST(ChassisFileProblems, SupervisorsThatAreWrong) {
  EXPECT_THAT(problems_of("[chassis]\nslots = 10\ntype = 1\nsupervisors = [5, 11, \"x\", 5]\n"),
              ElementsAre("f:4:19: a supervisor's slot is 11; allowed are 1 to 10",
                          "f:4:23: a supervisor's slot is \"x\"; expected is a whole number, 1 to 10",
                          "f:4:28: slot 5 stands twice in supervisors; expected is every slot once"));
  EXPECT_THAT(problems_of("[chassis]\nslots = 10\ntype = 1\nsupervisors = 5\n"),
              ElementsAre("f:4:15: supervisors is 5; expected is a list of slots such as [5, 6], or [] for none"));
}

TEST(ChassisFileProblems, RecordsThatAreWrong) {
  EXPECT_THAT(problems_of("[chassis]\nslots = 2\ntype = 1\nplatform_record = \"00 00 03 00 00 00 00 00\"\n"),
              ElementsAre("f:4:19: byte 2 of platform_record is 3; it is the number of slots, which is 2"));
  EXPECT_THAT(problems_of("[chassis]\nslots = 2\ntype = 1\nplatform_record = \"00 00 02\"\n"),
              ElementsAre("f:4:19: platform_record is \"00 00 02\"; expected are 8 bytes of two hexadecimal digits each"));
  EXPECT_THAT(problems_of("[chassis]\nslots = 2\ntype = 1\nport_vsan_array = \"0g\"\n"),
              ElementsAre("f:4:19: port_vsan_array is \"0g\"; expected are 32 bytes of two hexadecimal digits each"));
  EXPECT_THAT(problems_of("[chassis]\nslots = 2\ntype = 1\nport_vsan_array = \"0\"\n"),
              ElementsAre("f:4:19: port_vsan_array is \"0\"; expected are 32 bytes of two hexadecimal digits each"));
}

TEST(ChassisFileProblems, PortBeyondThePortMap) {
  EXPECT_THAT(
      problems_with(
          "[[line_card]]\nslot = 7\nports = 24\n[[line_card]]\nslot = 8\nports = 8\n"
          "[[port]]\ninterface = \"fc7/1-9\"\n[[port]]\ninterface = \"fc8/1\"\n[[port]]\ninterface = \"fc7/1-8\"\n"),
      ElementsAre("f:15:13: fc7/9 is beyond the port map, whose physical ports have indexes 0 to 1023 (line card 4 x 254 + "
                  "port); it has room for ports 1 to 8 of this card",
                  "f:17:13: fc8/1 is beyond the port map, whose physical ports have indexes 0 to 1023 (line card 5 x 254 + "
                  "port); it has room for none of this card's ports"));
}

TEST(ChassisFileProblems, AllOfAFileAreToldInItsOrder) {
  EXPECT_THAT(problems_of("[[port]]\nindex = 5000\n[[vsan]]\nnumber = 0\n[chassis]\nslots = 10\ntype = \"x\"\n"
                          "supervisors = [5, 6]\ncolour = 1\n[[line_card]]\nslot = 5\nports = 300\n"),
              ElementsAreArray({"f:2:9: index is 5000; allowed are 0 to 1279", "f:4:10: number is 0; allowed are 1 to 4095",
                                "f:7:8: type is \"x\"; expected is a whole number, -2147483648 to 2147483647",
                                "f:9:1: unknown key \"colour\" in [chassis]; allowed are name, slots, type, supervisors, "
                                "platform_record, change_counter, port_vsan_array",
                                "f:11:8: slot 5 holds a supervisor; a line card needs a slot without one",
                                "f:12:9: ports is 300; allowed are 1 to 254"}));
}

// One mistake, one message: what follows from it is not told again.
TEST(ChassisFileProblems, PortsOfACardThatIsWrongAreNoFurtherProblem) {
  EXPECT_THAT(problems_with("[[line_card]]\nslot = 2\nports = 999\n[[port]]\ninterface = \"fc2/1-48\"\npn = 1\n"),
              ElementsAre("f:10:9: ports is 999; allowed are 1 to 254"));
}

TEST(ChassisFileProblems, NodeBehindACardThatIsWrongIsNoFurtherProblem) {
  EXPECT_THAT(problems_with("[[line_card]]\nslot = 2\nports = 999\n[[node]]\ninterface = \"fc2/1\"\n"),
              ElementsAre("f:10:9: ports is 999; allowed are 1 to 254"));
}

TEST(ChassisFileProblems, EveryMistakeOfANodeIsTold) {
  EXPECT_THAT(problems_with("[[node]]\ninterface = \"fc1/49\"\ncodepage = 0\ntype = \"a\"\nmodel = \"b\"\n"),
              ElementsAre("f:9:13: the line card in slot 1 has no port 49; its ports are 1 to 48",
                          "f:10:12: codepage is 0; expected is one of 1, 37, 273, 275, 280, 281, 284, 285, 297, 500",
                          "f:11:8: type is \"a\"; expected are 1 to 6 upper-case letters or digits",
                          "f:12:9: model is \"b\"; expected are 1 to 3 upper-case letters or digits"));
}

TEST(ChassisFileProblems, PortsOfAChassisThatIsWrongAreNoFurtherProblem) {
  EXPECT_THAT(problems_of("[chassis]\nslots = 0\ntype = 1\n[[line_card]]\nslot = 7\nports = 8\n[[port]]\n"
                          "interface = \"fc7/1-8\"\npn = 1\n"),
              ElementsAre("f:2:9: slots is 0; allowed are 1 to 255"));
}

TEST(ChassisFileProblems, SyntaxErrorHasItsPlace) {
  const auto problems = problems_of("[chassis]\nslots = = 4\n");
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_THAT(problems[0], StartsWith("f:2:9: not TOML: "));
}

TEST(ChassisFileProblems, KeyThatStandsTwiceIsASyntaxError) {
  const auto problems = problems_of("[chassis]\nslots = 4\nslots = 5\n");
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_THAT(problems[0], StartsWith("f:3:"));
}

TEST(ChassisFileProblems, BytesThatAreNoTextAreASyntaxError) {
  EXPECT_THAT(problems_of(std::string("[chassis]\nname = \"\xff\xfe\"\n"))[0], StartsWith("f:2:"));
  EXPECT_EQ(problems_of(std::string(4096, '\0')).size(), 1u);
}

TEST(ChassisFileProblems, FileThatIsNotThereOrIsAFolder) {
  vswitch_test::temporary_folder folder;
  auto what_of = [](const std::string& path) -> std::string {
    try {
      read_chassis_file(path);
    } catch (const chassis_file_error& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(what_of(folder.path("none.toml")), folder.path("none.toml") + ": cannot be read: No such file or directory");
  EXPECT_EQ(what_of(folder.path()), folder.path() + ": cannot be read: Is a directory");
}

TEST(ChassisFileProblems, WhatJoinsAllOfThem) {
  try {
    parse_chassis_text("[chassis]\n", "x.toml");
    FAIL();
  } catch (const chassis_file_error& error) {
    EXPECT_STREQ(error.what(),
                 "x.toml:1:1: [chassis] has no slots; expected is a whole number, 1 to 255\n"
                 "x.toml:1:1: [chassis] has no type; expected is a whole number, -2147483648 to 2147483647");
  }
}

} // namespace
