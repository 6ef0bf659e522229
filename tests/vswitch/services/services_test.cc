// Every service of the virtual switch, with every status that it has.
#include <gmock/gmock.h>
#include <platform/elemdb.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/platform_info.h>
#include <platform/portidx.h>
#include <vswitch/interface_index.h>
#include <vswitch/vswitch.h>

#include <cerrno>
#include <cstring>

#include "test_switch.h"

namespace {

using namespace vswitch;

constexpr uint32_t kFirstPort = 0x01000000;  // fc1/1
constexpr uint32_t kChannel = 0x04000005;    // port-channel5
constexpr uint32_t kTunnel = 0x0A000003;     // fcip3
constexpr uint32_t kManagement = 0x02000000; // mgmt0
constexpr uint32_t kUnknownTunnel = 0x0A000004;
constexpr uint32_t kOddPort = 0x01000001; // type 1, but no port

class Services : public ::testing::Test {
 protected:
  Services() { use_switch(switch_store::in_memory(vswitch_test::small_switch())); }
  ~Services() override { use_switch(nullptr); }
};

TEST_F(Services, PlatformInfoIsTheRecordWhole) {
  ficon_platform_info info{};
  EXPECT_EQ(get_platform_info(&info), 0);
  const uint8_t expected[] = {1, 2, 10, 4, 5, 6, 7, 8};
  EXPECT_EQ(std::memcmp(&info, expected, sizeof expected), 0);
}

TEST_F(Services, InventoryRefusesNullWithInvalidArgument) {
  errno = 0;
  EXPECT_EQ(get_platform_info(nullptr), 0x40440001);
  EXPECT_EQ(errno, EINVAL);
  errno = 0;
  EXPECT_EQ(hwinv_get_chassis_type(nullptr), 0x40440001);
  EXPECT_EQ(errno, EINVAL);
}

TEST_F(Services, ChassisTypeIsSigned) {
  auto chassis = vswitch_test::small_switch();
  chassis.type = -5;
  use_switch(switch_store::in_memory(chassis));
  int32_t type = 0;
  EXPECT_EQ(hwinv_get_chassis_type(&type), 0);
  EXPECT_EQ(type, -5);
}

TEST_F(Services, ElementIsCopiedUpToTheLengthAskedFor) {
  const uint32_t key = 6;
  uint8_t value[8];
  std::memset(value, 0xEE, sizeof value);
  elemdb_request request{1, 2, 4, &key, 4, value};
  EXPECT_EQ(elemdb_lookup_element(&request), 0);
  uint32_t words[2];
  std::memcpy(words, value, sizeof words);
  EXPECT_EQ(words[0], 7u);
  EXPECT_EQ(words[1], 0xEEEEEEEEu);
}

TEST_F(Services, ElementThatIsNotThereLeavesTheValue) {
  const uint32_t key = 9;
  uint32_t value = 0xEEEEEEEE;
  elemdb_request request{1, 2, 4, &key, 4, &value};
  EXPECT_EQ(elemdb_lookup_element(&request), 0x40450001);
  EXPECT_EQ(value, 0xEEEEEEEEu);
}

TEST_F(Services, ElementRequestThatIsNotWellFormedIsRefused) {
  const uint32_t key = 6;
  uint32_t value = 0xEEEEEEEE;
  const elemdb_request good{1, 2, 4, &key, 4, &value};
  auto status_of = [](elemdb_request request) {
    errno = 0;
    const int status = elemdb_lookup_element(&request);
    EXPECT_EQ(errno, EINVAL);
    return status;
  };
  elemdb_request first = good;
  first.first = 2;
  EXPECT_EQ(status_of(first), 0x40450002);
  elemdb_request without_key = good;
  without_key.key = nullptr;
  EXPECT_EQ(status_of(without_key), 0x40450002);
  elemdb_request empty_key = good;
  empty_key.key_length = 0;
  EXPECT_EQ(status_of(empty_key), 0x40450002);
  elemdb_request without_value = good;
  without_value.value = nullptr;
  EXPECT_EQ(status_of(without_value), 0x40450002);
  errno = 0;
  EXPECT_EQ(elemdb_lookup_element(nullptr), 0x40450002);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(value, 0xEEEEEEEEu);
}

TEST_F(Services, TypeOfAnyPhysicalPortIsOneWhateverIsPlugged) {
  for (uint32_t if_index : {kFirstPort, fc_port_index(5, 1), fc_port_index(200, 256)}) {
    uint8_t type = 0xEE;
    EXPECT_EQ(if_index_get_type(if_index, &type), 0);
    EXPECT_EQ(type, 1);
  }
}

TEST_F(Services, TypeOfALogicalInterfaceThatIsThere) {
  for (auto [if_index, expected] : {std::pair(kChannel, 4), std::pair(kTunnel, 10), std::pair(kManagement, 2)}) {
    uint8_t type = 0xEE;
    EXPECT_EQ(if_index_get_type(if_index, &type), 0);
    EXPECT_EQ(type, expected);
  }
}

TEST_F(Services, UnknownInterfaceHasNeitherTypeNorSlotNorPort) {
  for (uint32_t if_index : {0u, kUnknownTunnel, kOddPort, 0xFFFFFFFFu}) {
    uint8_t value = 0xEE;
    EXPECT_EQ(if_index_get_type(if_index, &value), 0x40480002);
    EXPECT_EQ(if_index_get_slot(if_index, &value), 0x40480002);
    EXPECT_EQ(if_index_get_port(if_index, &value), 0x40480002);
    EXPECT_EQ(value, 0xEE);
  }
}

TEST_F(Services, LogicalInterfaceHasNeitherSlotNorPort) {
  uint8_t value = 0xEE;
  EXPECT_EQ(if_index_get_slot(kChannel, &value), 0x40480003);
  EXPECT_EQ(if_index_get_port(kChannel, &value), 0x40480003);
  EXPECT_EQ(value, 0xEE);
}

TEST_F(Services, SlotAndPortOfAPhysicalPortCountFromZero) {
  uint8_t slot = 0xEE;
  uint8_t port = 0xEE;
  EXPECT_EQ(if_index_get_slot(fc_port_index(7, 24), &slot), 0);
  EXPECT_EQ(if_index_get_port(fc_port_index(7, 24), &port), 0);
  EXPECT_EQ(slot, 6);
  EXPECT_EQ(port, 23);
}

TEST_F(Services, InterfaceServicesRefuseNull) {
  EXPECT_EQ(if_index_get_type(kFirstPort, nullptr), 0x40480001);
  EXPECT_EQ(if_index_get_slot(kFirstPort, nullptr), 0x40480001);
  EXPECT_EQ(if_index_get_port(kFirstPort, nullptr), 0x40480001);
  EXPECT_EQ(if_index_phy_fc_port_init(nullptr, 0, 0, 0), 0x40480001);
}

TEST_F(Services, AnyPortOfASlotCanBeBuilt) {
  uint32_t if_index = 0;
  EXPECT_EQ(if_index_phy_fc_port_init(&if_index, 9, 255, 0), 0);
  EXPECT_EQ(if_index, 0x0109FF00u);
  EXPECT_EQ(if_index_phy_fc_port_init(&if_index, 0, 0, 0), 0);
  EXPECT_EQ(if_index, 0x01000000u);
}

TEST_F(Services, PortOfASlotBeyondTheChassisCannotBeBuilt) {
  uint32_t if_index = 0xEEEEEEEE;
  EXPECT_EQ(if_index_phy_fc_port_init(&if_index, 10, 0, 0), 0x40480004);
  EXPECT_EQ(if_index_phy_fc_port_init(&if_index, 255, 0, 0), 0x40480004);
  EXPECT_EQ(if_index_phy_fc_port_init(&if_index, 0, 0, 1), 0x40480001);
  EXPECT_EQ(if_index, 0xEEEEEEEEu);
}

TEST_F(Services, IndexOnTheWireIsBigEndian) {
  const uint32_t wire = hton_if_index(0x01020304);
  const uint8_t expected[] = {1, 2, 3, 4};
  EXPECT_EQ(std::memcmp(&wire, expected, sizeof wire), 0);
  EXPECT_EQ(ntoh_if_index(wire), 0x01020304u);
}

TEST_F(Services, PortsThatAreThereAreNumberedWithoutAGapInSlotOrder) {
  auto index_of = [](unsigned slot, unsigned port) {
    uint16_t index = 0xEEEE;
    EXPECT_EQ(portidx_port_by_if_index(fc_port_index(slot, port), &index), 0);
    return index;
  };
  EXPECT_EQ(index_of(1, 1), 0);
  EXPECT_EQ(index_of(1, 48), 47);
  EXPECT_EQ(index_of(2, 1), 48);
  EXPECT_EQ(index_of(2, 16), 63);
  EXPECT_EQ(index_of(7, 1), 64);
  EXPECT_EQ(index_of(7, 24), 87);
}

TEST_F(Services, HighestPortIndexOfTheLargestChassisFits) {
  chassis_description chassis;
  chassis.platform_record[2] = 255;
  for (unsigned slot = 1; slot <= 255; ++slot) chassis.line_cards.push_back({slot, 254, ""});
  use_switch(switch_store::in_memory(chassis));
  uint16_t index = 0;
  EXPECT_EQ(portidx_port_by_if_index(fc_port_index(255, 254), &index), 0);
  EXPECT_EQ(index, 64769);
}

TEST_F(Services, PortThatIsNotThereHasNoPortIndex) {
  uint16_t index = 0xEEEE;
  for (uint32_t if_index : {fc_port_index(1, 49), fc_port_index(3, 1), fc_port_index(5, 1), fc_port_index(256, 1), kChannel,
                            kTunnel, kOddPort, 0u})
    EXPECT_EQ(portidx_port_by_if_index(if_index, &index), 0x40460002) << std::hex << if_index;
  EXPECT_EQ(portidx_port_by_if_index(kFirstPort, nullptr), 0x40460001);
  EXPECT_EQ(index, 0xEEEE);
}

TEST_F(Services, MemberOfAPortChannelTellsItsNumber) {
  for (unsigned port : {3u, 4u}) {
    lagmap_port_query query{fc_port_index(1, port), 0xEEEEEEEE};
    EXPECT_EQ(lagmap_get_port(&query), 0);
    EXPECT_EQ(query.channel, 5u);
  }
}

TEST_F(Services, PortOutsideOfPortChannelsIsNoMember) {
  for (unsigned port : {1u, 2u, 5u, 48u}) {
    lagmap_port_query query{fc_port_index(1, port), 0xEEEEEEEE};
    EXPECT_EQ(lagmap_get_port(&query), 0x40470006);
    EXPECT_EQ(query.channel, 0xEEEEEEEEu);
  }
}

TEST_F(Services, MembershipOfAnUnknownPortIsAStatusOfItsOwn) {
  for (uint32_t if_index : {fc_port_index(1, 49), fc_port_index(3, 1), kChannel, kTunnel, 0u}) {
    lagmap_port_query query{if_index, 0xEEEEEEEE};
    EXPECT_EQ(lagmap_get_port(&query), 0x40470002) << std::hex << if_index;
    EXPECT_EQ(query.channel, 0xEEEEEEEEu);
  }
  EXPECT_EQ(lagmap_get_port(nullptr), 0x40470001);
}

TEST_F(Services, TimeStampComesFromTheReferenceOfItsVsan) {
  auto chassis = vswitch_test::small_switch();
  chassis.times[10] = {{1420448823, 900000}, 0xCE4F44C4E9760000};
  use_switch(switch_store::in_memory(chassis));
  const ficon_host_time later{1420448824, 100000};
  const char* text = nullptr;
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp_given_time(10, &text, FICON_TOD_FMT_DAY_FIRST, &later), 0u);
  EXPECT_STREQ(text, "Mon Jan 5 09:07:04.899804 2015");
  text = nullptr;
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp_given_time(20, &text, FICON_TOD_FMT_DAY_FIRST, &later), FICON_RC_PLATFORM);
  EXPECT_EQ(text, nullptr);
  switch_in_use()->set_time_reference(20, time_reference{{1420448824, 0}, 0});
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp_given_time(20, &text, FICON_TOD_FMT_YEAR_FIRST, &later), 0u);
  EXPECT_STREQ(text, "1900 Mon Jan 1 00:00:00.24");
}

TEST_F(Services, AnotherSwitchInUseAnswersFromThenOn) {
  auto other = vswitch_test::small_switch();
  other.type = 38;
  use_switch(switch_store::in_memory(other));
  int32_t type = 0;
  hwinv_get_chassis_type(&type);
  EXPECT_EQ(type, 38);
  EXPECT_EQ(chassis_in_use()->type, 38);
}

} // namespace
