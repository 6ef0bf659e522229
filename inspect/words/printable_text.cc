// Text from files and devices, made fit to be shown.
#include "inspect/words/printable_text.h"

#include <fmt/format.h>

namespace inspect {

std::string printable(std::string_view text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    auto byte = static_cast<unsigned char>(text[i]);
    auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
    if (byte < 0x20 || byte == 0x7F)
      result += fmt::format("\\x{:02X}", byte);
    else if (byte == 0xC2 && next >= 0x80 && next < 0xA0) // U+0080 to U+009F: control characters too
      result += fmt::format("\\x{:02X}", static_cast<unsigned char>(text[++i]));
    else
      result += text[i];
  }
  return result;
}

std::string utf8_of_latin1(std::string_view text) {
  std::string result;
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80) result += static_cast<char>(0xC0 | byte >> 6);
    result += static_cast<char>(byte < 0x80 ? byte : 0x80 | (byte & 0x3F));
  }
  return result;
}

} // namespace inspect
