// Interface to number, address and index; the next and the last interface; an interface's slot and port.
#include "port_map_model.h"

namespace chnsw_test {
namespace {

// An entry of an operation's own, which its caller never sees unless the port-channel service fails.
constexpr ficon_pmap_port_entry kNoEntry = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};

bool is_logical(uint8_t type) {
  return type == 4 || type == 10;
}

} // namespace

int32_t port_map_model::number_of_logical(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                          const two_tables& tables, uint32_t status_to_return) {
  const auto& [pn_to_if, port_to_pn] = tables;
  int32_t position = 0;
  while (position < state.max_ficon_ports && pn_to_if.at(position) != if_index) ++position;
  if (position < state.max_ficon_ports) {
    entry->pn = static_cast<uint16_t>(position);
    log_debug(text_of("Found ifindex in pn to logif map for : %#x\n ", if_index));
    for (uint32_t further = 1024; further <= 1279; ++further) {
      if (port_to_pn.at(further).pn != position) continue;
      *index = further;
      entry->pa = port_to_pn.at(further).pa;
      return 0;
    }
    log_debug(text_of("if_index:%#x not reserved\n", if_index));
  }
  log_debug(text_of("if_index:%#x not associated\n", if_index));
  return as_signed(status_to_return);
}

int32_t port_map_model::fetch_missing(two_tables& tables) {
  if (tables.pn_to_if.values == nullptr) {
    const int32_t status = ficon_get_pmap_pnif();
    if (status != 0) {
      log_error(
          [&] { return text_of("ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif %d\n", status); });
      return status;
    }
    tables.pn_to_if = cached(state.pn_to_logif);
  }
  if (tables.port_to_pn.values == nullptr) {
    const int32_t status = ficon_get_pmap_portpn();
    if (status != 0) {
      log_error([&] {
        return text_of("ficon_pmap_get_if_to_pnpa_index_with2pmaps(2894):failed to get pmap_portpn %d\n", status);
      });
      return status;
    }
    tables.port_to_pn = cached(state.port_to_pn);
  }
  return 0;
}

int32_t port_map_model::type_of(uint32_t if_index, uint8_t& type) {
  const int32_t status = services_.if_index_get_type(if_index, type);
  if (status != 0) {
    log_error([&] { return text_of("failed to get if type for if_index:%#x (%d)\n", if_index, status); });
    return status;
  }
  if (is_logical(type) || type == 1) return 0;
  log_error([&] { return text_of("if_index %#x not fc port. type = %d\n", if_index, type); });
  return 11;
}

int32_t port_map_model::slot_and_port_of(uint32_t if_index, uint8_t& slot, uint8_t& port) {
  int32_t status = services_.if_index_get_slot(if_index, slot);
  if (status != 0) {
    log_error([&] { return text_of("Failed to get slot for if_index %#x (%d)\n", if_index, status); });
    return status;
  }
  status = services_.if_index_get_port(if_index, port);
  if (status != 0) {
    log_error([&] { return text_of("Failed to get port for if_index %#x (%d)\n", if_index, status); });
  }
  return status;
}

int32_t port_map_model::number_of_port(uint8_t slot, uint8_t port, ficon_pmap_port_entry* entry, uint32_t* index,
                                       const two_tables& tables) {
  const int32_t status = slot_to_pnpa(slot, port, entry, index, [&] { return tables.port_to_pn; });
  if (status != 0) log_error([&] { return text_of("Invalid slot number for linecard %d (%d)\n", slot, status); });
  return status;
}

