// Host times and TOD clock values as texts, and back.
#include <gmock/gmock.h>
#include <sys/time.h>
#include <vswitch/chassis_file.h>
#include <vswitch/mainframe_time.h>
#include <vswitch/vswitch.h>

#include <cerrno>
#include <ctime>
#include <system_error>

#include "test_switch.h"

namespace {

bool clock_is_broken = false;

} // namespace

// The host's clock of this program, the library's calls included.
extern "C" __attribute__((visibility("default"))) int gettimeofday(timeval* __restrict clock, void* __restrict) noexcept {
  timespec now{};
  if (clock_is_broken || clock_gettime(CLOCK_REALTIME, &now) != 0) {
    errno = EFAULT;
    return -1;
  }
  *clock = {now.tv_sec, now.tv_nsec / 1000};
  return 0;
}

namespace {

using namespace vswitch;

class BrokenClock : public ::testing::Test {
 protected:
  BrokenClock() { clock_is_broken = true; }
  ~BrokenClock() override { clock_is_broken = false; }
};

TEST_F(BrokenClock, IsToldWhenTheTimeIsWanted) {
  try {
    current_instant();
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_STREQ(error.what(), "the host's clock cannot be read: Bad address");
  }
}

TEST_F(BrokenClock, MattersToAFileOnlyThatSaysNow) {
  const std::string file = "[chassis]\nslots = 1\ntype = 27\n[[time_reference]]\nvsan = 1\nhost_time = ";
  EXPECT_THROW(parse_chassis_text(file + "\"now\"\n", "f"), std::system_error);
  EXPECT_NO_THROW(parse_chassis_text(file + "\"2015-01-05\"\n", "f"));
}

// The library answers with the TOD clock value 0 and without an error.
TEST_F(BrokenClock, TimeStampIsTheBeginningOfTheTodClock) {
  auto chassis = vswitch_test::small_switch();
  chassis.times[10] = {{1420448823, 900000}, 0xCE4F44C4E9760000};
  use_switch(switch_store::in_memory(chassis));
  const char* text = nullptr;
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp(10, &text, FICON_TOD_FMT_DAY_FIRST), 0u);
  EXPECT_STREQ(text, "Mon Jan 1 00:00:00.0 1900");
  use_switch(nullptr);
}

struct moment {
  const char* utc;
  int64_t seconds;
  int64_t microseconds;
  uint64_t tod;
};

// Reckoned apart from the code that is tested here.
constexpr moment kMoments[] = {
    {"1900-01-01T00:00:00.000000Z", -2208988800, 0, 0},
    {"1900-02-28T23:59:59.999999Z", -2203891201, 999999, 0x004A2E0A31FFF000},
    {"1900-03-01T00:00:00.000000Z", -2203891200, 0, 0x004A2E0A32000000},
    {"1969-12-31T23:59:59.999999Z", -1, 999999, 0x7D91048BC9FFF000},
    {"1970-01-01T00:00:00.000000Z", 0, 0, 0x7D91048BCA000000},
    {"1972-06-30T23:59:59.000000Z", 78796799, 0, 0x820BA97F35DC0000},
    {"2000-02-29T12:00:00.000000Z", 951825600, 0, 0xB3ABE73835000000},
    {"2015-01-05T09:07:03.000123Z", 1420448823, 123, 0xCE4F44C40DC3B000},
    {"2038-01-19T03:14:07.999999Z", 2147483647, 999999, 0xF7A3048BC9FFF000},
    {"2042-09-17T23:53:47.370495Z", 2294610827, 370495, 0xFFFFFFFFFFFFF000},
};

instant at(const moment& known) {
  return {known.seconds * 1000000 + known.microseconds};
}

TEST(MainframeTime, TimesInUtc) {
  for (const auto& known : kMoments) {
    EXPECT_EQ(utc_text(at(known)), known.utc);
    EXPECT_EQ(parse_utc(known.utc), at(known)) << known.utc;
  }
}

TEST(MainframeTime, TodClockValues) {
  for (const auto& known : kMoments) {
    EXPECT_EQ(tod_text(tod_of(at(known))), tod_text(known.tod)) << known.utc;
    EXPECT_EQ(instant_of(known.tod), at(known)) << known.utc;
    EXPECT_EQ(instant_of(known.tod | 0xFFF), at(known)) << known.utc;
  }
}

