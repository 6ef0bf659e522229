// install and swap: what the tool shows of them, and what the switch is afterwards.
#include "managed_switch_test.h"

namespace chnsw_test {
namespace {

using testing::HasSubstr;

class Install : public managed_switch_test {
 protected:
  Install() { start_manager(); }
  nlohmann::json map_row(const std::string& index) const {
    return parse_json(in_folder({"map", "--index", index, "--format", "json"}).out)[0];
  }
};
using Swap = Install;

// ---- install ----

TEST_F(Install, OneVsanIsBoundAndTheMapShowsIt) {
  auto result = in_folder({"install", "30", "fc1/1"});
  EXPECT_EQ(result.out,
            "ORDER    VSANS  INTERFACES  STATUS\n"
            "install  30     fc1/1       OK 0\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(map_row("0")["vsans"], nlohmann::json({10, 30}));
  EXPECT_EQ(in_folder({"ask", "vsans"}).out,
            "VSAN  NAME\n"
            "  10  production\n"
            "  20  -\n"
            "  30  -\n");
}

TEST_F(Install, SeveralVsansForListsAndRanges) {
  auto result = in_folder({"install", "30,4000-4001", "fc1/1-2,fc2/1", "fcip3", "--format", "json"});
  EXPECT_EQ(parse_json(result.out), nlohmann::json::parse(R"([{"order": "install", "vsans": [30, 4000, 4001],
                "interfaces": "fc1/1 fc1/2 fc2/1 fcip3", "status": {"code": 0, "hex": "0x00000000", "name": "OK"}}])"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(map_row("0")["vsans"], nlohmann::json({10, 30, 4000, 4001}));
  EXPECT_EQ(map_row("1")["vsans"], nlohmann::json({10, 30, 4000, 4001}));
  EXPECT_EQ(map_row("254")["vsans"], nlohmann::json({20, 30, 4000, 4001}));
  EXPECT_EQ(map_row("1025")["vsans"], nlohmann::json({20, 30, 4000, 4001}));
}

TEST_F(Install, UninstallTakesThemOut) {
  ASSERT_EQ(in_folder({"install", "30,31", "fc1/1-2"}).status, 0);
  auto result = in_folder({"install", "30", "fc1/1", "--uninstall", "--format", "csv"});
  EXPECT_EQ(result.out,
            "order,vsans,interfaces,status,status_hex,status_name\n"
            "uninstall,30,fc1/1,0,0x00000000,OK\n");
  EXPECT_EQ(map_row("0")["vsans"], nlohmann::json({10, 31}));
  EXPECT_EQ(map_row("1")["vsans"], nlohmann::json({10, 30, 31}));
}

TEST_F(Install, InterfaceOutsideThePortMapLeavesAllAsItWas) {
  auto result = in_folder({"install", "30", "fc1/1,fc9/1"});
  EXPECT_EQ(result.out,
            "ORDER    VSANS  INTERFACES   STATUS\n"
            "install  30     fc1/1 fc9/1  FICON_RC_NO_IF 0x4085004A\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(run({"diff", "d", "nodes.toml"}).status, 0);
}

TEST_F(Install, EntryHasNoSlotForANinthVsan) {
  EXPECT_EQ(in_folder({"install", "31-37", "fc1/1"}).status, 0); // eight with VSAN 10
  auto result = in_folder({"install", "38", "fc1/1"});
  EXPECT_THAT(result.out, HasSubstr("FICON_RC_PLATFORM 0x4085000A"));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(map_row("0")["vsans"], nlohmann::json({10, 31, 32, 33, 34, 35, 36, 37}));
}

TEST_F(Install, VsanZeroIsTheManagersToRefuse) {
  for (const char* vsans : {"0", "0,30"}) {
    auto result = in_folder({"install", vsans, "fc1/1"});
    EXPECT_THAT(result.out, HasSubstr("FICON_RC_INVALID_ARG 0x40850003"));
    EXPECT_EQ(result.status, 1);
  }
  EXPECT_EQ(run({"diff", "d", "nodes.toml"}).status, 0);
}

TEST_F(Install, WrongWordsAreStatusTwo) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"install"}, {"install", "30"}, {"install", "fc1/1", "30"}, {"install", "4096", "fc1/1"}}) {
    auto result = in_folder(words);
    EXPECT_EQ(result.status, 2) << result.err;
    EXPECT_EQ(result.out, "");
  }
  EXPECT_EQ(run({"diff", "d", "nodes.toml"}).status, 0);
}

// ---- swap ----

