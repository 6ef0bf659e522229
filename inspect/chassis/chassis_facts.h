// The chassis: what it is, what is in it, and what the library makes of it.
#ifndef INSPECT_CHASSIS_FACTS_H
#define INSPECT_CHASSIS_FACTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/session/library_session.h"

namespace inspect {

struct card_facts {
  unsigned slot;
  std::optional<uint32_t> line_card; // by the library's slot numbering, from 0
  unsigned ports;
  std::string name;
};

struct vsan_facts {
  uint32_t vsan;
  std::string name;
  unsigned ports; // that are in it now
};

// What a chassis description says by itself is not repeated here.
struct chassis_facts {
  int32_t highest_port_number = 0;
  uint32_t max_ficon_ports = 0;
  uint32_t change_counter = 0;
  std::vector<card_facts> cards;
  std::vector<vsan_facts> vsans; // those that the switch names
};

chassis_facts facts_of(const library_session& session);

} // namespace inspect

#endif
