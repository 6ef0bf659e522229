// A message's record: its bytes, and the values of its fields.
#ifndef INSPECT_MESSAGE_RECORD_H
#define INSPECT_MESSAGE_RECORD_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/messages/byte_order.h"
#include "inspect/messages/field_text.h"
#include "inspect/messages/message_table.h"

namespace inspect {

// The fields of a record. Throws a question error when it is too short.
std::vector<field_value> read_record(const message_kind& kind, std::string_view record, byte_order order);

// A field that always holds the same number, and does in the other order only.
struct order_doubt {
  std::string_view field;
  uint32_t usual;
  byte_order order; // that the record probably is in
};
std::optional<order_doubt> doubt_about_order(const message_kind& kind, std::string_view record, byte_order order);

// A record of "FIELD=VALUE" words; the other fields hold what is usual.
std::string make_record(const message_kind& kind, const std::vector<std::string>& words, byte_order order);

} // namespace inspect

#endif
