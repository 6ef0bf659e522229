// A file of its own, so that no compiler puts the look-ups into the loop around them.
#include "look_up.h"

// At the beginning of a cache line: elsewhere the loop takes up to half as long again.
[[gnu::aligned(64)]] void bench::look_up(const byte_table& table, char* text, int32_t length) {
  for (int32_t n = 0; n < length; ++n) text[n] = static_cast<char>(table[static_cast<unsigned char>(text[n])]);
}
