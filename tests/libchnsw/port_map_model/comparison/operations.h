// Every operation of the port map, and how its arguments are made of what is drawn.
#ifndef TESTS_PORT_MAP_MODEL_OPERATIONS_H
#define TESTS_PORT_MAP_MODEL_OPERATIONS_H

#include "operation_call.h"

namespace chnsw_test {

// Makes the call that was drawn, of the operation that was drawn.
void call_drawn_operation(operation_caller& caller);

} // namespace chnsw_test

#endif
