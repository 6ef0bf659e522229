// Documents as JSON, and as JSON lines.
#ifndef CHNSW_JSON_FORM_H
#define CHNSW_JSON_FORM_H

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "output/result_document.h"

namespace chnsw_tool {

std::string json_document(const result_document& document, bool colour);
std::string json_record(const nlohmann::ordered_json& record, const std::string& table);
std::string json_begin(const std::vector<column>& columns, bool colour);
std::string json_row(const std::vector<column>& columns, const result_row& row, bool first, bool colour);
std::string json_end(bool any_row);

std::string json_lines_document(const result_document& document, bool colour);
std::string json_lines_record(const nlohmann::ordered_json& record, const std::string& table);
std::string json_lines_begin(const std::vector<column>& columns, bool colour);
std::string json_lines_row(const std::vector<column>& columns, const result_row& row, bool first, bool colour);
std::string json_lines_end(bool any_row);

// One value without line breaks.
std::string json_text(const nlohmann::ordered_json& value);

} // namespace chnsw_tool

#endif
