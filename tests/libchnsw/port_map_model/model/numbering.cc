// Default numbering, and slots beside line cards.
#include "port_map_model.h"

#include <algorithm>

namespace chnsw_test {

namespace {

// A chassis type that a row is not particular about.
constexpr int32_t kAny = -1000;

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

void lay_out(const numbering& layout, ficon_pmap_port_entry* entries) {
  for (int g = 0; g < layout.groups; ++g) {
    for (int k = 0; k < layout.numbers; ++k) {
      entries[g * layout.stride + k].pn = static_cast<uint16_t>(g * layout.numbers + k);
    }
  }
  for (int k = 0; k < 14; ++k) entries[1024 + k].pn = static_cast<uint16_t>(layout.first_portless + k);
}

// The first of the two slots of supervisors, from 0; -1 when there are none.
int first_supervisor(int num_slots, int32_t chassis_type) {
  switch (num_slots) {
    case 6:
      return chassis_type == 34 ? 2 : 4;
    case 9:
    case 10:
      return 4;
    case 13:
      return 6;
    case 18:
      return 8;
    default:
      return -1;
  }
}

} // namespace

// ---- default numbering ----

// 0, or -1 and -2 when platform information or chassis type cannot be had.
int32_t port_map_model::ask_chassis(int& num_slots, int32_t& chassis_type) {
  ficon_platform_info info{};
  if (services_.get_platform_info(info) != 0) return -1;
  num_slots = info.num_slots;
  return services_.hwinv_get_chassis_type(chassis_type) != 0 ? -2 : 0;
}

int32_t port_map_model::ficon_port_to_pn_init(int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count,
                                              const uint16_t* pa_to_pn) {
  for (int32_t n = 0; n < count; ++n) entries[n] = {512, 512, {0, 0, 0, 0, 0, 0, 0, 0}};

  int num_slots = 0;
  int32_t chassis_type = -1;
  const int32_t status = ask_chassis(num_slots, chassis_type);
  if (status != 0) return status;
  if (count <= 1279) return -3;
  log_debug(text_of("ficon_port_to_pn_init(1602): Num Slots: %d Chassis Type: %d\n", num_slots, chassis_type));

  const numbering* layout = row_of(kLaidOut, num_slots, chassis_type);
  if (layout == nullptr) return 0;
  lay_out(*layout, entries);
  if (num_slots == 10) {
    services_.printed += text_of("chassis_type: %d\n", chassis_type);
    services_.printed += text_of("num_slots:    %d\n", num_slots);
  }
  for (int32_t n = 0; pa_count > 0 && n < count; ++n) {
    const auto* const found = std::find(pa_to_pn, pa_to_pn + pa_count, entries[n].pn);
    if (found != pa_to_pn + pa_count) entries[n].pa = static_cast<uint16_t>(found - pa_to_pn);
  }
  return layout->first_portless;
}

int32_t port_map_model::ficon_port_to_pn_is_default(const ficon_pmap_port_entry* entries) {
  int num_slots = 0;
  int32_t chassis_type = -1;
  const int32_t status = ask_chassis(num_slots, chassis_type);
  if (status != 0) return status;
  const numbering* layout = row_of(kTestedFor, num_slots, chassis_type);
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
  int num_slots = 0;
  int32_t chassis_type = -1;
  if (ask_chassis(num_slots, chassis_type) != 0) return FICON_RC_BASE;
  uint8_t line_card = 0;
  if (logical == 0) {
    const int32_t status = ficonm_platform_slot_to_lc_b0(static_cast<uint8_t>(slot - 1), &line_card);
    if (status != 0) return as_unsigned(status);
  }
  const int length = logical == 0 ? 254 : 256;
  for (int n = 0; n < length; ++n) pns[n] = 512;
  const numbering* row = row_of(kOfOneSlot, num_slots, chassis_type);
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

// The same with platform information from the cache; a chassis type that cannot be had is reported.
int32_t port_map_model::ask_cached_chassis(int& num_slots, int32_t& chassis_type) {
  ficon_platform_info info{};
  if (ficon_get_platform_info(&info) != 0) return as_signed(FICON_RC_PLATFORM);
  num_slots = info.num_slots;
  if (services_.hwinv_get_chassis_type(chassis_type) == 0) return 0;
  log_error([&] { return text_of("hwinv_get_chassis_type failed, errno = %d", services_.error); });
  return as_signed(FICON_RC_PLATFORM);
}

int32_t port_map_model::ficonm_platform_slot_to_lc_b0(uint8_t slot, uint8_t* lc) {
  int num_slots = 0;
  int32_t chassis_type = -1;
  const int32_t status = ask_cached_chassis(num_slots, chassis_type);
  if (status != 0) return status;
  if (num_slots <= slot) return as_signed(FICON_RC_INVALID_ARG);
  const int supervisor = first_supervisor(num_slots, chassis_type);
  if (supervisor < 0) {
    *lc = slot;
    return 0;
  }
  if (slot == supervisor || slot == supervisor + 1) return as_signed(FICON_RC_INVALID_ARG);
  *lc = static_cast<uint8_t>(slot < supervisor ? slot : slot - 2);
  return 0;
}

int32_t port_map_model::ficonm_platform_lc_to_slot_b0(uint8_t lc, uint8_t* slot) {
  int num_slots = 0;
  int32_t chassis_type = -1;
  const int32_t status = ask_cached_chassis(num_slots, chassis_type);
  if (status != 0) return status;
  const int line_cards = num_slots > 2 ? num_slots - 2 : num_slots;
  if (line_cards <= lc) return as_signed(FICON_RC_INVALID_ARG);
  const bool behind_supervisors = (num_slots == 6 && chassis_type == 34 && lc > 1) || (num_slots == 9 && lc > 3) ||
                                  (num_slots == 10 && lc > 3) || (num_slots == 13 && lc > 5) || (num_slots == 18 && lc > 7);
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

} // namespace chnsw_test
