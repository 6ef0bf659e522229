#include "port_map_model.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace chnsw_test {
namespace {

constexpr uint32_t kLagmapNotMember = 0x40470006;
constexpr uint32_t kPortidxNoPort = 0x40460002;

// A chassis type that a row is not particular about.
constexpr int32_t kAny = -1000;

int32_t as_signed(uint32_t status) {
  return static_cast<int32_t>(status);
}
uint32_t as_unsigned(int32_t status) {
  return static_cast<uint32_t>(status);
}

bool has_any_vsan(const ficon_pmap_port_entry& entry) {
  return std::any_of(entry.vsans, entry.vsans + 8, [](uint16_t slot) { return slot != 0; });
}
bool has_vsan(const ficon_pmap_port_entry& entry, uint32_t vsan) {
  const auto low_bits = static_cast<uint16_t>(vsan);
  return std::any_of(entry.vsans, entry.vsans + 8, [&](uint16_t slot) { return slot == low_bits; });
}

std::string slots_of(const ficon_pmap_port_entry& entry) {
  const uint16_t* v = entry.vsans;
  return text_of("vsans(%d %d %d %d %d %d %d %d)", v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7]);
}

// An entry or an index of an operation's own, which its caller never sees unless the port-channel service fails.
constexpr ficon_pmap_port_entry kNoEntry = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};

} // namespace

// ---- reports ----

void port_map_model::log(uint32_t subtype, const text_maker& text) {
  if (services_.evtrc_hist_event_subtype_check(subtype) == 0) {
    services_.evtrc_hist_event(subtype, text().substr(0, 511));
  }
  if (services_.evtrc_chk_int(static_cast<int>(subtype)) != 0) services_.dbgout(text());
}

void port_map_model::log_error(const text_maker& text) {
  log(102, text);
  services_.printed += "FICON_ERR: " + text();
}

void port_map_model::log_debug(const std::string& text) {
  log(103, [&] { return text; });
}

void port_map_model::malloc_warning(int line, uint32_t size) {
  services_.printed += text_of("Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[%d] for size %d\n",
                               line, as_signed(size));
}

// ---- platform information ----

int32_t port_map_model::ficon_get_platform_info(ficon_platform_info* info) {
  if (state.pinfo) {
    *info = *state.pinfo;
    return 0;
  }
  const int status = services_.get_platform_info(*info);
  if (status != 0) return status;
  if (!services_.memacct_alloc(5, 8)) {
    malloc_warning(81, 8);
    return 1;
  }
  state.pinfo = *info;
  return 0;
}

// ---- tables ----

template <class Value>
bool port_map_model::allocate(std::optional<std::vector<Value>>& values, size_t count, uint32_t type, int line) {
  if (values) return true;
  const auto size = static_cast<uint32_t>(count * sizeof(Value));
  if (!services_.memacct_alloc(type, size)) {
    malloc_warning(line, size);
    return false;
  }
  values.emplace(count, Value{});
  return true;
}

template <class Value>
void port_map_model::fetch(uint32_t key, std::vector<Value>& values, size_t count) {
  if (count > values.size()) throw undefined_call();
  services_.elemdb_lookup_element(key, static_cast<uint32_t>(count * sizeof(Value)), values.data());
}

int32_t port_map_model::ficon_get_pmap_portvsan(uint32_t) {
  services_.elemdb_lookup_element(4, 32, state.port_to_vsan_array.data());
  if (!allocate(state.port_to_vsan, 1280, 5, 1420)) return 1;
  fetch(5, *state.port_to_vsan, 1280);
  return 0;
}

int32_t port_map_model::ficon_get_pmap_portpn() {
  if (!allocate(state.port_to_pn, 1280, 5, 1453)) return 1;
  fetch(3, *state.port_to_pn, 1280);
  return 0;
}

int32_t port_map_model::ficon_get_pmap_papn() {
  if (ficon_get_max_ficon_ports() <= 0) return as_signed(FICON_RC_PLATFORM);
  const auto count = static_cast<size_t>(state.max_ficon_ports);
  if (!allocate(state.pa_to_pn, count, 2, 1491)) return 1;
  fetch(1, *state.pa_to_pn, count);
  return 0;
}

int32_t port_map_model::ficon_get_pmap_pnif() {
  if (ficon_get_max_ficon_ports() <= 0) return as_signed(FICON_RC_PLATFORM);
  const auto count = static_cast<size_t>(state.max_ficon_ports);
  if (!allocate(state.pn_to_logif, count, 3, 1530)) return 1;
  fetch(2, *state.pn_to_logif, count);
  return 0;
}

int32_t port_map_model::ficon_cmi_get_pmap_change_counter(uint32_t* counter) {
  uint32_t value = 0;
  *counter = services_.elemdb_lookup_element(6, 4, &value) == 0 ? value : 0;
  return 0;
}

int32_t port_map_model::ficon_pmap_prepare_fastpath(uint32_t vsan) {
  int32_t status = ficon_get_pmap_pnif();
  if (status != 0) return status;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;
  status = ficon_get_pmap_portvsan(vsan);
  if (status == 0) {
    state.fastpath_got_vsan_port = 1;
    return 0;
  }
  if (as_unsigned(status) == FICON_RC_PLATFORM) {
    state.fastpath_got_vsan_port = 0;
    return 0;
  }
  return status;
}

