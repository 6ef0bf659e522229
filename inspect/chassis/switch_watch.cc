#include "inspect/chassis/switch_watch.h"

#include <libchnsw.h>

#include <span>
#include <utility>

#include "inspect/error.h"

namespace inspect {

namespace {

uint32_t change_counter(vswitch::switch_store& store) {
  const uint32_t key = FICON_PMAP_ELEM_CHANGE_COUNTER;
  uint32_t counter = 0;
  if (!store.look_up(FICON_ELEMDB_TABLE_PMAP, std::as_bytes(std::span(&key, 1)), &counter, sizeof counter))
    throw platform_error("the change counter cannot be read");
  return counter;
}

// The library knows one chassis for the life of its process.
void require_same_chassis(const vswitch::chassis_description& before, const vswitch::chassis_description& now) {
  if (before.platform_record == now.platform_record && before.type == now.type) return;
  throw platform_error("the switch was replaced by one with another chassis; start watch again");
}

} // namespace

switch_watch::switch_watch(const std::string& folder) : folder_(folder) {
  try {
    store_ = vswitch::switch_store::open(folder);
    seen_ = store_->describe();
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

void switch_watch::require_in_place() {
  switch (store_->presence()) {
    case vswitch::switch_presence::in_place:
      return;
    case vswitch::switch_presence::removed:
      throw platform_error(folder_ + ": the switch was removed");
    case vswitch::switch_presence::made_anew:
      throw platform_error(folder_ + ": the switch was removed and made anew; start watch again");
  }
}

std::optional<std::vector<difference>> switch_watch::look() {
  try {
    require_in_place();
    if (change_counter(*store_) == seen_.change_counter) return std::nullopt;
    auto now = store_->describe();
    require_same_chassis(seen_, now);
    auto found = differences(seen_, now);
    seen_ = std::move(now);
    return found;
  } catch (const vswitch::switch_error& error) {
    throw platform_error(error.what());
  }
}

} // namespace inspect
