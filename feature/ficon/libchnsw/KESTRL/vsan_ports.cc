// Bulk queries: every number that is bound to an interface, and every port of a VSAN.
#include <libchnsw.h>

#include "port_map_tables.h"
#include "report.h"

namespace {

constexpr char kNumbersName[] = "ficon_pmap_get_pn_logif";
constexpr int kFetchNumbersLine = 3607;

constexpr char kVsanName[] = "ficon_pmap_get_info_in_vsan";
constexpr int kFetchVsansLine = 3637;
constexpr int kFetchPortsLine = 3644;
constexpr int kPnLine = 3665;
constexpr int kPaLine = 3669;
constexpr int kInterfaceLine = 3673;
constexpr int kBoundLine = 3677;

// One of the arrays of a VSAN's ports: the caller's, once handed over. It may be missing.
template <typename element>
element* hand_over_array(element** caller, uint32_t memory_type, uint32_t count, int line) {
  *caller = static_cast<element*>(chnsw::allocate_tracked(memory_type, uint64_t{sizeof(element)} * count, line));
  return *caller;
}

template <typename element>
void store(element* array, uint32_t position, element value) {
  if (array != nullptr) array[position] = value;
}

uint32_t fetch_vsans_and_ports(uint32_t vsan) {
  int32_t status = ficon_get_pmap_portvsan(vsan);
  if (status != 0) {
    ficon_log_error("%s(%d):failed to get pmap_portvsan (%#x)\n", kVsanName, kFetchVsansLine,
                    static_cast<uint32_t>(status));
    return static_cast<uint32_t>(status);
  }
  status = ficon_get_pmap_portpn();
  if (status != 0) {
    ficon_log_error("%s(%d):failed to get pmap_portpn (%#x)\n", kVsanName, kFetchPortsLine, static_cast<uint32_t>(status));
  }
  return static_cast<uint32_t>(status);
}

// Entries without a physical port count too, although they are never reported.
uint32_t count_in_vsan(uint32_t vsan) {
  uint32_t count = 0;
  for (int index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) count += ficon_pmap_port_to_vsan[index] == vsan;
  return count;
}

} // namespace

uint32_t ficon_pmap_get_pn_logif(uint16_t* pns, uint32_t* if_indexes, uint32_t* count) {
  const int32_t status = ficon_get_pmap_pnif();
  if (status != 0) {
    ficon_log_error("%s(%d):failed to get pmap_pnif %d\n", kNumbersName, kFetchNumbersLine, status);
    return static_cast<uint32_t>(status);
  }
  uint32_t found = 0;
  for (int32_t pn = 0; pn < MAX_FICON_PORTS; ++pn) {
    const uint32_t if_index = ficon_pmap_pn_to_logif[pn];
    if (if_index == 0) continue;
    pns[found] = static_cast<uint16_t>(pn);
    if_indexes[found] = if_index;
    ++found;
  }
  *count = found;
  return 0;
}

// Everything that a port is asked on the way is inlined (docs/benchmarks.md).
[[gnu::flatten]] uint32_t ficon_pmap_get_info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes,
                                                      uint32_t** bound, uint32_t* count) {
  const uint32_t status = fetch_vsans_and_ports(vsan);
  if (status != 0) return status;

  const uint32_t room = count_in_vsan(vsan);
  uint16_t* const pn = hand_over_array(pns, LIBCHNSW_MEM_portpn, room, kPnLine);
  uint16_t* const pa = hand_over_array(pas, LIBCHNSW_MEM_portpn, room, kPaLine);
  uint32_t* const interface = hand_over_array(if_indexes, LIBCHNSW_MEM_ifindex, room, kInterfaceLine);
  uint32_t* const is_bound = hand_over_array(bound, LIBCHNSW_MEM_portpn, room, kBoundLine);

  uint32_t found = 0;
  for (int32_t index = 0; index < FICON_PMAP_PHYS_ENTRIES; ++index) {
    if (ficon_pmap_port_to_vsan[index] != vsan) continue;
    uint32_t if_index = 0;
    if (ficon_pmap_get_index_to_phyif(index, &if_index) != 0) continue;
    const ficon_pmap_port_entry& entry = ficon_pmap_port_to_pn[index];
    store(pn, found, entry.pn);
    store(pa, found, entry.pa);
    store(interface, found, if_index);
    store(is_bound, found, uint32_t{chnsw::is_bound_to(entry, static_cast<uint16_t>(vsan))});
    ++found;
  }
  *count = found;
  return 0;
}
