// TLV arrays of the virtual switch, as their bytes lie:
//
//   offset  0       4      8       10     12     14       16                    16 + length, padded to 4
//           | magic | size | count | zero | type | length | value ...           | type | length | value ...
//
// size counts all bytes in use, the header included. Integers are in the machine's byte order.
#ifndef VSWITCH_TLV_ARRAY_H
#define VSWITCH_TLV_ARRAY_H

#include <cstdint>

namespace vswitch {

inline constexpr uint32_t kTlvMagic = 0x544C5641; // "TLVA"
inline constexpr uint32_t kTlvHeaderBytes = 12;
inline constexpr uint32_t kTlvPrefixBytes = 4; // type and length

// Whether a payload may be handed to the services, which are not told its length: false for an array that says to be longer
// than the payload is. What is no array at all may.
bool tlv_services_stay_inside(const void* payload, uint32_t length) noexcept;

} // namespace vswitch

#endif
