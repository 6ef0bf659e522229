// Slot and port of an interface.
#include <libchnsw.h>
#include <platform/if_index.h>

#include "report.h"

namespace {

int32_t decode_slot_and_port(uint32_t if_index, uint8_t* slot, uint8_t* port) {
  int status = if_index_get_slot(if_index, slot);
  if (status != 0) {
    ficon_log_error("Failed to get slot for if_index %#x (%d)\n", if_index, status);
    return status;
  }
  status = if_index_get_port(if_index, port);
  if (status != 0) {
    ficon_log_error("Failed to get port for if_index %#x (%d)\n", if_index, status);
  }
  return status;
}

} // namespace

int32_t ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag) {
  uint8_t type = 0;
  const int status = if_index_get_type(if_index, &type);
  if (status != 0) {
    ficon_log_error("failed to get if type for if_index:%#x (%d)\n", if_index, status);
    return status;
  }
  switch (type) {
    case IF_TYPE_FC_PORT:
      *flag = 0;
      return decode_slot_and_port(if_index, slot, port);
    case IF_TYPE_PORT_CHANNEL:
    case IF_TYPE_FCIP:
      *flag = 1;
      return 0;
    default:
      ficon_log_error("if_index %#x not fc port. type = %d\n", if_index, type);
      return FICON_RC_NOT_FC_PORT;
  }
}
