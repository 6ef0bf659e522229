#include "message_parties.h"
#include "child_end.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vswitch/vswitch.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace vswitch_test {

namespace {

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

int error_of(const end& asked, int result) {
  const int error = errno;
  if (result == 0) return 0;
  EXPECT_EQ(result, -1);
  EXPECT_EQ(msgq_errno_get(asked.get()), error);
  return error;
}

sockaddr_un address_of(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw std::runtime_error(path + " is too long");
  std::memcpy(address.sun_path, path.c_str(), path.size());
  return address;
}

int make_socket() {
  const int made = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  if (made < 0) fail("socket");
  return made;
}

} // namespace

end open_end(uint32_t service_point) {
  end opened(msgq_open(service_point));
  if (!opened) fail("msgq_open");
  return opened;
}

message receive(const end& at, int timeout_ms) {
  msgq_message* received = nullptr;
  return message(msgq_receive(at.get(), &received, timeout_ms) == 1 ? received : nullptr);
}

std::string payload_of(const message& received) {
  const auto* bytes = static_cast<const char*>(msgq_payload_get(received.get()));
  return bytes == nullptr ? std::string() : std::string(bytes, msgq_payload_size(received.get()));
}

int request(const end& from, std::string_view payload, uint32_t opcode, uintptr_t send_arg, const msgq_addr& to) {
  return error_of(from, msgq_send(from.get(), &to, opcode, payload.empty() ? nullptr : payload.data(),
                                  static_cast<uint32_t>(payload.size()), send_arg, nullptr, 0));
}

int reply(const end& from, const message& answered, std::string_view payload) {
  const msgq_addr replies{FICON_REPLY_NODE, 0};
  return error_of(from, msgq_send(from.get(), &replies, 0, payload.empty() ? nullptr : payload.data(),
                                  static_cast<uint32_t>(payload.size()), 0, answered.get(), 0));
}

int send_to_peer(const end& from, uint64_t peer, std::string_view payload, uint32_t opcode) {
  return error_of(from, msgq_send_to_peer(from.get(), peer, opcode, payload.empty() ? nullptr : payload.data(),
                                          static_cast<uint32_t>(payload.size())));
}

int connect(const end& from, const msgq_addr& to) {
  return error_of(from, msgq_connect(from.get(), &to));
}

int receive_error(const end& at, int timeout_ms) {
  msgq_message* received = nullptr;
  const int result = msgq_receive(at.get(), &received, timeout_ms);
  EXPECT_NE(result, 1);
  return error_of(at, result);
}

std::vector<uint64_t> peers_of(const end& serving) {
  std::vector<uint64_t> peers(msgq_peers_get(serving.get(), nullptr, 0));
  peers.resize(msgq_peers_get(serving.get(), peers.data(), static_cast<uint32_t>(peers.size())));
  return peers;
}

switch_with_messages::switch_with_messages(const std::string& name) : name_(name) {
  std::filesystem::create_directories(path());
  vswitch::switch_store::create(path(), small_switch());
  use();
}

switch_with_messages::~switch_with_messages() {
  vswitch::use_switch(nullptr);
}

void switch_with_messages::use() const {
  vswitch::use_switch(vswitch::switch_store::open(path()));
}

std::string switch_with_messages::path(const std::string& name) const {
  return folder_.path(name.empty() ? name_ : name_ + "/" + name);
}

void other_process::line::say() const {
  if (::send(socket_, "s", 1, MSG_NOSIGNAL) != 1) fail("the other process");
}

void other_process::line::wait() const {
  char byte = 0;
  ssize_t size = 0;
  do size = recv(socket_, &byte, 1, 0);
  while (size < 0 && errno == EINTR);
  if (size != 1) throw std::runtime_error("the other process is gone");
}

other_process::other_process(const std::function<int(const line&)>& act) {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) fail("socketpair");
  pid_ = fork();
  if (pid_ < 0) fail("fork");
  close(sockets[pid_ == 0 ? 0 : 1]);
  socket_ = sockets[pid_ == 0 ? 1 : 0];
  if (pid_ != 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  try {
    end_child(act(line(socket_)));
  } catch (const std::exception& error) {
    fprintf(stderr, "other process: %s\n", error.what());
    end_child(99);
  }
}

other_process::~other_process() {
  kill_at_once();
  close(socket_);
}

void other_process::kill_at_once() {
  if (pid_ <= 0) return;
  kill(pid_, SIGKILL);
  waitpid(std::exchange(pid_, 0), nullptr, 0);
}

int other_process::exit_status() {
  int status = 0;
  waitpid(std::exchange(pid_, 0), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::unique_ptr<other_process> echo_server() {
  auto server = std::make_unique<other_process>([](const other_process::line& parent) {
    const end served = open_end(kPoint);
    parent.say();
    for (;;) {
      const message received = receive(served, -1);
      if (received && reply(served, received, payload_of(received)) != 0) return 1;
    }
  });
  server->wait();
  return server;
}

bare_socket::bare_socket(const std::string& path) : descriptor_(make_socket()) {
  const sockaddr_un address = address_of(path);
  if (::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return;
  close(descriptor_);
  fail("connect");
}

bare_socket::~bare_socket() {
  if (descriptor_ >= 0) close(descriptor_);
}

bare_socket::bare_socket(bare_socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

bool bare_socket::send(std::string_view packet) const {
  return ::send(descriptor_, packet.data(), packet.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(packet.size());
}

void bare_socket::wait_until_dropped() const {
  pollfd state{descriptor_, 0, 0};
  if (poll(&state, 1, kLongEnoughMs) != 1) throw std::runtime_error("the connection is still there");
}

std::string bare_socket::receive() const {
  std::string packet(MSGQ_MAX_PAYLOAD + 100, '\0');
  const ssize_t size = recv(descriptor_, packet.data(), packet.size(), 0);
  packet.resize(size < 0 ? 0 : static_cast<size_t>(size));
  return packet;
}

bare_server::bare_server(const std::string& path) : descriptor_(make_socket()) {
  unlink(path.c_str());
  const sockaddr_un address = address_of(path);
  if (bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) fail("bind");
  if (listen(descriptor_, 100) != 0) fail("listen");
}

bare_server::~bare_server() {
  close(descriptor_);
}

bare_socket bare_server::accept() const {
  const int accepted = accept4(descriptor_, nullptr, nullptr, SOCK_CLOEXEC);
  if (accepted < 0) fail("accept");
  return bare_socket(accepted);
}

std::string frame::bytes() const {
  std::string packet;
  const auto add = [&packet](auto number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    packet.append(bytes, sizeof bytes);
  };
  add(magic);
  add(opcode);
  add(kind);
  add(static_cast<uint32_t>(length < 0 ? static_cast<int64_t>(payload.size()) : length));
  add(send_arg);
  return packet + payload;
}

size_t open_descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(all), std::filesystem::directory_iterator()));
}

} // namespace vswitch_test
