// What a device behind an interface says it is.
#ifndef INSPECT_NODE_IDENTITY_H
#define INSPECT_NODE_IDENTITY_H

#include <libchnsw.h>

#include <cstdint>
#include <string>

#include "vswitch/node_descriptor.h"

namespace inspect {

struct node_identity {
  uint32_t codepage = 0;
  ficon_node_descriptor sent{};      // in the host's code page
  ficon_node_descriptor converted{}; // its texts in the switch's; as sent when conversion is not 0
  uint32_t conversion = 0;           // the library's status

  bool is_readable() const { return conversion == 0; }
};

// Converts a descriptor as the host sent it.
node_identity identity_of(uint32_t codepage, const ficon_node_descriptor& sent);

// One that the library has converted already; what the host sent is not known any more.
node_identity identity_of_converted(uint32_t codepage, const ficon_node_descriptor& converted);

// Its fields one by one. The texts, in UTF-8 and without the blanks behind each, are empty when they cannot be read.
vswitch::node_descriptor node_fields(const node_identity& node);

// "TYPE-MODEL-MANUFACTURER-PLANT-SEQUENCE", without the blanks behind each; empty when it cannot be read.
std::string node_text(const node_identity& node);

// "37 us-canada"
std::string codepage_text(uint32_t codepage);

// The 32 bytes in hexadecimal, with a separator between the fields.
std::string descriptor_hex(const ficon_node_descriptor& descriptor, const char* separator);

} // namespace inspect

#endif
