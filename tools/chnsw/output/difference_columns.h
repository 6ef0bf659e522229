// Differences as columns of a result.
#ifndef CHNSW_DIFFERENCE_COLUMNS_H
#define CHNSW_DIFFERENCE_COLUMNS_H

#include <string>
#include <vector>

#include "inspect/chassis/switch_differences.h"
#include "output/result_document.h"

namespace chnsw_tool {

// Where, field and both values, under the titles given.
result_document difference_document(const std::string& before, const std::string& after,
                                    const std::vector<inspect::difference>& found);

// The same under the titles of a change, with the change counter before them.
std::vector<column> change_columns();
std::vector<cell> change_cells(uint32_t change_counter, const inspect::difference& found);

result_document change_document(uint32_t change_counter, const std::vector<inspect::difference>& found);

} // namespace chnsw_tool

#endif
