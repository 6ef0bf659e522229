// TLV array services.
#include "vswitch/tlv_array.h"

#include <platform/tlv_aligned_array.h>

#include <cstddef>
#include <cstring>

#include "services/process_state.h"
#include "vswitch/packed_fields.h"
#include "vswitch/service_status.h"

namespace vswitch {

namespace {

struct array_header {
  uint32_t magic;
  uint32_t size;
  uint16_t count;
  uint16_t zero;
};
static_assert(sizeof(array_header) == kTlvHeaderBytes);
static_assert(offsetof(array_header, size) == 4);
static_assert(offsetof(array_header, count) == 8);

struct value_prefix {
  uint16_t type;
  uint16_t length;
};
static_assert(sizeof(value_prefix) == kTlvPrefixBytes);

// Field by field: as one piece of 12 bytes it goes through vector registers and back.
array_header load_header(const void* array) noexcept {
  return {load_field<uint32_t>(array, offsetof(array_header, magic)),
          load_field<uint32_t>(array, offsetof(array_header, size)),
          load_field<uint16_t>(array, offsetof(array_header, count)),
          load_field<uint16_t>(array, offsetof(array_header, zero))};
}

constexpr uint32_t kPadding = 4;

constexpr uint32_t padded(uint32_t length) noexcept {
  return (length + kPadding - 1) & ~(kPadding - 1);
}

bool is_array(const array_header& header) noexcept {
  return header.magic == kTlvMagic && header.size >= kTlvHeaderBytes;
}

bool is_blank(const array_header& header) noexcept {
  return header.magic == 0 && header.size == 0 && header.count == 0;
}

} // namespace

bool tlv_services_stay_inside(const void* payload, uint32_t length) noexcept {
  if (length < sizeof(array_header::magic) || load_field<uint32_t>(payload, 0) != kTlvMagic) return true;
  return length >= kTlvHeaderBytes && load_header(payload).size <= length;
}

} // namespace vswitch

using namespace vswitch;

VSWITCH_SERVICE int tlv_aligned_array_add_tlv(void* array, uint32_t capacity, uint16_t type, uint16_t length,
                                              const void* value, int flag) {
  if (array == nullptr || (value == nullptr && length != 0) || flag != 1) return kTlvBadRequest;
  if (capacity < kTlvHeaderBytes) return kTlvFull;
  auto header = load_header(array);
  if (is_blank(header)) header = {kTlvMagic, kTlvHeaderBytes, 0, 0};
  if (!is_array(header)) return kTlvNotAnArray;
  if (header.size > capacity || capacity - header.size < kTlvPrefixBytes + padded(length) || header.count == UINT16_MAX)
    return kTlvFull;

  store_field(array, header.size, value_prefix{type, length});
  const uint32_t place = header.size + kTlvPrefixBytes;
  if (length != 0) {
    store_field(array, place + padded(length) - kPadding, uint32_t{0}); // what the value leaves of its last word
    std::memcpy(static_cast<std::byte*>(array) + place, value, length);
  }
  store_field(array, offsetof(array_header, magic), header.magic);
  store_field(array, offsetof(array_header, size), place + padded(length));
  store_field(array, offsetof(array_header, count), static_cast<uint16_t>(header.count + 1));
  store_field(array, offsetof(array_header, zero), header.zero);
  return 0;
}

VSWITCH_SERVICE uint32_t tlv_aligned_array_size_get(const void* array, int flag) {
  if (array == nullptr || flag != 1) return 0;
  const auto header = load_header(array);
  return is_array(header) ? header.size : 0;
}

VSWITCH_SERVICE int tlv_aligned_array_get_num_tlvs(const void* array, int flag) {
  if (array == nullptr || flag != 1) return 0;
  const auto header = load_header(array);
  return is_array(header) ? header.count : 0;
}

VSWITCH_SERVICE int tlv_aligned_array_get_next_tlv(const void* array, uint16_t* type, uint16_t* length, void** value,
                                                   int flag, uint32_t* cursor) {
  if (array == nullptr || type == nullptr || length == nullptr || value == nullptr || flag != 1 || cursor == nullptr)
    return kTlvBadRequest;
  const auto header = load_header(array);
  if (!is_array(header)) return kTlvNotAnArray;
  const uint32_t place = *cursor == 0 ? kTlvHeaderBytes : *cursor;
  if (place < kTlvHeaderBytes || place >= header.size) return kTlvNoFurther;
  if (header.size - place < kTlvPrefixBytes) return kTlvDamaged;
  const auto prefix = load_field<value_prefix>(array, place);
  if (header.size - place - kTlvPrefixBytes < prefix.length) return kTlvDamaged;

  *type = prefix.type;
  *length = prefix.length;
  *value = const_cast<std::byte*>(static_cast<const std::byte*>(array)) + place + kTlvPrefixBytes;
  *cursor = place + kTlvPrefixBytes + padded(prefix.length);
  return 0;
}
