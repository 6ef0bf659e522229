// listen and notify: what listeners are sent, in every form, and how listening ends.
#include <signal.h>

#include "managed_switch_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Notices : public managed_switch_test {
 protected:
  Notices() { start_manager(); }

  // A listener that hears from the moment on at which this returns.
  pid_t listen(const std::string& name, std::vector<std::string> options) {
    options.insert(options.begin(), "listen");
    pid_t listener = start_in_folder(name, options);
    wait_for_text("err_" + name, "listening");
    return listener;
  }
};

// ---- notify ----

TEST_F(Notices, NotifyTellsToHowManyItWent) {
  auto nobody = in_folder({"notify", "vsan", "10", "down"});
  EXPECT_EQ(nobody.out,
            "NOTICE  VSAN  INTERFACE  STATE  REASON  LISTENERS  STATUS\n"
            "vsan      10  -          down   -               0  OK 0\n");
  EXPECT_EQ(nobody.status, 0);
  listen("a", {});
  listen("b", {});
  auto both = in_folder({"notify", "port", "fc1/1-2", "up", "--reason", "7"});
  EXPECT_EQ(both.out,
            "NOTICE  VSAN  INTERFACE  STATE  REASON  LISTENERS  STATUS\n"
            "port    -     fc1/1      up          7          2  OK 0\n"
            "port    -     fc1/2      up          7          2  OK 0\n");
  EXPECT_EQ(both.status, 0);
}

TEST_F(Notices, NotifyAsDataHasNumbers) {
  EXPECT_EQ(parse_json(in_folder({"notify", "enable", "port-channel1", "off", "--format", "json"}).out),
            nlohmann::json::parse(R"([{"notice": "enable", "vsan": null, "interface": "port-channel1", "if_index": 67108865,
                "if_index_hex": "0x04000001", "state": "off", "reason": null, "listeners": 0,
                "status": {"code": 0, "hex": "0x00000000", "name": "OK"}}])"));
  EXPECT_EQ(in_folder({"notify", "vsan", "10,20", "up", "--format", "csv"}).out,
            "notice,vsan,interface,if_index,if_index_hex,state,reason,listeners,status,status_hex,status_name\n"
            "vsan,10,,,,up,,0,0,0x00000000,OK\n"
            "vsan,20,,,,up,,0,0,0x00000000,OK\n");
}

TEST_F(Notices, NotifyAboutWhatIsNotThereIsNotSent) {
  listen("a", {"--format", "json"});
  struct {
    std::vector<std::string> words;
    const char* status;
  } cases[] = {{{"notify", "vsan", "0", "up"}, "FICON_RC_INVALID_ARG"},
               {{"notify", "port", "fc9/1", "up"}, "FICON_RC_NO_IF"},
               {{"notify", "enable", "fcip9", "on"}, "FICON_RC_NO_IF"},
               {{"notify", "rnid", "fc9/1"}, "FICON_RC_NO_IF"},
               {{"notify", "rnid", "fc1/2"}, "FICON_RC_PLATFORM"}};
  for (auto& one : cases) {
    one.words.insert(one.words.end(), {"--format", "json"});
    auto result = in_folder(one.words);
    EXPECT_EQ(result.status, 1);
    auto row = parse_json(result.out)[0];
    EXPECT_EQ(row["status"]["name"], one.status);
    EXPECT_EQ(row["listeners"], nullptr);
  }
  EXPECT_EQ(read("out_a"), "[");
}

TEST_F(Notices, NotifyOfWrongWordsIsStatusTwo) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"notify"},
                                                {"notify", "vsan", "10"},
                                                {"notify", "vsan", "10", "on"},
                                                {"notify", "vsan", "4096", "up"},
                                                {"notify", "port", "fc1/1", "sideways"},
                                                {"notify", "port", "fc1/1", "up", "--reason", "256"},
                                                {"notify", "port", "fc1/1", "up", "--reason", "-1"},
                                                {"notify", "enable", "fc1/1", "up"},
                                                {"notify", "rnid", "fc1/1", "up"}}) {
    auto result = in_folder(words);
    EXPECT_EQ(result.status, 2) << words.back();
    EXPECT_EQ(result.out, "");
  }
}

// ---- listen ----

TEST_F(Notices, EveryKindAsTable) {
  pid_t listener = listen("table", {"--count", "6"});
  ASSERT_EQ(in_folder({"notify", "vsan", "4000", "down"}).status, 0);
  ASSERT_EQ(in_folder({"notify", "port", "fc1/1", "down", "--reason", "255"}).status, 0);
  ASSERT_EQ(in_folder({"notify", "port", "port-channel1", "up"}).status, 0);
  ASSERT_EQ(in_folder({"notify", "enable", "fc2/1", "off"}).status, 0);
  ASSERT_EQ(in_folder({"notify", "enable", "fc2/1", "on"}).status, 0);
  ASSERT_EQ(in_folder({"notify", "rnid", "fc2/1"}).status, 0);
  EXPECT_EQ(end_of(listener), 0);
  EXPECT_EQ(read("out_table"),
            "NOTICE   VSAN  INTERFACE      STATE  REASON  NODE                            STATUS\n"
            "vsan     4000  -              down   -       -                               OK 0\n"
            "port     -     fc1/1          down   255     -                               OK 0\n"
            "port     -     port-channel1  up     0       -                               OK 0\n"
            "enable   -     fc2/1          off    -       -                               OK 0\n"
            "enable   -     fc2/1          on     -       -                               OK 0\n"
            "rnid     -     fc2/1          -      -       005570-900-AC-12-000000D00417   OK 0\n");
  EXPECT_EQ(read("err_table"), "chnsw: listening to the manager of d\n");
}

