// The default port numbering of a chassis as the library lays it out, and whether the port map still is the default.
#ifndef INSPECT_DEFAULT_NUMBERING_H
#define INSPECT_DEFAULT_NUMBERING_H

#include <cstdint>
#include <optional>
#include <vector>

#include "inspect/session/library_session.h"
#include "vswitch/interface_index.h"

namespace inspect {

// One index by default, and as the map has it. The layout reaches beyond the port map, where the map has no numbers.
struct default_entry {
  uint32_t index = 0;
  std::optional<vswitch::fc_port> port;
  uint16_t default_pn = FICON_PMAP_NO_NUMBER;
  uint16_t default_pa = FICON_PMAP_NO_NUMBER;
  uint16_t map_pn = FICON_PMAP_NO_NUMBER;
  uint16_t map_pa = FICON_PMAP_NO_NUMBER;
};

struct default_numbering {
  bool is_default = false;             // the library's word on the map
  bool can_be_default = false;         // whether the library would call its own layout the default
  bool is_known = false;               // whether the library knows a default numbering for this chassis at all
  std::vector<default_entry> expected; // every index that has a default number

  // Where the map first differs in a place that the library minds; where it accepts no layout at all, in any place. None for
  // a map that is the default, and for a chassis without one.
  std::optional<default_entry> first_difference;
};

// Throws a platform error when the library cannot tell.
default_numbering compare_with_default(const library_session& session);

// The default number of one port of a slot; without slot and port one of those that no physical port has.
struct default_number {
  std::optional<uint32_t> slot;
  std::optional<uint32_t> port;
  std::optional<uint32_t> pn;
  uint32_t status; // the library's answer for the slot
};

// Where there are no default numbers, one without pn tells the library's status. slot counts from 1.
std::vector<default_number> default_numbers_of_slot(uint32_t slot);
std::vector<default_number> default_numbers_without_port();

} // namespace inspect

#endif
