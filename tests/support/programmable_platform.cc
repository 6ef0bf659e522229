#include "programmable_platform.h"

#include <algorithm>
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

void (*allocation_watch)(const void* address);

constexpr auto kWork = programmable_platform::kind::work;
constexpr auto kReporting = programmable_platform::kind::reporting;

const char* name_of(const msgq_message* message) {
  return message == nullptr ? "NULL" : message->name.c_str();
}

// ---- TLV arrays of this platform ----
//
//   offset  0       1      3        5      7       7 + length
//           | count | used | length | type | value | length ...
//
// used counts all bytes, the first three included. Values stand at any address.
constexpr uint32_t kArrayHeaderBytes = 3;
constexpr uint32_t kTlvHeaderBytes = 4;

template <class Value>
Value load(const void* bytes, size_t offset) {
  Value value;
  memcpy(&value, static_cast<const uint8_t*>(bytes) + offset, sizeof value);
  return value;
}

template <class Value>
void store(void* bytes, size_t offset, Value value) {
  memcpy(static_cast<uint8_t*>(bytes) + offset, &value, sizeof value);
}

uint32_t used_bytes(const void* array) {
  return std::max<uint32_t>(load<uint16_t>(array, 1), kArrayHeaderBytes);
}

int append_tlv(void* array, uint32_t capacity, const added_tlv& added) {
  const uint32_t used = used_bytes(array);
  const auto length = static_cast<uint16_t>(added.value.size());
  if (capacity < used || capacity - used < kTlvHeaderBytes + length) return ENOSPC;
  store(array, used, length);
  store(array, used + 2, added.type);
  if (length != 0) memcpy(static_cast<uint8_t*>(array) + used + kTlvHeaderBytes, added.value.data(), length);
  store(array, 0, static_cast<uint8_t>(load<uint8_t>(array, 0) + 1));
  store(array, 1, static_cast<uint16_t>(used + kTlvHeaderBytes + length));
  return 0;
}

// The offset of the nth value's header, counted from 0.
uint32_t tlv_offset(const void* array, uint32_t nth) {
  uint32_t offset = kArrayHeaderBytes;
  for (uint32_t n = 0; n < nth; ++n) offset += kTlvHeaderBytes + load<uint16_t>(array, offset);
  return offset;
}

} // namespace

void watch_allocations(void (*granted)(const void* address)) {
  allocation_watch = granted;
}

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
  sent_.clear();
  added_tlvs_.clear();
  conversions_.clear();
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
  if (allocation_watch != nullptr) allocation_watch(address);
  return address;
}

int programmable_platform::send(sent_message message) {
  sent_.push_back(std::move(message));
  const sent_message& sent = sent_.back();
  record(kWork, line("msgq_send(%#zx, %x:%u, %u, %s, %u, %#zx, %s, %u)", reinterpret_cast<uintptr_t>(sent.handle),
                     sent.to.node, sent.to.service_point, sent.opcode, sent.payload_address == nullptr ? "NULL" : "payload",
                     sent.length, sent.send_arg, name_of(sent.answered), sent.zero));
  return answer(send_answer);
}

void* programmable_platform::payload(msgq_message* message) {
  record(kWork, line("msgq_payload_get(%s)", name_of(message)));
  void* payload = message == nullptr ? nullptr : message->payload();
  last_payload_ = payload;
  return payload;
}

int programmable_platform::add_tlv(added_tlv added, void* array) {
  added_tlvs_.push_back(std::move(added));
  const added_tlv& asked = added_tlvs_.back();
  record(kWork,
         line("tlv_aligned_array_add_tlv(%u, %u, %zu, %d)", asked.capacity, asked.type, asked.value.size(), asked.flag));
  return tlv_add_status != 0 ? tlv_add_status : append_tlv(array, asked.capacity, asked);
}

uint32_t programmable_platform::tlv_size_of(const void* array, int flag) {
  const bool added_to = !added_tlvs_.empty() && added_tlvs_.back().array == array;
  record(kWork, line("tlv_aligned_array_size_get(%s, %d)", added_to ? "array" : "other", flag));
  return tlv_size.value_or(used_bytes(array));
}

int programmable_platform::tlv_count_of(const void* array, int flag) {
  record(kWork, line("tlv_aligned_array_get_num_tlvs(%s, %d)", array == last_payload_ ? "payload" : "other", flag));
  return tlv_count.value_or(load<uint8_t>(array, 0));
}

// The cursor counts the values that were passed. Behind the last one nothing is stored, and a cursor that was not cleared
// is behind the last one.
int programmable_platform::next_tlv(const void* array, uint16_t* type, uint16_t* length, void** value, int flag,
                                    uint32_t* cursor) {
  record(kWork, line("tlv_aligned_array_get_next_tlv(%s, %d, cursor %u)", array == last_payload_ ? "payload" : "other",
                     flag, *cursor));
  const auto programmed = tlv_answers.find(++next_tlv_calls_);
  const tlv_answer answer = programmed == tlv_answers.end() ? tlv_answer{0, true} : programmed->second;
  if (*cursor >= load<uint8_t>(array, 0)) return ENOENT;
  const uint32_t offset = tlv_offset(array, (*cursor)++);
  if (!answer.stores) return answer.status;
  *length = load<uint16_t>(array, offset);
  *type = load<uint16_t>(array, offset + 2);
  *value = const_cast<uint8_t*>(static_cast<const uint8_t*>(array)) + offset + kTlvHeaderBytes;
  return answer.status;
}

