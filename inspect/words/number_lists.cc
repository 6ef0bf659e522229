// Lists and ranges of numbers.
#include "inspect/words/number_lists.h"

#include <numeric>

#include "inspect/words/word_piece.h"

namespace inspect {

std::vector<uint32_t> parse_numbers(const number_kind& kind, const std::vector<std::string>& words,
                                    const std::vector<uint32_t>& all) {
  std::vector<uint32_t> numbers;
  for_each_item(words, [&](const word_piece& item) {
    if (item.text == kEverything) {
      numbers.insert(numbers.end(), all.begin(), all.end());
      return;
    }
    number_range range = read_range(kind, item);
    for (uint32_t number = range.first; number <= range.last; ++number) numbers.push_back(number);
  });
  return numbers;
}

uint32_t parse_number(const number_kind& kind, std::string_view word) {
  return read_number(kind, {word, word});
}

std::vector<uint32_t> numbers_below(uint32_t end) {
  std::vector<uint32_t> numbers(end);
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

} // namespace inspect
