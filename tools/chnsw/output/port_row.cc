// The row about one port.
#include "output/port_row.h"
#include "inspect/words/status_names.h"

#include <fmt/format.h>

#include "exit_code.h"
#include "inspect/port_map/port_map_walk.h"
#include "vswitch/interface_index.h"

namespace chnsw_tool {

namespace {

bool is_number(std::optional<uint32_t> number) {
  return number && *number != FICON_PMAP_NO_NUMBER;
}
bool is_interface(std::optional<uint32_t> if_index) {
  return if_index && *if_index != 0;
}
bool is_ok(std::optional<uint32_t> answer) {
  return !answer || *answer == 0;
}

std::optional<vswitch::fc_port> port_of_index(uint32_t index) {
  uint8_t slot = 0;
  if (index >= FICON_PMAP_PHYS_ENTRIES) return std::nullopt;
  if (ficonm_platform_lc_to_slot_b0(static_cast<uint8_t>(index / FICON_PMAP_PORTS_PER_LC), &slot) != 0) return std::nullopt;
  return vswitch::fc_port{slot + 1U, index % FICON_PMAP_PORTS_PER_LC + 1};
}

// Where the row's port stands in the port map, if nothing has said so yet.
std::optional<uint32_t> index_of(const port_row& row) {
  if (row.index) return row.index;
  std::optional<uint32_t> if_index = is_interface(row.if_index) ? row.if_index : row.phyif_index;
  if (!is_interface(if_index)) return std::nullopt;
  if (auto port = vswitch::fc_port_of(*if_index)) return port_map_place(port->slot, port->port);
  if (!row.if_answer) return std::nullopt; // the question was about the interface: the library has said all
  uint32_t index = 0;
  if (ficon_pmap_get_if_to_index(*if_index, &index) != 0) return std::nullopt;
  return index;
}

// A refused allocation says nothing about the port.
void require_memory(std::optional<uint32_t> answer) {
  if (answer == FICON_RC_NO_MEMORY) throw platform_error("the library was refused memory: " + status_text(*answer));
}

void add_status(std::string_view label, std::optional<uint32_t> answer, std::string& text) {
  if (is_ok(answer)) return;
  if (!text.empty()) text += "; ";
  text += std::string(label) + status_text(*answer);
}

// What failed, first things first: without a number the rest could only fail as well.
toned_text status_summary(const port_row& row) {
  if (!row.answer) return {"not asked", tone::bad};
  if (*row.answer != 0) return {status_text(*row.answer), tone::bad};
  std::string failed;
  if (row.if_answer == row.phyif_answer) {
    add_status("both: ", row.if_answer, failed);
  } else {
    add_status("if: ", row.if_answer, failed);
    add_status("phy: ", row.phyif_answer, failed);
  }
  return failed.empty() ? toned_text{status_text(0), tone::good} : toned_text{failed, tone::bad};
}

} // namespace

bool port_row::is_found() const {
  return answer && *answer == 0 && is_ok(if_answer) && is_ok(phyif_answer) && is_number(pn) && is_number(pa);
}

std::vector<column> port_columns() {
  return {{"pn", "PN", 2},
          {"pa", "PA", 2, true},
          {"slot_port", "SLOT/PORT", 0, false, column::table_only},
          {"slot", "", 0, false, column::data_only},
          {"port", "", 0, false, column::data_only},
          {"index", "INDEX"},
          {"if_index", "IF-INDEX", 8, true},
          {"interface", "INTERFACE"},
          {"phyif_index", "", 8, false, column::data_only},
          {"phyif", "PHYSICAL"},
          {"vsans", "VSANS"},
          {"port_vsan", "VSAN"},
          {"asked_vsan", "", 0, false, column::data_only},
          {"status", "", 0, false, column::data_only},
          {"if_status", "", 0, false, column::data_only},
          {"phyif_status", "", 0, false, column::data_only},
          {"statuses", "STATUS", 0, false, column::table_only}};
}

result_row show(const port_row& row, const library_session& session) {
  for (auto answer : {row.answer, row.if_answer, row.phyif_answer}) require_memory(answer);
  std::optional<uint32_t> index = index_of(row);
  cell vsans;
  cell port_vsan;
  if (index && *index < FICON_PMAP_PORT_ENTRIES) {
    vsans = bound_vsans(session.port_to_pn()[*index]);
    port_vsan = vsan_cell(session.port_to_vsan()[*index]);
  }
  auto place = slot_and_port_of(is_interface(row.if_index) ? row.if_index : row.phyif_index, index);
  return {{number_cell(row.pn), number_cell(row.pa), place.text, place.slot, place.port, optional_cell(index),
           interface_cell(row.if_index), interface_name_cell(row.if_index), interface_cell(row.phyif_index),
           interface_name_cell(row.phyif_index), vsans, port_vsan, optional_cell(row.asked_vsan), status_cell(row.answer),
           status_cell(row.if_answer), status_cell(row.phyif_answer), status_summary(row)},
          {},
          nullptr};
}

cell known_cell(bool known, cell value) {
  return known ? std::move(value) : cell();
}

cell optional_cell(std::optional<uint32_t> value) {
  if (!value) return {};
  return int64_t{*value};
}

cell number_cell(std::optional<uint32_t> number) {
  if (!is_number(number)) return {};
  return int64_t{*number};
}

cell interface_cell(std::optional<uint32_t> if_index) {
  if (!is_interface(if_index)) return {};
  return int64_t{*if_index};
}

cell interface_name_cell(std::optional<uint32_t> if_index) {
  if (!is_interface(if_index)) return {};
  return vswitch::interface_name(*if_index);
}

cell vsan_cell(uint32_t vsan) {
  if (vsan == 0) return {};
  return int64_t{vsan};
}

cell status_cell(std::optional<uint32_t> code) {
  if (!code) return {};
  return status{*code};
}

slot_and_port slot_and_port_of(std::optional<uint32_t> if_index, std::optional<uint32_t> index) {
  std::optional<vswitch::fc_port> port;
  if (is_interface(if_index)) port = vswitch::fc_port_of(*if_index);
  if (!port && index) port = port_of_index(*index);
  if (!port) return {};
  return {fmt::format("{}/{}", port->slot, port->port), int64_t{port->slot}, int64_t{port->port}};
}

} // namespace chnsw_tool
