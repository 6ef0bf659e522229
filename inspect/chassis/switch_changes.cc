#include "inspect/chassis/switch_changes.h"

#include "inspect/error.h"
#include "vswitch/switch_store.h"

namespace inspect {

namespace {

using vswitch::chassis_description;
using vswitch::port_map;
using vswitch::switch_store;

// Thrown out of the transaction, so that the change counter stays.
struct nothing_to_change {};

map_change apply_edit(switch_store& store, const port_map_edit& edit) {
  chassis_description before = store.describe();
  chassis_description after = before;
  map_change change{before.change_counter, true, {}};
  try {
    change.change_counter = store.change_map([&](port_map& map) {
      before.map = map;
      edit(map);
      after.map = map;
      if (after.map == before.map) throw nothing_to_change();
    });
  } catch (const nothing_to_change&) {
    change.changed = false;
  }
  change.differences = differences(before, after);
  return change;
}

} // namespace

chassis_description create_folder(const std::string& folder, const chassis_description& chassis) {
  try {
    switch_store::create(folder, chassis);
    return switch_store::open(folder)->describe();
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

map_change change_map(const std::string& folder,
                      const std::function<port_map_edit(const chassis_description&)>& make_edit) {
  try {
    auto store = switch_store::open(folder);
    return apply_edit(*store, make_edit(store->describe()));
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

std::vector<difference> change_time_reference(const std::string& folder, uint32_t vsan,
                                              const std::optional<vswitch::time_reference>& reference) {
  try {
    const auto before = switch_store::open(folder)->set_time_reference(vsan, reference);
    return differences(vsan, before, reference);
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

} // namespace inspect
