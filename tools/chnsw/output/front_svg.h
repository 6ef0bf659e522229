// The chassis front drawn as SVG.
#ifndef CHNSW_FRONT_SVG_H
#define CHNSW_FRONT_SVG_H

#include <string>

#include "inspect/chassis/front.h"

namespace chnsw_tool {

std::string draw_front_svg(const inspect::chassis_front& front);

} // namespace chnsw_tool

#endif
