// Fields of packed bytes, one at a time: bytes that came from elsewhere may stand at odd addresses.
#ifndef VSWITCH_PACKED_FIELDS_H
#define VSWITCH_PACKED_FIELDS_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vswitch {

// A field, or a record of fields, as it lies in this machine's memory.
template <typename field>
field load_field(const void* bytes, size_t offset = 0) noexcept {
  static_assert(std::is_trivially_copyable_v<field>);
  field loaded;
  std::memcpy(&loaded, static_cast<const std::byte*>(bytes) + offset, sizeof loaded);
  return loaded;
}

template <typename field>
void store_field(void* bytes, size_t offset, const field& stored) noexcept {
  static_assert(std::is_trivially_copyable_v<field>);
  std::memcpy(static_cast<std::byte*>(bytes) + offset, &stored, sizeof stored);
}

// A number of 1 to 4 bytes in a byte order of its own.
inline uint32_t load_number(const void* bytes, size_t length, std::endian order) noexcept {
  const auto* first = static_cast<const uint8_t*>(bytes);
  uint32_t number = 0;
  for (size_t n = 0; n < length; ++n) number = number << 8 | first[order == std::endian::big ? n : length - 1 - n];
  return number;
}

inline void store_number(void* bytes, size_t length, std::endian order, uint32_t number) noexcept {
  auto* first = static_cast<uint8_t*>(bytes);
  for (size_t n = 0; n < length; ++n)
    first[order == std::endian::little ? n : length - 1 - n] = static_cast<uint8_t>(number >> 8 * n);
}

} // namespace vswitch

#endif
