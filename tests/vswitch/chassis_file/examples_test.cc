// The examples are sites without a fault: every number of their maps leads to its port and back, by the library's word.
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <vswitch/chassis_file.h>
#include <vswitch/interface_index.h>
#include <vswitch/vswitch.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "test_switch.h"

namespace {

using namespace vswitch;

struct example {
  const char* name;
  unsigned slots;
  int type;
  unsigned numbered; // entries of the port map with a port number
  unsigned nodes;
};
void PrintTo(const example& subject, std::ostream* out) {
  *out << subject.name;
}

constexpr example kExamples[] = {{"one-slot", 1, 27, 40, 0},
                                 {"six-slot", 6, 34, 144, 2},
                                 {"director-10", 10, 32, 131, 4},
                                 {"director-13", 13, 31, 112, 0},
                                 {"director-18", 18, 38, 214, 0}};

// The library keeps what it learned of the first switch of a process, so every example is asked in a process of its own.
class Example : public ::testing::TestWithParam<example> {
 protected:
  static std::string path() { return std::string(CHNSW_EXAMPLES) + "/" + GetParam().name + ".toml"; }

  static std::vector<unsigned> numbered(const chassis_description& chassis) {
    std::vector<unsigned> indexes;
    for (unsigned index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index)
      if (chassis.map.port_to_pn[index].pn != FICON_PMAP_NO_NUMBER) indexes.push_back(index);
    return indexes;
  }
};

INSTANTIATE_TEST_SUITE_P(All, Example, ::testing::ValuesIn(kExamples), [](const auto& test) {
  std::string name = test.param.name;
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name;
});

TEST_P(Example, IsTheSiteThatItsNameSays) {
  const auto chassis = read_chassis_file(path());
  EXPECT_EQ(chassis.slots(), GetParam().slots);
  EXPECT_EQ(chassis.type, GetParam().type);
  EXPECT_EQ(numbered(chassis).size(), GetParam().numbered);
  EXPECT_EQ(chassis.nodes.size(), GetParam().nodes);
}

TEST_P(Example, EveryNumberLeadsToItsInterfaceAndBack) {
  const auto chassis = read_chassis_file(path());
  const auto client = [&](const chassis_description& described) {
    use_switch(switch_store::in_memory(described));
    ficon_get_max_ficon_ports();
    unsigned wrong = 0;
    for (unsigned index : numbered(described)) {
      const auto& entry = described.map.port_to_pn[index];
      uint16_t pn = 0;
      uint16_t pa = 0;
      uint32_t if_index = 0;
      uint32_t found_index = 0;
      wrong += ficon_pmap_get_pa_vsan_to_pn(entry.pa, entry.vsans[0], &pn) != 0 || pn != entry.pn;
      wrong += ficon_pmap_get_pn_to_pa(entry.pn, &pa) != 0 || pa != entry.pa;
      wrong += ficon_pmap_get_pn_to_if(entry.pn, &if_index) != 0;
      wrong += ficon_pmap_get_if_to_pn(if_index, &pn) != 0 || pn != entry.pn;
      wrong += ficon_pmap_get_if_to_index(if_index, &found_index) != 0 || found_index != index;
    }
    return wrong;
  };
  EXPECT_EXIT(std::exit(static_cast<int>(std::min(client(chassis), 200u))), ::testing::ExitedWithCode(0), "");
}

TEST_P(Example, LineCardsStandWhereTheLibraryHasThem) {
  const auto client = [](const chassis_description& described) {
    use_switch(switch_store::in_memory(described));
    unsigned wrong = 0;
    for (unsigned slot = 1; slot <= described.slots(); ++slot) {
      uint8_t number = 0xEE;
      const auto expected = line_card_number(described, slot);
      const int32_t status = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &number);
      wrong += expected ? status != 0 || number != *expected : status == 0;
    }
    return wrong;
  };
  EXPECT_EXIT(std::exit(static_cast<int>(client(read_chassis_file(path())))), ::testing::ExitedWithCode(0), "");
}

TEST(Examples, AreTheseFive) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(CHNSW_EXAMPLES)) names.insert(entry.path().filename());
  EXPECT_THAT(names, ::testing::ElementsAre("director-10.toml", "director-13.toml", "director-18.toml", "one-slot.toml",
                                            "six-slot.toml"));
}

} // namespace
