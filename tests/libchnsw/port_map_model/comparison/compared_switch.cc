#include "compared_switch.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace chnsw_test {
namespace {

template <class Value, size_t kCount>
std::vector<uint8_t> bytes_of(const std::array<Value, kCount>& values) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(values.data());
  return {bytes, bytes + sizeof values};
}

const std::vector<uint8_t>& empty_map() {
  static const std::vector<uint8_t> bytes = [] {
    std::array<ficon_pmap_port_entry, 1280> entries;
    entries.fill({512, 512, {}});
    return bytes_of(entries);
  }();
  return bytes;
}

template <class Value>
void release(Value*& address) {
  free(address);
  address = nullptr;
}

} // namespace

void make_library_fresh() {
  release(ficon_pmap_port_to_vsan);
  release(ficon_pmap_port_to_pn);
  release(ficon_pmap_pa_to_pn);
  release(ficon_pmap_pn_to_logif);
  release(libchnsw_pinfo);
  memset(ficon_port_to_vsan_array, 0, sizeof ficon_port_to_vsan_array);
  MAX_FICON_PORTS = 0;
  fastpath_got_vsan_port = 0;
}

passed_tables::passed_tables() : pn_to_if(kPassedNumbers), port_to_pn(kPassedPorts) {
  for (size_t n = 0; n < kPassedPorts; ++n) {
    const auto number = static_cast<uint16_t>(n * 7 % 4093);
    port_to_pn[n] = {number, static_cast<uint16_t>(number + 1), {static_cast<uint16_t>(n % 5), 0, 3, 0, 0, 0, 0, 9}};
  }
  clear();
}

void passed_tables::clear() {
  std::fill(pn_to_if.begin(), pn_to_if.end(), 0u);
  std::fill_n(port_to_pn.begin(), 1280, ficon_pmap_port_entry{512, 512, {}});
}

passed_tables& the_passed_tables() {
  static passed_tables tables;
  return tables;
}

// ---- what switch it is ----

compared_switch::compared_switch(step from, comparison_report& report) : report_(report), model_(services_) {
  make_library_fresh();
  port_to_pn_.fill({512, 512, {}});
  the_passed_tables().clear();
  const chassis_kind chassis = draw_chassis(from);
  services_.info = {0x10, 0x11, static_cast<uint8_t>(chassis.num_slots), 0x13, 0x14, 0x15, 0x16, 0x17};
  services_.chassis_type = chassis.type;
  MAX_FICON_PORTS = model_.state.max_ficon_ports = draw_max_ficon_ports(from);
  draw_reporting(from);
  const auto text_if = [](size_t listed, const char* text) { return listed != 0 ? text : ""; };
  report_.tell("%d slots, type %d, MAX_FICON_PORTS %d, filtered%s%s, debug output%s%s%s", chassis.num_slots, chassis.type,
               MAX_FICON_PORTS, text_if(services_.filtered_subtypes.count(102), " 102"),
               text_if(services_.filtered_subtypes.count(103), " 103"), text_if(services_.debug_flags.count(102), " 102"),
               text_if(services_.debug_flags.count(103), " 103"), text_if(errno_moves_ ? 1 : 0, ", errno moves"));
}

void compared_switch::draw_reporting(step& from) {
  const unsigned reporting = from.byte();
  if ((reporting & 3) == 3) services_.filtered_subtypes.insert(102);
  if ((reporting & 12) == 12) services_.filtered_subtypes.insert(103);
  if ((reporting & 16) != 0) services_.debug_flags.insert(102);
  if ((reporting & 32) != 0) services_.debug_flags.insert(103);
  errno_moves_ = (reporting & 64) != 0;
}

// ---- changes of the map ----

