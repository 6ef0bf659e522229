// Why: entries, counters and rules, against the library's own trace.
#include "tool_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Explain : public tool_test {
 protected:
  // The explanations of the first row.
  nlohmann::json explain(std::vector<std::string> question) const {
    question.insert(question.end(), {"--explain", "--format", "json"});
    auto rows = parse_json(ask(question).out);
    return rows.empty() ? nlohmann::json() : rows[0]["explanation"];
  }
};

TEST_F(Explain, AddressInVsanShowsEntriesCountersRuleAndTrace) {
  EXPECT_EQ(
      ask({"pa", "2", "--vsan", "20", "--explain"}).out,
      "PN  PA  SLOT/PORT  INDEX    IF-INDEX  INTERFACE  PHYSICAL  VSANS  VSAN  STATUS\n"
      "50  02  2/3          256  0x01010200  fc2/3      fc2/3     20       20  OK 0\n"
      "\n"
      "PA 02 to PN in VSAN 20 (ficon_pmap_get_pa_to_pn_withpvsan, traced)\n"
      "  considered  index 256: PN 50, PA 02, bound to VSAN 20, port in VSAN 20; counts; in the VSAN; bound to it\n"
      "  considered  index 2: PN 2, PA 02, bound to VSAN 10, port in VSAN 10; counts\n"
      "  counters    count 2, bound 1, in VSAN 1\n"
      "  rule        several entries count, and the port of one of them is in the VSAN: its port number is the answer\n"
      "  answer      PN 50, OK 0\n"
      "  trace       ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(50) pa(2) (256) vsans(20 0 0 0 0 0 0 0)\n"
      "  trace       ficon_pmap_get_pa_to_pn_withpvsan(1861) pn(2) pa(2) (2) vsans(10 0 0 0 0 0 0 0)\n"
      "  trace       ficon_pmap_get_pa_to_pn_withpvsan(1890): Count(2) Bound(1) Bound PN(50) Vsan(20) In Vsan(1) gvp(1) "
      "vsan_pn(50)\n"
      "\n"
      "PN 50 to interface in VSAN 20 (ficon_pmap_get_pn_to_if_withpvsan, traced)\n"
      "  considered  index 256: PN 50, PA 02, bound to VSAN 20, port in VSAN 20, fc2/3 0x01010200; counts; in the VSAN; "
      "bound to it\n"
      "  counters    count 1, bound 1, in VSAN 1\n"
      "  rule        one entry counts: its interface is the answer\n"
      "  answer      fc2/3 0x01010200, OK 0\n"
      "  trace       ficon_pmap_get_pn_to_if_withpvsan(2254) pn(50) inst if(0x1010200) vsans(20 0 0 0 0 0 0 0)\n"
      "  trace       ficon_pmap_get_pn_to_if_withpvsan(2286): Count(1) Bound(1) Bound If(0x1010200) Vsan(20) In Vsan(1) "
      "gvp(1) vsan_if(0x1010200)\n"
      "\n"
      "PN 50 to physical interface in VSAN 20 (ficon_pmap_get_pn_to_phyif_withpvsan)\n"
      "  considered  index 256: PN 50, PA 02, bound to VSAN 20, port in VSAN 20, fc2/3 0x01010200; counts; in the VSAN; "
      "bound to it\n"
      "  counters    count 1, bound 1, in VSAN 1\n"
      "  rule        one entry counts: its physical interface is the answer\n"
      "  answer      fc2/3 0x01010200, OK 0\n");
}

TEST_F(Explain, DataHoldsTheSame) {
  auto why = explain({"pa", "2", "--vsan", "20"});
  ASSERT_EQ(why.size(), 3u);
  EXPECT_EQ(why[0]["operation"], "ficon_pmap_get_pa_to_pn_withpvsan");
  EXPECT_EQ(why[0]["source"], "library trace");
  EXPECT_EQ(why[0]["counters"]["count"], 2);
  EXPECT_EQ(why[0]["counters"]["in_vsan"], 1);
  EXPECT_EQ(why[0]["considered"][1]["index"], 2);
  EXPECT_EQ(why[0]["considered"][1]["in_vsan"], false);
  EXPECT_EQ(why[0]["considered"][0]["vsans"], nlohmann::json({20}));
  EXPECT_EQ(why[0]["result"], 50);
  EXPECT_EQ(why[0]["traces"].size(), 3u);
  EXPECT_EQ(why[2]["source"], "tables"); // the library makes no trace of this one
}

