// A port map index turned into its interface.
#include <libchnsw.h>
#include <platform/if_index.h>
#include <platform/portidx.h>

#include "port_map_tables.h"
#include "port_services.h"
#include "report.h"

namespace {

constexpr int32_t kLastIndex = FICON_PMAP_PORT_ENTRIES - 1;
constexpr int32_t kLastPhysicalIndex = FICON_PMAP_PHYS_ENTRIES - 1;

constexpr int kFetchLine = 2580;

// Oddity: a negative index is not refused; the low 8 bits of both are handed on.
uint8_t line_card_of(int32_t index) {
  return static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC);
}
uint8_t port_of(int32_t index) {
  return static_cast<uint8_t>(index % FICON_PMAP_PORTS_PER_LC);
}

// The interface bound to a port number, which is not range-checked here. Oddity: the report names the operation that
// clients call.
uint32_t look_up_bound_interface(uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if) {
  if (pn_to_if == nullptr) {
    const int32_t status = chnsw::fetch_numbers_or_report("ficon_pmap_get_index_to_if_withpmap", kFetchLine);
    if (status != 0) return static_cast<uint32_t>(status);
    pn_to_if = ficon_pmap_pn_to_logif;
  }
  *if_index = pn_to_if[pn];
  return *if_index != 0 ? 0 : FICON_RC_PLATFORM;
}

// A port that the port index service does not know, or cannot tell of, leaves no interface.
uint32_t check_port_index(uint32_t* if_index) {
  const uint32_t status = static_cast<uint32_t>(chnsw::find_port_index(*if_index));
  if (status == 0) return 0;
  *if_index = 0;
  return status == FICON_PORTIDX_NO_PORT ? uint32_t{FICON_RC_NO_IF} : status;
}

uint32_t check_port_channel(int32_t index, uint32_t* if_index) {
  int status = 0;
  switch (chnsw::port_channel_membership(*if_index, status)) {
    case chnsw::membership::none:
      return 0;
    case chnsw::membership::member:
      // "portthats" is what the field's log parsers match.
      ficon_log_debug("Index :%d is a portthats part of port-channel\n", index);
      *if_index = 0;
      return FICON_RC_LAG_MEMBER;
    case chnsw::membership::unknown:
      // Oddity: the interface stays in the result.
      ficon_log_error("lagmap_get_port failed: if_index:%#x\n", *if_index);
      return FICON_RC_PLATFORM;
  }
  __builtin_unreachable();
}

} // namespace

// Only the upper bound of the index is checked.
uint32_t ficon_pmap_get_index_to_if_withpmap(int32_t index, uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if) {
  if (index > kLastIndex) return FICON_RC_INVALID_ARG;
  if (index > kLastPhysicalIndex) {
    if (pn == FICON_PMAP_NO_NUMBER) return FICON_RC_INVALID_ARG;
    return look_up_bound_interface(pn, if_index, pn_to_if);
  }
  return static_cast<uint32_t>(chnsw::build_interface(line_card_of(index), port_of(index), if_index));
}

uint32_t ficon_pmap_get_index_to_if(int32_t index, uint32_t pn, uint32_t* if_index) {
  return ficon_pmap_get_index_to_if_withpmap(index, pn, if_index, nullptr);
}

uint32_t ficon_pmap_get_index_to_phyif(int32_t index, uint32_t* if_index) {
  if (index > kLastPhysicalIndex) return FICON_RC_INVALID_ARG;
  uint8_t slot = 0;
  int32_t status = ficonm_platform_lc_to_slot_b0(line_card_of(index), &slot);
  if (status != 0) return static_cast<uint32_t>(status);
  status = if_index_phy_fc_port_init(if_index, slot, port_of(index), 0);
  if (status != 0) {
    ficon_log_error("Failed to compute ifindex for index %d(%#x)\n", index, static_cast<uint32_t>(status));
    return static_cast<uint32_t>(status);
  }
  const uint32_t port_status = check_port_index(if_index);
  return port_status != 0 ? port_status : check_port_channel(index, if_index);
}
