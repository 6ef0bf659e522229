// How a number is searched for among the ports: the one downward walk, the one VSAN tally, the one decision. The three
// translations that choose among several ports (address/number, number to interface, number to physical interface) share
// them; each only says what qualifies an entry and what it does with the verdict.
#ifndef KESTRL_PORT_MAP_SEARCH_H
#define KESTRL_PORT_MAP_SEARCH_H

#include <cstdint>

#include <libchnsw.h>

namespace chnsw {

// The VSAN of one search.
struct vsan_choice {
  const uint32_t* given; // nullptr: none; read anew at every entry
  uint32_t read = 0;     // as last read; 0 before
  int32_t use_table = 0; // whether ficon_pmap_port_to_vsan may be read

  explicit vsan_choice(const uint32_t* vsan) : given(vsan) {}
};

// Makes the tables of one search ready: a fast one takes them as they are, any other has fetch_others fetch its own, then
// fetches the VSANs'. Returns the status of a failed fetch.
uint32_t prepare(vsan_choice& vsan, int32_t fast, int32_t (*fetch_others)());

// Fetches the port-to-VSAN table when a VSAN is given, and settles whether it may be read. Returns 0 also when the table is
// unavailable but the search can do without it.
uint32_t fetch_port_to_vsan(vsan_choice& vsan);

// What a walk has counted and remembered. Walking downward, what it remembers is of the lowest index in the end.
struct port_tally {
  int32_t count = 0;     // entries that qualify
  int32_t bound = 0;     // those bound to the VSAN
  int32_t in_vsan = 0;   // those whose port is in the VSAN now
  uint32_t last;         // answers: of the last entry met,
  uint32_t last_bound;   // the last bound one,
  uint32_t last_in_vsan; // the last in the VSAN

  explicit port_tally(uint32_t answer_before)
      : last(answer_before), last_bound(answer_before), last_in_vsan(answer_before) {}
};

// Counts an entry for the VSAN, and remembers its answer.
void tally_vsan(port_tally& tally, vsan_choice& vsan, int32_t index, const ficon_pmap_port_entry& entry, uint32_t answer);

enum class verdict {
  one,                // one port answers: answer_of tells its answer
  none,               // no entry qualifies
  none_in_vsan,       // some qualify, but not in this VSAN
  several,            // more than one answers
  several_but_unbound // several are in the VSAN and none is bound to it: the lowest is handed back all the same
};

struct decision {
  verdict outcome;
  uint32_t answer; // with one and several_but_unbound
};

decision decide(const port_tally& tally, const vsan_choice& vsan);

// The highest index below `below` whose entry carries number, or -1. The number is compared by all its bits.
//
// Sixteen comparisons a step, each one instruction and a branch never taken, make this 1.2 times a memchr over the table; a
// plain loop takes twice the time (bench/port_map). Keep whatever handles a match out of line, or the loop loses its
// registers.
template <uint16_t ficon_pmap_port_entry::*field>
inline int32_t next_lower_match(const ficon_pmap_port_entry* table, int32_t below, int32_t number) {
  if (number < 0 || number > UINT16_MAX) return -1;
  const uint16_t wanted = static_cast<uint16_t>(number);
  const ficon_pmap_port_entry* entry = table + below;
  const ficon_pmap_port_entry* const last_step = table + 15;
  while (entry > last_step) {
#pragma GCC unroll 16
    for (int k = 1; k <= 16; ++k) {
      if (entry[-k].*field == wanted) return static_cast<int32_t>(entry - table) - k;
    }
    entry -= 16;
  }
  while (entry != table) {
    --entry;
    if (entry->*field == wanted) return static_cast<int32_t>(entry - table);
  }
  return -1;
}

// Hands qualify the index of every entry among the first `entries` that carries number, from the highest down.
template <uint16_t ficon_pmap_port_entry::*field, typename qualifier>
inline void walk_down(const ficon_pmap_port_entry* table, int32_t entries, int32_t number, qualifier&& qualify) {
  int32_t index = entries;
  while ((index = next_lower_match<field>(table, index, number)) >= 0) qualify(index);
}

} // namespace chnsw

#endif
