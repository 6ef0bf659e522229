// A node's identity as columns of a result.
#ifndef CHNSW_NODE_COLUMNS_H
#define CHNSW_NODE_COLUMNS_H

#include <optional>
#include <vector>

#include "inspect/chassis/node_identity.h"
#include "output/result_document.h"

namespace chnsw_tool {

std::vector<column> node_columns();
std::vector<cell> node_cells(const std::optional<inspect::node_identity>& node); // every one is missing for none

} // namespace chnsw_tool

#endif