void compared_switch::change_map(step& from) {
  const uint16_t index = draw_index(from);
  ficon_pmap_port_entry entry = {};
  entry.pn = draw_number_of_entry(from);
  entry.pa = draw_number_of_entry(from);
  const unsigned slots = from.byte();
  if (slots >= 40) entry.vsans[slots % 8] = draw_vsan_of_entry(from);
  if (slots >= 120) entry.vsans[slots / 8 % 8] = draw_vsan_of_entry(from);
  port_to_pn_[index] = entry;
  port_to_vsan_[index] = draw_vsan_of_entry(from);
  report_.tell("entry %d: %s, now in VSAN %d", index, report_.is_telling() ? text_of_value(entry).c_str() : "",
               port_to_vsan_[index]);
  bind_number(from, entry, index);
  ++change_counter_;
  services_changed_ = true;
}

void compared_switch::bind_number(step& from, const ficon_pmap_port_entry& entry, uint16_t index) {
  const unsigned more = from.byte();
  const uint16_t number = draw_number_of_entry(from);
  const uint32_t if_index = draw_interface(from);
  if ((more & 1) != 0) the_passed_tables().port_to_pn[index] = entry;
  if (number < kNumbers && (more & 14) == 14) pn_to_if_[number] = if_index;
  if (number < kNumbers && (more & 14) == 12) pn_to_if_[number] = 0;
  if (number < kPassedNumbers && (more & 48) == 48) the_passed_tables().pn_to_if[number] = if_index;
  if (number < kNumbers) pa_to_pn_[number] = entry.pn;
  report_.tell("  number %d, interface %#x%s%s%s", number, if_index, (more & 14) == 14 ? ", bound" : "",
               (more & 48) == 48 ? ", bound in the table to pass" : "", (more & 1) != 0 ? ", entry to pass too" : "");
}

// ---- changes of an interface ----

namespace {

interface_answers answers_drawn(unsigned what, int status) {
  interface_answers answers;
  switch (what % 16) {
    case 0:
    case 1:
      answers.portidx_status = as_signed(kPortidxNoPort);
      break;
    case 2:
      answers.portidx_status = status;
      break;
    case 3:
    case 4:
    case 5:
      answers.channel = port_channel_interface(1);
      break;
    case 6:
      answers.lag_status = as_signed(kLagmapNotMember);
      break;
    case 7:
      answers.lag_status = status;
      break;
    case 8:
      answers.type = 4;
      break;
    case 9:
      answers.type = 2;
      break;
    case 10:
      answers.type_status = status;
      break;
    case 11:
      answers.slot_status = status;
      break;
    case 12:
      answers.port_status = status;
      break;
    default:
      break; // as its bits say
  }
  return answers;
}

} // namespace

void compared_switch::change_interface(step& from) {
  const uint32_t if_index = draw_interface(from);
  const unsigned what = from.byte();
  const int status = static_cast<int>(from.byte()) + 100;
  const auto slot = static_cast<uint8_t>(if_index >> 8);
  const auto port = static_cast<uint8_t>(if_index);
  if (what >= 208 && what < 224)
    services_.failing_ports[{slot, port}] = status;
  else if (what >= 224 && what < 240)
    services_.overridden_ports[{slot, port}] = physical_interface(6, port % 4u);
  else {
    services_.failing_ports.erase({slot, port});
    services_.overridden_ports.erase({slot, port});
    services_.interfaces[if_index] = answers_drawn(what, status);
  }
  services_changed_ = true;
  report_.tell("interface %#x answers otherwise (%u, status %d)", if_index, what, status);
}

// ---- changes of the platform ----

void compared_switch::load_anew() {
  make_library_fresh();
  model_.state = {};
  report_.tell("the library is loaded anew");
}

