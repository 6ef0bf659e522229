// Time stamps of a VSAN: ficon_cmi_get_vsan_tstmp, ficon_cmi_get_vsan_tstmp_given_time.
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "time_of_day_test.h"

namespace {

using namespace chnsw_test;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr uint32_t kPlatformFailed = 0x4085000A;
constexpr ficon_host_time kReference = {1420448823, 900000};
constexpr uint64_t kReferenceTod = 0xCE4F44C4E9760000;
constexpr ficon_host_time kLater = {1420448824, 100000};
constexpr char kLaterText[] = "Mon Jan 5 09:07:04.899804 2015";

class VsanTimeStamp : public TimeOfDayTest {
 protected:
  // A record as the manager writes it, with something else in the bytes that the library does not read.
  static std::vector<uint8_t> make_record(const ficon_host_time& host, uint64_t tod) {
    std::vector<uint8_t> record(40, 0xEE);
    std::memcpy(&record[12], &host.seconds, 4);
    std::memcpy(&record[16], &host.microseconds, 4);
    std::memcpy(&record[24], &tod, 8);
    return record;
  }

  void give_reference(uint32_t vsan, const ficon_host_time& host, uint64_t tod) {
    platform.set_element(1, vsan, make_record(host, tod));
  }

  uint32_t ask(uint32_t vsan, int32_t format = FICON_TOD_FMT_DAY_FIRST) {
    return ficon_cmi_get_vsan_tstmp(vsan, &text, format);
  }
  uint32_t ask_at(uint32_t vsan, const ficon_host_time& now, int32_t format = FICON_TOD_FMT_DAY_FIRST) {
    return ficon_cmi_get_vsan_tstmp_given_time(vsan, &text, format, &now);
  }

  std::vector<std::string> texts_with_byte_inverted(std::optional<size_t> at) {
    std::vector<uint8_t> record = make_record({100, 0}, 0x7D91048BCA000000);
    if (at) record.at(*at) ^= 0xFF;
    platform.set_element(1, 10, record);
    std::vector<std::string> texts;
    for (const int32_t microseconds : {0, 4000}) {
      EXPECT_EQ(ask_at(10, {101, microseconds}), 0u);
      texts.push_back(text);
    }
    return texts;
  }

