// Where two switches, or two states of one switch, differ.
#ifndef CHNSW_SWITCH_DIFFERENCES_H
#define CHNSW_SWITCH_DIFFERENCES_H

#include <optional>
#include <string>
#include <vector>

#include "output/result_document.h"
#include "vswitch/chassis_description.h"

namespace chnsw_tool {

// One field, both ways: as data, and as people write it (addresses in hexadecimal).
struct difference {
  std::string where;             // "index 254 (fc2/1)", "slot 3", "PN 240"
  std::optional<uint32_t> index; // of the port map
  std::string field;
  cell before;
  cell after;
  std::string before_text;
  std::string after_text;
};

// Everything but the change counter, which moves with every change and says nothing itself.
std::vector<difference> differences(const vswitch::chassis_description& before, const vswitch::chassis_description& after);

// The columns where, field and both values, under the titles given, and one difference's cells.
void add_difference_columns(const std::string& before, const std::string& after, std::vector<column>& columns);
void add_difference_cells(const difference& found, std::vector<cell>& cells);

} // namespace chnsw_tool

#endif
