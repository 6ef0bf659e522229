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

// ---- The commands ----

namespace {

std::vector<std::string> offered_kinds(std::span<const std::string>) {
  return names_of(message_kinds());
}

// The fields of the kind that was named, each with the sign that its value follows.
std::vector<std::string> offered_fields(std::span<const std::string> words) {
  std::vector<std::string> fields;
  for (const auto& kind : message_kinds())
    if (!words.empty() && words.front() == kind.name) fields = names_of(kind.fields);
  for (auto& field : fields) field += "=";
  return fields;
}

std::string kinds_text() {
  return fmt::format("One of {}", fmt::join(names_of(message_kinds()), ", "));
}

argument kind_word(message_options& options) {
  return word("KIND", &options.kind, kinds_text()).offering(offered_kinds);
}

argument byte_order_option(message_options& options) {
  return option("--byte-order", "ORDER", &options.order,
                "Order of the bytes of a number: big, as a switch writes them (default), or little, as this machine does. "
                "Interfaces in requests and answers are big-endian in both")
      .one_of({"big", "little"});
}

command list_command() {
  auto options = std::make_shared<message_list_options>();
  return {.name = "list",
          .what = "The kinds of messages and their fields",
          .examples = "  chnsw message list\n  chnsw message list rnid-answer vsan-install --format csv",
          .arguments = {optional_word("KIND", &options->kinds, kinds_text()).offering(offered_kinds)},
          .run = runs(list_messages, options),
          .parts = {}};
}

command decode_command() {
  auto options = std::make_shared<message_options>();
  return {.name = "decode",
          .what = "Every field of a message's bytes",
          .examples =
              "  chnsw message decode ifvsan-answer 00000000 00000003 0000000A 01020400 00000000\n"
              "  hexdump -C captured | chnsw message decode rnid-answer - --format json",
          .arguments = {kind_word(*options),
                        optional_word("HEX", &options->words,
                                      "The payload in hexadecimal: C1F1, 0xC1 F1, or a dump with offsets; - for standard "
                                      "input")
                            .offering({"-"}),
                        byte_order_option(*options),
                        flag("--value", &options->value_alone,
                             "The bytes are the value alone, also if they begin like a TLV array of this virtual switch")},
          .run = runs(decode_message, options),
          .parts = {}};
}

command encode_command() {
  auto options = std::make_shared<message_options>();
  return {
      .name = "encode",
      .what = "The bytes of a message with these fields",
      .examples =
          "  chnsw message encode vsan-install install_byte0=1 vsans=10,20-29 interfaces=fc1/1-4\n"
          "  chnsw message encode rnid-answer if_index=fc3/1 codepage=37 node=8401-C02-ACM-83-A1234 --value",
      .arguments = {kind_word(*options),
                    optional_word("FIELDS", &options->words,
                                  "FIELD=VALUE each, fields as chnsw message list KIND names them; the others hold what is "
                                  "usual")
                        .offering(offered_fields),
                    byte_order_option(*options),
                    flag("--value", &options->value_alone,
                         "The value alone, without the TLV array of this virtual switch")},
      .run = runs(encode_message, options),
      .parts = {}};
}

} // namespace

command message_command() {
  return {.name = "message",
          .what = "What the bytes of a manager message say, and bytes for what is to be said",
          .examples =
              "  chnsw message\n"
              "  chnsw message decode ifvsan-answer 00000000 00000003 0000000A 01020400 00000000\n"
              "  chnsw message encode vsan-install install_byte0=1 vsans=10,20-29 interfaces=fc1/1-4",
          .arguments = {},
          .run = runs(list_messages, std::make_shared<message_list_options>()),
          .parts = {list_command(), decode_command(), encode_command()}};
}

} // namespace chnsw_tool
