// The message transport between two processes, against a bare echo over the same kind of socket.
#include <cstdio>
#include <exception>
#include <memory>

#include "echo_process.h"
#include "ratio.h"
#include "virtual_switch_benchmarks.h"

namespace {

constexpr double kRoundTripBar = 1.15;
constexpr double kPipelinedBar = 1 / 0.85; // of the time that as many take: at least 0.85 of the throughput

// As many as both directions hold without anybody having to wait for room.
constexpr size_t kPipelined = 32;
constexpr int kRoundTrips = 32;

struct both_echoes {
  bench::transport_echo transport;
  bench::bare_echo bare;
};

// Messages that are under way at a time, and how often that is done in a run: for some while, since the processes that wait
// for their turn have left the processor's caches.
void add_exchange(const std::string& name, uint32_t size, size_t under_way, int times, double bar) {
  static std::unique_ptr<both_echoes> echoes;
  const auto repeated = [=](auto& echo) {
    for (int i = 0; i < times; ++i) echo.exchange(under_way, size);
  };
  bench::add_ratio(
      name, [=] { repeated(echoes->transport); }, {{"bare echo", [=] { repeated(echoes->bare); }, bar}},
      [] {
        echoes.reset();
        echoes = std::make_unique<both_echoes>();
      },
      times * static_cast<int>(under_way));
}

} // namespace

int main(int argc, char** argv) try {
  const bench::example_switch example;
  example.use_in_folder();
  add_exchange("round trip of 1 KiB", 1024, 1, kRoundTrips, kRoundTripBar);
  add_exchange("round trip of 64 KiB", 65536, 1, kRoundTrips, kRoundTripBar);
  add_exchange("messages of 1 KiB, 32 under way", 1024, kPipelined, 1, kPipelinedBar);
  add_exchange("messages of 64 bytes, 32 under way", 64, kPipelined, 1, kPipelinedBar);
  return bench::run_benchmarks(argc, argv);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 3;
}
