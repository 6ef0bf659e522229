// Numbers in the bytes of a message, in either byte order.
#ifndef INSPECT_BYTE_ORDER_H
#define INSPECT_BYTE_ORDER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace inspect {

enum class byte_order { big, little };

std::string_view order_text(byte_order order);
byte_order other_order(byte_order order);

// A number of 1 to 4 bytes.
uint32_t number_at(std::string_view bytes, size_t offset, size_t length, byte_order order);
void set_number(std::string& bytes, size_t offset, size_t length, byte_order order, uint32_t number);

} // namespace inspect

#endif
