// What every answer about a port has beside the library's own.
#include "inspect/port_map/port_answer.h"

#include "inspect/error.h"
#include "inspect/port_map/port_map_tables.h"
#include "inspect/port_map/port_place.h"
#include "inspect/words/status_names.h"
#include "libchnsw.h"

namespace inspect {

namespace {

bool is_ok(std::optional<uint32_t> status) {
  return !status || *status == 0;
}

void require_memory(std::optional<uint32_t> status) {
  if (status == FICON_RC_NO_MEMORY) throw platform_error("the library was refused memory: " + status_text(*status));
}

std::optional<uint32_t> interface_of(const port_answer& answer) {
  std::optional<uint32_t> if_index = is_interface(answer.if_index) ? answer.if_index : answer.phyif_index;
  return is_interface(if_index) ? if_index : std::nullopt;
}

// Where the port stands in the port map, if nothing has said so yet.
std::optional<uint32_t> index_of(const port_answer& answer) {
  if (answer.index) return answer.index;
  auto if_index = interface_of(answer);
  if (!if_index) return std::nullopt;
  if (vswitch::fc_port_of(*if_index)) return port_map_place(*if_index);
  if (!answer.if_status) return std::nullopt; // the question was about the interface: the library has said all
  uint32_t index = 0;
  if (ficon_pmap_get_if_to_index(*if_index, &index) != 0) return std::nullopt;
  return index;
}

std::optional<vswitch::fc_port> port_of(const port_answer& answer) {
  std::optional<vswitch::fc_port> port;
  if (auto if_index = interface_of(answer)) port = vswitch::fc_port_of(*if_index);
  if (!port && answer.index) port = port_at_place(*answer.index);
  return port;
}

} // namespace

bool port_answer::is_found() const {
  return status && *status == 0 && is_ok(if_status) && is_ok(phyif_status) && is_number(pn) && is_number(pa);
}

void prepare_fast_forms(const search_options& options) {
  int32_t answer = ficon_pmap_prepare_fastpath(options.vsan.value_or(0));
  if (answer != 0)
    throw platform_error("the library cannot prepare its fast path: " + status_text(static_cast<uint32_t>(answer)));
}

port_answer complete(const library_session& session, port_answer answer) {
  for (auto status : {answer.status, answer.if_status, answer.phyif_status}) require_memory(status);
  answer.index = index_of(answer);
  answer.port = port_of(answer);
  if (answer.index && *answer.index < FICON_PMAP_PORT_ENTRIES) {
    answer.vsans = bound_vsans(session.port_to_pn()[*answer.index]);
    answer.port_vsan = session.port_to_vsan()[*answer.index];
  }
  return answer;
}

bool is_number(std::optional<uint32_t> number) {
  return number && *number != FICON_PMAP_NO_NUMBER;
}

bool is_interface(std::optional<uint32_t> if_index) {
  return if_index && *if_index != 0;
}

} // namespace inspect
