// Debug output: which flags are on, and where the texts go.
#include <gmock/gmock.h>

#include "test_switch.h"

namespace {

using vswitch_test::run;

std::string errors_with(const std::vector<std::string>& environment, const std::string& flag = "102",
                        const std::string& text = "it failed\n") {
  return run({VSWITCH_CLIENT, "report", flag, text}, environment).errors;
}

TEST(DebugOutput, IsOffUnlessAFlagIsOn) {
  EXPECT_EQ(errors_with({}), "");
  EXPECT_EQ(errors_with({"CHNSW_DEBUG="}), "");
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=103"}), "");
}

TEST(DebugOutput, TextOfAFlagThatIsOnIsPrintedWithTheModulesName) {
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=102"}, "102", "it failed"), "chnsw: it failed of 102\n");
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=103,102"}, "102", "x"), "chnsw: x of 102\n");
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=all"}, "7", "x"), "chnsw: x of 7\n");
}

TEST(DebugOutput, LongTextIsPrintedWhole) {
  const std::string text(500, 'x');
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=all"}, "102", text), "chnsw: " + text + " of 102\n");
}

TEST(DebugOutput, FlagThatIsNoNumberIsToldAndTheOthersHold) {
  EXPECT_EQ(
      errors_with({"CHNSW_DEBUG=10x,102"}, "102", "x"),
      "CHNSW_DEBUG: \"10x\" is not a debug flag; expected are numbers with commas between them, as in 102,103, or all\n"
      "chnsw: x of 102\n");
}

TEST(DebugOutput, FileIsAppendedTo) {
  vswitch_test::temporary_folder folder;
  const std::string file = folder.file("debug", "before\n");
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=all", "CHNSW_DEBUG_OUTPUT=" + file}, "103", "x"), "");
  EXPECT_EQ(vswitch_test::text_of_file(file), "before\nchnsw: x of 103\n");
}

TEST(DebugOutput, FileThatCannotBeOpenedIsToldAndStandardErrorIsUsed) {
  vswitch_test::temporary_folder folder;
  const std::string file = folder.path("none/debug");
  EXPECT_EQ(errors_with({"CHNSW_DEBUG=all", "CHNSW_DEBUG_OUTPUT=" + file}, "103", "x"),
            "CHNSW_DEBUG_OUTPUT: " + file + " cannot be opened: No such file or directory\nchnsw: x of 103\n");
}

} // namespace
