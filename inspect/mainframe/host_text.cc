#include "inspect/mainframe/host_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/error.h"
#include "inspect/words/printable_text.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"

namespace inspect {

namespace {

constexpr size_t kLongestField = 100; // that the library converts in one call
constexpr uint32_t kCodepages = 0x10000;

std::string converted(uint32_t mode, uint32_t codepage, std::string text) {
  for (size_t place = 0; place < text.size(); place += kLongestField) {
    const auto length = static_cast<int32_t>(std::min(kLongestField, text.size() - place));
    const uint32_t status = convert_codepage(mode, codepage, text.data() + place, length);
    if (status != 0)
      throw platform_error(
          fmt::format("the library cannot convert text of code page {}: {}", codepage, status_text(status)));
  }
  return text;
}

} // namespace

bool is_known_codepage(uint32_t codepage) {
  return std::string_view(ficon_get_codepage_name(codepage)) != ficon_get_codepage_name(0); // the name of every unknown one
}

std::vector<uint32_t> known_codepages() {
  std::vector<uint32_t> pages;
  for (uint32_t page = 0; page < kCodepages; ++page)
    if (is_known_codepage(page)) pages.push_back(page);
  return pages;
}

std::string latin1_of_utf8(std::string_view text, std::string_view what) {
  std::string result;
  for (size_t place = 0; place < text.size(); ++place) {
    const auto byte = static_cast<unsigned char>(text[place]);
    const auto next = static_cast<unsigned char>(place + 1 < text.size() ? text[place + 1] : '\0');
    const bool is_pair = (byte == 0xC2 || byte == 0xC3) && (next & 0xC0) == 0x80;
    if (byte >= 0x80 && !is_pair)
      throw question_error(fmt::format("{} \"{}\", character {}: the switch's text is ISO 8859-1, which does not have it",
                                       what, printable(text), result.size() + 1));
    result += static_cast<char>(is_pair ? (byte & 0x03) << 6 | (next & 0x3F) : byte);
    if (is_pair) ++place;
  }
  return result;
}

std::string to_host(uint32_t codepage, std::string text) {
  return converted(CHAR_CONVERT_TO_HOST, codepage, std::move(text));
}

std::string from_host(uint32_t codepage, std::string bytes) {
  return converted(CHAR_CONVERT_FROM_HOST, codepage, std::move(bytes));
}

} // namespace inspect
