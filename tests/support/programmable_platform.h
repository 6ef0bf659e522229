/* The platform's services as a test wants them: programmable answers, and a log of every call in order. One object stands
 * for the whole platform; the C services of platform/include are defined here and answer from it. */
#ifndef TESTS_SUPPORT_PROGRAMMABLE_PLATFORM_H
#define TESTS_SUPPORT_PROGRAMMABLE_PLATFORM_H

#include <platform/char_convert.h>
#include <platform/elemdb.h>
#include <platform/evtrc.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/memacct.h>
#include <platform/msgq.h>
#include <platform/platform_info.h>
#include <platform/portidx.h>
#include <platform/tlv_aligned_array.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// A received message, made from the bytes of its payload.
struct msgq_message {
  // misalignment: how far the payload stands from the address of a word. At least a KiB of zeros follows it.
  explicit msgq_message(const std::vector<uint8_t>& payload, size_t misalignment = 1);
  static msgq_message without_payload();

  void* payload() { return has_payload_ ? storage_.data() + misalignment_ : nullptr; }
  uint32_t size() const { return size_; }

  std::string name = "message"; // in the log

 private:
  msgq_message() = default;
  std::vector<uint8_t> storage_;
  size_t misalignment_ = 0;
  uint32_t size_ = 0;
  bool has_payload_ = false;
};

namespace chnsw_test {

// What a service answers: its status, and the errno that it leaves behind (0 leaves errno alone).
struct service_answer {
  int status = 0;
  int error = 0;
};

// How one interface index differs from what its bits say. Bits: type in the top byte, slot in the next two, port in the
// last.
struct interface_answers {
  std::optional<uint8_t> type;
  int type_status = 0;    // of if_index_get_type
  int slot_status = 0;    // of if_index_get_slot
  int port_status = 0;    // of if_index_get_port
  int portidx_status = 0; // of portidx_port_by_if_index
  uint16_t port_index = 0;
  int lag_status = 0;   // of lagmap_get_port
  uint32_t channel = 0; // what lagmap_get_port stores when its status is 0
};

// One record as the event history received it.
struct history_event {
  uint32_t id;
  uint32_t length;
  uint32_t subtype;
  std::string text; // up to the first NUL inside length
};

// One text as the debug output received it.
struct debug_text {
  int level;
  bool own_module; // the module argument is the address of evtrc_dbg_modname
  int zero;
  std::string text;
};

// One call of memacct_alloc that was granted.
struct allocation {
  void* address;
  uint32_t library_id;
  uint32_t type;
  uint32_t size;
};

// One call of msgq_send, whole.
struct sent_message {
  msgq* handle;
  msgq_addr to;
  uint32_t opcode;
  const void* payload_address;
  std::vector<uint8_t> payload;
  uint32_t length;
  uintptr_t send_arg;
  msgq_message* answered;
  uint32_t zero;
};

// One call of tlv_aligned_array_add_tlv.
struct added_tlv {
  const void* array;
  bool array_was_zero;
  uint32_t capacity;
  uint16_t type;
  std::vector<uint8_t> value;
  int flag;
};

// How one call of tlv_aligned_array_get_next_tlv differs from what the array says.
struct tlv_answer {
  int status;
  bool stores;
};

// One call of the converter, as it arrived.
struct conversion {
  const char* input;
  int32_t input_length;
  std::string text; // the input's bytes
  uint32_t mode;
  const char* output;
  uint32_t counter;
  uint32_t output_space;
  uint32_t codepage;
};

// One value of a TLV array, and an array of several as this platform lays it out.
struct tlv {
  uint16_t type;
  std::vector<uint8_t> value;
};
std::vector<uint8_t> tlv_array(const std::vector<tlv>& values);

// The byte that fresh allocations are filled with, so that missing clearing shows.
inline constexpr uint8_t kGarbage = 0xA5;

class programmable_platform {
 public:
  // Back to the default: a 10-slot chassis of type 32, every service succeeds, no element exists, nothing is filtered,
  // debug output is off, and the log is empty.
  void reset();

