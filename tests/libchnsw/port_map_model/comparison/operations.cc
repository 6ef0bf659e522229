#include "operations.h"

#include <climits>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <tuple>

namespace chnsw_test {
namespace {

// ---- arguments ----

const uint32_t* vsan(const drawn_call& d, const outputs& o) {
  return d.with_vsan ? &o.vsan : nullptr;
}
uint16_t* pn(const drawn_call& d, outputs& o) {
  return d.null_result ? nullptr : &o.pn;
}
uint16_t* pa(const drawn_call& d, outputs& o) {
  return d.null_result ? nullptr : &o.pa;
}
uint32_t* if_index(const drawn_call& d, outputs& o) {
  return d.null_result ? nullptr : &o.if_index;
}
ficon_pmap_port_entry* entry(const drawn_call& d, outputs& o) {
  return d.null_result ? nullptr : &o.entry;
}
uint32_t* flag(const drawn_call& d, outputs& o) {
  return d.null_flag ? nullptr : &o.flag;
}

int32_t entry_count(const drawn_call& d) {
  constexpr int32_t kCounts[] = {1280, 1281, 1778, 3400, 1280, 1279, 1000, 0, -5};
  return kCounts[d.slot % std::size(kCounts)];
}
int32_t address_count(const drawn_call& d) {
  constexpr int32_t kCounts[] = {0, 0, -1, 3, 16, 64, 254, 512};
  return kCounts[d.port % std::size(kCounts)];
}
uint32_t any_slot(const drawn_call& d) {
  return d.port >= 254 ? d.port + 2u : d.slot;
}
int32_t pn_bound(const drawn_call& d) {
  const int32_t bounds[] = {MAX_FICON_PORTS, 512, 254, 8, 2, 0, -1, INT_MAX};
  return bounds[d.port % std::size(bounds)];
}

// ---- operations ----

struct operation {
  std::initializer_list<unsigned> draws; // that mean this one
  void (*call)(operation_caller& caller);
};

// An operation of library and model, with the arguments that it gets of what was drawn (d) and the outputs of a side (o).
#define OPERATION(name, ...)                                                                     \
  [](operation_caller& caller) {                                                                 \
    [[maybe_unused]] const drawn_call& d = caller.drawn();                                       \
    const auto arguments = [&]([[maybe_unused]] outputs& o) { return std::tuple(__VA_ARGS__); }; \
    caller.call(#name, &::name, &port_map_model::name, arguments);                               \
  }

constexpr operation kTableOperations[] = {
    {{0}, OPERATION(ficon_get_platform_info, &o.info)},
    {{1}, OPERATION(ficon_get_pmap_portvsan, d.vsan)},
    {{2}, OPERATION(ficon_get_pmap_portpn)},
    {{3}, OPERATION(ficon_get_pmap_papn)},
    {{4}, OPERATION(ficon_get_pmap_pnif)},
    {{5}, OPERATION(ficon_cmi_get_pmap_change_counter, &o.count)},
    {{6}, OPERATION(ficon_cmi_get_max_portnumber)},
    {{7}, OPERATION(ficon_get_max_ficon_ports)},
    {{8, 9, 10, 11}, OPERATION(ficon_pmap_prepare_fastpath, d.vsan)},
};

constexpr operation kAddressOperations[] = {
    {{0, 1, 2}, OPERATION(ficon_pmap_get_pa_to_pn_withpvsan, d.number, vsan(d, o), pn(d, o), flag(d, o), d.fast)},
    {{3}, OPERATION(ficon_pmap_get_pa_to_pn, d.number, pn(d, o))},
    {{4}, OPERATION(ficon_pmap_get_pa_vsan_to_pn, d.number, d.vsan, pn(d, o))},
    {{5}, OPERATION(ficon_pmap_get_pa_to_pn_fast, d.number, pn(d, o))},
    {{6}, OPERATION(ficon_pmap_get_pa_vsan_to_pn_fast, d.number, d.vsan, pn(d, o))},
    {{7, 8, 9}, OPERATION(ficon_pmap_get_pn_to_pa_withpvsan, d.number, vsan(d, o), pa(d, o), flag(d, o), d.fast)},
    {{10}, OPERATION(ficon_pmap_get_pn_to_pa, d.number, pa(d, o))},
    {{11}, OPERATION(ficon_pmap_get_pn_vsan_to_pa, d.number, d.vsan, pa(d, o))},
    {{12}, OPERATION(ficon_pmap_get_pn_to_pa_fast, d.number, pa(d, o))},
    {{13}, OPERATION(ficon_pmap_get_pn_vsan_to_pa_fast, d.number, d.vsan, pa(d, o))},
    {{14}, OPERATION(ficon_pmap_get_pa_to_if, d.number, if_index(d, o))},
    {{15}, OPERATION(ficon_pmap_get_pa_vsan_to_if, d.number, d.vsan, if_index(d, o))},
    {{16}, OPERATION(ficon_pmap_get_pa_to_if_fast, d.number, if_index(d, o))},
    {{17}, OPERATION(ficon_pmap_get_pa_vsan_to_if_fast, d.number, d.vsan, if_index(d, o))},
    {{18}, OPERATION(ficon_pmap_get_pa_to_phyif, d.number, if_index(d, o))},
    {{19}, OPERATION(ficon_pmap_get_pa_vsan_to_phyif, d.number, d.vsan, if_index(d, o))},
};

constexpr operation kNumberingOperations[] = {
    {{0, 1}, OPERATION(ficon_port_to_pn_init, entry_count(d), o.numbering, address_count(d), d.pa_to_pn)},
    {{2, 3}, OPERATION(ficon_port_to_pn_is_default, o.numbering)},
    {{4, 5}, OPERATION(ficon_get_default_pn, any_slot(d), d.fast != 0 && d.with_vsan ? 7u : 0u, o.pns.data())},
    {{6}, OPERATION(ficonm_platform_slot_to_lc_b0, d.slot, &o.line_card)},
    {{7}, OPERATION(ficonm_platform_lc_to_slot_b0, d.slot, &o.slot)},
    {{8},
     OPERATION(ficonm_platform_slot_to_pnpa_index_withpmap, d.slot + (d.with_vsan ? 256u : 0u), d.port, &o.entry, &o.index,
               d.passed_port_to_pn())},
    {{9}, OPERATION(ficonm_platform_slot_to_pnpa_index, d.slot, d.port, &o.entry, &o.index)},
    {{10}, OPERATION(ficonm_platform_slot_to_pnpa, d.slot, d.port, &o.entry)},
    {{11}, OPERATION(ficonm_platform_slot_to_pn, d.slot, d.port)},
};

constexpr operation kNumberOperations[] = {
    {{0, 1, 2}, OPERATION(ficon_pmap_get_pn_to_if_withpvsan, d.number, vsan(d, o), if_index(d, o), flag(d, o), d.fast)},
    {{3}, OPERATION(ficon_pmap_get_pn_vsan_to_if_fast, d.number, d.vsan, if_index(d, o))},
    {{4}, OPERATION(ficon_pmap_get_pn_to_if_fast, d.number, if_index(d, o))},
    {{5}, OPERATION(ficon_pmap_get_pn_vsan_to_if, d.number, d.vsan, if_index(d, o))},
    {{6}, OPERATION(ficon_pmap_get_pn_to_if, d.number, if_index(d, o))},
    {{7, 16, 17},
     OPERATION(ficon_pmap_get_index_to_if_withpmap, d.index, static_cast<uint32_t>(d.number), &o.if_index,
               d.passed_pn_to_if())},
    {{8, 18}, OPERATION(ficon_pmap_get_index_to_if, d.index, static_cast<uint32_t>(d.number), &o.if_index)},
    {{9, 10}, OPERATION(ficon_pmap_get_index_to_phyif, d.index, &o.if_index)},
    {{11, 12, 13},
     OPERATION(ficon_pmap_get_pn_to_phyif_withpvsan, d.number, vsan(d, o), pn_bound(d), if_index(d, o), d.passed_pn_to_if(),
               flag(d, o))},
    {{14}, OPERATION(ficon_pmap_get_pn_to_phyif, d.number, if_index(d, o), pn_bound(d), d.passed_pn_to_if())},
    {{15, 19},
     OPERATION(ficon_pmap_get_pn_vsan_to_phyif, d.number, d.vsan, if_index(d, o), pn_bound(d), d.passed_pn_to_if())},
};

constexpr operation kInterfaceOperations[] = {
    {{0, 1},
     OPERATION(ficon_pmap_get_if_to_pnpa_index_with2pmaps, d.if_index, entry(d, o), &o.index, d.passed_pn_to_if(),
               d.passed_port_to_pn(), d.skip_lag_check)},
    {{2},
     OPERATION(ficon_pmap_get_if_to_pnpa_index_withpmap, d.if_index, entry(d, o), &o.index, d.passed_pn_to_if(),
               d.skip_lag_check)},
    {{3}, OPERATION(ficon_pmap_get_if_to_pnpa_withpmap, d.if_index, entry(d, o), d.passed_pn_to_if(), d.skip_lag_check)},
    {{4}, OPERATION(ficon_pmap_get_if_to_pn_withpmap, d.if_index, &o.pn, d.passed_pn_to_if(), d.skip_lag_check)},
    {{5}, OPERATION(ficon_pmap_get_if_to_pn, d.if_index, &o.pn)},
    {{6}, OPERATION(ficon_pmap_get_if_to_pa, d.if_index, &o.pa)},
    {{7}, OPERATION(ficon_pmap_get_if_to_index, d.if_index, &o.index)},
    {{8},
     OPERATION(ficon_pmap_get_if_to_index_with2pmaps, d.if_index, &o.index, d.passed_pn_to_if(), d.passed_port_to_pn(),
               d.skip_lag_check)},
    {{9, 10}, OPERATION(ficon_pmap_get_next_if, d.if_index, &o.if_index)},
    {{11, 12}, OPERATION(ficon_pmap_get_last_if, d.if_index, &o.if_index)},
    {{13}, OPERATION(ficon_if_to_slot_port_logic, d.if_index, &o.slot, &o.port, &o.flag)},
};

constexpr operation kBulkOperations[] = {
    {{0}, OPERATION(ficon_pmap_get_pn_logif, o.pns.data(), o.if_indexes.data(), &o.count)},
    {{1}, OPERATION(ficon_pmap_get_info_in_vsan, d.vsan, &o.pn_list, &o.pa_list, &o.if_list, &o.bound_list, &o.count)},
};

#undef OPERATION

// ---- families ----

struct family {
  unsigned below; // the byte that draws it
  unsigned draws; // of its operations
  const operation* operations;
  size_t count;
};

constexpr family kFamilies[] = {
    {32, 12, kTableOperations, std::size(kTableOperations)},
    {96, 20, kAddressOperations, std::size(kAddressOperations)},
    {120, 12, kNumberingOperations, std::size(kNumberingOperations)},
    {184, 20, kNumberOperations, std::size(kNumberOperations)},
    {240, 14, kInterfaceOperations, std::size(kInterfaceOperations)},
    {256, 2, kBulkOperations, std::size(kBulkOperations)},
};

const family& family_of(unsigned byte) {
  const family* found = kFamilies;
  while (byte >= found->below) ++found;
  return *found;
}

} // namespace

void call_drawn_operation(operation_caller& caller) {
  const family& drawn = family_of(caller.drawn().family);
  const unsigned draw = caller.drawn().operation % drawn.draws;
  for (size_t n = 0; n < drawn.count; ++n) {
    for (const unsigned each : drawn.operations[n].draws) {
      if (each == draw) return drawn.operations[n].call(caller);
    }
  }
  throw std::logic_error("no operation is drawn by this number");
}

} // namespace chnsw_test
