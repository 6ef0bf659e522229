// Memory accounting: what is counted, and what is refused when.
#include <gmock/gmock.h>
#include <platform/memacct.h>
#include <vswitch/vswitch.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace vswitch;

constexpr uint32_t kLibrary = 4711;
const char* const kTypes[] = {"small", "large"};

// Accounts last as long as the process, so every test looks at what it added.
class MemoryAccounting : public ::testing::Test {
 protected:
  MemoryAccounting() {
    EXPECT_EQ(memacct_init("tests", kLibrary, kTypes, 2), 0);
    before_ = account(0);
  }
  ~MemoryAccounting() override {
    cancel_refusals();
    memacct_uninit(kLibrary);
  }

  static memory_account account(uint32_t type) {
    for (const auto& candidate : memory_accounts())
      if (candidate.library_id == kLibrary && candidate.type == type) return candidate;
    return {kLibrary, type, "", "", 0, 0, 0};
  }

  static bool granted(uint32_t type = 0, uint32_t size = 8) {
    void* block = memacct_alloc(kLibrary, type, size);
    std::free(block);
    return block != nullptr;
  }

  memory_account before_;
};

TEST_F(MemoryAccounting, GrantedAllocationsAreCountedByType) {
  granted(0, 100);
  granted(0, 28);
  granted(1, 7);
  const auto after = account(0);
  EXPECT_EQ(after.allocations - before_.allocations, 2u);
  EXPECT_EQ(after.bytes - before_.bytes, 128u);
  EXPECT_EQ(after.refusals, before_.refusals);
  EXPECT_EQ(after.library, "tests");
  EXPECT_EQ(after.type_name, "small");
  EXPECT_EQ(account(1).type_name, "large");
}

TEST_F(MemoryAccounting, UnregisteredTypesAndLibrariesAreCountedWithoutAName) {
  granted(2);
  EXPECT_EQ(account(2).library, "tests");
  EXPECT_EQ(account(2).type_name, "");
  memacct_uninit(kLibrary);
  EXPECT_EQ(account(2).library, "");
  EXPECT_TRUE(granted(0));
}

TEST_F(MemoryAccounting, BlocksOfEverySizeAreFreeAndUsable) {
  for (uint32_t size : {0u, 1u, 8u, 2560u, 4095u, 4096u, 4097u, 25600u, 1000001u}) {
    void* block = memacct_alloc(kLibrary, 0, size);
    ASSERT_NE(block, nullptr) << size;
    std::memset(block, 0xAB, size);
    std::free(block);
  }
}

// Tables are refilled from the element database at every query, which is fastest to the beginning of a page.
TEST_F(MemoryAccounting, LargeBlocksBeginAtAPage) {
  for (int i = 0; i < 16; ++i) {
    void* block = memacct_alloc(kLibrary, 0, 25600);
    void* between = std::malloc(24);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 4096, 0u);
    std::free(block);
    std::free(between);
  }
}

TEST_F(MemoryAccounting, OrderedRefusalHitsTheNthAllocationFromNowOnce) {
  granted();
  order_refusal(kLibrary, 0, 2);
  EXPECT_TRUE(granted());
  EXPECT_FALSE(granted());
  EXPECT_TRUE(granted());
  EXPECT_EQ(account(0).refusals - before_.refusals, 1u);
  EXPECT_EQ(account(0).allocations - before_.allocations, 3u);
}

TEST_F(MemoryAccounting, RefusedAllocationsCountForOrdersThatFollow) {
  order_refusal(kLibrary, 0, 1);
  order_refusal(kLibrary, 0, 3);
  EXPECT_FALSE(granted());
  EXPECT_TRUE(granted());
  EXPECT_FALSE(granted());
  EXPECT_TRUE(granted());
}

TEST_F(MemoryAccounting, ZeroRefusesEveryOneUntilItIsCancelled) {
  order_refusal(kLibrary, 0, 0);
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(granted());
  EXPECT_TRUE(granted(1)); // of this type only
  cancel_refusals();
  EXPECT_TRUE(granted());
}

TEST_F(MemoryAccounting, OrdersOfAnotherLibraryDoNotMatter) {
  order_refusal(kLibrary + 1, 0, 0);
  EXPECT_TRUE(granted());
}

TEST_F(MemoryAccounting, RegistrationIsRefusedWhenItIsWrongOrMadeTwice) {
  EXPECT_EQ(memacct_init("again", kLibrary, kTypes, 2), 0x40490002);
  EXPECT_EQ(memacct_init(nullptr, kLibrary + 1, kTypes, 2), 0x40490001);
  EXPECT_EQ(memacct_init("none", kLibrary + 1, nullptr, 2), 0x40490001);
  EXPECT_EQ(memacct_init("none", kLibrary + 1, nullptr, 0), 0);
  memacct_uninit(kLibrary + 1);
  granted();
  EXPECT_EQ(account(0).library, "tests");
}

} // namespace
