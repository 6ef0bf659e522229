// TLV arrays: their bytes, their limits, and readers that stay inside whatever the bytes say.
#include <gmock/gmock.h>
#include <platform/tlv_aligned_array.h>
#include <vswitch/service_status.h>
#include <vswitch/tlv_array.h>

#include <bit>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace vswitch;
using testing::ElementsAre;

struct found_value {
  uint16_t type;
  std::string bytes;
  bool operator==(const found_value&) const = default;
};
void PrintTo(const found_value& value, std::ostream* out) {
  *out << value.type << " of " << value.bytes.size() << " bytes";
}

// An array of an exact size on the heap, at whose end a sanitizer stands.
class exact_array {
 public:
  explicit exact_array(size_t capacity) : capacity_(capacity), bytes_(new char[capacity]()) {}
  explicit exact_array(const std::string& bytes) : exact_array(bytes.size()) {
    std::memcpy(bytes_.get(), bytes.data(), bytes.size());
  }

  int add(uint16_t type, const std::string& value) {
    return tlv_aligned_array_add_tlv(bytes_.get(), static_cast<uint32_t>(capacity_), type,
                                     static_cast<uint16_t>(value.size()), value.data(), 1);
  }
  std::string bytes() const { return {bytes_.get(), capacity_}; }
  std::string used() const { return bytes().substr(0, size()); }
  uint32_t size() const { return tlv_aligned_array_size_get(bytes_.get(), 1); }
  int count() const { return tlv_aligned_array_get_num_tlvs(bytes_.get(), 1); }

  int next(uint16_t& type, uint16_t& length, void*& value, uint32_t& cursor) const {
    return tlv_aligned_array_get_next_tlv(bytes_.get(), &type, &length, &value, 1, &cursor);
  }

  // Every value up to the first status that ends the walk; touches all their bytes.
  std::vector<found_value> values(int* status = nullptr) const {
    std::vector<found_value> found;
    uint16_t type = 0;
    uint16_t length = 0;
    void* value = nullptr;
    uint32_t cursor = 0;
    int ended = 0;
    while ((ended = next(type, length, value, cursor)) == 0)
      found.push_back({type, std::string(static_cast<const char*>(value), length)});
    if (status != nullptr) *status = ended;
    return found;
  }

  char* data() { return bytes_.get(); }

 private:
  size_t capacity_;
  std::unique_ptr<char[]> bytes_;
};

exact_array three_values() {
  exact_array array(12 + (4 + 4) + (4 + 8) + 4);
  EXPECT_EQ(array.add(9, "abc"), 0);
  EXPECT_EQ(array.add(15, "12345678"), 0);
  EXPECT_EQ(array.add(0xFFFF, ""), 0);
  return array;
}

// ---- Bytes ----

TEST(TlvArray, LiteralBytes) {
  const std::string little(
      "AVLT\x24\0\0\0\x03\0\0\0"
      "\x09\0\x03\0abc\0"
      "\x0F\0\x08\0"
      "12345678"
      "\xFF\xFF\0\0",
      36);
  const std::string big(
      "TLVA\0\0\0\x24\0\x03\0\0"
      "\0\x09\0\x03"
      "abc\0"
      "\0\x0F\0\x08"
      "12345678"
      "\xFF\xFF\0\0",
      36);
  EXPECT_EQ(three_values().bytes(), std::endian::native == std::endian::little ? little : big);
}

TEST(TlvArray, ValuesComeBackInOrder) {
  const exact_array array = three_values();
  EXPECT_EQ(array.size(), 36u);
  EXPECT_EQ(array.count(), 3);
  int status = 0;
  EXPECT_THAT(array.values(&status),
              ElementsAre(found_value{9, "abc"}, found_value{15, "12345678"}, found_value{0xFFFF, ""}));
  EXPECT_EQ(status, kTlvNoFurther);
}