int32_t port_map_model::ficon_cmi_get_max_portnumber() {
  ficon_platform_info info{};
  if (services_.get_platform_info(info) != 0) {
    log_error([&] { return text_of("get_platform_info failed, errno = %d", services_.error); });
    return -1;
  }
  int32_t chassis_type = -1;
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) {
    log_error([&] { return text_of("hwinv_get_chassis_type failed, errno = %d", services_.error); });
    return -2;
  }
  switch (info.num_slots) {
    case 1:
      if (chassis_type == 5) return 33;
      if (chassis_type == 15) return 47;
      if (chassis_type == 27) return 253;
      return 53;
    case 2:
      return 77;
    case 6:
      return chassis_type == 34 ? 253 : 141;
    case 9:
    case 10:
      return chassis_type == 32 || chassis_type == 38 ? 253 : 237;
    case 13:
    case 18:
      return chassis_type == 38 ? 253 : 237;
    default:
      return 0;
  }
}

int32_t port_map_model::ficon_get_max_ficon_ports() {
  if (state.max_ficon_ports > 0) return state.max_ficon_ports;
  state.max_ficon_ports = ficon_cmi_get_max_portnumber() + 1;
  return state.max_ficon_ports;
}

// ---- address and number ----

uint32_t port_map_model::ficon_pmap_get_pa_to_pn_withpvsan(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag,
                                                           int32_t fast) {
  if (pn == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  int32_t gvp = 0;
  uint32_t vsan_read = 0;
  if (fast != 0) {
    if (vsan != nullptr) gvp = state.fastpath_got_vsan_port;
  } else {
    const int32_t fetched = ficon_get_pmap_portpn();
    if (fetched != 0) return as_unsigned(fetched);
    if (vsan != nullptr) {
      vsan_read = *vsan;
      gvp = 1;
      const uint32_t status = as_unsigned(ficon_get_pmap_portvsan(vsan_read));
      if (status == FICON_RC_PLATFORM)
        gvp = 0;
      else if (status != 0)
        return status;
    }
  }

  int32_t count = 0;
  int32_t bound = 0;
  int32_t in_vsan = 0;
  auto last_match = static_cast<uint16_t>(pa);
  auto bound_pn = static_cast<uint16_t>(pa);
  auto vsan_pn = static_cast<uint16_t>(pa);
  if (pa == FICON_PORT_CUP) {
    *pn = 254;
  } else {
    if (pa >= state.max_ficon_ports) return FICON_RC_PA_RANGE;
    const auto port_to_pn = cached(state.port_to_pn);
    for (int index = 1279; index >= 0; --index) {
      const ficon_pmap_port_entry& entry = port_to_pn.at(index);
      if (entry.pa != pa) continue;
      last_match = entry.pn;
      if (has_any_vsan(entry)) ++count;
      log_debug(text_of("ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(%d) pa(%d) (%d) %s\n", entry.pn, entry.pa, index,
                        slots_of(entry).c_str()));
      if (vsan == nullptr) continue;
      vsan_read = *vsan;
      if (gvp != 0) {
        if (cached(state.port_to_vsan).at(index) != vsan_read) continue;
        ++in_vsan;
        if (has_vsan(entry, vsan_read)) {
          ++bound;
          bound_pn = entry.pn;
        }
        vsan_pn = entry.pn;
      } else if (has_vsan(entry, vsan_read)) {
        ++bound;
        bound_pn = entry.pn;
      }
    }
  }
  log_debug(
      text_of("ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(%d) Bound(%d) Bound PN(%d) Vsan(%d) In Vsan(%d) gvp(%d) "
              "vsan_pn(%d)\n",
              count, bound, bound_pn, as_signed(vsan_read), in_vsan, gvp, vsan_pn));

  if (count == 1) {
    decided.insert("PA: one counts");
    *pn = last_match;
    return 0;
  }
  if (count == 0) {
    decided.insert("PA: none counts");
    *pn = static_cast<uint16_t>(pa);
    return FICON_RC_PLATFORM;
  }
  if (vsan == nullptr) {
    decided.insert("PA: several, no VSAN given");
    return FICON_RC_MULTI_IF;
  }
  if (in_vsan == 1) {
    decided.insert("PA: one in the VSAN");
    *pn = vsan_pn;
    return 0;
  }
  if (in_vsan == 0 && gvp != 0) {
    decided.insert("PA: none in the VSAN");
    return FICON_RC_PLATFORM;
  }
  if (in_vsan == 0) {
    if (bound == 1) {
      decided.insert("PA: one bound");
      *pn = bound_pn;
      return 0;
    }
    decided.insert(bound == 0 ? "PA: none bound" : "PA: several bound");
    return bound == 0 ? FICON_RC_PLATFORM : FICON_RC_MULTI_IF;
  }
  if (bound == 1) {
    decided.insert("PA: several in the VSAN, one bound");
    *pn = bound_pn;
    return 0;
  }
  if (bound == 0) {
    decided.insert("PA: several in the VSAN, none bound");
    *pn = vsan_pn;
    *flag = 0;
    return FICON_RC_MULTI_IF;
  }
  decided.insert("PA: several in the VSAN, several bound");
  return FICON_RC_MULTI_IF;
}

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

uint32_t port_map_model::ficon_pmap_get_pn_to_pa_withpvsan(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag,
                                                           int32_t fast) {
  if (pa == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  int32_t gvp = 0;
  if (fast != 0) {
    if (vsan != nullptr) gvp = state.fastpath_got_vsan_port;
  } else {
    const int32_t fetched = ficon_get_pmap_portpn();
    if (fetched != 0) return as_unsigned(fetched);
    if (vsan != nullptr) {
      gvp = 1;
      const uint32_t status = as_unsigned(ficon_get_pmap_portvsan(*vsan));
      if (status == FICON_RC_PLATFORM)
        gvp = 0;
      else if (status != 0)
        return status;
    }
  }

  if (pn == FICON_PORT_CUP) {
    *pa = 254;
    return FICON_RC_PLATFORM;
  }
  if (pn >= state.max_ficon_ports) return FICON_RC_PN_RANGE;

  int32_t count = 0;
  int32_t bound = 0;
  int32_t in_vsan = 0;
  auto last_match = static_cast<uint16_t>(pn);
  auto bound_pa = static_cast<uint16_t>(pn);
  auto vsan_pa = static_cast<uint16_t>(pn);
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1279; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pn != pn) continue;
    last_match = entry.pa;
    ++count;
    if (vsan == nullptr) continue;
    if (gvp != 0) {
      if (cached(state.port_to_vsan).at(index) != *vsan) continue;
      ++in_vsan;
      if (has_vsan(entry, *vsan)) {
        ++bound;
        bound_pa = entry.pa;
      }
      vsan_pa = entry.pa;
    } else if (has_vsan(entry, *vsan)) {
      ++bound;
      bound_pa = entry.pa;
    }
  }

  if (count == 1) {
    decided.insert("PN: one counts");
    *pa = last_match;
    return 0;
  }
  if (count == 0) {
    decided.insert("PN: none counts");
    *pa = static_cast<uint16_t>(pn);
    return FICON_RC_PLATFORM;
  }
  if (vsan == nullptr) {
    decided.insert("PN: several, no VSAN given");
    return FICON_RC_MULTI_IF;
  }
  if (in_vsan == 1) {
    decided.insert("PN: one in the VSAN");
    *pa = vsan_pa;
    return 0;
  }
  if (in_vsan == 0 && gvp != 0) {
    decided.insert("PN: none in the VSAN");
    return FICON_RC_PLATFORM;
  }
  if (in_vsan == 0) {
    if (bound == 1) {
      decided.insert("PN: one bound");
      *pa = bound_pa;
      return 0;
    }
    decided.insert(bound == 0 ? "PN: none bound" : "PN: several bound");
    return bound == 0 ? FICON_RC_PLATFORM : FICON_RC_MULTI_IF;
  }
  if (bound == 1) {
    decided.insert("PN: several in the VSAN, one bound");
    *pa = bound_pa;
    return 0;
  }
  if (bound == 0) {
    decided.insert("PN: several in the VSAN, none bound");
    *pa = vsan_pa;
    *flag = 0;
    return FICON_RC_MULTI_IF;
  }
  decided.insert("PN: several in the VSAN, several bound");
  return FICON_RC_MULTI_IF;
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

// ---- default numbering ----

namespace {

// One kind of chassis. The three operations do not agree everywhere, hence a table each.
struct numbering {
  int num_slots;
  int32_t chassis_type;
  int groups;         // line cards
  int numbers;        // of each
  int stride;         // entries from one group to the next; not used by ficon_get_default_pn
  int first_portless; // the first number without a physical port
};

constexpr numbering kLaidOut[] = {{1, 5, 1, 20, 0, 20},        {1, 15, 1, 34, 0, 34},        {1, 27, 1, 40, 0, 240},
                                  {1, kAny, 1, 40, 0, 40},     {2, kAny, 2, 32, 254, 64},    {6, 34, 4, 48, 254, 240},
                                  {6, kAny, 4, 32, 254, 128},  {9, kAny, 7, 32, 254, 224},   {10, 32, 5, 48, 64, 240},
                                  {10, kAny, 8, 16, 64, 224},  {13, kAny, 11, 16, 254, 224}, {18, 38, 9, 48, 64, 240},
                                  {18, kAny, 14, 16, 254, 224}};

constexpr numbering kTestedFor[] = {{1, 5, 1, 20, 254, 20},     {1, 15, 1, 34, 254, 34},    {1, 27, 1, 40, 254, 240},
                                    {1, kAny, 1, 40, 254, 40},  {2, kAny, 2, 32, 254, 64},  {6, 34, 4, 48, 254, 240},
                                    {6, kAny, 4, 32, 254, 128}, {9, kAny, 7, 32, 254, 224}, {10, kAny, 8, 48, 64, 240}};

constexpr numbering kOfOneSlot[] = {{1, 5, 1, 20, 0, 20},      {1, 15, 1, 34, 0, 34},      {1, 27, 1, 40, 0, 240},
                                    {1, kAny, 1, 40, 0, 40},   {2, kAny, 2, 32, 0, 64},    {6, 34, 4, 48, 0, 240},
                                    {6, kAny, 4, 32, 0, 128},  {9, kAny, 7, 32, 0, 224},   {10, 32, 8, 48, 0, 240},
                                    {10, kAny, 8, 16, 0, 224}, {13, kAny, 11, 16, 0, 224}, {18, 38, 8, 48, 0, 240},
                                    {18, kAny, 14, 16, 0, 224}};

template <size_t kRows>
const numbering* row_of(const numbering (&rows)[kRows], int num_slots, int32_t chassis_type) {
  for (const numbering& row : rows) {
    if (row.num_slots == num_slots && (row.chassis_type == kAny || row.chassis_type == chassis_type)) return &row;
  }
  return nullptr;
}

} // namespace

int32_t port_map_model::ficon_port_to_pn_init(int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count,
                                              const uint16_t* pa_to_pn) {
  for (int32_t n = 0; n < count; ++n) entries[n] = {512, 512, {0, 0, 0, 0, 0, 0, 0, 0}};

  ficon_platform_info info{};
  if (services_.get_platform_info(info) != 0) return -1;
  int32_t chassis_type = -1;
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) return -2;
  if (count <= 1279) return -3;
  log_debug(text_of("ficon_port_to_pn_init(1602): Num Slots: %d Chassis Type: %d\n", info.num_slots, chassis_type));

  const numbering* layout = row_of(kLaidOut, info.num_slots, chassis_type);
  if (layout == nullptr) return 0;
  for (int g = 0; g < layout->groups; ++g) {
    for (int k = 0; k < layout->numbers; ++k) {
      entries[g * layout->stride + k].pn = static_cast<uint16_t>(g * layout->numbers + k);
    }
  }
  if (info.num_slots == 10) {
    services_.printed += text_of("chassis_type: %d\n", chassis_type);
    services_.printed += text_of("num_slots:    %d\n", info.num_slots);
  }
  for (int k = 0; k < 14; ++k) entries[1024 + k].pn = static_cast<uint16_t>(layout->first_portless + k);
  if (pa_count > 0) {
    for (int32_t n = 0; n < count; ++n) {
      for (int32_t j = 0; j < pa_count; ++j) {
        if (pa_to_pn[j] != entries[n].pn) continue;
        entries[n].pa = static_cast<uint16_t>(j);
        break;
      }
    }
  }
  return layout->first_portless;
}

