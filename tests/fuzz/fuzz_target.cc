#include "fuzz_target.h"

#include <cstdio>
#include <cstdlib>

namespace {

unsigned success_count;

} // namespace

void fuzz::require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", promise);
  std::abort();
}

void fuzz::count_success() {
  ++success_count;
}

unsigned fuzz::successes() {
  return success_count;
}
