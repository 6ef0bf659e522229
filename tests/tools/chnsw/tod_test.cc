// tod and set time: both clocks, time stamps and their references.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr char kExample[] = CHNSW_SOURCE_DIR "/examples/director-10.toml";

class Tod : public tool_test {
 protected:
  // The last microsecond of a reference's second is far away: 100 ms later is shown as 195 us earlier.
  tool_result stamp(std::vector<std::string> arguments) const {
    std::vector<std::string> all = {"-s", kExample, "tod", "--vsan", "10", "--at", "2015-01-05T09:07:04.1Z"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return run(all);
  }
  tool_result set(const std::vector<std::string>& words) const {
    std::vector<std::string> all = {"-s", "folder", "set", "time"};
    all.insert(all.end(), words.begin(), words.end());
    return run(all);
  }
  void create() const { ASSERT_EQ(run({"create", "folder", "campus.toml"}).status, 0); }
};

// ---- Moments ----

TEST_F(Tod, EveryFormLeadsToTheSameRow) {
  const std::string row =
      "CE4F44C40DC3B000  2015-01-05T09:07:03.000123Z  1420448823.000123  Mon Jan 5 09:07:03.123 2015  2015 Mon Jan 5 "
      "09:07:03.123\n";
  for (const char* word : {"CE4F44C40DC3B000", "0xce4f44c40dc3b", "2015-01-05T09:07:03.000123Z",
                           "2015-01-05 10:07:03.000123+01:00", "@1420448823.000123"}) {
    auto result = run({"tod", word});
    EXPECT_EQ(
        result.out,
        "TOD               UTC                          HOST SECONDS       DAY FIRST                    YEAR FIRST\n" + row)
        << word;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
  }
}

TEST_F(Tod, ValuesAtTheEndsOfTheClock) {
  auto rows = parse_json(run({"tod", "0000,7D91048BCA000000", "FFFFFFFFFFFFFFFF", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[0]["day_first"], "Mon Jan 1 00:00:00.0 1900");
  EXPECT_EQ(rows[0]["utc"], "1900-01-01T00:00:00.000000Z");
  EXPECT_EQ(rows[0]["host_seconds"], nullptr); // beyond 32 bits
  EXPECT_EQ(rows[1]["year_first"], "1970 Thu Jan 1 00:00:00.0");
  EXPECT_EQ(rows[1]["host_seconds"], 0);
  EXPECT_EQ(rows[1]["host_microseconds"], 0);
  EXPECT_EQ(rows[2]["day_first"], "Wed Sep 17 23:53:47.370495 2042");
  EXPECT_EQ(rows[2]["tod"], UINT64_MAX);
  EXPECT_EQ(rows[2]["tod_hex"], "0xFFFFFFFFFFFFFFFF");
  EXPECT_EQ(rows[2]["asked"], "FFFFFFFFFFFFFFFF");
}

TEST_F(Tod, TimesBeyondAHostsThirtyTwoBitsAreReckonedAlike) {
  auto rows =
      parse_json(run({"tod", "1900-01-01,2038-01-19T03:14:08Z,2042-09-17T23:53:47.370495", "--format", "json"}).out);
  EXPECT_EQ(rows[0]["tod"], 0u);
  EXPECT_EQ(rows[1]["tod_hex"], "0xF7A3048BCA000000");
  EXPECT_EQ(rows[1]["day_first"], "Tue Jan 19 03:14:08.0 2038");
  EXPECT_EQ(rows[2]["tod_hex"], "0xFFFFFFFFFFFFF000");
}

TEST_F(Tod, MicrosecondsOfAHostTimeCountUpBefore1970) {
  auto row = parse_json(run({"tod", "@-0.000001", "--format", "json"}).out)[0];
  EXPECT_EQ(row["host_seconds"], -1);
  EXPECT_EQ(row["host_microseconds"], 999999);
  EXPECT_EQ(row["tod_hex"], "0x7D91048BC9FFF000");
}

TEST_F(Tod, NowIsOneMomentForTheWholeCommand) {
  auto rows = parse_json(run({"tod", "now", "now", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0], rows[1]);
  EXPECT_LE(std::abs(rows[0]["host_seconds"].get<int64_t>() - static_cast<int64_t>(std::time(nullptr))), 60);
}

TEST_F(Tod, LeapSecondsAreSubtractedAndToldAndTheTextsKnowNone) {
  auto result = run({"tod", "CE4F44C40DC3B000", "2015-01-05T09:06:36.000123Z", "--leap-seconds", "27"});
  EXPECT_EQ(result.out,
            "TOD               UTC                          HOST SECONDS       DAY FIRST                    YEAR FIRST\n"
            "CE4F44C40DC3B000  2015-01-05T09:06:36.000123Z  1420448796.000123  Mon Jan 5 09:07:03.123 2015  2015 Mon Jan 5 "
            "09:07:03.123\n"
            "CE4F44C40DC3B000  2015-01-05T09:06:36.000123Z  1420448796.000123  Mon Jan 5 09:07:03.123 2015  2015 Mon Jan 5 "
            "09:07:03.123\n");
  EXPECT_EQ(result.err,
            "chnsw: 27 leap seconds are subtracted from a TOD clock value to make a time, and added the other way; the "
            "library's texts know none\n");
  EXPECT_EQ(parse_json(run({"tod", "0000", "--leap-seconds", "1", "--format", "json"}).out)[0]["utc"],
            "1899-12-31T23:59:59.000000Z");
  EXPECT_EQ(run({"tod", "2042-09-17T23:53:47Z", "--leap-seconds", "1"}).err,
            "chnsw: time \"2042-09-17T23:53:47Z\" with 1 leap seconds is beyond the end of the TOD clock\n");
  EXPECT_EQ(run({"tod", "0000", "--leap-seconds", "-1"}).status, 2);
  EXPECT_EQ(run({"tod", "0000", "--leap-seconds", "x"}).status, 2);
}

TEST_F(Tod, ExplainsBothWays) {
  EXPECT_THAT(run({"tod", "CE4F44C40DC3B001", "--explain"}).out,
              HasSubstr("\n\nTOD CE4F44C40DC3B001 to text (ficon_get_TOD_format)\n"
                        "  microseconds  CE4F44C40DC3B001 / 4096 = 3629437623000123 since 1900, and 1/4096\n"
                        "  split         42007 days, 32823 s, 123 us\n"
                        "  texts         microseconds are not padded: .3 is 3 microseconds\n"));
  EXPECT_THAT(
      run({"tod", "@1420448823.000123", "--explain"}).out,
      HasSubstr("\n\n2015-01-05T09:07:03.000123Z to TOD clock value (ficon_cmi_compute_host_tstmp_given_time)\n"
                "  microseconds  1420448823 x 1000000 + 123 + 2208988800000000 (1900 to 1970) = 3629437623000123 since "
                "1900\n"
                "  result        times 4096: CE4F44C40DC3B000\n"));
}

// ---- Lists ----

TEST_F(Tod, LinesKeepTheirOrderAndABadOneIsToldWithItsNumber) {
  auto result = shell(
      "printf 'CE4F\\n\\n  @0  \\r\\nnonsense\\n2015-13-01\\n0000\\n1899-12-31' | chnsw tod FFFF - 7D91 --format jsonl");
  auto rows = parse_json_lines(result.out);
  ASSERT_EQ(rows.size(), 5u);
  EXPECT_EQ(rows[0]["asked"], "FFFF");
  EXPECT_EQ(rows[1]["asked"], "CE4F");
  EXPECT_EQ(rows[2]["asked"], "@0");
  EXPECT_EQ(rows[3]["asked"], "0000");
  EXPECT_EQ(rows[4]["asked"], "7D91");
  const std::string expected =
      "is no TOD clock value and no time; expected 4 to 16 hexadecimal digits of a TOD clock value like CE4F44C40DC3B000, "
      "a "
      "time in UTC like 2015-01-05T09:07:03.000123Z, host seconds like @1420448823.000123, or now\n";
  EXPECT_EQ(
      result.err,
      "chnsw: line 4: \"nonsense\" " + expected + "chnsw: line 5: \"2015-13-01\" " + expected +
          "chnsw: line 7: time \"1899-12-31\" is out of range; the TOD clock reaches from 1900-01-01T00:00:00.000000Z to "
          "2042-09-17T23:53:47.370495Z\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Tod, NoLinesAreAnEmptyDocument) {
  auto result = shell("chnsw tod - --format json </dev/null");
  EXPECT_EQ(result.out, "[]\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Tod, LinesThatCannotBeReadAreStatusThree) {
  auto result = shell("chnsw tod - < .");
  EXPECT_EQ(result.err, "chnsw: standard input cannot be read: Is a directory\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 3);
}

TEST_F(Tod, WrongWordsAreStatusTwoAndNoResult) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"tod"},
        {"tod", "CE4"},
        {"tod", "CE4F,"},
        {"tod", "CE4F44C40DC3B0000"},
        {"tod", "0000", "x"},
        {"tod", "@4294967295"},
        {"tod", "0000", "--vsan", "10"},
        {"tod", "0000", "--at", "now"},
        {"tod", "--vsan", "10"},
        {"-s", kExample, "tod", "--vsan", "4096"},
        {"-s", kExample, "tod", "--vsan", "10", "--at", "CE4F"},
        {"-s", kExample, "tod", "--vsan", "10", "--at", "2038-01-19T03:14:08"}}) {
    auto result = run(arguments);
    EXPECT_EQ(result.status, 2) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("chnsw: "));
  }
}

// ---- Time stamps ----

TEST_F(Tod, TimeStampAndItsReference) {
  auto result = stamp({});
  EXPECT_EQ(result.out,
            "VSAN 10 at 2015-01-05T09:07:04.100000Z\n"
            "  time stamp    CE4F44C5DD8DCB00\n"
            "  UTC           2015-01-05T09:07:04.899804Z\n"
            "  host seconds  1420448824.899804\n"
            "  day first     Mon Jan 5 09:07:04.899804 2015\n"
            "  year first    2015 Mon Jan 5 09:07:04.899804\n"
            "  reference     host 2015-01-05T09:07:03.900000Z, TOD CE4F44C4E9760000\n"
            "  status        OK 0\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Tod, TimeStampExplainedNamesTheDrift) {
  EXPECT_THAT(
      stamp({"--explain"}).out,
      testing::EndsWith(
          "\n\nVSAN 10 at 2015-01-05T09:07:04.100000Z to time stamp (ficon_cmi_get_vsan_tstmp_given_time)\n"
          "  reference     the host's clock said 1420448823 s and 900000 us when the TOD clock said CE4F44C4E9760000\n"
          "  seconds       1420448824 - 1420448823 = 1, times 1000000 x 4096\n"
          "  microseconds  100000 - 900000 = -800000, added without x 4096, so they count as -195.3125 us\n"
          "  result        CE4F44C4E9760000 + 1 x 4096000000 + -800000 = CE4F44C5DD8DCB00\n"
          "  drift         the fraction of the second stays the reference's, moved by -195.3125 us; that is 799804.6875 us "
          "ahead of the host's time\n"));
  auto row = parse_json(stamp({"--explain", "--format", "json"}).out)[0];
  EXPECT_EQ(row["tod_hex"], "0xCE4F44C5DD8DCB00");
  EXPECT_EQ(row["reference_tod_hex"], "0xCE4F44C4E9760000");
  EXPECT_EQ(row["reference_host_microseconds"], 900000);
  EXPECT_EQ(row["explanation"][0]["microseconds_difference"], -800000);
  EXPECT_EQ(row["explanation"][0]["sub_second_drift_usec"], -195.3125);
  EXPECT_EQ(row["explanation"][0]["ahead_of_host_time_usec"], 799804.6875);
}

TEST_F(Tod, ReferenceOfZerosIsNone) {
  write("zero.toml", std::string(kCampus) + "\n[[time_reference]]\nvsan = 10\nhost_seconds = 0\ntod = \"1234\"\n");
  auto result =
      run({"-s", "zero.toml", "tod", "--vsan", "10", "--at", "@1420448823.000123", "--explain", "--format", "table"});
  EXPECT_THAT(result.out, HasSubstr("  time stamp    CE4F44C40DC3B000\n"));
  EXPECT_THAT(
      result.out,
      HasSubstr("  reference     zero seconds and zero microseconds mean none; the host's clock is taken to be right\n"));
}

TEST_F(Tod, DifferenceThatWrapsIsNamed) {
  write("far.toml",
        std::string(kCampus) + "\n[[time_reference]]\nvsan = 10\nhost_time = \"1901-12-13T20:45:52Z\"\ntod = \"0000\"\n");
  auto result = run({"-s", "far.toml", "tod", "--vsan", "10", "--at", "2038-01-19T03:14:07Z", "--explain"});
  EXPECT_THAT(result.out, HasSubstr("  seconds       2147483647 - -2147483648 = -1 (wrapped in 32 bits), times"));
  EXPECT_THAT(result.out, HasSubstr("  time stamp    FFFFFFFF0BDC0000\n"));
  EXPECT_EQ(result.status, 0);
}

TEST_F(Tod, VsanWithoutReferenceIsNotFoundAndTheOthersAre) {
  auto result = run({"-s", kExample, "tod", "--vsan", "10,300", "--at", "@0", "--format", "json"});
  auto rows = parse_json(result.out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0]["status"]["code"], 0);
  EXPECT_EQ(rows[1]["vsan"], 300);
  EXPECT_EQ(rows[1]["status"]["name"], "FICON_RC_PLATFORM");
  EXPECT_EQ(rows[1]["tod"], nullptr);
  EXPECT_EQ(rows[1]["day_first"], nullptr);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(run({"-s", kExample, "tod", "--vsan", "300", "--at", "@0"}).out,
            "VSAN 300 at 1970-01-01T00:00:00.000000Z\n"
            "  reference     none\n"
            "  status        FICON_RC_PLATFORM 0x4085000A\n");
}

TEST_F(Tod, AllVsansAreThoseWithAReference) {
  auto rows = parse_json_lines(run({"-s", kExample, "tod", "--vsan", "all", "--format", "jsonl"}).out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0]["vsan"], 10);
  EXPECT_EQ(rows[1]["vsan"], 20);
  EXPECT_EQ(rows[1]["tod"].get<uint64_t>() - rows[0]["tod"].get<uint64_t>(), 3600u * UINT64_C(4096000000));
  auto none = ask({"tod", "--vsan", "all", "--format", "csv"});
  EXPECT_EQ(parse_csv(none.out).size(), 1u);
  EXPECT_EQ(none.status, 0);
}

TEST_F(Tod, EveryFormatIsOneValidDocument) {
  for (const std::vector<std::string>& question : {std::vector<std::string>{"tod", "0000,now", "--explain"},
                                                   {"-s", kExample, "tod", "--vsan", "10,11", "--explain"}}) {
    auto with = [&](const char* format) {
      auto arguments = question;
      arguments.insert(arguments.end(), {"--format", format});
      return run(arguments).out;
    };
    EXPECT_EQ(parse_json(with("json")).size(), 2u);
    EXPECT_EQ(parse_json_lines(with("jsonl")).size(), 2u);
    auto rows = parse_csv(with("csv"));
    ASSERT_EQ(rows.size(), 3u);
    if (question[0] == "tod") {
      EXPECT_EQ(rows[1].size(), rows[0].size());
    }
  }
}

// ---- Setting a reference ----

TEST_F(Tod, SetTimePrintsBeforeAndAfterAndLeavesTheChangeCounter) {
  create();
  EXPECT_EQ(set({"10", "2015-01-05T09:07:03.9Z", "CE4F44C4E976"}).out,
            "WHERE    FIELD           BEFORE  AFTER\n"
            "VSAN 10  time reference  -       1420448823 s 900000 us = CE4F44C4E9760000\n");
  EXPECT_THAT(run({"-s", "folder", "tod", "--vsan", "10", "--at", "2015-01-05T09:07:04.1Z"}).out,
              HasSubstr("Mon Jan 5 09:07:04.899804 2015"));
  EXPECT_EQ(
      set({"10", "@1420448823.9", "CE4F"}).out,
      "WHERE    FIELD           BEFORE                                     AFTER\n"
      "VSAN 10  time reference  1420448823 s 900000 us = CE4F44C4E9760000  1420448823 s 900000 us = CE4F000000000000\n");
  EXPECT_EQ(parse_json(run({"-s", "folder", "info", "--format", "json"}).out)["change_counter"], 7);
  auto same = set({"10", "@1420448823.9", "CE4F"});
  EXPECT_EQ(same.err, "chnsw: nothing to change: the switch holds these values already\n");
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(set({"10", "none"}).status, 0);
  EXPECT_EQ(run({"diff", "folder", "campus.toml"}).status, 0);
}

TEST_F(Tod, SetTimeWithoutATodValueTakesTheHostsClockForRight) {
  create();
  ASSERT_EQ(set({"20", "now"}).status, 0);
  ASSERT_EQ(set({"10", "now", "now"}).status, 0);
  auto rows = parse_json(run({"-s", "folder", "export", "--to", "json"}).out)["time_references"];
  ASSERT_EQ(rows.size(), 2u);
  for (const auto& row : rows) {
    auto again = parse_json(run({"tod", row["tod_hex"].get<std::string>(), "--format", "json"}).out)[0];
    EXPECT_EQ(again["utc"], row["host_time"]);
    EXPECT_EQ(again["host_seconds"], row["host_seconds"]);
  }
}

TEST_F(Tod, SetTimeRefusesWhatIsWrongAndChangesNothing) {
  create();
  for (const std::vector<std::string>& words : {std::vector<std::string>{"0", "now"},
                                                {"4096", "now"},
                                                {"10", "CE4F"},
                                                {"10", "2038-01-19T03:14:08Z"},
                                                {"10", "now", "2015-01-05"},
                                                {"10", "now", "CE4"},
                                                {"10", "none", "CE4F"},
                                                {"10"}}) {
    auto result = set(words);
    EXPECT_EQ(result.status, 2) << result.err;
    EXPECT_EQ(result.out, "");
  }
  EXPECT_EQ(run({"diff", "folder", "campus.toml"}).status, 0);
  auto file = ask({"set", "time", "10", "now"});
  EXPECT_EQ(file.err, "chnsw: campus.toml is a chassis file: edit the file, or make a folder of it with chnsw create\n");
  EXPECT_EQ(file.status, 2);
}

// ---- References elsewhere ----

TEST_F(Tod, DiffAndExportHoldTheReferences) {
  create();
  ASSERT_EQ(set({"10", "2015-01-05", "0001"}).status, 0);
  auto diff = run({"diff", "campus.toml", "folder"});
  EXPECT_EQ(diff.out,
            "WHERE    FIELD           A  B\n"
            "VSAN 10  time reference  -  1420416000 s 0 us = 0001000000000000\n");
  EXPECT_EQ(diff.status, 1);
  write("exported.toml", run({"-s", "folder", "export"}).out);
  EXPECT_EQ(run({"diff", "exported.toml", "folder"}).status, 0);
  auto reference = parse_json(run({"-s", "folder", "export", "--to", "json"}).out)["time_references"][0];
  EXPECT_EQ(reference["vsan"], 10);
  EXPECT_EQ(reference["host_time"], "2015-01-05T00:00:00.000000Z");
  EXPECT_EQ(reference["host_seconds"], 1420416000);
  EXPECT_EQ(reference["host_microseconds"], 0);
  EXPECT_EQ(reference["tod_hex"], "0x0001000000000000");
}

TEST_F(Tod, WrongReferenceInAFileIsToldWithItsPlace) {
  write("wrong.toml", std::string(kCampus) + "\n[[time_reference]]\nvsan = 10\nhost_time = \"yesterday\"\n");
  auto result = run({"-s", "wrong.toml", "tod", "--vsan", "10"});
  EXPECT_EQ(
      result.err,
      "wrong.toml:81:13: host_time is \"yesterday\"; expected is a time in UTC such as \"2015-01-05T09:07:03.9Z\", or "
      "\"now\"\n");
  EXPECT_EQ(result.status, 2);
}

} // namespace
} // namespace chnsw_test
