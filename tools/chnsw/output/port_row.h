// The row that every question about a port is answered with: all that belongs together, and the library's statuses.
#ifndef CHNSW_PORT_ROW_H
#define CHNSW_PORT_ROW_H

#include <cstdint>
#include <optional>
#include <vector>

#include "inspect/session/library_session.h"
#include "output/result_document.h"

namespace chnsw_tool {

struct port_row {
  std::optional<uint32_t> pn;
  std::optional<uint32_t> pa;
  std::optional<uint32_t> index;       // of the port map
  std::optional<uint32_t> if_index;    // no value or 0: none
  std::optional<uint32_t> phyif_index; // the same
  std::optional<uint32_t> asked_vsan;
  // No value: the library was not asked.
  std::optional<uint32_t> answer;       // of the number
  std::optional<uint32_t> if_answer;    // of the interface
  std::optional<uint32_t> phyif_answer; // of the physical interface

  // Whether there is a whole answer: the library said OK to everything, and both numbers are assigned.
  bool is_found() const;
};

std::vector<column> port_columns();

// Fills in what the port map and the interfaces say beside the row's own values.
result_row show(const port_row& row, const library_session& session);

// Cells that other tables share.
cell known_cell(bool known, cell value); // none for what is not known
cell optional_cell(std::optional<uint32_t> value);
cell number_cell(std::optional<uint32_t> number);           // also none for FICON_PMAP_NO_NUMBER
cell interface_cell(std::optional<uint32_t> if_index);      // the index, none for 0
cell interface_name_cell(std::optional<uint32_t> if_index); // its name
cell vsan_cell(uint32_t vsan);                              // none for 0
cell status_cell(std::optional<uint32_t> code);

// "3/5" as three cells: for a table, slot, port.
struct slot_and_port {
  cell text;
  cell slot;
  cell port;
};
slot_and_port slot_and_port_of(std::optional<uint32_t> if_index, std::optional<uint32_t> index);

} // namespace chnsw_tool

#endif
