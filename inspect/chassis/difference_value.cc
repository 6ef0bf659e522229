#include "inspect/chassis/difference_value.h"

#include <fmt/format.h>

#include <iterator>

#include "vswitch/interface_index.h"

namespace inspect {

difference_value no_value() {
  return {std::monostate{}, "-"};
}

difference_value text_value(const std::string& text) {
  return {text, text.empty() ? "-" : text};
}

difference_value number_value(int64_t number) {
  return {number, std::to_string(number)};
}

difference_value hex_value(uint32_t number, unsigned digits) {
  return {int64_t{number}, fmt::format("{:0{}X}", number, digits)};
}

difference_value presence_value(bool there) {
  return {there, there ? "yes" : "no"};
}

difference_value pn_value(uint16_t pn) {
  return pn == FICON_PMAP_NO_NUMBER ? no_value() : number_value(pn);
}

difference_value pa_value(uint16_t pa) {
  return pa == FICON_PMAP_NO_NUMBER ? no_value() : hex_value(pa, 2);
}

difference_value vsan_value(uint16_t vsan) {
  return vsan == 0 ? no_value() : number_value(vsan);
}

// Up to the last slot in use: where an empty one stands matters as well.
difference_value bound_vsans_value(const ficon_pmap_port_entry& entry) {
  std::vector<uint16_t> vsans(std::begin(entry.vsans), std::end(entry.vsans));
  while (!vsans.empty() && vsans.back() == 0) vsans.pop_back();
  return {vsans, vsans.empty() ? "-" : fmt::format("{}", fmt::join(vsans, ","))};
}

difference_value interface_value(uint32_t if_index) {
  return text_value(if_index == 0 ? "" : vswitch::interface_name(if_index));
}

} // namespace inspect
