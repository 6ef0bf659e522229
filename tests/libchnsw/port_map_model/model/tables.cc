// The tables and where they come from: platform information, element database, number of ports.
#include "port_map_model.h"

namespace chnsw_test {

// ---- platform information ----

int32_t port_map_model::ficon_get_platform_info(ficon_platform_info* info) {
  if (state.pinfo) {
    *info = *state.pinfo;
    return 0;
  }
  const int status = services_.get_platform_info(*info);
  if (status != 0) return status;
  if (!services_.memacct_alloc(5, 8)) {
    malloc_warning(81, 8);
    return 1;
  }
  state.pinfo = *info;
  return 0;
}

// ---- tables ----

template <class Value>
bool port_map_model::allocate(std::optional<std::vector<Value>>& values, size_t count, uint32_t type, int line) {
  if (values) return true;
  const auto size = static_cast<uint32_t>(count * sizeof(Value));
  if (!services_.memacct_alloc(type, size)) {
    malloc_warning(line, size);
    return false;
  }
  values.emplace(count, Value{});
  return true;
}

template <class Value>
void port_map_model::fetch(uint32_t key, std::vector<Value>& values, size_t count) {
  if (count > values.size()) throw undefined_call();
  services_.elemdb_lookup_element(key, static_cast<uint32_t>(count * sizeof(Value)), values.data());
}

int32_t port_map_model::ficon_get_pmap_portvsan(uint32_t) {
  services_.elemdb_lookup_element(4, 32, state.port_to_vsan_array.data());
  if (!allocate(state.port_to_vsan, 1280, 5, 1420)) return 1;
  fetch(5, *state.port_to_vsan, 1280);
  return 0;
}

int32_t port_map_model::ficon_get_pmap_portpn() {
  if (!allocate(state.port_to_pn, 1280, 5, 1453)) return 1;
  fetch(3, *state.port_to_pn, 1280);
  return 0;
}

int32_t port_map_model::ficon_get_pmap_papn() {
  if (ficon_get_max_ficon_ports() <= 0) return as_signed(FICON_RC_PLATFORM);
  const auto count = static_cast<size_t>(state.max_ficon_ports);
  if (!allocate(state.pa_to_pn, count, 2, 1491)) return 1;
  fetch(1, *state.pa_to_pn, count);
  return 0;
}

int32_t port_map_model::ficon_get_pmap_pnif() {
  if (ficon_get_max_ficon_ports() <= 0) return as_signed(FICON_RC_PLATFORM);
  const auto count = static_cast<size_t>(state.max_ficon_ports);
  if (!allocate(state.pn_to_logif, count, 3, 1530)) return 1;
  fetch(2, *state.pn_to_logif, count);
  return 0;
}

int32_t port_map_model::ficon_cmi_get_pmap_change_counter(uint32_t* counter) {
  uint32_t value = 0;
  *counter = services_.elemdb_lookup_element(6, 4, &value) == 0 ? value : 0;
  return 0;
}

int32_t port_map_model::ficon_pmap_prepare_fastpath(uint32_t vsan) {
  int32_t status = ficon_get_pmap_pnif();
  if (status != 0) return status;
  status = ficon_get_pmap_portpn();
  if (status != 0) return status;
  status = ficon_get_pmap_portvsan(vsan);
  if (status == 0) {
    state.fastpath_got_vsan_port = 1;
    return 0;
  }
  if (as_unsigned(status) == FICON_RC_PLATFORM) {
    state.fastpath_got_vsan_port = 0;
    return 0;
  }
  return status;
}

int32_t port_map_model::ficon_cmi_get_max_portnumber() {
  ficon_platform_info info{};
  if (services_.get_platform_info(info) != 0) {
    log_error([&] { return text_of("get_platform_info failed, errno = %d", services_.error); });
    return -1;
  }
  int32_t chassis_type = -1;
  if (services_.hwinv_get_chassis_type(chassis_type) != 0) {
    log_error([&] { return text_of("hwinv_get_chassis_type failed, errno = %d", services_.error); });
    return -2;
  }
  switch (info.num_slots) {
    case 1:
      if (chassis_type == 5) return 33;
      if (chassis_type == 15) return 47;
      if (chassis_type == 27) return 253;
      return 53;
    case 2:
      return 77;
    case 6:
      return chassis_type == 34 ? 253 : 141;
    case 9:
    case 10:
      return chassis_type == 32 || chassis_type == 38 ? 253 : 237;
    case 13:
    case 18:
      return chassis_type == 38 ? 253 : 237;
    default:
      return 0;
  }
}

int32_t port_map_model::ficon_get_max_ficon_ports() {
  if (state.max_ficon_ports > 0) return state.max_ficon_ports;
  state.max_ficon_ports = ficon_cmi_get_max_portnumber() + 1;
  return state.max_ficon_ports;
}

} // namespace chnsw_test
