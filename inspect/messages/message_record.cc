#include "inspect/messages/message_record.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "inspect/chassis/node_identity.h"
#include "inspect/error.h"
#include "inspect/mainframe/host_text.h"
#include "inspect/messages/hex_text.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "inspect/words/target_numbers.h"
#include "libchnsw.h"
#include "vswitch/interface_index.h"
#include "vswitch/node_descriptor.h"
#include "vswitch/tlv_array.h"

namespace inspect {

namespace {

constexpr std::string_view kNone = "none";
constexpr size_t kIndexBytes = 4;

byte_order order_of(const message_field& field, byte_order order) {
  const bool fixed = field.form == field_form::interface_on_wire || field.form == field_form::interface_list;
  return fixed ? byte_order::big : order;
}

byte_order other(byte_order order) {
  return order == byte_order::big ? byte_order::little : byte_order::big;
}

bool is_number(field_form form) {
  switch (form) {
    case field_form::number:
    case field_form::status:
    case field_form::codepage:
    case field_form::interface_on_wire:
    case field_form::interface_as_is:
    case field_form::count:
      return true;
    default:
      return false;
  }
}

const message_field* field_of_form(const message_kind& kind, field_form form) {
  for (const auto& field : kind.fields)
    if (field.form == form) return &field;
  return nullptr;
}

// ---- Reading ----

std::string interface_text(uint32_t if_index) {
  return if_index == 0 ? std::string(kNone) : vswitch::interface_name(if_index);
}

std::string number_text(field_form form, uint32_t number) {
  switch (form) {
    case field_form::status:
      return status_text(number);
    case field_form::codepage:
      return chnsw_tool::codepage_text(number);
    case field_form::interface_on_wire:
    case field_form::interface_as_is:
      return interface_text(number);
    default:
      return std::to_string(number);
  }
}

void add_range(unsigned first, unsigned last, std::string& text) {
  if (!text.empty()) text += ',';
  text += first == last ? std::to_string(first) : fmt::format("{}-{}", first, last);
}

bool holds(std::string_view bitmap, size_t vsan) {
  return (static_cast<unsigned char>(bitmap[vsan / 8]) & 0x80u >> vsan % 8) != 0;
}

std::string set_text(std::string_view bitmap) {
  std::string text;
  const auto end = static_cast<unsigned>(bitmap.size() * 8);
  for (unsigned first = 0; first < end; ++first) {
    if (!holds(bitmap, first)) continue;
    unsigned last = first;
    while (last + 1 < end && holds(bitmap, last + 1)) ++last;
    add_range(first, last, text);
    first = last;
  }
  return text.empty() ? std::string(kNone) : text;
}

std::string list_text(std::string_view bytes) {
  std::string text;
  for (size_t offset = 0; offset < bytes.size(); offset += kIndexBytes)
    text += (offset == 0 ? "" : ",") + interface_text(number_at(bytes, offset, kIndexBytes, byte_order::big));
  return text.empty() ? std::string(kNone) : text;
}

bool are_zeros(std::string_view bytes) {
  return bytes.find_first_not_of('\0') == std::string_view::npos;
}

bool is_known(uint32_t codepage) {
  return codepage != 0 && std::string_view(ficon_get_codepage_name(codepage)) != ficon_get_codepage_name(0);
}

uint32_t codepage_of(const message_kind& kind, std::string_view record, byte_order order) {
  const message_field* field = field_of_form(kind, field_form::codepage);
  return field == nullptr ? 0 : number_at(record, field->offset, field->length, order);
}

std::optional<std::string> host_field_text(std::string_view bytes, uint32_t codepage) {
  if (!is_known(codepage)) return std::nullopt;
  return utf8_of_latin1(vswitch::without_blanks(from_host(codepage, std::string(bytes))));
}

std::optional<std::string> node_field_text(std::string_view bytes, uint32_t codepage) {
  if (!is_known(codepage)) return std::nullopt;
  ficon_node_descriptor sent{};
  std::memcpy(&sent, bytes.data(), sizeof sent);
  return chnsw_tool::node_text(chnsw_tool::identity_of(codepage, sent));
}

std::optional<std::string> bytes_text(field_form form, std::string_view bytes, uint32_t codepage) {
  switch (form) {
    case field_form::text:
      return utf8_of_latin1(bytes.substr(0, bytes.find('\0')));
    case field_form::host_text:
      return host_field_text(bytes, codepage);
    case field_form::node:
      return node_field_text(bytes, codepage);
    case field_form::vsan_set:
      return set_text(bytes);
    case field_form::interface_list:
      return list_text(bytes);
    default:
      return are_zeros(bytes) ? "zeros" : "0x" + hex_text(bytes);
  }
}

field_value read_field(const message_field& field, std::string_view bytes, uint32_t codepage, byte_order order) {
  field_value value{std::string(field.name), field.offset, std::string(bytes), {}, {}};
  if (is_number(field.form)) {
    value.number = number_at(bytes, 0, bytes.size(), order_of(field, order));
    value.text = number_text(field.form, *value.number);
  } else {
    value.text = bytes_text(field.form, bytes, codepage);
  }
  return value;
}

field_value read_bytes(std::string_view name, size_t offset, std::string_view bytes) {
  return read_field({name, offset, bytes.size(), field_form::bytes, 0, ""}, bytes, 0, byte_order::big);
}

// How long a record has to be, by what it says itself.
size_t needed_size(const message_kind& kind, std::string_view record, byte_order order) {
  const message_field* count = field_of_form(kind, field_form::count);
  if (count == nullptr || record.size() < kind.size) return record.size() <= kind.short_size ? kind.short_size : kind.size;
  return kind.size + size_t{number_at(record, count->offset, count->length, order)} * kIndexBytes;
}

size_t end_of(const message_field& field, size_t record_size) {
  return field.form == field_form::interface_list ? record_size : field.offset + field.length;
}

std::string counted_bytes(size_t count) {
  return fmt::format("{} byte{}", count, count == 1 ? "" : "s");
}

std::string missing_bytes(size_t count) {
  return count == 1 ? "1 byte is missing" : fmt::format("{} bytes are missing", count);
}

void require_size(const message_kind& kind, std::string_view record, size_t needed, byte_order order) {
  if (record.size() >= needed) return;
  const auto cut = std::find_if(kind.fields.begin(), kind.fields.end(),
                                [&](const auto& field) { return end_of(field, needed) > record.size(); });
  const std::string doubt = doubt_about_order(kind, record, order);
  throw question_error(fmt::format("{}: {}: the record has {} of {}, not all of {} at offset {}{}{}", kind.name,
                                   missing_bytes(needed - record.size()), record.size(), counted_bytes(needed), cut->name,
                                   cut->offset, doubt.empty() ? "" : "; ", doubt));
}

// ---- Writing ----

struct given_value {
  const message_kind& kind;
  const message_field& field;
  std::string_view text;

