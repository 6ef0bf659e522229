// Words of a list taken apart, so that a refusal tells which word is wrong, and where in it.
#ifndef INSPECT_WORD_PIECE_H
#define INSPECT_WORD_PIECE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/words/number_lists.h"

namespace inspect {

inline constexpr std::string_view kEverything = "all";

// A part of a word, which knows where in the word it begins.
struct word_piece {
  std::string_view word;
  std::string_view text;

  size_t position() const { return static_cast<size_t>(text.data() - word.data()) + 1; } // of its first character, from 1
  word_piece part(size_t from, size_t length = std::string_view::npos) const { return {word, text.substr(from, length)}; }
};

struct number_range {
  uint32_t first;
  uint32_t last;
};

// Throws the question error that names the word, the place in it and the reason.
[[noreturn]] void refuse_piece(std::string_view what, const word_piece& at, std::string_view why);

// Both throw a question error for what is no number of this kind, or no range of such numbers.
uint32_t read_number(const number_kind& kind, const word_piece& at);
number_range read_range(const number_kind& kind, const word_piece& at); // a single number is a range of one

// Hands over what stands between the commas of every word.
void for_each_item(const std::vector<std::string>& words, const std::function<void(const word_piece&)>& use);

} // namespace inspect

#endif
