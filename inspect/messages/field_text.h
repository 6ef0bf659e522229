// A field's bytes as people read them.
#ifndef INSPECT_FIELD_TEXT_H
#define INSPECT_FIELD_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "inspect/messages/byte_order.h"
#include "inspect/messages/message_table.h"

namespace inspect {

// One field as it stands in a record.
struct field_value {
  std::string name;
  size_t offset;
  std::string bytes;
  std::optional<uint32_t> number;  // when it is one
  std::optional<std::string> text; // what it says; none when it cannot be told
};

// The codepage is that of the record's host texts, 0 when it has none. Throws error when the library cannot convert them.
field_value read_field(const message_field& field, std::string_view bytes, uint32_t codepage, byte_order order);

} // namespace inspect

#endif
