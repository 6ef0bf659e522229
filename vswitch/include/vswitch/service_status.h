// Statuses of this platform's own, beside those that the service headers name.
#ifndef VSWITCH_SERVICE_STATUS_H
#define VSWITCH_SERVICE_STATUS_H

namespace vswitch {

// Element database.
inline constexpr int kElementNotThere = 0x40450001;
inline constexpr int kElementBadRequest = 0x40450002; // errno is EINVAL
inline constexpr int kElementNoSwitch = 0x40450003;   // no switch to ask; errno tells why

// Inventory.
inline constexpr int kInventoryBadRequest = 0x40440001; // errno is EINVAL
inline constexpr int kInventoryNoSwitch = 0x40440002;   // no switch to ask; errno tells why

// Port indexes.
inline constexpr int kPortIndexBadRequest = 0x40460001;
inline constexpr int kPortIndexNoSwitch = 0x40460003;

// Port-channel membership.
inline constexpr int kLagmapBadRequest = 0x40470001;
inline constexpr int kLagmapUnknownPort = 0x40470002; // not a physical port, or no card has it
inline constexpr int kLagmapNoSwitch = 0x40470003;

// Memory accounting.
inline constexpr int kMemacctBadRequest = 0x40490001;
inline constexpr int kMemacctRegisteredTwice = 0x40490002;
inline constexpr int kMemacctNoMemory = 0x40490003;

// Event history.
inline constexpr int kHistoryFiltered = 0x404A0001;
inline constexpr int kHistoryBadRequest = 0x404A0002;
inline constexpr int kHistoryNotWritten = 0x404A0003; // errno tells why

// TLV arrays.
inline constexpr int kTlvBadRequest = 0x404B0001;
inline constexpr int kTlvNotAnArray = 0x404B0002;
inline constexpr int kTlvFull = 0x404B0003;
inline constexpr int kTlvNoFurther = 0x404B0004; // behind the last value
inline constexpr int kTlvDamaged = 0x404B0005;   // the next value would reach beyond the array

} // namespace vswitch

#endif
