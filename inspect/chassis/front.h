// The chassis front as data: slots, cards and ports, and the VSANs that the ports are in.
#ifndef INSPECT_FRONT_H
#define INSPECT_FRONT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/session/library_session.h"

namespace inspect {

struct front_port {
  unsigned port = 0; // from 1
  uint32_t if_index = 0;
  std::optional<uint32_t> index; // of the port map, where it has a place
  std::optional<uint32_t> pn;
  std::optional<uint32_t> pa;
  uint32_t vsan = 0;     // that it is in now; 0: none
  uint32_t channel = 0;  // port-channel that it is a member of; 0: none
  size_t vsan_place = 0; // of its VSAN in the front's list
};

enum class slot_content { card, supervisor, empty };

const char* content_name(slot_content content); // "card"

struct front_slot {
  unsigned slot = 0;
  slot_content holds = slot_content::empty;
  std::string name; // of the card
  std::vector<front_port> ports;
};

struct front_vsan {
  uint32_t vsan;
  std::string name;
};

struct chassis_front {
  std::string name;
  int32_t type = 0;
  std::vector<front_slot> slots;
  std::vector<front_vsan> vsans; // every VSAN that a port is in, ascending
};

chassis_front front_of(const library_session& session);

} // namespace inspect

#endif
