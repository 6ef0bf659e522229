#include "port_map_comparison.h"

#include <libchnsw.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <optional>
#include <random>
#include <tuple>
#include <type_traits>
#include <utility>

#include "port_map_model.h"
#include "programmable_platform.h"
#include "switch_services.h"

namespace chnsw_test {
namespace {

constexpr size_t kNumbers = 600;           // elements of the database's tables by number, more than any chassis has
constexpr size_t kNumberingEntries = 3400; // more than any default numbering lays out
constexpr int kErrorBefore = 77;           // errno before a call

// ---- what is drawn ----

// The first byte of a step tells what it is: below the first of these a change of the map, below the next one of an
// interface, and so on.
enum : unsigned { kInterfaceChanges = 56, kPlatformChanges = 80, kNumberingChanges = 92, kCalls = 96 };

class step {
 public:
  step(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  unsigned byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }
  template <class Value, size_t kCount>
  Value one_of(const Value (&values)[kCount]) {
    return values[byte() % kCount];
  }

 private:
  const uint8_t* data_;
  size_t size_;
};

constexpr struct {
  int num_slots;
  int32_t type;
} kChassis[] = {{10, 32}, {10, 32}, {10, 32}, {10, 32}, {10, 38}, {10, 38}, {10, 5}, {10, 34}, {6, 34}, {6, 34}, {6, 34},
                {6, 1},   {13, 38}, {13, 38}, {13, 0},  {18, 38}, {18, 38}, {18, 1}, {18, 32}, {9, 32}, {9, 38}, {9, -1},
                {2, 7},   {2, 32},  {1, 5},   {1, 15},  {1, 27},  {1, 34},  {5, 34}, {0, 32},  {255, 1}};

// Few, so that ports share them.
constexpr uint16_t kNumbersOfEntries[] = {0, 1, 2, 3, 4,  5,   6,   7,   1,   2,   3,   1,
                                          2, 1, 2, 3, 40, 253, 254, 255, 299, 511, 512, 65535};
constexpr int32_t kNumbersAsked[] = {0,   1,    2,       3,       4,     5,     6,     7,   1,   2,   3,   1,   2,   1,
                                     2,   3,    1,       2,       3,     1,     2,     3,   1,   2,   3,   4,   5,   6,
                                     7,   1,    2,       3,       253,   254,   33,    34,  40,  47,  53,  54,  77,  141,
                                     142, 237,  238,     254,     255,   256,   299,   300, 511, 512, 513, 599, 600, -1,
                                     -2,  -254, INT_MIN, INT_MAX, 65535, 65536, 65537, 0,   1,   2};
constexpr uint16_t kVsansOfEntries[] = {0, 0, 0, 1, 2, 3, 1, 2, 1, 1, 2, 10, 4095, 65535};
constexpr uint32_t kVsansAsked[] = {1, 2, 3, 1, 2, 1, 2, 1, 0, 10, 4095, 65535, 0x10001, 0x10002, 0x10000, 0xFFFFFFFF};
constexpr uint16_t kIndexes[] = {0,    1,    2,    3,    4,    5,    6,    7,    10,   11,   12,   15,   16,   47,
                                 200,  252,  253,  254,  255,  256,  260,  507,  508,  509,  514,  761,  762,  763,
                                 1014, 1015, 1016, 1017, 1020, 1022, 1023, 1024, 1025, 1026, 1030, 1037, 1038, 1100,
                                 1268, 1269, 1270, 1278, 1279, 0,    1,    2,    254,  255,  256,  508,  1016, 1024};
constexpr int32_t kIndexesAsked[] = {0,    1,    2,    3,    253,    254,    255,    507,     508,     762,   1015, 1016,
                                     1017, 1022, 1023, 1024, 1025,   1026,   1030,   1100,    1279,    1280,  1281, -1,
                                     -2,   -253, -254, -508, -63754, -65024, -65023, INT_MIN, INT_MAX, 65536, 256,  0,
                                     1024, 1025, 1100, 1279, 1024,   1030,   1278,   1,       4,       5};
constexpr uint8_t kSlots[] = {0, 1, 2, 3, 0, 1, 2, 6, 6, 4, 5, 7, 8, 9, 10, 11, 12, 13, 16, 17, 18, 127, 200, 254, 255};
constexpr uint8_t kPorts[] = {0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 10, 11, 12, 200, 252, 253, 254, 255};
constexpr uint32_t kLogicalInterfaces[] = {port_channel_interface(1),
                                           port_channel_interface(2),
                                           port_channel_interface(3),
                                           fcip_interface(1),
                                           fcip_interface(2),
                                           0x02000001,
                                           0x00000001};
constexpr int32_t kPortsPreset[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 254, 254, 300, 512, 600, 1, 2, -1};

uint32_t interface_of(step& from) {
  const unsigned kind = from.byte();
  const unsigned place = from.byte();
  if (kind < 160) return physical_interface(kSlots[kind % 9], kPorts[place % 8]);
  if (kind < 200) return physical_interface(kSlots[kind % std::size(kSlots)], kPorts[place % std::size(kPorts)]);
  if (kind == 255) return 0;
  return kLogicalInterfaces[place % std::size(kLogicalInterfaces)];
}

// ---- what is passed ----

// Every output of a call, and a VSAN for it to point to. Each operation uses some; the others must stay as they are.
struct outputs {
  outputs() {
    memset(&entry, 0xEE, sizeof entry);
    memset(&info, 0xEE, sizeof info);
    pns.fill(0xEEEE);
    if_indexes.fill(0xEEEEEEEE);
  }
  ~outputs() {
    if (pn_list != &pn) free(pn_list);
    if (pa_list != &pa) free(pa_list);
    if (if_list != &if_index) free(if_list);
    if (bound_list != &flag) free(bound_list);
  }
  outputs(const outputs&) = delete;
  outputs& operator=(const outputs&) = delete;

