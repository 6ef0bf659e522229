#include "search.h"

#include <algorithm>

#include "port_map_model.h"

namespace chnsw_test {

bool has_any_vsan(const ficon_pmap_port_entry& entry) {
  return std::any_of(entry.vsans, entry.vsans + 8, [](uint16_t slot) { return slot != 0; });
}

bool has_vsan(const ficon_pmap_port_entry& entry, uint32_t vsan) {
  const auto low_bits = static_cast<uint16_t>(vsan);
  return std::any_of(entry.vsans, entry.vsans + 8, [&](uint16_t slot) { return slot == low_bits; });
}

std::string text_of_vsans(const ficon_pmap_port_entry& entry) {
  const uint16_t* v = entry.vsans;
  return text_of("vsans(%d %d %d %d %d %d %d %d)", v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7]);
}

int number_of(const std::vector<port_met>& ports, bool port_met::*quality) {
  return static_cast<int>(std::count_if(ports.begin(), ports.end(), [&](const port_met& port) { return port.*quality; }));
}

uint32_t last_of(const std::vector<port_met>& ports, bool port_met::*quality, uint32_t otherwise) {
  const auto last = std::find_if(ports.rbegin(), ports.rend(), [&](const port_met& port) { return port.*quality; });
  return last == ports.rend() ? otherwise : last->answer;
}

namespace {

chosen_port choose_without_table(const std::vector<port_met>& ports, uint32_t none) {
  const uint32_t bound = last_of(ports, &port_met::bound, 0);
  switch (number_of(ports, &port_met::bound)) {
    case 0:
      return {"none bound", none};
    case 1:
      return {"one bound", 0, bound};
    default:
      return {"several bound", FICON_RC_MULTI_IF};
  }
}

chosen_port choose_in_vsan(const std::vector<port_met>& ports) {
  const uint32_t bound = last_of(ports, &port_met::bound, 0);
  const uint32_t in_vsan = last_of(ports, &port_met::in_vsan, 0);
  switch (number_of(ports, &port_met::bound)) {
    case 0:
      return {"several in the VSAN, none bound", FICON_RC_MULTI_IF, in_vsan, 0};
    case 1:
      return {"several in the VSAN, one bound", 0, bound};
    default:
      return {"several in the VSAN, several bound", FICON_RC_MULTI_IF};
  }
}

} // namespace

chosen_port choose_port(const std::vector<port_met>& ports, const asked_vsan& vsan, uint32_t none) {
  const int counted = number_of(ports, &port_met::counts);
  if (counted == 1) return {"one counts", 0, ports.back().answer};
  if (counted == 0) return {"none counts", none};
  if (vsan.address == nullptr) return {"several, no VSAN given", FICON_RC_MULTI_IF};
  const int in_vsan = number_of(ports, &port_met::in_vsan);
  if (in_vsan == 1) return {"one in the VSAN", 0, last_of(ports, &port_met::in_vsan, 0)};
  if (in_vsan > 1) return choose_in_vsan(ports);
  if (vsan.table_in_use != 0) return {"none in the VSAN", none};
  return choose_without_table(ports, none);
}

// ---- what every search does ----

uint32_t port_map_model::fetch_vsans(asked_vsan& vsan) {
  if (vsan.address == nullptr) return 0;
  vsan.read = *vsan.address;
  const uint32_t status = as_unsigned(ficon_get_pmap_portvsan(vsan.read));
  vsan.table_in_use = status == 0 ? 1 : 0;
  return status == FICON_RC_PLATFORM ? 0 : status;
}

port_met port_map_model::meet_port(asked_vsan& vsan, int index, const ficon_pmap_port_entry& entry, uint32_t answer,
                                   bool counts) const {
  port_met port = {answer, counts};
  if (vsan.address == nullptr) return port;
  vsan.read = *vsan.address;
  port.in_vsan = vsan.table_in_use != 0 && cached(state.port_to_vsan).at(index) == vsan.read;
  port.bound = (port.in_vsan || vsan.table_in_use == 0) && has_vsan(entry, vsan.read);
  return port;
}

} // namespace chnsw_test