TEST(TlvArray, ValuesBeginAtMultiplesOfFourBytesAndPaddingIsZero) {
  exact_array array(200);
  std::memset(array.data() + 12, 0x77, 188);
  for (const char* value : {"1", "12", "123", "1234", "12345"}) ASSERT_EQ(array.add(1, value), 0);
  uint16_t type = 0;
  uint16_t length = 0;
  void* value = nullptr;
  uint32_t cursor = 0;
  for (int n = 1; n <= 5; ++n) {
    ASSERT_EQ(array.next(type, length, value, cursor), 0);
    const auto place = static_cast<const char*>(value) - array.data();
    EXPECT_EQ(length, n);
    EXPECT_EQ(place % 4, 0);
    for (ptrdiff_t behind = place + length; behind % 4 != 0; ++behind) EXPECT_EQ(array.data()[behind], 0) << n;
  }
  EXPECT_EQ(array.size(), 12u + 3 * 8 + 8 + 12);
}

TEST(TlvArray, AnyAddressWillDo) {
  exact_array room(101);
  char* odd = room.data() + 1;
  EXPECT_EQ(tlv_aligned_array_add_tlv(odd, 100, 15, 4, "wxyz", 1), 0);
  uint16_t type = 0;
  uint16_t length = 0;
  void* value = nullptr;
  uint32_t cursor = 0;
  ASSERT_EQ(tlv_aligned_array_get_next_tlv(odd, &type, &length, &value, 1, &cursor), 0);
  EXPECT_EQ(std::string(static_cast<const char*>(value), length), "wxyz");
}

TEST(TlvArray, ATypeMayStandTwice) {
  exact_array array(100);
  ASSERT_EQ(array.add(16, "one"), 0);
  ASSERT_EQ(array.add(16, "two"), 0);
  EXPECT_THAT(array.values(), ElementsAre(found_value{16, "one"}, found_value{16, "two"}));
}

// ---- Limits ----

TEST(TlvArray, LastByteCanBeUsedAndNoneBeyond) {
  exact_array array(12 + 4 + 132);
  EXPECT_EQ(array.add(9, std::string(133, 'x')), kTlvFull);
  EXPECT_EQ(array.bytes(), std::string(148, '\0'));
  EXPECT_EQ(array.add(9, std::string(130, 'x')), 0);
  EXPECT_EQ(array.size(), 148u);
  const std::string before = array.bytes();
  EXPECT_EQ(array.add(9, ""), kTlvFull);
  EXPECT_EQ(array.bytes(), before);
}

TEST(TlvArray, PaddingCountsAsUsed) {
  exact_array array(12 + 4 + 3);
  EXPECT_EQ(array.add(9, "abc"), kTlvFull);
}

TEST(TlvArray, BufferShorterThanAHeaderIsFull) {
  exact_array array(11);
  EXPECT_EQ(array.add(9, ""), kTlvFull);
  exact_array header_only(12);
  EXPECT_EQ(header_only.add(9, ""), kTlvFull);
  EXPECT_EQ(header_only.bytes(), std::string(12, '\0'));
}

TEST(TlvArray, LongestValue) {
  exact_array array(12 + 4 + 65536);
  EXPECT_EQ(array.add(16, std::string(65535, 'v')), 0);
  EXPECT_THAT(array.values(), ElementsAre(found_value{16, std::string(65535, 'v')}));
}

TEST(TlvArray, AtMost65535Values) {
  exact_array array(12 + size_t{65536} * 4);
  for (int n = 0; n < 65535; ++n) ASSERT_EQ(array.add(1, ""), 0);
  EXPECT_EQ(array.add(1, ""), kTlvFull);
  EXPECT_EQ(array.count(), 65535);
}

// ---- Arguments ----