  uint32_t vsan = 0; // in
  uint16_t pn = 0xEEEE;
  uint16_t pa = 0xEEEE;
  uint32_t if_index = 0xEEEEEEEE;
  uint32_t flag = 0xEEEEEEEE;
  uint32_t index = 0xEEEEEEEE;
  uint32_t count = 0xEEEEEEEE;
  uint8_t line_card = 0xEE;
  uint8_t slot = 0xEE;
  uint8_t port = 0xEE;
  ficon_pmap_port_entry entry;
  ficon_platform_info info;
  std::array<uint16_t, kNumbers> pns;
  std::array<uint32_t, kNumbers> if_indexes;
  // Allocated for the caller.
  uint16_t* pn_list = &pn;
  uint16_t* pa_list = &pa;
  uint32_t* if_list = &if_index;
  uint32_t* bound_list = &flag;

  bool lists_are_written() const { return pn_list != &pn || pa_list != &pa || if_list != &if_index || bound_list != &flag; }
};

// The tables that a caller passes, of the sizes that the model counts on.
struct passed_tables {
  passed_tables() : pn_to_if(kPassedNumbers), port_to_pn(kPassedPorts) {
    for (size_t n = 0; n < kPassedPorts; ++n) {
      const auto number = static_cast<uint16_t>(n * 7 % 4093);
      port_to_pn[n] = {number, static_cast<uint16_t>(number + 1), {static_cast<uint16_t>(n % 5), 0, 3, 0, 0, 0, 0, 9}};
    }
    clear();
  }
  void clear() {
    std::fill(pn_to_if.begin(), pn_to_if.end(), 0u);
    std::fill_n(port_to_pn.begin(), 1280, ficon_pmap_port_entry{512, 512, {}});
  }
  std::vector<uint32_t> pn_to_if;
  std::vector<ficon_pmap_port_entry> port_to_pn;
};

passed_tables& the_passed_tables() {
  static passed_tables tables;
  return tables;
}

// ---- texts ----

template <class Value>
std::string text_of_value(Value value) {
  if constexpr (std::is_pointer_v<Value>) {
    return value == nullptr ? "NULL" : "address";
  } else {
    const auto number = static_cast<long long>(value);
    return number < 0 || number < 65536 ? text_of("%lld", number) : text_of("%#llx", number);
  }
}
std::string text_of_value(const ficon_pmap_port_entry& entry) {
  std::string text = text_of("{pn %d, pa %d, vsans", entry.pn, entry.pa);
  for (const uint16_t vsan : entry.vsans) text += text_of(" %d", vsan);
  return text + "}";
}
template <class Value>
std::string text_of_list(const Value* values, size_t count) {
  std::string text = "[";
  for (size_t n = 0; n < count; ++n) text += (n == 0 ? "" : ", ") + text_of_value(values[n]);
  return text + "]";
}

// What tells one text from another: "?" for every number, decimal or not.
std::string without_numbers(const std::string& text) {
  const auto is_digit = [&](size_t at) { return at < text.size() && isdigit(static_cast<unsigned char>(text[at])) != 0; };
  const auto is_hex = [&](size_t at) { return at < text.size() && isxdigit(static_cast<unsigned char>(text[at])) != 0; };
  std::string made;
  for (size_t at = 0; at < text.size();) {
    if (text.compare(at, 2, "0x") == 0) {
      for (at += 2; is_hex(at);) ++at;
    } else if (is_digit(at) || (text[at] == '-' && is_digit(at + 1))) {
      for (++at; is_digit(at);) ++at;
    } else {
      made += text[at++];
      continue;
    }
    made += '?';
  }
  return made;
}

// ---- standard output ----

// Where the C library's standard output goes while a call runs. Assigning to stdout is allowed there, and costs no system
// call.
class printed_text {
 public:
  printed_text() : stream_(open_memstream(&text_, &size_)), kept_(stdout) {
    if (stream_ == nullptr) throw std::bad_alloc();
    stdout = stream_;
  }
  ~printed_text() {
    stdout = kept_;
    fclose(stream_);
    free(text_);
  }
  printed_text(const printed_text&) = delete;
  printed_text& operator=(const printed_text&) = delete;

  std::string text() {
    fflush(stream_);
    return {text_, size_};
  }

 private:
  char* text_ = nullptr;
  size_t size_ = 0;
  FILE* stream_;
  FILE* kept_;
};

// ---- the comparison ----

template <class Value>
void release(Value*& address) {
  free(address);
  address = nullptr;
}

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

class comparison {
 public:
  comparison(const std::vector<uint8_t>& bytes, bool telling, compared* what)
      : bytes_(bytes), telling_(telling), what_(what), model_(services_) {}

  // Whether all was alike.
  bool run();
  const std::string& account() const { return account_; }

 private:
  // A disturbance of one call.
  struct disturbance {
    int at_call = 0; // of any service, from 1; 0 is none
    std::optional<uint32_t> vsan;
    bool map = false;
  };

  // What one call is made with; each operation uses some of it.
  struct drawn {
    unsigned operation = 0;
    int32_t number = 0;
    uint32_t vsan = 0;
    bool with_vsan = false;
    int32_t fast = 0;
    bool pass_pn_to_if = false;
    bool pass_port_to_pn = false;
    int32_t skip_lag_check = 0;
    bool null_result = false;
    bool null_flag = false;
    int32_t index = 0;
    uint32_t if_index = 0;
    uint8_t slot = 0;
    uint8_t port = 0;
  };

  void begin(step from);
  void take(step from);
  void change_map(step& from);
  void change_interface(step& from);
  void change_platform(step& from);
  void load_anew();
  void change_numbering(step& from);
  void disturb(step& from);
  void call(step& from);
  void call_table_operation();
  void call_address_operation();
  void call_numbering_operation();
  void call_number_operation();
  void call_interface_operation();
  void call_bulk_operation();
  const uint32_t* passed_pn_to_if() const { return drawn_.pass_pn_to_if ? the_passed_tables().pn_to_if.data() : nullptr; }
  const ficon_pmap_port_entry* passed_port_to_pn() const {
    return drawn_.pass_port_to_pn ? the_passed_tables().port_to_pn.data() : nullptr;
  }
  std::vector<ficon_pmap_port_entry>& numbering_of(const outputs& side) {
    return &side == &*of_library_ ? library_numbering_ : model_numbering_;
  }

  void program();
  void set_elements();
  void end_disturbances();