TEST_F(Explain, NumberToAddressIsExplainedWithoutATrace) {
  auto why = explain({"pn", "50"})[0];
  EXPECT_EQ(why["translation"], "PN 50 to PA");
  EXPECT_EQ(why["source"], "tables");
  EXPECT_EQ(why["traces"].size(), 0u);
  EXPECT_EQ(why["rule"], "one entry counts: its port address is the answer");
  EXPECT_EQ(why["considered"][0]["index"], 256);
}

TEST_F(Explain, EveryRuleOfTheWalkInWords) {
  EXPECT_EQ(explain({"pa", "FE"})[0]["rule"],
            "254 is the control unit port, which no port carries: it is handed back as it is");
  EXPECT_EQ(explain({"pa", "FF"})[0]["rule"], "the highest address of this chassis is 253");
  EXPECT_EQ(explain({"pa", "77"})[0]["rule"], "no entry counts: not found, and the address itself is handed back");
  EXPECT_EQ(explain({"pa", "2"})[0]["rule"], "several entries count and no VSAN chooses among them: ambiguous");
  EXPECT_EQ(explain({"pa", "2", "--vsan", "30"})[0]["rule"],
            "several entries count, but none of their ports is in the VSAN: not found");
  EXPECT_EQ(explain({"pa", "F0"})[1]["rule"],
            "the port number is bound to an interface directly: that one is the answer, whatever the VSAN");
  EXPECT_EQ(explain({"pn", "300"})[2]["rule"], "the highest number of this chassis is 253");
  EXPECT_EQ(explain({"pn", "77"})[1]["rule"], "no entry counts: not found");
}

TEST_F(Explain, RulesForSeveralPortsInOneVsan) {
  auto rule = [this](const std::string& first_vsans, const std::string& second_vsans) {
    write("several.toml", campus_with("interface = \"fc5/3\"\npn = 96\npa = 0x30\nvsans = [20]",
                                      "interface = \"fc5/3\"\npn = 96\npa = 0x30\nvsans = " + first_vsans +
                                          "\nvsan = 30\n\n[[port]]\ninterface = \"fc5/4\"\npn = 97\npa = 0x30\nvsans = " +
                                          second_vsans + "\nvsan = 30"));
    auto result = run({"-s", "several.toml", "pa", "30", "--vsan", "30", "--explain", "--format", "json"});
    return parse_json(result.out)[0]["explanation"][0]["rule"];
  };
  EXPECT_EQ(rule("[30]", "[20]"),
            "several ports are in the VSAN, and one of them is bound to it: its port number is the answer");
  EXPECT_EQ(rule("[30]", "[30]"), "several ports are in the VSAN and bound to it: ambiguous");
  EXPECT_EQ(
      rule("[10]", "[20]"),
      "several ports are in the VSAN and none is bound to it: ambiguous, and the port number of the lowest index is handed "
      "back with the flag cleared");
  EXPECT_EQ(
      rule("[]", "[20]"),
      "one entry counts, but the lowest one that carries the address answers, counting or not: its port number is the "
      "answer");
}

TEST_F(Explain, WhyAPortDoesNotCount) {
  auto reason = [this](const std::string& text, const std::string& replacement, const std::string& pn) {
    write("changed.toml", campus_with(text, replacement));
    auto result = run({"-s", "changed.toml", "pn", pn, "--explain", "--format", "json"});
    return parse_json(result.out)[0]["explanation"][1]["considered"][0]["passed_over"];
  };
  EXPECT_EQ(reason("pa = 0x30\nvsans = [20]", "pa = 0x30", "96"), "bound to no VSAN");
  EXPECT_EQ(reason("interface = \"fc5/3\"", "interface = \"fc5/1\"", "96"), "fc5/1 is a member of port-channel1");
  EXPECT_EQ(reason("interface = \"fc5/3\"", "index = 600", "96"), "fc5/93 is not there");
  EXPECT_EQ(reason("[[binding]]\npn = 241\ninterface = \"fcip3\"\n", "", "241"), "no interface is bound to the number");
}

