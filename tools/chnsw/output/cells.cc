// Cells of values that may be missing.
#include "output/cells.h"

#include <fmt/format.h>

#include "inspect/port_map/port_answer.h"

namespace chnsw_tool {

cell known_cell(bool known, cell value) {
  return known ? std::move(value) : cell();
}

cell optional_cell(std::optional<uint32_t> value) {
  if (!value) return {};
  return int64_t{*value};
}

cell number_cell(std::optional<uint32_t> number) {
  if (!inspect::is_number(number)) return {};
  return int64_t{*number};
}

cell interface_cell(std::optional<uint32_t> if_index) {
  if (!inspect::is_interface(if_index)) return {};
  return int64_t{*if_index};
}

cell interface_name_cell(std::optional<uint32_t> if_index) {
  if (!inspect::is_interface(if_index)) return {};
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

cell slot_and_port_cell(const std::optional<vswitch::fc_port>& port) {
  if (!port) return {};
  return fmt::format("{}/{}", port->slot, port->port);
}

cell slot_cell(const std::optional<vswitch::fc_port>& port) {
  if (!port) return {};
  return int64_t{port->slot};
}

cell port_cell(const std::optional<vswitch::fc_port>& port) {
  if (!port) return {};
  return int64_t{port->port};
}

std::string interface_names(const std::vector<uint32_t>& interfaces) {
  std::string names;
  for (uint32_t interface : interfaces) names += (names.empty() ? "" : " ") + vswitch::interface_name(interface);
  return names;
}

} // namespace chnsw_tool
