// manager: who may serve a folder, and how it ends; ask: every question, and the messages when there is no answer.
#include <signal.h>

#include "managed_switch_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

using Manager = managed_switch_test;
using Ask = managed_switch_test;

// ---- manager ----

TEST_F(Manager, SaysWhenItServesAndEndsWellWhenInterrupted) {
  for (int signal : {SIGTERM, SIGINT}) {
    start_manager();
    EXPECT_EQ(end_manager(signal), 0);
    EXPECT_EQ(read("out_manager"), "");
    EXPECT_THAT(read("err_manager"), HasSubstr("chnsw: serving d; an interrupt ends it\n"));
    EXPECT_THAT(read("err_manager"), testing::EndsWith("chnsw: ended\n"));
  }
}

TEST_F(Manager, LogsEveryRequest) {
  start_manager();
  ASSERT_EQ(in_folder({"ask", "portmap", "fc1/1"}).status, 0);
  ASSERT_EQ(in_folder({"ask", "rnid", "fc9/1"}).status, 1);
  EXPECT_THAT(read("err_manager"), testing::ContainsRegex("Z peer [0-9]+: port map of fc1/1.*: 0x00000000\n"));
  EXPECT_THAT(read("err_manager"), testing::ContainsRegex("Z peer [0-9]+: RNID of fc9/1: 0x4085004A\n"));
}

TEST_F(Manager, EndsWhenItsFolderIsRemoved) {
  pid_t manager = start_in_folder("doomed", {"manager"});
  wait_for_text("err_doomed", "serving d");
  ASSERT_EQ(shell("rm -r d").status, 0);
  EXPECT_EQ(end_of(manager), 3);
  EXPECT_THAT(read("err_doomed"), HasSubstr("/d: the switch was removed\n"));
}

TEST_F(Manager, ServesOnWhenItsLogCannotBeWritten) {
  const auto result = shell(
      "chnsw manager d 2> /dev/full & manager=$!\n"
      "for n in $(seq 200); do chnsw -s d ask vsans > /dev/null 2>&1 && break; sleep 0.05; done\n"
      "chnsw -s d ask vsans --format csv; kill $manager; wait $manager; echo \"status $?\"");
  EXPECT_EQ(result.out, "vsan,name\n10,production\n20,\nstatus 0\n");
}

TEST_F(Manager, FolderMayBeTheOneOfTheSwitchOption) {
  pid_t manager = start_in_folder("other", {"manager"});
  wait_for_text("err_other", "serving d");
  EXPECT_EQ(in_folder({"ask", "vsans"}).status, 0);
  ::kill(manager, SIGTERM);
  EXPECT_EQ(end_of(manager), 0);
}

TEST_F(Manager, SecondOneIsRefusedAndTheFirstGoesOn) {
  start_manager();
  auto second = run({"manager", "d"});
  EXPECT_EQ(second.status, 3);
  EXPECT_EQ(second.out, "");
  EXPECT_THAT(second.err, testing::StartsWith("chnsw: d: a manager (process " + std::to_string(manager()) + ") serves"));
  EXPECT_EQ(in_folder({"ask", "vsans"}).status, 0);
}

