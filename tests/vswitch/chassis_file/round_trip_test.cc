// Whatever can be described comes back from a chassis file, and from the database, as it was.
#include <gmock/gmock.h>
#include <vswitch/chassis_file.h>
#include <vswitch/interface_index.h>
#include <vswitch/switch_store.h>

#include <algorithm>
#include <random>
#include <set>

#include "test_switch.h"

namespace {

using namespace vswitch;

class random_switch {
 public:
  explicit random_switch(unsigned seed) : random_(seed) {}

  chassis_description make() {
    make_chassis();
    make_cards();
    make_interfaces();
    for (unsigned i = below(6); i > 0; --i) chassis_.vsans.emplace(static_cast<uint16_t>(1 + below(4095)), text());
    make_ports();
    make_tables();
    for (unsigned i = below(5); i > 0; --i) chassis_.times[static_cast<uint16_t>(1 + below(4095))] = reference();
    make_nodes();
    return chassis_;
  }

 private:
  unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
  bool chance(unsigned percent) { return below(100) < percent; }

  std::string text() {
    static const char* const texts[] = {
        "",        "plain",        "with \"quotes\"", "back\\slash", "two\nlines", "\x01\x1f\x7f",
        "Käfer ☕", "# no comment", "tab\tstop",       "''"};
    return texts[below(std::size(texts))];
  }

  void make_chassis() {
    chassis_.name = text();
    for (auto& byte : chassis_.platform_record) byte = static_cast<uint8_t>(chance(50) ? 0 : below(256));
    chassis_.platform_record[2] = static_cast<uint8_t>(1 + below(chance(50) ? 20 : 255));
    chassis_.type = static_cast<int32_t>(random_());
    std::set<unsigned> supervisors;
    for (unsigned i = below(4); i > 0; --i) supervisors.insert(1 + below(chassis_.slots()));
    chassis_.supervisors.assign(supervisors.begin(), supervisors.end());
    chassis_.change_counter = chance(50) ? 1 : 1 + below(0xFFFFFFFF);
    if (chance(50))
      for (auto& byte : chassis_.map.vsan_array) byte = static_cast<uint8_t>(below(256));
  }

  void make_cards() {
    for (unsigned slot = 1; slot <= chassis_.slots(); ++slot)
      if (line_card_number(chassis_, slot) && chance(60)) chassis_.line_cards.push_back({slot, 1 + below(254), text()});
  }

  void make_interfaces() {
    std::map<uint32_t, std::vector<uint32_t>> interfaces;
    for (unsigned i = below(8); i > 0; --i) {
      const uint8_t types[] = {kManagementPort, IF_TYPE_PORT_CHANNEL, IF_TYPE_FCIP, 3, 255};
      interfaces[logical_index(types[below(5)], 1 + below(chance(50) ? 20 : 0xFFFFFF))];
    }
    std::set<uint32_t> taken;
    for (auto& [if_index, members] : interfaces)
      if (interface_type(if_index) == IF_TYPE_PORT_CHANNEL) members = some_ports(taken);
    for (auto& [if_index, members] : interfaces) chassis_.interfaces.push_back({if_index, members});
  }

  std::vector<uint32_t> some_ports(std::set<uint32_t>& taken) {
    std::vector<uint32_t> ports;
    for (const auto& card : chassis_.line_cards)
      for (unsigned port = 1; port <= card.ports; ++port)
        if (chance(10) && taken.insert(fc_port_index(card.slot, port)).second)
          ports.push_back(fc_port_index(card.slot, port));
    return ports;
  }

  // Runs that count up, runs that stand still, and single ports.
  void make_ports() {
    for (unsigned index = 0; index < FICON_PMAP_PORT_ENTRIES;) {
      const unsigned end = std::min(FICON_PMAP_PORT_ENTRIES + 0u, index + 1 + below(60));
      ficon_pmap_port_entry entry{number(), number(), {}};
      for (unsigned i = below(9); i > 0; --i) entry.vsans[i - 1] = static_cast<uint16_t>(1 + below(4095));
      const auto vsan = static_cast<uint16_t>(chance(40) ? entry.vsans[0] : below(4096));
      const bool counts = chance(70);
      for (; index < end; ++index) {
        chassis_.map.port_to_pn[index] = entry;
        chassis_.map.port_to_vsan[index] = vsan;
        if (!counts) continue;
        if (entry.pn != FICON_PMAP_NO_NUMBER) ++entry.pn;
        if (entry.pa != FICON_PMAP_NO_NUMBER) ++entry.pa;
      }
    }
  }

