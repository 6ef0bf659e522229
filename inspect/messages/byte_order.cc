#include "inspect/messages/byte_order.h"

namespace inspect {

std::string_view order_text(byte_order order) {
  return order == byte_order::big ? "big" : "little";
}

byte_order other_order(byte_order order) {
  return order == byte_order::big ? byte_order::little : byte_order::big;
}

uint32_t number_at(std::string_view bytes, size_t offset, size_t length, byte_order order) {
  uint32_t number = 0;
  for (size_t n = 0; n < length; ++n) {
    const size_t place = order == byte_order::big ? n : length - 1 - n;
    number = number << 8 | static_cast<unsigned char>(bytes[offset + place]);
  }
  return number;
}

void set_number(std::string& bytes, size_t offset, size_t length, byte_order order, uint32_t number) {
  for (size_t n = 0; n < length; ++n) {
    const size_t place = order == byte_order::little ? n : length - 1 - n;
    bytes[offset + place] = static_cast<char>(number >> 8 * n);
  }
}

} // namespace inspect
