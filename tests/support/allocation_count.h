/* Counts what a process allocates, libraries included. For programs that link it only. */
#ifndef TESTS_SUPPORT_ALLOCATION_COUNT_H
#define TESTS_SUPPORT_ALLOCATION_COUNT_H

#include <cstddef>

namespace chnsw_test {

// So far, in all threads.
size_t allocations();

// While something is done.
template <typename work>
size_t allocations_of(work do_it) {
  const size_t before = allocations();
  do_it();
  return allocations() - before;
}

} // namespace chnsw_test

#endif