  uint16_t number() {
    return static_cast<uint16_t>(chance(40) ? 512 : chance(80) ? below(256) : chance(50) ? 505 + below(16) : below(65000));
  }

  void make_tables() {
    chassis_.map.pa_to_pn = addresses_of_ports(chassis_.map);
    if (chance(20)) chassis_.map.pa_to_pn.fill(FICON_PMAP_NO_NUMBER);
    if (chance(50))
      for (unsigned i = below(40); i > 0; --i) chassis_.map.pa_to_pn[below(256)] = number();
    for (unsigned i = below(20); i > 0; --i) chassis_.map.pn_to_if[below(256)] = bound();
  }

  // Mostly what a clock says.
  time_reference reference() {
    const auto microseconds = static_cast<int32_t>(chance(70) ? below(1000000) : random_());
    const uint64_t high = random_();
    return {{static_cast<int32_t>(random_()), microseconds}, high << 32 | random_()};
  }

  void make_nodes() {
    for (const auto& interface : chassis_.interfaces)
      if (chance(30)) chassis_.nodes.emplace(interface.if_index, node());
    for (const auto& card : chassis_.line_cards)
      for (unsigned i = below(5); i > 0; --i)
        chassis_.nodes.emplace(fc_port_index(card.slot, 1 + below(card.ports)), node());
  }

  node_descriptor node() {
    node_descriptor made;
    made.codepage = kCodePages[below(kCodePages.size())].number;
    if (chance(50)) made.flags = static_cast<uint32_t>(random_());
    for (const auto& field : kNodeTexts)
      if (chance(80)) made.*field.text = *padded(field, letters(1 + below(static_cast<unsigned>(field.length))));
    if (chance(50)) made.tag = static_cast<uint16_t>(below(0x10000));
    return made;
  }

  std::string letters(unsigned length) {
    std::string made;
    for (unsigned i = 0; i < length; ++i) made += "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[below(36)];
    return made;
  }

  uint32_t bound() {
    if (chance(30) && !chassis_.interfaces.empty())
      return chassis_.interfaces[below(static_cast<unsigned>(chassis_.interfaces.size()))].if_index;
    if (chance(50) && !chassis_.line_cards.empty()) return fc_port_index(chassis_.line_cards[0].slot, 1 + below(254));
    return static_cast<uint32_t>(random_());
  }

  std::mt19937 random_;
  chassis_description chassis_;
};

TEST(RoundTrip, EveryDescribableSwitchComesBackFromItsFile) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    const auto chassis = random_switch(seed).make();
    const std::string text = write_chassis_file(chassis);
    ASSERT_EQ(parse_chassis_text(text, "written"), chassis) << "seed " << seed << "\n" << text;
  }
}

TEST(RoundTrip, EveryDescribableSwitchComesBackFromTheDatabase) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    const auto chassis = random_switch(seed).make();
    ASSERT_EQ(switch_store::in_memory(chassis)->describe(), chassis) << "seed " << seed;
  }
}

TEST(RoundTrip, ExamplesComeBackAndAreWrittenTheSameAgain) {
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    const auto chassis = read_chassis_file(std::string(CHNSW_EXAMPLES) + "/" + name + ".toml");
    const std::string text = write_chassis_file(chassis);
    EXPECT_EQ(parse_chassis_text(text, "written"), chassis) << name;
    EXPECT_EQ(write_chassis_file(parse_chassis_text(text, "written")), text) << name;
  }
}

