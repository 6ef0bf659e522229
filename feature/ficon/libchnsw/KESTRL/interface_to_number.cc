// An interface turned into its port number, port address and port map index.
#include <libchnsw.h>
#include <platform/if_index.h>

#include "port_map_tables.h"
#include "port_services.h"
#include "report.h"

namespace {

constexpr char kName[] = "ficon_pmap_get_if_to_pnpa_index_with2pmaps";
constexpr int kFetchNumbersLine = 2884;
constexpr int kFetchPortsLine = 2894;

// What is asked, and where the answer goes.
struct interface_query {
  uint32_t if_index;
  ficon_pmap_port_entry* entry;
  uint32_t* index;
  const uint32_t* pn_to_if;
  const ficon_pmap_port_entry* port_to_pn;
  bool skip_lag_check;
};

// Fills in the tables that the caller did not pass.
int32_t fetch_missing_tables(interface_query& query) {
  if (query.pn_to_if == nullptr) {
    const int32_t status = chnsw::fetch_numbers_or_report(kName, kFetchNumbersLine);
    if (status != 0) return status;
    query.pn_to_if = ficon_pmap_pn_to_logif;
  }
  if (query.port_to_pn == nullptr) {
    const int32_t status = chnsw::fetch_ports_or_report(kName, kFetchPortsLine);
    if (status != 0) return status;
    query.port_to_pn = ficon_pmap_port_to_pn;
  }
  return 0;
}

// The port number whose interface this is, or -1.
int32_t number_of_interface(const interface_query& query) {
  for (int32_t pn = 0; pn < MAX_FICON_PORTS; ++pn) {
    if (query.pn_to_if[pn] == query.if_index) return pn;
  }
  return -1;
}

// The first entry without a physical port that carries the number, or -1.
int32_t further_entry_of(const interface_query& query, int32_t pn) {
  for (int32_t index = FICON_PMAP_PHYS_ENTRIES; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (query.port_to_pn[index].pn == pn) return index;
  }
  return -1;
}

// An interface that has a number of its own, not by its slot. Oddities: of the entry only pn and pa are written, and pn
// also when the search then fails; the first trace ends with a blank.
int32_t look_up_bound_number(const interface_query& query, int32_t not_found) {
  const int32_t pn = number_of_interface(query);
  if (pn >= 0) {
    query.entry->pn = static_cast<uint16_t>(pn);
    ficon_log_debug("Found ifindex in pn to logif map for : %#x\n ", query.if_index);
    const int32_t index = further_entry_of(query, pn);
    if (index >= 0) {
      *query.index = static_cast<uint32_t>(index);
      query.entry->pa = query.port_to_pn[index].pa;
      return 0;
    }
    ficon_log_debug("if_index:%#x not reserved\n", query.if_index);
  }
  ficon_log_debug("if_index:%#x not associated\n", query.if_index);
  return not_found;
}

// The entry of a slot's port.
int32_t look_up_port(const interface_query& query, uint8_t slot, uint8_t port) {
  const int32_t status =
      ficonm_platform_slot_to_pnpa_index_withpmap(slot, port, query.entry, query.index, query.port_to_pn);
  if (status != 0) ficon_log_error("Invalid slot number for linecard %d (%d)\n", slot, status);
  return status;
}

int32_t look_up_port_or_member(const interface_query& query, uint8_t slot, uint8_t port) {
  int lag_status = 0;
  const chnsw::membership membership = chnsw::port_channel_membership(query.if_index, lag_status);
  if (membership == chnsw::membership::member) {
    ficon_log_error("if_index %#x is a port thats part of port-channel\n", query.if_index);
    return look_up_bound_number(query, FICON_RC_LAG_MEMBER);
  }
  if (membership == chnsw::membership::unknown) {
    // Oddity: reported, yet a success with nothing written. Clients go on with what they preset.
    ficon_log_error("lagmap_get_port failed: if_index:%#x,rc:%d\n", query.if_index, lag_status);
  } else {
    const int32_t status = look_up_port(query, slot, port);
    if (status != 0) return status;
  }
  ficon_log_debug("if_index:%#x, slot:%dbase1, port:%dbase1, port-number:%d\n", query.if_index, slot + 1, port + 1,
                  query.entry->pn);
  return 0;
}

int32_t look_up_physical(const interface_query& query) {
  uint8_t slot = 0;
  int status = chnsw::read_interface_slot(query.if_index, &slot);
  if (status != 0) return status;
  uint8_t port = 0;
  status = chnsw::read_interface_port(query.if_index, &port);
  if (status != 0) return status;
  return query.skip_lag_check ? look_up_port(query, slot, port) : look_up_port_or_member(query, slot, port);
}

} // namespace

int32_t ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                                   const uint32_t* pn_to_if, const ficon_pmap_port_entry* port_to_pn,
                                                   int32_t skip_lag_check) {
  if (entry == nullptr) return FICON_RC_INVALID_ARG;
  interface_query query = {if_index, entry, index, pn_to_if, port_to_pn, skip_lag_check != 0};
  int32_t status = fetch_missing_tables(query);
  if (status != 0) return status;

  uint8_t type = 0;
  status = chnsw::read_interface_type(if_index, &type);
  if (status != 0) return status;
  switch (type) {
    case IF_TYPE_FC_PORT:
      return look_up_physical(query);
    case IF_TYPE_PORT_CHANNEL:
    case IF_TYPE_FCIP:
      return look_up_bound_number(query, FICON_RC_NOT_ASSOCIATED);
    default:
      return chnsw::refuse_interface_type(if_index, type);
  }
}

int32_t ficon_pmap_get_if_to_pnpa_index_withpmap(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                                 const uint32_t* pn_to_if, int32_t skip_lag_check) {
  return ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, entry, index, pn_to_if, nullptr, skip_lag_check);
}

int32_t ficon_pmap_get_if_to_pnpa_withpmap(uint32_t if_index, ficon_pmap_port_entry* entry, const uint32_t* pn_to_if,
                                           int32_t skip_lag_check) {
  uint32_t index = 0;
  return ficon_pmap_get_if_to_pnpa_index_withpmap(if_index, entry, &index, pn_to_if, skip_lag_check);
}

int32_t ficon_pmap_get_if_to_pn_withpmap(uint32_t if_index, uint16_t* pn, const uint32_t* pn_to_if,
                                         int32_t skip_lag_check) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  const int32_t status = ficon_pmap_get_if_to_pnpa_withpmap(if_index, &entry, pn_to_if, skip_lag_check);
  if (status == 0) *pn = entry.pn;
  return status;
}

int32_t ficon_pmap_get_if_to_pn(uint32_t if_index, uint16_t* pn) {
  return ficon_pmap_get_if_to_pn_withpmap(if_index, pn, nullptr, 0);
}

int32_t ficon_pmap_get_if_to_pa(uint32_t if_index, uint16_t* pa) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  const int32_t status = ficon_pmap_get_if_to_pnpa_withpmap(if_index, &entry, nullptr, 0);
  if (status == 0) *pa = entry.pa;
  return status;
}

int32_t ficon_pmap_get_if_to_index(uint32_t if_index, uint32_t* index) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  return ficon_pmap_get_if_to_pnpa_index_withpmap(if_index, &entry, index, nullptr, 0);
}

// Everything on the way is inlined: calls took half of the instructions (docs/benchmarks.md).
[[gnu::flatten]] int32_t ficon_pmap_get_if_to_index_with2pmaps(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                                                               const ficon_pmap_port_entry* port_to_pn,
                                                               int32_t skip_lag_check) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  return ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, index, pn_to_if, port_to_pn, skip_lag_check);
}