// A port in a port-channel has the number of its channel. When the service fails there is no answer, and no failure.
int32_t port_map_model::number_of_port_or_channel(uint32_t if_index, uint8_t slot, uint8_t port,
                                                  ficon_pmap_port_entry* entry, uint32_t* index, const two_tables& tables) {
  lagmap_port_query query = {if_index, 0};
  int32_t status = services_.lagmap_get_port(query);
  if (status == 0 && query.channel != 0) {
    log_error([&] { return text_of("if_index %#x is a port thats part of port-channel\n", if_index); });
    return number_of_logical(if_index, entry, index, tables, FICON_RC_LAG_MEMBER);
  }
  if (status != 0 && as_unsigned(status) != kLagmapNotMember) {
    log_error([&] { return text_of("lagmap_get_port failed: if_index:%#x,rc:%d\n", if_index, status); });
  } else {
    status = number_of_port(slot, port, entry, index, tables);
    if (status != 0) return status;
  }
  log_debug(text_of("if_index:%#x, slot:%dbase1, port:%dbase1, port-number:%d\n", if_index, slot + 1, port + 1, entry->pn));
  return 0;
}

int32_t port_map_model::ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, ficon_pmap_port_entry* entry,
                                                                   uint32_t* index, const uint32_t* pn_to_if,
                                                                   const ficon_pmap_port_entry* port_to_pn,
                                                                   int32_t skip_lag_check) {
  if (entry == nullptr) return as_signed(FICON_RC_INVALID_ARG);
  two_tables tables = {{pn_to_if, kPassedNumbers}, {port_to_pn, kPassedPorts}};
  int32_t status = fetch_missing(tables);
  if (status != 0) return status;
  uint8_t type = 0;
  status = type_of(if_index, type);
  if (status != 0) return status;
  if (is_logical(type)) return number_of_logical(if_index, entry, index, tables, FICON_RC_NOT_ASSOCIATED);
  uint8_t slot = 0;
  uint8_t port = 0;
  status = slot_and_port_of(if_index, slot, port);
  if (status != 0) return status;
  if (skip_lag_check != 0) return number_of_port(slot, port, entry, index, tables);
  return number_of_port_or_channel(if_index, slot, port, entry, index, tables);
}

int32_t port_map_model::ficon_pmap_get_if_to_pnpa_index_withpmap(uint32_t if_index, ficon_pmap_port_entry* entry,
                                                                 uint32_t* index, const uint32_t* pn_to_if,
                                                                 int32_t skip_lag_check) {
  return ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, entry, index, pn_to_if, nullptr, skip_lag_check);
}

int32_t port_map_model::ficon_pmap_get_if_to_pnpa_withpmap(uint32_t if_index, ficon_pmap_port_entry* entry,
                                                           const uint32_t* pn_to_if, int32_t skip_lag_check) {
  uint32_t index = 0;
  return ficon_pmap_get_if_to_pnpa_index_withpmap(if_index, entry, &index, pn_to_if, skip_lag_check);
}

int32_t port_map_model::ficon_pmap_get_if_to_pn_withpmap(uint32_t if_index, uint16_t* pn, const uint32_t* pn_to_if,
                                                         int32_t skip_lag_check) {
  ficon_pmap_port_entry entry = kNoEntry;
  const int32_t status = ficon_pmap_get_if_to_pnpa_withpmap(if_index, &entry, pn_to_if, skip_lag_check);
  if (status == 0) *pn = entry.pn;
  return status;
}

int32_t port_map_model::ficon_pmap_get_if_to_pn(uint32_t if_index, uint16_t* pn) {
  return ficon_pmap_get_if_to_pn_withpmap(if_index, pn, nullptr, 0);
}

int32_t port_map_model::ficon_pmap_get_if_to_pa(uint32_t if_index, uint16_t* pa) {
  ficon_pmap_port_entry entry = kNoEntry;
  const int32_t status = ficon_pmap_get_if_to_pnpa_withpmap(if_index, &entry, nullptr, 0);
  if (status == 0) *pa = entry.pa;
  return status;
}

int32_t port_map_model::ficon_pmap_get_if_to_index(uint32_t if_index, uint32_t* index) {
  ficon_pmap_port_entry entry = kNoEntry;
  return ficon_pmap_get_if_to_pnpa_index_withpmap(if_index, &entry, index, nullptr, 0);
}

