// The four forms of a result.
#include "tool_test.h"

namespace chnsw_test {
namespace {

class Format : public tool_test {};

TEST_F(Format, JsonHasNumbersWithTheirHexadecimalText) {
  EXPECT_EQ(ask({"pa", "F0", "--format", "json"}).out, R"([
  {
    "pn": 240,
    "pn_hex": "0xF0",
    "pa": 240,
    "pa_hex": "0xF0",
    "slot": null,
    "port": null,
    "index": 1024,
    "if_index": 67108865,
    "if_index_hex": "0x04000001",
    "interface": "port-channel1",
    "phyif_index": 67108865,
    "phyif_index_hex": "0x04000001",
    "phyif": "port-channel1",
    "vsans": [
      10
    ],
    "port_vsan": 10,
    "asked_vsan": null,
    "status": {
      "code": 0,
      "hex": "0x00000000",
      "name": "OK"
    },
    "if_status": {
      "code": 0,
      "hex": "0x00000000",
      "name": "OK"
    },
    "phyif_status": {
      "code": 0,
      "hex": "0x00000000",
      "name": "OK"
    }
  }
]
)");
}

TEST_F(Format, JsonLinesAreOneObjectALine) {
  auto rows = parse_json_lines(ask({"pn", "0-2", "--format", "jsonl"}).out);
  ASSERT_EQ(rows.size(), 3u);
  EXPECT_EQ(rows[2]["interface"], "fc1/3");
}

TEST_F(Format, CsvNamesItsFieldsAndLeavesMissingOnesEmpty) {
  EXPECT_EQ(
      ask({"pa", "2", "--format", "csv"}).out,
      "pn,pn_hex,pa,pa_hex,slot,port,index,if_index,if_index_hex,interface,phyif_index,phyif_index_hex,phyif,vsans,"
      "port_vsan,asked_vsan,status,status_hex,status_name,if_status,if_status_hex,if_status_name,phyif_status,"
      "phyif_status_hex,phyif_status_name\n"
      ",,2,0x02,,,,,,,,,,,,,1082458194,0x40850052,FICON_RC_MULTI_IF,1082458194,0x40850052,FICON_RC_MULTI_IF,1082458194,"
      "0x40850052,FICON_RC_MULTI_IF\n");
}

TEST_F(Format, CsvQuotesWhatNeedsIt) {
  write("names.toml", campus_with("name = \"channels\"", "name = \"channels, \\\"A\\\"\\nand B\""));
  auto rows = parse_csv(run({"-s", "names.toml", "info", "--format", "csv"}).out);
  EXPECT_THAT(rows, testing::Contains(std::vector<std::string>{"line_cards.0.name", "channels, \"A\"\nand B"}));
}

TEST_F(Format, ControlCharactersOfNamesDoNotReachATerminal) {
  write("names.toml", campus_with("name = \"channels\"", "name = \"\\u001b[31mred\""));
  auto result = run({"-s", "names.toml", "info"});
  EXPECT_THAT(result.out, testing::HasSubstr("\\x1B[31mred\n"));
  EXPECT_THAT(result.out, testing::Not(testing::HasSubstr("\x1B")));
}

TEST_F(Format, EveryCommandIsOneValidDocumentInEveryForm) {
  ASSERT_EQ(run({"create", "folder", "campus.toml"}).status, 0);
  const std::vector<std::vector<std::string>> commands = {{"pa", "0-3"},
                                                          {"pn", "all"},
                                                          {"if", "all"},
                                                          {"slot", "1"},
                                                          {"index", "0-9"},
                                                          {"map"},
                                                          {"vsan", "all"},
                                                          {"logical"},
                                                          {"next", "fc1/1"},
                                                          {"last", "fc1/1"},
                                                          {"next", "fc1/1", "--all"},
                                                          {"default"},
                                                          {"default", "--verdict"},
                                                          {"default", "--slot", "1"},
                                                          {"default", "--logical"},
                                                          {"info"},
                                                          {"check"},
                                                          {"check", "--notes"},
                                                          {"front"},
                                                          {"diff", "campus.toml", "folder"},
                                                          {"export"},
                                                          {"watch", "--count", "1"},
                                                          {"set", "port", "fc1/1", "--pa", "0"}};
  for (const auto& command : commands) {
    for (const char* form : {"json", "jsonl", "csv"}) {
      std::vector<std::string> arguments = {"-s", "folder", "--format", form};
      arguments.insert(arguments.end(), command.begin(), command.end());
      auto result = run(arguments);
      SCOPED_TRACE(command[0] + " as " + form);
      EXPECT_LE(result.status, 1) << result.err;
      if (form == std::string("json")) {
        EXPECT_TRUE(parse_json(result.out).is_structured());
      } else if (form == std::string("jsonl")) {
        for (const auto& row : parse_json_lines(result.out)) EXPECT_TRUE(row.is_object());
      } else {
        auto rows = parse_csv(result.out);
        ASSERT_FALSE(rows.empty());
        for (const auto& row : rows) EXPECT_EQ(row.size(), rows[0].size());
      }
    }
  }
}

TEST_F(Format, NothingFoundIsAnEmptyDocument) {
  EXPECT_EQ(ask({"vsan", "77", "--format", "json"}).out, "[]\n");
  EXPECT_EQ(ask({"vsan", "77", "--format", "jsonl"}).out, "");
  EXPECT_EQ(ask({"vsan", "77", "--format", "csv"}).out,
            "vsan,pn,pn_hex,pa,pa_hex,slot,port,index,if_index,if_index_hex,interface,bound\n");
  auto table = ask({"vsan", "77"});
  EXPECT_EQ(table.out, "VSAN  PN  PA  SLOT/PORT  INDEX  IF-INDEX  INTERFACE  BOUND\n");
  EXPECT_EQ(table.status, 1);
}

} // namespace
} // namespace chnsw_test
