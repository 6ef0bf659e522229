// The chassis front drawn in text.
#ifndef CHNSW_FRONT_TEXT_H
#define CHNSW_FRONT_TEXT_H

#include <string>

#include "inspect/chassis/front.h"

namespace chnsw_tool {

std::string front_title(const inspect::chassis_front& front); // "director-10: 10 slots, type 32"

std::string draw_front_text(const inspect::chassis_front& front, bool colour);

} // namespace chnsw_tool

#endif
