// Port address to port number, and back.
#include "port_map_model.h"
#include "search.h"

namespace chnsw_test {

// Both directions begin with it.
uint32_t port_map_model::prepare_ports(asked_vsan& vsan, int32_t fast) {
  if (fast != 0) {
    if (vsan.address != nullptr) vsan.table_in_use = state.fastpath_got_vsan_port;
    return 0;
  }
  const int32_t fetched = ficon_get_pmap_portpn();
  return fetched != 0 ? as_unsigned(fetched) : fetch_vsans(vsan);
}

std::vector<port_met> port_map_model::ports_of_address(int32_t pa, asked_vsan& vsan) {
  std::vector<port_met> ports;
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1279; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pa != pa) continue;
    log_debug(text_of("ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(%d) pa(%d) (%d) %s\n", entry.pn, entry.pa, index,
                      text_of_vsans(entry).c_str()));
    ports.push_back(meet_port(vsan, index, entry, entry.pn, has_any_vsan(entry)));
  }
  return ports;
}

uint32_t port_map_model::ficon_pmap_get_pa_to_pn_withpvsan(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag,
                                                           int32_t fast) {
  if (pn == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  asked_vsan asked = {vsan};
  const uint32_t status = prepare_ports(asked, fast);
  if (status != 0) return status;
  if (pa != FICON_PORT_CUP && pa >= state.max_ficon_ports) return FICON_RC_PA_RANGE;
  std::vector<port_met> ports;
  if (pa == FICON_PORT_CUP)
    *pn = 254;
  else
    ports = ports_of_address(pa, asked);

  const uint32_t asked_for = static_cast<uint16_t>(pa);
  log_debug(text_of(
      "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(%d) Bound(%d) Bound PN(%d) Vsan(%d) In Vsan(%d) gvp(%d) "
      "vsan_pn(%d)\n",
      number_of(ports, &port_met::counts), number_of(ports, &port_met::bound),
      as_signed(last_of(ports, &port_met::bound, asked_for)), as_signed(asked.read), number_of(ports, &port_met::in_vsan),
      asked.table_in_use, as_signed(last_of(ports, &port_met::in_vsan, asked_for))));
  return hand_back_number("PA", ports, asked, asked_for, pn, flag);
}

std::vector<port_met> port_map_model::ports_of_number(int32_t pn, asked_vsan& vsan) const {
  std::vector<port_met> ports;
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1279; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pn == pn) ports.push_back(meet_port(vsan, index, entry, entry.pa, true));
  }
  return ports;
}

uint32_t port_map_model::ficon_pmap_get_pn_to_pa_withpvsan(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag,
                                                           int32_t fast) {
  if (pa == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  asked_vsan asked = {vsan};
  const uint32_t status = prepare_ports(asked, fast);
  if (status != 0) return status;
  if (pn == FICON_PORT_CUP) {
    *pa = 254;
    return FICON_RC_PLATFORM;
  }
  if (pn >= state.max_ficon_ports) return FICON_RC_PN_RANGE;
  return hand_back_number("PN", ports_of_number(pn, asked), asked, static_cast<uint16_t>(pn), pa, flag);
}

// asked_for: handed back when no port counts.
uint32_t port_map_model::hand_back_number(const std::string& search, const std::vector<port_met>& ports,
                                          const asked_vsan& vsan, uint32_t asked_for, uint16_t* number, uint32_t* flag) {
  const chosen_port chosen = choose_port(ports, vsan, FICON_RC_PLATFORM);
  decided.insert(search + ": " + chosen.decision);
  if (chosen.answer) *number = static_cast<uint16_t>(*chosen.answer);
  if (number_of(ports, &port_met::counts) == 0) *number = static_cast<uint16_t>(asked_for);
  *flag = chosen.flag;
  return chosen.status;
}

// ---- forms ----

uint32_t port_map_model::ficon_pmap_get_pa_to_pn(int32_t pa, uint16_t* pn) {
  uint32_t flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, nullptr, pn, &flag, 0);
}

uint32_t port_map_model::ficon_pmap_get_pa_vsan_to_pn(int32_t pa, uint32_t vsan, uint16_t* pn) {
  uint32_t flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, &vsan, pn, &flag, 0);
}

uint32_t port_map_model::ficon_pmap_get_pa_to_pn_fast(int32_t pa, uint16_t* pn) {
  uint32_t flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, nullptr, pn, &flag, 1);
}

uint32_t port_map_model::ficon_pmap_get_pa_vsan_to_pn_fast(int32_t pa, uint32_t vsan, uint16_t* pn) {
  uint32_t flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, &vsan, pn, &flag, 1);
}

uint32_t port_map_model::ficon_pmap_get_pn_to_pa(int32_t pn, uint16_t* pa) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, nullptr, pa, &flag, 0);
}

uint32_t port_map_model::ficon_pmap_get_pn_vsan_to_pa(int32_t pn, uint32_t vsan, uint16_t* pa) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, &vsan, pa, &flag, 0);
}

uint32_t port_map_model::ficon_pmap_get_pn_to_pa_fast(int32_t pn, uint16_t* pa) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, nullptr, pa, &flag, 1);
}

uint32_t port_map_model::ficon_pmap_get_pn_vsan_to_pa_fast(int32_t pn, uint32_t vsan, uint16_t* pa) {
  uint32_t flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, &vsan, pa, &flag, 1);
}

} // namespace chnsw_test
