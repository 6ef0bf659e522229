// An interface turned into its port number, port address and port map index.
#include <libchnsw.h>

#include "port_map_tables.h"
#include "port_services.h"
#include "report.h"

namespace {

constexpr char kName[] = "ficon_pmap_get_if_to_pnpa_index_with2pmaps";
constexpr int kFetchNumbersLine = 2884;
constexpr int kFetchPortsLine = 2894;

// Where one look-up reads and writes.
struct look_up {
  uint32_t if_index;
  ficon_pmap_port_entry* entry;
  uint32_t* index;
  const uint32_t* pn_to_if;
  const ficon_pmap_port_entry* port_to_pn;
};

// Fills in the tables that the caller did not pass.
int32_t fetch_missing_tables(look_up& look_up) {
  if (look_up.pn_to_if == nullptr) {
    const int32_t status = ficon_get_pmap_pnif();
    if (status != 0) {
      ficon_log_error("%s(%d):failed to get pmap_pnif %d\n", kName, kFetchNumbersLine, status);
      return status;
    }
    look_up.pn_to_if = ficon_pmap_pn_to_logif;
  }
  if (look_up.port_to_pn == nullptr) {
    const int32_t status = ficon_get_pmap_portpn();
    if (status != 0) {
      ficon_log_error("%s(%d):failed to get pmap_portpn %d\n", kName, kFetchPortsLine, status);
      return status;
    }
    look_up.port_to_pn = ficon_pmap_port_to_pn;
  }
  return 0;
}

// The port number whose interface this is, or -1.
int32_t number_of_interface(const look_up& look_up) {
  for (int32_t pn = 0; pn < MAX_FICON_PORTS; ++pn) {
    if (look_up.pn_to_if[pn] == look_up.if_index) return pn;
  }
  return -1;
}

// The entry without a physical port that carries the number, or -1.
int32_t further_entry_of(const look_up& look_up, int32_t pn) {
  for (int32_t index = FICON_PMAP_PHYS_ENTRIES; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (look_up.port_to_pn[index].pn == pn) return index;
  }
  return -1;
}

// An interface that has a number of its own, not by its slot. Oddities: of the entry only pn and pa are written, and pn
// also when the search then fails.
int32_t look_up_bound_number(const look_up& look_up, int32_t not_found) {
  const int32_t pn = number_of_interface(look_up);
  if (pn >= 0) {
    look_up.entry->pn = static_cast<uint16_t>(pn);
    ficon_log_debug("Found ifindex in pn to logif map for : %#x\n ", look_up.if_index);
    const int32_t index = further_entry_of(look_up, pn);
    if (index >= 0) {
      *look_up.index = static_cast<uint32_t>(index);
      look_up.entry->pa = look_up.port_to_pn[index].pa;
      return 0;
    }
    ficon_log_debug("if_index:%#x not reserved\n", look_up.if_index);
  }
  ficon_log_debug("if_index:%#x not associated\n", look_up.if_index);
  return not_found;
}

int32_t look_up_slot_and_port(const look_up& look_up, uint8_t slot, uint8_t port) {
  return ficonm_platform_slot_to_pnpa_index_withpmap(slot, port, look_up.entry, look_up.index, look_up.port_to_pn);
}

int32_t refuse_slot(uint8_t slot, int32_t status) {
  ficon_log_error("Invalid slot number for linecard %d (%d)\n", slot, status);
  return status;
}

int32_t look_up_port(const look_up& look_up, uint8_t slot, uint8_t port, int32_t skip_lag_check) {
  if (skip_lag_check != 0) {
    const int32_t status = look_up_slot_and_port(look_up, slot, port);
    return status != 0 ? refuse_slot(slot, status) : 0;
  }
  int lag_status = 0;
  switch (chnsw::port_channel_membership(look_up.if_index, lag_status)) {
    case chnsw::membership::member:
      ficon_log_error("if_index %#x is a port thats part of port-channel\n", look_up.if_index);
      return look_up_bound_number(look_up, FICON_RC_LAG_MEMBER);
    case chnsw::membership::unknown:
      // Oddity: reported, yet a success with nothing written. Clients go on with what they preset.
      ficon_log_error("lagmap_get_port failed: if_index:%#x,rc:%d\n", look_up.if_index, lag_status);
      break;
    case chnsw::membership::none:
      const int32_t status = look_up_slot_and_port(look_up, slot, port);
      if (status != 0) return refuse_slot(slot, status);
      break;
  }
  ficon_log_debug("if_index:%#x, slot:%dbase1, port:%dbase1, port-number:%d\n", look_up.if_index, slot + 1, port + 1,
                  look_up.entry->pn);
  return 0;
}

int32_t look_up_physical(const look_up& look_up, int32_t skip_lag_check) {
  uint8_t slot = 0;
  int status = if_index_get_slot(look_up.if_index, &slot);
  if (status != 0) {
    ficon_log_error("Failed to get slot for if_index %#x (%d)\n", look_up.if_index, status);
    return status;
  }
  uint8_t port = 0;
  status = if_index_get_port(look_up.if_index, &port);
  if (status != 0) {
    ficon_log_error("Failed to get port for if_index %#x (%d)\n", look_up.if_index, status);
    return status;
  }
  return look_up_port(look_up, slot, port, skip_lag_check);
}

} // namespace

int32_t ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                                   const uint32_t* pn_to_if, const ficon_pmap_port_entry* port_to_pn,
                                                   int32_t skip_lag_check) {
  if (entry == nullptr) return FICON_RC_INVALID_ARG;
  look_up look_up = {if_index, entry, index, pn_to_if, port_to_pn};
  int32_t status = fetch_missing_tables(look_up);
  if (status != 0) return status;

  uint8_t type = 0;
  status = if_index_get_type(if_index, &type);
  if (status != 0) {
    ficon_log_error("failed to get if type for if_index:%#x (%d)\n", if_index, status);
    return status;
  }
  switch (type) {
    case IF_TYPE_FC_PORT:
      return look_up_physical(look_up, skip_lag_check);
    case IF_TYPE_PORT_CHANNEL:
    case IF_TYPE_FCIP:
      return look_up_bound_number(look_up, FICON_RC_NOT_ASSOCIATED);
    default:
      ficon_log_error("if_index %#x not fc port. type = %d\n", if_index, type);
      return FICON_RC_NOT_FC_PORT;
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

int32_t ficon_pmap_get_if_to_index_with2pmaps(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                                              const ficon_pmap_port_entry* port_to_pn, int32_t skip_lag_check) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  return ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, index, pn_to_if, port_to_pn, skip_lag_check);
}
