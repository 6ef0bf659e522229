// Explanations as they are shown, as text and as data.
#ifndef CHNSW_EXPLANATION_DOCUMENT_H
#define CHNSW_EXPLANATION_DOCUMENT_H

#include <vector>

#include "inspect/port_map/explanation.h"
#include "output/result_document.h"

namespace chnsw_tool {

// Puts explanations beside a row's values.
void attach(const std::vector<inspect::explanation>& explanations, result_row& row);

} // namespace chnsw_tool

#endif
