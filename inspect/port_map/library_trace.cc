// Reading the library's trace texts, which are part of its contract.
#include "inspect/port_map/library_trace.h"

#include <cstdio>

namespace inspect {

namespace {

using vsan_slots = int[FICON_PMAP_VSAN_SLOTS];

void set_vsans(ficon_pmap_port_entry& entry, const vsan_slots& vsans) {
  for (int slot = 0; slot < FICON_PMAP_VSAN_SLOTS; ++slot) entry.vsans[slot] = static_cast<uint16_t>(vsans[slot]);
}

std::optional<traced_entry> read_address_entry(const char* text) {
  int pn = 0;
  int pa = 0;
  int index = 0;
  vsan_slots v{};
  if (std::sscanf(text, "ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(%d) pa(%d) (%d) vsans(%d %d %d %d %d %d %d %d)", &pn,
                  &pa, &index, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7]) != 11)
    return std::nullopt;
  traced_entry traced{static_cast<uint32_t>(index), {static_cast<uint16_t>(pn), static_cast<uint16_t>(pa), {}}};
  set_vsans(traced.entry, v);
  return traced;
}

std::optional<traced_entry> read_number_entry(const char* text) {
  int pn = 0;
  unsigned interface = 0;
  vsan_slots v{};
  if (std::sscanf(text, "ficon_pmap_get_pn_to_if_withpvsan(2254) pn(%d) inst if(0x%x) vsans(%d %d %d %d %d %d %d %d)", &pn,
                  &interface, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7]) != 10)
    return std::nullopt;
  traced_entry traced{interface, {static_cast<uint16_t>(pn), FICON_PMAP_NO_NUMBER, {}}};
  set_vsans(traced.entry, v);
  return traced;
}

std::optional<search_counters> read_counters(const char* text) {
  search_counters counters;
  int vsan = 0;
  int remembered = 0;
  unsigned bound_if = 0;
  int use_table = 0;
  bool read = std::sscanf(text,
                          "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(%d) Bound(%d) Bound PN(%d) Vsan(%d) In Vsan(%d) "
                          "gvp(%d)",
                          &counters.count, &counters.bound, &remembered, &vsan, &counters.in_vsan, &use_table) == 6 ||
              std::sscanf(text,
                          "ficon_pmap_get_pn_to_if_withpvsan(2286): Count(%d) Bound(%d) Bound If(%x) Vsan(%d) In Vsan(%d) "
                          "gvp(%d)",
                          &counters.count, &counters.bound, &bound_if, &vsan, &counters.in_vsan, &use_table) == 6;
  if (!read) return std::nullopt;
  counters.use_vsan_table = use_table != 0;
  return counters;
}

} // namespace

library_trace read_trace(translation what, const std::vector<std::string>& events) {
  library_trace trace;
  for (const auto& event : events) {
    auto entry = what == translation::pa_to_pn ? read_address_entry(event.c_str()) : read_number_entry(event.c_str());
    if (entry) trace.entries.push_back(*entry);
    if (auto counters = read_counters(event.c_str())) trace.counters = counters;
  }
  return trace;
}

} // namespace inspect
