// TOD clock values against literal ones, and the words for what leads to them.
#include "inspect/mainframe/tod_arithmetic.h"

#include <gmock/gmock.h>

#include "inspect/mainframe/tod_explanation.h"

namespace inspect {
namespace {

using testing::ElementsAre;

constexpr ficon_host_time kReferenceTime = {1420448823, 900000};
const vswitch::time_reference kReference = {kReferenceTime, 0xCE4F44C4E9760000};

std::vector<std::string> labels(const tod_explanation& why) {
  std::vector<std::string> result;
  for (const auto& step : why.steps) result.push_back(step.label);
  return result;
}

TEST(RelativeTo, AddsMicrosecondsAsSoManyUnits) {
  const relative_time found = relative_to(kReference, {1420448824, 100000});
  EXPECT_EQ(found.seconds, 1);
  EXPECT_EQ(found.microseconds, -800000);
  EXPECT_EQ(found.tod, 0xCE4F44C5DD8DCB00u);
}

TEST(RelativeTo, WrapsInThirtyTwoBits) {
  const relative_time found = relative_to({{INT32_MIN, 0}, 0}, {INT32_MAX, 0});
  EXPECT_EQ(found.seconds, -1);
  EXPECT_EQ(found.tod, 0xFFFFFFFF0BDC0000u);
}

TEST(IsNoReference, NeedsBothZeros) {
  EXPECT_TRUE(is_no_reference({{0, 0}, 1}));
  EXPECT_FALSE(is_no_reference({{0, 1}, 1}));
  EXPECT_FALSE(is_no_reference({{1, 0}, 1}));
}

TEST(TodByLibrary, IsWhatTheArithmeticSays) {
  EXPECT_EQ(tod_by_library(kReference, {1420448824, 100000}), 0xCE4F44C5DD8DCB00u);
  EXPECT_EQ(tod_by_library({{0, 0}, 0x1234}, {1420448823, 123}), 0xCE4F44C40DC3B000u);
}

TEST(TodByLibrary, GoesOnBeyondAHostsTime) {
  EXPECT_EQ(tod_by_library(vswitch::kFirstTodInstant), 0u);
  EXPECT_EQ(tod_by_library(vswitch::instant{1420448823000123}), 0xCE4F44C40DC3B000u);
  EXPECT_EQ(tod_by_library(vswitch::kLastTodInstant), 0xFFFFFFFFFFFFF000u);
}

TEST(LeapSeconds, AreAddedToTheTodClock) {
  EXPECT_EQ(with_leap_seconds({5}, 27).microseconds, 27000005);
  EXPECT_EQ(without_leap_seconds(0xCE4F44C40DC3B000, 27).microseconds, 1420448796000123);
}

TEST(ExplainTimeStamp, NamesTheDriftEitherWay) {
  const auto behind = explain_time_stamp(10, {{100, 100000}, 0}, {100, 900000});
  EXPECT_THAT(labels(behind), ElementsAre("reference", "seconds", "microseconds", "result", "drift"));
  EXPECT_EQ(behind.steps.back().text,
            "the fraction of the second stays the reference's, moved by 195.3125 us; that is 799804.6875 us behind the "
            "host's time");
  ASSERT_TRUE(behind.drifted.has_value());
  EXPECT_EQ(behind.drifted->seconds_difference, 0);
  EXPECT_EQ(behind.drifted->microseconds_difference, 800000);
  EXPECT_EQ(behind.drifted->sub_second_usec, 195.3125);
  EXPECT_EQ(behind.drifted->ahead_of_host_time_usec, -799804.6875);
  const auto ahead = explain_time_stamp(10, kReference, {1420448824, 100000});
  EXPECT_EQ(ahead.drifted->ahead_of_host_time_usec, 799804.6875);
}

TEST(ExplainTimeStamp, OfTheReferenceItselfHasNoDrift) {
  const auto why = explain_time_stamp(10, kReference, kReferenceTime);
  EXPECT_EQ(why.steps.back().text,
            "the fraction of the second stays the reference's, moved by 0 us; that is 0 us ahead of the host's time");
  EXPECT_EQ(why.steps[1].text, "1420448823 - 1420448823 = 0, times 1000000 x 4096");
}

TEST(ExplainTimeStamp, WithoutAReferenceKnowsNone) {
  const auto why = explain_time_stamp(10, {{0, 0}, 1}, {0, 0});
  EXPECT_EQ(why.translation, "VSAN 10 at 1970-01-01T00:00:00.000000Z to time stamp");
  EXPECT_THAT(labels(why), ElementsAre("reference", "microseconds", "result"));
  EXPECT_EQ(why.steps.back().text, "times 4096: 7D91048BCA000000");
  EXPECT_FALSE(why.drifted.has_value());
}

TEST(ExplainInstant, BeyondAHostsTimeIsByTheSameRule) {
  const auto why = explain_instant(vswitch::kLastTodInstant, 0);
  EXPECT_EQ(why.operation, "beyond a host's time: by the same rule");
  EXPECT_THAT(labels(why), ElementsAre("result"));
  EXPECT_EQ(why.steps[0].text, "(2294610827370495 + 2208988800000000 (1900 to 1970)) us x 4096 = FFFFFFFFFFFFF000");
  const auto by_leap_second = explain_instant({INT32_MAX * vswitch::kMicrosecondsPerSecond}, 1);
  EXPECT_EQ(by_leap_second.operation, "beyond a host's time: by the same rule");
  EXPECT_THAT(labels(by_leap_second), ElementsAre("leap seconds", "result"));
}

TEST(ExplainTod, SplitsItsDaysAndNamesTheRest) {
  const auto why = explain_tod(0xCE4F44C40DC3B001, 27);
  EXPECT_THAT(labels(why), ElementsAre("microseconds", "split", "texts", "leap seconds"));
  EXPECT_EQ(why.steps[0].text, "CE4F44C40DC3B001 / 4096 = 3629437623000123 since 1900, and 1/4096");
  EXPECT_EQ(why.steps[1].text, "42007 days, 32823 s, 123 us");
  EXPECT_EQ(why.steps[3].text, "27 s subtracted for UTC and the host's time");
  EXPECT_THAT(labels(explain_tod(0, 0)), ElementsAre("microseconds", "split", "texts"));
}

} // namespace
} // namespace inspect
