// The port map's operations as one would write them first.
#include "plain_forms.h"

#include <cerrno>

#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/memacct.h>
#include <platform/portidx.h>

#include "report.h"

namespace {

bool lists_any_vsan(const ficon_pmap_port_entry& entry) {
  for (int slot = 0; slot < FICON_PMAP_VSAN_SLOTS; ++slot) {
    if (entry.vsans[slot] != 0) return true;
  }
  return false;
}

bool lists_vsan(const ficon_pmap_port_entry& entry, uint32_t vsan) {
  for (int slot = 0; slot < FICON_PMAP_VSAN_SLOTS; ++slot) {
    if (entry.vsans[slot] == static_cast<uint16_t>(vsan)) return true;
  }
  return false;
}

// What a search found. The answers are as wide as the widest of them.
struct found {
  int count = 0;
  int bound = 0;
  int in_vsan = 0;
  int use_vsan_table = 0;
  uint32_t vsan = 0;
  uint32_t last;
  uint32_t last_bound;
  uint32_t last_in_vsan;

  found(const uint32_t* given_vsan, uint32_t answer_before)
      : use_vsan_table(given_vsan != nullptr ? fastpath_got_vsan_port : 0),
        last(answer_before),
        last_bound(answer_before),
        last_in_vsan(answer_before) {}
};

void count_vsan(found& found, const uint32_t* vsan, int index, const ficon_pmap_port_entry& entry, uint32_t answer) {
  if (vsan == nullptr) return;
  found.vsan = *vsan;
  if (found.use_vsan_table != 0) {
    if (ficon_pmap_port_to_vsan[index] != found.vsan) return;
    ++found.in_vsan;
    found.last_in_vsan = answer;
  }
  if (lists_vsan(entry, found.vsan)) {
    ++found.bound;
    found.last_bound = answer;
  }
}

enum class choice { one, none, none_in_vsan, several, lowest_of_several };

choice choose(const found& found, const uint32_t* vsan, uint32_t& answer) {
  answer = found.last;
  if (found.count == 1) return choice::one;
  if (found.count == 0) return choice::none;
  if (vsan == nullptr) return choice::several;
  answer = found.last_in_vsan;
  if (found.in_vsan == 1) return choice::one;
  if (found.in_vsan == 0 && found.use_vsan_table != 0) return choice::none_in_vsan;
  if (found.in_vsan != 0 && found.bound == 0) return choice::lowest_of_several;
  answer = found.last_bound;
  if (found.bound == 0) return choice::none_in_vsan;
  return found.bound == 1 ? choice::one : choice::several;
}

uint32_t store_number(const found& found, const uint32_t* vsan, int32_t searched, uint16_t* number, uint32_t* flag) {
  uint32_t answer = 0;
  switch (choose(found, vsan, answer)) {
    case choice::one:
      *number = static_cast<uint16_t>(answer);
      return 0;
    case choice::none:
      *number = static_cast<uint16_t>(searched);
      return FICON_RC_PLATFORM;
    case choice::none_in_vsan:
      return FICON_RC_PLATFORM;
    case choice::several:
      return FICON_RC_MULTI_IF;
    case choice::lowest_of_several:
      *number = static_cast<uint16_t>(answer);
      *flag = 0;
      return FICON_RC_MULTI_IF;
  }
  __builtin_unreachable();
}

uint32_t store_interface(const found& found, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag) {
  uint32_t answer = 0;
  const choice chosen = choose(found, vsan, answer);
  const bool answers = chosen == choice::one || chosen == choice::lowest_of_several;
  *if_index = answers ? answer : 0;
  if (chosen == choice::lowest_of_several) *flag = 0;
  if (chosen == choice::one) return 0;
  return chosen == choice::none || chosen == choice::none_in_vsan ? FICON_RC_NO_IF : FICON_RC_MULTI_IF;
}

// The interface of a port that is there and in no port-channel, or 0.
uint32_t interface_of(int index, int32_t pn) {
  uint32_t if_index = 0;
  if (ficon_pmap_get_index_to_if_withpmap(index, static_cast<uint32_t>(pn), &if_index, ficon_pmap_pn_to_logif) != 0) {
    return 0;
  }
  uint16_t port_index = 0;
  const int port_status = portidx_port_by_if_index(if_index, &port_index);
  if (port_status != 0) {
    ficon_log_debug("portidx lookup failed for IfIndex %x with err (%d)\n", if_index, port_status);
    return 0;
  }
  lagmap_port_query query = {if_index, 0};
  const uint32_t lag_status = static_cast<uint32_t>(lagmap_get_port(&query));
  if (lag_status == 0 && query.channel != 0) {
    ficon_log_debug("Port Number:%d is associated with a port thats part of port-channel\n", pn);
    return 0;
  }
  if (lag_status != 0 && lag_status != FICON_LAGMAP_NOT_MEMBER) {
    ficon_log_error("lagmap_get_port failed: if_index:%#x\n", if_index);
    return 0;
  }
  return if_index;
}

void* allocate(uint32_t type, uint32_t size, int line) {
  void* const block = memacct_alloc(LIBCHNSW_MEM_LIB_ID, type, size);
  if (block == nullptr) std::printf("Warning! Malloc Failure in %s[%d] for size %d\n", chnsw::kSourcePath, line, size);
  return block;
}

// What the chassis is, by the cached platform record; its type is asked anew. Returns 0 or FICON_RC_PLATFORM.
int32_t read_chassis(uint8_t* num_slots, int32_t* type) {
  ficon_platform_info info;
  if (libchnsw_pinfo != nullptr) {
    info = *libchnsw_pinfo;
  } else if (ficon_get_platform_info(&info) != 0) {
    return FICON_RC_PLATFORM;
  }
  *num_slots = info.num_slots;
  *type = -1;
  if (hwinv_get_chassis_type(type) == 0) return 0;
  ficon_log_error("hwinv_get_chassis_type failed, errno = %d", errno);
  return FICON_RC_PLATFORM;
}

// The first of the two supervisor slots; beyond all slots when there are none.
int first_supervisor(uint8_t num_slots, int32_t type) {
  switch (num_slots) {
    case 6:
      return type == 34 ? 2 : 4;
    case 9:
    case 10:
      return 4;
    case 13:
      return 6;
    case 18:
      return 8;
    default:
      return 256;
  }
}

int32_t line_card_to_slot(int line_card, uint8_t* slot) {
  uint8_t num_slots = 0;
  int32_t type = 0;
  const int32_t status = read_chassis(&num_slots, &type);
  if (status != 0) return status;
  const int line_cards = num_slots > 2 ? num_slots - 2 : num_slots;
  if (line_cards <= line_card) return FICON_RC_INVALID_ARG;
  *slot = static_cast<uint8_t>(line_card < first_supervisor(num_slots, type) ? line_card : line_card + 2);
  return 0;
}

int32_t slot_to_line_card(uint8_t slot, uint8_t* line_card) {
  uint8_t num_slots = 0;
  int32_t type = 0;
  const int32_t status = read_chassis(&num_slots, &type);
  if (status != 0) return status;
  if (num_slots <= slot) return FICON_RC_INVALID_ARG;
  const int supervisor = first_supervisor(num_slots, type);
  if (slot < supervisor) {
    *line_card = slot;
    return 0;
  }
  if (slot <= supervisor + 1) return FICON_RC_INVALID_ARG;
  *line_card = static_cast<uint8_t>(slot - 2);
  return 0;
}

// The interface of a physical port that is there and in no port-channel.
uint32_t index_to_physical_interface(int index, uint32_t* if_index) {
  uint8_t slot = 0;
  int32_t status = line_card_to_slot(index / FICON_PMAP_PORTS_PER_LC, &slot);
  if (status != 0) return static_cast<uint32_t>(status);
  status = if_index_phy_fc_port_init(if_index, slot, static_cast<uint8_t>(index % FICON_PMAP_PORTS_PER_LC), 0);
  if (status != 0) {
    ficon_log_error("Failed to compute ifindex for index %d(%#x)\n", index, static_cast<uint32_t>(status));
    return static_cast<uint32_t>(status);
  }
  uint16_t port_index = 0;
  status = portidx_port_by_if_index(*if_index, &port_index);
  if (status != 0) {
    ficon_log_debug("portidx lookup failed for IfIndex %x with err (%d)\n", *if_index, status);
    *if_index = 0;
    return static_cast<uint32_t>(status) == FICON_PORTIDX_NO_PORT ? uint32_t{FICON_RC_NO_IF}
                                                                  : static_cast<uint32_t>(status);
  }
  lagmap_port_query query = {*if_index, 0};
  const uint32_t lag_status = static_cast<uint32_t>(lagmap_get_port(&query));
  if (lag_status == 0 && query.channel != 0) {
    ficon_log_debug("Index :%d is a portthats part of port-channel\n", index);
    *if_index = 0;
    return FICON_RC_LAG_MEMBER;
  }
  if (lag_status == 0 || lag_status == FICON_LAGMAP_NOT_MEMBER) return 0;
  ficon_log_error("lagmap_get_port failed: if_index:%#x\n", *if_index);
  return FICON_RC_PLATFORM;
}

// An interface that has a number of its own, not by its slot.
int32_t bound_number(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index, const uint32_t* pn_to_if,
                     const ficon_pmap_port_entry* port_to_pn, int32_t not_found) {
  for (int32_t pn = 0; pn < MAX_FICON_PORTS; ++pn) {
    if (pn_to_if[pn] != if_index) continue;
    entry->pn = static_cast<uint16_t>(pn);
    ficon_log_debug("Found ifindex in pn to logif map for : %#x\n ", if_index);
    for (uint32_t further = FICON_PMAP_PHYS_ENTRIES; further < FICON_PMAP_PORT_ENTRIES; ++further) {
      if (port_to_pn[further].pn != pn) continue;
      *index = further;
      entry->pa = port_to_pn[further].pa;
      return 0;
    }
    ficon_log_debug("if_index:%#x not reserved\n", if_index);
    break;
  }
  ficon_log_debug("if_index:%#x not associated\n", if_index);
  return not_found;
}

bool is_numbered(const ficon_pmap_port_entry& entry) {
  return entry.pn != FICON_PMAP_NO_NUMBER && entry.pa != FICON_PMAP_NO_NUMBER;
}

// The port map index and the entry of a physical interface that is in no port-channel.
int32_t find_entry(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index) {
  int32_t status = ficon_get_pmap_pnif();
  if (status != 0) return status;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;
  uint8_t type = 0;
  status = if_index_get_type(if_index, &type);
  if (status != 0) return status;
  if (type != IF_TYPE_FC_PORT) return FICON_RC_NOT_FC_PORT;
  uint8_t slot = 0;
  status = if_index_get_slot(if_index, &slot);
  if (status != 0) return status;
  uint8_t port = 0;
  status = if_index_get_port(if_index, &port);
  if (status != 0) return status;
  lagmap_port_query query = {if_index, 0};
  const uint32_t lag_status = static_cast<uint32_t>(lagmap_get_port(&query));
  if (lag_status == 0 && query.channel != 0) return FICON_RC_LAG_MEMBER;
  if (lag_status != 0 && lag_status != FICON_LAGMAP_NOT_MEMBER) return FICON_RC_PLATFORM;
  status = ficonm_platform_slot_to_pnpa_index_withpmap(slot, port, entry, index, ficon_pmap_port_to_pn);
  if (status != 0) return status;
  ficon_log_debug("if_index:%#x, slot:%dbase1, port:%dbase1, port-number:%d\n", if_index, slot + 1, port + 1, entry->pn);
  return 0;
}

} // namespace