int32_t port_map_model::ficon_port_to_pn_is_default(const ficon_pmap_port_entry* entries) {
  ficon_platform_info info{};
  if (services_.get_platform_info(info) != 0) return -1;
  int32_t chassis_type = -1;
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) return -2;
  const numbering* layout = row_of(kTestedFor, info.num_slots, chassis_type);
  if (layout == nullptr) return 0;
  for (int g = 0; g < layout->groups; ++g) {
    for (int k = 0; k < layout->stride; ++k) {
      const int expected = k < layout->numbers ? g * layout->numbers + k : 512;
      if (entries[g * layout->stride + k].pn != expected) return 0;
    }
  }
  for (int k = 0; k < 14; ++k) {
    if (entries[1024 + k].pn != layout->first_portless + k) return 0;
  }
  return 1;
}

uint32_t port_map_model::ficon_get_default_pn(uint32_t slot, uint32_t logical, uint16_t* pns) {
  uint8_t line_card = 0;
  int32_t chassis_type = -1;
  ficon_platform_info info{};
  if (services_.get_platform_info(info) != 0) return FICON_RC_BASE;
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) return FICON_RC_BASE;
  if (logical == 0) {
    const int32_t status = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &line_card);
    if (status != 0) return as_unsigned(status);
  }
  const int length = logical == 0 ? 254 : 256;
  for (int n = 0; n < length; ++n) pns[n] = 512;
  const numbering* row = row_of(kOfOneSlot, info.num_slots, chassis_type);
  if (row == nullptr) return 0;
  if (logical != 0) {
    for (int k = 0; k < 14; ++k) pns[k] = static_cast<uint16_t>(row->first_portless + k);
    return 0;
  }
  if (line_card >= row->groups) return 0;
  for (int k = 0; k < row->numbers; ++k) pns[k] = static_cast<uint16_t>(line_card * row->numbers + k);
  return 0;
}

