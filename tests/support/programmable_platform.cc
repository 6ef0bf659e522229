#include "programmable_platform.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace chnsw_test {
namespace {

[[gnu::format(printf, 1, 0)]] std::string format_list(const char* format, va_list values) {
  va_list again;
  va_copy(again, values);
  const int length = vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string text(static_cast<size_t>(length) + 1, '\0');
  vsnprintf(text.data(), text.size(), format, values);
  text.pop_back();
  return text;
}

[[gnu::format(printf, 1, 2)]] std::string line(const char* format, ...) {
  va_list values;
  va_start(values, format);
  std::string text = format_list(format, values);
  va_end(values);
  return text;
}

constexpr auto kWork = programmable_platform::kind::work;
constexpr auto kReporting = programmable_platform::kind::reporting;

} // namespace

programmable_platform& the_platform() {
  // Never destroyed: the library's unload hook may call after the process's destructors have run.
  static programmable_platform& platform = *[] {
    auto* fresh = new programmable_platform;
    fresh->set_chassis(10, 32);
    return fresh;
  }();
  return platform;
}

void programmable_platform::reset() {
  *this = programmable_platform();
  set_chassis(10, 32);
}

void programmable_platform::set_chassis(int num_slots, int32_t type) {
  info = {0x10, 0x11, static_cast<uint8_t>(num_slots), 0x13, 0x14, 0x15, 0x16, 0x17};
  chassis_type = type;
}

void programmable_platform::set_element(uint32_t table, uint32_t key, std::vector<uint8_t> bytes) {
  elements_[{table, key}] = std::move(bytes);
}

void programmable_platform::remove_element(uint32_t table, uint32_t key) {
  elements_.erase({table, key});
}

void programmable_platform::fail_element(uint32_t table, uint32_t key, int status, bool copies_all_the_same) {
  failing_elements_[{table, key}] = {status, copies_all_the_same};
}

void programmable_platform::fail_element_lookup(int nth, int status) {
  failing_lookups_[nth] = status;
}

void programmable_platform::fail_port_init(uint8_t slot, uint8_t port, int status) {
  failing_ports_[{slot, port}] = status;
}

void programmable_platform::override_port_init(uint8_t slot, uint8_t port, uint32_t if_index) {
  overridden_ports_[{slot, port}] = if_index;
}

void programmable_platform::grant_allocations() {
  refused_calls_.clear();
  refused_types_.clear();
}

std::vector<std::string> programmable_platform::calls() const {
  return lines(kind::work);
}
std::vector<std::string> programmable_platform::reporting_calls() const {
  return lines(kind::reporting);
}
std::vector<std::string> programmable_platform::all_calls() const {
  return lines(std::nullopt);
}

int programmable_platform::count(const std::string& prefix) const {
  int found = 0;
  for (const auto& call : calls()) found += call.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
  return found;
}

void programmable_platform::forget_calls() {
  log_.clear();
  history_.clear();
  debug_output_.clear();
  lag_queries_.clear();
  allocations_.clear();
}

void programmable_platform::record(kind what, std::string line) {
  log_.push_back({what, std::move(line)});
  if (!on_call || in_hook_) return;
  in_hook_ = true;
  const std::string call = log_.back().line;
  on_call(call);
  in_hook_ = false;
}

int programmable_platform::answer(const service_answer& answer) const {
  if (answer.error != 0) errno = answer.error;
  return answer.status;
}

int programmable_platform::lookup(const elemdb_request& request) {
  uint32_t key = 0;
  if (request.key_length == sizeof(key)) memcpy(&key, request.key, sizeof(key));
  record(kind::work, line("elemdb_lookup_element(%u, %u, %u, key %u, %u)", request.first, request.table, request.key_length,
                          key, request.value_length));
  if (on_lookup) on_lookup(request);
  ++lookups_;
  if (const auto nth = failing_lookups_.find(lookups_); nth != failing_lookups_.end()) return nth->second;
  const auto failing = failing_elements_.find({request.table, key});
  const bool fails = failing != failing_elements_.end();
  if (fails && !failing->second.copies) return failing->second.status;
  const auto element = elements_.find({request.table, key});
  if (element == elements_.end()) return ENOENT;
  const auto& bytes = element->second;
  const size_t length = bytes.size() < request.value_length ? bytes.size() : request.value_length;
  if (length != 0) memcpy(request.value, bytes.data(), length);
  return fails ? failing->second.status : 0;
}