TEST_F(Notices, EachAsALineOfJsonWhenItComes) {
  pid_t listener = listen("lines", {"--format", "jsonl"});
  ASSERT_EQ(in_folder({"notify", "port", "fc1/1", "down", "--reason", "3"}).status, 0);
  wait_for_text("out_lines", "\n"); // not only at the end
  ASSERT_EQ(in_folder({"notify", "rnid", "fc1/1"}).status, 0);
  wait_for_text("out_lines", "rnid");
  ::kill(listener, SIGTERM);
  EXPECT_EQ(end_of(listener), 0);
  auto rows = parse_json_lines(read("out_lines"));
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0]["opcode_hex"], "0x56530002");
  EXPECT_EQ(rows[0]["if_index_hex"], "0x01000000");
  EXPECT_EQ(rows[0]["reason"], 3);
  EXPECT_EQ(rows[0]["node"], nullptr);
  EXPECT_THAT(rows[0]["at"].get<std::string>(), testing::ContainsRegex("^20..-..-..T..:..:..[.]......Z$"));
  EXPECT_EQ(rows[1]["node"], "008401-C02-ACM-07-00000001A2B3");
  EXPECT_EQ(rows[1]["sequence"], "00000001A2B3");
  EXPECT_EQ(rows[1]["codepage_name"], "us-canada");
  EXPECT_EQ(rows[1]["tag_hex"], "0x0040");
}

TEST_F(Notices, InterruptedListenerEndsItsDocument) {
  pid_t silent = listen("silent", {"--format", "json"});
  pid_t json = listen("json", {"--format", "json"});
  pid_t csv = listen("csv", {"--format", "csv"});
  ::kill(silent, SIGINT);
  EXPECT_EQ(end_of(silent), 0);
  EXPECT_EQ(parse_json(read("out_silent")), nlohmann::json::array());
  ASSERT_EQ(in_folder({"notify", "vsan", "10", "up"}).status, 0);
  wait_for_text("out_json", "\"vsan\"");
  wait_for_text("out_csv", "up");
  ::kill(json, SIGINT);
  ::kill(csv, SIGTERM);
  EXPECT_EQ(end_of(json), 0);
  EXPECT_EQ(end_of(csv), 0);
  auto rows = parse_json(read("out_json"));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0]["vsan"], 10);
  EXPECT_EQ(rows[0]["state"], "up");
  EXPECT_EQ(parse_csv(read("out_csv")).size(), 2u);
}

TEST_F(Notices, ListenerHearsThatAVsanBecameEnabledAndIsNoMore) {
  pid_t listener = listen("vsans", {"--format", "jsonl", "--count", "3"});
  ASSERT_EQ(in_folder({"install", "30,31", "fc1/1"}).status, 0);
  ASSERT_EQ(in_folder({"install", "30", "fc1/1", "--uninstall"}).status, 0);
  EXPECT_EQ(end_of(listener), 0);
  std::vector<std::string> heard;
  for (const auto& row : parse_json_lines(read("out_vsans")))
    heard.push_back(row["vsan"].dump() + " " + row["state"].get<std::string>());
  EXPECT_EQ(heard, (std::vector<std::string>{"30 up", "31 up", "30 down"}));
}

TEST_F(Notices, EndOfTheManagerEndsTheDocumentAndIsStatusThree) {
  for (int signal : {SIGTERM, SIGKILL}) {
    pid_t listener = listen("left", {"--format", "json"});
    ASSERT_EQ(in_folder({"notify", "vsan", "10", "up"}).status, 0);
    end_manager(signal);
    EXPECT_EQ(end_of(listener), 3);
    EXPECT_THAT(read("err_left"),
                testing::EndsWith("chnsw: the manager of d has ended; start one with: chnsw manager d\n"));
    EXPECT_EQ(parse_json(read("out_left")).size(), 1u); // what had been sent came first
    start_manager();
  }
}

TEST_F(Notices, ListenerEndsWhenItsReaderGoesAway) {
  auto result = shell("chnsw -s d listen 2>/dev/null | head -1; echo ${PIPESTATUS[0]}");
  EXPECT_THAT(result.out, HasSubstr("NOTICE "));
  EXPECT_THAT(result.out, testing::EndsWith("\n3\n"));
}

TEST_F(Notices, ListeningToANegativeCountIsRefused) {
  EXPECT_EQ(in_folder({"listen", "--count", "-1"}).status, 2);
}

} // namespace
} // namespace chnsw_test