int32_t port_map_model::ficon_pmap_get_if_to_index_with2pmaps(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                                                              const ficon_pmap_port_entry* port_to_pn,
                                                              int32_t skip_lag_check) {
  ficon_pmap_port_entry entry = kNoEntry;
  return ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, index, pn_to_if, port_to_pn, skip_lag_check);
}

// ---- iteration ----

// What both walks begin with: the index of an interface that has a number and an address.
int32_t port_map_model::place_of(uint32_t if_index, uint32_t* index) {
  ficon_pmap_port_entry entry = kNoEntry;
  const int32_t status = ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, index, nullptr, nullptr, 0);
  if (status != 0) return status;
  if (*index > 1023) return 11;
  if (entry.pn == 512 || entry.pa == 512) return as_signed(FICON_RC_INVALID_ARG);
  return 0;
}

bool port_map_model::is_numbered(uint32_t index) {
  const ficon_pmap_port_entry& entry = cached(state.port_to_pn).at(index);
  return entry.pn != 512 && entry.pa != 512;
}

int32_t port_map_model::interface_at(uint32_t line_card, uint32_t position, uint32_t* if_index) {
  uint8_t slot = 0;
  const int32_t status = ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(line_card), &slot);
  if (status != 0) return status;
  return services_.if_index_phy_fc_port_init(*if_index, slot, static_cast<uint8_t>(position));
}

int32_t port_map_model::ficon_pmap_get_next_if(uint32_t if_index, uint32_t* next_if_index) {
  uint32_t index = 0;
  int32_t status = place_of(if_index, &index);
  if (status != 0) return status;
  if (index == 1023) return as_signed(FICON_RC_PLATFORM);
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;
  uint32_t candidate = index + 1;
  if (!is_numbered(candidate)) {
    candidate = (index / 254 + 1) * 254;
    if (candidate > 1023) return as_signed(FICON_RC_PLATFORM);
    if (!is_numbered(candidate)) return as_signed(FICON_RC_PLATFORM);
  }
  return interface_at(candidate / 254, candidate % 254, next_if_index);
}

int32_t port_map_model::ficon_pmap_get_last_if(uint32_t if_index, uint32_t* last_if_index) {
  uint32_t index = 0;
  int32_t status = place_of(if_index, &index);
  if (status != 0) return status;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;
  const uint32_t line_card = index / 254;
  const uint32_t own_position = index - line_card * 254;
  uint32_t position = own_position - 1; // none is numbered
  for (uint32_t tried = 254; tried-- > own_position;) {
    if (!is_numbered(line_card * 254 + tried)) continue;
    position = tried;
    break;
  }
  return interface_at(line_card, position, last_if_index);
}

uint32_t port_map_model::ficon_pmap_get_pa_to_if(int32_t pa, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_to_pn(pa, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_to_if(pn, if_index);
}

uint32_t port_map_model::ficon_pmap_get_pa_vsan_to_if(int32_t pa, uint32_t vsan, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_vsan_to_pn(pa, vsan, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_vsan_to_if(pn, vsan, if_index);
}

uint32_t port_map_model::ficon_pmap_get_pa_to_if_fast(int32_t pa, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_to_pn_fast(pa, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_to_if_fast(pn, if_index);
}

uint32_t port_map_model::ficon_pmap_get_pa_vsan_to_if_fast(int32_t pa, uint32_t vsan, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_vsan_to_pn_fast(pa, vsan, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_vsan_to_if_fast(pn, vsan, if_index);
}

// ---- slot and port ----

int32_t port_map_model::ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag) {
  uint8_t type = 0;
  const int32_t status = type_of(if_index, type);
  if (status != 0) return status;
  *flag = is_logical(type) ? 1 : 0;
  return is_logical(type) ? 0 : slot_and_port_of(if_index, *slot, *port);
}

} // namespace chnsw_test
