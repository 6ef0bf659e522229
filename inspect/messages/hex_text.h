// Bytes as people write them down: hexadecimal digits, alone or as a dump.
#ifndef INSPECT_HEX_TEXT_H
#define INSPECT_HEX_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace inspect {

// The bytes behind "C1F1", "0xC1 0xF1", "c1:f1", or the lines of a dump: with offsets like "00000010:" or, where a column
// between bars shows the characters, without the colon; a line "*" stands for repetitions. Throws a question error that says
// where it went wrong.
std::string parse_hex(std::string_view text);

// "C1F1", with a separator after every so many bytes when group is not 0.
std::string hex_text(std::string_view bytes, size_t group = 0);

} // namespace inspect

#endif
