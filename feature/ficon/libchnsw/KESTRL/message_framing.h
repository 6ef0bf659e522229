// What all messages share: their fields, how a request is sent to the manager, and how a value is found in an answer.
#ifndef KESTRL_MESSAGE_FRAMING_H
#define KESTRL_MESSAGE_FRAMING_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <libchnsw.h>
#include <platform/msgq.h>
#include <platform/tlv_aligned_array.h>

namespace chnsw {

// The one way to a field of a payload, which may stand at any address.
template <typename field>
field load(const void* record, size_t offset) {
  field value;
  std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof value);
  return value;
}

template <typename field>
void store(void* record, size_t offset, field value) {
  std::memcpy(static_cast<char*>(record) + offset, &value, sizeof value);
}

// Copies a field to an output that the caller may not want.
template <typename field>
void hand_over(field* output, const void* record, size_t offset) {
  if (output != nullptr) *output = load<field>(record, offset);
}

// The same for an interface index, which travels in wire order.
void hand_over_if_index(uint32_t* output, const void* record, size_t offset);

// Sends to the manager. Returns what msgq_send returned.
int32_t send_to_manager(msgq* handle, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg);

// The same as a sender's result: the transport's error when it failed.
int32_t request_of_manager(msgq* handle, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg);

// Sends a record to the manager as the one value of a TLV array of at most capacity bytes.
template <uint32_t capacity, typename record_type>
int32_t request_of_manager_as_tlv(msgq* handle, uint32_t opcode, uint16_t type, const record_type& record,
                                  uintptr_t send_arg) {
  alignas(uint32_t) char array[capacity] = {};
  const int status = tlv_aligned_array_add_tlv(array, capacity, type, sizeof record, &record, 1);
  if (status != 0) return status;
  return request_of_manager(handle, opcode, array, tlv_aligned_array_size_get(array, 1), send_arg);
}

// The first value of a type in a received message.
struct tlv_value {
  void* bytes;
  uint16_t length;
};
uint32_t find_tlv(msgq_message* message, uint16_t type, tlv_value& found);

} // namespace chnsw

#endif
