// Sets of VSANs, as messages carry them.
#ifndef VSWITCH_MANAGER_VSAN_SET_H
#define VSWITCH_MANAGER_VSAN_SET_H

#include <libchnsw.h>

#include <cstdint>
#include <span>
#include <vector>

namespace vswitch {

vsan_block no_vsans();
bool holds_vsan(const vsan_block& set, uint32_t vsan); // 0 to 4095
void add_vsan(vsan_block& set, uint32_t vsan);         // 0 to 4095
std::vector<uint16_t> vsans_of(const vsan_block& set); // ascending

// The VSANs that entries of a port map are bound to; numbers that no VSAN can have are left out.
vsan_block bound_vsans(std::span<const ficon_pmap_port_entry> entries);

} // namespace vswitch

#endif
