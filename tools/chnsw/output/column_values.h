// What every form of a document asks of columns and cells.
#ifndef CHNSW_COLUMN_VALUES_H
#define CHNSW_COLUMN_VALUES_H

#include <cstdint>
#include <optional>
#include <string>

#include "output/result_document.h"

namespace chnsw_tool {

bool in_data(const column& column);
bool in_table(const column& column);

std::string hex_text(int64_t number, unsigned digits); // "0x0000002F"

// A number's hexadecimal text; none for a value that is no number.
std::optional<std::string> hex_of(const cell& value, unsigned digits);

} // namespace chnsw_tool

#endif
