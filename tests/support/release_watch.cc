#include "release_watch.h"

#include <cstddef>
#include <stdexcept>
#include <string>

#include "programmable_platform.h"
#include "sanitizer_allocator.h"

namespace chnsw_test {
namespace {

// A plain array: free() runs before constructors and after destructors.
struct watched_buffer {
  const void* address;
  const char* name;
};
watched_buffer watched[8];

void log_release(const void* address) {
  for (auto& buffer : watched) {
    if (buffer.address == nullptr || buffer.address != address) continue;
    buffer.address = nullptr;
    the_platform().record(programmable_platform::kind::work, "free(" + std::string(buffer.name) + ")");
  }
}

} // namespace

void watch_release(const void* address, const char* name) {
  for (auto& buffer : watched) {
    if (buffer.address != nullptr) continue;
    buffer = {address, name};
    return;
  }
  throw std::length_error("too many buffers are watched");
}

void forget_releases() {
  for (auto& buffer : watched) buffer = {nullptr, nullptr};
}

} // namespace chnsw_test

#ifdef SANITIZER_ALLOCATES // it has taken free() already, and tells

[[gnu::constructor]] static void watch_releases() {
  __sanitizer_install_malloc_and_free_hooks([](const volatile void*, size_t) {},
                                            [](const volatile void* address) {
                                              if (address != nullptr)
                                                chnsw_test::log_release(const_cast<const void*>(address));
                                            });
}

#else

extern "C" {

void __libc_free(void* address);

void free(void* address) noexcept {
  if (address != nullptr) chnsw_test::log_release(address);
  __libc_free(address);
}

} // extern "C"

#endif
