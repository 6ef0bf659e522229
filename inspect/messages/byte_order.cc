#include "inspect/messages/byte_order.h"

#include "vswitch/packed_fields.h"

namespace inspect {

namespace {

std::endian as_endian(byte_order order) {
  return order == byte_order::big ? std::endian::big : std::endian::little;
}

} // namespace

std::string_view order_text(byte_order order) {
  return order == byte_order::big ? "big" : "little";
}

byte_order other_order(byte_order order) {
  return order == byte_order::big ? byte_order::little : byte_order::big;
}

uint32_t number_at(std::string_view bytes, size_t offset, size_t length, byte_order order) {
  return vswitch::load_number(bytes.data() + offset, length, as_endian(order));
}

void set_number(std::string& bytes, size_t offset, size_t length, byte_order order, uint32_t number) {
  vswitch::store_number(bytes.data() + offset, length, as_endian(order), number);
}

} // namespace inspect
