#include "inspect/words/nearest_word.h"

#include <fmt/format.h>

#include <algorithm>

namespace inspect {

namespace {

// How many letters apart two words are.
size_t distance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row.back();
}

} // namespace

std::string nearest_word(std::string_view word, const std::vector<std::string>& candidates) {
  std::string nearest;
  size_t least = 3;
  for (const auto& candidate : candidates) {
    const size_t apart = distance(word, candidate);
    if (apart >= least || apart >= candidate.size()) continue;
    least = apart;
    nearest = candidate;
  }
  return nearest;
}

std::string suggestion(std::string_view word, const std::vector<std::string>& candidates, const std::string& otherwise) {
  const std::string nearest = nearest_word(word, candidates);
  return nearest.empty() ? otherwise : fmt::format("did you mean \"{}\"?", nearest);
}

} // namespace inspect
