// A host's code page beside the switch's text, ISO 8859-1: what is a character in both, and text converted from one to the other.
#ifndef INSPECT_CODE_PAGE_H
#define INSPECT_CODE_PAGE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace inspect {

// What each byte of the host's is in the switch's text; none where that has no such character.
struct code_page {
  uint32_t codepage = 0;
  std::array<std::optional<char>, 256> latin1{};

  size_t characters() const; // that both have
};
code_page code_page_of(uint32_t codepage);

struct converted_text {
  uint32_t codepage;
  std::string latin1;
  std::string host;
  size_t substituted; // characters that the other side does not have, and SUB stands for
};
converted_text text_to_host(uint32_t codepage, const std::string& latin1);
converted_text text_from_host(uint32_t codepage, const std::string& host);

// Code pages that the library knows, of a list like {"37,500"} or {"all"}. Throws a question error.
std::vector<uint32_t> parse_codepages(const std::vector<std::string>& words);

} // namespace inspect

#endif
