// How many bytes there are, or are missing, in words.
#ifndef INSPECT_BYTE_COUNTS_H
#define INSPECT_BYTE_COUNTS_H

#include <cstddef>
#include <string>

namespace inspect {

std::string counted_bytes(size_t count); // "1 byte", "12 bytes"
std::string missing_bytes(size_t count); // "1 byte is missing", "12 bytes are missing"

} // namespace inspect

#endif
