// A message's bytes, and the values of its fields as people read and write them.
#ifndef CHNSW_MESSAGE_RECORD_H
#define CHNSW_MESSAGE_RECORD_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/messages/message_table.h"

namespace inspect {

enum class byte_order { big, little };
std::string_view order_text(byte_order order);

// ---- Numbers in bytes ----

uint32_t number_at(std::string_view bytes, size_t offset, size_t length, byte_order order);
void set_number(std::string& bytes, size_t offset, size_t length, byte_order order, uint32_t number);

// ---- Records ----

// One field as it stands in a record.
struct field_value {
  std::string name;
  size_t offset;
  std::string bytes;
  std::optional<uint32_t> number;  // when it is one
  std::optional<std::string> text; // what it says; none when it cannot be told
};

// The fields of a record. Throws a question error when it is too short.
std::vector<field_value> read_record(const message_kind& kind, std::string_view record, byte_order order);

// What the record probably is instead, when a field that is always the same has its bytes the other way round; else empty.
std::string doubt_about_order(const message_kind& kind, std::string_view record, byte_order order);

// A record of "FIELD=VALUE" words; the other fields hold what is usual.
std::string make_record(const message_kind& kind, const std::vector<std::string>& words, byte_order order);

// ---- TLV arrays ----

// The order of an array of this virtual switch; none when the payload is no array.
std::optional<byte_order> order_of_array(std::string_view payload);

// The first value of a type. Throws a question error when there is none, or when the array is damaged.
std::string value_of_array(std::string_view payload, uint16_t type, byte_order order);

// An array with one value.
std::string array_of_value(std::string_view value, uint16_t type, byte_order order);

} // namespace inspect

#endif
