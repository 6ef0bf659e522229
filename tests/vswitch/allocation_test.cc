// Services make no allocation once they have answered for the first time. The count comes from the allocator of this
// program, or from the sanitizer's.
#include <gmock/gmock.h>
#include <interface_index.h>
#include <libchnsw.h>
#include <platform/elemdb.h>
#include <platform/hwinv.h>
#include <platform/if_index.h>
#include <platform/lagmap.h>
#include <platform/portidx.h>
#include <vswitch.h>

#include <atomic>
#include <cstddef>

#include "test_switch.h"

namespace {
std::atomic<size_t> allocations{0};
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer) && !defined(__SANITIZE_ADDRESS__)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
// The sanitizer's own, which not every compiler has a header for.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*, size_t),
                                                         void (*released)(const volatile void*));

namespace {
const int kHooked = __sanitizer_install_malloc_and_free_hooks([](const volatile void*, size_t) { ++allocations; },
                                                              [](const volatile void*) {});
}
#else
namespace {
const int kHooked = 1;
}

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);

__attribute__((visibility("default"))) void* malloc(size_t size) {
  ++allocations;
  return __libc_malloc(size);
}
__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}
__attribute__((visibility("default"))) void* realloc(void* block, size_t size) {
  ++allocations;
  return __libc_realloc(block, size);
}
__attribute__((visibility("default"))) void* aligned_alloc(size_t alignment, size_t size) {
  ++allocations;
  return __libc_memalign(alignment, size);
}
}
#endif

namespace {

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
  const size_t before = allocations;
  for (int i = 0; i < 100; ++i) ask_every_service(room);
  return allocations - before;
}

TEST(Allocations, AreCounted) {
  ASSERT_NE(kHooked, 0);
  const size_t before = allocations;
  void* volatile block = ::operator new(100); // volatile: the compiler may leave out what nobody looks at
  ::operator delete(block);
  EXPECT_GT(allocations, before);
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
    const size_t before = allocations;
    ask_every_service(room);
    EXPECT_LE(allocations - before, i == 0 ? 100u : 0u);
  }
  use_switch(nullptr);
}

} // namespace
