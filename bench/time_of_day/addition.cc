// A file of its own, so that no compiler puts the addition into the loop.
#include "addition.h"

uint64_t bench::add_seconds(uint64_t value, const ficon_host_time* time) {
  return value + static_cast<uint64_t>(int64_t{time->seconds});
}
