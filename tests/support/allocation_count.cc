#include "allocation_count.h"

#include <atomic>
#include <cerrno>

#include "sanitizer_allocator.h"

namespace {
std::atomic<size_t> count;
}

size_t chnsw_test::allocations() {
  return count;
}

#ifdef SANITIZER_ALLOCATES

[[gnu::constructor]] static void listen() {
  __sanitizer_install_malloc_and_free_hooks([](const volatile void*, size_t) { ++count; }, [](const volatile void*) {});
}

#else

// In the place of the C library's, for everybody in the process.
extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) {
  ++count;
  return __libc_malloc(size);
}

void* calloc(size_t members, size_t size) {
  ++count;
  return __libc_calloc(members, size);
}

void* realloc(void* block, size_t size) {
  ++count;
  return __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
  ++count;
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
  ++count;
  *block = __libc_memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

} // extern "C"

#endif
