/* Sees what the library frees: the process's own free() comes first. For programs that link it only. */
#ifndef TESTS_SUPPORT_RELEASE_WATCH_H
#define TESTS_SUPPORT_RELEASE_WATCH_H

namespace chnsw_test {

// The release of a buffer appears in the platform's log, once, as "free(name)". name: lives as long as the watch.
void watch_release(const void* address, const char* name);

// Ends every watch.
void forget_releases();

} // namespace chnsw_test

#endif
