#include "commands/message_command.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "inspect/messages/hex_text.h"
#include "inspect/messages/message_record.h"
#include "inspect/messages/message_table.h"
#include "inspect/messages/tlv_value.h"
#include "output/port_row.h"
#include "output/record_table.h"
#include "standard_input.h"

namespace chnsw_tool {

namespace {

using inspect::byte_order;
using inspect::field_value;
using inspect::message_field;
using inspect::message_framing;
using inspect::message_kind;

struct message_list_options {
  std::vector<std::string> kinds; // none: all
};

struct message_options {
  std::string kind;
  std::vector<std::string> words; // the bytes, or FIELD=VALUE
  std::string order;              // "big" or "little"; empty: that of the array, else big
  bool value_alone = false;       // without the TLV array around it
};

constexpr size_t kShownBytes = 16; // in a table; data has all
constexpr size_t kLineBytes = 32;

// ---- Kinds and fields ----

// A field of a kind; or the kind itself.
struct listed_field {
  const message_kind& kind;
  const message_field* field;
};

cell length_cell(size_t length) {
  return known_cell(length != 0, static_cast<int64_t>(length));
}

const record_column<listed_field> kKindColumns[] = {
    {{"kind", "KIND"}, [](const listed_field& listed) -> cell { return std::string(listed.kind.name); }},
    {{"opcode", "OPCODE"}, [](const listed_field& listed) -> cell { return std::string(listed.kind.opcodes); }},
    {{"payload", "PAYLOAD"}, [](const listed_field& listed) -> cell { return inspect::framing_text(listed.kind); }},
    {{"offset", "OFFSET"},
     [](const listed_field& listed) { return listed.field ? cell(static_cast<int64_t>(listed.field->offset)) : cell(); }},
    {{"length", "LENGTH"},
     [](const listed_field& listed) { return length_cell(listed.field ? listed.field->length : listed.kind.size); }},
    {{"field", "FIELD"},
     [](const listed_field& listed) { return listed.field ? cell(std::string(listed.field->name)) : cell(); }},
    {{"takes", "TAKES", 0, false, column::data_only},
     [](const listed_field& listed) {
       return listed.field ? cell(std::string(inspect::form_text(listed.field->form))) : cell();
     }},
    {{"what", "WHAT"},
     [](const listed_field& listed) {
       return listed.field ? cell(std::string(listed.field->what))
                           : cell(toned_text{std::string(listed.kind.what), tone::strong});
     }},
};

void add_kind(const message_kind& kind, std::vector<listed_field>& listed) {
  listed.push_back({kind, nullptr});
  for (const auto& field : kind.fields) listed.push_back({kind, &field});
}

// ---- Bytes to fields ----

byte_order order_named(const std::string& name) {
  return name == "little" ? byte_order::little : byte_order::big;
}

struct found_record {
  std::string bytes;
  byte_order order;
};

found_record find_record(const message_kind& kind, const std::string& payload, const message_options& options) {
  const auto order = inspect::order_of_array(payload);
  if (kind.framing != message_framing::tlv || options.value_alone || !order) return {payload, order_named(options.order)};
  if (!options.order.empty() && order != order_named(options.order))
    throw inspect::question_error(
        fmt::format("the TLV array is in {}-endian order; leave --byte-order out, or say --byte-order {}",
                    inspect::order_text(*order), inspect::order_text(*order)));
  return {inspect::value_of_array(payload, kind.tlv_type, *order), *order};
}

std::optional<std::string> doubt_about_order(const message_kind& kind, const found_record& record) {
  const auto doubt = inspect::doubt_about_order(kind, record.bytes, record.order);
  if (!doubt) return std::nullopt;
  return fmt::format("{} would be {}, as it always is, with --byte-order {}", doubt->field, doubt->usual,
                     inspect::order_text(doubt->order));
}

// A record that is too short may only seem so in the wrong order.
std::vector<field_value> read_fields(const message_kind& kind, const found_record& record) {
  try {
    return inspect::read_record(kind, record.bytes, record.order);
  } catch (const inspect::error& refused) {
    const auto doubt = doubt_about_order(kind, record);
    if (!doubt || refused.failed() != inspect::failure::question) throw;
    throw inspect::question_error(fmt::format("{}; {}", refused.what(), *doubt));
  }
}

std::string shown_bytes(const std::string& bytes) {
  return inspect::hex_text(bytes.substr(0, kShownBytes), 4) + (bytes.size() > kShownBytes ? " ..." : "");
}

const record_column<field_value> kValueColumns[] = {
    {{"offset", "OFFSET"}, [](const field_value& value) -> cell { return static_cast<int64_t>(value.offset); }},
    {{"length", "LENGTH"}, [](const field_value& value) -> cell { return static_cast<int64_t>(value.bytes.size()); }},
    {{"field", "FIELD"}, [](const field_value& value) -> cell { return value.name; }},
    {{"value", "VALUE"}, [](const field_value& value) { return value.text ? cell(*value.text) : cell(); }},
    {{"number", "", 8, false, column::data_only}, [](const field_value& value) { return optional_cell(value.number); }},
    {{"bytes", "", 0, false, column::data_only},
     [](const field_value& value) -> cell { return inspect::hex_text(value.bytes); }},
    {{"bytes_text", "BYTES", 0, false, column::table_only},
     [](const field_value& value) -> cell { return shown_bytes(value.bytes); }},
};

void notice_no_payload(const message_kind& kind) {
  if (kind.framing == message_framing::none) notice(fmt::format("{} has no payload", kind.name));
}

void require_payload(const message_kind& kind, const std::string& payload) {
  if (kind.framing == message_framing::none && !payload.empty())
    throw inspect::question_error(
        fmt::format("{} has no payload; expected no bytes and not {}", kind.name, payload.size()));
}

// ---- Fields to bytes ----

struct made_payload {
  const message_kind& kind;
  byte_order order;
  bool is_array;
  std::string bytes;
};

made_payload make_payload(const message_kind& kind, const message_options& options) {
  const byte_order order = order_named(options.order);
  const std::string record = inspect::make_record(kind, options.words, order);
  const bool is_array = kind.framing == message_framing::tlv && !options.value_alone;
  return {kind, order, is_array, is_array ? inspect::array_of_value(record, kind.tlv_type, order) : record};
}

const record_column<made_payload> kPayloadColumns[] = {
    {{"kind", "KIND"}, [](const made_payload& made) -> cell { return std::string(made.kind.name); }},
    {{"opcode", "OPCODE"}, [](const made_payload& made) -> cell { return std::string(made.kind.opcodes); }},
    {{"framing", "FRAMING"},
     [](const made_payload& made) -> cell { return made.is_array ? inspect::framing_text(made.kind) : "flat"; }},
    {{"byte_order", "ORDER"},
     [](const made_payload& made) -> cell { return std::string(inspect::order_text(made.order)); }},
    {{"length", "LENGTH"}, [](const made_payload& made) -> cell { return static_cast<int64_t>(made.bytes.size()); }},
    {{"payload", "PAYLOAD"}, [](const made_payload& made) -> cell { return inspect::hex_text(made.bytes); }},
};

std::string lines_of_hex(const std::string& payload) {
  std::string text;
  for (size_t place = 0; place < payload.size(); place += kLineBytes)
    text += inspect::hex_text(payload.substr(place, kLineBytes), 4) + "\n";
  return text;
}

exit_code list_messages(const command_context& context, const message_list_options& options) {
  std::vector<listed_field> listed;
  for (const auto& name : options.kinds) add_kind(inspect::find_message_kind(name), listed);
  if (options.kinds.empty())
    for (const auto& kind : inspect::message_kinds()) add_kind(kind, listed);
  context.print(document_of<listed_field>(kKindColumns, listed));
  return kFound;
}

exit_code decode_message(const command_context& context, const message_options& options) {
  const message_kind& kind = inspect::find_message_kind(options.kind);
  const std::string payload = bytes_of_words(options.words);
  require_payload(kind, payload);
  notice_no_payload(kind);
  const found_record record = find_record(kind, payload, options);
  const auto values = read_fields(kind, record);
  if (const auto doubt = doubt_about_order(kind, record)) notice(*doubt);
  context.print(document_of<field_value>(kValueColumns, values));
  return kFound;
}

exit_code encode_message(const command_context& context, const message_options& options) {
  const made_payload made = make_payload(inspect::find_message_kind(options.kind), options);
  notice_no_payload(made.kind);
  if (context.style.format == output_format::table)
    context.results.write(lines_of_hex(made.bytes));
  else
    context.print(document_of<made_payload>(kPayloadColumns, {made}));
  return kFound;
}

// ---- The commands ----

std::vector<std::string> offered_kinds(std::span<const std::string>) {
  return inspect::names_of(inspect::message_kinds());
}

// The fields of the kind that was named, each with the sign that its value follows.
std::vector<std::string> offered_fields(std::span<const std::string> words) {
  std::vector<std::string> fields;
  for (const auto& kind : inspect::message_kinds())
    if (!words.empty() && words.front() == kind.name) fields = inspect::names_of(kind.fields);
  for (auto& field : fields) field += "=";
  return fields;
}

std::string kinds_text() {
  return fmt::format("One of {}", fmt::join(inspect::names_of(inspect::message_kinds()), ", "));
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
