/* How trouble is told: error reports go to the event history, the debug output and standard output, traces to the first two
 * only. Provoked through the operations; where no operation has a text that is long enough, through report.h itself. */
#include "report.h"

#include <cerrno>

#include "library_test.h"

namespace {

using chnsw_test::output_of;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ErrorReport : public chnsw_test::LibraryTest {
 protected:
  // "get_platform_info failed, errno = 5"
  std::string provoke() {
    platform.info_answer = {-1, 5};
    return output_of([] { ficon_cmi_get_max_portnumber(); });
  }
};

class Trace : public chnsw_test::LibraryTest {
 protected:
  static constexpr char kText[] =
      "ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(0) Bound(0) Bound PN(10) Vsan(0) In Vsan(0) gvp(0) vsan_pn(10)\n";

  std::string provoke() {
    know_ports();
    cache_map();
    return output_of([] {
      uint16_t pn;
      ficon_pmap_get_pa_to_pn_fast(10, &pn);
    });
  }
};

TEST_F(ErrorReport, GoesToTheHistoryThenAsksForDebugOutput) {
  provoke();

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("get_platform_info()", "evtrc_hist_event_subtype_check(0x730000, 102)",
                          "evtrc_hist_event(0x730000, 40, 102, \"get_platform_info failed, errno = 5\")",
                          "evtrc_chk_int(102, 0, 0, 1)"));
}

TEST_F(ErrorReport, IsPrintedWithItsPrefix) {
  EXPECT_EQ(provoke(), "FICON_ERR: get_platform_info failed, errno = 5");
}

TEST_F(ErrorReport, LengthInTheHistoryIsThatOfTheTextPlusFive) {
  provoke();

  ASSERT_THAT(platform.history(), SizeIs(1));
  EXPECT_EQ(platform.history()[0].id, 0x730000u);
  EXPECT_EQ(platform.history()[0].subtype, 102u);
  EXPECT_EQ(platform.history()[0].text, "get_platform_info failed, errno = 5");
  EXPECT_EQ(platform.history()[0].length, 40u);
}

TEST_F(ErrorReport, GoesToTheDebugOutputWhenItsFlagIsOn) {
  platform.debug_flags = {102};

  provoke();

  EXPECT_THAT(platform.reporting_calls(),
              ElementsAre("evtrc_hist_event_subtype_check(0x730000, 102)",
                          "evtrc_hist_event(0x730000, 40, 102, \"get_platform_info failed, errno = 5\")",
                          "evtrc_chk_int(102, 0, 0, 1)",
                          "dbgout(1, evtrc_dbg_modname, 0, \"get_platform_info failed, errno = 5\")"));
}

TEST_F(ErrorReport, IgnoresTheFlagOfTraces) {
  platform.debug_flags = {103};
  provoke();
  EXPECT_THAT(platform.debug_output(), IsEmpty());
}

TEST_F(ErrorReport, IsPrintedEvenWhenFilteredAndDebuggingIsOff) {
  platform.filtered_subtypes = {102};

  EXPECT_EQ(provoke(), "FICON_ERR: get_platform_info failed, errno = 5");

  EXPECT_THAT(platform.reporting_calls(),
              ElementsAre("evtrc_hist_event_subtype_check(0x730000, 102)", "evtrc_chk_int(102, 0, 0, 1)"));
}

TEST_F(ErrorReport, GoesToTheDebugOutputEvenWhenFiltered) {
  platform.filtered_subtypes = {102};
  platform.debug_flags = {102};

  provoke();

  EXPECT_THAT(platform.history(), IsEmpty());
  EXPECT_THAT(platform.debug_output(), SizeIs(1));
}

TEST_F(ErrorReport, TakesAnyAnswerButZeroForAFilterAndForAFlag) {
  platform.filtered_subtypes = {102};
  platform.filter_answer = -1;
  platform.debug_flags = {102};
  platform.flag_answer = -1;

  provoke();

  EXPECT_THAT(platform.history(), IsEmpty());
  EXPECT_THAT(platform.debug_output(), SizeIs(1));
}

TEST_F(ErrorReport, IgnoresTheFilterOfTraces) {
  platform.filtered_subtypes = {103};
  provoke();
  EXPECT_THAT(platform.errors(), ElementsAre("get_platform_info failed, errno = 5"));
}

// Each output shows errno as it is at that output.
TEST_F(ErrorReport, ReadsErrnoAfreshForEachOfItsThreeOutputs) {
  platform.debug_flags = {102};
  platform.on_call = [](const std::string& call) {
    if (call.starts_with("evtrc_hist_event_subtype_check")) errno = 21;
    if (call.starts_with("evtrc_chk_int")) errno = 22;
    if (call.starts_with("dbgout")) errno = 23;
  };

  const std::string printed = provoke();

  EXPECT_THAT(platform.errors(), ElementsAre("get_platform_info failed, errno = 21"));
  ASSERT_THAT(platform.debug_output(), SizeIs(1));
  EXPECT_EQ(platform.debug_output()[0].text, "get_platform_info failed, errno = 22");
  EXPECT_EQ(printed, "FICON_ERR: get_platform_info failed, errno = 23");
}