TEST_F(Swap, ShowsEachStepAndTheMapIsSwapped) {
  auto result = in_folder({"swap", "fc1/1", "fc2/2"});
  EXPECT_EQ(result.out,
            "SWAP  STEP        A              B              VSANS      ANSWER  REFUSED AT  STATUS\n"
            "1     check-lock  fc1/1          fc2/2          10,20      0       -           -\n"
            "1     do-swap     fc1/1          fc2/2          10,20      0       -           -\n"
            "1     unlock      fc1/1          fc2/2          10,20      0       -           -\n"
            "1     result      fc1/1          fc2/2          -          -       -           OK 0\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(map_row("0")["pn"], 49);
  EXPECT_EQ(map_row("0")["pa"], 1);
  EXPECT_EQ(map_row("0")["vsans"], nlohmann::json({20}));
  EXPECT_EQ(map_row("255")["pn"], 0);
  EXPECT_EQ(map_row("255")["vsans"], nlohmann::json({10}));
}

TEST_F(Swap, RefusedAtAnyStepLeavesTheMap) {
  struct {
    std::string step;
    std::vector<std::string> steps;
  } cases[] = {{"check-lock", {"check-lock", "unlock"}},
               {"do-swap", {"check-lock", "do-swap", "unlock"}},
               {"unlock", {"check-lock", "do-swap", "unlock", "do-swap", "unlock"}}};
  for (const auto& one : cases) {
    auto result = in_folder({"swap", "fc1/1", "fc2/2", "--refuse", one.step, "--reason", "7", "--format", "jsonl"});
    EXPECT_EQ(result.status, 1);
    auto rows = parse_json_lines(result.out);
    ASSERT_EQ(rows.size(), one.steps.size() + 1) << one.step;
    bool refused = false;
    for (size_t i = 0; i < one.steps.size(); ++i) {
      EXPECT_EQ(rows[i]["step"], one.steps[i]);
      EXPECT_EQ(rows[i]["status"], nullptr);
      const bool here = !refused && one.steps[i] == one.step; // once
      EXPECT_EQ(rows[i]["swap_status"], here ? 7 : 0) << one.step << " " << i;
      refused = refused || here;
    }
    EXPECT_EQ(rows.back()["step"], "result");
    EXPECT_EQ(rows.back()["refused_step"], one.step);
    EXPECT_EQ(rows.back()["swap_status"], 7);
    EXPECT_EQ(rows.back()["status"]["name"], "FICON_RC_PLATFORM");
    EXPECT_EQ(run({"diff", "d", "nodes.toml"}).status, 0) << one.step;
  }
}

TEST_F(Swap, RefusedUnlockIsUndoneTheOtherWayRound) {
  auto rows = parse_json_lines(in_folder({"swap", "fc1/1", "fc2/2", "--refuse", "unlock", "--format", "jsonl"}).out);
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_EQ(rows[2]["swap_status"], 1);
  EXPECT_EQ(rows[3]["interface_a"], "fc2/2");
  EXPECT_EQ(rows[3]["if_index_a"], 0x01010100);
  EXPECT_EQ(rows[3]["interface_b"], "fc1/1");
  EXPECT_EQ(rows[3]["vsans"], nlohmann::json({10, 20}));
}

TEST_F(Swap, CountsTheSwapsOfItsManager) {
  ASSERT_EQ(in_folder({"swap", "fc1/1", "fc2/2"}).status, 0);
  auto rows = parse_json(in_folder({"swap", "fc1/1", "fc2/2", "--format", "json"}).out);
  ASSERT_EQ(rows.size(), 4u);
  for (const auto& row : rows) EXPECT_EQ(row["swap"], 2);
  EXPECT_EQ(parse_json(in_folder({"map", "--index", "0", "--format", "json"}).out)[0]["pn"], 0); // and back
}

TEST_F(Swap, WhatCannotBeSwappedIsRefusedWithoutAStep) {
  struct {
    const char* a;
    const char* b;
    const char* status;
  } cases[] = {{"fc1/1", "fc1/1", "FICON_RC_INVALID_ARG"},
               {"fc1/1", "fc5/1", "FICON_RC_LAG_MEMBER"},
               {"fc9/1", "fc1/1", "FICON_RC_NO_IF"},
               {"fc1/1", "fc5/4", "FICON_RC_NO_IF"}};
  for (const auto& one : cases) {
    auto result = in_folder({"swap", one.a, one.b, "--format", "csv"});
    EXPECT_EQ(result.status, 1) << one.a << " " << one.b;
    auto rows = parse_csv(result.out);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1][0], ""); // it never got a number
    EXPECT_EQ(rows[1][1], "result");
    EXPECT_EQ(rows[1].back(), one.status) << one.a << " " << one.b;
  }
  EXPECT_EQ(run({"diff", "d", "nodes.toml"}).status, 0);
}

TEST_F(Swap, WrongWordsAreStatusTwo) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"swap"},
                                                {"swap", "fc1/1"},
                                                {"swap", "fc1/1", "fc1/2-3"},
                                                {"swap", "fc1/1", "all"},
                                                {"swap", "fc1/1", "fc1/2", "--refuse", "map"},
                                                {"swap", "fc1/1", "fc1/2", "--reason", "2"},
                                                {"swap", "fc1/1", "fc1/2", "--refuse", "unlock", "--reason", "0"}}) {
    auto result = in_folder(words);
    EXPECT_EQ(result.status, 2) << words.back();
    EXPECT_EQ(result.out, "");
  }
}

} // namespace
} // namespace chnsw_test
