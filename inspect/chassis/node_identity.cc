#include "inspect/chassis/node_identity.h"

#include <fmt/format.h>

#include <cstddef>

#include "inspect/words/printable_text.h"

namespace inspect {

namespace {

template <size_t size, typename byte>
void add_hex(const byte (&bytes)[size], const char* separator, std::string& text) {
  if (!text.empty()) text += separator;
  for (byte one : bytes) text += fmt::format("{:02X}", static_cast<unsigned char>(one));
}

} // namespace

node_identity identity_of(uint32_t codepage, const ficon_node_descriptor& sent) {
  node_identity node{codepage, sent, sent, 0};
  node.conversion = ficon_format_rnid(codepage, &node.converted);
  return node;
}

node_identity identity_of_converted(uint32_t codepage, const ficon_node_descriptor& converted) {
  return {codepage, converted, converted, 0};
}

vswitch::node_descriptor node_fields(const node_identity& node) {
  vswitch::node_descriptor fields = vswitch::node_of(node.codepage, node.converted);
  for (const auto& part : vswitch::kNodeTexts) {
    std::string& text = fields.*part.text;
    text = node.is_readable() ? utf8_of_latin1(vswitch::without_blanks(text)) : "";
  }
  return fields;
}

std::string node_text(const node_identity& node) {
  if (!node.is_readable()) return "";
  const auto fields = node_fields(node);
  std::string whole;
  for (const auto& part : vswitch::kNodeTexts) whole += (whole.empty() ? "" : "-") + fields.*part.text;
  return whole;
}

std::string codepage_text(uint32_t codepage) {
  return fmt::format("{} {}", codepage, ficon_get_codepage_name(codepage));
}

std::string descriptor_hex(const ficon_node_descriptor& descriptor, const char* separator) {
  std::string text;
  add_hex(descriptor.flags, separator, text);
  add_hex(descriptor.type, separator, text);
  add_hex(descriptor.model, separator, text);
  add_hex(descriptor.manufacturer, separator, text);
  add_hex(descriptor.plant, separator, text);
  add_hex(descriptor.sequence, separator, text);
  add_hex(descriptor.tag, separator, text);
  return text;
}

} // namespace inspect
