/* Port-channel membership: which ports are bundled into which port-channel. */
#ifndef PLATFORM_LAGMAP_H
#define PLATFORM_LAGMAP_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

#define FICON_LAGMAP_NOT_MEMBER 0x40470006u /* status: the port belongs to no port-channel */

struct lagmap_port_query {
  uint32_t if_index; /* in: the port that is asked about */
  uint32_t channel;  /* out: its port-channel; 0 = none */
};

/* Answers the query. Returns 0 with query->channel stored, FICON_LAGMAP_NOT_MEMBER (the same as 0 with channel 0), or
 * another status of the service. */
int lagmap_get_port(struct lagmap_port_query* query);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