  // ---- answers ----
  void set_chassis(int num_slots, int32_t type);
  ficon_platform_info info{};
  service_answer info_answer; // of get_platform_info; a failure leaves the record alone
  bool info_fills_on_failure = false;
  int32_t chassis_type = 0;
  service_answer chassis_answer; // of hwinv_get_chassis_type; a failure leaves the value alone

  void set_element(uint32_t table, uint32_t key, std::vector<uint8_t> bytes);
  template <class Value>
  void set_element(uint32_t table, uint32_t key, const Value* values, size_t count) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(values);
    set_element(table, key, std::vector<uint8_t>(bytes, bytes + count * sizeof(Value)));
  }
  void remove_element(uint32_t table, uint32_t key);
  // Every look-up of it; nothing is copied unless asked for.
  void fail_element(uint32_t table, uint32_t key, int status, bool copies_all_the_same = false);
  void fail_element_lookup(int nth, int status); // the nth look-up of any element since reset, from 1

  interface_answers& interface(uint32_t if_index) { return interfaces_[if_index]; }
  void fail_port_init(uint8_t slot, uint8_t port, int status); // of if_index_phy_fc_port_init; nothing is stored
  void override_port_init(uint8_t slot, uint8_t port, uint32_t if_index);

  void refuse_allocation(int nth) { refused_calls_.insert(nth); } // counted from 1 since reset
  void refuse_type(uint32_t type) { refused_types_.insert(type); }
  void grant_allocations(); // ends both
  int memacct_init_status = 0;

  service_answer send_answer; // of msgq_send
  int msgq_error = 0;         // what msgq_errno_get answers

  int tlv_add_status = 0;                // of tlv_aligned_array_add_tlv; a failure leaves the array alone
  std::optional<uint32_t> tlv_size;      // what tlv_aligned_array_size_get answers, whatever is in use
  std::optional<int> tlv_count;          // what tlv_aligned_array_get_num_tlvs answers, whatever is there
  std::map<int, tlv_answer> tlv_answers; // by the number of the call of tlv_aligned_array_get_next_tlv, from 1

  int convert_result = 1;            // of the converter
  std::set<int> failing_conversions; // by the number of the call, from 1: the converter writes and answers 0
  // What the converter makes of a text, which may be longer or shorter. Left alone, it makes the next byte of every byte.
  std::function<std::string(const std::string& text)> on_convert;

  std::set<uint32_t> filtered_subtypes; // evtrc_hist_event_subtype_check answers with filter_answer
  int filter_answer = 1;
  std::set<int> debug_flags; // evtrc_chk_int answers with flag_answer
  int flag_answer = 1;

  // Runs after a call was logged and before it is answered, so that a test can change anything in the middle of an
  // operation. Not called for calls that it makes itself.
  std::function<void(const std::string& call)> on_call;
  // Sees every look-up as it arrived, before it is answered.
  std::function<void(const elemdb_request& request)> on_lookup;

  // ---- what was called ----
  // Every call but those of event history and debug output, as lines like "elemdb_lookup_element(1, 2, 4, key 3, 25600)".
  std::vector<std::string> calls() const;
  // Those of event history and debug output only.
  std::vector<std::string> reporting_calls() const;
  // Both, in order.
  std::vector<std::string> all_calls() const;
  // How many calls of calls() begin with this text.
  int count(const std::string& prefix) const;

  const std::vector<history_event>& history() const { return history_; }
  const std::vector<debug_text>& debug_output() const { return debug_output_; }
  std::vector<std::string> errors() const { return texts(102); }                     // history texts of error reports
  std::vector<std::string> traces() const { return texts(103); }                     // history texts of traces
  const std::vector<lagmap_port_query>& lag_queries() const { return lag_queries_; } // as they arrived
  const std::vector<allocation>& allocations() const { return allocations_; }
  const std::vector<sent_message>& sent() const { return sent_; }
  const std::vector<added_tlv>& added_tlvs() const { return added_tlvs_; }
  const std::vector<conversion>& conversions() const { return conversions_; }

