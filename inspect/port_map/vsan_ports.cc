// Asking for a VSAN's ports.
#include "inspect/port_map/vsan_ports.h"

#include <fmt/format.h>

#include <cstdlib>
#include <memory>
#include <set>

#include "inspect/error.h"
#include "inspect/port_map/port_place.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"

namespace inspect {

namespace {

// The library's four arrays, which are ours to free.
struct library_arrays {
  uint16_t* pns = nullptr;
  uint16_t* pas = nullptr;
  uint32_t* interfaces = nullptr;
  uint32_t* bound = nullptr;
  uint32_t count = 0;

  library_arrays() = default;
  ~library_arrays() {
    std::free(pns);
    std::free(pas);
    std::free(interfaces);
    std::free(bound);
  }
  library_arrays(const library_arrays&) = delete;
  library_arrays& operator=(const library_arrays&) = delete;

  bool are_complete() const { return pns != nullptr && pas != nullptr && interfaces != nullptr && bound != nullptr; }
};

vsan_port port_of(uint32_t vsan, const library_arrays& arrays, uint32_t which) {
  uint32_t if_index = arrays.interfaces[which];
  auto index = port_map_place(if_index);
  auto port = vswitch::fc_port_of(if_index);
  return {vsan, arrays.pns[which], arrays.pas[which], port, index, if_index, arrays.bound[which] != 0};
}

} // namespace

std::vector<uint32_t> vsans_of(const vswitch::chassis_description& chassis) {
  std::set<uint32_t> vsans(chassis.map.port_to_vsan.begin(), chassis.map.port_to_vsan.end());
  for (const auto& [number, name] : chassis.vsans) vsans.insert(number);
  for (const auto& entry : chassis.map.port_to_pn) vsans.insert(std::begin(entry.vsans), std::end(entry.vsans));
  vsans.erase(0);
  return {vsans.begin(), vsans.end()};
}

std::vector<vsan_port> ports_in_vsan(uint32_t vsan) {
  library_arrays arrays;
  uint32_t status =
      ficon_pmap_get_info_in_vsan(vsan, &arrays.pns, &arrays.pas, &arrays.interfaces, &arrays.bound, &arrays.count);
  if (status != 0) throw platform_error(fmt::format("the ports of VSAN {} cannot be read: {}", vsan, status_text(status)));
  if (!arrays.are_complete()) throw platform_error(fmt::format("the ports of VSAN {} cannot be read: no memory", vsan));
  std::vector<vsan_port> ports;
  for (uint32_t which = 0; which < arrays.count; ++which) ports.push_back(port_of(vsan, arrays, which));
  return ports;
}

} // namespace inspect
