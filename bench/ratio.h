// Benchmarks that tell a ratio: what is measured, against something else that is measured in turn with it. Whatever else the
// machine does meanwhile slows both alike, so that a ratio holds on a busy machine where a time would not.
#ifndef BENCH_RATIO_H
#define BENCH_RATIO_H

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct baseline {
  std::string name;
  std::function<void()> run;
  double bar = 0; // the highest ratio that is within; 0: none is promised
};

// Adds a benchmark of subject against each baseline. prepare runs before it, once. A run that does the same thing several
// times says so, and the time of one is shown.
void add_ratio(const std::string& name, std::function<void()> subject, std::vector<baseline> baselines,
               std::function<void()> prepare = nullptr, int times_a_run = 1);

// Adds a benchmark of something that tells its own time in milliseconds, against a time.
void add_process_time(const std::string& name, std::function<double()> run_and_tell_ms, double bar_ms);

// Runs the benchmarks that the command line selects, and prints a table of ratios (or what --benchmark_format asks for).
// Returns 1 with --strict when a ratio is over its bar, else 0.
int run_benchmarks(int argc, char** argv);

} // namespace bench

#endif