  const char* text = kUntouchedText;
};

TEST_F(VsanTimeStamp, NowByTheReference) {
  give_reference(10, kReference, kReferenceTod);
  set_clock(1420448824, 100000);
  EXPECT_EQ(ask(10), 0u);
  EXPECT_STREQ(text, kLaterText);
  EXPECT_EQ(ask(10, FICON_TOD_FMT_YEAR_FIRST), 0u);
  EXPECT_STREQ(text, "2015 Mon Jan 5 09:07:04.899804");
}

TEST_F(VsanTimeStamp, GivenTimeByTheReference) {
  give_reference(10, kReference, kReferenceTod);
  EXPECT_EQ(ask_at(10, kLater), 0u);
  EXPECT_STREQ(text, kLaterText);
  EXPECT_EQ(ask_at(10, kLater, FICON_TOD_FMT_YEAR_FIRST), 0u);
  EXPECT_STREQ(text, "2015 Mon Jan 5 09:07:04.899804");
}

TEST_F(VsanTimeStamp, RecordOfZerosMeansTheHostsTimeIsRight) {
  platform.set_element(1, 10, std::vector<uint8_t>(40, 0));
  set_clock(1420448823, 123);
  EXPECT_EQ(ask(10), 0u);
  EXPECT_STREQ(text, "Mon Jan 5 09:07:03.123 2015");
  EXPECT_EQ(ask_at(10, {0, 0}), 0u);
  EXPECT_STREQ(text, "Thu Jan 1 00:00:00.0 1970");
}

TEST_F(VsanTimeStamp, ZeroReferenceTimeLeavesItsTodValueUnused) {
  give_reference(10, {0, 0}, 0x1234567812345678);
  EXPECT_EQ(ask_at(10, {1420448823, 123}), 0u);
  EXPECT_STREQ(text, "Mon Jan 5 09:07:03.123 2015");
}

TEST_F(VsanTimeStamp, ReferenceOfFiveMicrosecondsIsAReference) {
  give_reference(10, {0, 5}, 0x8000000000000000);
  EXPECT_EQ(ask_at(10, {1, 5}), 0u);
  EXPECT_STREQ(text, "Tue May 11 11:56:54.685248 1971");
}

TEST_F(VsanTimeStamp, NegativeReferenceWordsKeepTheirSign) {
  give_reference(10, {-86400, -1}, 0x7D91048BCA000000);
  EXPECT_EQ(ask_at(10, {0, -1}), 0u);
  EXPECT_STREQ(text, "Fri Jan 2 00:00:00.0 1970");
}

// Which bytes of the record make a difference to the text. A fraction of a microsecond shows only where it carries, so two
// times are tried.
TEST_F(VsanTimeStamp, ExactlyTheBytesOfTheThreeFieldsAreRead) {
  std::vector<size_t> read;
  for (size_t at = 0; at < 40; ++at) {
    const auto changed = texts_with_byte_inverted(at);
    ASSERT_EQ(changed.size(), 2u);
    if (changed != texts_with_byte_inverted(std::nullopt)) read.push_back(at);
  }
  EXPECT_THAT(read, ElementsAre(12, 13, 14, 15, 16, 17, 18, 19, 24, 25, 26, 27, 28, 29, 30, 31));
}

TEST_F(VsanTimeStamp, EachVsanHasItsOwnReference) {
  give_reference(10, kReference, kReferenceTod);
  give_reference(20, kReference, 0x7D91048BCA000000);
  EXPECT_EQ(ask_at(20, kReference), 0u);
  EXPECT_STREQ(text, "Thu Jan 1 00:00:00.0 1970");
  EXPECT_EQ(ask_at(10, kReference), 0u);
  EXPECT_STREQ(text, "Mon Jan 5 09:07:03.900000 2015");
}

TEST_F(VsanTimeStamp, ReferenceIsReadAnewAtEveryCall) {
  give_reference(10, kReference, kReferenceTod);
  EXPECT_EQ(ask_at(10, kReference), 0u);
  give_reference(10, kReference, 0x7D91048BCA000000);
  EXPECT_EQ(ask_at(10, kReference), 0u);
  EXPECT_STREQ(text, "Thu Jan 1 00:00:00.0 1970");
}

// ---- what is asked ----

TEST_F(VsanTimeStamp, ReferenceIsAskedForAndThenTheClockRead) {
  give_reference(10, kReference, kReferenceTod);
  EXPECT_EQ(ask(10), 0u);
  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 1, 4, key 10, 40)", "gettimeofday(no zone)"));
}

TEST_F(VsanTimeStamp, WithAGivenTimeTheClockIsNotRead) {
  give_reference(10, kReference, kReferenceTod);
  break_clock();
  EXPECT_EQ(ask_at(10, kLater), 0u);
  EXPECT_STREQ(text, kLaterText);
  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 1, 4, key 10, 40)"));
}

TEST_F(VsanTimeStamp, KeyIsTheWholeNumberWhateverItIs) {
  for (const uint32_t vsan : {0u, 4096u, 65546u, 0xFFFFFFFFu}) {
    give_reference(vsan, kReference, kReferenceTod);
    EXPECT_EQ(ask_at(vsan, kLater), 0u);
  }
  EXPECT_THAT(platform.calls(), ElementsAre("elemdb_lookup_element(1, 1, 4, key 0, 40)",     //
                                            "elemdb_lookup_element(1, 1, 4, key 4096, 40)",  //
                                            "elemdb_lookup_element(1, 1, 4, key 65546, 40)", //
                                            "elemdb_lookup_element(1, 1, 4, key 4294967295, 40)"));
}

TEST_F(VsanTimeStamp, RecordBufferIsClearedBeforeItIsFilled) {
  std::vector<uint8_t> buffer;
  platform.on_lookup = [&](const elemdb_request& request) {
    const auto* bytes = static_cast<const uint8_t*>(request.value);
    buffer.insert(buffer.end(), bytes, bytes + request.value_length);
  };
  give_reference(10, kReference, kReferenceTod);
  EXPECT_EQ(ask(10), 0u);
  EXPECT_EQ(ask_at(10, kLater), 0u);
  EXPECT_EQ(buffer.size(), 80u);
  EXPECT_THAT(buffer, Each(0));
}

TEST_F(VsanTimeStamp, NowIsReadAfterTheReference) {
  give_reference(10, kReference, kReferenceTod);
  set_clock(0, 0);
  platform.on_lookup = [](const elemdb_request&) { set_clock(1420448824, 100000); };
  EXPECT_EQ(ask(10), 0u);
  EXPECT_STREQ(text, kLaterText);
}

