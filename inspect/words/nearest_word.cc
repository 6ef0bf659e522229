#include "inspect/words/nearest_word.h"

#include <fmt/format.h>

#include "vswitch/spelling.h"

namespace inspect {

std::string nearest_word(std::string_view word, const std::vector<std::string>& candidates) {
  std::string nearest;
  size_t least = 3;
  for (const auto& candidate : candidates) {
    const size_t apart = vswitch::edit_distance(word, candidate);
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