int programmable_platform::convert(conversion asked, char** output, uint32_t* counter, uint32_t* output_space) {
  record(kWork, line("convert(%d, mode %u, counter %u, space %u, codepage %u)", asked.input_length, asked.mode,
                     asked.counter, asked.output_space, asked.codepage));
  std::string made = asked.text;
  for (char& c : made) c = static_cast<char>(c + 1);
  if (on_convert) made = on_convert(asked.text);
  made.resize(std::min<size_t>(made.size(), *output_space));
  conversions_.push_back(std::move(asked));
  memcpy(*output, made.data(), made.size());
  *output += made.size();
  *counter += static_cast<uint32_t>(made.size());
  *output_space -= static_cast<uint32_t>(made.size());
  return failing_conversions.count(++conversion_calls_) != 0 ? 0 : convert_result;
}

std::vector<uint8_t> tlv_array(const std::vector<tlv>& values) {
  std::vector<uint8_t> array(UINT16_MAX);
  for (const tlv& value : values) {
    if (append_tlv(array.data(), UINT16_MAX, {nullptr, false, 0, value.type, value.value, 1}) != 0) throw std::bad_alloc();
  }
  array.resize(used_bytes(array.data()));
  return array;
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

msgq_message::msgq_message(const std::vector<uint8_t>& payload, size_t misalignment)
    : storage_(misalignment + payload.size() + MSGQ_SLACK),
      misalignment_(misalignment),
      size_(static_cast<uint32_t>(payload.size())),
      has_payload_(true) {
  std::copy(payload.begin(), payload.end(), storage_.begin() + static_cast<ptrdiff_t>(misalignment));
}

msgq_message msgq_message::without_payload() {
  return {};
}

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
  return platform.filtered_subtypes.count(subtype) != 0 ? platform.filter_answer : 0;
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
  return platform.debug_flags.count(flag) != 0 ? platform.flag_answer : 0;
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
  return if_index + chnsw_test::kHton;
}

uint32_t ntoh_if_index(uint32_t if_index) {
  the_platform().record(kWork, line("ntoh_if_index(%#x)", if_index));
  return if_index + chnsw_test::kNtoh;
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

int msgq_send(msgq* handle, const struct msgq_addr* to, uint32_t opcode, const void* payload, uint32_t length,
              uintptr_t send_arg, msgq_message* answered, uint32_t zero) {
  const auto* bytes = static_cast<const uint8_t*>(payload);
  std::vector<uint8_t> copy;
  if (bytes != nullptr) copy.assign(bytes, bytes + length);
  return the_platform().send({handle, *to, opcode, payload, std::move(copy), length, send_arg, answered, zero});
}

void* msgq_payload_get(msgq_message* message) {
  return the_platform().payload(message);
}

uint32_t msgq_payload_size(msgq_message* message) {
  the_platform().record(kWork, line("msgq_payload_size(%s)", chnsw_test::name_of(message)));
  return message->size();
}

int msgq_errno_get(msgq* handle) {
  auto& platform = the_platform();
  platform.record(kWork, line("msgq_errno_get(%#zx)", reinterpret_cast<uintptr_t>(handle)));
  return platform.msgq_error;
}

int tlv_aligned_array_add_tlv(void* array, uint32_t capacity, uint16_t type, uint16_t length, const void* value, int flag) {
  const auto* bytes = static_cast<const uint8_t*>(array);
  const auto* value_bytes = static_cast<const uint8_t*>(value);
  const bool zero = std::all_of(bytes, bytes + capacity, [](uint8_t byte) { return byte == 0; });
  return the_platform().add_tlv({array, zero, capacity, type, {value_bytes, value_bytes + length}, flag}, array);
}

uint32_t tlv_aligned_array_size_get(const void* array, int flag) {
  return the_platform().tlv_size_of(array, flag);
}

int tlv_aligned_array_get_num_tlvs(const void* array, int flag) {
  return the_platform().tlv_count_of(array, flag);
}

int tlv_aligned_array_get_next_tlv(const void* array, uint16_t* type, uint16_t* length, void** value, int flag,
                                   uint32_t* cursor) {
  return the_platform().next_tlv(array, type, length, value, flag, cursor);
}

int platform_convert(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
                     uint32_t* output_space, uint32_t codepage) {
  const std::string text(input, input_length > 0 ? static_cast<size_t>(input_length) : 0);
  return the_platform().convert({input, input_length, text, mode, *output, *counter, *output_space, codepage}, output,
                                counter, output_space);
}

} // extern "C"
