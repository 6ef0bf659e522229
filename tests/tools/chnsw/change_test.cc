// create, set, diff, export, watch: everything about folders and files.
#include "tool_test.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Folders : public tool_test {
 protected:
  void create() const { ASSERT_EQ(run({"create", "folder", "campus.toml"}).status, 0); }
  tool_result in_folder(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"-s", "folder"});
    return run(arguments);
  }
  uint32_t change_counter() const { return parse_json(in_folder({"info", "--format", "json"}).out)["change_counter"]; }
};

// ---- create ----

TEST_F(Folders, CreateMakesAFolderAndTellsWhat) {
  auto result = run({"create", "folder", "campus.toml"});
  EXPECT_EQ(result.out,
            "SWITCH  FROM         NAME    SLOTS  TYPE  PORTS  CHANGE\n"
            "folder  campus.toml  campus      6    34     20       7\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(run({"diff", "folder", "campus.toml"}).status, 0);
}

TEST_F(Folders, WrongFileLeavesTheSwitchThatWasThere) {
  create();
  write("wrong.toml", campus_with("slot = 5", "slot = 4"));
  auto result = run({"create", "folder", "wrong.toml"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, testing::StartsWith("wrong.toml:18:8: "));
  EXPECT_EQ(run({"diff", "folder", "campus.toml"}).status, 0);
}

TEST_F(Folders, CreateRefusesAFolderThatHoldsSomethingElse) {
  ASSERT_EQ(shell("mkdir other && echo mine >other/notes").status, 0);
  auto result = run({"create", "other", "campus.toml"});
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(shell("cat other/notes; ls other | wc -l").out, "mine\n1\n");
}

// A supervisor where the library expects one: the file is in itself without fault.
TEST_F(Folders, CardInASlotThatTheLibraryHasNoLineCardIn) {
  write("other.toml", "[chassis]\nslots = 6\ntype = 34\nsupervisors = [5, 6]\n\n[[line_card]]\nslot = 3\nports = 8\n");
  auto result = run({"-s", "other.toml", "info"});
  EXPECT_EQ(result.err,
            "other.toml:7:8: slot 3 is no line-card slot of a chassis of 6 slots and type 34 (the library answers "
            "FICON_RC_INVALID_ARG 0x40850003); put the card into another slot\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 2);
}

TEST_F(Folders, LineCardThatTheLibraryCountsOtherwise) {
  write("other.toml", "[chassis]\nslots = 6\ntype = 34\nsupervisors = []\n\n[[line_card]]\nslot = 5\nports = 8\n");
  auto result = run({"-s", "other.toml", "info"});
  EXPECT_EQ(result.err,
            "other.toml:7:8: slot 5 is line card 2 of a chassis of 6 slots and type 34 for the library, but 4 by the "
            "supervisors named here; check the supervisors\n");
  EXPECT_EQ(result.status, 2);
}

TEST_F(Folders, FileIsReadWithoutLeavingAnythingBehind) {
  auto before = listing();
  ask({"check"});
  EXPECT_EQ(listing(), before);
}

// ---- Folders that a manager serves ----

// A manager as the folder sees one.
class served_folder {
 public:
  explicit served_folder(const std::string& folder)
      : lock_(::open((folder + "/manager.lock").c_str(), O_RDWR | O_CREAT, 0664)) {
    EXPECT_EQ(::flock(lock_, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(::ftruncate(lock_, 0), 0);
    EXPECT_EQ(::write(lock_, "4711\n", 5), 5);
  }
  ~served_folder() { ::close(lock_); }
  served_folder(const served_folder&) = delete;
  served_folder& operator=(const served_folder&) = delete;

 private:
  int lock_;
};

TEST_F(Folders, ChangesAreRefusedWhileAManagerServesTheFolder) {
  create();
  const served_folder manager(path("folder"));
  for (const std::vector<std::string>& change :
       {std::vector<std::string>{"-s", "folder", "set", "port", "fc5/3", "--pa", "2F"},
        {"-s", "folder", "set", "binding", "241", "none"},
        {"-s", "folder", "set", "address", "30", "none"},
        {"-s", "folder", "set", "time", "10", "now"},
        {"create", "folder", "campus.toml"}}) {
    auto result = run(change);
    EXPECT_EQ(
        result.err,
        "chnsw: folder: a manager (process 4711) serves this switch and alone may change it; have the manager do it, or "
        "end the manager first\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 3);
  }
  EXPECT_EQ(change_counter(), 7u);
  EXPECT_EQ(run({"diff", "folder", "campus.toml"}).status, 0);
}

TEST_F(Folders, FolderIsChangedAgainWhenItsManagerIsGone) {
  create();
  { const served_folder manager(path("folder")); }
  EXPECT_EQ(in_folder({"set", "port", "fc5/3", "--pa", "2F"}).status, 0);
  EXPECT_EQ(run({"create", "folder", "campus.toml"}).status, 0);
}

// ---- set ----

TEST_F(Folders, SetPortPrintsBeforeAndAfter) {
  create();
  auto result = in_folder({"set", "port", "fc5/3", "--pa", "2F", "--vsans", "10,20", "--vsan", "10"});
  EXPECT_EQ(result.out,
            "CHANGE  WHERE              FIELD          BEFORE  AFTER\n"
            "     8  index 510 (fc5/3)  pa             30      2F\n"
            "     8  index 510 (fc5/3)  vsans          20      10,20\n"
            "     8  index 510 (fc5/3)  vsan           20      10\n"
            "     8  PA 2F              pn of address  -       96\n"
            "     8  PA 30              pn of address  96      -\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(change_counter(), 8u);
  auto row = parse_json(in_folder({"if", "fc5/3", "--format", "json"}).out)[0];
  EXPECT_EQ(row["pa"], 0x2F);
  EXPECT_EQ(row["vsans"], nlohmann::json({10, 20}));
}

TEST_F(Folders, SetPortByIndexAndNoneTakesAway) {
  create();
  EXPECT_EQ(in_folder({"set", "port", "1025", "--pn", "none", "--pa", "none", "--vsans", "none", "--vsan", "none"}).status,
            0);
  auto row = parse_json(in_folder({"map", "--index", "1025", "--format", "json"}).out)[0];
  EXPECT_EQ(row["pn"], nullptr);
  EXPECT_EQ(row["pa"], nullptr);
  EXPECT_EQ(row["vsans"], nlohmann::json::array());
  EXPECT_EQ(row["port_vsan"], nullptr);
}

TEST_F(Folders, SetAsDataHasNumbers) {
  create();
  auto rows = parse_json(in_folder({"set", "port", "fc5/3", "--pa", "2F", "--format", "json"}).out);
  EXPECT_EQ(rows[0]["before"], 0x30);
  EXPECT_EQ(rows[0]["after"], 0x2F);
  EXPECT_EQ(rows[0]["after_hex"], "0x2F");
  EXPECT_EQ(rows[0]["index"], 510);
}

TEST_F(Folders, SetBindingAndAddress) {
  create();
  EXPECT_EQ(in_folder({"set", "binding", "200", "fc1/1"}).out,
            "CHANGE  WHERE   FIELD    BEFORE  AFTER\n"
            "     8  PN 200  binding  -       fc1/1\n");
  EXPECT_EQ(in_folder({"set", "binding", "200", "none"}).status, 0);
  EXPECT_EQ(in_folder({"set", "address", "2F", "5"}).out,
            "CHANGE  WHERE  FIELD          BEFORE  AFTER\n"
            "    10  PA 2F  pn of address  -       5\n");
}

TEST_F(Folders, AddressTableSetByHandIsLeftAlone) {
  create();
  ASSERT_EQ(in_folder({"set", "address", "2F", "5"}).status, 0);
  EXPECT_EQ(in_folder({"set", "port", "fc5/3", "--pa", "31"}).out,
            "CHANGE  WHERE              FIELD  BEFORE  AFTER\n"
            "     9  index 510 (fc5/3)  pa     30      31\n");
}

TEST_F(Folders, SettingWhatIsThereAlreadyChangesNothing) {
  create();
  auto result = in_folder({"set", "port", "fc5/3", "--pa", "30"});
  EXPECT_EQ(result.out, "CHANGE  WHERE  FIELD  BEFORE  AFTER\n");
  EXPECT_EQ(result.err, "chnsw: nothing to change: the switch holds these values already\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(change_counter(), 7u);
}

TEST_F(Folders, SetRefusesWhatIsWrongAndChangesNothing) {
  create();
  auto message = [this](const std::vector<std::string>& arguments) {
    auto result = in_folder(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    return result.err;
  };
  EXPECT_EQ(message({"set", "port", "fc5/3"}), "chnsw: nothing to set; give --pn, --pa, --vsans or --vsan\n");
  EXPECT_EQ(message({"set", "port", "fc5/5", "--pn", "1"}),
            "chnsw: port fc5/5 is not there; chnsw info lists the cards and their ports\n");
  EXPECT_EQ(
      message({"set", "port", "1280", "--pn", "1"}),
      "chnsw: port \"1280\", character 1: 1280 is out of range; expected a decimal number from 0 to 1279, as in fc3/5, or "
      "1024 for a port map index\n");
  EXPECT_EQ(
      message({"set", "port", "fc5/3", "--vsans", "0"}),
      "chnsw: VSAN \"0\", character 1: 0 is out of range; expected a decimal number from 1 to 4095, as in 10 or 10,20\n");
  EXPECT_EQ(message({"set", "port", "fc5/3", "--vsans", "1-9"}),
            "chnsw: VSANs \"1-9\": found 9; a port is bound to 1 to 8 VSANs, or none\n");
  EXPECT_EQ(
      message({"set", "binding", "256", "fcip3"}),
      "chnsw: port number \"256\", character 1: 256 is out of range; expected a decimal number from 0 to 255, as in 240\n");
  EXPECT_EQ(message({"set", "binding", "200", "fcip9"}),
            "chnsw: there is no fcip9; chnsw info lists cards and logical interfaces\n");
  EXPECT_EQ(change_counter(), 7u);
}

TEST_F(Folders, SetRefusesAChassisFile) {
  auto result = ask({"set", "port", "fc5/3", "--pa", "2F"});
  EXPECT_EQ(result.err, "chnsw: campus.toml is a chassis file: edit the file, or make a folder of it with chnsw create\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(read("campus.toml"), kCampus);
}

// ---- diff, export ----

TEST_F(Folders, DiffOfEqualSwitchesIsEmpty) {
  auto result = run({"diff", "campus.toml", "campus.toml"});
  EXPECT_EQ(result.out, "WHERE  FIELD  A  B\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Folders, DiffTellsEveryKindOfDifference) {
  std::string other = campus_with("name = \"campus\"", "name = \"moved\"");
  auto change = [&other](const std::string& text, const std::string& replacement) {
    other.replace(other.find(text), text.size(), replacement);
  };
  change("slot = 5\nports = 4", "slot = 5\nports = 6");
  change("number = 20\n", "number = 30\n");
  change("members = [\"fc5/1-2\"]", "members = [\"fc5/1\"]");
  change("name = \"fcip3\"", "name = \"fcip4\"");
  change("pn = 241\ninterface = \"fcip3\"", "pn = 241\ninterface = \"fcip4\"");
  change("interface = \"fc5/3\"\npn = 96\npa = 0x30\nvsans = [20]",
         "interface = \"fc5/3\"\npn = 97\npa = 0x31\nvsans = [30, 20]");
  write("other.toml", other);
  auto result = run({"diff", "campus.toml", "other.toml"});
  EXPECT_EQ(result.out,
            "WHERE              FIELD          A            B\n"
            "chassis            name           campus       moved\n"
            "slot 5             ports          4            6\n"
            "VSAN 20            is there       yes          no\n"
            "VSAN 30            is there       no           yes\n"
            "port-channel1      members        fc5/1 fc5/2  fc5/1\n"
            "fcip3              is there       yes          no\n"
            "fcip4              is there       no           yes\n"
            "index 510 (fc5/3)  pn             96           97\n"
            "index 510 (fc5/3)  pa             30           31\n"
            "index 510 (fc5/3)  vsans          20           30,20\n"
            "index 510 (fc5/3)  vsan           20           30\n"
            "PN 241             binding        fcip3        fcip4\n"
            "PA 30              pn of address  96           -\n"
            "PA 31              pn of address  -            97\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Folders, DiffTellsANameOfADashFromNoName) {
  write("dash.toml", campus_with("number = 20\n", "number = 20\nname = \"-\"\n"));
  EXPECT_EQ(
      run({"diff", "campus.toml", "dash.toml", "--format", "jsonl"}).out,
      "{\"where\":\"VSAN 20\",\"index\":null,\"field\":\"name\",\"a\":\"\",\"a_hex\":null,\"b\":\"-\",\"b_hex\":null}\n");
}

TEST_F(Folders, DiffAndExportTellTimeReferences) {
  const std::string reference = "\n[[time_reference]]\nvsan = 10\nhost_seconds = 1420448823\ntod = \"CE4F44C4E9760000\"\n";
  write("timed.toml", kCampus + reference);
  EXPECT_EQ(run({"diff", "campus.toml", "timed.toml"}).out,
            "WHERE    FIELD           A  B\n"
            "VSAN 10  time reference  -  1420448823 s 0 us = CE4F44C4E9760000\n");
  auto whole = parse_json(run({"-s", "timed.toml", "export", "--to", "json"}).out);
  EXPECT_EQ(whole["time_references"][0]["host_seconds"], 1420448823);
  EXPECT_EQ(whole["time_references"][0]["tod_hex"], "0xCE4F44C4E9760000");
}

constexpr char kNode[] =
    "\n[[node]]\ninterface = \"fc5/3\"\ncodepage = 273\nflags = 0x20000000\ntype = \"5570\"\nmodel = \"9\"\n"
    "manufacturer = \"AC\"\nplant = \"12\"\nsequence = \"D00417\"\ntag = 0x10\n";

TEST_F(Folders, DiffTellsANodeThatCameOrWent) {
  write("node.toml", std::string(kCampus) + kNode);
  EXPECT_EQ(run({"diff", "campus.toml", "node.toml"}).out,
            "WHERE  FIELD  A   B\n"
            "fc5/3  node   no  yes\n");
  EXPECT_EQ(run({"diff", "node.toml", "campus.toml"}).out,
            "WHERE  FIELD  A    B\n"
            "fc5/3  node   yes  no\n");
}

TEST_F(Folders, DiffTellsEveryFieldOfANode) {
  write("node.toml", std::string(kCampus) + kNode);
  write("other.toml", std::string(kCampus) + "\n[[node]]\ninterface = \"fc5/3\"\n");
  auto result = run({"diff", "node.toml", "other.toml"});
  EXPECT_EQ(result.out,
            "WHERE  FIELD              A             B\n"
            "fc5/3  node code page     273           37\n"
            "fc5/3  node flags         20000000      00000000\n"
            "fc5/3  node type          005570        000000\n"
            "fc5/3  node model         009           000\n"
            "fc5/3  node manufacturer  AC            -\n"
            "fc5/3  node plant         12            -\n"
            "fc5/3  node sequence      000000D00417  000000000000\n"
            "fc5/3  node tag           0010          0000\n");
  EXPECT_EQ(result.status, 1);
  auto rows = parse_json(run({"diff", "node.toml", "other.toml", "--format", "json"}).out);
  EXPECT_EQ(rows[1]["a"], 0x20000000);
  EXPECT_EQ(rows[4]["a"], "AC");
}

TEST_F(Folders, ExportHoldsTheNodes) {
  write("node.toml", std::string(kCampus) + kNode);
  ASSERT_EQ(run({"create", "folder", "node.toml"}).status, 0);
  EXPECT_THAT(in_folder({"export"}).out,
              testing::EndsWith("\n[[node]]\ninterface = \"fc5/3\"\ncodepage = 273\nflags = 0x20000000\ntype = \"005570\"\n"
                                "model = \"009\"\nmanufacturer = \"AC\"\nplant = \"12\"\nsequence = \"000000D00417\"\n"
                                "tag = 0x0010\n"));
  auto nodes = parse_json(in_folder({"export", "--to", "json"}).out)["nodes"];
  EXPECT_EQ(nodes, nlohmann::json::parse(R"([{"interface": "fc5/3", "if_index": 17039872, "if_index_hex": "0x01040200",
      "codepage": 273, "codepage_name": "germany", "flags": 536870912, "flags_hex": "0x20000000", "type": "005570",
      "model": "009", "manufacturer": "AC", "plant": "12", "sequence": "000000D00417", "tag": 16, "tag_hex": "0x0010"}])"));
}

TEST_F(Folders, DiffTellsTheVsanArray) {
  write("array.toml",
        campus_with("change_counter = 7", "change_counter = 7\nport_vsan_array = \"01" + std::string(62, '0') + "\""));
  auto rows = parse_json(run({"diff", "campus.toml", "array.toml", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0]["field"], "VSAN array");
}

TEST_F(Folders, DiffOfTwoKindsOfChassisChecksEachByItsOwn) {
  auto result = run({"diff", CHNSW_SOURCE_DIR "/examples/director-18.toml", CHNSW_SOURCE_DIR "/examples/one-slot.toml"});
  EXPECT_EQ(result.status, 1) << result.err;
  EXPECT_THAT(result.out, HasSubstr("chassis  "));
}

TEST_F(Folders, DiffOfWhatIsNotThere) {
  auto result = run({"diff", "campus.toml", "nowhere.toml"});
  EXPECT_EQ(result.err, "chnsw: nowhere.toml: No such file or directory; expected a chassis file or a switch's folder\n");
  EXPECT_EQ(result.status, 3);
}

TEST_F(Folders, ExportedFileIsTheSameSwitch) {
  create();
  ASSERT_EQ(in_folder({"set", "port", "fc5/3", "--pa", "2F"}).status, 0);
  write("exported.toml", in_folder({"export"}).out);
  EXPECT_EQ(run({"diff", "exported.toml", "folder"}).status, 0);
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    std::string file = std::string(CHNSW_SOURCE_DIR "/examples/") + name + ".toml";
    write("again.toml", run({"-s", file, "export", "--to", "toml"}).out);
    EXPECT_EQ(run({"diff", file, "again.toml"}).status, 0) << name;
  }
}

TEST_F(Folders, ExportAsJsonHoldsEverything) {
  auto whole = parse_json(ask({"export", "--to", "json"}).out);
  EXPECT_EQ(whole["name"], "campus");
  EXPECT_EQ(whole["ports"].size(), 15u);
  EXPECT_EQ(whole["ports"][8]["interface"], "fc2/1");
  EXPECT_EQ(whole["ports"][8]["pn_hex"], "0x30");
  EXPECT_EQ(whole["bindings"][1]["interface"], "fcip3");
  EXPECT_EQ(whole["addresses"][0]["pn"], 0);
  EXPECT_EQ(whole["logical_interfaces"][0]["members"], nlohmann::json({"fc5/1", "fc5/2"}));
}

TEST_F(Folders, ExportAsCsvIsThePortMap) {
  EXPECT_EQ(ask({"export", "--to", "csv"}).out, ask({"map", "--format", "csv"}).out);
  EXPECT_EQ(ask({"export", "--format", "csv"}).out, ask({"map", "--format", "csv"}).out);
  EXPECT_EQ(ask({"export", "--to", "xml"}).status, 2);
}

// ---- watch ----

TEST_F(Folders, WatchSeesAChangeOfAnotherProcess) {
  create();
  pid_t watch = start("watch", {"-s", "folder", "watch", "--count", "2", "--interval", "0.02"});
  while (read("out_watch").find("change counter 7\n") == std::string::npos)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_EQ(in_folder({"set", "port", "fc5/3", "--pa", "2F"}).status, 0);
  EXPECT_EQ(wait_for(watch), 0);
  std::string out = read("out_watch");
  EXPECT_THAT(out, HasSubstr("folder  change counter 7\n\nINDEX   PN  PA "));
  EXPECT_THAT(out, HasSubstr("\nfolder  change counter 8\n\nINDEX   PN  PA "));
  EXPECT_THAT(out, testing::EndsWith("\nCHANGE  WHERE              FIELD          BEFORE  AFTER\n"
                                     "     8  index 510 (fc5/3)  pa             30      2F\n"
                                     "     8  PA 2F              pn of address  -       96\n"
                                     "     8  PA 30              pn of address  96      -\n"));
  EXPECT_THAT(out, testing::Not(HasSubstr("\x1B"))); // a file is not cleared like a terminal
}

TEST_F(Folders, WatchInterruptedStillEndsItsDocument) {
  create();
  pid_t watch = start("watch", {"-s", "folder", "--format", "json", "watch", "--interval", "0.02"});
  while (read("out_watch").empty()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_EQ(in_folder({"set", "port", "fc5/3", "--vsan", "10"}).status, 0);
  while (read("out_watch").find("vsan") == std::string::npos) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ::kill(watch, SIGINT);
  EXPECT_EQ(wait_for(watch), 0);
  auto rows = parse_json(read("out_watch"));
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0]["change_counter"], 8);
  EXPECT_EQ(rows[0]["field"], "vsan");
  EXPECT_EQ(rows[0]["before"], 20);
  EXPECT_EQ(rows[0]["after"], 10);
}

TEST_F(Folders, WatchEndsWhenTheChassisIsReplaced) {
  create();
  pid_t watch = start("watch", {"-s", "folder", "watch", "--interval", "0.02"});
  while (read("out_watch").empty()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_EQ(run({"create", "folder", CHNSW_SOURCE_DIR "/examples/director-18.toml"}).status, 0);
  EXPECT_EQ(wait_for(watch), 3);
  EXPECT_EQ(read("err_watch"), "chnsw: the switch was replaced by one with another chassis; start watch again\n");
}

TEST_F(Folders, WatchEndsWhenTheFolderIsRemoved) {
  create();
  pid_t watch = start("watch", {"-s", "folder", "--format", "json", "watch", "--interval", "0.02"});
  while (read("out_watch").empty()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_EQ(shell("rm -r folder").status, 0);
  EXPECT_EQ(wait_for(watch), 3);
  EXPECT_EQ(read("err_watch"), "chnsw: folder: the switch was removed\n");
  EXPECT_EQ(parse_json(read("out_watch")), nlohmann::json::array());
}

// What was there before would never change again.
TEST_F(Folders, WatchEndsWhenTheFolderIsRemovedAndMadeAnew) {
  create();
  ASSERT_EQ(run({"create", "other", "campus.toml"}).status, 0);
  pid_t watch = start("watch", {"-s", "folder", "watch", "--interval", "0.02"});
  while (read("out_watch").empty()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_EQ(shell("mv other/data.mdb folder/data.mdb").status, 0);
  EXPECT_EQ(wait_for(watch), 3);
  EXPECT_EQ(read("err_watch"), "chnsw: folder: the switch was removed and made anew; start watch again\n");
}

TEST_F(Folders, WatchNeedsAFolderAndASensibleInterval) {
  EXPECT_EQ(
      ask({"watch"}).err,
      "chnsw: campus.toml is a chassis file: it does not change by itself; watch needs a switch's folder (chnsw create)\n");
  create();
  EXPECT_EQ(in_folder({"watch", "--interval", "0"}).status, 2);
  EXPECT_EQ(in_folder({"watch", "--interval", "nan"}).status, 2);
}

// Commands at their limits: odd values, output that cannot be written, readers and switches that go away. All work on a folder
// "s".
class FolderCommands : public tool_test {
 protected:
  FolderCommands() {
    write("campus.toml", kCampus);
    EXPECT_EQ(run({"create", "s", "campus.toml"}).status, 0);
  }
};

TEST_F(FolderCommands, NumberThatMeansNoneIsRefused) {
  auto address = run({"-s", "s", "set", "port", "fc1/1", "--pa", "200"});
  EXPECT_EQ(address.err,
            "chnsw: port address \"200\" is 512, which the port map takes for no number; write none if you mean that\n");
  EXPECT_EQ(address.status, 2);
  EXPECT_EQ(run({"-s", "s", "set", "port", "fc1/1", "--pn", "512"}).status, 2);
  EXPECT_EQ(parse_json(run({"-s", "s", "info", "--format", "json"}).out)["change_counter"], 7);
}

TEST_F(FolderCommands, ChangeIsToldEvenWhenTheResultCannotBeWritten) {
  auto result = shell("chnsw -s s set port fc1/1 --pa 40 > /dev/full");
  EXPECT_THAT(result.err, testing::HasSubstr("chnsw: the change was made, the change counter is 8\n"));
  EXPECT_EQ(result.status, 3);
}

TEST_F(FolderCommands, WatchEndsWhenItsReaderGoesAway) {
  auto result = shell("chnsw -s s watch --interval 0.05 | head -1 > first; echo ${PIPESTATUS[0]}");
  EXPECT_EQ(result.out, "3\n");
}

TEST_F(FolderCommands, WatchOfANegativeCountIsRefused) {
  EXPECT_EQ(run({"-s", "s", "watch", "--count", "-1"}).status, 2);
}

TEST_F(FolderCommands, WatchThatEndsOnAnErrorLeavesAWholeDocument) {
  write("other.toml", "[chassis]\nslots = 1\ntype = 27\n");
  pid_t watch = start("w", {"-s", "s", "watch", "--format", "json", "--interval", "0.05"});
  while (read("out_w").empty()) usleep(1000);
  EXPECT_EQ(run({"create", "s", "other.toml"}).status, 0);
  EXPECT_EQ(wait_for(watch), 3);
  EXPECT_EQ(parse_json(read("out_w")), nlohmann::json::array());
}

} // namespace
} // namespace chnsw_test
