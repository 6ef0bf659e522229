// The platform's interface and port services, with the reports and traces that several translations share.
#include "port_services.h"

#include <libchnsw.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/portidx.h>

#include "report.h"

int chnsw::read_interface_type(uint32_t if_index, uint8_t* type) {
  const int status = if_index_get_type(if_index, type);
  if (status != 0) ficon_log_error("failed to get if type for if_index:%#x (%d)\n", if_index, status);
  return status;
}

int chnsw::read_interface_slot(uint32_t if_index, uint8_t* slot) {
  const int status = if_index_get_slot(if_index, slot);
  if (status != 0) ficon_log_error("Failed to get slot for if_index %#x (%d)\n", if_index, status);
  return status;
}

int chnsw::read_interface_port(uint32_t if_index, uint8_t* port) {
  const int status = if_index_get_port(if_index, port);
  if (status != 0) ficon_log_error("Failed to get port for if_index %#x (%d)\n", if_index, status);
  return status;
}

int32_t chnsw::refuse_interface_type(uint32_t if_index, uint8_t type) {
  ficon_log_error("if_index %#x not fc port. type = %d\n", if_index, type);
  return FICON_RC_NOT_FC_PORT;
}

int32_t chnsw::build_interface(uint8_t line_card, uint8_t port, uint32_t* if_index) {
  uint8_t slot = 0;
  const int32_t status = ficonm_platform_lc_to_slot_b0(line_card, &slot);
  if (status != 0) return status;
  return if_index_phy_fc_port_init(if_index, slot, port, 0);
}

int chnsw::find_port_index(uint32_t if_index) {
  uint16_t port_index = 0;
  const int status = portidx_port_by_if_index(if_index, &port_index);
  if (status != 0) ficon_log_debug("portidx lookup failed for IfIndex %x with err (%d)\n", if_index, status);
  return status;
}

chnsw::membership chnsw::port_channel_membership(uint32_t if_index, int& status) {
  lagmap_port_query query = {if_index, 0};
  status = lagmap_get_port(&query);
  if (status == 0) return query.channel != 0 ? membership::member : membership::none;
  return static_cast<uint32_t>(status) == FICON_LAGMAP_NOT_MEMBER ? membership::none : membership::unknown;
}
