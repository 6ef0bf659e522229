// A port number or port address turned into the physical interface that carries it.
#include <libchnsw.h>

#include "interface_choice.h"
#include "port_map_search.h"
#include "port_map_tables.h"
#include "port_services.h"

namespace {

constexpr char kName[] = "ficon_pmap_get_pn_to_phyif_withpvsan";
constexpr int kFetchPortsLine = 3447;
constexpr int kFetchNumbersLine = 3460;

// One number's search.
struct number_search {
  int32_t pn;
  const ficon_pmap_port_entry* port_to_pn;
  const uint32_t* pn_to_if;
  chnsw::vsan_choice vsan;
  chnsw::port_tally tally;
};

bool is_carried_by_further_entry(int32_t pn, const ficon_pmap_port_entry* port_to_pn) {
  constexpr int32_t kFurtherEntries = FICON_PMAP_PORT_ENTRIES - FICON_PMAP_PHYS_ENTRIES;
  return chnsw::next_lower_match<&ficon_pmap_port_entry::pn>(port_to_pn + FICON_PMAP_PHYS_ENTRIES, kFurtherEntries, pn) >=
         0;
}

// Ports in port-channels, and ports bound to no VSAN, qualify too.
[[gnu::noinline]] void meet(int32_t index, number_search& search) {
  uint32_t if_index = 0;
  if (ficon_pmap_get_index_to_if_withpmap(index, static_cast<uint32_t>(search.pn), &if_index, search.pn_to_if) != 0) return;
  if (chnsw::find_port_index(if_index) != 0) return;
  ++search.tally.count;
  search.tally.last = if_index;
  chnsw::tally_vsan(search.tally, search.vsan, index, search.port_to_pn[index], if_index);
}

} // namespace

uint32_t ficon_pmap_get_pn_to_phyif_withpvsan(int32_t pn, const uint32_t* given_vsan, int32_t pn_bound, uint32_t* if_index,
                                              const uint32_t* pn_to_if, uint32_t* flag) {
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  chnsw::vsan_choice vsan(given_vsan);
  const uint32_t vsan_status = chnsw::fetch_port_to_vsan(vsan);
  if (vsan_status != 0) return vsan_status;
  int32_t status = chnsw::fetch_ports_or_report(kName, kFetchPortsLine);
  if (status != 0) return static_cast<uint32_t>(status);
  if (pn >= pn_bound) return FICON_RC_PN_RANGE;
  if (pn_to_if == nullptr) {
    status = chnsw::fetch_numbers_or_report(kName, kFetchNumbersLine);
    if (status != 0) return static_cast<uint32_t>(status);
    pn_to_if = ficon_pmap_pn_to_logif;
  }
  // Oddity: an interface bound to the number answers for every VSAN. A negative number is not rejected, callers pass none.
  if (pn_to_if[pn] != 0) {
    *if_index = pn_to_if[pn];
    return 0;
  }
  // Oddity: a number without a physical port answers with interface 0, and that is no error.
  if (is_carried_by_further_entry(pn, ficon_pmap_port_to_pn)) {
    *if_index = 0;
    return 0;
  }

  number_search search = {pn, ficon_pmap_port_to_pn, pn_to_if, vsan, chnsw::port_tally(0)};
  chnsw::walk_down<&ficon_pmap_port_entry::pn>(search.port_to_pn, FICON_PMAP_PHYS_ENTRIES, pn,
                                               [&](int32_t index) { meet(index, search); });
  return chnsw::conclude_interface(chnsw::decide(search.tally, search.vsan), if_index, flag);
}

uint32_t ficon_pmap_get_pn_to_phyif(int32_t pn, uint32_t* if_index, int32_t pn_bound, const uint32_t* pn_to_if) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_phyif_withpvsan(pn, nullptr, pn_bound, if_index, pn_to_if, &discarded_flag);
}

uint32_t ficon_pmap_get_pn_vsan_to_phyif(int32_t pn, uint32_t vsan, uint32_t* if_index, int32_t pn_bound,
                                         const uint32_t* pn_to_if) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_phyif_withpvsan(pn, &vsan, pn_bound, if_index, pn_to_if, &discarded_flag);
}

uint32_t ficon_pmap_get_pa_to_phyif(int32_t pa, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_to_pn(pa, &pn);
  if (status != 0) return status;
  return ficon_pmap_get_pn_to_phyif(pn, if_index, MAX_FICON_PORTS, ficon_pmap_pn_to_logif);
}

uint32_t ficon_pmap_get_pa_vsan_to_phyif(int32_t pa, uint32_t vsan, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_vsan_to_pn(pa, vsan, &pn);
  if (status != 0) return status;
  return ficon_pmap_get_pn_vsan_to_phyif(pn, vsan, if_index, MAX_FICON_PORTS, ficon_pmap_pn_to_logif);
}
