// The VSAN tally and the decision that every choice among several ports shares.
#include "port_map_search.h"

#include "port_map_tables.h"

uint32_t chnsw::prepare(vsan_choice& vsan, int32_t fast, int32_t (*fetch_others)()) {
  if (fast != 0) {
    vsan.use_table = vsan.given != nullptr ? fastpath_got_vsan_port : 0;
    return 0;
  }
  const int32_t status = fetch_others();
  return status != 0 ? static_cast<uint32_t>(status) : fetch_port_to_vsan(vsan);
}

uint32_t chnsw::fetch_port_to_vsan(vsan_choice& vsan) {
  if (vsan.given == nullptr) return 0;
  vsan.read = *vsan.given;
  const int32_t status = ficon_get_pmap_portvsan(vsan.read);
  vsan.use_table = status == 0;
  // The fetch never answers so today; the searches do without the table all the same.
  if (status == FICON_RC_PLATFORM) return 0;
  return static_cast<uint32_t>(status);
}

void chnsw::tally_vsan(port_tally& tally, vsan_choice& vsan, int32_t index, const ficon_pmap_port_entry& entry,
                       uint32_t answer) {
  if (vsan.given == nullptr) return;
  vsan.read = *vsan.given;
  if (vsan.use_table != 0) {
    if (ficon_pmap_port_to_vsan[index] != vsan.read) return;
    ++tally.in_vsan;
    tally.last_in_vsan = answer;
  }
  if (is_bound_to(entry, static_cast<uint16_t>(vsan.read))) {
    ++tally.bound;
    tally.last_bound = answer;
  }
}

chnsw::decision chnsw::decide(const port_tally& tally, const vsan_choice& vsan) {
  if (tally.count == 1) return {verdict::one, tally.last};
  if (tally.count == 0) return {verdict::none, 0};
  if (vsan.given == nullptr) return {verdict::several, 0};
  if (tally.in_vsan == 1) return {verdict::one, tally.last_in_vsan};
  // With the port-to-VSAN table in use, none but the ports in the VSAN were counted as bound.
  if (tally.bound == 1) return {verdict::one, tally.last_bound};
  if (tally.bound > 1) return {verdict::several, 0};
  if (tally.in_vsan == 0) return {verdict::none_in_vsan, 0};
  // Oddity: only here is an answer handed back together with an ambiguity. Clients tell it by the cleared flag.
  return {verdict::several_but_unbound, tally.last_in_vsan};
}
