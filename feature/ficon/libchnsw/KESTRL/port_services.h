// The platform's interface and port services as the translations use them, with the reports and traces that go with each.
#ifndef KESTRL_PORT_SERVICES_H
#define KESTRL_PORT_SERVICES_H

#include <cstdint>

namespace chnsw {

// Each stores its answer and returns the service's status; a failure is reported, and nothing is stored.
int read_interface_type(uint32_t if_index, uint8_t* type);
int read_interface_slot(uint32_t if_index, uint8_t* slot);
int read_interface_port(uint32_t if_index, uint8_t* port);

// Reports an interface of a type that FICON does not know. Returns FICON_RC_NOT_FC_PORT.
// Oddity: a plain number outside the library's own status codes; clients test for it.
int32_t refuse_interface_type(uint32_t if_index, uint8_t type);

// Builds a physical port's interface at the caller's own address. Returns the status of the slot conversion or of the
// interface service; nothing is reported.
int32_t build_interface(uint8_t line_card, uint8_t port, uint32_t* if_index);

// Asks the port index service whether it knows the interface; traces when it does not. Returns the service's status.
int find_port_index(uint32_t if_index);

enum class membership { none, member, unknown };

// Asks the port-channel service. status receives its answer, for the report that each caller words for itself.
membership port_channel_membership(uint32_t if_index, int& status);

} // namespace chnsw

#endif
