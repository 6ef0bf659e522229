// The arithmetic behind a TOD clock value, beside the row that shows it.
#ifndef CHNSW_TOD_EXPLANATION_H
#define CHNSW_TOD_EXPLANATION_H

#include "inspect/mainframe/tod_explanation.h"
#include "output/result_document.h"

namespace chnsw_tool {

void attach(const inspect::tod_explanation& why, result_row& row);

} // namespace chnsw_tool

#endif
