// The port map as a list: what each entry holds, and the port behind it.
#ifndef INSPECT_MAP_ENTRIES_H
#define INSPECT_MAP_ENTRIES_H

#include <cstdint>
#include <optional>
#include <vector>

#include "inspect/session/library_session.h"
#include "vswitch/interface_index.h"

namespace inspect {

struct map_entry {
  uint32_t index = 0;
  uint16_t pn = FICON_PMAP_NO_NUMBER;
  uint16_t pa = FICON_PMAP_NO_NUMBER;
  std::vector<uint16_t> vsans; // that it is bound to
  uint16_t port_vsan = 0;      // that its port is in now; 0: none
  std::optional<vswitch::fc_port> port;
  std::optional<uint32_t> if_index; // no value or 0: none
  std::optional<bool> there;        // whether a port is plugged; no value for an index without a physical port
  uint32_t channel = 0;             // number of the port-channel that the interface is a member of; 0: none
};

// index below FICON_PMAP_PORT_ENTRIES. Throws a platform error when the library was refused memory.
map_entry map_entry_at(const library_session& session, uint32_t index);

// The indexes that hold a number or a VSAN, or that a port of the chassis has.
std::vector<uint32_t> indexes_in_use(const library_session& session);

} // namespace inspect

#endif
