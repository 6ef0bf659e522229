// What the tests of the message transport talk with: ends, other processes, and plain sockets that can send any bytes.
#ifndef TESTS_VSWITCH_MESSAGE_PARTIES_H
#define TESTS_VSWITCH_MESSAGE_PARTIES_H

#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/msgq.h>
#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "test_switch.h"

namespace vswitch_test {

inline constexpr int kLongEnoughMs = 60000; // for something that will come
inline constexpr uint32_t kPoint = 101;
inline constexpr msgq_addr kServer = {0xFE000001, kPoint};

struct end_closer {
  void operator()(msgq* end) const { msgq_close(end); }
};
using end = std::unique_ptr<msgq, end_closer>;
end open_end(uint32_t service_point = 0); // throws when it cannot be

struct message_releaser {
  void operator()(msgq_message* message) const { msgq_release(message); }
};
using message = std::unique_ptr<msgq_message, message_releaser>;

// The next message; none when receiving has any other outcome.
message receive(const end& at, int timeout_ms = kLongEnoughMs);

std::string payload_of(const message& received);

// The outcome of an operation: 0, or its errno value, after a check that both forms of the operation agree.
int request(const end& from, std::string_view payload, uint32_t opcode = 1, uintptr_t send_arg = 0,
            const msgq_addr& to = kServer);
int reply(const end& from, const message& answered, std::string_view payload);
int send_to_peer(const end& from, uint64_t peer, std::string_view payload, uint32_t opcode = 2);
int connect(const end& from, const msgq_addr& to = kServer);
int receive_error(const end& at, int timeout_ms); // 0 also when the time passed

std::vector<uint64_t> peers_of(const end& serving);

// A switch's folder, in use while the test runs.
class switch_with_messages {
 public:
  explicit switch_with_messages(const std::string& name = "switch");
  ~switch_with_messages();
  switch_with_messages(const switch_with_messages&) = delete;
  switch_with_messages& operator=(const switch_with_messages&) = delete;

  void use() const;
  std::string path(const std::string& name = "") const;
  std::string socket_path() const { return path("msgq/101"); }

 private:
  temporary_folder folder_;
  std::string name_;
};

// A fork of this process that does one thing. It is killed with its owner, or when this process ends.
class other_process {
 public:
  // A socket between parent and child: say() sends one byte, wait() receives one and throws when the other side is gone.
  class line {
   public:
    explicit line(int socket) : socket_(socket) {}
    void say() const;
    void wait() const;

   private:
    int socket_;
  };

  // Its exit status is what act returns; 99 after an exception.
  explicit other_process(const std::function<int(const line&)>& act);
  ~other_process();
  other_process(const other_process&) = delete;
  other_process& operator=(const other_process&) = delete;

  pid_t pid() const { return pid_; }
  void say() const { line(socket_).say(); }
  void wait() const { line(socket_).wait(); }
  void kill_at_once();
  int exit_status(); // waits; -1 when a signal ended it

 private:
  int socket_;
  pid_t pid_;
};

// A process that answers every request with its payload until it is killed.
std::unique_ptr<other_process> echo_server();

// A socket on the other side of an end, without the transport.
class bare_socket {
 public:
  explicit bare_socket(const std::string& path); // a client of a server
  explicit bare_socket(int descriptor) : descriptor_(descriptor) {}
  ~bare_socket();
  bare_socket(bare_socket&& other) noexcept;
  bare_socket(const bare_socket&) = delete;
  bare_socket& operator=(const bare_socket&) = delete;

  bool send(std::string_view packet) const; // false when it is not taken
  void wait_until_dropped() const;
  std::string receive() const; // a packet; empty when the connection is gone
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

// A server without the transport.
class bare_server {
 public:
  explicit bare_server(const std::string& path);
  ~bare_server();
  bare_server(const bare_server&) = delete;
  bare_server& operator=(const bare_server&) = delete;

  bare_socket accept() const;

 private:
  int descriptor_;
};

// A frame, byte for byte.
struct frame {
  uint32_t magic = 0x46514D31;
  uint32_t opcode = 1;
  uint32_t kind = 1;
  int64_t length = -1; // that of the payload
  uint64_t send_arg = 0;
  std::string payload;

  std::string bytes() const;
};

size_t open_descriptors();

} // namespace vswitch_test

#endif
