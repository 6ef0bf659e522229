/* The platform record: asked once, then answered from the cached copy. */
#include <cstring>

#include "library_test.h"

namespace {

using chnsw_test::allocation_warning;
using chnsw_test::output_of;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsNull;
using ::testing::NotNull;

class PlatformInfo : public chnsw_test::LibraryTest {
 protected:
  PlatformInfo() { memset(&info, 0xEE, sizeof(info)); }

  static std::array<uint8_t, 8> bytes_of(const ficon_platform_info& record) {
    std::array<uint8_t, 8> bytes{};
    memcpy(bytes.data(), &record, bytes.size());
    return bytes;
  }

  ficon_platform_info info;
};

TEST_F(PlatformInfo, FirstCallAsksThePlatformAndCachesAllEightBytes) {
  platform.info = {1, 2, 13, 4, 5, 6, 7, 8};

  EXPECT_EQ(ficon_get_platform_info(&info), 0);

  EXPECT_THAT(bytes_of(info), ElementsAre(1, 2, 13, 4, 5, 6, 7, 8));
  ASSERT_THAT(libchnsw_pinfo, NotNull());
  EXPECT_THAT(bytes_of(*libchnsw_pinfo), ElementsAre(1, 2, 13, 4, 5, 6, 7, 8));
}

// Oddity: the record is accounted under the type of the port-to-number table.
TEST_F(PlatformInfo, FirstCallAllocatesEightBytesOfThePortTablesType) {
  ficon_get_platform_info(&info);

  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "memacct_alloc(206, 5, 8)"));
}

TEST_F(PlatformInfo, SecondCallDoesNotAskThePlatform) {
  platform.info = {1, 2, 13, 4, 5, 6, 7, 8};
  ficon_get_platform_info(&info);
  platform.forget_calls();
  platform.info = {11, 12, 18, 14, 15, 16, 17, 18};
  memset(&info, 0xEE, sizeof(info));

  EXPECT_EQ(ficon_get_platform_info(&info), 0);

  EXPECT_THAT(platform.all_calls(), IsEmpty());
  EXPECT_THAT(bytes_of(info), ElementsAre(1, 2, 13, 4, 5, 6, 7, 8));
}

TEST_F(PlatformInfo, SecondCallKeepsTheCachedCopyWhereItIs) {
  ficon_get_platform_info(&info);
  const ficon_platform_info* cached = libchnsw_pinfo;

  ficon_get_platform_info(&info);

  EXPECT_EQ(libchnsw_pinfo, cached);
}

TEST_F(PlatformInfo, StatusOfAFailingPlatformIsPassedBackUnchanged) {
  for (const int status : {-1, 1, 11, 0x40410007}) {
    platform.info_answer = {status, 5};
    EXPECT_EQ(ficon_get_platform_info(&info), status);
  }
}

TEST_F(PlatformInfo, FailingPlatformLeavesNothingCachedAndIsNotReported) {
  platform.info_answer = {-1, 5};

  const std::string printed = output_of([&] { ficon_get_platform_info(&info); });

  EXPECT_THAT(libchnsw_pinfo, IsNull());
  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()"));
  EXPECT_EQ(printed, "");
  EXPECT_THAT(bytes_of(info), ElementsAre(0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE));
}

TEST_F(PlatformInfo, CallersOwnRecordIsHandedToThePlatform) {
  platform.info = {1, 2, 13, 4, 5, 6, 7, 8};
  platform.info_answer = {-1, 0};
  platform.info_fills_on_failure = true;

  EXPECT_EQ(ficon_get_platform_info(&info), -1);

  EXPECT_THAT(bytes_of(info), ElementsAre(1, 2, 13, 4, 5, 6, 7, 8));
}

TEST_F(PlatformInfo, AfterAFailureThePlatformIsAskedAgain) {
  platform.info_answer = {-1, 5};
  ficon_get_platform_info(&info);
  platform.info_answer = {};

  EXPECT_EQ(ficon_get_platform_info(&info), 0);

  EXPECT_EQ(info.num_slots, 10);
}

TEST_F(PlatformInfo, RefusedAllocationFailsAlthoughTheRecordIsFilled) {
  platform.info = {1, 2, 13, 4, 5, 6, 7, 8};
  platform.refuse_allocation(1);

  EXPECT_EQ(ficon_get_platform_info(&info), 1);

  EXPECT_THAT(bytes_of(info), ElementsAre(1, 2, 13, 4, 5, 6, 7, 8));
  EXPECT_THAT(libchnsw_pinfo, IsNull());
}

TEST_F(PlatformInfo, RefusedAllocationPrintsTheWarningAndNothingElse) {
  platform.debug_flags = {102, 103};
  platform.refuse_allocation(1);

  const std::string printed = output_of([&] { ficon_get_platform_info(&info); });

  EXPECT_EQ(printed, "Warning! Malloc Failure in feature/ficon/libchnsw/KESTRL/libchnsw.cc[81] for size 8\n");
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

TEST_F(PlatformInfo, AfterARefusedAllocationThePlatformIsAskedAgain) {
  platform.refuse_allocation(1);
  ficon_get_platform_info(&info);
  platform.forget_calls();

  EXPECT_EQ(ficon_get_platform_info(&info), 0);

  EXPECT_THAT(platform.all_calls(), ElementsAre("get_platform_info()", "memacct_alloc(206, 5, 8)"));
  EXPECT_THAT(libchnsw_pinfo, NotNull());
}

} // namespace