int programmable_platform::port_init(uint32_t* if_index, uint8_t slot, uint8_t port) {
  if (const auto failing = failing_ports_.find({slot, port}); failing != failing_ports_.end()) return failing->second;
  if (if_index == nullptr) return EFAULT;
  const auto overridden = overridden_ports_.find({slot, port});
  *if_index = overridden != overridden_ports_.end() ? overridden->second : physical_interface(slot, port);
  return 0;
}

void* programmable_platform::allocate(uint32_t library_id, uint32_t type, uint32_t size) {
  record(kind::work, line("memacct_alloc(%u, %u, %u)", library_id, type, size));
  ++allocation_calls_;
  if (refused_calls_.count(allocation_calls_) != 0 || refused_types_.count(type) != 0) return nullptr;
  void* address = malloc(size != 0 ? size : 1);
  if (address == nullptr) return nullptr;
  memset(address, kGarbage, size);
  allocations_.push_back({address, library_id, type, size});
  return address;
}

std::vector<std::string> programmable_platform::lines(std::optional<kind> what) const {
  std::vector<std::string> found;
  for (const auto& call : log_) {
    if (!what || call.what == *what) found.push_back(call.line);
  }
  return found;
}

std::vector<std::string> programmable_platform::texts(uint32_t subtype) const {
  std::vector<std::string> found;
  for (const auto& event : history_) {
    if (event.subtype == subtype) found.push_back(event.text);
  }
  return found;
}

} // namespace chnsw_test

using chnsw_test::interface_answers;
using chnsw_test::kReporting;
using chnsw_test::kWork;
using chnsw_test::line;
using chnsw_test::the_platform;

// ---- the C services ----

