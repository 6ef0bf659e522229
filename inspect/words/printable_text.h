// Text from files and devices, made fit to be shown.
#ifndef INSPECT_PRINTABLE_TEXT_H
#define INSPECT_PRINTABLE_TEXT_H

#include <string>
#include <string_view>

namespace inspect {

// Text as it may stand in a terminal: control characters are shown, not obeyed.
std::string printable(std::string_view text);

std::string utf8_of_latin1(std::string_view text); // the switch's own text, ISO 8859-1, as results hold it

} // namespace inspect

#endif
