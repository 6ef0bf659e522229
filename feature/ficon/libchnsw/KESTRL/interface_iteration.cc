// The walk over the numbered physical interfaces, and a port address turned into an interface.
#include <libchnsw.h>

#include "port_map_tables.h"
#include "port_services.h"

namespace {

constexpr uint32_t kLastPhysicalIndex = FICON_PMAP_PHYS_ENTRIES - 1;
constexpr int32_t kLastPosition = FICON_PMAP_PORTS_PER_LC - 1;

bool is_numbered(const ficon_pmap_port_entry& entry) {
  return entry.pn != FICON_PMAP_NO_NUMBER && entry.pa != FICON_PMAP_NO_NUMBER;
}

// Where the walk stands: the physical port map index of an interface that has numbers.
// Oddity: FICON_RC_NOT_FC_PORT, a plain 11, for an index behind the physical ones; clients test for it.
int32_t find_index(uint32_t if_index, uint32_t& index) {
  ficon_pmap_port_entry entry = chnsw::kNoEntry;
  const int32_t status = ficon_pmap_get_if_to_pnpa_index_with2pmaps(if_index, &entry, &index, nullptr, nullptr, 0);
  if (status != 0) return status;
  if (index > kLastPhysicalIndex) return FICON_RC_NOT_FC_PORT;
  return is_numbered(entry) ? 0 : FICON_RC_INVALID_ARG;
}

// Returned where an index is expected: none. Index 0 never is the next one.
constexpr uint32_t kNoIndex = 0;

// Oddity: behind an empty position only the first port of the next line card is tried; the rest of this card is not
// searched.
uint32_t next_numbered_index(uint32_t index) {
  const uint32_t neighbour = index + 1;
  if (is_numbered(ficon_pmap_port_to_pn[neighbour])) return neighbour;
  const uint32_t next_card = (index / FICON_PMAP_PORTS_PER_LC + 1) * FICON_PMAP_PORTS_PER_LC;
  if (next_card > kLastPhysicalIndex || !is_numbered(ficon_pmap_port_to_pn[next_card])) return kNoIndex;
  return next_card;
}

} // namespace

int32_t ficon_pmap_get_next_if(uint32_t if_index, uint32_t* next_if_index) {
  uint32_t index = 0;
  int32_t status = find_index(if_index, index);
  if (status != 0) return status;
  if (index == kLastPhysicalIndex) return FICON_RC_PLATFORM;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;

  const uint32_t next = next_numbered_index(index);
  if (next == kNoIndex) return FICON_RC_PLATFORM;
  return chnsw::build_interface(static_cast<uint8_t>(next / FICON_PMAP_PORTS_PER_LC),
                                static_cast<uint8_t>(next % FICON_PMAP_PORTS_PER_LC), next_if_index);
}

int32_t ficon_pmap_get_last_if(uint32_t if_index, uint32_t* last_if_index) {
  uint32_t index = 0;
  int32_t status = find_index(if_index, index);
  if (status != 0) return status;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;

  // Oddity: on line card 4 too the walk starts at 253, although its physical positions end at 7: what it meets first
  // there are the entries without a physical port.
  const uint32_t line_card = index / FICON_PMAP_PORTS_PER_LC;
  const int32_t own_position = static_cast<int32_t>(index % FICON_PMAP_PORTS_PER_LC);
  const ficon_pmap_port_entry* first = ficon_pmap_port_to_pn + line_card * FICON_PMAP_PORTS_PER_LC;
  int32_t position = kLastPosition;
  while (position >= own_position && !is_numbered(first[position])) --position;
  // Oddity: when the table changed since the look-up and none is left, this is one before the own position, 255 before 0.
  return chnsw::build_interface(static_cast<uint8_t>(line_card), static_cast<uint8_t>(position), last_if_index);
}

uint32_t ficon_pmap_get_pa_to_if(int32_t pa, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_to_pn(pa, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_to_if(pn, if_index);
}

uint32_t ficon_pmap_get_pa_vsan_to_if(int32_t pa, uint32_t vsan, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_vsan_to_pn(pa, vsan, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_vsan_to_if(pn, vsan, if_index);
}

uint32_t ficon_pmap_get_pa_to_if_fast(int32_t pa, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_to_pn_fast(pa, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_to_if_fast(pn, if_index);
}

uint32_t ficon_pmap_get_pa_vsan_to_if_fast(int32_t pa, uint32_t vsan, uint32_t* if_index) {
  uint16_t pn = 0;
  const uint32_t status = ficon_pmap_get_pa_vsan_to_pn_fast(pa, vsan, &pn);
  return status != 0 ? status : ficon_pmap_get_pn_vsan_to_if_fast(pn, vsan, if_index);
}
