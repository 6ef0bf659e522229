/* Memory accounting: allocations counted per library and per memory type. */
#ifndef PLATFORM_MEMACCT_H
#define PLATFORM_MEMACCT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* Registers a library's memory types 0 to count - 1. The array and its names stay the caller's and must live until
 * memacct_uninit.
 * May be called from a load hook, before any constructor of the process has run. Returns 0 on success. */
int memacct_init(const char* library, uint32_t library_id, const char* const* type_names, uint32_t count);

/* Allocates size bytes, which the caller releases with free(). Returns NULL when the allocation is refused. The bytes are
 * not cleared. A size of 0 yields a pointer that may be freed. */
void* memacct_alloc(uint32_t library_id, uint32_t type, uint32_t size);

/* Forgets a library's memory types. */
void memacct_uninit(uint32_t library_id);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
