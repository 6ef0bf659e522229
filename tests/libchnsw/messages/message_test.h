/* The fixture of the messages: a converter that is found, a handle, and records put together byte by byte. */
#ifndef TESTS_MESSAGES_MESSAGE_TEST_H
#define TESTS_MESSAGES_MESSAGE_TEST_H

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "library_test.h"
#include "release_watch.h"

namespace chnsw_test {

// Statuses, as clients know them.
inline constexpr uint32_t kNoMemory = 1;
inline constexpr uint32_t kInvalidArg = 0x40850003;
inline constexpr uint32_t kNoPayload = 0x40850008;
inline constexpr uint32_t kConvert = 0x40850020;

using bytes = std::vector<uint8_t>;

// A record of zeros, or of what else it is filled with, whose fields are set at offsets in the byte order of the machine.
class record {
 public:
  explicit record(size_t size, uint8_t fill = 0) : bytes_(size, fill) {}

  record& u8(size_t offset, uint8_t value) { return put(offset, value); }
  record& u16(size_t offset, uint16_t value) { return put(offset, value); }
  record& u32(size_t offset, uint32_t value) { return put(offset, value); }
  record& text(size_t offset, const std::string& value) {
    for (size_t i = 0; i < value.size(); ++i) bytes_.at(offset + i) = static_cast<uint8_t>(value[i]);
    return *this;
  }
  operator const bytes&() const { return bytes_; }
  const bytes& get() const { return bytes_; }

 private:
  template <class Value>
  record& put(size_t offset, Value value) {
    if (offset + sizeof value > bytes_.size()) throw std::out_of_range("beyond the record");
    memcpy(bytes_.data() + offset, &value, sizeof value);
    return *this;
  }
  bytes bytes_;
};

// The bytes of an object.
template <class Object>
bytes bytes_of(const Object& object) {
  bytes copy(sizeof object);
  memcpy(copy.data(), &object, sizeof object);
  return copy;
}

// The field of a record in the byte order of the machine.
template <class Value>
Value field_at(const bytes& record, size_t offset) {
  Value value;
  if (offset + sizeof value > record.size()) throw std::out_of_range("beyond the record");
  memcpy(&value, record.data() + offset, sizeof value);
  return value;
}

// The object at an offset that is right for it.
template <class Object>
Object* object_at(void* base, size_t offset) {
  return static_cast<Object*>(static_cast<void*>(static_cast<uint8_t*>(base) + offset));
}

// An object with every byte set, so that one that is written shows.
template <class Object>
Object untouched() {
  Object object;
  memset(static_cast<void*>(&object), kUntouched8, sizeof object);
  return object;
}

// A message of one value in a TLV array.
inline msgq_message tlv_message(uint16_t type, const bytes& value, size_t misalignment = 1) {
  return msgq_message(tlv_array({{type, value}}), misalignment);
}

class MessageTest : public LibraryTest {
 protected:
  MessageTest() {
    forget_releases();
    convert_fnptr = platform_convert;
  }
  ~MessageTest() override { forget_releases(); }

  // The handle that the log shows as 0x51. Nothing is at its address.
  msgq* const handle = reinterpret_cast<msgq*>(uintptr_t{0x51});
};

} // namespace chnsw_test

#endif
