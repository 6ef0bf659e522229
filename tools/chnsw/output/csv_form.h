// Documents as CSV.
#ifndef CHNSW_CSV_FORM_H
#define CHNSW_CSV_FORM_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "output/result_document.h"

namespace chnsw_tool {

std::string csv_document(const result_document& document, bool colour);
std::string csv_record(const nlohmann::ordered_json& record, const std::string& table); // a field and its value a line
std::string csv_begin(const std::vector<column>& columns, bool colour);
std::string csv_row(const std::vector<column>& columns, const result_row& row, bool first, bool colour);
std::string csv_end(bool any_row);

} // namespace chnsw_tool

#endif
