#include "inspect/messages/tlv_value.h"

#include <fmt/format.h>

#include <cstddef>
#include <vector>

#include "inspect/error.h"
#include "inspect/messages/byte_counts.h"
#include "vswitch/tlv_array.h"

namespace inspect {

namespace {

using vswitch::kTlvHeaderBytes;
using vswitch::kTlvMagic;
using vswitch::kTlvPrefixBytes;

constexpr size_t kSizeOffset = 4;
constexpr size_t kCountOffset = 8;
constexpr size_t kLengthOffset = 2; // behind a value's type

[[noreturn]] void refuse_array(size_t missing, const std::string& what) {
  throw question_error(fmt::format("{}: the TLV array {}", missing_bytes(missing), what));
}

size_t array_size(std::string_view payload, byte_order order) {
  if (payload.size() < kTlvHeaderBytes) refuse_array(kTlvHeaderBytes - payload.size(), "ends within its header");
  const size_t size = number_at(payload, kSizeOffset, 4, order);
  if (size > payload.size())
    refuse_array(size - payload.size(), fmt::format("says to have {}, there are {}", counted_bytes(size), payload.size()));
  return size;
}

size_t padded_length(size_t length) {
  return (length + 3) / 4 * 4;
}

struct tlv_value {
  uint32_t type;
  std::string_view bytes;
  size_t end; // where the next one begins
};

tlv_value value_at(std::string_view array, size_t place, byte_order order) {
  const size_t begin = place + kTlvPrefixBytes;
  if (begin > array.size()) refuse_array(begin - array.size(), "ends within a value's type and length");
  const uint32_t type = number_at(array, place, 2, order);
  const size_t length = number_at(array, place + kLengthOffset, 2, order);
  if (begin + length > array.size())
    refuse_array(begin + length - array.size(), fmt::format("ends within its value of type {}", type));
  return {type, array.substr(begin, length), begin + padded_length(length)};
}

} // namespace

std::optional<byte_order> order_of_array(std::string_view payload) {
  if (payload.size() < sizeof kTlvMagic) return std::nullopt;
  for (byte_order order : {byte_order::big, byte_order::little})
    if (number_at(payload, 0, sizeof kTlvMagic, order) == kTlvMagic) return order;
  return std::nullopt;
}

std::string value_of_array(std::string_view payload, uint16_t type, byte_order order) {
  const std::string_view array = payload.substr(0, array_size(payload, order));
  std::vector<uint32_t> there;
  for (size_t place = kTlvHeaderBytes; place < array.size();) {
    const tlv_value value = value_at(array, place, order);
    if (value.type == type) return std::string(value.bytes);
    there.push_back(value.type);
    place = value.end;
  }
  throw question_error(fmt::format("the TLV array holds no value of type {}; it holds {}", type,
                                   there.empty() ? "none" : fmt::format("type {}", fmt::join(there, ", "))));
}

std::string array_of_value(std::string_view value, uint16_t type, byte_order order) {
  std::string array(kTlvHeaderBytes + kTlvPrefixBytes + padded_length(value.size()), '\0');
  set_number(array, 0, sizeof kTlvMagic, order, kTlvMagic);
  set_number(array, kSizeOffset, 4, order, static_cast<uint32_t>(array.size()));
  set_number(array, kCountOffset, 2, order, 1);
  set_number(array, kTlvHeaderBytes, 2, order, type);
  set_number(array, kTlvHeaderBytes + kLengthOffset, 2, order, static_cast<uint32_t>(value.size()));
  array.replace(kTlvHeaderBytes + kTlvPrefixBytes, value.size(), value);
  return array;
}

} // namespace inspect
