#include "switch_services.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace chnsw_test {

std::string text_of(const char* format, ...) {
  va_list values;
  va_start(values, format);
  char text[1024];
  const int length = vsnprintf(text, sizeof text, format, values);
  va_end(values);
  return {text, std::min(static_cast<size_t>(length), sizeof text - 1)};
}

void switch_services::forget() {
  log.clear();
  lag_queries.clear();
  printed.clear();
  allocations = 0;
}

void switch_services::record(std::string line) {
  log.push_back(std::move(line));
  if (on_call) on_call();
}

int switch_services::answer(const service_answer& answer) {
  if (answer.error != 0) error = answer.error;
  return answer.status;
}

interface_answers switch_services::answers_of(uint32_t if_index) const {
  const auto found = interfaces.find(if_index);
  return found == interfaces.end() ? interface_answers{} : found->second;
}

int switch_services::get_platform_info(ficon_platform_info& record_out) {
  record("get_platform_info()");
  if (info_answer.status == 0 || info_fills_on_failure) record_out = info;
  return answer(info_answer);
}

int switch_services::hwinv_get_chassis_type(int32_t& type) {
  record(text_of("hwinv_get_chassis_type(%d)", type));
  if (chassis_answer.status == 0) type = chassis_type;
  return answer(chassis_answer);
}

int switch_services::elemdb_lookup_element(uint32_t key, uint32_t value_length, void* value) {
  record(text_of("elemdb_lookup_element(1, 2, 4, key %u, %u)", key, value_length));
  const auto failing = failing_elements.find(key);
  const int status = failing == failing_elements.end() ? 0 : failing->second.status;
  if (status != 0 && !failing->second.copies) return status;
  const auto element = elements.find(key);
  if (element == elements.end()) return ENOENT;
  const size_t length = std::min<size_t>(element->second.size(), value_length);
  if (length != 0) memcpy(value, element->second.data(), length);
  return status;
}

bool switch_services::memacct_alloc(uint32_t type, uint32_t size) {
  record(text_of("memacct_alloc(206, %u, %u)", type, size));
  ++allocations;
  return refused_allocations.count(allocations) == 0 && refused_types.count(type) == 0;
}

int switch_services::evtrc_hist_event_subtype_check(uint32_t subtype) {
  record(text_of("evtrc_hist_event_subtype_check(0x730000, %u)", subtype));
  return filtered_subtypes.count(subtype) != 0 ? 1 : 0;
}

void switch_services::evtrc_hist_event(uint32_t subtype, const std::string& text) {
  record(text_of("evtrc_hist_event(0x730000, %zu, %u, \"%s\")", text.size() + 5, subtype, text.c_str()));
}

int switch_services::evtrc_chk_int(int flag) {
  record(text_of("evtrc_chk_int(%d, 0, 0, 1)", flag));
  return debug_flags.count(flag) != 0 ? 1 : 0;
}

void switch_services::dbgout(const std::string& text) {
  record(text_of("dbgout(1, evtrc_dbg_modname, 0, \"%s\")", text.c_str()));
}

int switch_services::if_index_get_type(uint32_t if_index, uint8_t& type) {
  record(text_of("if_index_get_type(%#x)", if_index));
  const auto answers = answers_of(if_index);
  if (answers.type_status == 0) type = answers.type.value_or(static_cast<uint8_t>(if_index >> 24));
  return answers.type_status;
}

int switch_services::if_index_get_slot(uint32_t if_index, uint8_t& slot) {
  record(text_of("if_index_get_slot(%#x)", if_index));
  const auto answers = answers_of(if_index);
  if (answers.slot_status == 0) slot = static_cast<uint8_t>(if_index >> 8);
  return answers.slot_status;
}

int switch_services::if_index_get_port(uint32_t if_index, uint8_t& port) {
  record(text_of("if_index_get_port(%#x)", if_index));
  const auto answers = answers_of(if_index);
  if (answers.port_status == 0) port = static_cast<uint8_t>(if_index);
  return answers.port_status;
}

int switch_services::if_index_phy_fc_port_init(uint32_t& if_index, uint8_t slot, uint8_t port) {
  record(text_of("if_index_phy_fc_port_init(%u, %u, 0)", slot, port));
  if (const auto failing = failing_ports.find({slot, port}); failing != failing_ports.end()) return failing->second;
  const auto overridden = overridden_ports.find({slot, port});
  if_index = overridden != overridden_ports.end() ? overridden->second : physical_interface(slot, port);
  return 0;
}

int switch_services::portidx_port_by_if_index(uint32_t if_index) {
  record(text_of("portidx_port_by_if_index(%#x)", if_index));
  return answers_of(if_index).portidx_status;
}

int switch_services::lagmap_get_port(lagmap_port_query& query) {
  record(text_of("lagmap_get_port(%#x)", query.if_index));
  lag_queries.push_back(query);
  const auto answers = answers_of(query.if_index);
  if (answers.lag_status == 0) query.channel = answers.channel;
  return answers.lag_status;
}

} // namespace chnsw_test