TEST_F(VsanTimeStamp, GivenTimeIsReadBeforeTheReference) {
  give_reference(10, kReference, kReferenceTod);
  ficon_host_time now = kLater;
  platform.on_lookup = [&](const elemdb_request&) { now = {0, 0}; };
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp_given_time(10, &text, 0, &now), 0u);
  EXPECT_STREQ(text, kLaterText);
}

// ---- the text ----

TEST_F(VsanTimeStamp, TextIsInTheOneBuffer) {
  give_reference(10, kReference, kReferenceTod);
  const char* buffer = nullptr;
  ficon_get_TOD(0, &buffer);
  EXPECT_EQ(ask_at(10, kLater), 0u);
  EXPECT_EQ(text, buffer);
  EXPECT_EQ(ask(10), 0u);
  EXPECT_EQ(text, buffer);
}

TEST_F(VsanTimeStamp, WithoutATextAddressTheTextIsWrittenAllTheSame) {
  give_reference(10, kReference, kReferenceTod);
  const char* buffer = nullptr;
  ficon_get_TOD(0, &buffer);
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp_given_time(10, nullptr, 0, &kLater), 0u);
  EXPECT_STREQ(buffer, kLaterText);
  set_clock(1420448823, 900000);
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp(10, nullptr, 1), 0u);
  EXPECT_STREQ(buffer, "2015 Mon Jan 5 09:07:03.900000");
}

// Clients rely on it: the text of an earlier call stays, and its address is handed out.
TEST_F(VsanTimeStamp, FormatTwoLeavesTheEarlierTextAndSucceeds) {
  give_reference(10, kReference, kReferenceTod);
  text_of(0);
  EXPECT_EQ(ask(10, 2), 0u);
  EXPECT_STREQ(text, "Mon Jan 1 00:00:00.0 1900");
  text = kUntouchedText;
  EXPECT_EQ(ask_at(10, kLater, 2), 0u);
  EXPECT_STREQ(text, "Mon Jan 1 00:00:00.0 1900");
}

// ---- failures ----

TEST_F(VsanTimeStamp, VsanWithoutARecordLeavesTheTextAddressAlone) {
  give_reference(10, kReference, kReferenceTod);
  const std::string before = text_of(0);
  EXPECT_EQ(ask(11), kPlatformFailed);
  EXPECT_EQ(ask_at(11, kLater), kPlatformFailed);
  EXPECT_EQ(text, kUntouchedText);
  EXPECT_EQ(text_of(0, 2), before);
}

TEST_F(VsanTimeStamp, EveryStatusOfTheLookupIsTheOneFailure) {
  give_reference(10, kReference, kReferenceTod);
  for (const int status : {1, -1, 2, 0x40850000}) {
    platform.fail_element(1, 10, status, true);
    EXPECT_EQ(ask(10), kPlatformFailed);
    EXPECT_EQ(ask_at(10, kLater), kPlatformFailed);
  }
  EXPECT_EQ(text, kUntouchedText);
}

TEST_F(VsanTimeStamp, FailedLookupIsTheLastThingAsked) {
  EXPECT_EQ(ask(10), kPlatformFailed);
  EXPECT_THAT(platform.all_calls(), ElementsAre("elemdb_lookup_element(1, 1, 4, key 10, 40)"));
}

TEST_F(VsanTimeStamp, FailedLookupWithoutATextAddress) {
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp(10, nullptr, 0), kPlatformFailed);
  EXPECT_EQ(ficon_cmi_get_vsan_tstmp_given_time(10, nullptr, 0, &kLater), kPlatformFailed);
}

TEST_F(VsanTimeStamp, NothingIsReported) {
  const std::string printed = output_of([&] {
    ask(10);
    ask_at(10, kLater);
    give_reference(10, kReference, kReferenceTod);
    ask(10);
  });
  EXPECT_EQ(printed, "");
  EXPECT_THAT(platform.reporting_calls(), IsEmpty());
}

// Clients rely on it: 1900 is what a broken clock looks like.
TEST_F(VsanTimeStamp, UnreadableClockIsToldAsTheYearNineteenHundredAndSucceeds) {
  give_reference(10, kReference, kReferenceTod);
  break_clock();
  EXPECT_EQ(ask(10), 0u);
  EXPECT_STREQ(text, "Mon Jan 1 00:00:00.0 1900");
}

} // namespace