TEST_F(Trace, GoesToTheHistoryThenAsksForDebugOutput) {
  provoke();

  EXPECT_THAT(platform.all_calls(), ElementsAre("evtrc_hist_event_subtype_check(0x730000, 103)",
                                                "evtrc_hist_event(0x730000, 115, 103, \"" + std::string(kText) + "\")",
                                                "evtrc_chk_int(103, 0, 0, 1)"));
}

TEST_F(Trace, NeverReachesStandardOutput) {
  platform.debug_flags = {102, 103};
  EXPECT_EQ(provoke(), "");
}

TEST_F(Trace, GoesToTheDebugOutputWhenItsFlagIsOn) {
  platform.debug_flags = {103};

  provoke();

  ASSERT_THAT(platform.debug_output(), SizeIs(1));
  EXPECT_EQ(platform.debug_output()[0].level, 1);
  EXPECT_TRUE(platform.debug_output()[0].own_module);
  EXPECT_EQ(platform.debug_output()[0].zero, 0);
  EXPECT_EQ(platform.debug_output()[0].text, kText);
}

TEST_F(Trace, IgnoresTheFlagOfErrors) {
  platform.debug_flags = {102};
  provoke();
  EXPECT_THAT(platform.debug_output(), IsEmpty());
}

TEST_F(Trace, MakesNoOutputAtAllWhenFilteredAndDebuggingIsOff) {
  platform.filtered_subtypes = {103};

  EXPECT_EQ(provoke(), "");

  EXPECT_THAT(platform.all_calls(),
              ElementsAre("evtrc_hist_event_subtype_check(0x730000, 103)", "evtrc_chk_int(103, 0, 0, 1)"));
}

TEST_F(Trace, IgnoresTheFilterOfErrors) {
  platform.filtered_subtypes = {102};
  provoke();
  EXPECT_THAT(platform.traces(), ElementsAre(kText));
}

class LongText : public chnsw_test::LibraryTest {
 protected:
  std::string report(const std::string& text) {
    platform.debug_flags = {102, 103};
    return output_of([&] { ficon_log_error("%s", text.c_str()); });
  }
};

TEST_F(LongText, OfFiveHundredAndElevenCharactersIsKeptWhole) {
  const std::string text(511, 'x');

  report(text);

  ASSERT_THAT(platform.history(), SizeIs(1));
  EXPECT_EQ(platform.history()[0].text, text);
  EXPECT_EQ(platform.history()[0].length, 516u);
}

TEST_F(LongText, IsCutInTheHistory) {
  report(std::string(511, 'x') + "yz");

  ASSERT_THAT(platform.history(), SizeIs(1));
  EXPECT_EQ(platform.history()[0].text, std::string(511, 'x'));
  EXPECT_EQ(platform.history()[0].length, 516u);
}

TEST_F(LongText, IsWholeInTheDebugOutputAndOnStandardOutput) {
  const std::string text = std::string(511, 'x') + "yz";

  EXPECT_EQ(report(text), "FICON_ERR: " + text);

  ASSERT_THAT(platform.debug_output(), SizeIs(1));
  EXPECT_EQ(platform.debug_output()[0].text, text);
}

TEST_F(LongText, OfATraceIsCutInTheHistoryOnly) {
  const std::string text = std::string(511, 'x') + "yz";
  platform.debug_flags = {103};

  const std::string printed = output_of([&] { ficon_log_debug("%s", text.c_str()); });

  EXPECT_EQ(printed, "");
  ASSERT_THAT(platform.history(), SizeIs(1));
  EXPECT_EQ(platform.history()[0].text, std::string(511, 'x'));
  EXPECT_EQ(platform.history()[0].length, 516u);
  ASSERT_THAT(platform.debug_output(), SizeIs(1));
  EXPECT_EQ(platform.debug_output()[0].text, text);
}

class Arguments : public chnsw_test::LibraryTest {
 protected:
  int evaluations = 0;
};

TEST_F(Arguments, OfAnErrorAreEvaluatedOnceAnOutput) {
  platform.debug_flags = {102};
  output_of([&] { ficon_log_error("%d", ++evaluations); });
  EXPECT_EQ(evaluations, 3);
}

TEST_F(Arguments, OfAFilteredErrorAreEvaluatedForStandardOutputOnly) {
  platform.filtered_subtypes = {102};
  output_of([&] { ficon_log_error("%d", ++evaluations); });
  EXPECT_EQ(evaluations, 1);
}

TEST_F(Arguments, OfATraceAreEvaluatedOnceAnOutput) {
  platform.debug_flags = {103};
  ficon_log_debug("%d", ++evaluations);
  EXPECT_EQ(evaluations, 2);
}

TEST_F(Arguments, OfATraceThatNobodyWantsAreNotEvaluated) {
  platform.filtered_subtypes = {103};
  ficon_log_debug("%d", ++evaluations);
  EXPECT_EQ(evaluations, 0);
}

} // namespace
