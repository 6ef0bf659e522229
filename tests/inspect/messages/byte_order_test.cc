#include "inspect/messages/byte_order.h"

#include <gtest/gtest.h>

namespace inspect {
namespace {

TEST(NumberAt, IsOfItsLengthAndOrderAlone) {
  const std::string bytes = "\x01\x82\x03\x84\x05";
  EXPECT_EQ(number_at(bytes, 1, 4, byte_order::big), 0x82038405u);
  EXPECT_EQ(number_at(bytes, 1, 4, byte_order::little), 0x05840382u);
  EXPECT_EQ(number_at(bytes, 1, 2, byte_order::big), 0x8203u);
  EXPECT_EQ(number_at(bytes, 1, 2, byte_order::little), 0x0382u);
  EXPECT_EQ(number_at(bytes, 1, 1, byte_order::big), 0x82u);
  EXPECT_EQ(number_at(bytes, 1, 1, byte_order::little), 0x82u);
}

TEST(SetNumber, LeavesTheBytesAround) {
  std::string bytes = "aaaaaa";
  set_number(bytes, 1, 4, byte_order::big, 0x81020384);
  EXPECT_EQ(bytes,
            "a\x81\x02\x03\x84"
            "a");
  set_number(bytes, 1, 4, byte_order::little, 0x81020384);
  EXPECT_EQ(bytes,
            "a\x84\x03\x02\x81"
            "a");
}

TEST(SetNumber, CutsWhatDoesNotFit) {
  std::string bytes = "aaaa";
  set_number(bytes, 1, 2, byte_order::big, 0x12345678);
  EXPECT_EQ(bytes,
            "a\x56\x78"
            "a");
}

} // namespace
} // namespace inspect
