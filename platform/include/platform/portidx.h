/* Port indexes: the switch-wide number of each port that is really there. */
#ifndef PLATFORM_PORTIDX_H
#define PLATFORM_PORTIDX_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

#define FICON_PORTIDX_NO_PORT 0x40460002u /* status: no port behind this interface index */

/* Stores the port index of a physical interface. Returns 0, FICON_PORTIDX_NO_PORT or another status of the service. */
int portidx_port_by_if_index(uint32_t if_index, uint16_t* port_index);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
