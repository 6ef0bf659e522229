#include "echo_process.h"

#include <libchnsw.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace bench {

namespace {

char bytes[MSGQ_MAX_PAYLOAD];

void require(bool done, const char* what) {
  if (!done) throw std::system_error(errno, std::generic_category(), what);
}

// Echoes side by side on one processor, and whoever talks to them on another: where the system happens to put a process
// makes more of a difference than what is measured here.
struct processors {
  size_t first = 0;
  size_t last = 0;

  processors() {
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) return;
    for (size_t number = CPU_SETSIZE; number-- > 0;)
      if (CPU_ISSET(number, &allowed)) first = number;
    for (size_t number = 0; number < CPU_SETSIZE; ++number)
      if (CPU_ISSET(number, &allowed)) last = number;
  }
};

const processors& allowed_processors() {
  static const processors allowed;
  return allowed;
}

void stay_on(size_t processor) {
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(processor, &one);
  sched_setaffinity(0, sizeof one, &one);
}

int* make_pair(int (&sockets)[2]) {
  require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) == 0, "socketpair");
  return sockets;
}

void echo_packets(int socket) {
  for (;;) {
    const ssize_t size = recv(socket, bytes, sizeof bytes, 0);
    if (size <= 0 || send(socket, bytes, static_cast<size_t>(size), MSG_NOSIGNAL) != size) return;
  }
}

void echo_messages(int started) {
  msgq* end = msgq_open(FICON_MGR_SERVICE_POINT);
  if (end == nullptr || write(started, "s", 1) != 1) return;
  msgq_message* message = nullptr;
  while (msgq_receive(end, &message, -1) == 1) {
    if (msgq_send(end, nullptr, 0, msgq_payload_get(message), msgq_payload_size(message), 0, message, 0) != 0) return;
    msgq_release(message);
  }
}

msgq* open_when_served(int started) {
  char byte;
  require(read(started, &byte, 1) == 1, "the echo's start");
  msgq* end = msgq_open(0);
  require(end != nullptr, "msgq_open");
  return end;
}

} // namespace

echo_process::echo_process(const std::function<void()>& echo_for_ever) {
  const processors& allowed = allowed_processors();
  pid_ = fork();
  require(pid_ >= 0, "fork");
  stay_on(pid_ == 0 ? allowed.last : allowed.first);
  if (pid_ != 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  echo_for_ever();
  _exit(1);
}

echo_process::~echo_process() {
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

bare_echo::bare_echo() : process_([socket = make_pair(sockets_)[1]] { echo_packets(socket); }) {}

bare_echo::~bare_echo() {
  close(sockets_[0]);
  close(sockets_[1]);
}

void bare_echo::exchange(size_t packets, size_t size) {
  for (size_t i = 0; i < packets; ++i) require(send(sockets_[0], bytes, size, MSG_NOSIGNAL) > 0, "send");
  for (size_t i = 0; i < packets; ++i) require(recv(sockets_[0], bytes, sizeof bytes, 0) > 0, "recv");
}

transport_echo::transport_echo() : process_([started = make_pair(started_)[1]] { echo_messages(started); }) {
  close(started_[1]);
  end_ = open_when_served(started_[0]);
}

transport_echo::~transport_echo() {
  msgq_close(end_);
  close(started_[0]);
}

void transport_echo::exchange(size_t messages, uint32_t size) {
  const msgq_addr manager{FICON_MGR_NODE, FICON_MGR_SERVICE_POINT};
  for (size_t i = 0; i < messages; ++i) require(msgq_send(end_, &manager, 1, bytes, size, i, nullptr, 0) == 0, "msgq_send");
  msgq_message* message = nullptr;
  for (size_t i = 0; i < messages; ++i) {
    require(msgq_receive(end_, &message, -1) == 1, "msgq_receive"); // as long as a bare recv() does
    msgq_release(message);
  }
}

} // namespace bench