void compared_switch::change_platform(step& from) {
  const unsigned what = from.byte() % 14;
  const uint32_t key = from.byte() % 6 + 1;
  services_changed_ = true;
  switch (what) {
    case 0:
      return change_chassis(from);
    case 1:
      missing_elements_.insert(key);
      return report_.tell("element %u is missing", key);
    case 2:
      short_elements_[key] = from.byte() * 7;
      return report_.tell("element %u has %zu bytes", key, short_elements_[key]);
    case 3:
    case 4:
      missing_elements_.clear();
      short_elements_.clear();
      return report_.tell("all elements are there");
    case 7:
      return preset_ports(from);
    case 8:
    case 9:
      fastpath_got_vsan_port = model_.state.fastpath_got_vsan_port = what == 8 ? 0 : 1;
      return report_.tell("fastpath_got_vsan_port = %d", fastpath_got_vsan_port);
    case 10:
      return services_.filtered_subtypes.clear();
    case 11:
      return restore_interfaces();
    default:
      return load_anew();
  }
}

void compared_switch::change_chassis(step& from) {
  const chassis_kind chassis = draw_chassis(from);
  services_.info.num_slots = static_cast<uint8_t>(chassis.num_slots);
  services_.chassis_type = chassis.type;
  report_.tell("now %d slots, type %d", chassis.num_slots, chassis.type);
}

// Not once a table of that size was allocated.
void compared_switch::preset_ports(step& from) {
  if (model_.state.pa_to_pn || model_.state.pn_to_logif) return;
  MAX_FICON_PORTS = model_.state.max_ficon_ports = draw_max_ficon_ports(from);
  report_.tell("MAX_FICON_PORTS = %d", MAX_FICON_PORTS);
}

void compared_switch::restore_interfaces() {
  services_.interfaces.clear();
  services_.failing_ports.clear();
  services_.overridden_ports.clear();
  report_.tell("every interface answers as its bits say");
}

// ---- disturbances ----

void compared_switch::disturb(step& from) {
  const unsigned kind = from.byte();
  if (kind < 168) return;
  const unsigned detail = from.byte();
  disturbed_ = true;
  const std::string what =
      kind % 8 < 4 || kind % 8 == 7 ? disturb_services(kind % 8, detail) : disturb_call(kind % 8, detail);
  report_.tell("  disturbed: %s", what.c_str());
}

std::string compared_switch::disturb_services(unsigned kind, unsigned detail) {
  const int status = static_cast<int>(detail) + 100;
  switch (kind) {
    case 0:
      services_.info_answer = {status, status + 1000};
      services_.info_fills_on_failure = detail % 2 == 0;
      return "get_platform_info fails";
    case 1:
      services_.chassis_answer = {status, status + 1000};
      return "hwinv_get_chassis_type fails";
    case 2:
    case 3:
      return refuse_allocation(kind, detail);
    default:
      services_.failing_elements[detail % 6 + 1] = {status, detail >= 128};
      return text_of("element %u cannot be read", detail % 6 + 1);
  }
}

std::string compared_switch::refuse_allocation(unsigned kind, unsigned detail) {
  if (detail >= 64) load_anew(); // or there is hardly anything left to allocate
  if (kind == 2) {
    services_.refused_allocations.insert(static_cast<int>(detail % 4) + 1);
    return text_of("allocation %u is refused", detail % 4 + 1);
  }
  constexpr uint32_t kTypes[] = {5, 3, 3, 2, 1};
  services_.refused_types.insert(kTypes[detail % 5]);
  return text_of("allocations of type %u are refused", kTypes[detail % 5]);
}

std::string compared_switch::disturb_call(unsigned kind, unsigned detail) {
  if (kind == 6) {
    disturbance_.at_call = static_cast<int>(detail % 12) + 1;
    disturbance_.map_becomes_empty = true;
    return text_of("the map becomes empty at call %d", disturbance_.at_call);
  }
  disturbance_.at_call = static_cast<int>(detail % 24) + 1;
  disturbance_.vsan = vsan_to_ask(detail);
  return text_of("the VSAN becomes %#x at call %d", *disturbance_.vsan, disturbance_.at_call);
}

