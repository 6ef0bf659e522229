#include "inspect/messages/field_bytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>

#include "inspect/error.h"
#include "inspect/mainframe/host_text.h"
#include "inspect/messages/byte_counts.h"
#include "inspect/messages/hex_text.h"
#include "inspect/words/number_lists.h"
#include "inspect/words/port_lists.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"
#include "vswitch/node_descriptor.h"

namespace inspect {

namespace {

constexpr std::string_view kNone = "none";

// A field, and what was given for it.
struct given_value {
  const message_field& field;
  std::string_view text;

  [[noreturn]] void refuse(const std::string& expected) const {
    throw question_error(fmt::format("\"{}\"; expected {}", printable(text), expected));
  }
};

// ---- Numbers ----

uint32_t highest_number(size_t length) {
  return length >= 4 ? UINT32_MAX : (1u << 8 * length) - 1;
}

std::map<std::string_view, uint32_t> codes_of_names() {
  constexpr uint32_t kFirstCode = FICON_RC_INVALID_ARG & ~0xFFu;
  std::map<std::string_view, uint32_t> codes;
  for (uint32_t code = kFirstCode; code <= (kFirstCode | 0xFFu); ++code)
    if (status_name(code).starts_with("FICON_RC_")) codes[status_name(code)] = code;
  for (uint32_t code : {0u, uint32_t{FICON_RC_NO_MEMORY}}) codes[status_name(code)] = code;
  return codes;
}

std::optional<uint32_t> status_of_name(std::string_view text) {
  static const std::map<std::string_view, uint32_t> kCodes = codes_of_names();
  const auto found = kCodes.find(text);
  return found == kCodes.end() ? std::nullopt : std::optional(found->second);
}

uint32_t parse_interface_or_none(std::string_view text) {
  return text == kNone || text == "0" ? 0 : parse_interface(text);
}

uint32_t parse_plain_number(const given_value& given) {
  const number_kind kind = {"number", 10, 0, highest_number(given.field.length), "12 or 0xC"};
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

// ---- Bytes ----

enum class expected_length { whole, up_to };

// "0x..." as bytes; zeros follow them where fewer than the field's length will do.
std::string parse_hex_bytes(const given_value& given, expected_length expected) {
  std::string bytes;
  if (given.text.starts_with("0x")) bytes = parse_hex(given.text);
  const size_t length = given.field.length;
  const bool whole = expected == expected_length::whole;
  if (bytes.empty() || bytes.size() > length || (whole && bytes.size() != length))
    given.refuse(fmt::format("0x and {}{}", whole ? "" : "up to ", counted_bytes(length)));
  bytes.resize(length, '\0');
  return bytes;
}

// ---- Texts ----

std::string parse_text(const given_value& given) {
  std::string latin1 = latin1_of_utf8(given.text, "text");
  if (latin1.size() > given.field.length) given.refuse(fmt::format("up to {} characters", given.field.length));
  latin1.resize(given.field.length, '\0');
  return latin1;
}

uint32_t require_codepage(const given_value& given, uint32_t codepage) {
  if (!is_known_codepage(codepage))
    given.refuse("codepage=37 or another code page to write it in; chnsw codepage lists them");
  return codepage;
}

// A part of a node descriptor, filled to its length as such a part is.
std::string node_part(const given_value& given, const vswitch::node_text& part, std::string_view text) {
  const auto whole = text.empty() ? std::string(part.length, ' ') : vswitch::padded(part, text);
  if (!whole) given.refuse(fmt::format("a {} of 1 to {} upper-case letters and digits", part.name, part.length));
  return *whole;
}

std::string parse_host_text(const given_value& given, uint32_t codepage) {
  if (given.text.starts_with("0x")) return parse_hex_bytes(given, expected_length::whole);
  const std::string_view name = given.field.name.substr(given.field.name.find('.') + 1);
  const auto part = std::find_if(vswitch::kNodeTexts.begin(), vswitch::kNodeTexts.end(),
                                 [&](const auto& candidate) { return name == candidate.name; });
  return to_host(require_codepage(given, codepage), node_part(given, *part, given.text));
}

std::string parse_node(const given_value& given, uint32_t codepage) {
  if (given.text.starts_with("0x")) return parse_hex_bytes(given, expected_length::whole);
  std::string text;
  std::string_view rest = given.text;
  for (const auto& part : vswitch::kNodeTexts) {
    const bool is_last = &part == &vswitch::kNodeTexts.back();
    const size_t dash = rest.find('-');
    if (is_last != (dash == std::string_view::npos)) given.refuse(std::string(form_text(field_form::node)));
    text += node_part(given, part, rest.substr(0, dash));
    if (!is_last) rest.remove_prefix(dash + 1);
  }
  return std::string(sizeof(ficon_node_descriptor::flags), '\0') + to_host(require_codepage(given, codepage), text) +
         std::string(sizeof(ficon_node_descriptor::tag), '\0');
}

// ---- Sets and lists ----

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
    bytes.resize(bytes.size() + kListedInterfaceBytes);
    set_number(bytes, bytes.size() - kListedInterfaceBytes, kListedInterfaceBytes, byte_order::big, if_index);
  }
  return bytes;
}

} // namespace

std::string bytes_of_field(const message_field& field, std::string_view text, uint32_t codepage, byte_order order) {
  const given_value given{field, text};
  switch (field.form) {
    case field_form::text:
      return parse_text(given);
    case field_form::host_text:
      return parse_host_text(given, codepage);
    case field_form::node:
      return parse_node(given, codepage);
    case field_form::bytes:
      return parse_hex_bytes(given, expected_length::up_to);
    case field_form::vsan_set:
      return parse_set(given);
    case field_form::interface_list:
      return parse_list(given);
    default:
      break;
  }
  std::string bytes(field.length, '\0');
  set_number(bytes, 0, field.length, order_of(field, order), parse_field_number(given));
  return bytes;
}

} // namespace inspect
