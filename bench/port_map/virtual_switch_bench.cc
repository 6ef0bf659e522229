// What is measured over the virtual switch: the translations that fetch, the operations over many ports, the command line.
#include <cstdio>
#include <exception>

#include "ratio.h"
#include "virtual_switch_benchmarks.h"

int main(int argc, char** argv) try {
  const bench::example_switch example;
  const auto in_folder = [&example] { example.use_in_folder(); };
  bench::add_fetching_translations("switch in memory", bench::example_switch::use_in_memory);
  bench::add_fetching_translations("switch in a folder", in_folder);
  bench::add_bulk_queries(bench::example_switch::use_in_memory);
  bench::add_single_question();
  return bench::run_benchmarks(argc, argv);
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 3;
}
