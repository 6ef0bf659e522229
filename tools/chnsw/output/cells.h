// Cells that many tables share.
#ifndef CHNSW_CELLS_H
#define CHNSW_CELLS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "output/result_document.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

cell known_cell(bool known, cell value); // none for what is not known
cell optional_cell(std::optional<uint32_t> value);
cell number_cell(std::optional<uint32_t> number);           // also none for FICON_PMAP_NO_NUMBER
cell interface_cell(std::optional<uint32_t> if_index);      // the index, none for 0
cell interface_name_cell(std::optional<uint32_t> if_index); // its name
cell vsan_cell(uint32_t vsan);                              // none for 0
cell status_cell(std::optional<uint32_t> code);

// A physical port: "3/5" for a table, slot and port for data.
cell slot_and_port_cell(const std::optional<vswitch::fc_port>& port);
cell slot_cell(const std::optional<vswitch::fc_port>& port);
cell port_cell(const std::optional<vswitch::fc_port>& port);

std::string interface_names(const std::vector<uint32_t>& interfaces); // "fc4/1 fc4/2"

} // namespace chnsw_tool

#endif
