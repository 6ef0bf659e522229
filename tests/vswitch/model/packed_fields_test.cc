// Fields of packed bytes at any address, in the machine's byte order and in a given one.
#include <gmock/gmock.h>
#include <vswitch/packed_fields.h>

#include <array>
#include <vector>

namespace {

using namespace vswitch;
using ::testing::ElementsAre;

TEST(PackedFields, FieldReturnsAsItWasStoredAtAnOddOffset) {
  std::array<uint8_t, 8> bytes{};
  store_field(bytes.data(), 3, uint32_t{0x01020304});
  EXPECT_EQ(load_field<uint32_t>(bytes.data(), 3), 0x01020304u);
  EXPECT_THAT(std::vector<uint8_t>(bytes.begin(), bytes.begin() + 3), ElementsAre(0, 0, 0));
  EXPECT_EQ(bytes[7], 0);
}

TEST(PackedFields, NumbersLieInTheOrderThatIsGiven) {
  std::array<uint8_t, 3> bytes{};
  store_number(bytes.data(), 3, std::endian::big, 0xFF010203);
  EXPECT_THAT(bytes, ElementsAre(1, 2, 3));
  store_number(bytes.data(), 2, std::endian::little, 0x0405);
  EXPECT_THAT(bytes, ElementsAre(5, 4, 3));
  EXPECT_EQ(load_number(bytes.data(), 3, std::endian::big), 0x050403u);
  EXPECT_EQ(load_number(bytes.data(), 3, std::endian::little), 0x030405u);
  EXPECT_EQ(load_number(bytes.data(), 0, std::endian::big), 0u);
}

} // namespace