// ---- slots and line cards ----

int32_t port_map_model::ficonm_platform_slot_to_lc_b0(uint8_t slot, uint8_t* lc) {
  int32_t chassis_type = -1;
  ficon_platform_info info{};
  if (ficon_get_platform_info(&info) != 0) return as_signed(FICON_RC_PLATFORM);
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) {
    log_error([&] { return text_of("hwinv_get_chassis_type failed, errno = %d", services_.error); });
    return as_signed(FICON_RC_PLATFORM);
  }
  if (info.num_slots <= slot) return as_signed(FICON_RC_INVALID_ARG);

  int first_supervisor = -1;
  switch (info.num_slots) {
    case 6:
      first_supervisor = chassis_type == 34 ? 2 : 4;
      break;
    case 9:
    case 10:
      first_supervisor = 4;
      break;
    case 13:
      first_supervisor = 6;
      break;
    case 18:
      first_supervisor = 8;
      break;
    default:
      break;
  }
  if (first_supervisor < 0) {
    *lc = slot;
    return 0;
  }
  if (slot == first_supervisor || slot == first_supervisor + 1) return as_signed(FICON_RC_INVALID_ARG);
  *lc = static_cast<uint8_t>(slot < first_supervisor ? slot : slot - 2);
  return 0;
}

