// What one virtual switch is, as plain data: what a chassis file says, and what a switch's folder holds.
#ifndef VSWITCH_CHASSIS_DESCRIPTION_H
#define VSWITCH_CHASSIS_DESCRIPTION_H

#include <libchnsw.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "vswitch/mainframe_time.h"
#include "vswitch/node_descriptor.h"

namespace vswitch {

// Port numbers and port addresses have eight bits on the mainframe's side.
inline constexpr unsigned kNumbers = 256;
inline constexpr unsigned kHighestVsan = 4095;

// A line card with Fibre Channel ports 1 to ports.
struct line_card {
  unsigned slot = 0;  // 1 to 255
  unsigned ports = 0; // 1 to 254
  std::string name;   // what the card is called; may be empty

  bool operator==(const line_card&) const = default;
};

// A logical interface: a port-channel with its member ports, or an FCIP link.
struct logical_interface {
  uint32_t if_index = 0;
  std::vector<uint32_t> members; // physical ports, port-channels only; ascending

  bool operator==(const logical_interface&) const = default;
};

// The elements of the port map, as the element database hands them out.
struct port_map {
  std::array<ficon_pmap_port_entry, FICON_PMAP_PORT_ENTRIES> port_to_pn;
  std::array<uint16_t, FICON_PMAP_PORT_ENTRIES> port_to_vsan{};
  std::array<uint16_t, kNumbers> pa_to_pn;
  std::array<uint32_t, kNumbers> pn_to_if{};
  std::array<uint8_t, 32> vsan_array{};

  port_map(); // no numbers, no VSANs, no interfaces
};
bool operator==(const port_map& a, const port_map& b);

// The number of each port address as the ports have it: that of the lowest index that carries the address.
std::array<uint16_t, kNumbers> addresses_of_ports(const port_map& map);

struct chassis_description {
  std::string name;                          // for people; may be empty
  std::array<uint8_t, 8> platform_record{};  // byte 2 is the number of slots, 1 to 255
  int32_t type = 0;                          // chassis type
  std::vector<unsigned> supervisors;         // slots from 1, ascending
  std::vector<line_card> line_cards;         // by ascending slot
  std::vector<logical_interface> interfaces; // by ascending interface index
  std::map<uint16_t, std::string> vsans;     // number -> name; may be empty
  std::map<uint16_t, time_reference> times;  // VSAN -> reference of its time stamps
  std::map<uint32_t, node_descriptor> nodes; // interface index -> the device behind it
  port_map map;
  uint32_t change_counter = 1;

  unsigned slots() const { return platform_record[2]; }

  bool operator==(const chassis_description&) const = default;
};

// Physical ports and the port map. Slots and ports count from 1 here, as people count them; line cards count from 0 in the
// order of the slots that hold no supervisor.

// The line-card number of a slot, none for a supervisor's slot or one that the chassis does not have.
std::optional<unsigned> line_card_number(const chassis_description& chassis, unsigned slot);

// The port map index of a port, none when the port map has no room for it (index above 1023).
std::optional<unsigned> port_map_index(const chassis_description& chassis, unsigned slot, unsigned port);

// The card in a slot, or nullptr.
const line_card* card_in_slot(const chassis_description& chassis, unsigned slot);

// Whether the port is there.
bool has_port(const chassis_description& chassis, unsigned slot, unsigned port);

// Whether it is there: a port that a card has, or a logical interface that was made.
bool has_interface(const chassis_description& chassis, uint32_t if_index);

// The number of the port-channel that a port is a member of, 0 for none.
uint32_t channel_of(const chassis_description& chassis, uint32_t if_index) noexcept;

// The port whose port map index this is, as an interface index; none when no card has it.
std::optional<uint32_t> port_at_index(const chassis_description& chassis, unsigned index);

} // namespace vswitch

#endif