TEST_F(Explain, NumberHeldWithoutAPortHasNoPhysicalInterface) {
  write("changed.toml", campus_with("[[binding]]\npn = 241\ninterface = \"fcip3\"\n", ""));
  auto result = run({"-s", "changed.toml", "pn", "241", "--explain", "--format", "json"});
  EXPECT_EQ(parse_json(result.out)[0]["explanation"][2]["rule"],
            "index 1025 holds the port number without a physical port: the answer is no interface");
}

TEST_F(Explain, InterfaceToNumberIsFollowedStepByStep) {
  auto physical = explain({"if", "fc2/3"})[0];
  EXPECT_EQ(physical["found"], nlohmann::json({"a physical port: slot 2, port 3",
                                               "slot 2 is line card 1, counted from 0 without the supervisors"}));
  EXPECT_EQ(physical["rule"], "a port is found at line card x 254 + port - 1: index 256 is the answer");
  EXPECT_EQ(physical["traces"][0], "if_index:0x1010200, slot:2base1, port:3base1, port-number:50\n");

  auto logical = explain({"if", "fcip3"})[0];
  EXPECT_EQ(logical["found"], nlohmann::json({"a logical interface, type 10",
                                              "port number 241 is the first that is bound to the interface"}));
  EXPECT_EQ(logical["rule"], "index 1025 is the first from 1024 on that carries the port number: it is the answer");

  auto member = explain({"if", "fc5/1"})[0];
  EXPECT_EQ(member["rule"], "no port number is bound to the interface: not associated");
  EXPECT_EQ(member["status"]["name"], "FICON_RC_LAG_MEMBER");
}

TEST_F(Explain, SlotAndIndex) {
  EXPECT_EQ(explain({"slot", "2/3"})[0]["rule"], "a port is found at line card x 254 + port - 1: index 256 is the answer");
  EXPECT_EQ(explain({"slot", "3/1"})[0]["rule"], "slot 3 has no line card");
  EXPECT_EQ(explain({"index", "256"})[0]["rule"],
            "the interface follows from slot and port, whether the port is there or not");
  EXPECT_EQ(explain({"index", "256"})[1]["rule"], "the port is there and in no port-channel: it is the answer");
  EXPECT_EQ(explain({"index", "600"})[1]["rule"], "no such port is there");
  EXPECT_EQ(explain({"index", "508"})[1]["rule"], "the port is a member of port-channel1");
  EXPECT_EQ(explain({"index", "1024"})[0]["rule"],
            "an index from 1024 on has the interface that its port number, 240, is bound to");
  EXPECT_EQ(explain({"index", "1100"})[0]["rule"], "an index from 1024 on is found by its port number, and it has none");
  EXPECT_EQ(explain({"index", "1280"})[0]["rule"], "the highest port map index is 1279");
}

// Explanations are worked out apart from the library, and a difference would end the command with status 3.
TEST_F(Explain, AgreesWithTheLibraryOnEveryNumberOfEveryExample) {
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    std::string file = std::string(CHNSW_SOURCE_DIR "/examples/") + name + ".toml";
    for (const char* question : {"pa", "pn"}) {
      for (const char* vsan : {"", "0", "10", "20"}) {
        for (bool fast : {false, true}) {
          std::vector<std::string> arguments = {"-s", file, question, "0-FF", "--explain", "--format", "jsonl"};
          if (question == std::string("pn")) arguments[3] = "0-300";
          if (*vsan != '\0') arguments.insert(arguments.end(), {"--vsan", vsan});
          if (fast) arguments.push_back("--fast");
          auto result = run(arguments);
          EXPECT_LE(result.status, 1) << name << " " << question << ": " << result.err;
          EXPECT_FALSE(result.out.empty());
        }
      }
    }
    for (const char* question : {"if", "slot", "index"})
      EXPECT_LE(run({"-s", file, question, "all", "--explain", "--format", "jsonl"}).status, 1) << name << " " << question;
  }
}

TEST_F(Explain, CsvHoldsTheExplanationInOneField) {
  auto rows = parse_csv(ask({"pn", "50", "--explain", "--format", "csv"}).out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0].back(), "explanation");
  EXPECT_EQ(rows[0].size(), rows[1].size());
  EXPECT_THAT(rows[1].back(), HasSubstr("rule        one entry counts: its port address is the answer\n"));
}

} // namespace
} // namespace chnsw_test
