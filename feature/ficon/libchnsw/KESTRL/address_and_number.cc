// Port address and port number turned into each other.
#include <libchnsw.h>

#include "port_map_search.h"
#include "port_map_tables.h"
#include "report.h"

namespace {

using chnsw::port_tally;
using chnsw::vsan_choice;
using entry_field = uint16_t ficon_pmap_port_entry::*;

// What tells the two directions apart.

struct pa_to_pn {
  static constexpr entry_field kSearched = &ficon_pmap_port_entry::pa;
  static constexpr entry_field kAnswer = &ficon_pmap_port_entry::pn;
  static constexpr uint32_t kOutOfRange = FICON_RC_PA_RANGE;
  static constexpr char kName[] = "ficon_pmap_get_pa_to_pn_withpvsan";
  static constexpr int kEntryLine = 1861;
  static constexpr int kEndLine = 1890;

  // Oddity: an entry bound to no VSAN is remembered but not counted. So the answer of a single counted entry is that of the
  // lowest entry that carries the address, counted or not.
  static bool counts(const ficon_pmap_port_entry& entry) { return chnsw::is_bound(entry); }

  static void trace_entry(int32_t index, const ficon_pmap_port_entry& entry) {
    ficon_log_debug("%s(%d) pn(%d) pa(%d) (%d) vsans(%d %d %d %d %d %d %d %d)\n", kName, kEntryLine, entry.pn, entry.pa,
                    index, entry.vsans[0], entry.vsans[1], entry.vsans[2], entry.vsans[3], entry.vsans[4], entry.vsans[5],
                    entry.vsans[6], entry.vsans[7]);
  }

  static void trace_end(const port_tally& tally, const vsan_choice& vsan) {
    ficon_log_debug("%s(%d): Count(%d) Bound(%d) Bound PN(%d) Vsan(%d) In Vsan(%d) gvp(%d) vsan_pn(%d)\n", kName, kEndLine,
                    tally.count, tally.bound, tally.last_bound, vsan.read, tally.in_vsan, vsan.use_table,
                    tally.last_in_vsan);
  }
};

struct pn_to_pa {
  static constexpr entry_field kSearched = &ficon_pmap_port_entry::pn;
  static constexpr entry_field kAnswer = &ficon_pmap_port_entry::pa;
  static constexpr uint32_t kOutOfRange = FICON_RC_PN_RANGE;

  static bool counts(const ficon_pmap_port_entry&) { return true; }
  static void trace_entry(int32_t, const ficon_pmap_port_entry&) {}
  static void trace_end(const port_tally&, const vsan_choice&) {}
};

template <typename direction>
[[gnu::noinline]] void meet(int32_t index, const ficon_pmap_port_entry& entry, port_tally& tally, vsan_choice& vsan) {
  const uint16_t answer = entry.*direction::kAnswer;
  tally.last = answer;
  if (direction::counts(entry)) ++tally.count;
  direction::trace_entry(index, entry);
  chnsw::tally_vsan(tally, vsan, index, entry, answer);
}

uint32_t conclude(const chnsw::decision& decided, int32_t number, uint16_t* answer, uint32_t* flag) {
  switch (decided.outcome) {
    case chnsw::verdict::one:
      *answer = static_cast<uint16_t>(decided.answer);
      return 0;
    case chnsw::verdict::none:
      *answer = static_cast<uint16_t>(number);
      return FICON_RC_PLATFORM;
    case chnsw::verdict::none_in_vsan:
      return FICON_RC_PLATFORM;
    case chnsw::verdict::several:
      return FICON_RC_MULTI_IF;
    case chnsw::verdict::several_but_unbound:
      *answer = static_cast<uint16_t>(decided.answer);
      *flag = 0;
      return FICON_RC_MULTI_IF;
  }
  __builtin_unreachable();
}

template <typename direction>
uint32_t translate(int32_t number, const uint32_t* given_vsan, uint16_t* answer, uint32_t* flag, int32_t fast) {
  if (answer == nullptr || flag == nullptr) return FICON_RC_INVALID_ARG;
  *flag = 1;

  vsan_choice vsan(given_vsan);
  const uint32_t status = chnsw::prepare(vsan, fast, ficon_get_pmap_portpn);
  if (status != 0) return status;

  port_tally tally(static_cast<uint16_t>(number));
  // Oddity: the control unit port comes before the range test, and ends like a number that nothing carries.
  if (number == FICON_PORT_CUP) {
    *answer = FICON_PORT_CUP;
    direction::trace_end(tally, vsan);
    return FICON_RC_PLATFORM;
  }
  if (number >= MAX_FICON_PORTS) return direction::kOutOfRange;

  const ficon_pmap_port_entry* table = ficon_pmap_port_to_pn;
  chnsw::walk_down<direction::kSearched>(table, FICON_PMAP_PORT_ENTRIES, number,
                                         [&](int32_t index) { meet<direction>(index, table[index], tally, vsan); });
  direction::trace_end(tally, vsan);
  return conclude(chnsw::decide(tally, vsan), number, answer, flag);
}

} // namespace

uint32_t ficon_pmap_get_pa_to_pn_withpvsan(int32_t pa, const uint32_t* vsan, uint16_t* pn, uint32_t* flag, int32_t fast) {
  return translate<pa_to_pn>(pa, vsan, pn, flag, fast);
}

uint32_t ficon_pmap_get_pa_to_pn(int32_t pa, uint16_t* pn) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, nullptr, pn, &discarded_flag, 0);
}

uint32_t ficon_pmap_get_pa_vsan_to_pn(int32_t pa, uint32_t vsan, uint16_t* pn) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, &vsan, pn, &discarded_flag, 0);
}

uint32_t ficon_pmap_get_pa_to_pn_fast(int32_t pa, uint16_t* pn) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, nullptr, pn, &discarded_flag, 1);
}

uint32_t ficon_pmap_get_pa_vsan_to_pn_fast(int32_t pa, uint32_t vsan, uint16_t* pn) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pa_to_pn_withpvsan(pa, &vsan, pn, &discarded_flag, 1);
}

uint32_t ficon_pmap_get_pn_to_pa_withpvsan(int32_t pn, const uint32_t* vsan, uint16_t* pa, uint32_t* flag, int32_t fast) {
  return translate<pn_to_pa>(pn, vsan, pa, flag, fast);
}

uint32_t ficon_pmap_get_pn_to_pa(int32_t pn, uint16_t* pa) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, nullptr, pa, &discarded_flag, 0);
}

uint32_t ficon_pmap_get_pn_vsan_to_pa(int32_t pn, uint32_t vsan, uint16_t* pa) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, &vsan, pa, &discarded_flag, 0);
}

uint32_t ficon_pmap_get_pn_to_pa_fast(int32_t pn, uint16_t* pa) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, nullptr, pa, &discarded_flag, 1);
}

uint32_t ficon_pmap_get_pn_vsan_to_pa_fast(int32_t pn, uint32_t vsan, uint16_t* pa) {
  uint32_t discarded_flag;
  return ficon_pmap_get_pn_to_pa_withpvsan(pn, &vsan, pa, &discarded_flag, 1);
}