TEST_F(Manager, ChassisFileIsRefused) {
  auto result = run({"manager", "campus.toml"});
  EXPECT_EQ(result.err, "chnsw: campus.toml is a chassis file: a manager serves a switch's folder (chnsw create)\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(run({"manager"}).status, 2);
}

TEST_F(Manager, FolderThatHoldsNoSwitchIsRefused) {
  ASSERT_EQ(shell("mkdir empty").status, 0);
  for (const char* folder : {"empty", "nowhere"}) {
    auto result = run({"manager", folder});
    EXPECT_EQ(result.status, 3) << folder;
    EXPECT_THAT(result.err, HasSubstr(folder));
  }
}

TEST_F(Manager, AloneChangesTheSwitchAsLongAsItServes) {
  start_manager();
  auto refused = in_folder({"set", "port", "fc5/3", "--pa", "2F"});
  EXPECT_EQ(refused.status, 3);
  EXPECT_EQ(refused.out, "");
  EXPECT_THAT(refused.err, HasSubstr("serves this switch and alone may change it"));
  EXPECT_EQ(run({"diff", "d", "nodes.toml"}).status, 0);
  ASSERT_EQ(end_manager(SIGTERM), 0);
  EXPECT_EQ(in_folder({"set", "port", "fc5/3", "--pa", "2F"}).status, 0);
}

TEST_F(Manager, FolderOfAKilledOneIsServedAgain) {
  start_manager();
  ASSERT_EQ(end_manager(SIGKILL), 128 + SIGKILL);
  EXPECT_EQ(in_folder({"ask", "vsans"}).status, 3);
  start_manager();
  EXPECT_EQ(in_folder({"ask", "vsans"}).status, 0);
}

// ---- ask portmap ----

TEST_F(Ask, PortmapTellsTheNumbersOfEachInterface) {
  start_manager();
  auto result = in_folder({"ask", "portmap", "fc1/4-5,port-channel1", "fcip3"});
  EXPECT_EQ(result.out,
            "INTERFACE        IF-INDEX   PN  PA  STATUS\n"
            "fc1/4          0x01000300    3  03  OK 0\n"
            "fc1/5          0x01000400    4  10  OK 0\n"
            "port-channel1  0x04000001  240  F0  OK 0\n"
            "fcip3          0x0A000003  241  F1  OK 0\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Ask, PortmapTellsWhyThereAreNoNumbers) {
  start_manager();
  auto result = in_folder({"ask", "portmap", "fc5/1,fc5/4,fc9/1,fcip9", "--format", "jsonl"});
  EXPECT_EQ(result.status, 1);
  auto rows = parse_json_lines(result.out);
  ASSERT_EQ(rows.size(), 4u);
  EXPECT_EQ(rows[0]["status"]["name"], "FICON_RC_LAG_MEMBER");
  EXPECT_EQ(rows[1]["status"]["name"], "OK"); // there, without numbers
  EXPECT_EQ(rows[2]["status"]["name"], "FICON_RC_NO_IF");
  EXPECT_NE(rows[3]["status"]["code"], 0);
  for (const auto& row : rows) EXPECT_EQ(row["pn"], nullptr);
}

TEST_F(Ask, PortmapAsDataHasNumbers) {
  start_manager();
  EXPECT_EQ(parse_json(in_folder({"ask", "portmap", "fc2/1", "--format", "json"}).out),
            nlohmann::json::parse(R"([{"interface": "fc2/1", "if_index": 16842752, "if_index_hex": "0x01010000", "pn": 48,
                "pn_hex": "0x30", "pa": 0, "pa_hex": "0x00", "status": {"code": 0, "hex": "0x00000000", "name": "OK"}}])"));
  EXPECT_EQ(in_folder({"ask", "portmap", "fc1/1", "--format", "csv"}).out,
            "interface,if_index,if_index_hex,pn,pn_hex,pa,pa_hex,status,status_hex,status_name\n"
            "fc1/1,16777216,0x01000000,0,0x00,0,0x00,0,0x00000000,OK\n");
}

TEST_F(Ask, AllIsEveryInterfaceOfTheChassis) {
  start_manager();
  EXPECT_EQ(parse_json(in_folder({"ask", "portmap", "all", "--format", "json"}).out).size(), 22u);
}

// ---- ask vsans, vsan-state ----

TEST_F(Ask, VsansAreThoseThatAnEntryIsBoundTo) {
  start_manager();
  auto result = in_folder({"ask", "vsans"});
  EXPECT_EQ(result.out,
            "VSAN  NAME\n"
            "  10  production\n"
            "  20  -\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(in_folder({"ask", "vsans", "--format", "csv"}).out, "vsan,name\n10,production\n20,\n");
}

TEST_F(Ask, NoEnabledVsanIsAnEmptyDocumentAndNotFound) {
  write("bare.toml", "[chassis]\nslots = 1\ntype = 27\n\n[[line_card]]\nslot = 1\nports = 2\n");
  ASSERT_EQ(run({"create", "d", "bare.toml"}).status, 0);
  start_manager();
  auto result = in_folder({"ask", "vsans", "--format", "json"});
  EXPECT_EQ(parse_json(result.out), nlohmann::json::array());
  EXPECT_EQ(result.status, 1);
}

TEST_F(Ask, VsanStateOfEachInterfaceInEachVsan) {
  start_manager();
  auto result = in_folder({"ask", "vsan-state", "fc1/5,fc2/1", "10,20"});
  EXPECT_EQ(result.out,
            "INTERFACE    IF-INDEX  VSAN  MEMBER  BOUND  STATUS\n"
            "fc1/5      0x01000400    10  yes     yes    OK 0\n"
            "fc1/5      0x01000400    20  no      yes    OK 0\n"
            "fc2/1      0x01010000    10  no      no     OK 0\n"
            "fc2/1      0x01010000    20  yes     yes    OK 0\n");
  EXPECT_EQ(result.status, 0);
  auto row = parse_json(in_folder({"ask", "vsan-state", "fc1/5", "20", "--format", "json"}).out)[0];
  EXPECT_EQ(row["state"], 2);
  EXPECT_EQ(row["member"], false);
  EXPECT_EQ(row["bound"], true);
}

TEST_F(Ask, VsanStateOfAnInterfaceOutsideThePortMap) {
  start_manager();
  auto result = in_folder({"ask", "vsan-state", "fc9/1", "10"});
  EXPECT_EQ(result.out,
            "INTERFACE    IF-INDEX  VSAN  MEMBER  BOUND  STATUS\n"
            "fc9/1      0x01080000    10  -       -      FICON_RC_NO_IF 0x4085004A\n");
  EXPECT_EQ(result.status, 1);
}

// ---- ask rnid ----

TEST_F(Ask, RnidShowsTheDescriptorInBothCodePages) {
  start_manager();
  auto result = in_folder({"ask", "rnid", "fc1/1,fc2/1"});
  EXPECT_EQ(result.out,
            "fc1/1 0x01000000\n"
            "  node       008401-C02-ACM-07-00000001A2B3\n"
            "  flags      00000000\n"
            "  tag        0040\n"
            "  code page  37 us-canada\n"
            "  as sent    00000000 F0F0F8F4F0F1 C3F0F2 C1C3D4 F0F7 F0F0F0F0F0F0F0F1C1F2C2F3 0040\n"
            "  converted  00000000 303038343031 433032 41434D 3037 303030303030303141324233 0040\n"
            "  status     OK 0\n"
            "\n"
            "fc2/1 0x01010000\n"
            "  node       005570-900-AC-12-000000D00417\n"
            "  flags      20000000\n"
            "  tag        0000\n"
            "  code page  273 germany\n"
            "  as sent    20000000 F0F0F5F5F7F0 F9F0F0 C1C340 F1F2 F0F0F0F0F0F0C4F0F0F4F1F7 0000\n"
            "  converted  20000000 303035353730 393030 414320 3132 303030303030443030343137 0000\n"
            "  status     OK 0\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Ask, RnidAsDataHasEveryField) {
  start_manager();
  auto rows = parse_json(in_folder({"ask", "rnid", "fc2/1", "--format", "json"}).out);
  EXPECT_EQ(rows, nlohmann::json::parse(R"([{"interface": "fc2/1", "if_index": 16842752, "if_index_hex": "0x01010000",
      "node": "005570-900-AC-12-000000D00417", "type": "005570", "model": "900", "manufacturer": "AC", "plant": "12",
      "sequence": "000000D00417", "flags": 536870912, "flags_hex": "0x20000000", "tag": 0, "tag_hex": "0x0000",
      "codepage": 273, "codepage_name": "germany",
      "as_sent": "20000000F0F0F5F5F7F0F9F0F0C1C340F1F2F0F0F0F0F0F0C4F0F0F4F1F70000",
      "converted": "2000000030303535373039303041432031323030303030304430303431370000",
      "conversion_status": {"code": 0, "hex": "0x00000000", "name": "OK"},
      "status": {"code": 0, "hex": "0x00000000", "name": "OK"}}])"));
}

TEST_F(Ask, RnidWithoutADeviceAndWithoutAnInterface) {
  start_manager();
  auto result = in_folder({"ask", "rnid", "fc1/2,fc9/1"});
  EXPECT_EQ(result.out,
            "fc1/2 0x01000100\n"
            "  status     FICON_RC_PLATFORM 0x4085000A\n"
            "\n"
            "fc9/1 0x01080000\n"
            "  status     FICON_RC_NO_IF 0x4085004A\n");
  EXPECT_EQ(result.status, 1);
  auto row = parse_json(in_folder({"ask", "rnid", "fc1/2", "--format", "json"}).out)[0];
  EXPECT_EQ(row["node"], nullptr);
  EXPECT_EQ(row["flags_hex"], nullptr);
  EXPECT_EQ(row["as_sent"], nullptr);
  EXPECT_EQ(row["conversion_status"], nullptr);
}

TEST_F(Ask, RnidOfALogicalInterface) {
  start_manager();
  EXPECT_EQ(parse_json(in_folder({"ask", "rnid", "port-channel1", "--format", "json"}).out)[0]["node"],
            "000000-000---000000000000");
}

// ---- Nobody answers ----

const std::vector<std::vector<std::string>> kClients = {
    {"ask", "portmap", "fc1/1"},          {"ask", "vsans"},
    {"ask", "vsan-state", "fc1/1", "10"}, {"ask", "rnid", "fc1/1"},
    {"install", "30", "fc1/1"},           {"install", "30,31", "fc1/1"},
    {"swap", "fc1/1", "fc1/2"},           {"listen"},
    {"notify", "vsan", "10", "up"},       {"notify", "port", "fc1/1", "up"},
    {"notify", "enable", "fc1/1", "on"},  {"notify", "rnid", "fc1/1"}};

TEST_F(Ask, WithoutAManagerEveryClientSaysHowToStartOne) {
  for (const auto& command : kClients) {
    auto result = in_folder(command);
    EXPECT_EQ(result.status, 3) << command[0];
    EXPECT_THAT(result.err, testing::EndsWith("chnsw: no manager serves d; start one with: chnsw manager d\n"));
  }
}

TEST_F(Ask, ChassisFileHasNoManager) {
  for (const auto& command : kClients) {
    auto result = tool_test::ask(command);
    EXPECT_EQ(result.status, 2) << command[0];
    EXPECT_EQ(result.err, "chnsw: campus.toml is a chassis file: a manager serves a switch's folder (chnsw create)\n");
    EXPECT_EQ(result.out, "");
  }
}

TEST_F(Ask, ManagerThatDoesNotAnswerInTime) {
  start_manager();
  ::kill(manager(), SIGSTOP);
  for (auto command : kClients) {
    if (command[0] == "listen") continue; // waits for ever
    command.insert(command.end(), {"--timeout", "0.05"});
    auto result = in_folder(command);
    EXPECT_EQ(result.status, 3) << command[0];
    EXPECT_EQ(result.err, "chnsw: the manager of d did not answer within 0.05 s\n");
  }
  ::kill(manager(), SIGCONT);
  EXPECT_EQ(in_folder({"ask", "vsans"}).status, 0); // what came too late disturbs nobody
}

TEST_F(Ask, ManagerThatIsKilledWhileItIsAsked) {
  start_manager();
  ::kill(manager(), SIGSTOP);
  pid_t question = start_in_folder("question", {"ask", "vsans", "--timeout", "100"});
  pid_t handshake = start_in_folder("swap", {"swap", "fc1/1", "fc1/2", "--format", "json", "--timeout", "100"});
  wait_for_text("out_swap", "[");
  end_manager(SIGKILL);
  EXPECT_EQ(end_of(question), 3);
  EXPECT_EQ(end_of(handshake), 3);
  // Whether it had been reached by then or not
  for (const char* file : {"err_question", "err_swap"})
    EXPECT_THAT(read(file), testing::AnyOf("chnsw: the manager of d has ended; start one with: chnsw manager d\n",
                                           "chnsw: no manager serves d; start one with: chnsw manager d\n"));
  EXPECT_EQ(read("out_question"), "");
  EXPECT_EQ(parse_json(read("out_swap")), nlohmann::json::array());
}

TEST_F(Ask, WrongWordsAreStatusTwo) {
  start_manager();
  for (const std::vector<std::string>& words : {std::vector<std::string>{"ask"},
                                                {"ask", "portmap"},
                                                {"ask", "portmap", "fc1"},
                                                {"ask", "vsans", "10"},
                                                {"ask", "vsan-state", "fc1/1"},
                                                {"ask", "vsan-state", "fc1/1", "4096"},
                                                {"ask", "rnid", "eth0"},
                                                {"ask", "vsans", "--timeout", "0"},
                                                {"ask", "vsans", "--timeout", "nan"},
                                                {"ask", "vsans", "--timeout", "soon"}}) {
    auto result = in_folder(words);
    EXPECT_EQ(result.status, 2) << words.back() << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, testing::StartsWith("chnsw: "));
  }
}

} // namespace
} // namespace chnsw_test
