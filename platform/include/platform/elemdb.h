/* Element database: small values that a manager process writes and many processes read, each under a table selector and
 * a key. */
#ifndef PLATFORM_ELEMDB_H
#define PLATFORM_ELEMDB_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* One look-up: six words on a 32-bit machine. */
struct elemdb_request {
  uint32_t first;        /* always 1 */
  uint32_t table;        /* table selector */
  uint32_t key_length;   /* bytes at key */
  const void* key;       /* in the machine's byte order */
  uint32_t value_length; /* bytes that fit at value */
  void* value;           /* receives the element, in the machine's byte order */
};

/* Looks an element up and copies at most value_length bytes of it to request->value.
 * Returns 0 when the element was found and copied. Any other value: not found or not readable, nothing was copied. */
int elemdb_lookup_element(struct elemdb_request* request);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
