// Slot and port of an interface.
#include <libchnsw.h>
#include <platform/if_index.h>

#include "port_services.h"

int32_t ficon_if_to_slot_port_logic(uint32_t if_index, uint8_t* slot, uint8_t* port, uint32_t* flag) {
  uint8_t type = 0;
  int status = chnsw::read_interface_type(if_index, &type);
  if (status != 0) return status;
  switch (type) {
    case IF_TYPE_FC_PORT:
      *flag = 0;
      status = chnsw::read_interface_slot(if_index, slot);
      return status != 0 ? status : chnsw::read_interface_port(if_index, port);
    case IF_TYPE_PORT_CHANNEL:
    case IF_TYPE_FCIP:
      *flag = 1;
      return 0;
    default:
      return chnsw::refuse_interface_type(if_index, type);
  }
}
