// Bytes as people write them down: hexadecimal digits, alone or as a dump.
#ifndef CHNSW_HEX_TEXT_H
#define CHNSW_HEX_TEXT_H

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace inspect {

// The bytes behind "C1F1", "0xC1 0xF1", "c1:f1", or the lines of a dump: with offsets like "00000010:" or, where a column
// between bars shows the characters, without the colon; a line "*" stands for repetitions. Throws a question error that says
// where it went wrong.
std::string parse_hex(std::string_view text);

// The words one after the other; "-" alone stands for standard input.
std::string parse_hex(const std::vector<std::string>& words, std::FILE* input);

// "C1F1", with a separator after every so many bytes when group is not 0.
std::string hex_text(std::string_view bytes, size_t group = 0);

// All of a file. Throws error when it cannot be read.
std::string read_all(std::FILE* input);

} // namespace inspect

#endif
