// Tables that an enum indexes.
#ifndef INSPECT_ENUM_ROWS_H
#define INSPECT_ENUM_ROWS_H

#include <cstddef>

namespace inspect {

// Whether every value of an enum, from 0 to the last, is the place of its row: what an assertion holds beside such a table.
template <typename row, size_t count, typename value>
constexpr bool has_row_for_each(const row (&rows)[count], value row::*key, value last) {
  for (size_t place = 0; place < count; ++place)
    if (rows[place].*key != static_cast<value>(place)) return false;
  return count == static_cast<size_t>(last) + 1;
}

} // namespace inspect

#endif
