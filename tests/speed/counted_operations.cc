// Runs every fast translation, and every operation that goes through others, once in the library's form and once in the plain
// one, and has callgrind dump the instructions of each under the case's name. Does nothing else of use.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <exception>
#include <string>

#include "composed_cases.h"
#include "fast_cases.h"

namespace {

template <typename form, typename... argument>
void count(const std::string& name, form call, argument... given) {
  call(given...); // whatever is done but once
  CALLGRIND_ZERO_STATS;
  call(given...);
  CALLGRIND_DUMP_STATS_AT(name.c_str());
}

} // namespace

int main(int, char** argv) try {
  for (const bench::fast_case& counted : bench::fast_cases()) {
    count(counted.name + ", library", counted.library, counted.number);
    count(counted.name + ", plain", counted.plain, counted.number);
  }
  for (const bench::composed_case& counted : bench::composed_cases()) {
    count(counted.name + ", library", counted.library);
    count(counted.name + ", plain", counted.plain);
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
  return 1;
}
