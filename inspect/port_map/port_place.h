// Where a physical port stands in the port map, by the library's slot numbering.
#ifndef INSPECT_PORT_PLACE_H
#define INSPECT_PORT_PLACE_H

#include <cstdint>
#include <optional>

#include "vswitch/interface_index.h"

namespace inspect {

// The index of a port; none when the slot has no line card, or the line card no room for the port. The library reads its
// tables there without a test, so from FICON_PMAP_PORT_ENTRIES on it must not be asked.
std::optional<uint32_t> port_map_place(unsigned slot, unsigned port);
std::optional<uint32_t> port_map_place(uint32_t if_index); // also none for what is no physical port

bool is_beyond_port_map(uint32_t if_index); // a physical port about which the library must not be asked

// The slot and port of an index; none for one without a physical port, and when its line card has no slot.
std::optional<vswitch::fc_port> port_at_place(uint32_t index);

} // namespace inspect

#endif