  template <class Result, class... Arguments, class Drawn>
  void run_both(const char* name, Result (*library)(Arguments...), Result (port_map_model::*model)(Arguments...),
                Drawn&& arguments);
  template <class Result>
  void compare_call(Result of_library, Result of_model, const std::string& printed);
  void compare_outputs();
  void compare_state();
  void count(const char* name, uint32_t status);

  template <class Value>
  void check(const char* what, const Value& of_library, const Value& of_model) {
    if (!(of_library == of_model)) differ(what, text_of_value(of_library), text_of_value(of_model));
  }
  template <class Value>
  void check_list(const char* what, const Value* of_library, const Value* of_model, size_t count) {
    if (count == 0 || memcmp(of_library, of_model, count * sizeof(Value)) == 0) return;
    differ(what, text_of_list(of_library, count), text_of_list(of_model, count));
  }
  template <class Value>
  void check_table(const char* what, const Value* of_library, const std::optional<std::vector<Value>>& of_model);
  void check_lines(const char* what, const std::vector<std::string>& of_library, const std::vector<std::string>& of_model);
  void differ(const char* what, const std::string& of_library, const std::string& of_model);
  void tell(const std::string& line) { account_ += line + "\n"; }

  const std::vector<uint8_t>& bytes_;
  bool telling_;
  compared* what_;
  const ficon_convert_fn converter_ = convert_fnptr;
  bool differs_ = false;
  std::string account_;

  programmable_platform& platform_ = the_platform();
  switch_services services_;
  port_map_model model_;
  bool services_changed_ = true;
  bool disturbed_ = false;
  int platform_allocations_ = 0; // since the last reset
  disturbance disturbance_;
  drawn drawn_;
  bool errno_moves_ = false;
  std::set<uint32_t> missing_elements_;
  std::map<uint32_t, size_t> short_elements_; // key -> bytes

  std::array<ficon_pmap_port_entry, 1280> port_to_pn_;
  std::array<uint16_t, 1280> port_to_vsan_{};
  std::array<uint16_t, kNumbers> pa_to_pn_{};
  std::array<uint32_t, kNumbers> pn_to_if_{};
  uint32_t change_counter_ = 1;
  std::vector<ficon_pmap_port_entry> library_numbering_{kNumberingEntries, {512, 512, {}}};
  std::vector<ficon_pmap_port_entry> model_numbering_{kNumberingEntries, {512, 512, {}}};