int32_t port_map_model::ficonm_platform_lc_to_slot_b0(uint8_t lc, uint8_t* slot) {
  int32_t chassis_type = -1;
  ficon_platform_info info{};
  if (ficon_get_platform_info(&info) != 0) return as_signed(FICON_RC_PLATFORM);
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) {
    log_error([&] { return text_of("hwinv_get_chassis_type failed, errno = %d", services_.error); });
    return as_signed(FICON_RC_PLATFORM);
  }
  const int line_cards = info.num_slots > 2 ? info.num_slots - 2 : info.num_slots;
  if (line_cards <= lc) return as_signed(FICON_RC_INVALID_ARG);
  const bool behind_supervisors = (info.num_slots == 6 && chassis_type == 34 && lc > 1) ||
                                  (info.num_slots == 9 && lc > 3) || (info.num_slots == 10 && lc > 3) ||
                                  (info.num_slots == 13 && lc > 5) || (info.num_slots == 18 && lc > 7);
  *slot = static_cast<uint8_t>(behind_supervisors ? lc + 2 : lc);
  return 0;
}

int32_t port_map_model::slot_to_pnpa(uint8_t slot, uint32_t port, ficon_pmap_port_entry* entry, uint32_t* index,
                                     const std::function<table<ficon_pmap_port_entry>()>& port_to_pn) {
  uint8_t line_card = 0;
  const int32_t status = ficonm_platform_slot_to_lc_b0(slot, &line_card);
  if (status != 0) return status;
  *index = line_card * 254u + port;
  *entry = port_to_pn().at(*index);
  return 0;
}

int32_t port_map_model::ficonm_platform_slot_to_pnpa_index_withpmap(uint32_t slot, uint32_t port,
                                                                    ficon_pmap_port_entry* entry, uint32_t* index,
                                                                    const ficon_pmap_port_entry* port_to_pn) {
  return slot_to_pnpa(static_cast<uint8_t>(slot), port, entry, index, [&] {
    return port_to_pn != nullptr ? table<ficon_pmap_port_entry>{port_to_pn, kPassedPorts} : cached(state.port_to_pn);
  });
}

int32_t port_map_model::ficonm_platform_slot_to_pnpa_index(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry,
                                                           uint32_t* index) {
  return ficonm_platform_slot_to_pnpa_index_withpmap(slot, port, entry, index, nullptr);
}

int32_t port_map_model::ficonm_platform_slot_to_pnpa(uint32_t slot, uint32_t port, ficon_pmap_port_entry* entry) {
  uint32_t index;
  return ficonm_platform_slot_to_pnpa_index_withpmap(slot, port, entry, &index, nullptr);
}

uint16_t port_map_model::ficonm_platform_slot_to_pn(uint32_t slot, uint32_t port) {
  ficon_pmap_port_entry entry{};
  return ficonm_platform_slot_to_pnpa(slot, port, &entry) == 0 ? entry.pn : uint16_t{512};
}

// ---- number and index to interface ----

uint32_t port_map_model::pnif_lookup(uint32_t pn, uint32_t* if_index, table<uint32_t> pn_to_if) {
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
  return pnif_lookup(pn, if_index, pn_to_if);
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
  status = services_.portidx_port_by_if_index(*if_index);
  if (status != 0) {
    log_debug(text_of("portidx lookup failed for IfIndex %x with err (%d)\n", *if_index, status));
    *if_index = 0;
    return as_unsigned(status) == kPortidxNoPort ? uint32_t{FICON_RC_NO_IF} : as_unsigned(status);
  }
  lagmap_port_query query = {*if_index, 0};
  status = services_.lagmap_get_port(query);
  if (status == 0 && query.channel != 0) {
    log_debug(text_of("Index :%d is a portthats part of port-channel\n", index));
    *if_index = 0;
    return FICON_RC_LAG_MEMBER;
  }
  if (status == 0 || as_unsigned(status) == kLagmapNotMember) return 0;
  log_error([&] { return text_of("lagmap_get_port failed: if_index:%#x\n", *if_index); });
  return FICON_RC_PLATFORM;
}

