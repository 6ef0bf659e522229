// All numbers that interfaces are bound to, and the ports of a VSAN.
#include "port_map_model.h"

#include <cstdlib>
#include <new>

#include "search.h"

namespace chnsw_test {

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

} // namespace chnsw_test
