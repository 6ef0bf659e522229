// Index and port number to interface, to a physical one too.
#include "port_map_model.h"
#include "search.h"

namespace chnsw_test {

// ---- index to interface ----

uint32_t port_map_model::bound_interface(uint32_t pn, uint32_t* if_index, table<uint32_t> pn_to_if) {
  if (pn_to_if.values == nullptr) {
    const int32_t status = ficon_get_pmap_pnif();
    if (status != 0) {
      log_error([&] { return text_of("ficon_pmap_get_index_to_if_withpmap(2580):failed to get pmap_pnif %d\n", status); });
      return as_unsigned(status);
    }
    pn_to_if = cached(state.pn_to_logif);
  }
  *if_index = pn_to_if.at(pn);
  return *if_index != 0 ? 0 : FICON_RC_PLATFORM;
}

uint32_t port_map_model::index_to_if(int32_t index, uint32_t pn, uint32_t* if_index, table<uint32_t> pn_to_if) {
  if (index > 1279) return FICON_RC_INVALID_ARG;
  if (index <= 1023) {
    const int32_t line_card = index / 254;
    uint8_t slot = 0;
    const int32_t status = ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(line_card), &slot);
    if (status != 0) return as_unsigned(status);
    return as_unsigned(services_.if_index_phy_fc_port_init(*if_index, slot, static_cast<uint8_t>(index - line_card * 254)));
  }
  if (pn == 512) return FICON_RC_INVALID_ARG;
  return bound_interface(pn, if_index, pn_to_if);
}

uint32_t port_map_model::ficon_pmap_get_index_to_if_withpmap(int32_t index, uint32_t pn, uint32_t* if_index,
                                                             const uint32_t* pn_to_if) {
  return index_to_if(index, pn, if_index, {pn_to_if, kPassedNumbers});
}

uint32_t port_map_model::ficon_pmap_get_index_to_if(int32_t index, uint32_t pn, uint32_t* if_index) {
  return ficon_pmap_get_index_to_if_withpmap(index, pn, if_index, nullptr);
}

uint32_t port_map_model::ficon_pmap_get_index_to_phyif(int32_t index, uint32_t* if_index) {
  if (index > 1023) return FICON_RC_INVALID_ARG;
  const int32_t line_card = index / 254;
  uint8_t slot = 0;
  int32_t status = ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(line_card), &slot);
  if (status != 0) return as_unsigned(status);
  status = services_.if_index_phy_fc_port_init(*if_index, slot, static_cast<uint8_t>(index - line_card * 254));
  if (status != 0) {
    log_error([&] { return text_of("Failed to compute ifindex for index %d(%#x)\n", index, as_unsigned(status)); });
    return as_unsigned(status);
  }
  status = find_port(*if_index);
  if (status != 0) {
    *if_index = 0;
    return as_unsigned(status) == kPortidxNoPort ? uint32_t{FICON_RC_NO_IF} : as_unsigned(status);
  }
  return check_port_channel(index, if_index);
}

int32_t port_map_model::find_port(uint32_t if_index) {
  const int32_t status = services_.portidx_port_by_if_index(if_index);
  if (status != 0) log_debug(text_of("portidx lookup failed for IfIndex %x with err (%d)\n", if_index, status));
  return status;
}

// A port in a port-channel is none of its own.
uint32_t port_map_model::check_port_channel(int32_t index, uint32_t* if_index) {
  lagmap_port_query query = {*if_index, 0};
  const int32_t status = services_.lagmap_get_port(query);
  if (status == 0 && query.channel != 0) {
    log_debug(text_of("Index :%d is a portthats part of port-channel\n", index));
    *if_index = 0;
    return FICON_RC_LAG_MEMBER;
  }
  if (status == 0 || as_unsigned(status) == kLagmapNotMember) return 0;
  log_error([&] { return text_of("lagmap_get_port failed: if_index:%#x\n", *if_index); });
  return FICON_RC_PLATFORM;
}

// ---- number to interface ----

uint32_t port_map_model::prepare_numbers_and_ports(asked_vsan& vsan, int32_t fast) {
  const int32_t fetched = fast != 0 ? 0 : ficon_get_pmap_pnif();
  return fetched != 0 ? as_unsigned(fetched) : prepare_ports(vsan, fast);
}

