// The port map as lists, the walks, the default numbering, the chassis.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Lists : public tool_test {};

TEST_F(Lists, MapShowsWhatHoldsAnything) {
  EXPECT_EQ(ask({"map"}).out,
            "INDEX   PN  PA  VSANS  VSAN  SLOT/PORT    IF-INDEX  INTERFACE      THERE  PORT-CHANNEL\n"
            "    0    0  00  10       10  1/1        0x01000000  fc1/1          yes               -\n"
            "    1    1  01  10       10  1/2        0x01000100  fc1/2          yes               -\n"
            "    2    2  02  10       10  1/3        0x01000200  fc1/3          yes               -\n"
            "    3    3  03  10       10  1/4        0x01000300  fc1/4          yes               -\n"
            "    4    4  10  10,20    10  1/5        0x01000400  fc1/5          yes               -\n"
            "    5    5  11  10,20    10  1/6        0x01000500  fc1/6          yes               -\n"
            "    6    6  12  10,20    10  1/7        0x01000600  fc1/7          yes               -\n"
            "    7    7  13  10,20    10  1/8        0x01000700  fc1/8          yes               -\n"
            "  254   48  00  20       20  2/1        0x01010000  fc2/1          yes               -\n"
            "  255   49  01  20       20  2/2        0x01010100  fc2/2          yes               -\n"
            "  256   50  02  20       20  2/3        0x01010200  fc2/3          yes               -\n"
            "  257   51  03  20       20  2/4        0x01010300  fc2/4          yes               -\n"
            "  258    -   -  -         -  2/5        0x01010400  fc2/5          yes               -\n"
            "  259    -   -  -         -  2/6        0x01010500  fc2/6          yes               -\n"
            "  260    -   -  -         -  2/7        0x01010600  fc2/7          yes               -\n"
            "  261    -   -  -         -  2/8        0x01010700  fc2/8          yes               -\n"
            "  508    -   -  -         -  5/1        0x01040000  fc5/1          yes               1\n"
            "  509    -   -  -         -  5/2        0x01040100  fc5/2          yes               1\n"
            "  510   96  30  20       20  5/3        0x01040200  fc5/3          yes               -\n"
            "  511    -   -  -         -  5/4        0x01040300  fc5/4          yes               -\n"
            " 1024  240  F0  10       10  -          0x04000001  port-channel1  -                 -\n"
            " 1025  241  F1  20       20  -          0x0A000003  fcip3          -                 -\n");
}