  [[noreturn]] void refuse(const std::string& expected) const {
    throw question_error(fmt::format("\"{}\"; expected {}", printable(text), expected));
  }
};

uint32_t highest(size_t length) {
  return length >= 4 ? UINT32_MAX : (1u << 8 * length) - 1;
}

std::optional<uint32_t> status_of_name(std::string_view text) {
  static const std::map<std::string_view, uint32_t> kNames = [] {
    std::map<std::string_view, uint32_t> names;
    for (uint32_t code = FICON_RC_INVALID_ARG & ~0xFFu; code <= (FICON_RC_INVALID_ARG | 0xFFu); ++code)
      if (status_name(code).starts_with("FICON_RC_")) names[status_name(code)] = code;
    for (uint32_t code : {0u, uint32_t{FICON_RC_NO_MEMORY}}) names[status_name(code)] = code;
    return names;
  }();
  const auto found = kNames.find(text);
  return found == kNames.end() ? std::nullopt : std::optional(found->second);
}

uint32_t parse_interface_or_none(std::string_view text) {
  return text == kNone || text == "0" ? 0 : parse_interface(text);
}

uint32_t parse_plain_number(const given_value& given) {
  const number_kind kind = {"number", 10, 0, highest(given.field.length), "12 or 0xC"};
  return parse_number(kind, given.text);
}

uint32_t parse_field_number(const given_value& given) {
  switch (given.field.form) {
    case field_form::status:
      if (const auto code = status_of_name(given.text)) return *code;
      return parse_plain_number(given);
    case field_form::interface_on_wire:
    case field_form::interface_as_is:
      return parse_interface_or_none(given.text);
    case field_form::count:
      throw question_error("the interfaces are counted; give them alone");
    default:
      return parse_plain_number(given);
  }
}

// "0x..." as bytes of at most, or of exactly, the field's length.
std::string parse_field_bytes(const given_value& given, bool exactly) {
  std::string bytes;
  if (given.text.starts_with("0x")) bytes = parse_hex(given.text);
  const size_t length = given.field.length;
  if (bytes.empty() || bytes.size() > length || (exactly && bytes.size() != length))
    given.refuse(fmt::format("0x and {}{}", exactly ? "" : "up to ", counted_bytes(length)));
  bytes.resize(length, '\0');
  return bytes;
}

std::string parse_text(const given_value& given) {
  std::string latin1 = latin1_of_utf8(given.text, "text");
  if (latin1.size() > given.field.length) given.refuse(fmt::format("up to {} characters", given.field.length));
  latin1.resize(given.field.length, '\0');
  return latin1;
}

uint32_t require_codepage(const given_value& given, uint32_t codepage) {
  if (!is_known(codepage)) given.refuse("codepage=37 or another code page to write it in; chnsw codepage lists them");
  return codepage;
}

// A part of a node descriptor, filled to its length as such a part is.
std::string node_part(const given_value& given, const vswitch::node_text& part, std::string_view text) {
  const auto whole = text.empty() ? std::string(part.length, ' ') : vswitch::padded(part, text);
  if (!whole) given.refuse(fmt::format("a {} of 1 to {} upper-case letters and digits", part.name, part.length));
  return *whole;
}

std::string parse_host_text(const given_value& given, uint32_t codepage) {
  if (given.text.starts_with("0x")) return parse_field_bytes(given, true);
  const std::string_view name = given.field.name.substr(given.field.name.find('.') + 1);
  const auto part = std::find_if(vswitch::kNodeTexts.begin(), vswitch::kNodeTexts.end(),
                                 [&](const auto& candidate) { return name == candidate.name; });
  return to_host(require_codepage(given, codepage), node_part(given, *part, given.text));
}

std::string parse_node(const given_value& given, uint32_t codepage) {
  if (given.text.starts_with("0x")) return parse_field_bytes(given, true);
  std::string text;
  std::string_view rest = given.text;
  for (const auto& part : vswitch::kNodeTexts) {
    const bool is_last = part.name == vswitch::kNodeTexts.back().name;
    const size_t dash = rest.find('-');
    if (is_last != (dash == std::string_view::npos)) given.refuse(std::string(form_text(field_form::node)));
    text += node_part(given, part, rest.substr(0, dash));
    if (!is_last) rest.remove_prefix(dash + 1);
  }
  return std::string(4, '\0') + to_host(require_codepage(given, codepage), text) + std::string(2, '\0');
}

std::string parse_set(const given_value& given) {
  std::string bitmap(given.field.length, '\0');
  if (given.text == kNone) return bitmap;
  for (uint32_t vsan : parse_numbers(kVsan, {std::string(given.text)}, numbers_below(FICON_VSAN_BITMAP_BYTES * 8)))
    bitmap[vsan / 8] = static_cast<char>(static_cast<unsigned char>(bitmap[vsan / 8]) | 0x80u >> vsan % 8);
  return bitmap;
}

std::string parse_list(const given_value& given) {
  std::string bytes;
  if (given.text == kNone) return bytes;
  if (given.text == "all") given.refuse(std::string(form_text(field_form::interface_list)));
  for (uint32_t if_index : parse_interfaces({}, {std::string(given.text)})) {
    bytes.resize(bytes.size() + kIndexBytes);
    set_number(bytes, bytes.size() - kIndexBytes, kIndexBytes, byte_order::big, if_index);
  }
  return bytes;
}

std::string parse_bytes_of(const given_value& given, uint32_t codepage) {
  switch (given.field.form) {
    case field_form::text:
      return parse_text(given);
    case field_form::host_text:
      return parse_host_text(given, codepage);
    case field_form::node:
      return parse_node(given, codepage);
    case field_form::vsan_set:
      return parse_set(given);
    case field_form::interface_list:
      return parse_list(given);
    default:
      return parse_field_bytes(given, false);
  }
}

using given_texts = std::map<std::string_view, std::string_view>;

given_texts texts_of(const message_kind& kind, const std::vector<std::string>& words) {
  given_texts texts;
  for (const std::string& word : words) {
    const size_t equals = word.find('=');
    const std::string_view name = std::string_view(word).substr(0, equals);
    find_message_field(kind, name);
    if (equals == std::string::npos)
      throw question_error(fmt::format("field \"{}\" has no value; expected {}=VALUE", name, name));
    if (!texts.emplace(name, std::string_view(word).substr(equals + 1)).second)
      throw question_error(fmt::format("field \"{}\" is given twice", name));
  }
  return texts;
}

void write_value(const given_value& given, byte_order order, std::string& record) {
  const message_field& field = given.field;
  if (is_number(field.form))
    set_number(record, field.offset, field.length, order_of(field, order), parse_field_number(given));
  else
    record.replace(field.offset, field.length, parse_bytes_of(given, codepage_of(given.kind, record, order)));
}

void write_field(const given_value& given, byte_order order, std::string& record) {
  try {
    write_value(given, order, record);
  } catch (const error& refused) {
    throw error(refused.failed(), fmt::format("{} of {}: {}", given.field.name, given.kind.name, refused.what()));
  }
}

// The whole length, or that of the short form when none of the fields behind it is given.
size_t size_for(const message_kind& kind, const given_texts& texts) {
  for (const auto& field : kind.fields)
    if (field.offset >= kind.short_size && texts.contains(field.name)) return kind.size;
  return kind.short_size;
}

void write_count(const message_kind& kind, byte_order order, std::string& record) {
  const message_field* count = field_of_form(kind, field_form::count);
  if (count == nullptr) return;
  set_number(record, count->offset, count->length, order, static_cast<uint32_t>((record.size() - kind.size) / kIndexBytes));
}

// ---- TLV arrays ----

constexpr size_t kSizeOffset = 4;
constexpr size_t kCountOffset = 8;

[[noreturn]] void refuse_array(size_t missing, const std::string& what) {
  throw question_error(fmt::format("{}: the TLV array {}", missing_bytes(missing), what));
}

size_t array_size(std::string_view payload, byte_order order) {
  if (payload.size() < vswitch::kTlvHeaderBytes)
    refuse_array(vswitch::kTlvHeaderBytes - payload.size(), "ends within its header");
  const size_t size = number_at(payload, kSizeOffset, 4, order);
  if (size > payload.size())
    refuse_array(size - payload.size(), fmt::format("says to have {}, there are {}", counted_bytes(size), payload.size()));
  return size;
}

size_t padded_length(size_t length) {
  return (length + 3) / 4 * 4;
}

} // namespace

std::string_view order_text(byte_order order) {
  return order == byte_order::big ? "big" : "little";
}

uint32_t number_at(std::string_view bytes, size_t offset, size_t length, byte_order order) {
  uint32_t number = 0;
  for (size_t n = 0; n < length; ++n) {
    const size_t place = order == byte_order::big ? n : length - 1 - n;
    number = number << 8 | static_cast<unsigned char>(bytes[offset + place]);
  }
  return number;
}

void set_number(std::string& bytes, size_t offset, size_t length, byte_order order, uint32_t number) {
  for (size_t n = 0; n < length; ++n) {
    const size_t place = order == byte_order::little ? n : length - 1 - n;
    bytes[offset + place] = static_cast<char>(number >> 8 * n);
  }
}

std::vector<field_value> read_record(const message_kind& kind, std::string_view record, byte_order order) {
  if (kind.is_free_form && record.size() != kind.size) return {read_bytes("(bytes)", 0, record)};
  const size_t size = needed_size(kind, record, order);
  require_size(kind, record, size, order);
  const uint32_t codepage = codepage_of(kind, record, order);
  std::vector<field_value> values;
  for (const auto& field : kind.fields) {
    if (end_of(field, size) > size) break;
    values.push_back(read_field(field, record.substr(field.offset, end_of(field, size) - field.offset), codepage, order));
  }
  if (record.size() > size) values.push_back(read_bytes("(beyond)", size, record.substr(size)));
  return values;
}

std::string doubt_about_order(const message_kind& kind, std::string_view record, byte_order order) {
  for (const auto& field : kind.fields) {
    if (field.usual == 0 || field.offset + field.length > record.size()) continue;
    if (number_at(record, field.offset, field.length, other(order)) == field.usual)
      return fmt::format("{} would be {}, as it always is, with --byte-order {}", field.name, field.usual,
                         order_text(other(order)));
  }
  return "";
}

std::string make_record(const message_kind& kind, const std::vector<std::string>& words, byte_order order) {
  const given_texts texts = texts_of(kind, words);
  std::string record(size_for(kind, texts), '\0');
  for (const auto& field : kind.fields) {
    if (field.offset + field.length > record.size()) break;
    if (field.usual != 0) set_number(record, field.offset, field.length, order, field.usual);
    if (const auto text = texts.find(field.name); text != texts.end())
      write_field({kind, field, text->second}, order, record);
  }
  write_count(kind, order, record);
  return record;
}

std::optional<byte_order> order_of_array(std::string_view payload) {
  if (payload.size() < sizeof vswitch::kTlvMagic) return std::nullopt;
  for (byte_order order : {byte_order::big, byte_order::little})
    if (number_at(payload, 0, sizeof vswitch::kTlvMagic, order) == vswitch::kTlvMagic) return order;
  return std::nullopt;
}

std::string value_of_array(std::string_view payload, uint16_t type, byte_order order) {
  const size_t size = array_size(payload, order);
  std::vector<std::string> there;
  for (size_t place = vswitch::kTlvHeaderBytes; place < size;) {
    const size_t begin = place + vswitch::kTlvPrefixBytes;
    if (begin > size) refuse_array(begin - size, "ends within a value's type and length");
    const uint32_t found = number_at(payload, place, 2, order);
    const size_t length = number_at(payload, place + 2, 2, order);
    if (begin + length > size) refuse_array(begin + length - size, fmt::format("ends within its value of type {}", found));
    if (found == type) return std::string(payload.substr(begin, length));
    there.push_back(std::to_string(found));
    place = begin + padded_length(length);
  }
  throw question_error(fmt::format("the TLV array holds no value of type {}; it holds {}", type,
                                   there.empty() ? "none" : fmt::format("type {}", fmt::join(there, ", "))));
}

std::string array_of_value(std::string_view value, uint16_t type, byte_order order) {
  std::string array(vswitch::kTlvHeaderBytes + vswitch::kTlvPrefixBytes + padded_length(value.size()), '\0');
  set_number(array, 0, 4, order, vswitch::kTlvMagic);
  set_number(array, kSizeOffset, 4, order, static_cast<uint32_t>(array.size()));
  set_number(array, kCountOffset, 2, order, 1);
  set_number(array, vswitch::kTlvHeaderBytes, 2, order, type);
  set_number(array, vswitch::kTlvHeaderBytes + 2, 2, order, static_cast<uint32_t>(value.size()));
  array.replace(vswitch::kTlvHeaderBytes + vswitch::kTlvPrefixBytes, value.size(), value);
  return array;
}

} // namespace inspect
