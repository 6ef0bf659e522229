// What the manager's tests share: a switch with everything in it, payloads, and a manager in a process of its own.
#ifndef TESTS_MANAGER_MANAGER_TEST_H
#define TESTS_MANAGER_MANAGER_TEST_H

#include <platform/msgq.h>
#include <requests.h>
#include <sys/types.h>
#include <vswitch/chassis_description.h>
#include <vswitch/interface_index.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "test_switch.h"

namespace manager_test {

inline constexpr uint32_t kFc1_1 = 0x01000000;
inline constexpr uint32_t kFc1_2 = 0x01000100;
inline constexpr uint32_t kFc1_3 = 0x01000200; // in port-channel 5, as fc1/4 is
inline constexpr uint32_t kFc1_5 = 0x01000400;
inline constexpr uint32_t kFc1_9 = 0x01000800;  // without numbers
inline constexpr uint32_t kFc1_49 = 0x01003000; // the card ends before it
inline constexpr uint32_t kFc7_1 = 0x01060000;  // line card 4, index 1016
inline constexpr uint32_t kFc7_9 = 0x01060800;  // behind the physical ports of the port map
inline constexpr uint32_t kPortChannel5 = 0x04000005;
inline constexpr uint32_t kFcip3 = 0x0A000003;
inline constexpr uint32_t kFcip4 = 0x0A000004; // there, without a number
inline constexpr uint32_t kManagement0 = 0x02000000;

// small_switch() with these entries, and fcip4:
//
//   index 0 to 7   fc1/1 to fc1/8   PN 0 to 7   PA 20 to 27   fc1/1, 3, 5, 7 bound to VSAN 10 and in it, the others 20
//   index 1024     fcip3            PN 240      PA F0         bound to 20
//   index 1025     port-channel5    PN 241      PA F1         bound to 10 and 30
//
// Behind fc1/1 and fc1/2 there are devices of code pages 37 and ASCII.
vswitch::chassis_description full_switch();

// A TLV array with these values.
struct typed_value {
  uint16_t type;
  const void* value;
  uint16_t length;
};
vswitch::payload_bytes tlv_array(std::initializer_list<typed_value> values);

// The manager of a switch's folder, in a process that ends with the test.
class running_manager {
 public:
  explicit running_manager(std::string folder, int swap_patience_ms = 600000);
  ~running_manager();
  running_manager(const running_manager&) = delete;
  running_manager& operator=(const running_manager&) = delete;

  void kill_at_once();                        // as kill -9 does
  vswitch_test::process_result end();         // as kill does
  std::string log() const;                    // what it logged until now
  bool logged(const std::string& text) const; // waits for it

 private:
  vswitch_test::running_process process_;
  bool runs_ = true;
};

// An end of this process.
struct end_close {
  void operator()(msgq* handle) const { msgq_close(handle); }
};
using owned_end = std::unique_ptr<msgq, end_close>;
struct message_release {
  void operator()(msgq_message* message) const { msgq_release(message); }
};
using owned_message = std::unique_ptr<msgq_message, message_release>;

owned_end open_client();

// The next message, which must come.
owned_message receive(msgq* end);

template <typename record>
record payload_record(msgq_message* message) {
  record read{};
  const auto* bytes = static_cast<const std::byte*>(msgq_payload_get(message));
  auto found = vswitch::flat_record<record>({bytes, bytes == nullptr ? 0 : msgq_payload_size(message)});
  return found ? *found : read;
}

// Whether something comes true within a minute.
bool comes_true(const std::function<bool()>& condition);

// A child process that does this and exits; its exit code tells whether a check failed.
pid_t in_child(const std::function<void()>& act);
bool ended_well(pid_t child);

} // namespace manager_test

#endif
