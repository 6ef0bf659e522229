#include "commands/message_command.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/messages/hex_text.h"
#include "inspect/messages/message_record.h"
#include "inspect/messages/message_table.h"
#include "output/port_row.h"

namespace chnsw_tool {

namespace {

constexpr size_t kShownBytes = 16; // in a table; data has all
constexpr size_t kLineBytes = 32;

// ---- Kinds and fields ----

std::vector<column> kind_columns() {
  return {{"kind", "KIND"},
          {"opcode", "OPCODE"},
          {"payload", "PAYLOAD"},
          {"offset", "OFFSET"},
          {"length", "LENGTH"},
          {"field", "FIELD"},
          {"takes", "TAKES", 0, false, column::data_only},
          {"what", "WHAT"}};
}

void add_kind(const message_kind& kind, result_document& document) {
  const cell name = std::string(kind.name);
  const cell opcode = std::string(kind.opcodes);
  document.add({name,
                opcode,
                framing_text(kind),
                {},
                known_cell(kind.size != 0, static_cast<int64_t>(kind.size)),
                {},
                {},
                toned_text{std::string(kind.what), tone::strong}});
  for (const auto& field : kind.fields)
    document.add({name, opcode, framing_text(kind), static_cast<int64_t>(field.offset),
                  known_cell(field.length != 0, static_cast<int64_t>(field.length)), std::string(field.name),
                  std::string(form_text(field.form)), std::string(field.what)});
}

// ---- Bytes ----

byte_order order_named(const std::string& name) {
  return name == "little" ? byte_order::little : byte_order::big;
}

struct found_record {
  std::string bytes;
  byte_order order;
};

found_record record_in(const message_kind& kind, const std::string& payload, const message_options& options) {
  const auto order = order_of_array(payload);
  if (kind.framing != message_framing::tlv || options.value_alone || !order) return {payload, order_named(options.order)};
  if (!options.order.empty() && order != order_named(options.order))
    throw question_error(fmt::format("the TLV array is in {}-endian order; leave --byte-order out, or say --byte-order {}",
                                     order_text(*order), order_text(*order)));
  return {value_of_array(payload, kind.tlv_type, *order), *order};
}

std::vector<column> value_columns() {
  return {{"offset", "OFFSET"},
          {"length", "LENGTH"},
          {"field", "FIELD"},
          {"value", "VALUE"},
          {"number", "", 8, false, column::data_only},
          {"bytes", "", 0, false, column::data_only},
          {"bytes_text", "BYTES", 0, false, column::table_only}};
}

std::string shown_bytes(const std::string& bytes) {
  return hex_text(bytes.substr(0, kShownBytes), 4) + (bytes.size() > kShownBytes ? " ..." : "");
}

void add_value(const field_value& value, result_document& document) {
  document.add({static_cast<int64_t>(value.offset), static_cast<int64_t>(value.bytes.size()), value.name,
                known_cell(value.text.has_value(), value.text.value_or("")),
                known_cell(value.number.has_value(), int64_t{value.number.value_or(0)}), hex_text(value.bytes),
                shown_bytes(value.bytes)});
}

void tell_no_payload(const message_kind& kind) {
  if (kind.framing == message_framing::none) notice(fmt::format("{} has no payload", kind.name));
}

void require_payload(const message_kind& kind, const std::string& payload) {
  if (kind.framing == message_framing::none && !payload.empty())
    throw question_error(fmt::format("{} has no payload; expected no bytes and not {}", kind.name, payload.size()));
}

// ---- The other way ----

std::vector<column> payload_columns() {
  return {{"kind", "KIND"},        {"opcode", "OPCODE"}, {"framing", "FRAMING"},
          {"byte_order", "ORDER"}, {"length", "LENGTH"}, {"payload", "PAYLOAD"}};
}

std::string lines_of_hex(const std::string& payload) {
  std::string text;
  for (size_t place = 0; place < payload.size(); place += kLineBytes)
    text += hex_text(payload.substr(place, kLineBytes), 4) + "\n";
  return text;
}

} // namespace

exit_code list_messages(const command_context& context, const message_list_options& options) {
  result_document document{kind_columns(), {}};
  for (const auto& name : options.kinds) add_kind(find_message_kind(name), document);
  if (options.kinds.empty())
    for (const auto& kind : message_kinds()) add_kind(kind, document);
  context.print(document);
  return kFound;
}

exit_code decode_message(const command_context& context, const message_options& options) {
  const message_kind& kind = find_message_kind(options.kind);
  const std::string payload = parse_hex(options.words, stdin);
  require_payload(kind, payload);
  tell_no_payload(kind);
  const found_record record = record_in(kind, payload, options);
  result_document document{value_columns(), {}};
  for (const auto& value : read_record(kind, record.bytes, record.order)) add_value(value, document);
  if (const auto doubt = doubt_about_order(kind, record.bytes, record.order); !doubt.empty()) notice(doubt);
  context.print(document);
  return kFound;
}

exit_code encode_message(const command_context& context, const message_options& options) {
  const message_kind& kind = find_message_kind(options.kind);
  const byte_order order = order_named(options.order);
  const std::string record = make_record(kind, options.words, order);
  tell_no_payload(kind);
  const bool is_array = kind.framing == message_framing::tlv && !options.value_alone;
  const std::string payload = is_array ? array_of_value(record, kind.tlv_type, order) : record;
  if (context.style.format == output_format::table) {
    context.results.write(lines_of_hex(payload));
    return kFound;
  }
  result_document document{payload_columns(), {}};
  document.add({std::string(kind.name), std::string(kind.opcodes), is_array ? framing_text(kind) : "flat",
                std::string(order_text(order)), static_cast<int64_t>(payload.size()), hex_text(payload)});
  context.print(document);
  return kFound;
}

} // namespace chnsw_tool
