/* TLV arrays: values that each carry a type and a length, one after the other in one buffer. How they lie there is the
 * platform's own.
 *
 * flag is always 1. An array begins as a buffer of zeros. */
#ifndef PLATFORM_TLV_ALIGNED_ARRAY_H
#define PLATFORM_TLV_ALIGNED_ARRAY_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* Adds a value behind those that are there.
 * array: buffer of capacity bytes. value: length bytes, copied.
 * Returns 0; any other value is a status of the platform (the array is full, or is none), and the array stays as it was. */
int tlv_aligned_array_add_tlv(void* array, uint32_t capacity, uint16_t type, uint16_t length, const void* value, int flag);

/* The bytes in use, which is what to send. */
uint32_t tlv_aligned_array_size_get(const void* array, int flag);

/* How many values an array holds; 0 when there is no array. */
int tlv_aligned_array_get_num_tlvs(const void* array, int flag);

/* The next value.
 * type, length, value: out. *value points into the array; it is not aligned for more than 32-bit words.
 * cursor: in and out, 0 before the first call.
 * Returns 0; any other value when there is no further one or the array is damaged, and nothing is stored. */
int tlv_aligned_array_get_next_tlv(const void* array, uint16_t* type, uint16_t* length, void** value, int flag,
                                   uint32_t* cursor);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