uint32_t port_map_model::ficon_pmap_get_pn_to_if_withpvsan(int32_t pn, const uint32_t* vsan, uint32_t* if_index,
                                                           uint32_t* flag, int32_t fast) {
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  int32_t gvp = 0;
  uint32_t vsan_read = 0;
  if (fast != 0) {
    if (vsan != nullptr) gvp = state.fastpath_got_vsan_port;
  } else {
    int32_t fetched = ficon_get_pmap_pnif();
    if (fetched != 0) return as_unsigned(fetched);
    fetched = ficon_get_pmap_portpn();
    if (fetched != 0) return as_unsigned(fetched);
    if (vsan != nullptr) {
      vsan_read = *vsan;
      const uint32_t status = as_unsigned(ficon_get_pmap_portvsan(vsan_read));
      if (status == 0)
        gvp = 1;
      else if (status != FICON_RC_PLATFORM)
        return status;
    }
  }
  if (pn >= state.max_ficon_ports) return FICON_RC_PN_RANGE;

  const auto pn_to_logif = cached(state.pn_to_logif);
  if (pn_to_logif.at(pn) != 0) {
    decided.insert("PN to interface: bound to one");
    *if_index = pn_to_logif.at(pn);
    return 0;
  }

  int32_t candidates = 0;
  int32_t in_vsan = 0;
  int32_t bound = 0;
  uint32_t last_candidate = 0;
  uint32_t last_bound = 0;
  uint32_t last_in_vsan = 0;
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1279; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pn != pn || !has_any_vsan(entry)) continue;
    uint32_t interface = 0;
    if (index_to_if(index, static_cast<uint32_t>(pn), &interface, pn_to_logif) != 0) continue;
    int32_t status = services_.portidx_port_by_if_index(interface);
    if (status != 0) {
      log_debug(text_of("portidx lookup failed for IfIndex %x with err (%d)\n", interface, status));
      continue;
    }
    lagmap_port_query query = {interface, 0};
    status = services_.lagmap_get_port(query);
    if (status == 0 && query.channel != 0) {
      log_debug(text_of("Port Number:%d is associated with a port thats part of port-channel\n", pn));
      continue;
    }
    if (status != 0 && as_unsigned(status) != kLagmapNotMember) {
      log_error([&] { return text_of("lagmap_get_port failed: if_index:%#x\n", interface); });
      continue;
    }
    ++candidates;
    last_candidate = interface;
    log_debug(text_of("ficon_pmap_get_pn_to_if_withpvsan(2254) pn(%d) inst if(0x%x) %s\n", entry.pn, interface,
                      slots_of(entry).c_str()));
    if (vsan == nullptr) continue;
    vsan_read = *vsan;
    if (gvp != 0) {
      if (cached(state.port_to_vsan).at(index) != vsan_read) continue;
      ++in_vsan;
      last_in_vsan = interface;
      if (has_vsan(entry, vsan_read)) {
        ++bound;
        last_bound = interface;
      }
    } else if (has_vsan(entry, vsan_read)) {
      ++bound;
      last_bound = interface;
    }
  }
  log_debug(
      text_of("ficon_pmap_get_pn_to_if_withpvsan(2286): Count(%d) Bound(%d) Bound If(%#x) Vsan(%d) In Vsan(%d) gvp(%d) "
              "vsan_if(%#x)\n",
              candidates, bound, last_bound, as_signed(vsan_read), in_vsan, gvp, last_in_vsan));

  if (candidates == 1) {
    decided.insert("PN to interface: one candidate");
    *if_index = last_candidate;
    return 0;
  }
  *if_index = 0;
  if (candidates == 0) {
    decided.insert("PN to interface: no candidate");
    return FICON_RC_NO_IF;
  }
  if (vsan == nullptr) {
    decided.insert("PN to interface: several, no VSAN given");
    return FICON_RC_MULTI_IF;
  }
  if (in_vsan == 1) {
    decided.insert("PN to interface: one in the VSAN");
    *if_index = last_in_vsan;
    return 0;
  }
  if (in_vsan == 0 && gvp != 0) {
    decided.insert("PN to interface: none in the VSAN");
    return FICON_RC_NO_IF;
  }
  if (in_vsan == 0) {
    if (bound == 1) {
      decided.insert("PN to interface: one bound");
      *if_index = last_bound;
      return 0;
    }
    decided.insert(bound == 0 ? "PN to interface: none bound" : "PN to interface: several bound");
    return bound == 0 ? FICON_RC_NO_IF : FICON_RC_MULTI_IF;
  }
  if (bound == 1) {
    decided.insert("PN to interface: several in the VSAN, one bound");
    *if_index = last_bound;
    return 0;
  }
  if (bound == 0) {
    decided.insert("PN to interface: several in the VSAN, none bound");
    *if_index = last_in_vsan;
    *flag = 0;
    return FICON_RC_MULTI_IF;
  }
  decided.insert("PN to interface: several in the VSAN, several bound");
  return FICON_RC_MULTI_IF;
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

// ---- interface to number, address and index ----

