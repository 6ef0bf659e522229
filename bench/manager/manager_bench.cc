// Questions to the manager of a virtual switch, from another process, against a bare echo of as many bytes over the same
// kind of socket. One at a time is latency; many under way is throughput, of which the time of one is the reciprocal.
#include <libchnsw.h>
#include <platform/tlv_aligned_array.h>
#include <unistd.h>
#include <vswitch/manager/manager.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <system_error>

#include "echo_process.h"
#include "ratio.h"
#include "virtual_switch_benchmarks.h"

namespace {

constexpr int kPatienceMs = 10000;
constexpr int kUnderWay = 32;
constexpr uint32_t kInterface = 0x01000000; // fc1/1
constexpr uint32_t kBeforeValue = 16;       // in a TLV array
constexpr uint32_t kFrameBytes = 24;        // of the transport

void require(bool done, const char* what) {
  if (!done) throw std::system_error(errno, std::generic_category(), what);
}

void serve_for_ever(int started) {
  vswitch::manager_options options;
  options.ready = [started] { require(write(started, "s", 1) == 1, "write"); };
  vswitch::run_manager(options);
}

class manager_process {
 public:
  manager_process() : process_([started = make_pipe(started_)] { serve_for_ever(started); }) {
    char byte = 0;
    require(read(started_[0], &byte, 1) == 1, "the manager's start");
    end_ = msgq_open(0);
    require(end_ != nullptr, "msgq_open");
  }
  ~manager_process() {
    msgq_close(end_);
    close(started_[0]);
    close(started_[1]);
  }
  manager_process(const manager_process&) = delete;
  manager_process& operator=(const manager_process&) = delete;

  msgq* end() const { return end_; }

  // Asks so many times, and has as many answers parsed.
  template <typename asking, typename parsing>
  void ask(int times, asking send, parsing parse) const {
    for (int i = 0; i < times; ++i) require(send(end_) == 0, "a question");
    for (int i = 0; i < times; ++i) {
      msgq_message* message = nullptr;
      require(msgq_receive(end_, &message, kPatienceMs) == 1, "an answer");
      require(parse(message) == 0, "the answer");
      msgq_release(message);
    }
  }

 private:
  static int make_pipe(int (&ends)[2]) {
    require(pipe(ends) == 0, "pipe");
    return ends[1];
  }

  int started_[2];
  bench::echo_process process_;
  msgq* end_ = nullptr;
};

struct both {
  manager_process manager;
  bench::bare_echo bare;
};
std::unique_ptr<both> parties;

int send_port_map(msgq* end) {
  return ficon_send_get_portmap_nonblock(end, "bench", nullptr, 0, 0, kInterface, 0, 0, 0);
}
uint32_t parse_port_map(msgq_message* message) {
  uint16_t pn = 0;
  uint16_t pa = 0;
  return ficon_parse_get_portmap(message, nullptr, &pn, &pa);
}

int send_state(msgq* end) {
  const ficon_ifvsan_query query = {0, 0, 10, kInterface, 0};
  return ficon_send_query_ifvsan_state(end, &query, 0);
}
uint32_t parse_state(msgq_message* message) {
  ficon_ifvsan_query answer = {};
  return ficon_parse_query_ifvsan(message, &answer);
}

int send_enabled_vsans(msgq* end) {
  return ficon_send_get_enabled_vsans(end, 0);
}
uint32_t parse_enabled_vsans(msgq_message* message) {
  void* list = nullptr;
  const uint32_t result = ficon_parse_get_enabled_vsans(message, &list);
  std::free(list);
  return result;
}

template <typename asking, typename parsing>
void add_question(const std::string& name, asking send, parsing parse, size_t answer_bytes, int under_way) {
  bench::add_ratio(
      name, [=] { parties->manager.ask(under_way, send, parse); },
      {{"bare echo", [=] { parties->bare.exchange(static_cast<size_t>(under_way), answer_bytes); }}},
      [] {
        parties.reset();
        parties = std::make_unique<both>();
      },
      under_way);
}

template <typename asking, typename parsing>
void add_questions(const std::string& name, asking send, parsing parse, size_t answer_bytes) {
  add_question("manager: " + name, send, parse, answer_bytes, 1);
  add_question("manager: " + name + ", 32 under way", send, parse, answer_bytes, kUnderWay);
}

} // namespace

int main(int argc, char** argv) try {
  const bench::example_switch example;
  example.use_in_folder();
  add_questions("port map", send_port_map, parse_port_map, kFrameBytes + kBeforeValue + sizeof(ficon_portmap_req));
  add_questions("VSAN state", send_state, parse_state, kFrameBytes + sizeof(ficon_ifvsan_query));
  add_questions("enabled VSANs", send_enabled_vsans, parse_enabled_vsans, kFrameBytes + kBeforeValue + sizeof(vsan_block));
  const int result = bench::run_benchmarks(argc, argv);
  parties.reset();
  return result;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 3;
}
