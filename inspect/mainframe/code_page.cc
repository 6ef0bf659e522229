#include "inspect/mainframe/code_page.h"

#include <fmt/format.h>

#include <algorithm>

#include "inspect/error.h"
#include "inspect/mainframe/host_text.h"
#include "inspect/words/number_lists.h"
#include "libchnsw.h"

namespace inspect {

namespace {

constexpr char kHostSubstitute = 0x3F;
constexpr char kSwitchSubstitute = 0x1A;
constexpr number_kind kCodepage = {"code page", 10, 0, 65535, "37 or 37,500"};

// Whether SUB, the substitute, took the place of the host's character, or of the switch's.
bool is_missing_on_switch(uint32_t codepage, char host, char latin1) {
  return codepage != FICON_CODEPAGE_ASCII && latin1 == kSwitchSubstitute && host != kHostSubstitute;
}
bool is_missing_on_host(uint32_t codepage, char host, char latin1) {
  return codepage != FICON_CODEPAGE_ASCII && host == kHostSubstitute && latin1 != kSwitchSubstitute;
}

converted_text counted(converted_text text, bool (*is_missing)(uint32_t, char, char)) {
  for (size_t n = 0; n < text.host.size(); ++n)
    text.substituted += is_missing(text.codepage, text.host[n], text.latin1[n]) ? 1U : 0U;
  return text;
}

std::string all_bytes() {
  std::string bytes;
  for (unsigned byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

} // namespace

size_t code_page::characters() const {
  return static_cast<size_t>(
      std::count_if(latin1.begin(), latin1.end(), [](const auto& character) { return character.has_value(); }));
}

code_page code_page_of(uint32_t codepage) {
  code_page page{codepage, {}};
  const std::string host = all_bytes();
  const std::string latin1 = from_host(codepage, host);
  for (size_t n = 0; n < host.size(); ++n)
    if (!is_missing_on_switch(codepage, host[n], latin1[n])) page.latin1[n] = latin1[n];
  return page;
}

converted_text text_to_host(uint32_t codepage, const std::string& latin1) {
  return counted({codepage, latin1, to_host(codepage, latin1), 0}, is_missing_on_host);
}

converted_text text_from_host(uint32_t codepage, const std::string& host) {
  return counted({codepage, from_host(codepage, host), host, 0}, is_missing_on_switch);
}

std::vector<uint32_t> parse_codepages(const std::vector<std::string>& words) {
  const auto known = known_codepages();
  auto pages = parse_numbers(kCodepage, words, known);
  for (uint32_t page : pages)
    if (!is_known_codepage(page))
      throw question_error(fmt::format("the library knows no code page {}; it knows {}", page, fmt::join(known, ", ")));
  return pages;
}

} // namespace inspect
