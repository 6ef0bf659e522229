// Lists and ranges: what they stand for, and where a wrong one is wrong.
#include <gmock/gmock.h>

#include "asked_switch.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"

namespace inspect_test {
namespace {

using inspect::kPortAddress;
using inspect::kSlot;
using inspect::kVsan;
using inspect::parse_number;
using inspect::parse_numbers;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> shown(const std::vector<vswitch::fc_port>& ports) {
  std::vector<std::string> names;
  for (const auto& port : ports) names.push_back(std::to_string(port.slot) + "/" + std::to_string(port.port));
  return names;
}

TEST(NumberLists, KeepTheOrderAndWhatIsNamedTwice) {
  EXPECT_THAT(parse_numbers(kPortAddress, {"C0,1E-21", "C0"}, {}), ElementsAre(0xC0, 0x1E, 0x1F, 0x20, 0x21, 0xC0));
  EXPECT_THAT(parse_numbers(kVsan, {"20", "all", "0x10"}, {7, 8}), ElementsAre(20, 7, 8, 16));
  EXPECT_THAT(parse_numbers(kVsan, {}, {7, 8}), IsEmpty());
}

TEST(NumberLists, BoundsBelongToTheKind) {
  EXPECT_EQ(parse_number(kVsan, "4095"), 4095U);
  EXPECT_EQ(parse_number(kVsan, "0"), 0U);
  EXPECT_EQ(
      error_of([] { parse_number(kVsan, "4096"); }).message,
      "VSAN \"4096\", character 1: 4096 is out of range; expected a decimal number from 0 to 4095, as in 10 or 10,20");
  EXPECT_EQ(error_of([] { parse_number(kSlot, "0"); }).message,
            "slot \"0\", character 1: 0 is out of range; expected a decimal number from 1 to 255, as in 3 or 1-4");
  EXPECT_EQ(
      error_of([] { parse_number(kPortAddress, "10000"); }).message,
      "port address \"10000\", character 1: 10000 is out of range; expected a hexadecimal number from 0 to FFFF, as in "
      "C0 or 10-1F,30");
  EXPECT_EQ(error_of([] { parse_number(kVsan, "99999999999999999999"); }).failed, inspect::failure::question);
}

TEST(NumberLists, PlaceInTheWordIsThatOfTheWrongPart) {
  EXPECT_EQ(error_of([] { parse_numbers(kVsan, {"10,20-2x"}, {}); }).message.substr(0, 51),
            "VSAN \"10,20-2x\", character 7: \"2x\" is not a number;");
  EXPECT_EQ(error_of([] { parse_numbers(kVsan, {"10,"}, {}); }).message.substr(0, 41),
            "VSAN \"10,\", character 4: a number is miss");
  EXPECT_EQ(error_of([] { parse_numbers(kVsan, {"1,30-29"}, {}); }).message,
            "VSAN \"1,30-29\", character 3: the range 30-29 runs backwards");
}

TEST(NumberLists, RangeOfOneIsARange) {
  EXPECT_THAT(parse_numbers(kVsan, {"30-30"}, {}), ElementsAre(30));
}

TEST(NumberLists, NumbersBelowNothingAreNone) {
  EXPECT_THAT(inspect::numbers_below(0), IsEmpty());
  EXPECT_THAT(inspect::numbers_below(3), ElementsAre(0, 1, 2));
}

TEST(PortLists, SlotStandsForItsCardAndAllForEveryCard) {
  EXPECT_THAT(shown(inspect::parse_ports(campus(), {"5,1/7-8"})), ElementsAre("5/1", "5/2", "5/3", "5/4", "1/7", "1/8"));
  EXPECT_THAT(inspect::parse_ports(campus(), {"all"}), SizeIs(20));
  EXPECT_EQ(error_of([] { inspect::parse_ports(campus(), {"1/1,3"}); }).message,
            "slot \"1/1,3\", character 5: slot 3 has no line card; name a port, as in 3/1, to ask anyway");
}

TEST(PortLists, PortBeyondTheCardMayBeNamedButNot255) {
  EXPECT_THAT(shown(inspect::parse_ports(campus(), {"3/254"})), ElementsAre("3/254"));
  EXPECT_EQ(error_of([] { inspect::parse_ports(campus(), {"3/255"}); }).message.substr(0, 46),
            "port \"3/255\", character 3: 255 is out of range");
}

TEST(PortLists, InterfacesAreNamesRangesAndIndexes) {
  EXPECT_THAT(inspect::parse_interfaces(campus(), {"fc2/3-4,port-channel5", "0x0A000003"}),
              ElementsAre(0x01010200, 0x01010300, 0x04000005, 0x0A000003));
  EXPECT_THAT(inspect::parse_interfaces(campus(), {"all"}), SizeIs(21));
  EXPECT_EQ(inspect::parse_interface("mgmt0"), 0x02000000U);
  EXPECT_EQ(error_of([] { inspect::parse_interfaces(campus(), {"fc2/3,fd2/4"}); }).message.substr(0, 70),
            "interface \"fc2/3,fd2/4\", character 7: \"fd2/4\" is not an interface; exp");
}

} // namespace
} // namespace inspect_test
