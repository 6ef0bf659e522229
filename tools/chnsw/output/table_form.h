// Documents as tables for people.
#ifndef CHNSW_TABLE_FORM_H
#define CHNSW_TABLE_FORM_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "output/result_document.h"

namespace chnsw_tool {

std::string table_document(const result_document& document, bool colour);
std::string table_record(const nlohmann::ordered_json& record, const std::string& table);

// A table that grows while it is written: of a column nobody knows yet what else it will hold.
std::string table_begin(const std::vector<column>& columns, bool colour);
std::string table_row(const std::vector<column>& columns, const result_row& row, bool first, bool colour);
std::string table_end(bool any_row);

} // namespace chnsw_tool

#endif