TEST(TlvArray, WrongArgumentsToAdd) {
  exact_array array(100);
  EXPECT_EQ(tlv_aligned_array_add_tlv(nullptr, 100, 1, 1, "x", 1), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_add_tlv(array.data(), 100, 1, 1, nullptr, 1), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_add_tlv(array.data(), 100, 1, 1, "x", 0), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_add_tlv(array.data(), 100, 1, 1, "x", 2), kTlvBadRequest);
  EXPECT_EQ(array.bytes(), std::string(100, '\0'));
  EXPECT_EQ(tlv_aligned_array_add_tlv(array.data(), 100, 1, 0, nullptr, 1), 0);
}

TEST(TlvArray, WrongArgumentsToReaders) {
  exact_array array = three_values();
  EXPECT_EQ(tlv_aligned_array_size_get(nullptr, 1), 0u);
  EXPECT_EQ(tlv_aligned_array_size_get(array.data(), 0), 0u);
  EXPECT_EQ(tlv_aligned_array_get_num_tlvs(nullptr, 1), 0);
  EXPECT_EQ(tlv_aligned_array_get_num_tlvs(array.data(), 0), 0);
  uint16_t type = 5;
  uint16_t length = 6;
  void* value = nullptr;
  uint32_t cursor = 0;
  EXPECT_EQ(tlv_aligned_array_get_next_tlv(nullptr, &type, &length, &value, 1, &cursor), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_get_next_tlv(array.data(), nullptr, &length, &value, 1, &cursor), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_get_next_tlv(array.data(), &type, nullptr, &value, 1, &cursor), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_get_next_tlv(array.data(), &type, &length, nullptr, 1, &cursor), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_get_next_tlv(array.data(), &type, &length, &value, 1, nullptr), kTlvBadRequest);
  EXPECT_EQ(tlv_aligned_array_get_next_tlv(array.data(), &type, &length, &value, 0, &cursor), kTlvBadRequest);
  EXPECT_EQ(type, 5);
  EXPECT_EQ(length, 6);
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(cursor, 0u);
}

// ---- What is no array, and what is damaged ----

TEST(TlvArray, OtherBytesAreNoArray) {
  for (const std::string& bytes : {std::string(12, '\0'), std::string("hello, world"), std::string(12, '\xFF')}) {
    exact_array array(bytes);
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.count(), 0);
    int status = 0;
    EXPECT_TRUE(array.values(&status).empty());
    EXPECT_EQ(status, kTlvNotAnArray);
  }
  exact_array text(std::string("hello, world, and much more"));
  EXPECT_EQ(text.add(1, "x"), kTlvNotAnArray);
  EXPECT_EQ(text.bytes(), "hello, world, and much more");
}

exact_array with_word(exact_array array, size_t offset, uint32_t word) {
  std::memcpy(array.data() + offset, &word, sizeof word);
  return array;
}

TEST(TlvArray, SizeBelowItsHeaderIsNoArray) {
  int status = 0;
  with_word(three_values(), 4, 11).values(&status);
  EXPECT_EQ(status, kTlvNotAnArray);
  EXPECT_TRUE(with_word(three_values(), 4, 12).values(&status).empty());
  EXPECT_EQ(status, kTlvNoFurther);
}

TEST(TlvArray, ValueThatIsCutShortIsDamage) {
  int status = 0;
  EXPECT_EQ(with_word(three_values(), 4, 22).values(&status).size(), 1u); // two bytes of the second's prefix
  EXPECT_EQ(status, kTlvDamaged);
  EXPECT_EQ(with_word(three_values(), 4, 31).values(&status).size(), 1u); // seven of its eight bytes
  EXPECT_EQ(status, kTlvDamaged);
  EXPECT_EQ(with_word(three_values(), 4, 32).values(&status).size(), 2u);
  EXPECT_EQ(status, kTlvNoFurther);
}

TEST(TlvArray, ValueThatCannotBeReadStoresNothing) {
  const exact_array array = with_word(three_values(), 4, 15);
  uint16_t type = 5;
  uint16_t length = 6;
  void* value = nullptr;
  uint32_t cursor = 0;
  EXPECT_EQ(array.next(type, length, value, cursor), kTlvDamaged);
  EXPECT_EQ(type, 5);
  EXPECT_EQ(length, 6);
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(cursor, 0u);
}

