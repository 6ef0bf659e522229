// What is known of a chassis file while it is read: the tables' readers, one a kind of table, share it. Tables are read in the
// order of chassis_reader.cc, so that each may ask what those before it said.
#ifndef VSWITCH_CHASSIS_READING_H
#define VSWITCH_CHASSIS_READING_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "chassis_file/table_reader.h"
#include "vswitch/chassis_file.h"

namespace vswitch {

inline constexpr number_range kSlots{1, 255};
inline constexpr number_range kVsans{1, kHighestVsan};
inline constexpr number_range kTableNumbers{0, 0xFFFF};         // what an entry of a table can hold
inline constexpr number_range kAddressNumbers{0, kNumbers - 1}; // what a table has entries for

struct chassis_reading {
  chassis_reading(std::string file, std::vector<card_place>* places) : problems(std::move(file)), card_places(places) {}

  problem_list problems;
  chassis_description chassis;
  std::vector<card_place>* card_places; // may be null

  bool slots_known = false;          // the number of slots is right
  bool supervisors_known = false;    // and the slots that hold supervisors
  std::set<unsigned> doubtful_cards; // in their slots, but with a number of ports that is wrong

  // Where what is described once was described.
  std::map<unsigned, place> cards;
  std::map<uint32_t, place> members;
  std::map<uint32_t, place> logical;
  std::array<std::optional<place>, FICON_PMAP_PORT_ENTRIES> indexes;
  std::array<std::optional<place>, kNumbers> bound;
  std::array<std::optional<place>, kNumbers> addresses;
  std::map<uint16_t, place> times;
  std::map<uint32_t, place> nodes;

  std::optional<instant> now; // once it was asked for
};

// "in line 7"
std::string in_line(const place& where);

// ---- One kind of table each. What is wrong is added to the problems. ----

void read_chassis(chassis_reading& reading, const toml::node* chassis); // nullptr: there is none
void read_line_card(chassis_reading& reading, table_reader& card);
void read_vsan(chassis_reading& reading, table_reader& vsan);
void read_port_channel(chassis_reading& reading, table_reader& channel);
void read_interface(chassis_reading& reading, table_reader& interface);
void read_port(chassis_reading& reading, table_reader& port);
void read_binding(chassis_reading& reading, table_reader& binding);
void read_address(chassis_reading& reading, table_reader& address);
void read_time_reference(chassis_reading& reading, table_reader& reference);
void read_node(chassis_reading& reading, table_reader& node);

// ---- Ports and interfaces by their names ----

inline constexpr std::string_view kPortsExpected = "a port such as \"fc1/5\" or a run of ports such as \"fc1/1-48\"";

// Ports that stand beside each other on one card.
struct port_run {
  unsigned slot = 0;
  unsigned first = 0;
  unsigned last = 0;

  unsigned count() const { return last - first + 1; }
};

// The ports that a value names. what names the value: "a member".
std::optional<port_run> ports_of(chassis_reading& reading, const toml::node& value, std::string_view what);

// The interface that a table's key "interface" names.
std::optional<uint32_t> read_interface_name(chassis_reading& reading, table_reader& table, std::string_view expected);

// Whether they are described. What is not known, because what describes it is wrong, counts as not there but is no further
// problem.
bool ports_are_there(chassis_reading& reading, const toml::node& where, const port_run& ports);
bool interface_is_there(chassis_reading& reading, const toml::node& where, uint32_t if_index);

} // namespace vswitch

#endif
