#include "messages/local/local_link.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "messages/local/message_socket.h"

namespace vswitch {

namespace {

// The system's clock ticks at least a hundred times a second, and a socket's timeout ends with a tick: not before the time here.
constexpr int kTickMs = 10;

int socket_timeout_of(int timeout_ms) {
  return timeout_ms < 0 ? kNoTimeout : std::min(timeout_ms, INT_MAX - kTickMs) + kTickMs;
}

class local_connection final : public message_connection {
 public:
  local_connection(descriptor socket, pid_t process) : socket_(std::move(socket)), process_(process) {}

  void abandon() noexcept override { socket_.reset(); }
  int ready_descriptor() const noexcept override { return socket_.number(); }
  pid_t process() const noexcept override { return process_; }
  bool is_connected() const noexcept override { return still_connected(socket_); }
  int send(const frame_header& header, const void* payload) noexcept override {
    return send_frame(socket_, header, payload);
  }

  ssize_t receive(void* packet, int timeout_ms) noexcept override {
    if (timeout_ms == 0) return receive_packet(socket_, packet, waiting::no);
    const int wanted_ms = socket_timeout_of(timeout_ms);
    if (socket_timeout_ms_ != wanted_ms) set_timeout(socket_, wanted_ms);
    socket_timeout_ms_ = wanted_ms;
    return receive_packet(socket_, packet, waiting::yes);
  }

 private:
  descriptor socket_;
  pid_t process_;
  int socket_timeout_ms_ = kNoTimeout; // that the socket has
};

std::unique_ptr<message_connection> connection_over(descriptor socket, pid_t process) {
  if (!socket.open()) return nullptr;
  return std::make_unique<local_connection>(std::move(socket), process);
}

class local_listener final : public message_listener {
 public:
  local_listener(const descriptor& folder, uint32_t service_point)
      : folder_(folder), service_point_(service_point), socket_(serve_point(folder, service_point, lock_)) {}
  ~local_listener() override {
    if (is_open()) stop_serving(folder_, service_point_); // while the lock holds
  }

  bool is_open() const noexcept { return socket_.open(); }
  void abandon() noexcept override {
    lock_.reset();
    socket_.reset();
  }
  int ready_descriptor() const noexcept override { return socket_.number(); }
  std::unique_ptr<message_connection> accept() override {
    pid_t process = 0;
    descriptor socket = accept_client(socket_, process);
    return connection_over(std::move(socket), process);
  }

 private:
  const descriptor& folder_;
  uint32_t service_point_;
  descriptor lock_;
  descriptor socket_;
};

class local_link final : public message_link {
 public:
  explicit local_link(descriptor folder) : folder_(std::move(folder)) {}

  void abandon() noexcept override { folder_.reset(); }

  std::unique_ptr<message_listener> serve(uint32_t service_point) override {
    auto listener = std::make_unique<local_listener>(folder_, service_point);
    return listener->is_open() ? std::move(listener) : nullptr;
  }

  std::unique_ptr<message_connection> connect(uint32_t service_point) override {
    pid_t process = 0;
    descriptor socket = connect_to_point(folder_, service_point, process);
    return connection_over(std::move(socket), process);
  }

 private:
  descriptor folder_;
};

} // namespace

std::unique_ptr<message_link> open_local_link(const std::string& folder) {
  descriptor held = hold_folder(folder);
  if (!held.open()) return nullptr;
  return std::make_unique<local_link>(std::move(held));
}

} // namespace vswitch
