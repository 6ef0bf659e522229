#include "install_answer.h"

#include <cstdlib>
#include <memory>

#include "vswitch/interface_index.h"
#include "vswitch/manager/manager_protocol.h"
#include "vswitch/vsan_set.h"

namespace vswitch {

namespace {

constexpr size_t kNamesInLog = 8;

struct free_memory {
  void operator()(void* memory) const { std::free(memory); }
};

// Thrown out of the transaction, which leaves the map and its change counter.
struct map_stays {
  uint32_t result;
};

} // namespace

bool is_well_formed_install(payload_view payload) {
  if (payload.size() < sizeof(ficon_vsan_install_msg)) return false;
  const auto message = load_field<ficon_vsan_install_msg>(payload.data());
  const uint64_t size = sizeof message + uint64_t{message.count} * sizeof(uint32_t);
  return payload.size() == size && message.vsans.bytes == FICON_VSAN_BITMAP_BYTES &&
         (message.install_byte0 == kInstall || message.install_byte0 == kUninstall);
}

uint32_t read_install(msgq_message* message, install_request& request) {
  uint32_t count = 0;
  uint32_t* if_indexes = nullptr;
  uint32_t byte0 = 0;
  int32_t single_vsan = 0;
  int32_t vsan = 0;
  vsan_block vsans = no_vsans();
  const uint32_t status = ficon_parse_vsan_install(message, &count, &if_indexes, &byte0, &single_vsan, &vsan, &vsans);
  const std::unique_ptr<uint32_t, free_memory> keeper(if_indexes);
  if (status != 0) return status;
  request.install = byte0 == kInstall;
  request.if_indexes.assign(if_indexes, if_indexes + count);
  request.vsans = vsans_of(vsans);
  return holds_vsan(vsans, 0) ? uint32_t{FICON_RC_INVALID_ARG} : 0;
}

std::vector<vsan_change> changes_between(const port_map& before, const port_map& after) {
  const vsan_block was = bound_vsans(before.port_to_pn);
  const vsan_block is = bound_vsans(after.port_to_pn);
  std::vector<vsan_change> changes;
  for (uint16_t vsan = 0; vsan <= kHighestVsan; ++vsan)
    if (holds_vsan(was, vsan) != holds_vsan(is, vsan)) changes.push_back({vsan, holds_vsan(is, vsan)});
  return changes;
}

uint32_t install_on_switch(switch_store& store, const chassis_description& chassis, const install_request& request,
                           std::vector<vsan_change>& changes, std::string& why) {
  std::vector<vsan_change> found;
  try {
    store.change_map([&](port_map& map) {
      const port_map before = map;
      const uint32_t result = install_vsans(chassis, map, request);
      if (result != 0 || map == before) throw map_stays{result};
      found = changes_between(before, map);
    });
  } catch (const map_stays& stays) {
    return stays.result;
  } catch (const switch_error& error) {
    why = error.what();
    return FICON_RC_PLATFORM;
  }
  changes = found;
  return 0;
}

std::string description_of(const install_request& request) {
  std::string text = request.install ? "install of VSANs" : "uninstall of VSANs";
  for (size_t n = 0; n < request.vsans.size() && n < kNamesInLog; ++n) text += " " + std::to_string(request.vsans[n]);
  if (request.vsans.size() > kNamesInLog) text += " ... (" + std::to_string(request.vsans.size()) + " of them)";
  text += request.install ? " on" : " from";
  for (size_t n = 0; n < request.if_indexes.size() && n < kNamesInLog; ++n)
    text += " " + interface_name(request.if_indexes[n]);
  if (request.if_indexes.size() > kNamesInLog) text += " ... (" + std::to_string(request.if_indexes.size()) + " of them)";
  return text;
}

} // namespace vswitch
