// What a shell may complete a command line with, by what the commands say of themselves.
#ifndef CHNSW_COMPLETION_H
#define CHNSW_COMPLETION_H

#include <span>
#include <string>
#include <vector>

namespace chnsw_tool {

struct completion {
  bool is_path = false;           // any file or folder whose name begins like typed
  std::string before;             // stands before every candidate in the word: "--format=" where that is one word
  std::string typed;              // what the candidates begin with
  std::vector<std::string> words; // the candidates; one that ends with "=" wants its value behind it without a blank
};

// The words after the tool's own name, the last of which is being typed and may be empty; "=" may be a word of its own, as
// bash divides them.
completion complete(std::span<const std::string> words);

// As the shell's part of it reads that: "path" or "words", what stands before, what was typed, and the candidates, a line each.
std::string completion_text(const completion& found);

} // namespace chnsw_tool

#endif