TEST_F(Lists, MapOfARangeShowsEmptyEntriesToo) {
  auto rows = parse_json(ask({"map", "--index", "1020-1025", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_EQ(rows[0]["pn"], nullptr);
  EXPECT_EQ(rows[0]["there"], false);
  EXPECT_EQ(rows[4]["pn"], 240);
  EXPECT_EQ(ask({"map", "--index", "1280"}).status, 2);
}

TEST_F(Lists, VsanShowsItsPortsAndWhetherTheyAreBound) {
  write("unbound.toml", campus_with("pa = 0x30\nvsans = [20]", "pa = 0x30\nvsans = [10]\nvsan = 20"));
  auto result = run({"-s", "unbound.toml", "vsan", "20"});
  EXPECT_EQ(result.out,
            "VSAN  PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE  BOUND\n"
            "  20  48  00  2/1          254  0x01010000  fc2/1      yes\n"
            "  20  49  01  2/2          255  0x01010100  fc2/2      yes\n"
            "  20  50  02  2/3          256  0x01010200  fc2/3      yes\n"
            "  20  51  03  2/4          257  0x01010300  fc2/4      yes\n"
            "  20  96  30  5/3          510  0x01040200  fc5/3      no\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Lists, VsanAllIsEveryVsanOfTheSwitch) {
  EXPECT_EQ(parse_json(ask({"vsan", "all", "--format", "json"}).out).size(), 13u);
}

TEST_F(Lists, LogicalInterfacesWithTheirMembers) {
  EXPECT_EQ(ask({"logical"}).out,
            " PN    IF-INDEX  INTERFACE      MEMBERS\n"
            "240  0x04000001  port-channel1  fc5/1 fc5/2\n"
            "241  0x0A000003  fcip3          -\n");
  write("none.toml", "[chassis]\nslots = 1\ntype = 27\n");
  auto none = run({"-s", "none.toml", "logical"});
  EXPECT_EQ(none.out, "PN  IF-INDEX  INTERFACE  MEMBERS\n");
  EXPECT_EQ(none.status, 1);
}

TEST_F(Lists, NextGoesToTheNextCardAtAGap) {
  auto result = ask({"next", "fc1/8"});
  EXPECT_EQ(result.out,
            "FROM   PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE  VSANS  VSAN  STATUS\n"
            "fc1/8  48  00  2/1          254  0x01010000  fc2/1      20       20  OK 0\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Lists, NextAtTheEndOfTheWalkIsNotFound) {
  auto result = ask({"next", "fc5/3"});
  EXPECT_THAT(result.out, HasSubstr("FICON_RC_PLATFORM 0x4085000A"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Lists, NextAllWalksToTheEnd) {
  auto rows = parse_json(ask({"next", "fc1/6", "--all", "--format", "json"}).out);
  std::vector<std::string> names;
  for (const auto& row : rows) names.push_back(row["interface"]);
  // The first port of slot 5 has no number, and only the first port of the next card is tried.
  EXPECT_THAT(names, testing::ElementsAre("fc1/7", "fc1/8", "fc2/1", "fc2/2", "fc2/3", "fc2/4"));
}

TEST_F(Lists, NextAllThatRunsIntoAMemberSaysSo) {
  write("member.toml", campus_with("members = [\"fc5/1-2\"]", "members = [\"fc1/3\"]"));
  auto result = run({"-s", "member.toml", "next", "fc1/1", "--all"});
  EXPECT_THAT(result.out, HasSubstr("fc1/2   2  02  1/3            2  0x01000200  fc1/3      10       10  OK 0\n"));
  EXPECT_THAT(result.out, HasSubstr("FICON_RC_LAG_MEMBER 0x4085001A\n"));
  EXPECT_EQ(result.status, 1);
}

TEST_F(Lists, LastIsTheLastNumberedPortOfTheCard) {
  EXPECT_EQ(parse_json(ask({"last", "fc2/1", "--format", "json"}).out)[0]["interface"], "fc2/4");
  EXPECT_EQ(ask({"last", "fcip3"}).status, 1);
  EXPECT_EQ(ask({"last", "eth0"}).status, 2);
}

TEST_F(Lists, WalksTakeListsAndRanges) {
  auto rows = parse_json(ask({"next", "fc1/1-2,fc2/1", "fc1/8", "--format", "json"}).out);
  std::vector<std::string> names;
  for (const auto& row : rows) names.push_back(row["interface"]);
  EXPECT_THAT(names, testing::ElementsAre("fc1/2", "fc1/3", "fc2/2", "fc2/1"));
  EXPECT_EQ(ask({"next", "fc1/1-2,fc2/1"}).status, 0);
  EXPECT_EQ(ask({"last", "fc1/1-8,fc2/1"}).status, 0);
  EXPECT_EQ(parse_json(ask({"last", "all", "--format", "json"}).out).size(), 22u); // 20 ports, port-channel1, fcip3
}

TEST_F(Lists, NextOfAListIsNotFoundWhenOneHasNoNext) {
  auto result = ask({"next", "fc1/1,fc5/3"});
  EXPECT_THAT(result.out, HasSubstr("fc1/1   1  01  1/2 "));
  EXPECT_THAT(result.out, HasSubstr("FICON_RC_PLATFORM 0x4085000A"));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(ask({"next", "fc5/3,fc1/1"}).status, 1);
}

TEST_F(Lists, NextAllWalksFromEachOfAList) {
  auto rows = parse_json(ask({"next", "fc2/2,fc2/3", "--all", "--format", "json"}).out);
  std::vector<std::string> names;
  for (const auto& row : rows) names.push_back(row["interface"]);
  EXPECT_THAT(names, testing::ElementsAre("fc2/3", "fc2/4", "fc2/4"));
}

TEST_F(Lists, WalkFromBeyondThePortMapIsARowWithoutAnAnswer) {
  write("large.toml", "[chassis]\nslots = 18\ntype = 38\nsupervisors = [9, 10]\n");
  auto result = run({"-s", "large.toml", "next", "fc18/1"});
  EXPECT_THAT(result.err, HasSubstr("fc18/1 is beyond the port map: the library is not asked\n"));
  EXPECT_THAT(result.out, HasSubstr("\nfc18/1 "));
  EXPECT_EQ(result.status, 1);
  auto row = parse_json(run({"-s", "large.toml", "next", "fc18/1", "--format", "json"}).out)[0];
  EXPECT_TRUE(row["interface"].is_null());
  EXPECT_TRUE(row["status"].is_null());
}

// ---- Default numbering ----

const char kTwoSlots[] =
    "[chassis]\nslots = 2\ntype = 1\n\n[[line_card]]\nslot = 1\nports = 32\n\n[[line_card]]\nslot = 2\nports = 32\n\n"
    "[[port]]\ninterface = \"fc1/1-32\"\npn = 0\n\n[[port]]\ninterface = \"fc2/1-32\"\npn = 32\n\n"
    "[[port]]\nindex = \"1024-1037\"\npn = 64\n";

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  return text.replace(text.find(what), what.size(), with);
}

TEST_F(Lists, DefaultMapIsToldAsSuch) {
  write("two.toml", kTwoSlots);
  auto result = run({"-s", "two.toml", "default", "--verdict"});
  EXPECT_EQ(result.out,
            "DEFAULT  CAN BE  DIFFERS AT INDEX  SLOT/PORT  DEFAULT PN  MAP PN\n"
            "yes      yes     -                 -          -           -\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(Lists, FirstDifferenceFromTheDefault) {
  write("two.toml", replaced(kTwoSlots, "interface = \"fc2/1-32\"\npn = 32", "interface = \"fc2/2-32\"\npn = 33"));
  auto result = run({"-s", "two.toml", "default", "--verdict"});
  EXPECT_EQ(result.out,
            "DEFAULT  CAN BE  DIFFERS AT INDEX  SLOT/PORT  DEFAULT PN  MAP PN\n"
            "no       yes                  254  2/1                32  -\n");
  EXPECT_EQ(result.status, 1);
}

TEST_F(Lists, DifferenceWhereTheLibraryDoesNotLookIsNone) {
  // Entries 508 to 1023 belong to no line card of a two-slot chassis.
  write("two.toml", std::string(kTwoSlots) + "\n[[port]]\nindex = 700\npn = 9\n");
  EXPECT_EQ(run({"-s", "two.toml", "default", "--verdict"}).status, 0);
  write("both.toml", replaced(std::string(kTwoSlots) + "\n[[port]]\nindex = 700\npn = 9\n", "\"1024-1037\"\npn = 64",
                              "\"1024-1037\"\npn = 65"));
  auto verdict = parse_json(run({"-s", "both.toml", "default", "--verdict", "--format", "json"}).out)[0];
  EXPECT_EQ(verdict["first_difference"], 1024);
  EXPECT_EQ(verdict["default_pn"], 64);
  EXPECT_EQ(verdict["map_pn"], 65);
}

TEST_F(Lists, ChassisWhoseOwnLayoutIsNeverTheDefault) {
  write("ten.toml", "[chassis]\nslots = 10\ntype = 32\nsupervisors = [5, 6]\n\n[[line_card]]\nslot = 1\nports = 48\n");
  auto result = run({"-s", "ten.toml", "default", "--verdict", "--format", "json"});
  auto verdict = parse_json(result.out)[0];
  EXPECT_EQ(verdict["can_be_default"], false);
  EXPECT_THAT(std::string(verdict["why"]), HasSubstr("the library never calls a map of this chassis the default"));
  // What the library prints by itself is no part of the result.
  EXPECT_EQ(result.err, "chassis_type: 32\nnum_slots:    10\n");
}

TEST_F(Lists, DefaultLayoutStandsBesideTheMap) {
  write("two.toml", kTwoSlots);
  auto rows = parse_json(run({"-s", "two.toml", "default", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 78u);
  EXPECT_EQ(rows[32]["index"], 254);
  EXPECT_EQ(rows[32]["default_pn"], 32);
  EXPECT_EQ(rows[32]["map_pn"], 32);
  EXPECT_EQ(rows[77]["index"], 1037);
  EXPECT_EQ(rows[77]["default_pn"], 77);
}

TEST_F(Lists, DefaultOfTheWidestChassisReachesBeyondThePortMap) {
  write("wide.toml", "[chassis]\nslots = 18\ntype = 1\nsupervisors = [9, 10]\n");
  auto rows = parse_json(run({"-s", "wide.toml", "default", "--format", "json"}).out);
  EXPECT_EQ(rows.back()["index"], 3317);
  EXPECT_EQ(rows.back()["default_pn"], 223);
  EXPECT_EQ(rows.back()["map_pn"], nullptr);
}

TEST_F(Lists, DefaultOfASlotAndWithoutAPort) {
  auto slot = parse_json(ask({"default", "--slot", "2", "--format", "json"}).out);
  ASSERT_EQ(slot.size(), 48u);
  EXPECT_EQ(slot[0]["default_pn"], 48);
  EXPECT_EQ(slot[0]["port"], 1);
  auto logical = parse_json(ask({"default", "--logical", "--format", "json"}).out);
  ASSERT_EQ(logical.size(), 14u);
  EXPECT_EQ(logical[13]["default_pn"], 253);
  auto supervisor = ask({"default", "--slot", "3"});
  EXPECT_THAT(supervisor.out, HasSubstr("FICON_RC_INVALID_ARG 0x40850003"));
  EXPECT_EQ(supervisor.status, 1);
}

// ---- Chassis ----

TEST_F(Lists, InfoTellsTheChassis) {
  auto result = ask({"info"});
  EXPECT_EQ(result.out,
            "name                 campus\n"
            "switch               campus.toml\n"
            "slots                6\n"
            "type                 34\n"
            "supervisors in slots 3, 4\n"
            "platform record      00 00 06 00 00 00 00 00\n"
            "highest port number  253\n"
            "change counter       7\n"
            "\n"
            "Line cards\n"
            "SLOT  LINE CARD  PORTS  NAME\n"
            "   1          0      8  channels\n"
            "   2          1      8  -\n"
            "   5          2      4  -\n"
            "\n"
            "VSANs\n"
            "VSAN  PORTS  NAME\n"
            "  10      8  production\n"
            "  20      5  -\n"
            "\n"
            "Logical interfaces\n"
            "INTERFACE        IF-INDEX  MEMBERS\n"
            "port-channel1  0x04000001  fc5/1 fc5/2\n"
            "fcip3          0x0A000003  -\n");
}

TEST_F(Lists, InfoAsDataHasTheSame) {
  auto info = parse_json(ask({"info", "--format", "json"}).out);
  EXPECT_EQ(info["highest_port_number"], 253);
  EXPECT_EQ(info["max_ficon_ports"], 254);
  EXPECT_EQ(info["change_counter"], 7);
  EXPECT_EQ(info["line_cards"][2]["line_card"], 2);
  EXPECT_EQ(info["vsans"][0]["ports"], 8);
}

TEST_F(Lists, InfoTellsTheNodes) {
  write("nodes.toml", std::string(kCampus) +
                          "\n[[node]]\ninterface = \"port-channel1\"\n\n[[node]]\ninterface = \"fc5/3\"\ncodepage = 273\n"
                          "flags = 0x20000000\ntype = \"5570\"\nmodel = \"9\"\nmanufacturer = \"AC\"\nplant = \"12\"\n"
                          "sequence = \"D00417\"\ntag = 0x10\n");
  auto result = run({"-s", "nodes.toml", "info"});
  EXPECT_THAT(result.out,
              testing::EndsWith(
                  "\n\nNodes\n"
                  "INTERFACE      TYPE    MODEL  MANUFACTURER  PLANT  SEQUENCE         TAG       FLAGS  CODE PAGE\n"
                  "fc5/3          005570  009    AC            12     000000D00417  0x0010  0x20000000        273\n"
                  "port-channel1  000000  000    -             -      000000000000  0x0000  0x00000000         37\n"));
  auto nodes = parse_json(run({"-s", "nodes.toml", "info", "--format", "json"}).out)["nodes"];
  ASSERT_EQ(nodes.size(), 2u);
  EXPECT_EQ(nodes[0]["codepage_name"], "germany");
  EXPECT_EQ(nodes[0]["sequence"], "000000D00417");
  EXPECT_EQ(nodes[1]["if_index_hex"], "0x04000001");
  EXPECT_EQ(nodes[1]["plant"], "");
}

TEST_F(Lists, VsanAllHasThoseThatOnlyTheMapNames) {
  write("changed.toml", campus_with("pa = 0x30\nvsans = [20]", "pa = 0x30\nvsans = [77]"));
  auto result = run({"-s", "changed.toml", "vsan", "all", "--format", "csv"});
  EXPECT_THAT(result.out, testing::HasSubstr("\n77,"));
  EXPECT_EQ(result.status, 0);
}

TEST_F(Lists, MapWithoutMemoryIsAFailureAndNoMap) {
  write("campus.toml", kCampus);
  auto result = run({"-s", "campus.toml", "map", "--index", "0,1024"}, {{"CHNSW_REFUSE_ALLOC", "206/3:1"}});
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, testing::HasSubstr("chnsw: the library was refused memory: FICON_RC_NO_MEMORY 0x00000001\n"));
  EXPECT_EQ(result.status, 3);
}

TEST_F(Lists, ControlCharactersOfANameAreShownAsNumbers) {
  write("changed.toml", campus_with("name = \"channels\"", "name = \"a\\u001Bb\\u009Bc\""));
  auto result = run({"-s", "changed.toml", "info"});
  EXPECT_THAT(result.out, testing::HasSubstr("a\\x1Bb\\x9Bc\n"));
}

} // namespace
} // namespace chnsw_test