bool port_map_model::answers_for_itself(int32_t pn, uint32_t if_index) {
  if (find_port(if_index) != 0) return false;
  lagmap_port_query query = {if_index, 0};
  const int32_t status = services_.lagmap_get_port(query);
  if (status == 0 && query.channel != 0) {
    log_debug(text_of("Port Number:%d is associated with a port thats part of port-channel\n", pn));
    return false;
  }
  if (status == 0 || as_unsigned(status) == kLagmapNotMember) return true;
  log_error([&] { return text_of("lagmap_get_port failed: if_index:%#x\n", if_index); });
  return false;
}

std::vector<port_met> port_map_model::interfaces_of_number(int32_t pn, asked_vsan& vsan, table<uint32_t> pn_to_if) {
  std::vector<port_met> ports;
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1279; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pn != pn || !has_any_vsan(entry)) continue;
    uint32_t interface = 0;
    if (index_to_if(index, static_cast<uint32_t>(pn), &interface, pn_to_if) != 0) continue;
    if (!answers_for_itself(pn, interface)) continue;
    log_debug(text_of("ficon_pmap_get_pn_to_if_withpvsan(2254) pn(%d) inst if(0x%x) %s\n", entry.pn, interface,
                      text_of_vsans(entry).c_str()));
    ports.push_back(meet_port(vsan, index, entry, interface, true));
  }
  return ports;
}

uint32_t port_map_model::ficon_pmap_get_pn_to_if_withpvsan(int32_t pn, const uint32_t* vsan, uint32_t* if_index,
                                                           uint32_t* flag, int32_t fast) {
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  asked_vsan asked = {vsan};
  const uint32_t status = prepare_numbers_and_ports(asked, fast);
  if (status != 0) return status;
  if (pn >= state.max_ficon_ports) return FICON_RC_PN_RANGE;

  const auto pn_to_logif = cached(state.pn_to_logif);
  if (pn_to_logif.at(pn) != 0) {
    decided.insert("PN to interface: bound to one");
    *if_index = pn_to_logif.at(pn);
    return 0;
  }
  const auto ports = interfaces_of_number(pn, asked, pn_to_logif);
  log_debug(
      text_of("ficon_pmap_get_pn_to_if_withpvsan(2286): Count(%d) Bound(%d) Bound If(%#x) Vsan(%d) In Vsan(%d) gvp(%d) "
              "vsan_if(%#x)\n",
              number_of(ports, &port_met::counts), number_of(ports, &port_met::bound), last_of(ports, &port_met::bound, 0),
              as_signed(asked.read), number_of(ports, &port_met::in_vsan), asked.table_in_use,
              last_of(ports, &port_met::in_vsan, 0)));
  return hand_back_interface("PN to interface", ports, asked, if_index, flag);
}

uint32_t port_map_model::hand_back_interface(const std::string& search, const std::vector<port_met>& ports,
                                             const asked_vsan& vsan, uint32_t* if_index, uint32_t* flag) {
  const chosen_port chosen = choose_port(ports, vsan, FICON_RC_NO_IF);
  decided.insert(search + ": " + chosen.decision);
  *if_index = chosen.answer.value_or(0);
  *flag = chosen.flag;
  return chosen.status;
}

uint32_t port_map_model::ficon_pmap_get_pn_vsan_to_if_fast(int32_t pn, uint32_t vsan, uint32_t* if_index) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, &vsan, if_index, &flag, 1);
}

uint32_t port_map_model::ficon_pmap_get_pn_to_if_fast(int32_t pn, uint32_t* if_index) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, nullptr, if_index, &flag, 1);
}

uint32_t port_map_model::ficon_pmap_get_pn_vsan_to_if(int32_t pn, uint32_t vsan, uint32_t* if_index) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, &vsan, if_index, &flag, 0);
}

uint32_t port_map_model::ficon_pmap_get_pn_to_if(int32_t pn, uint32_t* if_index) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_if_withpvsan(pn, nullptr, if_index, &flag, 0);
}

// ---- number to physical interface ----

// What a caller that passes no table gets: none when it was never fetched.
port_map_model::table<uint32_t> port_map_model::cached_or_null() const {
  if (!state.pn_to_logif) return {nullptr, 0};
  return {state.pn_to_logif->data(), state.pn_to_logif->size()};
}

