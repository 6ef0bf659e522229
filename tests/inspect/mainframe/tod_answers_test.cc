#include "inspect/mainframe/tod_answers.h"

#include <gtest/gtest.h>

#include "inspect/session/library_session.h"
#include "inspect_test.h"
#include "test_switch.h"

namespace inspect {
namespace {

using inspect_test::complaint;
using inspect_test::platform_failure;

TEST(AnswerMoment, LeadsBothWaysToTheSame) {
  const tod_answer of_tod = answer_moment({"a", 0xCE4F44C40DC3B000, {}}, 27);
  const tod_answer of_time = answer_moment({"b", {}, {1420448796000123}}, 27);
  for (const auto& answer : {of_tod, of_time}) {
    EXPECT_EQ(answer.tod, 0xCE4F44C40DC3B000u);
    EXPECT_EQ(answer.utc.microseconds, 1420448796000123);
    EXPECT_EQ(answer.texts.day_first, "Mon Jan 5 09:07:03.123 2015");
    EXPECT_EQ(answer.texts.year_first, "2015 Mon Jan 5 09:07:03.123");
  }
}

TEST(AnswerMoment, EndsWithTheTodClock) {
  const vswitch::instant one_second_before{vswitch::kLastTodInstant.microseconds - 1000000};
  EXPECT_EQ(answer_moment({"late", {}, one_second_before}, 1).tod, 0xFFFFFFFFFFFFF000u);
  EXPECT_EQ(complaint([&] {
              answer_moment({"late", {}, one_second_before}, 2);
            }),
            "time \"late\" with 2 leap seconds is beyond the end of the TOD clock");
}

TEST(AskTimeStamp, HasItsValueFromTheReference) {
  vswitch::chassis_description chassis = vswitch_test::small_switch();
  chassis.times[10] = {{1420448823, 900000}, 0xCE4F44C4E9760000};
  const library_session session({"", false, chassis});
  const time_stamp stamp = ask_time_stamp(chassis, 10, {1420448824, 100000}, 0);
  EXPECT_EQ(stamp.status, 0u);
  EXPECT_EQ(stamp.tod, 0xCE4F44C5DD8DCB00u);
  EXPECT_EQ(stamp.texts.day_first, "Mon Jan 5 09:07:04.899804 2015");
  const time_stamp without = ask_time_stamp(chassis, 20, {1420448824, 100000}, 0);
  EXPECT_NE(without.status, 0u);
  EXPECT_FALSE(without.reference.has_value());
}

TEST(AskTimeStamp, DoesNotTakeAReferenceThatTheLibraryDoesNotKnow) {
  vswitch::chassis_description chassis = vswitch_test::small_switch();
  const library_session session({"", false, chassis});
  chassis.times[10] = {{1, 0}, 1};
  EXPECT_NE(platform_failure([&] {
              ask_time_stamp(chassis, 10, {1, 0}, 0);
            }).find("for the reference of VSAN 10"),
            std::string::npos);
}

} // namespace
} // namespace inspect
