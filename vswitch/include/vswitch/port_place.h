// Where a physical port stands in the port map's table of entries, and two limits that are not the same: entries from
// kEndOfPhysicalEntries on are not a physical port's; from kEndOfEntries on there is none. A port that lies between the two has
// no entry, but the library still finds something to read there.
#ifndef VSWITCH_PORT_PLACE_H
#define VSWITCH_PORT_PLACE_H

#include <libchnsw.h>

#include <cstdint>
#include <optional>

#include "vswitch/interface_index.h"

namespace vswitch {

inline constexpr uint32_t kEndOfPhysicalEntries = FICON_PMAP_PHYS_ENTRIES; // 1,024
inline constexpr uint32_t kEndOfEntries = FICON_PMAP_PORT_ENTRIES;         // 1,280

// The place of a port on a line card that is counted from 0; none for a port behind the last one that a card has room for, whose
// place would be on the next card.
std::optional<uint32_t> port_place(uint32_t line_card, unsigned port);

// The same for a slot, whose line card a numbering tells; none also when the slot has no line card. The library's numbering is
// ficonm_platform_slot_to_lc_b0.
using line_card_numbering = int32_t (*)(uint8_t slot_from_0, uint8_t* line_card);
std::optional<uint32_t> port_place(const fc_port& port, line_card_numbering numbering);

// Whether a port at this place has its own entry.
constexpr bool has_entry(uint32_t place) {
  return place < kEndOfPhysicalEntries;
}

// Whether the library may be asked about a port at this place: it reads the entry there without a look at the table's end.
constexpr bool may_be_asked_for(uint32_t place) {
  return place < kEndOfEntries;
}

} // namespace vswitch

#endif