  std::optional<outputs> of_library_;
  std::optional<outputs> of_model_;
};

void comparison::differ(const char* what, const std::string& of_library, const std::string& of_model) {
  differs_ = true;
  if (!telling_) return;
  tell(std::string("  ") + what);
  tell("    library: " + of_library);
  tell("    model:   " + of_model);
}

bool comparison::run() {
  make_library_fresh();
  begin(step(bytes_.data(), std::min(bytes_.size(), kStepBytes)));
  for (size_t at = kStepBytes; at < bytes_.size() && !differs_; at += kStepBytes) {
    take(step(bytes_.data() + at, std::min(bytes_.size() - at, kStepBytes)));
  }
  make_library_fresh();
  platform_.reset();
  if (what_ != nullptr) what_->decided.insert(model_.decided.begin(), model_.decided.end());
  return !differs_;
}

// ---- the switch and its changes ----

void comparison::begin(step from) {
  port_to_pn_.fill({512, 512, {}});
  the_passed_tables().clear();
  const auto chassis = from.one_of(kChassis);
  services_.info = {0x10, 0x11, static_cast<uint8_t>(chassis.num_slots), 0x13, 0x14, 0x15, 0x16, 0x17};
  services_.chassis_type = chassis.type;
  MAX_FICON_PORTS = model_.state.max_ficon_ports = from.one_of(kPortsPreset);
  const unsigned reporting = from.byte();
  if ((reporting & 3) == 3) services_.filtered_subtypes.insert(102);
  if ((reporting & 12) == 12) services_.filtered_subtypes.insert(103);
  if ((reporting & 16) != 0) services_.debug_flags.insert(102);
  if ((reporting & 32) != 0) services_.debug_flags.insert(103);
  errno_moves_ = (reporting & 64) != 0;
  if (telling_) {
    tell(text_of("%d slots, type %d, MAX_FICON_PORTS %d, filtered%s%s, debug output%s%s%s", chassis.num_slots, chassis.type,
                 MAX_FICON_PORTS, services_.filtered_subtypes.count(102) != 0 ? " 102" : "",
                 services_.filtered_subtypes.count(103) != 0 ? " 103" : "",
                 services_.debug_flags.count(102) != 0 ? " 102" : "", services_.debug_flags.count(103) != 0 ? " 103" : "",
                 errno_moves_ ? ", errno moves" : ""));
  }
}

void comparison::take(step from) {
  const unsigned kind = from.byte();
  if (kind < kInterfaceChanges)
    change_map(from);
  else if (kind < kPlatformChanges)
    change_interface(from);
  else if (kind < kNumberingChanges)
    change_platform(from);
  else if (kind < kCalls)
    change_numbering(from);
  else
    call(from);
}

void comparison::change_map(step& from) {
  const uint16_t index = from.one_of(kIndexes);
  ficon_pmap_port_entry entry = {from.one_of(kNumbersOfEntries), from.one_of(kNumbersOfEntries), {}};
  const unsigned slots = from.byte();
  if (slots >= 40) entry.vsans[slots % 8] = from.one_of(kVsansOfEntries);
  if (slots >= 120) entry.vsans[slots / 8 % 8] = from.one_of(kVsansOfEntries);
  port_to_pn_[index] = entry;
  port_to_vsan_[index] = from.one_of(kVsansOfEntries);
  if (telling_)
    tell(text_of("entry %d: ", index) + text_of_value(entry) + text_of(", now in VSAN %d", port_to_vsan_[index]));

  const unsigned more = from.byte();
  const uint16_t number = from.one_of(kNumbersOfEntries);
  const uint32_t if_index = interface_of(from);
  if ((more & 1) != 0) the_passed_tables().port_to_pn[index] = entry;
  if (number < kNumbers && (more & 14) == 14) pn_to_if_[number] = if_index;
  if (number < kNumbers && (more & 14) == 12) pn_to_if_[number] = 0;
  if (number < kPassedNumbers && (more & 48) == 48) the_passed_tables().pn_to_if[number] = if_index;
  if (number < kNumbers) pa_to_pn_[number] = entry.pn;
  ++change_counter_;
  services_changed_ = true;
  if (telling_) {
    tell(text_of("  number %d, interface %#x%s%s%s", number, if_index, (more & 14) == 14 ? ", bound" : "",
                 (more & 48) == 48 ? ", bound in the table to pass" : "", (more & 1) != 0 ? ", entry to pass too" : ""));
  }
}

void comparison::change_interface(step& from) {
  const uint32_t if_index = interface_of(from);
  const unsigned what = from.byte();
  interface_answers answers;
  const int status = static_cast<int>(from.byte()) + 100;
  switch (what % 16) {
    case 0:
    case 1:
      answers.portidx_status = 0x40460002;
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
      answers.lag_status = 0x40470006;
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
  const auto slot = static_cast<uint8_t>(if_index >> 8);
  const auto port = static_cast<uint8_t>(if_index);
  if (what >= 208 && what < 224)
    services_.failing_ports[{slot, port}] = status;
  else if (what >= 224 && what < 240)
    services_.overridden_ports[{slot, port}] = physical_interface(6, port % 4u);
  else {
    services_.failing_ports.erase({slot, port});
    services_.overridden_ports.erase({slot, port});
    services_.interfaces[if_index] = answers;
  }
  services_changed_ = true;
  if (telling_) tell(text_of("interface %#x answers otherwise (%u, status %d)", if_index, what, status));
}

void comparison::load_anew() {
  make_library_fresh();
  model_.state = {};
  if (telling_) tell("the library is loaded anew");
}

void comparison::change_platform(step& from) {
  const unsigned what = from.byte() % 14;
  const uint32_t key = from.byte() % 6 + 1;
  switch (what) {
    case 0: {
      const auto chassis = from.one_of(kChassis);
      services_.info.num_slots = static_cast<uint8_t>(chassis.num_slots);
      services_.chassis_type = chassis.type;
      if (telling_) tell(text_of("now %d slots, type %d", chassis.num_slots, chassis.type));
      break;
    }
    case 1:
      missing_elements_.insert(key);
      if (telling_) tell(text_of("element %u is missing", key));
      break;
    case 2:
      short_elements_[key] = from.byte() * 7;
      if (telling_) tell(text_of("element %u has %zu bytes", key, short_elements_[key]));
      break;
    case 3:
    case 4:
      missing_elements_.clear();
      short_elements_.clear();
      if (telling_) tell("all elements are there");
      break;
    case 5:
    case 6:
    case 12:
    case 13:
      load_anew();
      break;
    case 7:
      if (!model_.state.pa_to_pn && !model_.state.pn_to_logif) {
        MAX_FICON_PORTS = model_.state.max_ficon_ports = from.one_of(kPortsPreset);
        if (telling_) tell(text_of("MAX_FICON_PORTS = %d", MAX_FICON_PORTS));
      }
      break;
    case 8:
    case 9:
      fastpath_got_vsan_port = model_.state.fastpath_got_vsan_port = what == 8 ? 0 : 1;
      if (telling_) tell(text_of("fastpath_got_vsan_port = %d", fastpath_got_vsan_port));
      break;
    case 10:
      services_.filtered_subtypes.clear();
      break;
    default:
      services_.interfaces.clear();
      services_.failing_ports.clear();
      services_.overridden_ports.clear();
      if (telling_) tell("every interface answers as its bits say");
      break;
  }
  services_changed_ = true;
}

void comparison::change_numbering(step& from) {
  if (from.byte() % 2 == 0) { // what counts as default on a chassis with 10 slots, which nothing lays out
    for (int n = 0; n < 512; ++n) {
      model_numbering_[static_cast<size_t>(n)].pn = static_cast<uint16_t>(n % 64 < 48 ? n / 64 * 48 + n % 64 : 512);
    }
    for (int k = 0; k < 14; ++k) model_numbering_[static_cast<size_t>(1024 + k)].pn = static_cast<uint16_t>(240 + k);
    if (telling_) tell("numbering: eight groups of 48");
  } else {
    const size_t place = from.byte() % 2 == 0 ? from.one_of(kIndexes) : from.byte() * 2;
    model_numbering_[place].pn = from.one_of(kNumbersOfEntries);
    if (telling_) tell(text_of("numbering: entry %zu has number %d", place, model_numbering_[place].pn));
  }
  library_numbering_ = model_numbering_;
}

template <class Value, size_t kCount>
std::vector<uint8_t> bytes_of(const std::array<Value, kCount>& values) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(values.data());
  return {bytes, bytes + sizeof values};
}

void comparison::set_elements() {
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

// Makes the programmable platform answer as the model's services do.
void comparison::program() {
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

// One call in three does not find everything in order.
void comparison::disturb(step& from) {
  const unsigned kind = from.byte();
  if (kind < 168) return;
  const unsigned detail = from.byte();
  const int status = static_cast<int>(detail) + 100;
  std::string told;
  disturbed_ = true;
  if ((kind % 8 == 2 || kind % 8 == 3) && detail >= 64) load_anew(); // or there is hardly anything left to allocate
  switch (kind % 8) {
    case 0:
      services_.info_answer = {status, status + 1000};
      services_.info_fills_on_failure = detail % 2 == 0;
      told = "get_platform_info fails";
      break;
    case 1:
      services_.chassis_answer = {status, status + 1000};
      told = "hwinv_get_chassis_type fails";
      break;
    case 2:
      services_.refused_allocations.insert(static_cast<int>(detail % 4) + 1);
      told = text_of("allocation %u is refused", detail % 4 + 1);
      break;
    case 3: {
      constexpr uint32_t kTypes[] = {5, 3, 3, 2, 1};
      services_.refused_types.insert(kTypes[detail % 5]);
      told = text_of("allocations of type %u are refused", kTypes[detail % 5]);
      break;
    }
    case 4:
    case 5:
      disturbance_.at_call = static_cast<int>(detail % 24) + 1;
      disturbance_.vsan = kVsansAsked[detail % std::size(kVsansAsked)];
      told = text_of("the VSAN becomes %#x at call %d", *disturbance_.vsan, disturbance_.at_call);
      break;
    case 6:
      disturbance_.at_call = static_cast<int>(detail % 12) + 1;
      disturbance_.map = true;
      told = text_of("the map becomes empty at call %d", disturbance_.at_call);
      break;
    default:
      services_.failing_elements[detail % 6 + 1] = {status, detail >= 128};
      told = text_of("element %u cannot be read", detail % 6 + 1);
      break;
  }
  if (telling_) tell("  disturbed: " + told);
}

void comparison::end_disturbances() {
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

// ---- one call ----

template <class Result, class... Arguments, class Drawn>
void comparison::run_both(const char* name, Result (*library)(Arguments...), Result (port_map_model::*model)(Arguments...),
                          Drawn&& arguments) {
  const std::tuple<Arguments...> for_library = arguments(*of_library_);
  const std::tuple<Arguments...> for_model = arguments(*of_model_);
  if (telling_) {
    std::string line = std::string(name) + "(";
    std::apply([&](auto... values) { ((line += text_of_value(values) + ", "), ...); }, for_library);
    tell(line + ")" + text_of(" vsan %#x", of_library_->vsan));
  }
  if (services_changed_) program();
  if (disturbed_) {
    platform_.info_answer = services_.info_answer;
    platform_.info_fills_on_failure = services_.info_fills_on_failure;
    platform_.chassis_answer = services_.chassis_answer;
    for (const int nth : services_.refused_allocations) platform_.refuse_allocation(platform_allocations_ + nth);
    for (const uint32_t type : services_.refused_types) platform_.refuse_type(type);
    for (const auto& [key, failure] : services_.failing_elements) {
      platform_.fail_element(2, key, failure.status, failure.copies);
    }
  }

  std::array<ficon_pmap_port_entry, 1280> no_entries;
  no_entries.fill({512, 512, {}});
  const std::vector<uint8_t> empty_map = bytes_of(no_entries);

  // The model, which knows whether this is a call to make at all.
  services_.forget();
  services_.error = kErrorBefore;
  int calls = 0;
  services_.on_call = [&] {
    if (errno_moves_) ++services_.error;
    if (++calls != disturbance_.at_call) return;
    if (disturbance_.vsan) of_model_->vsan = *disturbance_.vsan;
    if (disturbance_.map) services_.elements[3] = empty_map;
  };
  const library_state before = model_.state;
  Result expected;
  try {
    expected = std::apply([&](auto... values) { return (model_.*model)(values...); }, for_model);
  } catch (const undefined_call&) {
    model_.state = before;
    if (what_ != nullptr) ++what_->undefined;
    if (telling_) tell("  undefined, not called");
    return;
  }

  platform_.forget_calls();
  calls = 0;
  if (errno_moves_ || disturbance_.at_call != 0) {
    platform_.on_call = [&](const std::string&) {
      if (errno_moves_) ++errno;
      if (++calls != disturbance_.at_call) return;
      if (disturbance_.vsan) of_library_->vsan = *disturbance_.vsan;
      if (disturbance_.map) platform_.set_element(2, 3, empty_map);
    };
  }
  std::string printed;
  Result found;
  {
    printed_text output;
    errno = kErrorBefore;
    found = std::apply(library, for_library);
    printed = output.text();
  }
  platform_.on_call = nullptr;
  platform_allocations_ += services_.allocations;
  compare_call(found, expected, printed);
  count(name, static_cast<uint32_t>(expected));
}

template <class Result>
void comparison::compare_call(Result of_library, Result of_model, const std::string& printed) {
  check("result", of_library, of_model);
  compare_outputs();
  check_lines("calls", platform_.all_calls(), services_.log);
  if (printed != services_.printed) differ("standard output", printed, services_.printed);
  compare_state();
  // Also where nobody promises that it is cleared, since an answer of "none" need not store anything.
  const auto& queries = platform_.lag_queries();
  for (size_t n = 0; n < queries.size() && n < services_.lag_queries.size(); ++n) {
    check("channel before it is asked for", queries[n].channel, services_.lag_queries[n].channel);
  }
}

void comparison::compare_outputs() {
  check("vsan", of_library_->vsan, of_model_->vsan);
  check("pn", of_library_->pn, of_model_->pn);
  check("pa", of_library_->pa, of_model_->pa);
  check("if_index", of_library_->if_index, of_model_->if_index);
  check("flag", of_library_->flag, of_model_->flag);
  check("index", of_library_->index, of_model_->index);
  check("count", of_library_->count, of_model_->count);
  check("line card", of_library_->line_card, of_model_->line_card);
  check("slot", of_library_->slot, of_model_->slot);
  check("port", of_library_->port, of_model_->port);
  check_list("entry", &of_library_->entry, &of_model_->entry, 1);
  check_list("platform information", reinterpret_cast<const uint8_t*>(&of_library_->info),
             reinterpret_cast<const uint8_t*>(&of_model_->info), sizeof of_model_->info);
  check_list("pns", of_library_->pns.data(), of_model_->pns.data(), kNumbers);
  check_list("if_indexes", of_library_->if_indexes.data(), of_model_->if_indexes.data(), kNumbers);
  check_list("numbering", library_numbering_.data(), model_numbering_.data(), kNumberingEntries);

  check("whether lists are written", of_library_->lists_are_written(), of_model_->lists_are_written());
  if (differs_ || !of_model_->lists_are_written()) return;
  const auto check_made = [&](const char* what, const auto* of_library, const auto* of_model) {
    check(what, of_library == nullptr, of_model == nullptr);
    if (of_library != nullptr && of_model != nullptr) check_list(what, of_library, of_model, of_model_->count);
  };
  check_made("list of numbers", of_library_->pn_list, of_model_->pn_list);
  check_made("list of addresses", of_library_->pa_list, of_model_->pa_list);
  check_made("list of interfaces", of_library_->if_list, of_model_->if_list);
  check_made("list of bound flags", of_library_->bound_list, of_model_->bound_list);
}

template <class Value>
void comparison::check_table(const char* what, const Value* of_library, const std::optional<std::vector<Value>>& of_model) {
  check(what, of_library != nullptr, of_model.has_value());
  if (of_library != nullptr && of_model) check_list(what, of_library, of_model->data(), of_model->size());
}

void comparison::compare_state() {
  const library_state& state = model_.state;
  check_table("ficon_pmap_port_to_vsan", ficon_pmap_port_to_vsan, state.port_to_vsan);
  check_table("ficon_pmap_port_to_pn", ficon_pmap_port_to_pn, state.port_to_pn);
  check_table("ficon_pmap_pa_to_pn", ficon_pmap_pa_to_pn, state.pa_to_pn);
  check_table("ficon_pmap_pn_to_logif", ficon_pmap_pn_to_logif, state.pn_to_logif);
  check_list("ficon_port_to_vsan_array", ficon_port_to_vsan_array, state.port_to_vsan_array.data(), 32);
  check("MAX_FICON_PORTS", MAX_FICON_PORTS, state.max_ficon_ports);
  check("fastpath_got_vsan_port", fastpath_got_vsan_port, state.fastpath_got_vsan_port);
  check("libchnsw_pinfo", libchnsw_pinfo != nullptr, state.pinfo.has_value());
  if (libchnsw_pinfo != nullptr && state.pinfo) {
    check_list("libchnsw_pinfo", reinterpret_cast<const uint8_t*>(libchnsw_pinfo),
               reinterpret_cast<const uint8_t*>(&*state.pinfo), sizeof *libchnsw_pinfo);
  }
  check("whether convert_fnptr stayed", convert_fnptr == converter_, true);
  check("SECONDS_BTWN_EPOCHS", SECONDS_BTWN_EPOCHS, uint64_t{2208988800});
}

void comparison::check_lines(const char* what, const std::vector<std::string>& of_library,
                             const std::vector<std::string>& of_model) {
  if (of_library == of_model) return;
  const size_t common = std::min(of_library.size(), of_model.size());
  size_t first = 0;
  while (first < common && of_library[first] == of_model[first]) ++first;
  const auto line = [&](const std::vector<std::string>& lines) {
    return first < lines.size() ? text_of("%zu. ", first + 1) + lines[first] : "no more";
  };
  differ(what, line(of_library), line(of_model));
}

void comparison::count(const char* name, uint32_t status) {
  if (what_ == nullptr) return;
  ++what_->calls;
  ++what_->status_of[name][status];
  for (const std::string& line : services_.log) {
    if (line.compare(0, 17, "evtrc_hist_event(") != 0) continue;
    const size_t text = line.find('"') + 1;
    what_->texts.insert(without_numbers(line.substr(text, line.rfind('"') - text)));
  }
  for (size_t at = 0; (at = services_.printed.find("Warning!", at)) != std::string::npos; ++at) {
    const std::string warning = services_.printed.substr(at, services_.printed.find(" for size", at) - at);
    what_->warnings.insert(warning.substr(warning.find('[')));
  }
}

// ---- calls ----

// An operation, here and there.
#define BOTH(operation) #operation, &::operation, &port_map_model::operation

void comparison::call(step& from) {
  of_library_.emplace();
  of_model_.emplace();
  const unsigned family = from.byte();
  drawn_ = {};
  disturb(from);
  drawn_.operation = from.byte();
  drawn_.number = from.one_of(kNumbersAsked);
  drawn_.vsan = from.one_of(kVsansAsked);
  of_library_->vsan = of_model_->vsan = drawn_.vsan;
  const unsigned flags = from.byte();
  drawn_.with_vsan = (flags & 1) != 0;
  drawn_.fast = (flags & 2) != 0 ? 1 : 0;
  drawn_.pass_pn_to_if = (flags & 4) != 0;
  drawn_.pass_port_to_pn = (flags & 8) != 0;
  drawn_.skip_lag_check = (flags & 16) != 0 ? -1 : 0;
  drawn_.null_result = (flags & 0xE0) == 0x20 && drawn_.number % 2 == 1;
  drawn_.null_flag = (flags & 0xE0) == 0x40 && drawn_.number % 2 == 1;
  drawn_.index = from.one_of(kIndexesAsked);
  drawn_.if_index = interface_of(from);
  drawn_.slot = from.one_of(kSlots);
  drawn_.port = from.one_of(kPorts);

  if (family < 32)
    call_table_operation();
  else if (family < 96)
    call_address_operation();
  else if (family < 120)
    call_numbering_operation();
  else if (family < 184)
    call_number_operation();
  else if (family < 240)
    call_interface_operation();
  else
    call_bulk_operation();
  end_disturbances();
}

void comparison::call_table_operation() {
  const drawn& d = drawn_;
  switch (d.operation % 12) {
    case 0:
      return run_both(BOTH(ficon_get_platform_info), [](outputs& o) { return std::tuple(&o.info); });
    case 1:
      return run_both(BOTH(ficon_get_pmap_portvsan), [&](outputs&) { return std::tuple(d.vsan); });
    case 2:
      return run_both(BOTH(ficon_get_pmap_portpn), [](outputs&) { return std::tuple(); });
    case 3:
      return run_both(BOTH(ficon_get_pmap_papn), [](outputs&) { return std::tuple(); });
    case 4:
      return run_both(BOTH(ficon_get_pmap_pnif), [](outputs&) { return std::tuple(); });
    case 5:
      return run_both(BOTH(ficon_cmi_get_pmap_change_counter), [](outputs& o) { return std::tuple(&o.count); });
    case 6:
      return run_both(BOTH(ficon_cmi_get_max_portnumber), [](outputs&) { return std::tuple(); });
    case 7:
      return run_both(BOTH(ficon_get_max_ficon_ports), [](outputs&) { return std::tuple(); });
    default:
      return run_both(BOTH(ficon_pmap_prepare_fastpath), [&](outputs&) { return std::tuple(d.vsan); });
  }
}

void comparison::call_address_operation() {
  const drawn& d = drawn_;
  const auto vsan = [&](outputs& o) -> const uint32_t* { return d.with_vsan ? &o.vsan : nullptr; };
  const auto pn = [&](outputs& o) { return d.null_result ? nullptr : &o.pn; };
  const auto pa = [&](outputs& o) { return d.null_result ? nullptr : &o.pa; };
  const auto if_index = [&](outputs& o) { return d.null_result ? nullptr : &o.if_index; };
  const auto flag = [&](outputs& o) { return d.null_flag ? nullptr : &o.flag; };
  switch (d.operation % 20) {
    case 0:
    case 1:
    case 2:
      return run_both(BOTH(ficon_pmap_get_pa_to_pn_withpvsan),
                      [&](outputs& o) { return std::tuple(d.number, vsan(o), pn(o), flag(o), d.fast); });
    case 3:
      return run_both(BOTH(ficon_pmap_get_pa_to_pn), [&](outputs& o) { return std::tuple(d.number, pn(o)); });
    case 4:
      return run_both(BOTH(ficon_pmap_get_pa_vsan_to_pn), [&](outputs& o) { return std::tuple(d.number, d.vsan, pn(o)); });
    case 5:
      return run_both(BOTH(ficon_pmap_get_pa_to_pn_fast), [&](outputs& o) { return std::tuple(d.number, pn(o)); });
    case 6:
      return run_both(BOTH(ficon_pmap_get_pa_vsan_to_pn_fast),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, pn(o)); });
    case 7:
    case 8:
    case 9:
      return run_both(BOTH(ficon_pmap_get_pn_to_pa_withpvsan),
                      [&](outputs& o) { return std::tuple(d.number, vsan(o), pa(o), flag(o), d.fast); });
    case 10:
      return run_both(BOTH(ficon_pmap_get_pn_to_pa), [&](outputs& o) { return std::tuple(d.number, pa(o)); });
    case 11:
      return run_both(BOTH(ficon_pmap_get_pn_vsan_to_pa), [&](outputs& o) { return std::tuple(d.number, d.vsan, pa(o)); });
    case 12:
      return run_both(BOTH(ficon_pmap_get_pn_to_pa_fast), [&](outputs& o) { return std::tuple(d.number, pa(o)); });
    case 13:
      return run_both(BOTH(ficon_pmap_get_pn_vsan_to_pa_fast),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, pa(o)); });
    case 14:
      return run_both(BOTH(ficon_pmap_get_pa_to_if), [&](outputs& o) { return std::tuple(d.number, if_index(o)); });
    case 15:
      return run_both(BOTH(ficon_pmap_get_pa_vsan_to_if),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, if_index(o)); });
    case 16:
      return run_both(BOTH(ficon_pmap_get_pa_to_if_fast), [&](outputs& o) { return std::tuple(d.number, if_index(o)); });
    case 17:
      return run_both(BOTH(ficon_pmap_get_pa_vsan_to_if_fast),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, if_index(o)); });
    case 18:
      return run_both(BOTH(ficon_pmap_get_pa_to_phyif), [&](outputs& o) { return std::tuple(d.number, if_index(o)); });
    default:
      return run_both(BOTH(ficon_pmap_get_pa_vsan_to_phyif),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, if_index(o)); });
  }
}

