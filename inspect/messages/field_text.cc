#include "inspect/messages/field_text.h"

#include <fmt/format.h>

#include <cstring>

#include "inspect/chassis/node_identity.h"
#include "inspect/mainframe/host_text.h"
#include "inspect/messages/hex_text.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"
#include "vswitch/interface_index.h"
#include "vswitch/node_descriptor.h"

namespace inspect {

namespace {

constexpr std::string_view kNone = "none";

// ---- Numbers ----

std::string interface_text(uint32_t if_index) {
  return if_index == 0 ? std::string(kNone) : vswitch::interface_name(if_index);
}

std::string number_text(field_form form, uint32_t number) {
  switch (form) {
    case field_form::status:
      return status_text(number);
    case field_form::codepage:
      return codepage_text(number);
    case field_form::interface_on_wire:
    case field_form::interface_as_is:
      return interface_text(number);
    default:
      return std::to_string(number);
  }
}

// ---- Sets and lists ----

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
  for (size_t offset = 0; offset < bytes.size(); offset += kListedInterfaceBytes)
    text += (offset == 0 ? "" : ",") + interface_text(number_at(bytes, offset, kListedInterfaceBytes, byte_order::big));
  return text.empty() ? std::string(kNone) : text;
}

// ---- Texts ----

std::optional<std::string> host_field_text(std::string_view bytes, uint32_t codepage) {
  if (!is_known_codepage(codepage)) return std::nullopt;
  return utf8_of_latin1(vswitch::without_blanks(from_host(codepage, std::string(bytes))));
}

std::optional<std::string> node_field_text(std::string_view bytes, uint32_t codepage) {
  if (!is_known_codepage(codepage)) return std::nullopt;
  ficon_node_descriptor sent{};
  std::memcpy(&sent, bytes.data(), sizeof sent);
  return node_text(identity_of(codepage, sent));
}

bool are_zeros(std::string_view bytes) {
  return bytes.find_first_not_of('\0') == std::string_view::npos;
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

} // namespace

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

} // namespace inspect
