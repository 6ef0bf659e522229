// Services make no allocation once they have answered for the first time. The count comes from the allocator of this
// program, or from the sanitizer's.
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/elemdb.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/portidx.h>
#include <vswitch/interface_index.h>
#include <vswitch/vswitch.h>

#include <cstddef>

#include "allocation_count.h"
#include "test_switch.h"

namespace {

using chnsw_test::allocations_of;
using namespace vswitch;

void ask_every_service(std::span<std::byte> room) {
  for (uint32_t key = 1; key <= 7; ++key) {
    elemdb_request request{1, 2, 4, &key, static_cast<uint32_t>(room.size()), room.data()};
    elemdb_lookup_element(&request);
  }
  ficon_platform_info info;
  int32_t type = 0;
  uint8_t byte = 0;
  uint16_t port_index = 0;
  uint32_t if_index = 0;
  lagmap_port_query query{fc_port_index(1, 3), 0};
  get_platform_info(&info);
  hwinv_get_chassis_type(&type);
  if_index_get_type(logical_index(IF_TYPE_FCIP, 3), &byte);
  if_index_get_slot(fc_port_index(1, 3), &byte);
  if_index_get_port(fc_port_index(1, 3), &byte);
  if_index_phy_fc_port_init(&if_index, 0, 2, 0);
  portidx_port_by_if_index(if_index, &port_index);
  lagmap_get_port(&query);
}

size_t allocations_of_services() {
  static std::byte room[25600];
  ask_every_service(room);
  return allocations_of([] {
    for (int i = 0; i < 100; ++i) ask_every_service(room);
  });
}

TEST(Allocations, AreCounted) {
  EXPECT_EQ(allocations_of([] {
              void* volatile block = ::operator new(100); // volatile: nobody looks at it otherwise
              ::operator delete(block);
            }),
            1u);
}

TEST(Allocations, ServicesOfASwitchInMemoryMakeNoneAfterTheFirstAnswer) {
  use_switch(switch_store::in_memory(vswitch_test::small_switch()));
  EXPECT_EQ(allocations_of_services(), 0u);
  use_switch(nullptr);
}

TEST(Allocations, ServicesOfAFolderMakeNoneAfterTheFirstAnswer) {
  vswitch_test::temporary_folder folder;
  switch_store::create(folder.path("switch"), vswitch_test::small_switch());
  use_switch(switch_store::open(folder.path("switch")));
  EXPECT_EQ(allocations_of_services(), 0u);
  use_switch(nullptr);
}

// Every change sends the next look-up through a transaction again.
TEST(Allocations, LookUpsBetweenChangesMakeNone) {
  use_switch(switch_store::in_memory(vswitch_test::small_switch()));
  static std::byte room[25600];
  for (int i = 0; i < 20; ++i) {
    switch_in_use()->change_map([](port_map& map) { ++map.port_to_vsan[0]; });
    EXPECT_LE(allocations_of([] { ask_every_service(room); }), i == 0 ? 100u : 0u);
  }
  use_switch(nullptr);
}

} // namespace