int32_t port_map_model::logical_search(uint32_t if_index, ficon_pmap_port_entry* entry, uint32_t* index,
                                       table<uint32_t> pn_to_if, table<ficon_pmap_port_entry> port_to_pn,
                                       uint32_t status_to_return) {
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

int32_t port_map_model::ficon_pmap_get_if_to_pnpa_index_with2pmaps(uint32_t if_index, ficon_pmap_port_entry* entry,
                                                                   uint32_t* index, const uint32_t* passed_pn_to_if,
                                                                   const ficon_pmap_port_entry* passed_port_to_pn,
                                                                   int32_t skip_lag_check) {
  if (entry == nullptr) return as_signed(FICON_RC_INVALID_ARG);

  table<uint32_t> pn_to_if = {passed_pn_to_if, kPassedNumbers};
  if (passed_pn_to_if == nullptr) {
    const int32_t status = ficon_get_pmap_pnif();
    if (status != 0) {
      log_error(
          [&] { return text_of("ficon_pmap_get_if_to_pnpa_index_with2pmaps(2884):failed to get pmap_pnif %d\n", status); });
      return status;
    }
    pn_to_if = cached(state.pn_to_logif);
  }
  table<ficon_pmap_port_entry> port_to_pn = {passed_port_to_pn, kPassedPorts};
  if (passed_port_to_pn == nullptr) {
    const int32_t status = ficon_get_pmap_portpn();
    if (status != 0) {
      log_error([&] {
        return text_of("ficon_pmap_get_if_to_pnpa_index_with2pmaps(2894):failed to get pmap_portpn %d\n", status);
      });
      return status;
    }
    port_to_pn = cached(state.port_to_pn);
  }

  uint8_t type = 0;
  int32_t status = services_.if_index_get_type(if_index, type);
  if (status != 0) {
    log_error([&] { return text_of("failed to get if type for if_index:%#x (%d)\n", if_index, status); });
    return status;
  }
  if (type == 4 || type == 10) {
    return logical_search(if_index, entry, index, pn_to_if, port_to_pn, FICON_RC_NOT_ASSOCIATED);
  }
  if (type != 1) {
    log_error([&] { return text_of("if_index %#x not fc port. type = %d\n", if_index, type); });
    return 11;
  }

  uint8_t slot = 0;
  status = services_.if_index_get_slot(if_index, slot);
  if (status != 0) {
    log_error([&] { return text_of("Failed to get slot for if_index %#x (%d)\n", if_index, status); });
    return status;
  }
  uint8_t port = 0;
  status = services_.if_index_get_port(if_index, port);
  if (status != 0) {
    log_error([&] { return text_of("Failed to get port for if_index %#x (%d)\n", if_index, status); });
    return status;
  }

  bool convert = true;
  if (skip_lag_check == 0) {
    lagmap_port_query query = {if_index, 0};
    status = services_.lagmap_get_port(query);
    if (status == 0 && query.channel != 0) {
      log_error([&] { return text_of("if_index %#x is a port thats part of port-channel\n", if_index); });
      return logical_search(if_index, entry, index, pn_to_if, port_to_pn, FICON_RC_LAG_MEMBER);
    }
    if (status != 0 && as_unsigned(status) != kLagmapNotMember) {
      log_error([&] { return text_of("lagmap_get_port failed: if_index:%#x,rc:%d\n", if_index, status); });
      convert = false;
    }
  }
  if (convert) {
    status = slot_to_pnpa(slot, port, entry, index, [&] { return port_to_pn; });
    if (status != 0) {
      log_error([&] { return text_of("Invalid slot number for linecard %d (%d)\n", slot, status); });
      return status;
    }
    if (skip_lag_check != 0) return 0;
  }
  log_debug(text_of("if_index:%#x, slot:%dbase1, port:%dbase1, port-number:%d\n", if_index, slot + 1, port + 1, entry->pn));
  return 0;
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

// ---- number to physical interface ----

port_map_model::table<uint32_t> port_map_model::cached_or_null() const {
  if (!state.pn_to_logif) return {nullptr, 0};
  return {state.pn_to_logif->data(), state.pn_to_logif->size()};
}

uint32_t port_map_model::pn_to_phyif(int32_t pn, const uint32_t* vsan, int32_t pn_bound, uint32_t* if_index,
                                     table<uint32_t> pn_to_if, uint32_t* flag) {
  if (if_index == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  bool table_in_use = false;
  if (vsan != nullptr) {
    const uint32_t status = as_unsigned(ficon_get_pmap_portvsan(*vsan));
    if (status == 0)
      table_in_use = true;
    else if (status != FICON_RC_PLATFORM)
      return status;
  }
  int32_t fetched = ficon_get_pmap_portpn();
  if (fetched != 0) {
    log_error(
        [&] { return text_of("ficon_pmap_get_pn_to_phyif_withpvsan(3447):failed to get pmap_portpn %d\n", fetched); });
    return as_unsigned(fetched);
  }
  if (pn >= pn_bound) return FICON_RC_PN_RANGE;
  if (pn_to_if.values == nullptr) {
    fetched = ficon_get_pmap_pnif();
    if (fetched != 0) {
      log_error(
          [&] { return text_of("ficon_pmap_get_pn_to_phyif_withpvsan(3460):failed to get pmap_pnif %d\n", fetched); });
      return as_unsigned(fetched);
    }
    pn_to_if = cached(state.pn_to_logif);
  }
  if (pn_to_if.at(pn) != 0) {
    decided.insert("PN to port: bound to an interface");
    *if_index = pn_to_if.at(pn);
    return 0;
  }
  const auto port_to_pn = cached(state.port_to_pn);
  for (int index = 1024; index <= 1279; ++index) {
    if (port_to_pn.at(index).pn != pn) continue;
    decided.insert("PN to port: without a port");
    *if_index = 0;
    return 0;
  }

  int32_t candidates = 0;
  int32_t in_vsan = 0;
  int32_t bound = 0;
  uint32_t last_candidate = 0;
  uint32_t last_bound = 0;
  uint32_t last_in_vsan = 0;
  for (int index = 1023; index >= 0; --index) {
    const ficon_pmap_port_entry& entry = port_to_pn.at(index);
    if (entry.pn != pn) continue;
    uint32_t interface = 0;
    if (index_to_if(index, static_cast<uint32_t>(pn), &interface, pn_to_if) != 0) continue;
    const int32_t status = services_.portidx_port_by_if_index(interface);
    if (status != 0) {
      log_debug(text_of("portidx lookup failed for IfIndex %x with err (%d)\n", interface, status));
      continue;
    }
    ++candidates;
    last_candidate = interface;
    if (vsan == nullptr) continue;
    if (table_in_use) {
      if (cached(state.port_to_vsan).at(index) != *vsan) continue;
      ++in_vsan;
      if (has_vsan(entry, *vsan)) {
        ++bound;
        last_bound = interface;
      }
      last_in_vsan = interface;
    } else if (has_vsan(entry, *vsan)) {
      ++bound;
      last_bound = interface;
    }
  }

  if (candidates == 1) {
    decided.insert("PN to port: one candidate");
    *if_index = last_candidate;
    return 0;
  }
  *if_index = 0;
  if (candidates == 0) {
    decided.insert("PN to port: no candidate");
    return FICON_RC_NO_IF;
  }
  if (vsan == nullptr) {
    decided.insert("PN to port: several, no VSAN given");
    return FICON_RC_MULTI_IF;
  }
  if (in_vsan == 1) {
    decided.insert("PN to port: one in the VSAN");
    *if_index = last_in_vsan;
    return 0;
  }
  if (in_vsan == 0 && table_in_use) {
    decided.insert("PN to port: none in the VSAN");
    return FICON_RC_NO_IF;
  }
  if (in_vsan == 0) {
    if (bound == 1) {
      decided.insert("PN to port: one bound");
      *if_index = last_bound;
      return 0;
    }
    decided.insert(bound == 0 ? "PN to port: none bound" : "PN to port: several bound");
    return bound == 0 ? FICON_RC_NO_IF : FICON_RC_MULTI_IF;
  }
  if (bound == 1) {
    decided.insert("PN to port: several in the VSAN, one bound");
    *if_index = last_bound;
    return 0;
  }
  if (bound == 0) {
    decided.insert("PN to port: several in the VSAN, none bound");
    *if_index = last_in_vsan;
    *flag = 0;
    return FICON_RC_MULTI_IF;
  }
  decided.insert("PN to port: several in the VSAN, several bound");
  return FICON_RC_MULTI_IF;
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

// ---- logical interfaces, a VSAN's ports, slot and port ----

uint32_t port_map_model::ficon_pmap_get_pn_logif(uint16_t* pns, uint32_t* if_indexes, uint32_t* count) {
  const int32_t status = ficon_get_pmap_pnif();
  if (status != 0) {
    log_error([&] { return text_of("ficon_pmap_get_pn_logif(3607):failed to get pmap_pnif %d\n", status); });
    return as_unsigned(status);
  }
  uint32_t appended = 0;
  for (int32_t pn = 0; pn < state.max_ficon_ports; ++pn) {
    const uint32_t if_index = cached(state.pn_to_logif).at(pn);
    if (if_index == 0) continue;
    pns[appended] = static_cast<uint16_t>(pn);
    if_indexes[appended] = if_index;
    ++appended;
  }
  *count = appended;
  return 0;
}

template <class Value>
Value* port_map_model::allocate_for_caller(size_t count, uint32_t type, int line) {
  const auto size = static_cast<uint32_t>(count * sizeof(Value));
  if (!services_.memacct_alloc(type, size)) {
    malloc_warning(line, size);
    return nullptr;
  }
  auto* values = static_cast<Value*>(calloc(count + 1, sizeof(Value)));
  if (values == nullptr) throw std::bad_alloc();
  return values;
}

uint32_t port_map_model::ficon_pmap_get_info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes,
                                                     uint32_t** bound, uint32_t* count) {
  int32_t status = ficon_get_pmap_portvsan(vsan);
  if (status != 0) {
    log_error([&] {
      return text_of("ficon_pmap_get_info_in_vsan(3637):failed to get pmap_portvsan (%#x)\n", as_unsigned(status));
    });
    return as_unsigned(status);
  }
  status = ficon_get_pmap_portpn();
  if (status != 0) {
    log_error([&] {
      return text_of("ficon_pmap_get_info_in_vsan(3644):failed to get pmap_portpn (%#x)\n", as_unsigned(status));
    });
    return as_unsigned(status);
  }

  const auto port_to_vsan = cached(state.port_to_vsan);
  size_t room = 0;
  for (int index = 0; index <= 1279; ++index) {
    if (port_to_vsan.at(index) == vsan) ++room;
  }
  *pns = allocate_for_caller<uint16_t>(room, 5, 3665);
  *pas = allocate_for_caller<uint16_t>(room, 5, 3669);
  *if_indexes = allocate_for_caller<uint32_t>(room, 1, 3673);
  *bound = allocate_for_caller<uint32_t>(room, 5, 3677);

  uint32_t appended = 0;
  for (int index = 0; index <= 1023; ++index) {
    if (port_to_vsan.at(index) != vsan) continue;
    uint32_t if_index = 0;
    if (ficon_pmap_get_index_to_phyif(index, &if_index) != 0) continue;
    const ficon_pmap_port_entry& entry = cached(state.port_to_pn).at(index);
    if (*pns != nullptr) (*pns)[appended] = entry.pn;
    if (*pas != nullptr) (*pas)[appended] = entry.pa;
    if (*if_indexes != nullptr) (*if_indexes)[appended] = if_index;
    if (*bound != nullptr) (*bound)[appended] = has_vsan(entry, vsan) ? 1 : 0;
    ++appended;
  }
  *count = appended;
  return 0;
}

int32_t port_map_model::ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag) {
  uint8_t type = 0;
  int32_t status = services_.if_index_get_type(if_index, type);
  if (status != 0) {
    log_error([&] { return text_of("failed to get if type for if_index:%#x (%d)\n", if_index, status); });
    return status;
  }
  if (type == 4 || type == 10) {
    *flag = 1;
    return 0;
  }
  if (type != 1) {
    log_error([&] { return text_of("if_index %#x not fc port. type = %d\n", if_index, type); });
    return 11;
  }
  *flag = 0;
  status = services_.if_index_get_slot(if_index, *slot);
  if (status != 0) {
    log_error([&] { return text_of("Failed to get slot for if_index %#x (%d)\n", if_index, status); });
    return status;
  }
  status = services_.if_index_get_port(if_index, *port);
  if (status != 0) {
    log_error([&] { return text_of("Failed to get port for if_index %#x (%d)\n", if_index, status); });
    return status;
  }
  return 0;
}

} // namespace chnsw_test
