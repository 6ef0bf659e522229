// A port number turned into the interface that answers for it.
#include <libchnsw.h>

#include "interface_choice.h"
#include "port_map_search.h"
#include "port_map_tables.h"
#include "port_services.h"
#include "report.h"

namespace {

constexpr char kName[] = "ficon_pmap_get_pn_to_if_withpvsan";
constexpr int kEntryLine = 2254;
constexpr int kEndLine = 2286;

int32_t fetch_numbers_and_ports() {
  const int32_t status = ficon_get_pmap_pnif();
  return status != 0 ? status : ficon_get_pmap_portpn();
}

// Whether a port is in no port-channel, for all that the service knows.
bool answers_for_itself(int32_t pn, uint32_t if_index) {
  int status = 0;
  switch (chnsw::port_channel_membership(if_index, status)) {
    case chnsw::membership::none:
      return true;
    case chnsw::membership::member:
      ficon_log_debug("Port Number:%d is associated with a port thats part of port-channel\n", pn);
      return false;
    case chnsw::membership::unknown:
      ficon_log_error("lagmap_get_port failed: if_index:%#x\n", if_index);
      return false;
  }
  __builtin_unreachable();
}

[[gnu::noinline]] void meet(int32_t index, const ficon_pmap_port_entry& entry, int32_t pn, chnsw::port_tally& tally,
                            chnsw::vsan_choice& vsan) {
  if (!chnsw::is_bound(entry)) return;
  uint32_t if_index = 0;
  if (ficon_pmap_get_index_to_if_withpmap(index, static_cast<uint32_t>(pn), &if_index, ficon_pmap_pn_to_logif) != 0) return;
  if (chnsw::find_port_index(if_index) != 0) return;
  if (!answers_for_itself(pn, if_index)) return;

  ++tally.count;
  tally.last = if_index;
  ficon_log_debug("%s(%d) pn(%d) inst if(0x%x) vsans(%d %d %d %d %d %d %d %d)\n", kName, kEntryLine, entry.pn, if_index,
                  entry.vsans[0], entry.vsans[1], entry.vsans[2], entry.vsans[3], entry.vsans[4], entry.vsans[5],
                  entry.vsans[6], entry.vsans[7]);
  chnsw::tally_vsan(tally, vsan, index, entry, if_index);
}

} // namespace

uint32_t ficon_pmap_get_pn_to_if_withpvsan(int32_t pn, const uint32_t* given_vsan, uint32_t* if_index, uint32_t* flag,
                                           int32_t fast) {
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  chnsw::vsan_choice vsan(given_vsan);
  const uint32_t status = chnsw::prepare(vsan, fast, fetch_numbers_and_ports);
  if (status != 0) return status;
  if (pn >= MAX_FICON_PORTS) return FICON_RC_PN_RANGE;
  // Oddity: an interface bound to the number answers for every VSAN. A negative number is not rejected, callers pass none.
  if (ficon_pmap_pn_to_logif[pn] != 0) {
    *if_index = ficon_pmap_pn_to_logif[pn];
    return 0;
  }

  const ficon_pmap_port_entry* table = ficon_pmap_port_to_pn;
  chnsw::port_tally tally(0);
  chnsw::walk_down<&ficon_pmap_port_entry::pn>(table, FICON_PMAP_PORT_ENTRIES, pn,
                                               [&](int32_t index) { meet(index, table[index], pn, tally, vsan); });
  ficon_log_debug("%s(%d): Count(%d) Bound(%d) Bound If(%#x) Vsan(%d) In Vsan(%d) gvp(%d) vsan_if(%#x)\n", kName, kEndLine,
                  tally.count, tally.bound, tally.last_bound, vsan.read, tally.in_vsan, vsan.use_table, tally.last_in_vsan);
  return chnsw::conclude_interface(chnsw::decide(tally, vsan), if_index, flag);
}

uint32_t ficon_pmap_get_pn_vsan_to_if_fast(int32_t pn, uint32_t vsan, uint32_t* if_index) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, &vsan, if_index, &discarded_flag, 1);
}

uint32_t ficon_pmap_get_pn_to_if_fast(int32_t pn, uint32_t* if_index) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, nullptr, if_index, &discarded_flag, 1);
}

uint32_t ficon_pmap_get_pn_vsan_to_if(int32_t pn, uint32_t vsan, uint32_t* if_index) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, &vsan, if_index, &discarded_flag, 0);
}

uint32_t ficon_pmap_get_pn_to_if(int32_t pn, uint32_t* if_index) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, nullptr, if_index, &discarded_flag, 0);
}
