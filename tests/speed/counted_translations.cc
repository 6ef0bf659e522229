// Runs every fast translation once in the library's form and once in the plain one, and has callgrind dump the instructions
// of each under the case's name. Does nothing else of use.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <exception>
#include <string>

#include "fast_cases.h"

namespace {

void count(bench::answer (*form)(int32_t), int32_t number, const std::string& name) {
  form(number); // whatever is done but once
  CALLGRIND_ZERO_STATS;
  form(number);
  CALLGRIND_DUMP_STATS_AT(name.c_str());
}

} // namespace

int main(int, char** argv) try {
  for (const bench::fast_case& counted : bench::fast_cases()) {
    count(counted.library, counted.number, counted.name + ", library");
    count(counted.plain, counted.number, counted.name + ", plain");
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 1;
}
