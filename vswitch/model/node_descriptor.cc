#include "vswitch/node_descriptor.h"

#include <algorithm>
#include <cstring>

#include "vswitch/packed_fields.h"

namespace vswitch {

namespace {

bool is_node_character(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
}

template <size_t length>
void put_text(char (&field)[length], const std::string& text) {
  std::memcpy(field, text.data(), std::min(length, text.size()));
}

template <size_t length>
std::string text_of(const char (&field)[length]) {
  return std::string(field, length);
}

// Whether all of a field could be converted in place.
template <size_t length>
bool convert_text(char (&field)[length], uint32_t codepage, ficon_convert_fn convert) {
  char converted[length] = {};
  char* cursor = converted;
  uint32_t counter = 0;
  uint32_t space = sizeof converted;
  if (convert(field, length, CHAR_CONVERT_TO_HOST, &cursor, &counter, &space, codepage) == 0) return false;
  std::memcpy(field, converted, length);
  return true;
}

} // namespace

bool is_codepage(int64_t number) {
  return std::any_of(kCodePages.begin(), kCodePages.end(),
                     [number](const code_page& page) { return page.number == number; });
}

std::optional<std::string> padded(const node_text& field, std::string_view text) {
  if (text.empty() || text.size() > field.length) return std::nullopt;
  if (!std::all_of(text.begin(), text.end(), is_node_character)) return std::nullopt;
  const size_t missing = field.length - text.size();
  if (field.padding == node_padding::zeros_before) return std::string(missing, '0') + std::string(text);
  return std::string(text) + std::string(missing, ' ');
}

std::string without_blanks(std::string_view text) {
  const size_t last = text.find_last_not_of(' ');
  return std::string(text.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

ficon_node_descriptor ascii_descriptor(const node_descriptor& node) {
  ficon_node_descriptor bytes = {};
  store_number(bytes.flags, sizeof bytes.flags, std::endian::big, node.flags);
  put_text(bytes.type, node.type);
  put_text(bytes.model, node.model);
  put_text(bytes.manufacturer, node.manufacturer);
  put_text(bytes.plant, node.plant);
  put_text(bytes.sequence, node.sequence);
  store_number(bytes.tag, sizeof bytes.tag, std::endian::big, node.tag);
  return bytes;
}

node_descriptor node_of(uint32_t codepage, const ficon_node_descriptor& ascii) {
  node_descriptor node;
  node.codepage = codepage;
  node.flags = load_number(ascii.flags, sizeof ascii.flags, std::endian::big);
  node.type = text_of(ascii.type);
  node.model = text_of(ascii.model);
  node.manufacturer = text_of(ascii.manufacturer);
  node.plant = text_of(ascii.plant);
  node.sequence = text_of(ascii.sequence);
  node.tag = static_cast<uint16_t>(load_number(ascii.tag, sizeof ascii.tag, std::endian::big));
  return node;
}

std::optional<ficon_node_descriptor> host_descriptor(const node_descriptor& node, ficon_convert_fn convert) {
  if (convert == nullptr) return std::nullopt;
  ficon_node_descriptor bytes = ascii_descriptor(node);
  const bool all = convert_text(bytes.type, node.codepage, convert) && convert_text(bytes.model, node.codepage, convert) &&
                   convert_text(bytes.manufacturer, node.codepage, convert) &&
                   convert_text(bytes.plant, node.codepage, convert) &&
                   convert_text(bytes.sequence, node.codepage, convert);
  return all ? std::optional(bytes) : std::nullopt;
}

} // namespace vswitch
