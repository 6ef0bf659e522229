// The devices behind a switch's interfaces as objects of a record.
#ifndef CHNSW_NODE_RECORDS_H
#define CHNSW_NODE_RECORDS_H

#include <nlohmann/json_fwd.hpp>

#include "vswitch/chassis_description.h"

namespace chnsw_tool {

// An object for each [[node]], by ascending interface index. Texts are without the blanks that fill them.
nlohmann::ordered_json node_records(const vswitch::chassis_description& chassis);

} // namespace chnsw_tool

#endif
