#include "inspect/chassis/node_identity.h"

#include <gtest/gtest.h>

#include <cstring>

#include "inspect_test.h"

namespace inspect {
namespace {

ficon_node_descriptor descriptor_of(const std::string& digits) {
  const std::string bytes = inspect_test::bytes(digits);
  ficon_node_descriptor descriptor{};
  EXPECT_EQ(bytes.size(), sizeof descriptor);
  std::memcpy(&descriptor, bytes.data(), sizeof descriptor);
  return descriptor;
}

const ficon_node_descriptor kSent = descriptor_of("10030405 F0F0F8F4F0F1 C3F0F2 C1C340 F840 F0F0F0F0F0F0F0C1F1F2F3F4 002A");

TEST(NodeIdentity, IsReadInTheCodePageOfItsHost) {
  const node_identity node = identity_of(37, kSent);
  ASSERT_TRUE(node.is_readable());
  EXPECT_EQ(node_text(node), "008401-C02-AC-8-0000000A1234");
  EXPECT_EQ(descriptor_hex(node.sent, ""), "10030405F0F0F8F4F0F1C3F0F2C1C340F840F0F0F0F0F0F0F0C1F1F2F3F4002A");
  EXPECT_EQ(descriptor_hex(node.converted, " "), "10030405 303038343031 433032 414320 3820 303030303030304131323334 002A");
}

TEST(NodeIdentity, HasItsFieldsWithoutTheBlanks) {
  const vswitch::node_descriptor fields = node_fields(identity_of(37, kSent));
  EXPECT_EQ(fields.codepage, 37u);
  EXPECT_EQ(fields.flags, 0x10030405u);
  EXPECT_EQ(fields.type, "008401");
  EXPECT_EQ(fields.manufacturer, "AC");
  EXPECT_EQ(fields.plant, "8");
  EXPECT_EQ(fields.tag, 42);
}

TEST(NodeIdentity, ThatCannotBeConvertedHasNumbersAndNoTexts) {
  const node_identity node = identity_of(38, kSent);
  EXPECT_FALSE(node.is_readable());
  EXPECT_EQ(node_text(node), "");
  EXPECT_EQ(node_fields(node).type, "");
  EXPECT_EQ(node_fields(node).tag, 42);
  EXPECT_EQ(codepage_text(38), "38 unrecognized");
}

TEST(NodeIdentity, ThatIsConvertedAlreadyIsTakenAsItIs) {
  ficon_node_descriptor converted = identity_of(37, kSent).converted;
  const node_identity node = identity_of_converted(38, converted);
  EXPECT_TRUE(node.is_readable());
  EXPECT_EQ(node_text(node), "008401-C02-AC-8-0000000A1234");
}

} // namespace
} // namespace inspect