uint32_t port_map_model::fetch_for_ports(int32_t pn, int32_t pn_bound, table<uint32_t>& pn_to_if) {
  int32_t fetched = ficon_get_pmap_portpn();
  if (fetched != 0) {
    log_error(
        [&] { return text_of("ficon_pmap_get_pn_to_phyif_withpvsan(3447):failed to get pmap_portpn %d\n", fetched); });
    return as_unsigned(fetched);
  }
  if (pn >= pn_bound) return FICON_RC_PN_RANGE;
  if (pn_to_if.values != nullptr) return 0;
  fetched = ficon_get_pmap_pnif();
  if (fetched != 0) {
    log_error([&] { return text_of("ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif %d\n", fetched); });
    return as_unsigned(fetched);
  }
  pn_to_if = cached(state.pn_to_logif);
  return 0;
}

bool port_map_model::is_without_port(int32_t pn) const {
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1024; index <= 1279; ++index) {
    if (port_to_pn.at(index).pn == pn) return true;
  }
  return false;
}

std::vector<port_met> port_map_model::physical_ports_of_number(int32_t pn, asked_vsan& vsan, table<uint32_t> pn_to_if) {
  std::vector<port_met> ports;
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1023; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pn != pn) continue;
    uint32_t interface = 0;
    if (index_to_if(index, static_cast<uint32_t>(pn), &interface, pn_to_if) != 0) continue;
    if (find_port(interface) == 0) ports.push_back(meet_port(vsan, index, entry, interface, true));
  }
  return ports;
}

uint32_t port_map_model::pn_to_phyif(int32_t pn, const uint32_t* vsan, int32_t pn_bound, uint32_t* if_index,
                                     table<uint32_t> pn_to_if, uint32_t* flag) {
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  asked_vsan asked = {vsan};
  uint32_t status = fetch_vsans(asked);
  if (status != 0) return status;
  status = fetch_for_ports(pn, pn_bound, pn_to_if);
  if (status != 0) return status;
  if (pn_to_if.at(pn) != 0) {
    decided.insert("PN to port: bound to an interface");
    *if_index = pn_to_if.at(pn);
    return 0;
  }
  if (is_without_port(pn)) {
    decided.insert("PN to port: without a port");
    *if_index = 0;
    return 0;
  }
  return hand_back_interface("PN to port", physical_ports_of_number(pn, asked, pn_to_if), asked, if_index, flag);
}

uint32_t port_map_model::ficon_pmap_get_pn_to_phyif_withpvsan(int32_t pn, const uint32_t* vsan, int32_t pn_bound,
                                                              uint32_t* if_index, const uint32_t* pn_to_if,
                                                              uint32_t* flag) {
  return pn_to_phyif(pn, vsan, pn_bound, if_index, {pn_to_if, kPassedNumbers}, flag);
}

uint32_t port_map_model::ficon_pmap_get_pn_to_phyif(int32_t pn, uint32_t* if_index, int32_t pn_bound,
                                                    const uint32_t* pn_to_if) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_phyif_withpvsan(pn, nullptr, pn_bound, if_index, pn_to_if, &flag);
}

uint32_t port_map_model::ficon_pmap_get_pn_vsan_to_phyif(int32_t pn, uint32_t vsan, uint32_t* if_index, int32_t pn_bound,
                                                         const uint32_t* pn_to_if) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_phyif_withpvsan(pn, &vsan, pn_bound, if_index, pn_to_if, &flag);
}

uint32_t port_map_model::ficon_pmap_get_pa_to_phyif(int32_t pa, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_to_pn(pa, &pn);
  if (status != 0) return status;
  uint32_t flag;
  return pn_to_phyif(pn, nullptr, state.max_ficon_ports, if_index, cached_or_null(), &flag);
}

uint32_t port_map_model::ficon_pmap_get_pa_vsan_to_phyif(int32_t pa, uint32_t vsan, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_vsan_to_pn(pa, vsan, &pn);
  if (status != 0) return status;
  uint32_t flag;
  return pn_to_phyif(pn, &vsan, state.max_ficon_ports, if_index, cached_or_null(), &flag);
}

} // namespace chnsw_test
