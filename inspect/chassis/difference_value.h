// A value of a switch that is compared: as data, and as people write it (addresses in hexadecimal).
#ifndef INSPECT_DIFFERENCE_VALUE_H
#define INSPECT_DIFFERENCE_VALUE_H

#include <libchnsw.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace inspect {

struct difference_value {
  // std::monostate: there is none.
  using any = std::variant<std::monostate, int64_t, bool, std::string, std::vector<uint16_t>>;

  any data;
  std::string text;

  // By the data: a name of "-" and no name have the same text.
  bool operator==(const difference_value& other) const { return data == other.data; }
};

difference_value no_value();
difference_value text_value(const std::string& text);
difference_value number_value(int64_t number);
difference_value hex_value(uint32_t number, unsigned digits);
difference_value presence_value(bool there);

// Those of the port map, where a number can be missing.
difference_value pn_value(uint16_t pn);
difference_value pa_value(uint16_t pa);
difference_value vsan_value(uint16_t vsan);
difference_value bound_vsans_value(const ficon_pmap_port_entry& entry);
difference_value interface_value(uint32_t if_index);

} // namespace inspect

#endif
