// A message's record in its TLV array.
#ifndef INSPECT_TLV_VALUE_H
#define INSPECT_TLV_VALUE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "inspect/messages/byte_order.h"

namespace inspect {

// The order of an array of this virtual switch; none when the payload is no array.
std::optional<byte_order> order_of_array(std::string_view payload);

// The first value of a type. Throws a question error when there is none, or when the array is damaged.
std::string value_of_array(std::string_view payload, uint16_t type, byte_order order);

// An array with one value.
std::string array_of_value(std::string_view value, uint16_t type, byte_order order);

} // namespace inspect

#endif
