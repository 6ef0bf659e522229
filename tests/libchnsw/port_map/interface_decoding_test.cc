// Slot and port of an interface: ficon_if_to_slot_port_logic.
#include "port_map_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr uint32_t kPort = 0x1000307; // slot 3, port 7

class InterfaceDecoding : public PortMapTest {
 protected:
  uint32_t decode(uint32_t if_index) {
    return static_cast<uint32_t>(ficon_if_to_slot_port_logic(if_index, &slot, &port, &flag));
  }

  uint8_t slot = kUntouched8;
  uint8_t port = kUntouched8;
  uint32_t flag = kUntouched32;
};

TEST_F(InterfaceDecoding, PhysicalPortYieldsSlotAndPortAndClearsTheFlag) {
  const auto reports = reports_of([&] { EXPECT_EQ(decode(kPort), 0u); });
  EXPECT_EQ(slot, 3);
  EXPECT_EQ(port, 7);
  EXPECT_EQ(flag, 0u);
  EXPECT_THAT(reports, IsEmpty());
  EXPECT_THAT(platform.calls(),
              ElementsAre("if_index_get_type(0x1000307)", "if_index_get_slot(0x1000307)", "if_index_get_port(0x1000307)"));
}

TEST_F(InterfaceDecoding, SlotAndPortAreHandedOnAsThePlatformCountsThem) {
  EXPECT_EQ(decode(0x100FFFE), 0u);
  EXPECT_EQ(slot, 255);
  EXPECT_EQ(port, 254);
}

TEST_F(InterfaceDecoding, LogicalInterfacesSetTheFlagOnly) {
  for (const uint32_t if_index : {0x4000001u, 0xA000001u}) {
    flag = kUntouched32;
    const auto reports = reports_of([&] { EXPECT_EQ(decode(if_index), 0u); });
    EXPECT_EQ(flag, 1u);
    EXPECT_THAT(reports, IsEmpty());
  }
  EXPECT_EQ(slot, kUntouched8);
  EXPECT_EQ(port, kUntouched8);
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x4000001)", "if_index_get_type(0xa000001)"));
}

// Nothing is asked about a logical interface's slot and port, so their addresses are not needed.
TEST_F(InterfaceDecoding, LogicalInterfaceNeedsNoSlotOrPortAddress) {
  EXPECT_EQ(ficon_if_to_slot_port_logic(0x4000001, nullptr, nullptr, &flag), 0);
  EXPECT_EQ(flag, 1u);
}

// The plain 11 is what clients compare with.
TEST_F(InterfaceDecoding, OtherTypeIsReportedAndRefusedWithThePlainEleven) {
  const auto reports = reports_of([&] { EXPECT_EQ(decode(0x2000005), 11u); });
  EXPECT_THAT(reports, ElementsAre("error if_index 0x2000005 not fc port. type = 2\n",
                                   "printed FICON_ERR: if_index 0x2000005 not fc port. type = 2\n"));
  EXPECT_EQ(slot, kUntouched8);
  EXPECT_EQ(port, kUntouched8);
  EXPECT_EQ(flag, kUntouched32);
}

TEST_F(InterfaceDecoding, EveryTypeButThreeIsRefused) {
  for (int type = 0; type <= 255; ++type) {
    if (type == 1 || type == 4 || type == 10) continue;
    platform.interface(kPort).type = static_cast<uint8_t>(type);
    const auto reports = reports_of([&] { EXPECT_EQ(decode(kPort), 11u); });
    ASSERT_EQ(reports.at(0), "error if_index 0x1000307 not fc port. type = " + std::to_string(type) + "\n");
  }
  EXPECT_EQ(flag, kUntouched32);
}

TEST_F(InterfaceDecoding, UnknownTypeIsReportedAndNothingWritten) {
  platform.interface(kPort).type_status = 77;
  const auto reports = reports_of([&] { EXPECT_EQ(decode(kPort), 77u); });
  EXPECT_THAT(reports, ElementsAre("error failed to get if type for if_index:0x1000307 (77)\n",
                                   "printed FICON_ERR: failed to get if type for if_index:0x1000307 (77)\n"));
  EXPECT_EQ(slot, kUntouched8);
  EXPECT_EQ(port, kUntouched8);
  EXPECT_EQ(flag, kUntouched32);
  EXPECT_THAT(platform.calls(), ElementsAre("if_index_get_type(0x1000307)"));
}

TEST_F(InterfaceDecoding, UnknownSlotIsReportedWithTheFlagCleared) {
  platform.interface(kPort).slot_status = 0x40460001;
  const auto reports = reports_of([&] { EXPECT_EQ(decode(kPort), 0x40460001u); });
  EXPECT_THAT(reports, ElementsAre("error Failed to get slot for if_index 0x1000307 (1078329345)\n",
                                   "printed FICON_ERR: Failed to get slot for if_index 0x1000307 (1078329345)\n"));
  EXPECT_EQ(slot, kUntouched8);
  EXPECT_EQ(port, kUntouched8);
  EXPECT_EQ(flag, 0u);
  EXPECT_EQ(platform.count("if_index_get_port"), 0);
}

TEST_F(InterfaceDecoding, UnknownPortIsReportedWithSlotWrittenAndFlagCleared) {
  platform.interface(kPort).port_status = -79;
  const auto reports = reports_of([&] { EXPECT_EQ(decode(kPort), 0xFFFFFFB1u); });
  EXPECT_THAT(reports, ElementsAre("error Failed to get port for if_index 0x1000307 (-79)\n",
                                   "printed FICON_ERR: Failed to get port for if_index 0x1000307 (-79)\n"));
  EXPECT_EQ(slot, 3);
  EXPECT_EQ(port, kUntouched8);
  EXPECT_EQ(flag, 0u);
}

TEST_F(InterfaceDecoding, NegativeStatusesAreFailuresToo) {
  platform.interface(kPort).slot_status = -2;
  output_of([&] { EXPECT_EQ(decode(kPort), 0xFFFFFFFEu); });
  platform.interface(kPort).type_status = -1;
  output_of([&] { EXPECT_EQ(decode(kPort), 0xFFFFFFFFu); });
  EXPECT_EQ(platform.count("if_index_get_slot"), 1);
  EXPECT_EQ(platform.count("if_index_get_port"), 0);
}

TEST_F(InterfaceDecoding, FlagIsClearedBeforeTheSlotIsAsked) {
  uint32_t flag_then = kUntouched32;
  platform.on_call = [&](const std::string& call) {
    if (call == "if_index_get_slot(0x1000307)") flag_then = flag;
  };
  EXPECT_EQ(decode(kPort), 0u);
  EXPECT_EQ(flag_then, 0u);
}

TEST_F(InterfaceDecoding, NoTableIsTouched) {
  output_of([&] {
    for (const uint32_t if_index : {0x1000307u, 0x4000001u, 0x2000001u}) decode(if_index);
  });
  EXPECT_EQ(platform.count("elemdb_lookup_element"), 0);
  EXPECT_EQ(platform.count("memacct_alloc"), 0);
  EXPECT_EQ(ficon_pmap_port_to_pn, nullptr);
  EXPECT_EQ(ficon_pmap_pn_to_logif, nullptr);
}

} // namespace
