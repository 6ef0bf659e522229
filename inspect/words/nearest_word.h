// What was probably meant by a word that nothing is called by.
#ifndef INSPECT_NEAREST_WORD_H
#define INSPECT_NEAREST_WORD_H

#include <string>
#include <string_view>
#include <vector>

namespace inspect {

// The candidate that is at most two letters from the word; empty when there is none.
std::string nearest_word(std::string_view word, const std::vector<std::string>& candidates);

// "did you mean \"map\"?", or what else to say.
std::string suggestion(std::string_view word, const std::vector<std::string>& candidates, const std::string& otherwise);

} // namespace inspect

#endif
