// Interface indexes: their bits and their names. The bits are literal here, since other programs keep them.
#include <gmock/gmock.h>
#include <vswitch/interface_index.h>

namespace {

using namespace vswitch;
using ::testing::Eq;
using ::testing::Optional;

TEST(InterfaceIndex, PhysicalPortHasTypeSlotAndPortCountedFromZero) {
  EXPECT_EQ(fc_port_index(1, 1), 0x01000000u);
  EXPECT_EQ(fc_port_index(3, 5), 0x01020400u);
  EXPECT_EQ(fc_port_index(256, 256), 0x01FFFF00u);
}

TEST(InterfaceIndex, LogicalInterfaceHasTypeAndNumber) {
  EXPECT_EQ(logical_index(IF_TYPE_PORT_CHANNEL, 5), 0x04000005u);
  EXPECT_EQ(logical_index(IF_TYPE_FCIP, 0xFFFFFF), 0x0AFFFFFFu);
  EXPECT_EQ(logical_index(kManagementPort, 0), 0x02000000u);
}

TEST(InterfaceIndex, PortComesBackFromItsIndex) {
  for (unsigned slot = 1; slot <= 256; ++slot)
    for (unsigned port : {1u, 2u, 48u, 254u, 256u}) {
      auto found = fc_port_of(fc_port_index(slot, port));
      ASSERT_TRUE(found);
      EXPECT_EQ(found->slot, slot);
      EXPECT_EQ(found->port, port);
    }
}

TEST(InterfaceIndex, OnlyAPhysicalPortsIndexWithAnEmptyLowByteIsAPort) {
  EXPECT_FALSE(fc_port_of(0x04000005));
  EXPECT_FALSE(fc_port_of(0x01020401));
  EXPECT_FALSE(fc_port_of(0));
}

TEST(InterfaceIndex, NamesOfEveryKind) {
  EXPECT_EQ(interface_name(0x01020400), "fc3/5");
  EXPECT_EQ(interface_name(0x04000005), "port-channel5");
  EXPECT_EQ(interface_name(0x0A00000C), "fcip12");
  EXPECT_EQ(interface_name(0x02000000), "mgmt0");
  EXPECT_EQ(interface_name(0x20000007), "0x20000007");
  EXPECT_EQ(interface_name(0x01020401), "0x01020401");
}

TEST(InterfaceIndex, NamesOfEveryKindAreUnderstood) {
  EXPECT_THAT(parse_interface_name("fc3/5"), Optional(0x01020400u));
  EXPECT_THAT(parse_interface_name("fc256/256"), Optional(0x01FFFF00u));
  EXPECT_THAT(parse_interface_name("port-channel5"), Optional(0x04000005u));
  EXPECT_THAT(parse_interface_name("fcip12"), Optional(0x0A00000Cu));
  EXPECT_THAT(parse_interface_name("mgmt0"), Optional(0x02000000u));
  EXPECT_THAT(parse_interface_name("0x2000000a"), Optional(0x2000000Au));
}

TEST(InterfaceIndex, WhatIsNotAnInterfaceNameIsNone) {
  for (const char* name :
       {"",        "fc",         "fc3",     "fc3/",           "fc/5",         "fc0/5",        "fc3/0",
        "fc257/1", "fc1/257",    "fc3/5 ",  " fc3/5",         "fc3/5x",       "fc-3/5",       "FC3/5",
        "fcip",    "fcip-1",     "fcipx",   "fcip1.1",        "fcip16777216", "mgmt",         "eth0",
        "0x",      "0x00000000", "0x123",   "0x123456789",    "0x1234567g",   "port-channel", "port-channel 5",
        "3/5",     "01020400",   "fc3/5-7", "fcip99999999999"})
    EXPECT_EQ(parse_interface_name(name), std::nullopt) << '"' << name << '"';
}

TEST(InterfaceIndex, LogicalNumberAndTypeComeBack) {
  EXPECT_EQ(interface_type(0x0A00000C), IF_TYPE_FCIP);
  EXPECT_EQ(logical_number(0x0A00000C), 12u);
  EXPECT_EQ(logical_number(0x04FFFFFF), 0xFFFFFFu);
}

} // namespace
