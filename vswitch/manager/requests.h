// Requests as their bytes came, and answers as their bytes go. Nothing of the transport: both can be made without it.
// What a payload says about its own length is believed only as far as the payload goes.
#ifndef VSWITCH_MANAGER_REQUESTS_H
#define VSWITCH_MANAGER_REQUESTS_H

#include <platform/tlv_aligned_array.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "vswitch/packed_fields.h"

namespace vswitch {

using payload_view = std::span<const std::byte>;
using payload_bytes = std::vector<std::byte>;

struct answer {
  payload_bytes payload;
  uint32_t result = 0;
  std::string what; // for the log
};

// A payload that is this record and nothing else.
template <typename record>
std::optional<record> flat_record(payload_view payload) {
  if (payload.size() != sizeof(record)) return std::nullopt;
  return load_field<record>(payload.data());
}

// The first value of a type in a payload that is a TLV array; empty when there is none.
payload_view tlv_value(payload_view payload, uint16_t type);

template <typename record>
std::optional<record> tlv_record(payload_view payload, uint16_t type) {
  return flat_record<record>(tlv_value(payload, type));
}

template <typename record>
payload_bytes flat_payload(const record& written) {
  payload_bytes bytes(sizeof written);
  store_field(bytes.data(), 0, written);
  return bytes;
}

// A TLV array with one value: the first length bytes of a record.
payload_bytes tlv_payload(uint16_t type, const void* value, uint16_t length);

template <typename record>
payload_bytes tlv_payload(uint16_t type, const record& written) {
  static_assert(std::is_trivially_copyable_v<record> && sizeof written <= UINT16_MAX);
  return tlv_payload(type, &written, sizeof written);
}

// A manager_result and nothing else.
answer plain_answer(uint32_t result, std::string what);

} // namespace vswitch

#endif
