// The row that every question about a port is answered with.
#ifndef CHNSW_PORT_ROW_H
#define CHNSW_PORT_ROW_H

#include <string>

#include "inspect/port_map/port_answer.h"
#include "output/cells.h"
#include "output/record_table.h"

namespace chnsw_tool {

std::span<const record_column<inspect::port_answer>> port_table();

// Why the library was not asked about what: "fc7/9 would be at port map index 1024, ...".
std::string not_asked_text(const std::string& what, const inspect::not_asked& unasked);

} // namespace chnsw_tool

#endif