TEST(RoundTrip, WrittenFileFoldsRunsOfPorts) {
  auto chassis = vswitch_test::small_switch();
  for (unsigned i = 0; i < 48; ++i)
    chassis.map.port_to_pn[i] = {static_cast<uint16_t>(i), static_cast<uint16_t>(0x20 + i), {10}};
  for (unsigned i = 0; i < 48; ++i) chassis.map.port_to_vsan[i] = i < 40 ? 10 : 0;
  for (unsigned i = 1024; i < 1028; ++i) chassis.map.port_to_pn[i].pn = 99;
  chassis.map.pa_to_pn = addresses_of_ports(chassis.map);
  EXPECT_EQ(write_chassis_file(chassis), R"([chassis]
name = "small"
slots = 10
type = 32
supervisors = [5, 6]
platform_record = "01 02 0a 04 05 06 07 08"
change_counter = 7
port_vsan_array = "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 5a"

[[line_card]]
slot = 1
ports = 48
name = "first"

[[line_card]]
slot = 2
ports = 16

[[line_card]]
slot = 7
ports = 24
name = "behind the supervisors"

[[vsan]]
number = 10
name = "production"

[[vsan]]
number = 20

[[port_channel]]
number = 5
members = ["fc1/3-4"]

[[interface]]
name = "mgmt0"

[[interface]]
name = "fcip3"

[[port]]
interface = "fc1/1-40"
pn = 0
pa = 0x20
vsans = [10]

[[port]]
interface = "fc1/41-48"
pn = 40
pa = 0x48
vsans = [10]
vsan = "none"

[[port]]
index = 1024
pn = 99

[[port]]
index = 1025
pn = 99

[[port]]
index = 1026
pn = 99

[[port]]
index = 1027
pn = 99

[[binding]]
pn = 240
interface = "fcip3"
)");
}

TEST(RoundTrip, TimeReferencesAreWrittenAsTimesOrElseAsTheirWords) {
  auto chassis = vswitch_test::small_switch();
  chassis.times[10] = {{1420448823, 900000}, 0xCE4F44C4E9760000};
  chassis.times[20] = {{-1, 1000000}, 1};
  chassis.times[30] = {{0, 0}, 0};
  const std::string text = write_chassis_file(chassis);
  EXPECT_THAT(text, ::testing::EndsWith(R"(
[[time_reference]]
vsan = 10
host_time = "2015-01-05T09:07:03.900000Z"
tod = "CE4F44C4E9760000"

[[time_reference]]
vsan = 20
host_seconds = -1
host_microseconds = 1000000
tod = "0000000000000001"

[[time_reference]]
vsan = 30
host_time = "1970-01-01T00:00:00.000000Z"
tod = "0000000000000000"
)"));
  EXPECT_EQ(parse_chassis_text(text, "written"), chassis);
}

TEST(RoundTrip, NodesAreWrittenWithoutWhatIsUsualAndWithoutBlanks) {
  auto chassis = vswitch_test::small_switch();
  auto& whole = chassis.nodes[fc_port_index(1, 5)];
  whole.codepage = 273;
  whole.flags = 0xA1;
  whole.type = "004711";
  whole.model = "A01";
  whole.manufacturer = "AC ";
  whole.plant = "07";
  whole.sequence = "0000000SN042";
  whole.tag = 0xEF;
  chassis.nodes[logical_index(IF_TYPE_FCIP, 3)] = {};
  const std::string text = write_chassis_file(chassis);
  EXPECT_THAT(text, ::testing::EndsWith(R"(
[[node]]
interface = "fc1/5"
codepage = 273
flags = 0x000000A1
type = "004711"
model = "A01"
manufacturer = "AC"
plant = "07"
sequence = "0000000SN042"
tag = 0x00EF

[[node]]
interface = "fcip3"
)"));
  EXPECT_EQ(parse_chassis_text(text, "written"), chassis);
}

// A table of addresses without any entry differs from one that follows the ports.
TEST(RoundTrip, EmptyTableOfAddressesIsWrittenAsOneEntryWithoutNumber) {
  auto chassis = vswitch_test::small_switch();
  chassis.map.pa_to_pn.fill(512);
  const std::string text = write_chassis_file(chassis);
  EXPECT_THAT(text, ::testing::EndsWith("\n[[address]]\npa = 0x00\npn = 512\n"));
  EXPECT_EQ(parse_chassis_text(text, "written"), chassis);
}

TEST(RoundTrip, AddressesThatDifferFromThePortsAreFolded) {
  auto chassis = vswitch_test::small_switch();
  chassis.map.pa_to_pn.fill(512);
  for (unsigned pa = 0x30; pa < 0x40; ++pa) chassis.map.pa_to_pn[pa] = static_cast<uint16_t>(pa + 1);
  chassis.map.pa_to_pn[0x40] = 7;
  EXPECT_THAT(write_chassis_file(chassis),
              ::testing::EndsWith("\n[[address]]\npa = \"0x30-0x3F\"\npn = 49\n\n[[address]]\npa = 0x40\npn = 7\n"));
}

} // namespace