void comparison::call_numbering_operation() {
  const drawn& d = drawn_;
  constexpr int32_t kCounts[] = {1280, 1281, 1778, 3400, 1280, 1279, 1000, 0, -5};
  constexpr int32_t kAddresses[] = {0, 0, -1, 3, 16, 64, 254, 512};
  const int32_t count = kCounts[d.slot % std::size(kCounts)];
  const int32_t addresses = kAddresses[d.port % std::size(kAddresses)];
  switch (d.operation % 12) {
    case 0:
    case 1:
      return run_both(BOTH(ficon_port_to_pn_init),
                      [&](outputs& o) { return std::tuple(count, numbering_of(o).data(), addresses, pa_to_pn_.data()); });
    case 2:
    case 3:
      return run_both(BOTH(ficon_port_to_pn_is_default), [&](outputs& o) { return std::tuple(numbering_of(o).data()); });
    case 4:
    case 5:
      return run_both(BOTH(ficon_get_default_pn), [&](outputs& o) {
        const uint32_t slot = d.port >= 254 ? d.port + 2u : d.slot;
        return std::tuple(slot, d.fast != 0 && d.with_vsan ? 7u : 0u, o.pns.data());
      });
    case 6:
      return run_both(BOTH(ficonm_platform_slot_to_lc_b0), [&](outputs& o) { return std::tuple(d.slot, &o.line_card); });
    case 7:
      return run_both(BOTH(ficonm_platform_lc_to_slot_b0), [&](outputs& o) { return std::tuple(d.slot, &o.slot); });
    case 8:
      return run_both(BOTH(ficonm_platform_slot_to_pnpa_index_withpmap), [&](outputs& o) {
        const uint32_t slot = d.slot + (d.with_vsan ? 256u : 0u);
        return std::tuple(slot, d.port, &o.entry, &o.index, passed_port_to_pn());
      });
    case 9:
      return run_both(BOTH(ficonm_platform_slot_to_pnpa_index),
                      [&](outputs& o) { return std::tuple(d.slot, d.port, &o.entry, &o.index); });
    case 10:
      return run_both(BOTH(ficonm_platform_slot_to_pnpa), [&](outputs& o) { return std::tuple(d.slot, d.port, &o.entry); });
    default:
      return run_both(BOTH(ficonm_platform_slot_to_pn), [&](outputs&) { return std::tuple(d.slot, d.port); });
  }
}