void compared_switch::end_disturbances() {
  if (!disturbed_) return;
  disturbed_ = false;
  services_.info_answer = services_.chassis_answer = {};
  services_.info_fills_on_failure = false;
  services_.refused_allocations.clear();
  services_.refused_types.clear();
  services_.failing_elements.clear();
  disturbance_ = {};
  services_changed_ = true;
}

// ---- the platform ----

void compared_switch::set_elements() {
  services_.elements.clear();
  services_.elements[1] = bytes_of(pa_to_pn_);
  services_.elements[2] = bytes_of(pn_to_if_);
  services_.elements[3] = bytes_of(port_to_pn_);
  std::array<uint8_t, 32> vsans{};
  for (size_t n = 0; n < vsans.size(); ++n) vsans[n] = static_cast<uint8_t>(change_counter_ + n);
  services_.elements[4] = bytes_of(vsans);
  services_.elements[5] = bytes_of(port_to_vsan_);
  services_.elements[6] = bytes_of(std::array<uint32_t, 1>{change_counter_});
  for (const uint32_t key : missing_elements_) services_.elements.erase(key);
  for (const auto& [key, size] : short_elements_) {
    const auto element = services_.elements.find(key);
    if (element != services_.elements.end() && size < element->second.size()) element->second.resize(size);
  }
}

void compared_switch::program_platform() {
  if (services_changed_) program_services();
  if (disturbed_) program_disturbances();
}

void compared_switch::program_services() {
  set_elements();
  platform_.reset();
  platform_allocations_ = 0;
  platform_.info = services_.info;
  platform_.chassis_type = services_.chassis_type;
  platform_.filtered_subtypes = services_.filtered_subtypes;
  platform_.debug_flags = services_.debug_flags;
  for (const auto& [key, bytes] : services_.elements) platform_.set_element(2, key, bytes);
  for (const auto& [if_index, answers] : services_.interfaces) platform_.interface(if_index) = answers;
  for (const auto& [place, status] : services_.failing_ports) platform_.fail_port_init(place.first, place.second, status);
  for (const auto& [place, if_index] : services_.overridden_ports) {
    platform_.override_port_init(place.first, place.second, if_index);
  }
  services_changed_ = false;
}

void compared_switch::program_disturbances() {
  platform_.info_answer = services_.info_answer;
  platform_.info_fills_on_failure = services_.info_fills_on_failure;
  platform_.chassis_answer = services_.chassis_answer;
  for (const int nth : services_.refused_allocations) platform_.refuse_allocation(platform_allocations_ + nth);
  for (const uint32_t type : services_.refused_types) platform_.refuse_type(type);
  for (const auto& [key, failure] : services_.failing_elements) {
    platform_.fail_element(2, key, failure.status, failure.copies);
  }
}

// ---- during a call ----

void compared_switch::watch_model(uint32_t& vsan) {
  services_.forget();
  services_.error = kErrorBefore;
  calls_of_services_ = 0;
  services_.on_call = [this, &vsan] {
    if (errno_moves_) ++services_.error;
    if (++calls_of_services_ != disturbance_.at_call) return;
    if (disturbance_.vsan) vsan = *disturbance_.vsan;
    if (disturbance_.map_becomes_empty) services_.elements[3] = empty_map();
  };
}

void compared_switch::watch_library(uint32_t& vsan) {
  platform_.forget_calls();
  calls_of_services_ = 0;
  if (!errno_moves_ && disturbance_.at_call == 0) return;
  platform_.on_call = [this, &vsan](const std::string&) {
    if (errno_moves_) ++errno;
    if (++calls_of_services_ != disturbance_.at_call) return;
    if (disturbance_.vsan) vsan = *disturbance_.vsan;
    if (disturbance_.map_becomes_empty) platform_.set_element(2, 3, empty_map());
  };
}

void compared_switch::end_call() {
  platform_.on_call = nullptr;
  platform_allocations_ += services_.allocations;
}

} // namespace chnsw_test
