// A port map index turned into its interface.
#include <libchnsw.h>

#include "port_services.h"
#include "report.h"

namespace {

constexpr int32_t kLastIndex = FICON_PMAP_PORT_ENTRIES - 1;
constexpr int32_t kLastPhysicalIndex = FICON_PMAP_PHYS_ENTRIES - 1;

constexpr int kFetchLine = 2580;

// The slot of an index's line card. Returns the conversion's status.
uint32_t slot_of_index(int32_t index, uint8_t* slot) {
  return static_cast<uint32_t>(ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC), slot));
}

// Builds a physical port's interface in the caller's own result.
uint32_t build_interface(int32_t index, uint8_t slot, uint32_t* if_index) {
  const uint8_t port = static_cast<uint8_t>(index % FICON_PMAP_PORTS_PER_LC);
  return static_cast<uint32_t>(if_index_phy_fc_port_init(if_index, slot, port, 0));
}

// The interface bound to a port number, which is not range-checked here.
uint32_t ficon_pmap_pnif_lookup(uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if) {
  if (pn_to_if == nullptr) {
    const int32_t status = ficon_get_pmap_pnif();
    if (status != 0) {
      ficon_log_error("%s(%d):failed to get pmap_pnif %d\n", "ficon_pmap_get_index_to_if_withpmap", kFetchLine, status);
      return static_cast<uint32_t>(status);
    }
    pn_to_if = ficon_pmap_pn_to_logif;
  }
  *if_index = pn_to_if[pn];
  return *if_index != 0 ? 0 : FICON_RC_PLATFORM;
}

} // namespace

// Only the upper bound of the index is checked.
uint32_t ficon_pmap_get_index_to_if_withpmap(int32_t index, uint32_t pn, uint32_t* if_index, const uint32_t* pn_to_if) {
  if (index > kLastIndex) return FICON_RC_INVALID_ARG;
  if (index > kLastPhysicalIndex) {
    if (pn == FICON_PMAP_NO_NUMBER) return FICON_RC_INVALID_ARG;
    return ficon_pmap_pnif_lookup(pn, if_index, pn_to_if);
  }
  uint8_t slot = 0;
  const uint32_t status = slot_of_index(index, &slot);
  if (status != 0) return status;
  return build_interface(index, slot, if_index);
}

uint32_t ficon_pmap_get_index_to_if(int32_t index, uint32_t pn, uint32_t* if_index) {
  return ficon_pmap_get_index_to_if_withpmap(index, pn, if_index, nullptr);
}

uint32_t ficon_pmap_get_index_to_phyif(int32_t index, uint32_t* if_index) {
  if (index > kLastPhysicalIndex) return FICON_RC_INVALID_ARG;
  uint8_t slot = 0;
  const uint32_t slot_status = slot_of_index(index, &slot);
  if (slot_status != 0) return slot_status;
  const uint32_t build_status = build_interface(index, slot, if_index);
  if (build_status != 0) {
    ficon_log_error("Failed to compute ifindex for index %d(%#x)\n", index, build_status);
    return build_status;
  }

  const uint32_t port_status = static_cast<uint32_t>(chnsw::find_port_index(*if_index));
  if (port_status != 0) {
    *if_index = 0;
    return port_status == FICON_PORTIDX_NO_PORT ? uint32_t{FICON_RC_NO_IF} : port_status;
  }

  int lag_status = 0;
  switch (chnsw::port_channel_membership(*if_index, lag_status)) {
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