  // Forgets what was called; the answers stay, and calls are counted on.
  void forget_calls();

  // ---- for the C services ----
  enum class kind { work, reporting };
  void record(kind what, std::string line);
  int answer(const service_answer& answer) const;
  int lookup(const elemdb_request& request);
  int port_init(uint32_t* if_index, uint8_t slot, uint8_t port);
  void* allocate(uint32_t library_id, uint32_t type, uint32_t size);
  void add_history(history_event event) { history_.push_back(std::move(event)); }
  void add_debug_text(debug_text text) { debug_output_.push_back(std::move(text)); }
  void add_lag_query(const lagmap_port_query& query) { lag_queries_.push_back(query); }
  int send(sent_message message);
  void* payload(msgq_message* message);
  int add_tlv(added_tlv added, void* array);
  uint32_t tlv_size_of(const void* array, int flag);
  int tlv_count_of(const void* array, int flag);
  int next_tlv(const void* array, uint16_t* type, uint16_t* length, void** value, int flag, uint32_t* cursor);
  int convert(conversion asked, char** output, uint32_t* counter, uint32_t* output_space);

 private:
  struct logged_call {
    kind what;
    std::string line;
  };
  std::vector<std::string> lines(std::optional<kind> what) const;
  std::vector<std::string> texts(uint32_t subtype) const;

  std::map<std::pair<uint32_t, uint32_t>, std::vector<uint8_t>> elements_;
  struct failing_element {
    int status;
    bool copies;
  };
  std::map<std::pair<uint32_t, uint32_t>, failing_element> failing_elements_;
  std::map<int, int> failing_lookups_;
  std::map<uint32_t, interface_answers> interfaces_;
  std::map<std::pair<uint8_t, uint8_t>, int> failing_ports_;
  std::map<std::pair<uint8_t, uint8_t>, uint32_t> overridden_ports_;
  std::set<int> refused_calls_;
  std::set<uint32_t> refused_types_;
  int lookups_ = 0;
  int allocation_calls_ = 0;
  int next_tlv_calls_ = 0;
  int conversion_calls_ = 0;
  const void* last_payload_ = nullptr; // what msgq_payload_get answered last
  bool in_hook_ = false;

  std::vector<logged_call> log_;
  std::vector<history_event> history_;
  std::vector<debug_text> debug_output_;
  std::vector<lagmap_port_query> lag_queries_;
  std::vector<allocation> allocations_;
  std::vector<sent_message> sent_;
  std::vector<added_tlv> added_tlvs_;
  std::vector<conversion> conversions_;
};

// Called for every allocation that is granted, also after a reset, until it is set to NULL; for a program that looks for leaks.
void watch_allocations(void (*granted)(const void* address));

// The one platform of this process. It lives from its first use on: the library's load hook calls before any constructor
// of the process has run.
programmable_platform& the_platform();

// Interface indexes of this platform.
constexpr uint32_t physical_interface(uint32_t slot, uint32_t port) {
  return 0x01000000u | slot << 8 | port;
}
constexpr uint32_t port_channel_interface(uint32_t number) {
  return 0x04000000u | number;
}
constexpr uint32_t fcip_interface(uint32_t number) {
  return 0x0A000000u | number;
}

// What this platform's hton_if_index and ntoh_if_index add. They do not undo each other, so that a message tells which of
// them an index went through.
inline constexpr uint32_t kHton = 0x10000000;
inline constexpr uint32_t kNtoh = 0x40000000;

} // namespace chnsw_test

// The converter of this platform, for convert_fnptr or for an object that is loaded at run time.
extern "C" int platform_convert(const char* input, int32_t input_length, uint32_t mode, char** output, uint32_t* counter,
                                uint32_t* output_space, uint32_t codepage);

#endif
