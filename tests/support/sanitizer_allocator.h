/* SANITIZER_ALLOCATES: the allocator of this process is the address sanitizer's; and how to be called for what it allocates. */
#ifndef TESTS_SUPPORT_SANITIZER_ALLOCATOR_H
#define TESTS_SUPPORT_SANITIZER_ALLOCATOR_H

#include <cstddef>

// g++ has a macro for it, clang++ a feature.
#ifdef __SANITIZE_ADDRESS__
#define SANITIZER_ALLOCATES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SANITIZER_ALLOCATES
#endif
#endif

#ifdef SANITIZER_ALLOCATES
// Not every compiler has a header for it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void* block, size_t size),
                                                         void (*released)(const volatile void* block));
#endif

#endif