TEST(MainframeTime, HostTimeHasThirtyTwoBitsOfSeconds) {
  const auto first = host_time_of({INT32_MIN * INT64_C(1000000)});
  ASSERT_TRUE(first);
  EXPECT_EQ(first->seconds, INT32_MIN);
  EXPECT_EQ(first->microseconds, 0);
  const auto last = host_time_of({INT32_MAX * INT64_C(1000000) + 999999});
  ASSERT_TRUE(last);
  EXPECT_EQ(last->seconds, INT32_MAX);
  EXPECT_EQ(last->microseconds, 999999);
  EXPECT_FALSE(host_time_of({INT32_MIN * INT64_C(1000000) - 1}));
  EXPECT_FALSE(host_time_of({INT32_MAX * INT64_C(1000000) + 1000000}));
}

TEST(MainframeTime, MicrosecondsOfAHostTimeCountUpBefore1970Too) {
  const auto host = host_time_of({-1});
  ASSERT_TRUE(host);
  EXPECT_EQ(host->seconds, -1);
  EXPECT_EQ(host->microseconds, 999999);
  EXPECT_EQ(instant_of(*host), instant{-1});
}

TEST(MainframeTime, ShortFormsOfATime) {
  const instant day{1420416000000000};
  EXPECT_EQ(parse_utc("2015-01-05"), day);
  EXPECT_EQ(parse_utc("2015-01-05T00:00"), day);
  EXPECT_EQ(parse_utc("2015-01-05 00:00:00Z"), day);
  EXPECT_EQ(parse_utc("2015-01-05T00:00:00.5"), instant{day.microseconds + 500000});
  EXPECT_EQ(parse_utc("2015-01-05T01:30:00+01:30"), day);
  EXPECT_EQ(parse_utc("2015-01-04T19:00-05:00"), day);
}

TEST(MainframeTime, WhatIsNoTime) {
  for (const char* text : {"",
                           "now",
                           "2015",
                           "2015-1-5",
                           "2015-13-01",
                           "2015-00-01",
                           "2015-02-29",
                           "1900-02-29",
                           "2015-04-31",
                           "2015-01-00",
                           "2015-01-05T",
                           "2015-01-05T24:00",
                           "2015-01-05T23:60",
                           "2015-01-05T23:59:60",
                           "2015-01-05T09:07:03.",
                           "2015-01-05T09:07:03.1234567",
                           "2015-01-05T09:07:03,5",
                           "2015-01-05T09",
                           "2015-01-05T09:07:03Zx",
                           "2015-01-05T09:07:03+1:00",
                           "2015-01-05T09:07:03+01",
                           "2015-01-05Z",
                           " 2015-01-05",
                           "2015-01-05 ",
                           "-2015-01-05",
                           "2015-01-05T-9:07",
                           "2015/01/05"})
    EXPECT_FALSE(parse_utc(text)) << text;
}

TEST(MainframeTime, DigitsOfATodValueArePaddedOnTheRight) {
  EXPECT_EQ(parse_tod("CE4F"), 0xCE4F000000000000);
  EXPECT_EQ(parse_tod("ce4f44c4"), 0xCE4F44C400000000);
  EXPECT_EQ(parse_tod("0xCE4F44C40DC3B000"), 0xCE4F44C40DC3B000);
  EXPECT_EQ(parse_tod("0000"), 0u);
  EXPECT_EQ(parse_tod("FFFFFFFFFFFFFFFF"), UINT64_MAX);
  EXPECT_EQ(parse_tod("0000000000000001"), 1u);
}

TEST(MainframeTime, WhatIsNoTodValue) {
  for (const char* text : {"", "CE4", "0xCE4", "CE4F44C40DC3B0000", "CE4G", "-CE4F", "+CE4F", "CE4F 44C4", "now"})
    EXPECT_FALSE(parse_tod(text)) << text;
}

TEST(MainframeTime, SecondsOfTheHost) {
  EXPECT_EQ(parse_seconds("1420448823.000123"), instant{1420448823000123});
  EXPECT_EQ(parse_seconds("0"), instant{0});
  EXPECT_EQ(parse_seconds("-1.5"), instant{-1500000});
  EXPECT_EQ(seconds_text({1420448823000123}), "1420448823.000123");
  EXPECT_EQ(seconds_text({-1500000}), "-1.500000");
  EXPECT_EQ(seconds_text({-1}), "-0.000001");
  for (const char* text : {"", "-", "1.", ".5", "1.1234567", "1e3", "+1", "4294967296", "1 ", "0x10", "--1"})
    EXPECT_FALSE(parse_seconds(text)) << text;
}

TEST(MainframeTime, CurrentInstantIsTheClocks) {
  const auto before = current_instant();
  const auto after = current_instant();
  EXPECT_LE(before, after);
  EXPECT_GT(before, (instant{1600000000000000}));
}

} // namespace
