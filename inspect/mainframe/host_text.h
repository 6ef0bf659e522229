// Text of mainframe hosts and of the switch, converted by the library.
#ifndef INSPECT_HOST_TEXT_H
#define INSPECT_HOST_TEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace inspect {

// The code pages that the library has a name for, ascending.
std::vector<uint32_t> known_codepages();
bool is_known_codepage(uint32_t codepage);

// UTF-8 as the switch's text, ISO 8859-1. Throws a question error that names the first character which it does not have; what says
// what the text is for.
std::string latin1_of_utf8(std::string_view text, std::string_view what);

// A text of any length, by the library's converter. Throws error when that fails.
std::string to_host(uint32_t codepage, std::string text);
std::string from_host(uint32_t codepage, std::string bytes);

} // namespace inspect

#endif
