// Questions about a port, from every side.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Resolve : public tool_test {};

TEST_F(Resolve, AddressInVsanNamesTheWholeRow) {
  auto result = ask({"pa", "2", "--vsan", "20"});
  EXPECT_EQ(result.out,
            "PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE  PHYSICAL  VSANS  VSAN  STATUS\n"
            "50  02  2/3          256  0x01010200  fc2/3      fc2/3     20       20  OK 0\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Resolve, SharedAddressWithoutVsanIsAmbiguous) {
  auto result = ask({"pa", "2"});
  EXPECT_EQ(result.out,
            "PN  PA  SLOT/PORT  INDEX  IF-INDEX  INTERFACE  PHYSICAL  VSANS  VSAN  STATUS\n"
            "-   02  -          -      -         -          -         -      -     FICON_RC_MULTI_IF 0x40850052\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, AddressDigitsAreHexadecimal) {
  EXPECT_EQ(parse_json(ask({"--format", "json", "pa", "10"}).out)[0]["pa"], 16);
  EXPECT_EQ(parse_json(ask({"--format", "json", "pa", "0x10"}).out)[0]["pa"], 16);
}

TEST_F(Resolve, NumberDigitsAreDecimalAndPrefixMakesThemHexadecimal) {
  EXPECT_EQ(parse_json(ask({"--format", "json", "pn", "48"}).out)[0]["pa"], 0);
  EXPECT_EQ(parse_json(ask({"--format", "json", "pn", "0x30"}).out)[0]["pn"], 48);
}

TEST_F(Resolve, ListAndRangeAreAnsweredInTheirOrder) {
  auto result = ask({"pn", "50-51,0", "240"});
  EXPECT_EQ(result.out,
            " PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE      PHYSICAL       VSANS  VSAN  STATUS\n"
            " 50  02  2/3          256  0x01010200  fc2/3          fc2/3          20       20  OK 0\n"
            " 51  03  2/4          257  0x01010300  fc2/4          fc2/4          20       20  OK 0\n"
            "  0  00  1/1            0  0x01000000  fc1/1          fc1/1          10       10  OK 0\n"
            "240  F0  -           1024  0x04000001  port-channel1  port-channel1  10       10  OK 0\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Resolve, OneThatIsNotFoundMakesTheWholeListNotFound) {
  auto result = ask({"pn", "0,47"});
  EXPECT_THAT(result.out, HasSubstr(" 0  00  1/1 "));
  EXPECT_THAT(result.out, HasSubstr("47   -  -              -           -  -          -         -         -  "
                                    "FICON_RC_PLATFORM 0x4085000A\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, AllAddressesAreThoseThatTheChassisHas) {
  auto rows = parse_json_lines(ask({"--format", "jsonl", "pa", "all", "--vsan", "10"}).out);
  ASSERT_EQ(rows.size(), 254u); // highest port number 253
  EXPECT_EQ(rows.front()["pa"], 0);
  EXPECT_EQ(rows.back()["pa"], 253);
}

TEST_F(Resolve, AddressBeyondTheChassisAndControlUnitPortHaveStatusesOfTheirOwn) {
  auto rows = parse_json(ask({"--format", "json", "pa", "FE-FF"}).out);
  EXPECT_EQ(rows[0]["status"]["name"], "FICON_RC_PLATFORM");
  EXPECT_EQ(rows[0]["pn"], nullptr);
  EXPECT_EQ(rows[1]["status"]["name"], "FICON_RC_PA_RANGE");
  EXPECT_EQ(rows[1]["status"]["code"], 0x40850018);
  EXPECT_EQ(rows[1]["status"]["hex"], "0x40850018");
}

TEST_F(Resolve, FastFormsAnswerTheSame) {
  for (const char* question : {"pa", "pn"}) {
    auto plain = ask({question, "all", "--vsan", "20", "--format", "csv"});
    auto fast = ask({question, "all", "--vsan", "20", "--format", "csv", "--fast"});
    EXPECT_EQ(plain.out, fast.out);
    EXPECT_EQ(plain.status, fast.status);
    EXPECT_EQ(parse_csv(fast.out).size(), 255u);
  }
}

TEST_F(Resolve, AmbiguityInTheVsanStillHandsTheLowestNumberBack) {
  // Both ports are in VSAN 30, and neither is bound to it.
  write("unbound.toml", campus_with("interface = \"fc2/1-4\"\npn = 48\npa = 0x00\nvsans = [20]",
                                    "interface = \"fc2/1-4\"\npn = 48\npa = 0x00\nvsans = [20]\nvsan = 30\n\n[[port]]\n"
                                    "index = 508\npn = 90\npa = 0x00\nvsans = [20]\nvsan = 30"));
  auto row = parse_json(run({"-s", "unbound.toml", "--format", "json", "pa", "0", "--vsan", "30"}).out)[0];
  EXPECT_EQ(row["status"]["name"], "FICON_RC_MULTI_IF");
  EXPECT_EQ(row["pn"], 48);
  EXPECT_EQ(row["index"], 254);
}

TEST_F(Resolve, NumberWithoutInterfaceTellsWhereItStands) {
  write("reserved.toml", campus_with("[[binding]]\npn = 241\ninterface = \"fcip3\"\n", ""));
  auto result = run({"-s", "reserved.toml", "pa", "F1"});
  EXPECT_EQ(result.out,
            " PN  PA  SLOT/PORT  INDEX  IF-INDEX  INTERFACE  PHYSICAL  VSANS  VSAN  STATUS\n"
            "241  F1  -           1025  -         -          -         20       20  if: FICON_RC_NO_IF 0x4085004A\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, InterfaceByNameRangeAndIndex) {
  auto result = ask({"if", "fc2/3-4,fcip3", "0x01000000"});
  EXPECT_EQ(result.out,
            " PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE  PHYSICAL  VSANS  VSAN  STATUS\n"
            " 50  02  2/3          256  0x01010200  fc2/3      fc2/3     20       20  OK 0\n"
            " 51  03  2/4          257  0x01010300  fc2/4      fc2/4     20       20  OK 0\n"
            "241  F1  -           1025  0x0A000003  fcip3      -         20       20  OK 0\n"
            "  0  00  1/1            0  0x01000000  fc1/1      fc1/1     10       10  OK 0\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Resolve, MemberOfAPortChannelIsToldAsSuch) {
  auto result = ask({"if", "fc5/1"});
  EXPECT_EQ(result.out,
            "PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE  PHYSICAL  VSANS  VSAN  STATUS\n"
            "-   -   5/1          508  0x01040000  fc5/1      -         -      -     FICON_RC_LAG_MEMBER 0x4085001A\n");
  EXPECT_EQ(result.err, "FICON_ERR: if_index 0x1040000 is a port thats part of port-channel\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, SkippingTheMemberCheckAnswersAMemberLikeAnyPort) {
  auto row = parse_json(ask({"--format", "json", "if", "fc5/1", "--skip-lag-check"}).out)[0];
  EXPECT_EQ(row["status"]["code"], 0);
  EXPECT_EQ(row["index"], 508);
  EXPECT_EQ(row["phyif_status"]["name"], "FICON_RC_LAG_MEMBER");
}

TEST_F(Resolve, PortWithoutNumbersIsNotFoundAlthoughTheLibraryIsContent) {
  auto result = ask({"if", "fc2/5"});
  EXPECT_THAT(result.out, HasSubstr("-   -   2/5          258  0x01010400  fc2/5      fc2/5     -      -     OK 0\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, InterfaceThatTheSwitchDoesNotHave) {
  auto row = parse_json(ask({"--format", "json", "if", "mgmt0"}).out)[0];
  EXPECT_EQ(row["status"]["name"], "IF_INDEX_UNKNOWN"); // the platform's status, passed on by the library
  EXPECT_EQ(row["status"]["hex"], "0x40480002");
}

TEST_F(Resolve, InterfaceThatFiconDoesNotKnow) {
  write("managed.toml", campus_with("name = \"fcip3\"\n", "name = \"fcip3\"\n\n[[interface]]\nname = \"mgmt0\"\n"));
  auto result = run({"-s", "managed.toml", "--format", "json", "if", "mgmt0"});
  EXPECT_EQ(parse_json(result.out)[0]["status"]["name"], "FICON_RC_NOT_FC_PORT");
  EXPECT_EQ(result.err, "FICON_ERR: if_index 0x2000000 not fc port. type = 2\n");
}

TEST_F(Resolve, PortThatIsNotThereIsNoAnswerAlthoughTheLibraryIsContent) {
  auto result = ask({"--format", "json", "if", "fc2/9", "--explain"});
  auto row = parse_json(result.out)[0];
  EXPECT_EQ(row["status"]["code"], 0);
  EXPECT_EQ(row["pn"], nullptr);
  EXPECT_EQ(row["explanation"][0]["rule"],
            "its port-channel cannot be told (LAGMAP_UNKNOWN_PORT 0x40470002), which counts as success without a result");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, RefusedMemoryIsAFailureOfThePlatform) {
  for (const std::vector<std::string>& question : {std::vector<std::string>{"pa", "10"},
                                                   {"pn", "5"},
                                                   {"if", "fc1/1"},
                                                   {"slot", "1/1"},
                                                   {"index", "0"},
                                                   {"next", "fc1/1"},
                                                   {"map"},
                                                   {"vsan", "10"},
                                                   {"logical"},
                                                   {"check"},
                                                   {"default"},
                                                   {"front"}}) {
    for (const char* refused : {"206/5:*", "206/3:*"}) {
      std::vector<std::string> arguments = {"-s", "campus.toml"};
      arguments.insert(arguments.end(), question.begin(), question.end());
      auto result = run(arguments, {{"CHNSW_REFUSE_ALLOC", refused}});
      if (result.status == 0 && refused == std::string("206/3:*")) continue; // does without the interface table
      EXPECT_EQ(result.status, 3) << question[0] << " " << refused;
      EXPECT_EQ(result.out, "");
      EXPECT_THAT(result.err, HasSubstr("Warning! Malloc Failure in "));
    }
  }
}

TEST_F(Resolve, SlotAndPortCountFromOne) {
  auto row = parse_json(ask({"--format", "json", "slot", "2/1"}).out)[0];
  EXPECT_EQ(row["index"], 254);
  EXPECT_EQ(row["interface"], "fc2/1");
  EXPECT_EQ(row["pn"], 48);
}

TEST_F(Resolve, SlotAloneMeansItsWholeCard) {
  EXPECT_EQ(parse_json(ask({"--format", "json", "slot", "5"}).out).size(), 4u);
  EXPECT_EQ(parse_json(ask({"--format", "json", "slot", "all"}).out).size(), 20u);
}

TEST_F(Resolve, SupervisorSlotIsRefusedByTheLibrary) {
  auto row = parse_json(ask({"--format", "json", "slot", "3/1"}).out)[0];
  EXPECT_EQ(row["status"]["name"], "FICON_RC_INVALID_ARG");
  EXPECT_EQ(row["pn"], nullptr);
}

TEST_F(Resolve, IndexesUpToTheLastAndBeyond) {
  auto rows = parse_json(ask({"--format", "json", "index", "0,1024,1026,1280"}).out);
  EXPECT_EQ(rows[0]["interface"], "fc1/1");
  EXPECT_EQ(rows[1]["interface"], "port-channel1");
  EXPECT_EQ(rows[1]["phyif_status"], nullptr); // not asked: it is no physical index
  EXPECT_EQ(rows[2]["status"]["name"], "FICON_RC_INVALID_ARG");
  EXPECT_EQ(rows[3]["status"]["name"], "FICON_RC_INVALID_ARG");
  EXPECT_EQ(parse_json(ask({"--format", "json", "index", "all"}).out).size(), 1280u);
}

TEST_F(Resolve, IndexWhoseNumberIsBeyondTheTableIsNotAsked) {
  write("high.toml", campus_with("index = 1025\npn = 241", "index = 1025\npn = 4711"));
  auto result = run({"-s", "high.toml", "--format", "json", "index", "1025"});
  EXPECT_EQ(parse_json(result.out)[0]["status"], nullptr);
  EXPECT_EQ(parse_json(result.out)[0]["pn"], 4711);
  EXPECT_EQ(result.err, "chnsw: index 1025 carries port number 4711, beyond the highest, 253: the library is not asked\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Resolve, PortBeyondThePortMapIsNotAsked) {
  write("large.toml", "[chassis]\nslots = 18\ntype = 38\nsupervisors = [9, 10]\n\n[[line_card]]\nslot = 18\nports = 2\n");
  for (const char* command : {"if", "slot"}) {
    auto result = run({"-s", "large.toml", command, command[0] == 'i' ? "fc18/2" : "18/2"});
    EXPECT_THAT(result.out, HasSubstr("not asked"));
    EXPECT_THAT(result.err, HasSubstr("would be at port map index 3811, beyond the last, 1279: the library is not asked"));
    EXPECT_EQ(result.status, 1);
  }
}

TEST_F(Resolve, ChassisThatTheLibraryDoesNotKnowHasOneNumber) {
  write("odd.toml", "[chassis]\nslots = 2\ntype = 1\n\n[[line_card]]\nslot = 1\nports = 2\n");
  EXPECT_EQ(parse_json(run({"-s", "odd.toml", "--format", "json", "pn", "all"}).out).size(), 78u);
  write("unknown.toml", "[chassis]\nslots = 20\ntype = 1\nsupervisors = []\n");
  EXPECT_EQ(parse_json(run({"-s", "unknown.toml", "--format", "json", "pn", "all"}).out).size(), 1u);
}

TEST_F(Resolve, FolderAnswersLikeTheFileThatItWasMadeOf) {
  ASSERT_EQ(run({"create", "folder", "campus.toml"}).status, 0);
  for (std::vector<std::string> question : {std::vector<std::string>{"pa", "all", "--vsan", "10"},
                                            {"pn", "all"},
                                            {"if", "all"},
                                            {"slot", "all"},
                                            {"index", "all"}}) {
    auto from_file = ask(question);
    std::vector<std::string> in_folder = {"--switch", "folder"};
    in_folder.insert(in_folder.end(), question.begin(), question.end());
    EXPECT_EQ(run(in_folder).out, from_file.out);
  }
}

// ---- What was asked for wrongly ----

TEST_F(Resolve, WrongWordsAreToldWithTheirPlace) {
  auto message = [this](const std::vector<std::string>& question) {
    auto result = ask(question);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    return result.err;
  };
  EXPECT_EQ(
      message({"pa", "10-1G,30"}),
      "chnsw: port address \"10-1G,30\", character 4: \"1G\" is not a number; expected a hexadecimal number from 0 to "
      "FFFF, as in C0 or 10-1F,30\n");
  EXPECT_EQ(
      message({"pn", "1,,2"}),
      "chnsw: port number \"1,,2\", character 3: a number is missing; expected a decimal number from 0 to 65535, as in 12 "
      "or 0-47,240\n");
  EXPECT_EQ(
      message({"pn", "C0"}),
      "chnsw: port number \"C0\", character 1: \"C0\" is not a number; expected a decimal number from 0 to 65535, as in 12 "
      "or 0-47,240\n");
  EXPECT_EQ(message({"pa", "1F-10"}), "chnsw: port address \"1F-10\", character 1: the range 1F-10 runs backwards\n");
  EXPECT_EQ(message({"index", "99999999999999999999"}),
            "chnsw: port map index \"99999999999999999999\", character 1: 99999999999999999999 is out of range; expected a "
            "decimal number from 0 to 65535, as in 254 or 0-47,1024\n");
  EXPECT_EQ(
      message({"pa", "0", "--vsan", "4096"}),
      "chnsw: VSAN \"4096\", character 1: 4096 is out of range; expected a decimal number from 0 to 4095, as in 10 or "
      "10,20\n");
  EXPECT_EQ(
      message({"if", "fc1/1,eth0"}),
      "chnsw: interface \"fc1/1,eth0\", character 7: \"eth0\" is not an interface; expected a name like fc3/5, fc3/1-48, "
      "port-channel5, fcip3 or mgmt0, or an index like 0x01020400\n");
  EXPECT_EQ(message({"if", "fc1/4-x"}),
            "chnsw: port \"fc1/4-x\", character 7: \"x\" is not a number; expected a decimal number from 1 to 254, as in "
            "3/5 or 3/1-48\n"
            "");
  EXPECT_EQ(message({"slot", "4"}),
            "chnsw: slot \"4\", character 1: slot 4 has no line card; name a port, as in 4/1, to ask anyway\n");
  EXPECT_EQ(message({"slot", "1/0"}),
            "chnsw: port \"1/0\", character 3: 0 is out of range; expected a decimal number from 1 to 254, as in 3/5 or "
            "3/1-48\n");
}

} // namespace
} // namespace chnsw_test
