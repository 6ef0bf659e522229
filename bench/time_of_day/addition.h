// An addition behind a call, as a conversion is.
#ifndef BENCH_TIME_OF_DAY_ADDITION_H
#define BENCH_TIME_OF_DAY_ADDITION_H

#include <cstdint>

#include <libchnsw.h>

namespace bench {

// Returns the value moved on by the seconds of a time.
uint64_t add_seconds(uint64_t value, const ficon_host_time* time);

} // namespace bench

#endif