void comparison::call_number_operation() {
  const drawn& d = drawn_;
  const auto vsan = [&](outputs& o) -> const uint32_t* { return d.with_vsan ? &o.vsan : nullptr; };
  const auto if_index = [&](outputs& o) { return d.null_result ? nullptr : &o.if_index; };
  const auto flag = [&](outputs& o) { return d.null_flag ? nullptr : &o.flag; };
  const int32_t bounds[] = {model_.state.max_ficon_ports, 512, 254, 8, 2, 0, -1, INT_MAX};
  const int32_t bound = bounds[d.port % std::size(bounds)];
  const auto number = static_cast<uint32_t>(d.number);
  switch (d.operation % 20) {
    case 0:
    case 1:
    case 2:
      return run_both(BOTH(ficon_pmap_get_pn_to_if_withpvsan),
                      [&](outputs& o) { return std::tuple(d.number, vsan(o), if_index(o), flag(o), d.fast); });
    case 3:
      return run_both(BOTH(ficon_pmap_get_pn_vsan_to_if_fast),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, if_index(o)); });
    case 4:
      return run_both(BOTH(ficon_pmap_get_pn_to_if_fast), [&](outputs& o) { return std::tuple(d.number, if_index(o)); });
    case 5:
      return run_both(BOTH(ficon_pmap_get_pn_vsan_to_if),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, if_index(o)); });
    case 6:
      return run_both(BOTH(ficon_pmap_get_pn_to_if), [&](outputs& o) { return std::tuple(d.number, if_index(o)); });
    case 7:
    case 16:
    case 17:
      return run_both(BOTH(ficon_pmap_get_index_to_if_withpmap),
                      [&](outputs& o) { return std::tuple(d.index, number, &o.if_index, passed_pn_to_if()); });
    case 8:
    case 18:
      return run_both(BOTH(ficon_pmap_get_index_to_if),
                      [&](outputs& o) { return std::tuple(d.index, number, &o.if_index); });
    case 9:
    case 10:
      return run_both(BOTH(ficon_pmap_get_index_to_phyif), [&](outputs& o) { return std::tuple(d.index, &o.if_index); });
    case 11:
    case 12:
    case 13:
      return run_both(BOTH(ficon_pmap_get_pn_to_phyif_withpvsan), [&](outputs& o) {
        return std::tuple(d.number, vsan(o), bound, if_index(o), passed_pn_to_if(), flag(o));
      });
    case 14:
      return run_both(BOTH(ficon_pmap_get_pn_to_phyif),
                      [&](outputs& o) { return std::tuple(d.number, if_index(o), bound, passed_pn_to_if()); });
    default:
      return run_both(BOTH(ficon_pmap_get_pn_vsan_to_phyif),
                      [&](outputs& o) { return std::tuple(d.number, d.vsan, if_index(o), bound, passed_pn_to_if()); });
  }
}

