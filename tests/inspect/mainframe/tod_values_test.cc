// Moments as people write them, at the edges of the clocks.
#include "inspect/mainframe/tod_values.h"

#include <gmock/gmock.h>

#include "inspect_test.h"

namespace inspect {
namespace {

using inspect_test::complaint;
using testing::ElementsAre;
using testing::HasSubstr;

host_clock any_clock;

TEST(ParseMoment, TakesFourDigitsForATodClockValue) {
  EXPECT_EQ(parse_moment("2015", any_clock).tod, 0x2015000000000000u);
  EXPECT_THAT(complaint([] { parse_moment("201", any_clock); }), HasSubstr("\"201\" is no TOD clock value and no time"));
}

TEST(ParseMoment, ReachesAsFarAsTheTodClock) {
  const named_moment first = parse_moment("1900-01-01T00:00:00Z", any_clock);
  EXPECT_FALSE(first.tod.has_value());
  EXPECT_EQ(first.at, vswitch::kFirstTodInstant);
  EXPECT_EQ(parse_moment("2042-09-17T23:53:47.370495Z", any_clock).at, vswitch::kLastTodInstant);
  const std::string expected =
      " is out of range; the TOD clock reaches from 1900-01-01T00:00:00.000000Z to 2042-09-17T23:53:47.370495Z";
  EXPECT_EQ(complaint([] { parse_moment("1899-12-31T23:59:59.999999Z", any_clock); }),
            "time \"1899-12-31T23:59:59.999999Z\"" + expected);
  EXPECT_EQ(complaint([] { parse_moment("2042-09-17T23:53:47.370496Z", any_clock); }),
            "time \"2042-09-17T23:53:47.370496Z\"" + expected);
}

TEST(ParseHostTime, ReachesAsFarAsThirtyTwoBits) {
  EXPECT_EQ(parse_host_time("1901-12-13T20:45:52Z", any_clock).seconds, INT32_MIN);
  EXPECT_EQ(parse_host_time("2038-01-19T03:14:07.999999Z", any_clock).seconds, INT32_MAX);
  EXPECT_EQ(parse_host_time("2038-01-19T03:14:07.999999Z", any_clock).microseconds, 999999);
  EXPECT_THAT(complaint([] { parse_host_time("1901-12-13T20:45:51.999999Z", any_clock); }), HasSubstr("is out of range"));
  EXPECT_THAT(complaint([] { parse_host_time("2038-01-19T03:14:08Z", any_clock); }), HasSubstr("is out of range"));
  EXPECT_THAT(complaint([] { parse_host_time("CE4F44C40DC3B000", any_clock); }), HasSubstr("is no time; expected"));
}

TEST(HostClock, IsReadOnce) {
  host_clock clock;
  const vswitch::instant now = clock.now();
  EXPECT_EQ(parse_moment("now", clock).at, now);
  EXPECT_EQ(parse_tod_value("now", clock), vswitch::tod_of(now));
}

TEST(MomentWords, AreBetweenCommas) {
  EXPECT_THAT(moment_words({"a,b", "c"}), ElementsAre("a", "b", "c"));
  EXPECT_THAT(moment_words({",a,"}), ElementsAre("", "a", ""));
  EXPECT_THAT(moment_words({}), ElementsAre());
}

TEST(ParseMomentLine, IsOneWordBetweenBlanks) {
  const auto line = parse_moment_line(3, " \t@0 \r", any_clock);
  ASSERT_TRUE(line && line->moment);
  EXPECT_EQ(line->number, 3u);
  EXPECT_EQ(line->moment->word, "@0");
  EXPECT_EQ(line->moment->at, vswitch::instant{0});
}

TEST(ParseMomentLine, OfBlanksIsNone) {
  EXPECT_FALSE(parse_moment_line(1, " \t\r", any_clock).has_value());
  EXPECT_FALSE(parse_moment_line(1, "", any_clock).has_value());
}

TEST(ParseMomentLine, BringsTheReasonOfABadOneBack) {
  const auto line = parse_moment_line(7, "soon", any_clock);
  ASSERT_TRUE(line.has_value());
  EXPECT_EQ(line->number, 7u);
  EXPECT_FALSE(line->moment.has_value());
  EXPECT_THAT(line->reason, HasSubstr("\"soon\" is no TOD clock value and no time; expected"));
}

TEST(ParseTimeReference, IsTheSameMomentOnBothClocksUnlessSaid) {
  const auto same = parse_time_reference("@1420448823.000123", "");
  ASSERT_TRUE(same.has_value());
  EXPECT_EQ(same->host.seconds, 1420448823);
  EXPECT_EQ(same->host.microseconds, 123);
  EXPECT_EQ(same->tod, 0xCE4F44C40DC3B000u);
  EXPECT_EQ(parse_time_reference("@0", "1234")->tod, 0x1234000000000000u);
}

TEST(ParseTimeReference, OfNoneHasNoTodClockValue) {
  EXPECT_FALSE(parse_time_reference("none", "").has_value());
  EXPECT_EQ(complaint([] { parse_time_reference("none", "1234"); }),
            "a TOD clock value belongs to a host time; none takes both away");
}

} // namespace
} // namespace inspect
