// Numbers and ranges inside the words of a list.
#include "inspect/words/word_piece.h"

#include <fmt/format.h>

#include <charconv>

#include "inspect/error.h"

namespace inspect {

namespace {

std::string number_text(const number_kind& kind, uint32_t number) {
  return kind.base == 16 ? fmt::format("{:X}", number) : fmt::format("{}", number);
}

[[noreturn]] void refuse_number(const number_kind& kind, const word_piece& at, std::string_view found) {
  refuse_piece(
      kind.what, at,
      fmt::format("{}; expected {} number from {} to {}, as in {}", found, kind.base == 16 ? "a hexadecimal" : "a decimal",
                  number_text(kind, kind.lowest), number_text(kind, kind.highest), kind.example));
}

} // namespace

void refuse_piece(std::string_view what, const word_piece& at, std::string_view why) {
  throw question_error(fmt::format("{} \"{}\", character {}: {}", what, at.word, at.position(), why));
}

uint32_t read_number(const number_kind& kind, const word_piece& at) {
  std::string_view digits = at.text;
  int base = static_cast<int>(kind.base);
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    digits.remove_prefix(2);
    base = 16;
  }
  if (digits.empty()) refuse_number(kind, at, "a number is missing");
  uint64_t number = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  if (end != digits.data() + digits.size()) refuse_number(kind, at, fmt::format("\"{}\" is not a number", at.text));
  if (error != std::errc() || number < kind.lowest || number > kind.highest)
    refuse_number(kind, at, fmt::format("{} is out of range", at.text));
  return static_cast<uint32_t>(number);
}

number_range read_range(const number_kind& kind, const word_piece& at) {
  size_t dash = at.text.find('-');
  if (dash == std::string_view::npos) {
    uint32_t number = read_number(kind, at);
    return {number, number};
  }
  number_range range{read_number(kind, at.part(0, dash)), read_number(kind, at.part(dash + 1))};
  if (range.first > range.last) refuse_piece(kind.what, at, fmt::format("the range {} runs backwards", at.text));
  return range;
}

void for_each_item(const std::vector<std::string>& words, const std::function<void(const word_piece&)>& use) {
  for (const auto& word : words) {
    std::string_view rest = word;
    while (true) {
      size_t comma = rest.find(',');
      use({word, rest.substr(0, comma)});
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }
}

} // namespace inspect
