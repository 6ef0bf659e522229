// What this switch's manager makes of the messages: the fields that libchnsw only passes on, and the messages that are the
// manager's own. Records are in the machine's byte order, interface indexes in wire order where their record says so.
//
// Port map (FICON_OP_GET_PORTMAP), answered by a record of the same layout:
//   selector         0; no other is known (result FICON_RC_INVALID_ARG)
//   number_a         answer: port number, FICON_PMAP_NO_NUMBER when there is none
//   number_b         answer: port address, FICON_PMAP_NO_NUMBER when there is none
//   result           0; FICON_RC_NO_IF, no card has the port, or it lies behind the port map; otherwise the status of the
//                    library for the interface. There are no numbers unless it is 0
//   code, texts      for the manager's log
//
// Enabled VSANs (FICON_OP_GET_ENABLED_VSANS): the list is a vsan_block. A VSAN is enabled when an entry of the port map is
// bound to it.
//
// State of an interface in a VSAN (FICON_OP_QUERY_IFVSAN_STATE), answered by a record of the same layout:
//   arg_a            VSAN, 0 to 4095
//   arg_b            comes back as it was
//   state            answer: kIfVsanMember and kIfVsanBound, or neither
//   result           0; FICON_RC_INVALID_ARG, no such VSAN number; FICON_RC_NO_IF, the interface has no place in the port
//                    map
//
// RNID (FICON_OP_GET_RNID), answered by a record of the same layout with the descriptor and its code page; rnid_port,
// rnid_word8, rnid_format and rnid_word24 come back as they were:
//   result           0; FICON_RC_NO_IF, no such interface; FICON_RC_PLATFORM, no device is known behind it;
//                    FICON_RC_CONVERT, its texts cannot be converted here. There is no descriptor unless it is 0
//
// VSAN install (FICON_OP_VSAN_INSTALL), all or nothing, answered by a manager_result:
//   install_byte0    kInstall binds the entry of each interface to each VSAN, kUninstall takes the VSANs out. A port in a
//                    port-channel has its own entry
//   result           0; FICON_RC_INVALID_ARG, the message is not well formed, or a VSAN is 0; FICON_RC_NO_IF, an interface
//                    has no place in the port map; FICON_RC_PLATFORM, an entry has no slot left (FICON_PMAP_VSAN_SLOTS), or
//                    the switch could not be written
//   A VSAN that becomes enabled, or is enabled no more, is announced. A message that changes nothing leaves the change
//   counter alone.
//
// Swap (kOpSwap, a swap_order): the manager asks the orderer in three steps, kOpSwapCheckLock, kOpSwapDoSwap and
// kOpSwapUnlock, each a ficon_if_swap_req that is answered by a ficon_if_swap_resp; then it swaps the port numbers, port
// addresses and bound VSANs of the two interfaces in the port map, and answers the order with a swap_result.
//   swap_word0       the swap's number; swap_word4 of the response brings it back
//   vsans            the VSANs that either interface is bound to
//   swap_status      0, or why not, as the client likes
//   Refused at check-lock or at do-swap: an unlock follows. Refused at unlock, not answered at do-swap (the client may do it
//   yet), or map not written: a do-swap the other way round and an unlock follow. The map stays as it was in all of them, and
//   what the client says to the undoing is logged and nothing else; the order is answered when that is over. A client that does
//   not answer within kSwapPatienceMs, or is gone, refuses. Nobody else can swap either interface meanwhile.
//   In the map each of the two has taken over the other's entry, but for the VSAN that its port is in; an interface that a
//   number was bound to has the other number bound to it. Each port address keeps its port number.
//
// Anything else is answered by a manager_result of FICON_RC_INVALID_ARG, and so is what has not the length of its record. A
// reply to nothing is logged.
#ifndef VSWITCH_MANAGER_PROTOCOL_H
#define VSWITCH_MANAGER_PROTOCOL_H

#include <libchnsw.h>

#include <cstddef>
#include <cstdint>

namespace vswitch {

// Where listeners get notices: every client that has reached this service point gets all of them.
inline constexpr uint32_t kNoticeServicePoint = 102;
inline constexpr msgq_addr kManagerAddress = {FICON_MGR_NODE, FICON_MGR_SERVICE_POINT};
inline constexpr msgq_addr kNoticeAddress = {FICON_MGR_NODE, kNoticeServicePoint};

// Opcodes of this manager's own messages.
enum manager_opcode : uint32_t {
  // to those who listen; a TLV array with one value. Interfaces are as clients have them, but in wire order in a
  // ficon_rnid_rec
  kOpVsanStateChange = 0x56530001,  // ficon_vsan_state_change: VSAN; 1 enabled, 0 not
  kOpPortUpDown = 0x56530002,       // ficon_updown_notice: interface; 1 up, 0 down; reason
  kOpPortEnable = 0x56530003,       // ficon_enable_notice: interface; 1 enabled, 0 disabled
  kOpRnidNotification = 0x56530004, // ficon_rnid_rec
  // to the client of a swap; a ficon_if_swap_req
  kOpSwapCheckLock = 0x56530011,
  kOpSwapDoSwap = 0x56530012,
  kOpSwapUnlock = 0x56530013,
  // to the manager
  kOpSwap = 0x56530021,  // swap_order
  kOpNotify = 0x56530022 // notify_order: a notice to pass on, answered by a notify_result
};

inline constexpr uint8_t kUninstall = 0;
inline constexpr uint8_t kInstall = 1;

inline constexpr uint32_t kIfVsanMember = 1; // the port is in the VSAN now
inline constexpr uint32_t kIfVsanBound = 2;  // its entry is bound to the VSAN

inline constexpr int kSwapPatienceMs = 5000;

struct manager_result {
  uint32_t result;
};

struct swap_order {
  uint32_t if_index_a; // in wire order
  uint32_t if_index_b; // in wire order
};

enum swap_step : uint32_t { kNoStep = 0, kStepCheckLock = 1, kStepDoSwap = 2, kStepUnlock = 3, kStepMap = 4 };

// result: 0; FICON_RC_INVALID_ARG, the same interface twice; FICON_RC_NO_IF, one has no numbers in the port map;
// FICON_RC_LAG_MEMBER, one is in a port-channel; FICON_RC_BASE, another swap holds one of them; FICON_RC_PLATFORM, refused
// at refused_step, or the map could not be written.
struct swap_result {
  uint32_t result;
  uint32_t refused_step; // a swap_step
  uint32_t swap_status;  // the client's, at that step; 0 when it did not answer
};

// For kOpVsanStateChange a VSAN, 1 to 4095, and its state; otherwise an interface and, but for kOpRnidNotification, its
// state and reason.
struct notify_order {
  uint32_t opcode; // of the notice
  uint32_t vsan;
  uint32_t if_index; // in wire order
  uint8_t state;
  uint8_t reason;
  uint8_t zero[2];
};

// result: 0; FICON_RC_INVALID_ARG, no such notice or VSAN; FICON_RC_NO_IF, no such interface; for kOpRnidNotification also
// FICON_RC_PLATFORM and FICON_RC_CONVERT, as for RNID.
struct notify_result {
  uint32_t result;
  uint32_t listeners; // that it was sent to
};

static_assert(sizeof(swap_order) == 8 && sizeof(swap_result) == 12);
static_assert(sizeof(notify_order) == 16 && offsetof(notify_order, state) == 12 && sizeof(notify_result) == 8);

} // namespace vswitch

#endif
