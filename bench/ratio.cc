// How ratios are measured and told.
#include "ratio.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace bench {

namespace {

using clock = std::chrono::steady_clock;

// A turn of each is long beside what reading the clock takes, and short beside the machine's changes of mind.
constexpr double kTurnSeconds = 20e-6;

// Counters of a benchmark, by what their names begin with; a baseline's name follows.
constexpr char kTime[] = "ns";
constexpr char kProcessTime[] = "ms";
constexpr char kRatio[] = "ratio ";
constexpr char kBar[] = "bar ";

// As wide as the table's first two columns.
constexpr char kNextLine[] = "                                                                             ";

double seconds_of(const std::function<void()>& run, int times) {
  const auto start = clock::now();
  for (int i = 0; i < times; ++i) run();
  return std::chrono::duration<double>(clock::now() - start).count();
}

// One of the things that take turns.
class contender {
 public:
  explicit contender(const std::function<void()>& run) : run_(run) {
    seconds_of(run_, 1); // whatever is done but once
    while (times_ < (1 << 20) && seconds_of(run_, times_) < kTurnSeconds) times_ *= 2;
  }
  void take_turn() { seconds_ = seconds_of(run_, times_) / times_; }
  double seconds() const { return seconds_; } // of one run in the last turn
  double turn_seconds() const { return seconds_ * times_; }

 private:
  const std::function<void()>& run_;
  int times_ = 1;
  double seconds_ = 0;
};

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// What takes part in one benchmark: the subject first, then the baselines.
class round_robin {
 public:
  round_robin(const std::function<void()>& subject, const std::vector<baseline>& baselines) {
    contenders_.emplace_back(subject);
    for (const baseline& other : baselines) contenders_.emplace_back(other.run);
    ratios_.resize(contenders_.size());
  }

  // Each takes its turn; who begins changes, since the first finds the caches as the last left them.
  void take_turns() {
    for (size_t i = 0; i < contenders_.size(); ++i) contenders_[(first_ + i) % contenders_.size()].take_turn();
    first_ = (first_ + 1) % contenders_.size();
    times_.push_back(contenders_[0].seconds());
    for (size_t i = 1; i < contenders_.size(); ++i) {
      ratios_[i].push_back(contenders_[0].seconds() / contenders_[i].seconds());
    }
  }

  double subject_turn_seconds() const { return contenders_[0].turn_seconds(); }
  double median_seconds() { return median(times_); }
  double median_ratio(size_t baseline) { return median(ratios_[baseline + 1]); }

 private:
  std::vector<contender> contenders_;
  std::vector<double> times_;
  std::vector<std::vector<double>> ratios_;
  size_t first_ = 0;
};

void measure(benchmark::State& state, const std::function<void()>& subject, const std::vector<baseline>& baselines,
             int times_a_run) {
  round_robin turns(subject, baselines);
  for (auto _ : state) {
    turns.take_turns();
    state.SetIterationTime(turns.subject_turn_seconds());
  }
  state.counters[kTime] = turns.median_seconds() * 1e9 / times_a_run;
  for (size_t i = 0; i < baselines.size(); ++i) {
    state.counters[kRatio + baselines[i].name] = turns.median_ratio(i);
    if (baselines[i].bar > 0) state.counters[kBar + baselines[i].name] = baselines[i].bar;
  }
}

// What a failed run says, or null. Releases of the library since 1.8 name the members differently.
template <typename run_type>
const std::string* failure_of(const run_type& run) {
  if constexpr (requires { run.error_occurred; }) {
    return run.error_occurred ? &run.error_message : nullptr;
  } else {
    return run.skipped != decltype(run.skipped){} ? &run.skip_message : nullptr;
  }
}

// Prints a line for each ratio as it comes.
class ratio_table : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override {
    std::printf("%-66s %10s  %-12s %7s %6s\n", "", "time", "against", "ratio", "bar");
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) report(run);
    std::fflush(stdout);
  }

  bool any_over() const { return any_over_; }

 private:
  void report(const Run& run) {
    if (const std::string* failure = failure_of(run)) {
      std::printf("%-66s FAILED: %s\n", run.run_name.function_name.c_str(), failure->c_str());
      any_over_ = true;
      return;
    }
    if (run.counters.count(kProcessTime) != 0) {
      report_process_time(run);
      return;
    }
    char time[32];
    const double ns = run.counters.at(kTime).value;
    std::snprintf(time, sizeof time, "%.*f ns", ns < 100 ? 1 : 0, ns);
    std::printf("%-66s %10s", run.run_name.function_name.c_str(), time);
    const char* indent = "";
    for (const auto& [name, counter] : run.counters) {
      if (!name.starts_with(kRatio)) continue;
      const std::string against = name.substr(std::strlen(kRatio));
      std::printf("%s  %-12s %7.2f", indent, against.c_str(), counter.value);
      indent = kNextLine;
      compare(run, against, counter.value);
    }
  }

  void report_process_time(const Run& run) {
    const double ms = run.counters.at(kProcessTime).value;
    std::printf("%-66s %7.2f ms  %-12s %7s", run.run_name.function_name.c_str(), ms, "", "");
    compare(run, kProcessTime, ms);
  }

  void compare(const Run& run, const std::string& against, double value) {
    const auto bar = run.counters.find(kBar + against);
    if (bar == run.counters.end()) {
      std::printf(" %6s\n", "-");
      return;
    }
    const bool over = value > bar->second.value;
    any_over_ |= over;
    std::printf(" %6.2f  %s\n", bar->second.value, over ? "OVER" : "within");
  }

  bool any_over_ = false;
};

// Takes a flag off the command line. Returns whether it was there.
bool take_flag(int& argc, char** argv, std::string_view flag) {
  char** const end = std::remove_if(argv + 1, argv + argc, [&](const char* word) { return word == flag; });
  const bool there = end != argv + argc;
  argc = static_cast<int>(end - argv);
  return there;
}

bool asks_for_a_format(int argc, char** argv) {
  return std::any_of(argv + 1, argv + argc, [](std::string_view word) {
    return word.starts_with("--benchmark_format") || word.starts_with("--benchmark_list_tests");
  });
}

} // namespace

void add_ratio(const std::string& name, std::function<void()> subject, std::vector<baseline> baselines,
               std::function<void()> prepare, int times_a_run) {
  const auto run = [=](benchmark::State& state) {
    if (prepare) prepare();
    measure(state, subject, baselines, times_a_run);
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime();
}

void add_process_time(const std::string& name, std::function<double()> run_and_tell_ms, double bar_ms) {
  const auto run = [=](benchmark::State& state) {
    std::vector<double> times;
    for (auto _ : state) {
      times.push_back(run_and_tell_ms());
      state.SetIterationTime(times.back() / 1e3);
    }
    state.counters[kProcessTime] = median(times);
    state.counters[std::string(kBar) + kProcessTime] = bar_ms;
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime();
}

int run_benchmarks(int argc, char** argv) {
  const bool strict = take_flag(argc, argv, "--strict");
  const bool format_given = asks_for_a_format(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  if (format_given) {
    benchmark::RunSpecifiedBenchmarks();
    return 0;
  }
  ratio_table table;
  benchmark::RunSpecifiedBenchmarks(&table);
  return strict && table.any_over() ? 1 : 0;
}

} // namespace bench