TEST(TlvArray, CursorOfNoValueEndsTheWalk) {
  const exact_array array = three_values();
  uint16_t type = 0;
  uint16_t length = 0;
  void* value = nullptr;
  for (uint32_t wrong : {1u, 11u, 36u, 37u, UINT32_MAX}) {
    uint32_t cursor = wrong;
    EXPECT_EQ(array.next(type, length, value, cursor), kTlvNoFurther) << wrong;
    EXPECT_EQ(cursor, wrong);
  }
}

// What a receiver does with a payload of this length: asks whether it may be read, and reads. False when a value was
// outside.
bool read_as_received(const std::string& payload) {
  exact_array array(payload);
  const auto length = static_cast<uint32_t>(payload.size());
  if (!tlv_services_stay_inside(array.data(), length)) return true;
  if (array.size() > length) return false;
  uint16_t type = 0;
  uint16_t value_length = 0;
  void* value = nullptr;
  uint32_t cursor = 0;
  volatile char sum = 0;
  while (array.next(type, value_length, value, cursor) == 0) {
    const char* first = static_cast<const char*>(value);
    if (first < array.data() || first + value_length > array.data() + length) return false;
    for (uint16_t n = 0; n < value_length; ++n) sum = static_cast<char>(sum ^ first[n]);
  }
  return true;
}

TEST(TlvArray, EverySingleByteThatIsDifferentIsReadInside) {
  const std::string whole = three_values().bytes();
  for (size_t place = 0; place < whole.size(); ++place)
    for (int byte = 0; byte < 256; ++byte) {
      std::string spoilt = whole;
      spoilt[place] = static_cast<char>(byte);
      ASSERT_TRUE(read_as_received(spoilt)) << place << " " << byte;
    }
}

TEST(TlvArray, EveryTruncationIsReadInside) {
  const std::string whole = three_values().bytes();
  for (size_t length = 12; length <= whole.size(); ++length) {
    ASSERT_TRUE(read_as_received(whole.substr(0, length))) << length;
    EXPECT_EQ(tlv_services_stay_inside(whole.data(), static_cast<uint32_t>(length)), length == whole.size());
  }
}

TEST(TlvArray, RandomArraysAreReadInside) {
  std::mt19937 random(20150105);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes(12 + random() % 60, '\0');
    for (size_t n = 4; n < bytes.size(); ++n) bytes[n] = static_cast<char>(random() % (n % 3 == 0 ? 256 : 4));
    const uint32_t magic = kTlvMagic;
    const auto size = static_cast<uint32_t>(random() % (bytes.size() + 4));
    std::memcpy(bytes.data(), &magic, 4);
    std::memcpy(bytes.data() + 4, &size, 4);
    ASSERT_TRUE(read_as_received(bytes)) << round;
  }
}

// ---- Payloads ----

TEST(TlvServicesStayInside, OnlyWhatSaysToBeLongerThanItIsDoesNot) {
  const std::string whole = three_values().bytes();
  EXPECT_TRUE(tlv_services_stay_inside(whole.data(), 36));
  EXPECT_TRUE(tlv_services_stay_inside(whole.data(), 37));
  EXPECT_FALSE(tlv_services_stay_inside(whole.data(), 35));
  EXPECT_FALSE(tlv_services_stay_inside(whole.data(), 12));
  EXPECT_FALSE(tlv_services_stay_inside(whole.data(), 11));
  EXPECT_FALSE(tlv_services_stay_inside(whole.data(), 4));
}

TEST(TlvServicesStayInside, WhatIsNoArrayDoes) {
  EXPECT_TRUE(tlv_services_stay_inside(nullptr, 0));
  EXPECT_TRUE(tlv_services_stay_inside("AVL", 3));
  EXPECT_TRUE(tlv_services_stay_inside("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 8));
}

} // namespace
