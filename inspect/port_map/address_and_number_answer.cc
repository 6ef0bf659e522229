// Answers about port addresses and port numbers, which several ports may share.
#include "inspect/port_map/port_answer.h"
#include "inspect/port_map/port_map_search.h"
#include "libchnsw.h"

namespace inspect {

namespace {

const uint32_t* vsan_of(const search_options& options) {
  return options.vsan ? &*options.vsan : nullptr;
}

uint32_t interface_of_address(uint32_t pa, const search_options& options, uint32_t& interface) {
  auto number = static_cast<int32_t>(pa);
  const auto& vsan = options.vsan;
  if (options.fast)
    return vsan ? ficon_pmap_get_pa_vsan_to_if_fast(number, *vsan, &interface)
                : ficon_pmap_get_pa_to_if_fast(number, &interface);
  return vsan ? ficon_pmap_get_pa_vsan_to_if(number, *vsan, &interface) : ficon_pmap_get_pa_to_if(number, &interface);
}

// The library has no fast form of this one.
uint32_t physical_interface_of_address(uint32_t pa, const search_options& options, uint32_t& interface) {
  auto number = static_cast<int32_t>(pa);
  return options.vsan ? ficon_pmap_get_pa_vsan_to_phyif(number, *options.vsan, &interface)
                      : ficon_pmap_get_pa_to_phyif(number, &interface);
}

// A number is an answer with status 0, and where the library hands one back in spite of an ambiguity, with its flag
// cleared.
bool is_answered(uint32_t status, uint32_t flag) {
  return status == 0 || (status == FICON_RC_MULTI_IF && flag == 0);
}

// The entry that a number or an address comes from, for what has no interface to be found by.
std::optional<uint32_t> deciding_index(const library_session& session, const search_question& question) {
  return search_port_map(question, tables_of(session)).index;
}

bool has_no_interface(const port_answer& answer) {
  return !is_interface(answer.if_index) && !is_interface(answer.phyif_index);
}

} // namespace

port_answer answer_address(const library_session& session, uint32_t pa, const search_options& options) {
  port_answer answer;
  answer.pa = pa;
  answer.asked_vsan = options.vsan;
  uint16_t pn = 0;
  uint32_t flag = 1;
  answer.status =
      ficon_pmap_get_pa_to_pn_withpvsan(static_cast<int32_t>(pa), vsan_of(options), &pn, &flag, options.fast ? 1 : 0);
  if (is_answered(*answer.status, flag)) answer.pn = pn;
  uint32_t interface = 0;
  answer.if_status = interface_of_address(pa, options, interface);
  answer.if_index = interface;
  uint32_t physical = 0;
  answer.phyif_status = physical_interface_of_address(pa, options, physical);
  answer.phyif_index = physical;
  if (answer.pn && has_no_interface(answer))
    answer.index = deciding_index(session, {translation::pa_to_pn, pa, options.vsan});
  return complete(session, answer);
}

port_answer answer_number(const library_session& session, uint32_t pn, const search_options& options) {
  auto number = static_cast<int32_t>(pn);
  const int32_t fast = options.fast ? 1 : 0;
  port_answer answer;
  answer.pn = pn;
  answer.asked_vsan = options.vsan;
  uint16_t pa = 0;
  uint32_t flag = 1;
  answer.status = ficon_pmap_get_pn_to_pa_withpvsan(number, vsan_of(options), &pa, &flag, fast);
  if (is_answered(*answer.status, flag)) answer.pa = pa;
  uint32_t interface = 0;
  answer.if_status = ficon_pmap_get_pn_to_if_withpvsan(number, vsan_of(options), &interface, &flag, fast);
  answer.if_index = interface;
  uint32_t physical = 0;
  answer.phyif_status = ficon_pmap_get_pn_to_phyif_withpvsan(
      number, vsan_of(options), static_cast<int32_t>(session.ports()), &physical, nullptr, &flag);
  answer.phyif_index = physical;
  if (answer.pa && has_no_interface(answer))
    answer.index = deciding_index(session, {translation::pn_to_pa, pn, options.vsan});
  return complete(session, answer);
}

} // namespace inspect
