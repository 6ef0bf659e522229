// Payloads read and written without a transport.
#include <gmock/gmock.h>
#include <requests.h>
#include <vswitch/tlv_array.h>

#include <cstring>

#include "manager_test.h"

namespace {

using namespace vswitch;
using namespace manager_test;

TEST(TlvValue, ArrayThatSaysToBeLongerThanItsPayloadHoldsNothing) {
  const uint32_t value = 7;
  auto array = tlv_array({{9, &value, 4}});
  ASSERT_EQ(array.size(), 20u);
  const uint32_t longer = 21;
  std::memcpy(&array[4], &longer, 4);
  EXPECT_TRUE(tlv_value(array, 9).empty());
}

TEST(TlvValue, ValueThatReachesBeyondTheArrayIsNotThere) {
  const uint32_t value = 7;
  auto array = tlv_array({{9, &value, 4}});
  const uint16_t longer = 5;
  std::memcpy(&array[14], &longer, 2);
  EXPECT_TRUE(tlv_value(array, 9).empty());
}

TEST(TlvValue, BytesBehindTheArrayDoNotMatter) {
  const uint32_t value = 7;
  auto array = tlv_array({{9, &value, 4}});
  array.resize(100);
  EXPECT_EQ(tlv_value(array, 9).size(), 4u);
}

TEST(TlvValue, PayloadsBelowAHeaderHoldNothing) {
  for (size_t size = 0; size < 12; ++size) {
    payload_bytes bytes(size);
    if (size >= 4) std::memcpy(bytes.data(), &kTlvMagic, 4);
    EXPECT_TRUE(tlv_value(bytes, 0).empty()) << size;
  }
}

TEST(TlvPayload, HoldsTheFirstBytesOfItsRecord) {
  const char record[] = "abcdefgh";
  const auto array = tlv_payload(10, record, 6);
  EXPECT_EQ(array.size(), 24u); // 12 + 4 + 6, padded
  const auto value = tlv_value(array, 10);
  ASSERT_EQ(value.size(), 6u);
  EXPECT_EQ(std::memcmp(value.data(), "abcdef", 6), 0);
}

TEST(FlatRecord, HasItsVeryLength) {
  EXPECT_FALSE(flat_record<uint32_t>(payload_bytes(3)));
  EXPECT_FALSE(flat_record<uint32_t>(payload_bytes(5)));
  EXPECT_EQ(flat_record<uint32_t>(payload_bytes(4)), 0u);
}

} // namespace
