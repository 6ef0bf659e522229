#include "query_answers.h"

#include <platform/if_index.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "map_places.h"
#include "vswitch/interface_index.h"
#include "vswitch/manager/manager_protocol.h"
#include "vswitch/vsan_set.h"

namespace vswitch {

namespace {

constexpr ficon_pmap_port_entry kNoNumbers = {FICON_PMAP_NO_NUMBER, FICON_PMAP_NO_NUMBER, {}};

// A field that a text fills has no NUL. What a client sends is not for the log as it stands.
template <size_t bound>
std::string printable_text(const char (&field)[bound]) {
  std::string text(field, std::find(field, field + bound, '\0'));
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < ' ' || c > '~' || c == '"'; }, '?');
  return text;
}

// What the header's code and texts add to the log; empty when it has none.
std::string remarks(const ficon_cmi_hdr& header) {
  std::string text;
  if (header.code != 0) text += ", code " + std::to_string(header.code);
  if (header.text1[0] != '\0') text += ", \"" + printable_text(header.text1) + '"';
  if (header.text2[0] != '\0') text += ", \"" + printable_text(header.text2) + '"';
  return text;
}

uint32_t state_of(const ficon_pmap_port_entry& entry, uint16_t current_vsan, uint32_t vsan) {
  if (vsan == 0) return 0; // an empty slot, and a port in no VSAN
  const auto& bound = entry.vsans;
  uint32_t state = 0;
  if (current_vsan == vsan) state |= kIfVsanMember;
  if (std::find(std::begin(bound), std::end(bound), vsan) != std::end(bound)) state |= kIfVsanBound;
  return state;
}

uint32_t look_up_state(const chassis_description& chassis, uint32_t if_index, uint32_t vsan, uint32_t& state) {
  if (vsan > kHighestVsan) return FICON_RC_INVALID_ARG;
  map_tables tables = {};
  if (const uint32_t status = fetch_tables(tables)) return status;
  if (const int32_t status = ficon_get_pmap_portvsan(0)) return static_cast<uint32_t>(status);
  const auto index = index_of(chassis, tables, if_index);
  if (!index) return FICON_RC_NO_IF;
  state = state_of(tables.port_to_pn[*index], ficon_pmap_port_to_vsan[*index], vsan);
  return 0;
}

} // namespace

answer answer_port_map(const chassis_description& chassis, payload_view payload) {
  auto record = tlv_record<ficon_portmap_req>(payload, FICON_TLV_PORTMAP);
  if (!record) return plain_answer(FICON_RC_INVALID_ARG, "port map, not well formed");
  const uint32_t if_index = ntoh_if_index(record->if_index);
  ficon_pmap_port_entry numbers = kNoNumbers;
  const uint32_t result = record->selector == 0 ? numbers_of(chassis, if_index, numbers) : uint32_t{FICON_RC_INVALID_ARG};
  record->result = result;
  record->number_a = numbers.pn;
  record->number_b = numbers.pa;
  return {tlv_payload(FICON_TLV_PORTMAP, *record), result,
          "port map of " + interface_name(if_index) + remarks(record->header)};
}

answer answer_enabled_vsans(payload_view payload) {
  const std::string what = "enabled VSANs";
  if (!payload.empty()) return plain_answer(FICON_RC_INVALID_ARG, what + ", not well formed");
  if (const int32_t status = ficon_get_pmap_portpn()) return plain_answer(static_cast<uint32_t>(status), what);
  const vsan_block enabled = bound_vsans({ficon_pmap_port_to_pn, FICON_PMAP_PORT_ENTRIES});
  return {tlv_payload(FICON_TLV_ENABLED_VSANS, enabled), 0, what};
}

answer answer_ifvsan_state(const chassis_description& chassis, payload_view payload) {
  auto record = flat_record<ficon_ifvsan_query>(payload);
  if (!record) return plain_answer(FICON_RC_INVALID_ARG, "VSAN state, not well formed");
  const uint32_t if_index = ntoh_if_index(record->if_index);
  record->state = 0;
  record->result = look_up_state(chassis, if_index, record->arg_a, record->state);
  return {flat_payload(*record), record->result,
          "state of " + interface_name(if_index) + " in VSAN " + std::to_string(record->arg_a)};
}

uint32_t fill_rnid(const chassis_description& chassis, uint32_t if_index, ficon_convert_fn convert,
                   ficon_rnid_rec& record) {
  record.codepage = 0;
  std::fill(std::begin(record.descriptor), std::end(record.descriptor), uint8_t{0});
  if (!has_interface(chassis, if_index)) return record.result = FICON_RC_NO_IF;
  const auto node = chassis.nodes.find(if_index);
  if (node == chassis.nodes.end()) return record.result = FICON_RC_PLATFORM;
  const auto descriptor = host_descriptor(node->second, convert);
  if (!descriptor) return record.result = FICON_RC_CONVERT;
  static_assert(sizeof *descriptor == sizeof record.descriptor);
  store_field(record.descriptor, 0, *descriptor);
  record.codepage = node->second.codepage;
  return record.result = 0;
}

answer answer_rnid(const chassis_description& chassis, payload_view payload, ficon_convert_fn convert) {
  auto record = tlv_record<ficon_rnid_rec>(payload, FICON_TLV_RNID);
  if (!record) return plain_answer(FICON_RC_INVALID_ARG, "RNID, not well formed");
  const uint32_t if_index = ntoh_if_index(record->if_index);
  const uint32_t result = fill_rnid(chassis, if_index, convert, *record);
  return {tlv_payload(FICON_TLV_RNID, *record), result, "RNID of " + interface_name(if_index)};
}

} // namespace vswitch
