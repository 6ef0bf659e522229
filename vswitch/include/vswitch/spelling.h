// How near words are to each other, for who names what was probably meant.
#ifndef VSWITCH_SPELLING_H
#define VSWITCH_SPELLING_H

#include <cstddef>
#include <string_view>

namespace vswitch {

// Letters to change, add or take away to make one word of the other.
size_t edit_distance(std::string_view a, std::string_view b);

} // namespace vswitch

#endif
