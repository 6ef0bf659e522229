// Interface indexes of the virtual switch: their bits, and the names that people use.
//
//   31      24 23      16 15       8 7        0
//   | type 1  | slot     | port     | 0        |   fc3/5: slot and port counted from 0 in the bits, from 1 in the name
//   | type    | number, 24 bits                |   port-channel5, fcip12, other types (mgmt0 is type 2)
//
// No index is 0, since no type is 0. On the wire an index is big-endian, whatever the machine.
#ifndef VSWITCH_INTERFACE_INDEX_H
#define VSWITCH_INTERFACE_INDEX_H

#include <platform/if_index.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vswitch {

inline constexpr uint8_t kManagementPort = 2; // a type that FICON does not know

// Statuses of the interface-index services.
inline constexpr int kIfIndexBadRequest = 0x40480001;
inline constexpr int kIfIndexUnknown = 0x40480002;     // no such interface on this switch
inline constexpr int kIfIndexNotPhysical = 0x40480003; // a logical interface has neither slot nor port
inline constexpr int kIfIndexNoSuchSlot = 0x40480004;
inline constexpr int kIfIndexNoSwitch = 0x40480005; // no switch to ask; errno tells why

struct fc_port {
  unsigned slot = 0; // from 1
  unsigned port = 0; // from 1
};

uint32_t fc_port_index(unsigned slot, unsigned port); // both from 1
uint32_t logical_index(uint8_t type, uint32_t number);
uint8_t interface_type(uint32_t if_index);
std::optional<fc_port> fc_port_of(uint32_t if_index);
uint32_t logical_number(uint32_t if_index);

// "fc3/5", "port-channel5", "fcip12", "mgmt0"; an index of another type as "0x20000007".
std::string interface_name(uint32_t if_index);

// The index behind such a name (also "0x..." with eight digits); none when it is not one.
std::optional<uint32_t> parse_interface_name(std::string_view name);

} // namespace vswitch

#endif