void comparison::call_interface_operation() {
  const drawn& d = drawn_;
  const auto entry = [&](outputs& o) { return d.null_result ? nullptr : &o.entry; };
  switch (d.operation % 14) {
    case 0:
    case 1:
      return run_both(BOTH(ficon_pmap_get_if_to_pnpa_index_with2pmaps), [&](outputs& o) {
        return std::tuple(d.if_index, entry(o), &o.index, passed_pn_to_if(), passed_port_to_pn(), d.skip_lag_check);
      });
    case 2:
      return run_both(BOTH(ficon_pmap_get_if_to_pnpa_index_withpmap), [&](outputs& o) {
        return std::tuple(d.if_index, entry(o), &o.index, passed_pn_to_if(), d.skip_lag_check);
      });
    case 3:
      return run_both(BOTH(ficon_pmap_get_if_to_pnpa_withpmap),
                      [&](outputs& o) { return std::tuple(d.if_index, entry(o), passed_pn_to_if(), d.skip_lag_check); });
    case 4:
      return run_both(BOTH(ficon_pmap_get_if_to_pn_withpmap),
                      [&](outputs& o) { return std::tuple(d.if_index, &o.pn, passed_pn_to_if(), d.skip_lag_check); });
    case 5:
      return run_both(BOTH(ficon_pmap_get_if_to_pn), [&](outputs& o) { return std::tuple(d.if_index, &o.pn); });
    case 6:
      return run_both(BOTH(ficon_pmap_get_if_to_pa), [&](outputs& o) { return std::tuple(d.if_index, &o.pa); });
    case 7:
      return run_both(BOTH(ficon_pmap_get_if_to_index), [&](outputs& o) { return std::tuple(d.if_index, &o.index); });
    case 8:
      return run_both(BOTH(ficon_pmap_get_if_to_index_with2pmaps), [&](outputs& o) {
        return std::tuple(d.if_index, &o.index, passed_pn_to_if(), passed_port_to_pn(), d.skip_lag_check);
      });
    case 9:
    case 10:
      return run_both(BOTH(ficon_pmap_get_next_if), [&](outputs& o) { return std::tuple(d.if_index, &o.if_index); });
    case 11:
    case 12:
      return run_both(BOTH(ficon_pmap_get_last_if), [&](outputs& o) { return std::tuple(d.if_index, &o.if_index); });
    default:
      return run_both(BOTH(ficon_if_to_slot_port_logic),
                      [&](outputs& o) { return std::tuple(d.if_index, &o.slot, &o.port, &o.flag); });
  }
}

