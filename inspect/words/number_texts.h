// Numbers, addresses and interfaces as sentences name them.
#ifndef INSPECT_NUMBER_TEXTS_H
#define INSPECT_NUMBER_TEXTS_H

#include <cstdint>
#include <string>

namespace inspect {

std::string pn_text(uint32_t pn);              // "12", "none"
std::string pa_text(uint32_t pa);              // "C0", "none"
std::string interface_text(uint32_t if_index); // "fc3/5 0x01020400", "no interface"

} // namespace inspect

#endif
