// The messages between the FICON manager and its clients, as one table: kinds, and the fields of their records.
#ifndef INSPECT_MESSAGE_TABLE_H
#define INSPECT_MESSAGE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/messages/byte_order.h"

namespace inspect {

// What stands in a field, and how people write it.
enum class field_form {
  number,
  status,            // of the library
  codepage,          // a number with a name
  interface_on_wire, // big-endian, whatever the order of the rest
  interface_as_is,   // in the order of the rest
  text,              // the switch's, filled with NULs
  host_text,         // in the code page of the record's field "codepage"
  node,              // a whole node descriptor
  bytes,
  vsan_set, // a bitmap
  count,    // of the interfaces at the record's end; encode counts them
  interface_list
};

bool is_number(field_form form);

inline constexpr size_t kListedInterfaceBytes = 4;

struct message_field {
  std::string_view name;
  size_t offset;
  size_t length; // 0: kListedInterfaceBytes for each interface
  field_form form;
  uint32_t usual; // what encode writes when nothing else is said
  std::string_view what;
};

enum class message_framing { none, flat, tlv };

struct message_kind {
  std::string_view name;
  std::string_view opcodes;
  message_framing framing;
  uint16_t tlv_type;
  size_t size;       // of the record
  size_t short_size; // of one that ends earlier, without its last fields; else the same
  bool is_free_form; // with any other length it is nothing but bytes
  std::span<const message_field> fields;
  std::string_view what;
};

std::span<const message_kind> message_kinds();

// The first field of a form; nullptr when there is none.
const message_field* field_of_form(const message_kind& kind, field_form form);

// The byte order of a field in a record of the order given.
byte_order order_of(const message_field& field, byte_order order);

// Throws a question error that suggests another name.
const message_kind& find_message_kind(std::string_view name);
const message_field& find_message_field(const message_kind& kind, std::string_view name);

// Their names, for help.
std::vector<std::string> names_of(std::span<const message_kind> kinds);
std::vector<std::string> names_of(std::span<const message_field> fields);

// How the value of a field is written.
std::string_view form_text(field_form form);

// "TLV type 9", "flat", "none".
std::string framing_text(const message_kind& kind);

} // namespace inspect

#endif
