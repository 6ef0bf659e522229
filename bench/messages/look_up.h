// The plain form of a conversion.
#ifndef BENCH_MESSAGES_LOOK_UP_H
#define BENCH_MESSAGES_LOOK_UP_H

#include <cstdint>

namespace bench {

using byte_table = unsigned char[256];

// Replaces each byte of a text by its place in the table.
void look_up(const byte_table& table, char* text, int32_t length);

} // namespace bench

#endif