uint32_t plain::pa_to_pn_fast(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag) {
  constexpr char kName[] = "ficon_pmap_get_pa_to_pn_withpvsan";
  if (pn == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  found found(vsan, static_cast<uint16_t>(pa));
  if (pa == FICON_PORT_CUP) {
    *pn = FICON_PORT_CUP;
  } else {
    if (pa >= MAX_FICON_PORTS) return FICON_RC_PA_RANGE;
    for (int index = FICON_PMAP_PORT_ENTRIES - 1; index >= 0; --index) {
      const ficon_pmap_port_entry& entry = ficon_pmap_port_to_pn[index];
      if (entry.pa != pa) continue;
      found.last = entry.pn;
      if (lists_any_vsan(entry)) ++found.count;
      ficon_log_debug("%s(%d) pn(%d) pa(%d) (%d) vsans(%d %d %d %d %d %d %d %d)\n", kName, 1861, entry.pn, entry.pa, index,
                      entry.vsans[0], entry.vsans[1], entry.vsans[2], entry.vsans[3], entry.vsans[4], entry.vsans[5],
                      entry.vsans[6], entry.vsans[7]);
      count_vsan(found, vsan, index, entry, entry.pn);
    }
  }
  ficon_log_debug("%s(%d): Count(%d) Bound(%d) Bound PN(%d) Vsan(%d) In Vsan(%d) gvp(%d) vsan_pn(%d)\n", kName, 1890,
                  found.count, found.bound, found.last_bound, found.vsan, found.in_vsan, found.use_vsan_table,
                  found.last_in_vsan);
  return store_number(found, vsan, pa, pn, flag);
}

uint32_t plain::pn_to_pa_fast(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag) {
  if (pa == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  found found(vsan, static_cast<uint16_t>(pn));
  if (pn == FICON_PORT_CUP) {
    *pa = FICON_PORT_CUP;
    return FICON_RC_PLATFORM;
  }
  if (pn >= MAX_FICON_PORTS) return FICON_RC_PN_RANGE;
  for (int index = FICON_PMAP_PORT_ENTRIES - 1; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = ficon_pmap_port_to_pn[index];
    if (entry.pn != pn) continue;
    found.last = entry.pa;
    ++found.count;
    count_vsan(found, vsan, index, entry, entry.pa);
  }
  return store_number(found, vsan, pn, pa, flag);
}

uint32_t plain::pn_to_if_fast(int32_t pn, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag) {
  constexpr char kName[] = "ficon_pmap_get_pn_to_if_withpvsan";
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;
  found found(vsan, 0);
  if (pn >= MAX_FICON_PORTS) return FICON_RC_PN_RANGE;
  if (ficon_pmap_pn_to_logif[pn] != 0) {
    *if_index = ficon_pmap_pn_to_logif[pn];
    return 0;
  }
  for (int index = FICON_PMAP_PORT_ENTRIES - 1; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = ficon_pmap_port_to_pn[index];
    if (entry.pn != pn || !lists_any_vsan(entry)) continue;
    const uint32_t interface = interface_of(index, pn);
    if (interface == 0) continue;
    ++found.count;
    found.last = interface;
    ficon_log_debug("%s(%d) pn(%d) inst if(0x%x) vsans(%d %d %d %d %d %d %d %d)\n", kName, 2254, entry.pn, interface,
                    entry.vsans[0], entry.vsans[1], entry.vsans[2], entry.vsans[3], entry.vsans[4], entry.vsans[5],
                    entry.vsans[6], entry.vsans[7]);
    count_vsan(found, vsan, index, entry, interface);
  }
  ficon_log_debug("%s(%d): Count(%d) Bound(%d) Bound If(%#x) Vsan(%d) In Vsan(%d) gvp(%d) vsan_if(%#x)\n", kName, 2286,
                  found.count, found.bound, found.last_bound, found.vsan, found.in_vsan, found.use_vsan_table,
                  found.last_in_vsan);
  return store_interface(found, vsan, if_index, flag);
}

uint32_t plain::pa_to_if_fast(int32_t pa, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag) {
  uint16_t pn = 0;
  const uint32_t status = pa_to_pn_fast(pa, vsan, &pn, flag);
  return status != 0 ? status : pn_to_if_fast(pn, vsan, if_index, flag);
}

int32_t plain::port_to_pn_init(const layout& layout, int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count,
                               const uint16_t* pa_to_pn) {
  for (int i = 0; i < count; ++i) {
    entries[i].pn = FICON_PMAP_NO_NUMBER;
    entries[i].pa = FICON_PMAP_NO_NUMBER;
    for (int slot = 0; slot < FICON_PMAP_VSAN_SLOTS; ++slot) entries[i].vsans[slot] = 0;
  }
  ficon_platform_info info;
  int32_t chassis_type = -1;
  if (get_platform_info(&info) != 0) return -1;
  if (hwinv_get_chassis_type(&chassis_type) != 0) return -2;
  ficon_log_debug("%s(%d): Num Slots: %d Chassis Type: %d\n", "ficon_port_to_pn_init", __LINE__, info.num_slots,
                  chassis_type);
  for (int group = 0; group < layout.groups; ++group) {
    for (int k = 0; k < layout.numbers; ++k) {
      entries[group * layout.stride + k].pn = static_cast<uint16_t>(group * layout.numbers + k);
    }
  }
  for (int k = 0; k < FICON_PMAP_LOGICAL_PNS; ++k) {
    entries[FICON_PMAP_PHYS_ENTRIES + k].pn = static_cast<uint16_t>(layout.first_other + k);
  }
  for (int i = 0; i < count; ++i) {
    for (int pa = 0; pa < pa_count; ++pa) {
      if (pa_to_pn[pa] != entries[i].pn) continue;
      entries[i].pa = static_cast<uint16_t>(pa);
      break;
    }
  }
  return layout.first_other;
}

uint32_t plain::info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes, uint32_t** bound,
                             uint32_t* count) {
  int32_t status = ficon_get_pmap_portvsan(vsan);
  if (status != 0) return static_cast<uint32_t>(status);
  status = ficon_get_pmap_portpn();
  if (status != 0) return static_cast<uint32_t>(status);

  uint32_t room = 0;
  for (int index = 0; index < FICON_PMAP_PORT_ENTRIES; ++index) {
    if (ficon_pmap_port_to_vsan[index] == vsan) ++room;
  }
  *pns = static_cast<uint16_t*>(allocate(LIBCHNSW_MEM_portpn, room * 2, 3665));
  *pas = static_cast<uint16_t*>(allocate(LIBCHNSW_MEM_portpn, room * 2, 3669));
  *if_indexes = static_cast<uint32_t*>(allocate(LIBCHNSW_MEM_ifindex, room * 4, 3673));
  *bound = static_cast<uint32_t*>(allocate(LIBCHNSW_MEM_portpn, room * 4, 3677));

  uint32_t reported = 0;
  for (int index = 0; index < FICON_PMAP_PHYS_ENTRIES; ++index) {
    if (ficon_pmap_port_to_vsan[index] != vsan) continue;
    uint32_t if_index = 0;
    if (index_to_physical_interface(index, &if_index) != 0) continue;
    const ficon_pmap_port_entry& entry = ficon_pmap_port_to_pn[index];
    if (*pns != nullptr) (*pns)[reported] = entry.pn;
    if (*pas != nullptr) (*pas)[reported] = entry.pa;
    if (*if_indexes != nullptr) (*if_indexes)[reported] = if_index;
    if (*bound != nullptr) (*bound)[reported] = lists_vsan(entry, vsan) ? 1 : 0;
    ++reported;
  }
  *count = reported;
  return 0;
}

int32_t plain::if_to_index(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if,
                           const ficon_pmap_port_entry* port_to_pn, int32_t skip_lag_check) {
  constexpr char kName[] = "ficon_pmap_get_if_to_pnpa_index_with2pmaps";
  ficon_pmap_port_entry entry = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  int32_t status = 0;
  if (pn_to_if == nullptr) {
    status = ficon_get_pmap_pnif();
    if (status != 0) {
      ficon_log_error("%s(%d):failed to get pmap_pnif %d\n", kName, 2884, status);
      return status;
    }
    pn_to_if = ficon_pmap_pn_to_logif;
  }
  if (port_to_pn == nullptr) {
    status = ficon_get_pmap_portpn();
    if (status != 0) {
      ficon_log_error("%s(%d):failed to get pmap_portpn %d\n", kName, 2894, status);
      return status;
    }
    port_to_pn = ficon_pmap_port_to_pn;
  }
  uint8_t type = 0;
  status = if_index_get_type(if_index, &type);
  if (status != 0) {
    ficon_log_error("failed to get if type for if_index:%#x (%d)\n", if_index, status);
    return status;
  }
  if (type == IF_TYPE_PORT_CHANNEL || type == IF_TYPE_FCIP) {
    return bound_number(if_index, &entry, index, pn_to_if, port_to_pn, FICON_RC_NOT_ASSOCIATED);
  }
  if (type != IF_TYPE_FC_PORT) {
    ficon_log_error("if_index %#x not fc port. type = %d\n", if_index, type);
    return FICON_RC_NOT_FC_PORT;
  }
  uint8_t slot = 0;
  status = if_index_get_slot(if_index, &slot);
  if (status != 0) {
    ficon_log_error("Failed to get slot for if_index %#x (%d)\n", if_index, status);
    return status;
  }
  uint8_t port = 0;
  status = if_index_get_port(if_index, &port);
  if (status != 0) {
    ficon_log_error("Failed to get port for if_index %#x (%d)\n", if_index, status);
    return status;
  }
  int lag_status = 0;
  if (skip_lag_check == 0) {
    lagmap_port_query query = {if_index, 0};
    lag_status = lagmap_get_port(&query);
    if (lag_status == 0 && query.channel != 0) {
      ficon_log_error("if_index %#x is a port thats part of port-channel\n", if_index);
      return bound_number(if_index, &entry, index, pn_to_if, port_to_pn, FICON_RC_LAG_MEMBER);
    }
  }
  if (lag_status == 0 || static_cast<uint32_t>(lag_status) == FICON_LAGMAP_NOT_MEMBER) {
    uint8_t line_card = 0;
    status = slot_to_line_card(slot, &line_card);
    if (status != 0) {
      ficon_log_error("Invalid slot number for linecard %d (%d)\n", slot, status);
      return status;
    }
    *index = static_cast<uint32_t>(line_card * FICON_PMAP_PORTS_PER_LC + port);
    entry = port_to_pn[*index];
    if (skip_lag_check != 0) return 0;
  } else {
    ficon_log_error("lagmap_get_port failed: if_index:%#x,rc:%d\n", if_index, lag_status);
  }
  ficon_log_debug("if_index:%#x, slot:%dbase1, port:%dbase1, port-number:%d\n", if_index, slot + 1, port + 1, entry.pn);
  return 0;
}

int32_t plain::next_if(uint32_t if_index, uint32_t* next_if_index) {
  ficon_pmap_port_entry own = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};
  uint32_t index = 0;
  int32_t status = find_entry(if_index, &own, &index);
  if (status != 0) return status;
  if (index >= FICON_PMAP_PHYS_ENTRIES) return FICON_RC_NOT_FC_PORT;
  if (!is_numbered(own)) return FICON_RC_INVALID_ARG;
  if (index == FICON_PMAP_PHYS_ENTRIES - 1) return FICON_RC_PLATFORM;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;

  uint32_t next = index + 1;
  if (!is_numbered(ficon_pmap_port_to_pn[next])) {
    next = (index / FICON_PMAP_PORTS_PER_LC + 1) * FICON_PMAP_PORTS_PER_LC;
    if (next >= FICON_PMAP_PHYS_ENTRIES || !is_numbered(ficon_pmap_port_to_pn[next])) return FICON_RC_PLATFORM;
  }
  uint8_t slot = 0;
  status = ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(next / FICON_PMAP_PORTS_PER_LC), &slot);
  if (status != 0) return status;
  return if_index_phy_fc_port_init(next_if_index, slot, static_cast<uint8_t>(next % FICON_PMAP_PORTS_PER_LC), 0);
}