void comparison::call_bulk_operation() {
  const drawn& d = drawn_;
  if (d.operation % 2 == 0) {
    return run_both(BOTH(ficon_pmap_get_pn_logif),
                    [](outputs& o) { return std::tuple(o.pns.data(), o.if_indexes.data(), &o.count); });
  }
  return run_both(BOTH(ficon_pmap_get_info_in_vsan), [&](outputs& o) {
    return std::tuple(d.vsan, &o.pn_list, &o.pa_list, &o.if_list, &o.bound_list, &o.count);
  });
}

#undef BOTH

} // namespace

std::string compare_port_map(const std::vector<uint8_t>& bytes, compared* what) {
  if (comparison(bytes, false, what).run()) return {};
  comparison again(bytes, true, nullptr);
  again.run();
  return again.account();
}

std::vector<uint8_t> shrunk(std::vector<uint8_t> bytes) {
  for (bool smaller = true; smaller;) {
    smaller = false;
    for (size_t at = bytes.size() / kStepBytes * kStepBytes; at > 0; at -= kStepBytes) {
      std::vector<uint8_t> without = bytes;
      const auto first = without.begin() + static_cast<ptrdiff_t>(at);
      without.erase(first, first + static_cast<ptrdiff_t>(std::min(kStepBytes, without.size() - at)));
      if (without.size() == bytes.size() || comparison(without, false, nullptr).run()) continue;
      bytes = std::move(without);
      smaller = true;
    }
  }
  return bytes;
}

std::vector<uint8_t> bytes_of_seed(uint64_t seed, size_t steps) {
  constexpr size_t kCrowd = 32; // changes of the map and of interfaces that everything begins with
  std::mt19937_64 numbers(seed);
  std::vector<uint8_t> bytes(steps * kStepBytes);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(numbers() >> 32);
  for (size_t n = 1; n <= kCrowd && n < steps; ++n)
    bytes[n * kStepBytes] = n % 8 == 0 ? uint8_t{kInterfaceChanges} : uint8_t{0};
  return bytes;
}

} // namespace chnsw_test
