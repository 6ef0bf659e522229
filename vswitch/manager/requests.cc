#include "requests.h"

#include <utility>

#include "vswitch/manager/manager_protocol.h"
#include "vswitch/tlv_array.h"

namespace vswitch {

payload_view tlv_value(payload_view payload, uint16_t type) {
  if (payload.size() < kTlvHeaderBytes || payload.size() > UINT32_MAX) return {};
  if (!tlv_services_stay_inside(payload.data(), static_cast<uint32_t>(payload.size()))) return {};
  uint16_t found = 0;
  uint16_t length = 0;
  void* value = nullptr;
  uint32_t cursor = 0;
  while (tlv_aligned_array_get_next_tlv(payload.data(), &found, &length, &value, 1, &cursor) == 0)
    if (found == type) return {static_cast<const std::byte*>(value), length};
  return {};
}

payload_bytes tlv_payload(uint16_t type, const void* value, uint16_t length) {
  constexpr size_t kPadding = 3;
  payload_bytes array(kTlvHeaderBytes + kTlvPrefixBytes + length + kPadding);
  const auto capacity = static_cast<uint32_t>(array.size());
  if (tlv_aligned_array_add_tlv(array.data(), capacity, type, length, value, 1) != 0) return {};
  array.resize(tlv_aligned_array_size_get(array.data(), 1));
  return array;
}

answer plain_answer(uint32_t result, std::string what) {
  return {flat_payload(manager_result{result}), result, std::move(what)};
}

} // namespace vswitch
