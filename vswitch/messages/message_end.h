// An end of the message transport: its connections, the order in which their messages are received, and what becomes of peers
// that misbehave.
//
// One thread has it. Failures are errno values, 0 being none; nothing throws but for want of memory.
#ifndef VSWITCH_MESSAGE_END_H
#define VSWITCH_MESSAGE_END_H

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <span>

#include "messages/message_link.h"
#include "messages/readiness.h"
#include "messages/received_message.h"
#include "messages/turn_length.h"
#include "vswitch/descriptor.h"

namespace vswitch {

// Peers of a serving end. For one more the process that has most of them loses its newest one.
inline constexpr size_t kMaxPeers = 256;

class message_end {
 public:
  message_end() = default;
  message_end(const message_end&) = delete;
  message_end& operator=(const message_end&) = delete;
  ~message_end() = default;

  // Before anything else. Serves a service point, but for 0.
  int open(std::unique_ptr<message_link> link, uint32_t service_point);

  // A child process closes what it inherited, and leaves the rest to its parent.
  void abandon() noexcept;
  bool is_abandoned() const noexcept { return is_abandoned_; }

  int connect(const msgq_addr& to);
  int request(const msgq_addr& to, uint32_t opcode, const void* payload, uint32_t length, uintptr_t send_arg);
  int reply(msgq_message& answered, uint32_t opcode, const void* payload, uint32_t length);
  int send_to_peer(uint64_t peer, uint32_t opcode, const void* payload, uint32_t length) noexcept;

  // 0 when a message was stored; ETIMEDOUT, ECONNRESET, EINTR.
  int receive(msgq_message*& message, int timeout_ms);

  // Stores the first of the peers, and returns how many there are.
  uint32_t list_peers(std::span<uint64_t> room);

  // Stores a descriptor that is readable when there is something to receive.
  int give_descriptor(int& number);

  int last_error = 0;

 private:
  struct connection {
    std::unique_ptr<message_connection> carrier;
    uint64_t number = 0;        // never used again by this end
    uint32_t service_point = 0; // of the server; 0 for a peer
    turn_length turn;

    bool to_server() const { return service_point != 0; }
  };

  // Connections, message_end.cc
  connection* find(uint64_t number) noexcept;
  int add(connection fresh, connection*& added);
  int find_server(const msgq_addr& to, connection*& found);
  int connect_anew(uint32_t service_point, connection*& made);
  void set_aside(connection& lost);
  void close_connection(connection& gone);

  // Receiving, message_end_receiving.cc. These are 0 when a message was stored, EAGAIN when there was none.
  int receive_from(connection& sender, msgq_message*& message, int timeout_ms = 0);
  int receive_from_lost(msgq_message*& message);
  int receive_in_turn(msgq_message*& message);
  int receive_pending(msgq_message*& message);
  int receive_from_server(connection& server, msgq_message*& message, int timeout_ms);
  int wait_and_receive(msgq_message*& message, int timeout_ms);
  int wait(int timeout_ms);
  connection* only_server() noexcept;
  void end_turn() noexcept;

  // Peers, message_end_peers.cc
  void accept_some();
  bool accept_one();
  bool accept_one_with_spare();
  void add_peer(std::unique_ptr<message_connection> carrier);
  void drop_peer_of_busiest();

  const uint64_t identity_ = next_identity();
  static uint64_t next_identity() noexcept;

  std::unique_ptr<message_link> link_;
  std::unique_ptr<message_listener> listener_; // of a serving end
  bool is_abandoned_ = false;
  descriptor spare_; // closed to accept a client when there is no descriptor left for it

  readiness readiness_;
  uint64_t last_number_ = 0;
  std::map<uint64_t, connection> connections_; // by number, and so in the order in which they came
  std::map<uint32_t, uint64_t> servers_;       // by service point
  std::map<pid_t, size_t> peers_of_process_;
  size_t peers_ = 0;
  std::deque<connection> lost_; // to servers; their pending messages are still to be received

  readiness::ready_list ready_; // each of its connections has one turn
  size_t turn_ = 0;
  unsigned received_in_turn_ = 0;
  std::unique_ptr<message_pool, message_pool::closer> pool_{new message_pool};
};

// To accept a client with, when there is no descriptor left.
descriptor make_spare_descriptor() noexcept;

} // namespace vswitch

#endif