extern "C" {

extern const char evtrc_dbg_modname[];
const char evtrc_dbg_modname[] = "test";

int memacct_init(const char* library, uint32_t library_id, const char* const* type_names, uint32_t count) {
  std::string names;
  for (uint32_t i = 0; i < count; ++i) {
    if (i != 0) names += ", ";
    names += type_names[i] != nullptr ? type_names[i] : "NULL";
  }
  the_platform().record(kWork, line("memacct_init(%s, %u, [%s], %u)", library, library_id, names.c_str(), count));
  return the_platform().memacct_init_status;
}

void* memacct_alloc(uint32_t library_id, uint32_t type, uint32_t size) {
  return the_platform().allocate(library_id, type, size);
}

void memacct_uninit(uint32_t library_id) {
  the_platform().record(kWork, line("memacct_uninit(%u)", library_id));
}

int get_platform_info(struct ficon_platform_info* info) {
  auto& platform = the_platform();
  platform.record(kWork, "get_platform_info()");
  if (platform.info_answer.status == 0 || platform.info_fills_on_failure) *info = platform.info;
  return platform.answer(platform.info_answer);
}

// The log shows the value that the caller preset.
int hwinv_get_chassis_type(int32_t* chassis_type) {
  auto& platform = the_platform();
  platform.record(kWork, line("hwinv_get_chassis_type(%d)", *chassis_type));
  if (platform.chassis_answer.status == 0) *chassis_type = platform.chassis_type;
  return platform.answer(platform.chassis_answer);
}

int elemdb_lookup_element(struct elemdb_request* request) {
  return the_platform().lookup(*request);
}

int evtrc_hist_event_subtype_check(uint32_t id, uint32_t subtype) {
  auto& platform = the_platform();
  platform.record(kReporting, line("evtrc_hist_event_subtype_check(%#x, %u)", id, subtype));
  return platform.filtered_subtypes.count(subtype) != 0 ? 1 : 0;
}

int evtrc_hist_event(uint32_t id, uint32_t length, const void* record) {
  auto& platform = the_platform();
  uint32_t subtype = 0;
  std::string text;
  if (length >= sizeof(subtype)) {
    const std::string bytes(static_cast<const char*>(record), length);
    memcpy(&subtype, bytes.data(), sizeof(subtype));
    text = bytes.substr(sizeof(subtype));
    text.resize(strnlen(text.c_str(), text.size()));
  }
  platform.add_history({id, length, subtype, text});
  platform.record(kReporting, line("evtrc_hist_event(%#x, %u, %u, \"%s\")", id, length, subtype, text.c_str()));
  return 0;
}

int evtrc_chk_int(int flag, int a, int b, int level) {
  auto& platform = the_platform();
  platform.record(kReporting, line("evtrc_chk_int(%d, %d, %d, %d)", flag, a, b, level));
  return platform.debug_flags.count(flag) != 0 ? 1 : 0;
}

void dbgout(int level, const char* module, int zero, const char* format, ...) {
  auto& platform = the_platform();
  va_list values;
  va_start(values, format);
  const std::string text = chnsw_test::format_list(format, values);
  va_end(values);
  const bool own = module == evtrc_dbg_modname;
  platform.add_debug_text({level, own, zero, text});
  platform.record(kReporting, line("dbgout(%d, %s, %d, \"%s\")", level, own ? "evtrc_dbg_modname" : "other module", zero,
                                   text.c_str()));
}

int if_index_get_type(uint32_t if_index, uint8_t* type) {
  auto& platform = the_platform();
  platform.record(kWork, line("if_index_get_type(%#x)", if_index));
  const interface_answers& answers = platform.interface(if_index);
  if (answers.type_status == 0) *type = answers.type.value_or(static_cast<uint8_t>(if_index >> 24));
  return answers.type_status;
}

int if_index_get_slot(uint32_t if_index, uint8_t* slot) {
  auto& platform = the_platform();
  platform.record(kWork, line("if_index_get_slot(%#x)", if_index));
  const interface_answers& answers = platform.interface(if_index);
  if (answers.slot_status == 0) *slot = static_cast<uint8_t>(if_index >> 8);
  return answers.slot_status;
}

int if_index_get_port(uint32_t if_index, uint8_t* port) {
  auto& platform = the_platform();
  platform.record(kWork, line("if_index_get_port(%#x)", if_index));
  const interface_answers& answers = platform.interface(if_index);
  if (answers.port_status == 0) *port = static_cast<uint8_t>(if_index);
  return answers.port_status;
}

// The log names the result address only when it is NULL.
int if_index_phy_fc_port_init(uint32_t* if_index, uint8_t slot, uint8_t port, int zero) {
  auto& platform = the_platform();
  platform.record(kWork,
                  line("if_index_phy_fc_port_init(%s%u, %u, %d)", if_index == nullptr ? "NULL, " : "", slot, port, zero));
  return platform.port_init(if_index, slot, port);
}

uint32_t hton_if_index(uint32_t if_index) {
  the_platform().record(kWork, line("hton_if_index(%#x)", if_index));
  return __builtin_bswap32(if_index);
}

uint32_t ntoh_if_index(uint32_t if_index) {
  the_platform().record(kWork, line("ntoh_if_index(%#x)", if_index));
  return __builtin_bswap32(if_index);
}

int portidx_port_by_if_index(uint32_t if_index, uint16_t* port_index) {
  auto& platform = the_platform();
  platform.record(kWork, line("portidx_port_by_if_index(%#x)", if_index));
  const interface_answers& answers = platform.interface(if_index);
  if (answers.portidx_status == 0) *port_index = answers.port_index;
  return answers.portidx_status;
}

int lagmap_get_port(struct lagmap_port_query* query) {
  auto& platform = the_platform();
  platform.record(kWork, line("lagmap_get_port(%#x)", query->if_index));
  platform.add_lag_query(*query);
  const interface_answers& answers = platform.interface(query->if_index);
  if (answers.lag_status == 0) query->channel = answers.channel;
  return answers.lag_status;
}

} // extern "C"
