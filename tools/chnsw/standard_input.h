// What commands read from standard input.
#ifndef CHNSW_STANDARD_INPUT_H
#define CHNSW_STANDARD_INPUT_H

#include <optional>
#include <string>
#include <vector>

namespace chnsw_tool {

inline constexpr char kStandardInput[] = "-"; // names it among a command's words

// Each throws error when it cannot be read.

std::string read_all_input();

// The next line without its end; none at the end.
std::optional<std::string> read_input_line();

// The bytes behind words of hexadecimal digits, or behind what standard input holds.
std::string bytes_of_words(const std::vector<std::string>& words);

} // namespace chnsw_tool

#endif
