#include "standard_input.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "inspect/error.h"
#include "inspect/messages/hex_text.h"

namespace chnsw_tool {

namespace {

void require_read() {
  if (std::ferror(stdin) == 0) return;
  throw inspect::platform_error(fmt::format("standard input cannot be read: {}", std::strerror(errno)));
}

} // namespace

std::string read_all_input() {
  std::string text;
  char block[4096];
  for (size_t size = 0; (size = std::fread(block, 1, sizeof block, stdin)) != 0;) text.append(block, size);
  require_read();
  return text;
}

std::optional<std::string> read_input_line() {
  std::string line;
  int character = std::getc(stdin);
  if (character == EOF) {
    require_read();
    return std::nullopt;
  }
  for (; character != EOF && character != '\n'; character = std::getc(stdin)) line += static_cast<char>(character);
  return line;
}

std::string bytes_of_words(const std::vector<std::string>& words) {
  if (words.size() == 1 && words.front() == kStandardInput) return inspect::parse_hex(read_all_input());
  return inspect::parse_hex(fmt::format("{}", fmt::join(words, " ")));
}

} // namespace chnsw_tool
