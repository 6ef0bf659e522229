// The port map's operations as one would write them first: a loop over the entries, one after the other. They have the
// library's contract, read the same tables and call the same services, so that only the way of searching differs. The
// benchmarks measure the library against them, and a test holds both to the same answers.
#ifndef BENCH_PORT_MAP_PLAIN_FORMS_H
#define BENCH_PORT_MAP_PLAIN_FORMS_H

#include <cstdint>

#include <libchnsw.h>

namespace plain {

// The fast translations. vsan may be nullptr.
uint32_t pa_to_pn_fast(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag);
uint32_t pn_to_pa_fast(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag);
uint32_t pn_to_if_fast(int32_t pn, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag);
uint32_t pa_to_if_fast(int32_t pa, const uint32_t* vsan, uint32_t* if_index, uint32_t* flag);

// The chassis whose default numbers are laid out, G groups of P numbers at a stride, and the first of the 14 others.
struct layout {
  int groups;
  int numbers;
  int stride;
  int first_other;
};

// ficon_port_to_pn_init from the third step on, for a chassis of this layout.
int32_t port_to_pn_init(const layout& layout, int32_t count, ficon_pmap_port_entry* entries, int32_t pa_count,
                        const uint16_t* pa_to_pn);

// As ficon_pmap_get_if_to_index_with2pmaps.
int32_t if_to_index(uint32_t if_index, uint32_t* index, const uint32_t* pn_to_if, const ficon_pmap_port_entry* port_to_pn,
                    int32_t skip_lag_check);

// Both fetch their tables. next_if knows physical ports only.
uint32_t info_in_vsan(uint32_t vsan, uint16_t** pns, uint16_t** pas, uint32_t** if_indexes, uint32_t** bound,
                      uint32_t* count);
int32_t next_if(uint32_t if_index, uint32_t* next_if_index);

} // namespace plain

#endif
