/* Platform inventory: what kind of chassis this is. */
#ifndef PLATFORM_PLATFORM_INFO_H
#define PLATFORM_PLATFORM_INFO_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* The platform record of a chassis, 8 bytes. Clients read num_slots; the other bytes are the platform's own. */
struct ficon_platform_info {
  uint8_t byte0;
  uint8_t byte1;
  uint8_t num_slots; /* slots of the chassis, 0 to 255 */
  uint8_t byte3;
  uint8_t byte4;
  uint8_t byte5;
  uint8_t byte6;
  uint8_t byte7;
};

/* Fills *info with the platform record.
 * Returns 0 on success; any other value is a status of the platform, errno tells why, and *info may be untouched. */
int get_platform_info(struct ficon_platform_info* info);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
