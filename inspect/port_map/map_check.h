// The checks of a port map, and what they share.
#ifndef INSPECT_MAP_CHECK_H
#define INSPECT_MAP_CHECK_H

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "inspect/port_map/map_findings.h"
#include "inspect/port_map/port_map_tables.h"
#include "inspect/port_map/translation.h"

namespace inspect {

// What stands behind an entry: a port, a logical interface, or nothing.
struct entry_behind {
  uint32_t if_index = 0;
  bool there = false;   // the port is plugged, or the interface is bound
  uint32_t channel = 0; // port-channel that the port is a member of
};

struct checked_map {
  const library_session& session;
  port_map_tables tables;
  std::vector<uint32_t> vsans;
  const uint16_t* addresses;        // port number of each port address
  std::vector<entry_behind> behind; // one an index

  const ficon_pmap_port_entry& entry(uint32_t index) const { return tables.port_to_pn[index]; }
};

// Also readies the library's fast forms, which the checks ask: they read tables that stand still meanwhile.
checked_map prepare_check(const library_session& session);

// Findings in the order in which they were made, each of them once; several translations may tell the same.
class finding_list {
 public:
  void add(finding found);
  std::vector<finding> take() { return std::move(found_); }

 private:
  std::vector<finding> found_;
  std::set<std::tuple<finding_kind, std::string, std::optional<uint32_t>, std::vector<uint16_t>>> known_;
};

void check_entries(const checked_map& map,
                   finding_list& findings); // each by itself, and whether its own numbers lead to it
void check_numbers(const checked_map& map, finding_list& findings);  // every number in every VSAN
void check_bindings(const checked_map& map, finding_list& findings); // whether bound interfaces lead back to their numbers
void check_address_table(const checked_map& map, finding_list& findings);
void check_ports_without_place(const checked_map& map, finding_list& findings);

struct fast_answer {
  uint32_t status = 0;
  uint32_t result = 0;
};
fast_answer ask_fast(const checked_map& map, translation what, uint32_t number, const uint32_t* vsan);

std::string address_name(uint32_t pa);                          // "PA 0C"
std::string number_name(uint32_t pn);                           // "PN 12"
std::string place_name(const checked_map& map, uint32_t index); // "fc3/5", "index 1030"

} // namespace inspect

#endif
