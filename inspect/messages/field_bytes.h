// The bytes of a field, from its value as people write it.
#ifndef INSPECT_FIELD_BYTES_H
#define INSPECT_FIELD_BYTES_H

#include <cstdint>
#include <string>
#include <string_view>

#include "inspect/messages/byte_order.h"
#include "inspect/messages/message_table.h"

namespace inspect {

// As many bytes as the field is long; a list of interfaces has as many as it takes. The codepage is that of the record's host
// texts, 0 when it has none. Throws a question error that says what was expected.
std::string bytes_of_field(const message_field& field, std::string_view text, uint32_t codepage, byte_order order);

} // namespace inspect

#endif
