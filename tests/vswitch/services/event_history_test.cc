// Event history: who sees a record, and how it stands in the file.
#include <gmock/gmock.h>
#include <libchnsw.h>
#include <platform/evtrc.h>
#include <vswitch/vswitch.h>

#include <cstring>

#include "test_switch.h"

namespace {

using namespace vswitch;
using ::testing::ElementsAre;
using vswitch_test::run;

class EventHistory : public ::testing::Test {
 protected:
  ~EventHistory() override { watch_events({}); }

  void watch() {
    watch_events([this](const history_event& event) {
      seen_.push_back(std::to_string(event.subtype) + " " + std::string(event.text));
    });
  }

  static int record(uint32_t subtype, const char* text) {
    ficon_hist_record record{};
    record.subtype = subtype;
    std::strncpy(record.text, text, sizeof record.text - 1);
    return evtrc_hist_event(FICON_EVT_HIST_ID, static_cast<uint32_t>(5 + std::strlen(record.text)), &record);
  }

  vswitch_test::temporary_folder folder_;
  std::vector<std::string> seen_;
};

TEST_F(EventHistory, RecordsAreFilteredUntilSomebodyWatches) {
  EXPECT_EQ(evtrc_hist_event_subtype_check(FICON_EVT_HIST_ID, 102), 0x404A0001);
  watch();
  EXPECT_EQ(evtrc_hist_event_subtype_check(FICON_EVT_HIST_ID, 102), 0);
  EXPECT_EQ(evtrc_hist_event_subtype_check(FICON_EVT_HIST_ID, 103), 0);
  watch_events({});
  EXPECT_EQ(evtrc_hist_event_subtype_check(FICON_EVT_HIST_ID, 103), 0x404A0001);
}

TEST_F(EventHistory, WatcherSeesSubtypeAndTextAsReported) {
  watch();
  EXPECT_EQ(record(102, "failed\n"), 0);
  EXPECT_EQ(record(103, ""), 0);
  EXPECT_THAT(seen_, ElementsAre("102 failed\n", "103 "));
}

TEST_F(EventHistory, TextEndsWithTheRecordWhenItHasNoNul) {
  watch();
  const uint32_t subtype = 102;
  char bytes[] = {0, 0, 0, 0, 'a', 'b', 'c'};
  std::memcpy(bytes, &subtype, sizeof subtype);
  EXPECT_EQ(evtrc_hist_event(FICON_EVT_HIST_ID, 6, bytes), 0);
  EXPECT_EQ(evtrc_hist_event(FICON_EVT_HIST_ID, 4, bytes), 0);
  EXPECT_THAT(seen_, ElementsAre("102 ab", "102 "));
}

TEST_F(EventHistory, RecordThatIsTooShortIsRefused) {
  watch();
  EXPECT_EQ(evtrc_hist_event(FICON_EVT_HIST_ID, 3, "abc"), 0x404A0002);
  EXPECT_EQ(evtrc_hist_event(FICON_EVT_HIST_ID, 9, nullptr), 0x404A0002);
  EXPECT_THAT(seen_, ElementsAre());
}

TEST_F(EventHistory, ExceptionOfAWatcherStaysInside) {
  watch_events([](const history_event&) { throw std::runtime_error("watcher gave up"); });
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(record(102, "x"), 0x404A0003);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "event history: watcher gave up\n");
}

TEST_F(EventHistory, FileHasALineForEachRecordWithoutATime) {
  const std::string file = folder_.path("history");
  const std::string variable = "CHNSW_EVENT_HISTORY=" + file;
  EXPECT_EQ(run({VSWITCH_CLIENT, "report", "102", "it failed\n"}, {variable}).exit_code, 0);
  EXPECT_EQ(run({VSWITCH_CLIENT, "report", "103", "two\nlines\t\x01"}, {variable}).exit_code, 0);
  EXPECT_EQ(vswitch_test::text_of_file(file), "0x730000 102 it failed\n0x730000 103 two\\nlines\\x09\\x01\n");
}

TEST_F(EventHistory, DashIsStandardError) {
  const auto result = run({VSWITCH_CLIENT, "report", "102", "it failed\n"}, {"CHNSW_EVENT_HISTORY=-"});
  EXPECT_EQ(result.errors, "0x730000 102 it failed\n");
  EXPECT_EQ(result.output, "");
}

TEST_F(EventHistory, FileThatCannotBeOpenedIsToldOnceAndTheRecordsAreFiltered) {
  const auto result = run({VSWITCH_CLIENT, "report", "102", "x"}, {"CHNSW_EVENT_HISTORY=" + folder_.path("none/history")});
  EXPECT_EQ(result.errors,
            "CHNSW_EVENT_HISTORY: " + folder_.path("none/history") + " cannot be opened: No such file or directory\n");
  EXPECT_EQ(result.exit_code, 0);
}

} // namespace
