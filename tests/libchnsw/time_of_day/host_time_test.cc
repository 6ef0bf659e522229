// Host times into TOD clock values: ficon_cmi_compute_host_tstmp, ficon_cmi_compute_host_tstmp_given_time.
#include <climits>

#include "civil_calendar.h"
#include "time_of_day_test.h"

namespace {

using namespace chnsw_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr ficon_host_time kNoReference = {0, 0};
constexpr ficon_host_time kReference = {1420448823, 900000};
constexpr uint64_t kReferenceTod = 0xCE4F44C4E9760000;
constexpr uint64_t kMiddle = 0x8000000000000000;

class HostTime : public TimeOfDayTest {
 protected:
  static uint64_t tod_at(const ficon_host_time& now) {
    return ficon_cmi_compute_host_tstmp_given_time(&kNoReference, 0, &now);
  }
  static uint64_t tod_at(const ficon_host_time& reference, uint64_t reference_tod, const ficon_host_time& now) {
    return ficon_cmi_compute_host_tstmp_given_time(&reference, reference_tod, &now);
  }
  static uint64_t tod_now(const ficon_host_time& reference = kNoReference, uint64_t reference_tod = 0) {
    return ficon_cmi_compute_host_tstmp(&reference, reference_tod);
  }
};

// ---- without a reference ----

TEST_F(HostTime, KnownTimes) {
  EXPECT_EQ(tod_at({0, 0}), 0x7D91048BCA000000u);
  EXPECT_EQ(tod_at({1420448823, 123}), 0xCE4F44C40DC3B000u);
}

TEST_F(HostTime, BothSidesOfTheHostsEpoch) {
  EXPECT_EQ(tod_at({-1, 999999}), 0x7D91048BC9FFF000u);
  EXPECT_EQ(tod_at({0, 0}), 0x7D91048BCA000000u);
  EXPECT_EQ(tod_at({0, 1}), 0x7D91048BCA001000u);
  EXPECT_EQ(text_of(tod_at({-1, 999999})), "Wed Dec 31 23:59:59.999999 1969");
  EXPECT_EQ(text_of(tod_at({-1, 0})), "Wed Dec 31 23:59:59.0 1969");
}

TEST_F(HostTime, EarliestAndLatestTheHostKnows) {
  EXPECT_EQ(tod_at({INT_MIN, 0}), 0x037F048BCA000000u);
  EXPECT_EQ(text_of(tod_at({INT_MIN, 0})), "Fri Dec 13 20:45:52.0 1901");
  EXPECT_EQ(tod_at({INT_MAX, 999999}), 0xF7A3048BC9FFF000u);
  EXPECT_EQ(text_of(tod_at({INT_MAX, 999999})), "Tue Jan 19 03:14:07.999999 2038");
}

TEST_F(HostTime, NegativeMicrosecondsCountBackwards) {
  EXPECT_EQ(tod_at({0, -1}), 0x7D91048BC9FFF000u);
  EXPECT_EQ(tod_at({-1, -1}), 0x7D91048AD5DBF000u);
  EXPECT_EQ(tod_at({0, INT_MIN}), 0x7D90FC8BCA000000u);
  EXPECT_EQ(tod_at({INT_MIN, INT_MIN}), 0x037EFC8BCA000000u);
}

TEST_F(HostTime, MicrosecondsBeyondASecondCountOn) {
  EXPECT_EQ(tod_at({0, 1000000}), tod_at({1, 0}));
  EXPECT_EQ(tod_at({0, 1000000}), 0x7D91048CBE240000u);
  EXPECT_EQ(tod_at({0, INT_MAX}), 0x7D910C8BC9FFF000u);
  EXPECT_EQ(tod_at({INT_MAX, INT_MAX}), 0xF7A30C8AD5DBF000u);
}

TEST_F(HostTime, FirstAndLastMicrosecondOfEveryYear) {
  for (int year = 1902; year <= 2037; ++year) {
    const civil_time first = {year, 1, 1};
    const civil_time last = last_microsecond_of(year, 12, 31);
    ASSERT_EQ(tod_at({static_cast<int32_t>(host_seconds_of(first)), 0}), tod_of(first));
    ASSERT_EQ(tod_at({static_cast<int32_t>(host_seconds_of(last)), 999999}), tod_of(last));
    ASSERT_EQ(text_of(tod_at({static_cast<int32_t>(host_seconds_of(last)), 999999})), day_first_text(last));
  }
}

TEST_F(HostTime, WithoutAReferenceItsTodValueIsNotUsed) {
  EXPECT_EQ(tod_at(kNoReference, 0xFFFFFFFFFFFFFFFF, {1420448823, 123}), 0xCE4F44C40DC3B000u);
}

// ---- by a reference ----

// Clients' records were made so: the microseconds are added unscaled, so this is not 09:07:04.100000.
TEST_F(HostTime, MicrosecondDifferenceIsAddedUnscaled) {
  const uint64_t tod = tod_at(kReference, kReferenceTod, {1420448824, 100000});
  EXPECT_EQ(tod, 0xCE4F44C5DD8DCB00u);
  EXPECT_EQ(text_of(tod), "Mon Jan 5 09:07:04.899804 2015");
}

TEST_F(HostTime, ReferencesOwnInstantIsItsTodValue) {
  EXPECT_EQ(tod_at(kReference, kReferenceTod, kReference), kReferenceTod);
}

TEST_F(HostTime, WholeSecondsAreExact) {
  EXPECT_EQ(text_of(kReferenceTod), "Mon Jan 5 09:07:03.900000 2015");
  EXPECT_EQ(tod_at(kReference, kReferenceTod, {1420448824, 900000}), 0xCE4F44C5DD9A0000u);
  EXPECT_EQ(text_of(tod_at(kReference, kReferenceTod, {1420448822, 900000})), "Mon Jan 5 09:07:02.900000 2015");
  EXPECT_EQ(text_of(tod_at(kReference, kReferenceTod, {1420448823 + 86400, 900000})), "Tue Jan 6 09:07:03.900000 2015");
}

TEST_F(HostTime, FractionFollowsTheReferenceWithin245Microseconds) {
  EXPECT_EQ(tod_at({1, 999999}, kMiddle, {1, 0}), 0x7FFFFFFFFFF0BDC1u);
  EXPECT_EQ(text_of(0x7FFFFFFFFFF0BDC1), "Tue May 11 11:56:53.685003 1971");
  EXPECT_EQ(tod_at({1, 0}, kMiddle, {1, 999999}), 0x80000000000F423Fu);
  EXPECT_EQ(text_of(0x80000000000F423F), "Tue May 11 11:56:53.685492 1971");
}

TEST_F(HostTime, ReferenceWithOneWordZeroIsAReference) {
  EXPECT_EQ(tod_at({0, 5}, 0x1000000000000000, {0, 5}), 0x1000000000000000u);
  EXPECT_EQ(tod_at({0, 5}, 0x1000000000000000, {1, 0}), 0x10000000F423FFFBu);
  EXPECT_EQ(tod_at({5, 0}, 0x1000000000000000, {0, 0}), 0x0FFFFFFB3B4C0000u);
}

TEST_F(HostTime, NegativeReferenceWordsAreAReference) {
  EXPECT_EQ(tod_at({0, -5}, kMiddle, {0, 0}), 0x8000000000000005u);
  EXPECT_EQ(tod_at({-5, 0}, kMiddle, {-5, 1}), 0x8000000000000001u);
}

TEST_F(HostTime, NegativeMicrosecondsOfTheTimeCountBackwards) {
  EXPECT_EQ(tod_at({INT_MIN, 0}, kMiddle, {INT_MIN + 1, -1}), 0x80000000F423FFFFu);
}

TEST_F(HostTime, SecondDifferenceWrapsInThirtyTwoBits) {
  EXPECT_EQ(tod_at({INT_MIN, 0}, kMiddle, {INT_MAX, 0}), 0x7FFFFFFF0BDC0000u); // one second back
  EXPECT_EQ(tod_at({INT_MAX, 0}, kMiddle, {INT_MIN, 0}), 0x80000000F4240000u); // one second on
  EXPECT_EQ(tod_at({INT_MIN, 0}, kMiddle, {0, 0}), 0x05EE000000000000u);       // 2^31 is -2^31
}

TEST_F(HostTime, LargestSecondDifferences) {
  EXPECT_EQ(tod_at({1, 0}, kMiddle, {INT_MIN, 0}), 0xFA11FFFF0BDC0000u); // -2^31 - 1 is 2^31 - 1
  EXPECT_EQ(tod_at({1, 0}, 0xFFFFFFFFFFFFFFFF, {INT_MAX, 0}), 0x7A11FFFE17B7FFFFu);
}

TEST_F(HostTime, MicrosecondDifferenceWrapsInThirtyTwoBits) {
  EXPECT_EQ(tod_at({1, INT_MIN}, kMiddle, {1, INT_MAX}), 0x7FFFFFFFFFFFFFFFu);
  EXPECT_EQ(tod_at({1, INT_MAX}, kMiddle, {1, INT_MIN}), 0x8000000000000001u);
  EXPECT_EQ(tod_at({1, INT_MIN}, kMiddle, {1, 0}), 0x7FFFFFFF80000000u);
}

TEST_F(HostTime, ValueWrapsBehindTheLargest) {
  EXPECT_EQ(tod_at({0, 5}, 0xFFFFFFFFFFFFFFFF, {1, 5}), 0xF423FFFFu);
  EXPECT_EQ(text_of(0xF423FFFF), "Mon Jan 1 00:00:00.999999 1900");
  EXPECT_EQ(tod_at({0, 5}, 0xFFFFFFFFFFFFFFFF, {0, 6}), 0u);
}

TEST_F(HostTime, ValueWrapsBeforeZero) {
  EXPECT_EQ(tod_at({0, 1}, 0, {0, 0}), 0xFFFFFFFFFFFFFFFFu);
  EXPECT_EQ(tod_at({0, 1}, 0, {-1, 1}), 0xFFFFFFFF0BDC0000u);
  EXPECT_EQ(text_of(0xFFFFFFFF0BDC0000), "Wed Sep 17 23:53:46.370496 2042");
}

TEST_F(HostTime, GivenTimeAndReferenceStayWhatTheyWere) {
  ficon_host_time reference = kReference;
  ficon_host_time now = {1420448824, 100000};
  ficon_cmi_compute_host_tstmp_given_time(&reference, kReferenceTod, &now);
  EXPECT_EQ(reference.seconds, 1420448823);
  EXPECT_EQ(reference.microseconds, 900000);
  EXPECT_EQ(now.seconds, 1420448824);
  EXPECT_EQ(now.microseconds, 100000);
}

TEST_F(HostTime, GivenTimeMayBeTheReferenceItself) {
  EXPECT_EQ(ficon_cmi_compute_host_tstmp_given_time(&kReference, 7, &kReference), 7u);
}

TEST_F(HostTime, GivenTimeNeedsNeitherClockNorPlatform) {
  break_clock();
  const std::string printed = output_of([] { tod_at(kReference, kReferenceTod, {1, 2}); });
  EXPECT_EQ(printed, "");
  EXPECT_THAT(platform.all_calls(), IsEmpty());
}

// ---- now ----

TEST_F(HostTime, NowIsReadFromTheHostsClockOnceWithoutAZone) {
  set_clock(1420448823, 123);
  EXPECT_EQ(tod_now(), 0xCE4F44C40DC3B000u);
  EXPECT_THAT(platform.all_calls(), ElementsAre("gettimeofday(no zone)"));
}

TEST_F(HostTime, NowByAReference) {
  set_clock(1420448824, 100000);
  EXPECT_EQ(tod_now(kReference, kReferenceTod), 0xCE4F44C5DD8DCB00u);
  set_clock(1, 0);
  EXPECT_EQ(tod_now({0, 5}, 0x1000000000000000), 0x10000000F423FFFBu);
}

TEST_F(HostTime, NowAtTheHostsEpochAndBefore) {
  set_clock(0, 0);
  EXPECT_EQ(tod_now(), 0x7D91048BCA000000u);
  set_clock(-1, 999999);
  EXPECT_EQ(tod_now(), 0x7D91048BC9FFF000u);
}

// A host time has 32 bits, on a host with a wider clock too.
TEST_F(HostTime, NowBehindTheLastHostTimeWraps) {
  set_clock(int64_t{INT_MAX} + 1, 0);
  EXPECT_EQ(tod_now(), 0x037F048BCA000000u);
}

TEST_F(HostTime, UnreadableClockIsZero) {
  break_clock();
  EXPECT_EQ(tod_now(), 0u);
  EXPECT_EQ(tod_now(kReference, kReferenceTod), 0u);
  EXPECT_THAT(platform.all_calls(), ElementsAre("gettimeofday(no zone)", "gettimeofday(no zone)"));
}

TEST_F(HostTime, UnreadableClockIsNotReported) {
  break_clock();
  EXPECT_EQ(output_of([] { tod_now(); }), "");
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

TEST_F(HostTime, ReferenceIsReadBeforeTheClock) {
  ficon_host_time reference = kReference;
  set_clock(1420448824, 100000);
  platform.on_call = [&](const std::string&) { reference = {7, 7}; };
  EXPECT_EQ(ficon_cmi_compute_host_tstmp(&reference, kReferenceTod), 0xCE4F44C5DD8DCB00u);
  EXPECT_EQ(reference.seconds, 7);
}

// ---- the span between the epochs ----

TEST_F(HostTime, SecondsBetweenTheEpochsAreExported) {
  static_assert(sizeof SECONDS_BTWN_EPOCHS == 8);
  EXPECT_EQ(SECONDS_BTWN_EPOCHS, 2208988800u);
  EXPECT_EQ(SECONDS_BTWN_EPOCHS, 0x83AA7E80u);
}

TEST_F(HostTime, LibraryDoesNotReadTheExportedSpan) {
  const uint64_t kept = SECONDS_BTWN_EPOCHS;
  SECONDS_BTWN_EPOCHS = 1;
  EXPECT_EQ(tod_at({0, 0}), 0x7D91048BCA000000u);
  EXPECT_EQ(text_of(0x7D91048BCA000000), "Thu Jan 1 00:00:00.0 1970");
  SECONDS_BTWN_EPOCHS = kept;
}

} // namespace
