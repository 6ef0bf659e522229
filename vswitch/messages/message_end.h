// An end of the message transport: its connections, who is heard when, and what becomes of those who misbehave.
//
// One thread has it. Failures are errno values, 0 being none; nothing throws but for want of memory.
#ifndef VSWITCH_MESSAGE_END_H
#define VSWITCH_MESSAGE_END_H

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "messages/local/message_socket.h"
#include "messages/received_message.h"

namespace vswitch {

// Peers of a serving end. One more costs the process that has most of them its newest one.
inline constexpr size_t kMaxPeers = 256;

class message_end {
 public:
  message_end() = default;
  message_end(const message_end&) = delete;
  message_end& operator=(const message_end&) = delete;
  ~message_end();

  // Before anything else.
  int open(const std::string& folder, uint32_t service_point);

  // A child process closes what it inherited, and leaves the rest to its parent.
  void abandon() noexcept;
  bool abandoned() const noexcept { return !folder_.open(); }

  int connect(const msgq_addr& to);
  int request(const msgq_addr& to, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg);
  int reply(msgq_message& answered, uint32_t opcode, const void* payload, uint32_t length);
  int send_to_peer(uint64_t peer, uint32_t opcode, const void* payload, uint32_t length) noexcept;

  // 0 when a message was stored; ETIMEDOUT, ECONNRESET, EINTR.
  int receive(msgq_message*& message, int timeout_ms);

  // Stores the first of those who are there, and returns how many there are.
  uint32_t list_peers(std::span<uint64_t> room);

  // Stores a descriptor that is readable when there is something to receive.
  int give_descriptor(int& number);

  int last_error = 0;

 private:
  struct connection {
    descriptor socket;
    uint64_t number = 0;        // never used again by this end
    uint32_t service_point = 0; // of the server; 0 for a peer
    pid_t process = 0;          // of a peer
    unsigned burst = 1;         // messages that it may tell in a turn
    unsigned pause = 0;         // turns of one message before it may tell more again
    unsigned next_pause = 1;
    int patience_ms = kEndlessPatience;

    bool to_server() const { return service_point != 0; }
  };

  int server(const msgq_addr& to, connection*& found);
  int connect_anew(uint32_t service_point, connection*& made);
  void set_aside(connection& lost);
  connection* find(uint64_t number) noexcept;

  // These are 0 when a message was stored, EAGAIN when there was none.
  int take_from(connection& from, msgq_message*& message, int timeout_ms = 0);
  int hear_the_lost(msgq_message*& message);
  int hear_the_ready(msgq_message*& message);
  int hear_next(msgq_message*& message);
  int hear_only(connection& server, msgq_message*& message, int timeout_ms);
  int wait_and_hear(msgq_message*& message, int timeout_ms);
  void adapt_burst(connection& speaker, bool had_more) noexcept;
  void end_turn() noexcept;
  connection* only_server() noexcept;

  // These are 0 when somebody may have become ready.
  int wait(int timeout_ms);
  int wait_for_few(int timeout_ms);
  int wait_for_many(int timeout_ms);
  int start_events();
  int watch(const descriptor& watched, uint64_t number) noexcept;

  void let_in();
  bool let_one_in();
  bool let_one_in_without_room();
  void admit(descriptor socket, pid_t process);
  void make_room();
  void hear_newcomers(bool hear) noexcept;
  void close_connection(connection& gone);

  const uint64_t identity_ = next_identity();
  static uint64_t next_identity() noexcept;

  descriptor folder_;
  descriptor events_; // once it is needed
  descriptor lock_;
  descriptor listener_;
  descriptor spare_; // to turn somebody away with when there is no descriptor left
  uint32_t service_point_ = 0;
  bool newcomers_heard_ = true;

  uint64_t last_number_ = 0;
  std::map<uint64_t, connection> connections_; // by number, and so in the order in which they came
  std::map<uint32_t, uint64_t> servers_;       // by service point
  std::map<pid_t, size_t> peers_of_process_;
  size_t peers_ = 0;
  std::deque<connection> lost_; // to servers; what they had sent is still to be heard

  std::vector<uint64_t> ready_; // who has a turn now
  size_t turn_ = 0;
  unsigned heard_in_turn_ = 0;
  std::unique_ptr<message_pool, message_pool::closer> pool_{new message_pool};
};

} // namespace vswitch

#endif
