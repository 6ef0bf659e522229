/* Hardware inventory: the chassis type, which tells apart chassis with the same number of slots. */
#ifndef PLATFORM_HWINV_H
#define PLATFORM_HWINV_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* Stores the chassis type in *chassis_type.
 * Returns 0 on success; otherwise *chassis_type is untouched and errno tells why. */
int hwinv_get_chassis_type(int32_t* chassis_type);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
