// Naming what may be missing.
#include "inspect/words/number_texts.h"

#include <fmt/format.h>

#include "libchnsw.h"
#include "vswitch/interface_index.h"

namespace inspect {

std::string pn_text(uint32_t pn) {
  return pn == FICON_PMAP_NO_NUMBER ? "none" : std::to_string(pn);
}

std::string pa_text(uint32_t pa) {
  return pa == FICON_PMAP_NO_NUMBER ? "none" : fmt::format("{:02X}", pa);
}

std::string interface_text(uint32_t if_index) {
  return if_index == 0 ? "no interface" : fmt::format("{} 0x{:08X}", vswitch::interface_name(if_index), if_index);
}

} // namespace inspect
