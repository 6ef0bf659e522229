/* Interface indexes: the 32-bit identifiers of a switch's interfaces. Their bits are the platform's own; 0 is none. */
#ifndef PLATFORM_IF_INDEX_H
#define PLATFORM_IF_INDEX_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* Interface types that FICON knows. */
enum {
  IF_TYPE_FC_PORT = 1,      /* physical Fibre Channel port */
  IF_TYPE_PORT_CHANNEL = 4, /* logical: several ports bundled into one link */
  IF_TYPE_FCIP = 10         /* logical: Fibre Channel carried over IP */
};

/* Each stores what it is asked for and returns 0; otherwise it returns a status of the platform and stores nothing. */
int if_index_get_type(uint32_t if_index, uint8_t* type);
int if_index_get_slot(uint32_t if_index, uint8_t* slot); /* counted from 0; physical ports only */
int if_index_get_port(uint32_t if_index, uint8_t* port); /* counted from 0; physical ports only */

/* Stores the index of a physical Fibre Channel port, which need not be there. slot and port are counted from 0; zero is
 * always 0. Returns 0, or a status of the platform with *if_index untouched when no such index can be (a slot that the
 * chassis does not have). */
int if_index_phy_fc_port_init(uint32_t* if_index, uint8_t slot, uint8_t port, int zero);

/* An index as it travels in messages, and back. */
uint32_t hton_if_index(uint32_t if_index);
uint32_t ntoh_if_index(uint32_t if_index);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
}
#endif

#endif
