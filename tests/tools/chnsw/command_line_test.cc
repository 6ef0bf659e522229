// The command line itself: help, wrong use, streams, colour, exit statuses, completion, man page.
#include "tool_test.h"

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

namespace chnsw_test {
namespace {

using testing::HasSubstr;
using testing::Not;

class CommandLine : public tool_test {
 protected:
  // What the tool writes to a terminal.
  std::string on_a_terminal(const std::vector<std::string>& arguments,
                            const std::map<std::string, std::string>& environment) const {
    int master = -1;
    int terminal = -1;
    EXPECT_EQ(::openpty(&master, &terminal, nullptr, nullptr, nullptr), 0);
    run_into(terminal, arguments, environment);
    char text[4096];
    ssize_t size = ::read(master, text, sizeof text);
    ::close(terminal);
    ::close(master);
    return {text, size > 0 ? static_cast<size_t>(size) : 0};
  }
};

const std::vector<std::string> kCommands = {"pa",      "pn",      "if",     "slot",   "index",  "map",      "vsan",
                                            "logical", "info",    "next",   "last",   "check",  "default",  "front",
                                            "diff",    "export",  "create", "watch",  "set",    "tod",      "manager",
                                            "ask",     "install", "swap",   "listen", "notify", "codepage", "message"};

TEST_F(CommandLine, EveryCommandHasHelpWithExamples) {
  auto general = run({"--help"});
  EXPECT_EQ(general.status, 0);
  EXPECT_EQ(general.err, "");
  EXPECT_THAT(
      general.out,
      HasSubstr("bare digits are hexadecimal for a port address (PA) and a TOD clock value, decimal for everything else"));
  EXPECT_THAT(general.out, HasSubstr("Examples:\n"));
  for (const auto& command : kCommands) {
    auto help = run({command, "--help"});
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_THAT(help.out, HasSubstr("Examples:\n  chnsw ")) << command;
    EXPECT_THAT(general.out, HasSubstr("\n  " + command + " ")) << command;
  }
  for (const char* part : {"port", "binding", "address", "time"})
    EXPECT_THAT(run({"set", part, "--help"}).out, HasSubstr("Examples:\n  chnsw ")) << part;
  for (const char* part : {"portmap", "vsans", "vsan-state", "rnid"})
    EXPECT_THAT(run({"ask", part, "--help"}).out, HasSubstr("Examples:\n  chnsw ")) << part;
  for (const char* part : {"vsan", "port", "enable", "rnid"})
    EXPECT_THAT(run({"notify", part, "--help"}).out, HasSubstr("Examples:\n  chnsw ")) << part;
}

TEST_F(CommandLine, MessageHasHelpWithExamples) {
  for (const char* part : {"list", "decode", "encode"}) {
    auto help = run({"message", part, "--help"});
    EXPECT_THAT(help.out, HasSubstr("Examples:\n  chnsw ")) << part;
    EXPECT_THAT(help.out, HasSubstr("One of portmap-request, portmap-answer, ")) << part;
  }
}

TEST_F(CommandLine, HelpSaysHowDigitsAreRead) {
  EXPECT_THAT(run({"pa", "--help"}).out, HasSubstr("Bare digits are hexadecimal."));
  for (const char* command : {"pn", "slot", "index", "map", "vsan", "default", "install", "codepage"})
    EXPECT_THAT(run({command, "--help"}).out, HasSubstr("Bare digits are decimal; 0x makes them hexadecimal.")) << command;
}

TEST_F(CommandLine, Version) {
  auto result = run({"--version"});
  EXPECT_EQ(result.out, "chnsw " CHNSW_VERSION "\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(CommandLine, UnknownCommandIsAnsweredWithTheNearestOne) {
  auto result = run({"chekc"});
  EXPECT_EQ(result.err, "chnsw: there is no command \"chekc\"; did you mean \"check\"?\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(run({"-s", "campus.toml", "mapp"}).err, "chnsw: there is no command \"mapp\"; did you mean \"map\"?\n");
  EXPECT_EQ(run({"something"}).err, "chnsw: there is no command \"something\"; chnsw --help lists them\n");
}

TEST_F(CommandLine, WrongUseIsStatusTwoAndNoResult) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{},
                                                    {"pa"},
                                                    {"--format", "xml", "map"},
                                                    {"map", "--colour"},
                                                    {"next"},
                                                    {"set"},
                                                    {"diff", "a"},
                                                    {"--color", "red", "map"},
                                                    {"default", "--verdict", "--logical"},
                                                    {"diff", "a", "b", "c"}}) {
    auto result = run(arguments, {{"CHNSW_SWITCH", "campus.toml"}});
    EXPECT_EQ(result.status, 2) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, testing::StartsWith("chnsw: "));
    EXPECT_THAT(result.err, HasSubstr("--help"));
  }
}

TEST_F(CommandLine, SwitchIsNamedByOptionOrEnvironment) {
  auto none = run({"map"});
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.err,
            "chnsw: no switch is named; name a chassis file or a switch's folder with --switch PATH or in CHNSW_SWITCH\n");
  EXPECT_EQ(run({"map"}, {{"CHNSW_SWITCH", "campus.toml"}}).status, 0);
  EXPECT_EQ(run({"map", "--switch", "campus.toml"}, {{"CHNSW_SWITCH", "nowhere"}}).status, 0);
  EXPECT_EQ(run({"-s", "campus.toml", "map"}).out, run({"map", "-s", "campus.toml"}).out);
}

TEST_F(CommandLine, WrongChassisFileIsStatusTwoWithEveryProblem) {
  write("wrong.toml", "[chassis]\nslots = 0\ntype = 34\ncolour = \"red\"\n");
  auto result = run({"-s", "wrong.toml", "map"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("wrong.toml:2:9: "));
  EXPECT_THAT(result.err, HasSubstr("wrong.toml:4:1: "));
}

TEST_F(CommandLine, NumberOfAnOptionIsToldWithWhatWasFoundAndExpected) {
  struct refusal {
    std::vector<std::string> words;
    const char* complaint;
  };
  const refusal refused[] = {
      {{"watch", "--count", "-1"}, "--count: found \"-1\", expected a decimal number from 0 to 4294967295"},
      {{"listen", "--count", "1.5"}, "--count: found \"1.5\", expected a decimal number from 0 to 4294967295"},
      {{"listen", "--count", "4294967296"},
       "--count: found \"4294967296\", expected a decimal number from 0 to 4294967295"},
      {{"tod", "0000", "--leap-seconds", "1000"},
       "--leap-seconds: found \"1000\", expected a decimal number from 0 to 999"},
      {{"notify", "port", "fc1/1", "up", "--reason", "0x7"},
       "--reason: found \"0x7\", expected a decimal number from 0 to 255"},
      {{"swap", "fc1/1", "fc1/2", "--refuse", "unlock", "--reason", "0"},
       "--reason: found \"0\", expected a decimal number from 1 to 4294967295"},
      {{"watch", "--interval", "soon"}, "--interval: found \"soon\", expected a decimal number from 0.01 to 3600"},
      {{"watch", "--interval", "nan"}, "--interval: found \"nan\", expected a decimal number from 0.01 to 3600"},
      {{"ask", "vsans", "--timeout", "0"}, "--timeout: found \"0\", expected a decimal number from 0.01 to 3600"},
      {{"ask", "vsans", "--timeout", "3601"}, "--timeout: found \"3601\", expected a decimal number from 0.01 to 3600"},
      {{"ask", "vsans", "--timeout", "5s"}, "--timeout: found \"5s\", expected a decimal number from 0.01 to 3600"}};
  for (const auto& [words, complaint] : refused) {
    auto result = run(words);
    EXPECT_EQ(result.status, 2) << complaint;
    EXPECT_THAT(result.err, testing::StartsWith(std::string("chnsw: ") + complaint + "; see chnsw " + words[0]));
    EXPECT_EQ(result.out, "") << complaint;
  }
}

TEST_F(CommandLine, LargestNumberOfAnOptionIsTaken) {
  EXPECT_EQ(run({"tod", "0000", "--leap-seconds", "999"}).status, 0);
  ASSERT_EQ(run({"create", "folder", "campus.toml"}).status, 0);
  EXPECT_EQ(run({"-s", "folder", "watch", "--count", "1", "--interval", "3600"}).status, 0);
  EXPECT_EQ(run({"-s", "folder", "watch", "--count", "1", "--interval", "0.01"}).status, 0);
}

TEST_F(CommandLine, WhatCannotBeOpenedIsStatusThree) {
  EXPECT_EQ(run({"-s", "nowhere", "map"}).status, 3);
  ASSERT_EQ(shell("mkdir empty").status, 0);
  auto empty = run({"-s", "empty", "map"});
  EXPECT_EQ(empty.status, 3);
  EXPECT_THAT(empty.err, HasSubstr("empty"));
}

TEST_F(CommandLine, WhatTheLibraryPrintsStaysOutOfTheResult) {
  auto result = ask({"if", "fc5/1", "--format", "json"});
  EXPECT_THAT(result.err, HasSubstr("FICON_ERR: "));
  EXPECT_EQ(parse_json(result.out).size(), 1u);
}

TEST_F(CommandLine, ResultThatCannotBeWrittenIsStatusThree) {
  int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_NE(full, -1);
  auto result = run_into(full, {"-s", "campus.toml", "map"});
  ::close(full);
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.err, "chnsw: the result cannot be written to standard output: No space left on device\n");
  auto closed = shell("chnsw -s campus.toml map >&-");
  EXPECT_EQ(closed.status, 3);
  EXPECT_THAT(closed.err, HasSubstr("the result cannot be written to standard output"));
}

TEST_F(CommandLine, ReaderThatWentAwayIsNoReasonToComplain) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::close(ends[0]);
  auto result = run_into(ends[1], {"-s", "campus.toml", "map"});
  ::close(ends[1]);
  EXPECT_EQ(result.status, 3);
  EXPECT_EQ(result.err, "");
}

TEST_F(CommandLine, ColourOnATerminalAloneAndNotAgainstNoColor) {
  const std::vector<std::string> question = {"-s", "campus.toml", "pn", "0"};
  EXPECT_THAT(on_a_terminal(question, {{"TERM", "xterm"}}), HasSubstr("\x1B[32mOK 0\x1B[0m"));
  EXPECT_THAT(on_a_terminal(question, {{"TERM", "xterm"}, {"NO_COLOR", "1"}}), Not(HasSubstr("\x1B")));
  EXPECT_THAT(on_a_terminal(question, {{"TERM", "dumb"}}), Not(HasSubstr("\x1B")));
  EXPECT_THAT(on_a_terminal({"--color", "never", "-s", "campus.toml", "pn", "0"}, {{"TERM", "xterm"}}),
              Not(HasSubstr("\x1B")));
  EXPECT_THAT(run(question).out, Not(HasSubstr("\x1B")));
  EXPECT_THAT(run({"--color", "always", "-s", "campus.toml", "pn", "0"}, {{"NO_COLOR", "1"}}).out,
              HasSubstr("\x1B[32mOK 0"));
  EXPECT_THAT(run({"--color", "always", "-s", "campus.toml", "pn", "0", "--format", "json"}).out, Not(HasSubstr("\x1B")));
}

// A status other than OK is the last column, and may reach a little further.
TEST_F(CommandLine, RowsOfWhatIsFoundFitAHundredColumns) {
  for (const char* name : {"one-slot", "six-slot", "director-10", "director-13", "director-18"}) {
    for (const char* question : {"pa", "pn", "if", "slot", "index"}) {
      auto result = run({"-s", std::string(CHNSW_SOURCE_DIR "/examples/") + name + ".toml", question, "all"});
      size_t longest_found = 0;
      size_t longest = 0;
      std::istringstream lines(result.out);
      for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, line.size());
        if (line.ends_with("OK 0")) longest_found = std::max(longest_found, line.size());
      }
      EXPECT_GT(longest_found, 0u) << name << " " << question;
      EXPECT_LE(longest_found, 100u) << name << " " << question;
      EXPECT_LE(longest, 120u) << name << " " << question;
    }
  }
}

// ---- Completion and man page ----

std::string completions(const std::string& words) {
  return "source " CHNSW_SOURCE_DIR "/tools/chnsw/chnsw.bash; COMP_WORDS=(" + words +
         "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _chnsw; printf '%s\\n' \"${COMPREPLY[@]}\"";
}

TEST_F(CommandLine, CompletionKnowsEveryCommandThatHelpLists) {
  auto result = shell(completions("chnsw ''"));
  EXPECT_EQ(result.err, "");
  for (const auto& command : kCommands) EXPECT_THAT(result.out, HasSubstr(command + "\n"));
}

TEST_F(CommandLine, CompletionOfOptionsAndValues) {
  EXPECT_EQ(shell(completions("chnsw --format j")).out, "json\njsonl\n");
  EXPECT_EQ(shell(completions("chnsw -s campus.toml che")).out, "check\n");
  EXPECT_EQ(shell(completions("chnsw pa --ex")).out, "--explain\n");
  EXPECT_EQ(shell(completions("chnsw set p")).out, "port\n");
  EXPECT_EQ(shell(completions("chnsw -s camp")).out, "campus.toml\n");
  EXPECT_EQ(shell(completions("chnsw export --to c")).out, "csv\n");
  EXPECT_EQ(shell(completions("chnsw ask vsan")).out, "vsans\nvsan-state\n");
  EXPECT_EQ(shell(completions("chnsw ask rnid --ti")).out, "--timeout\n");
  EXPECT_EQ(shell(completions("chnsw swap fc1/1 fc1/2 --refuse ''")).out, "check-lock\ndo-swap\nunlock\n");
  EXPECT_EQ(shell(completions("chnsw notify p")).out, "port\n");
  EXPECT_EQ(shell(completions("chnsw notify port fc1/1 ''")).out, "up\ndown\n");
  EXPECT_EQ(shell(completions("chnsw notify enable fc1/1 ''")).out, "on\noff\n");
}

TEST_F(CommandLine, CompletionOfMessagesIsTheToolsOwnList) {
  EXPECT_EQ(shell(completions("chnsw message ''")).out, "list\ndecode\nencode\n");
  EXPECT_EQ(shell(completions("chnsw message decode port")).out, "portmap-request\nportmap-answer\n");
  EXPECT_EQ(shell(completions("chnsw message decode ifvsan-query ''")).out, "-\n");
  EXPECT_EQ(shell(completions("chnsw message encode ifvsan-query arg")).out, "arg_a=\narg_b=\n");
  EXPECT_EQ(shell(completions("chnsw message encode ifvsan-query arg_a = 1 i")).out, "if_index=\n");
  EXPECT_EQ(shell(completions("chnsw message encode ifvsan-query --byte-order ''")).out, "big\nlittle\n");
  EXPECT_EQ(shell(completions("chnsw codepage 28")).out, "280\n281\n284\n285\n");
}

TEST_F(CommandLine, CompletionOfAValueBehindAnEqualsSign) {
  EXPECT_EQ(shell(completions("chnsw --switch = camp")).out, "campus.toml\n"); // as bash divides the words
  EXPECT_EQ(shell(completions("chnsw --switch=camp")).out, "--switch=campus.toml\n");
  EXPECT_EQ(shell(completions("chnsw --format =")).out, "table\njson\njsonl\ncsv\n");
  EXPECT_EQ(shell(completions("chnsw export --to=c")).out, "--to=csv\n");
  EXPECT_EQ(shell(completions("chnsw --switch = campus.toml che")).out, "check\n");
}

TEST_F(CommandLine, SetWithoutAKnownPartSaysWhatIsAllowed) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"set", "foo", "1"}, {"set"}}) {
    auto result = ask(words);
    EXPECT_EQ(result.err, "chnsw: set is followed by one of: port, binding, address, time; see chnsw set --help\n");
    EXPECT_EQ(result.status, 2);
  }
}

TEST_F(CommandLine, WrongUsePointsToTheHelpOfTheInnermostCommand) {
  auto result = ask({"set", "port"});
  EXPECT_EQ(result.err, "chnsw: PORT is required; see chnsw set port --help\n");
  EXPECT_EQ(result.status, 2);
}

// Every option that a command's help shows is completed, and none that it does not.
TEST_F(CommandLine, CompletionAndHelpNameTheSameOptions) {
  auto commands = kCommands;
  for (const char* part : {"ask portmap", "ask vsans", "ask vsan-state", "ask rnid", "notify vsan", "notify port",
                           "notify enable", "notify rnid", "set port", "set binding", "set address", "set time",
                           "message list", "message decode", "message encode"})
    commands.emplace_back(part);
  for (const auto& command : commands) {
    auto shown = shell("chnsw " + command +
                       " --help | grep -oE '^ +(-h,)?--[a-z-]+' | grep -oE -- '--[a-z-]+' | grep -v help | sort");
    auto completed = shell(completions("chnsw " + command + " --") +
                           " | grep -vE '^--(switch|format|color|help|version)$' | grep . | sort");
    EXPECT_EQ(shown.out, completed.out) << command;
  }
}

TEST_F(CommandLine, ManPageIsCleanAndNamesEveryCommand) {
  auto lint = shell("mandoc -T lint -W warning " CHNSW_SOURCE_DIR "/docs/man/chnsw.1");
  EXPECT_EQ(lint.status, 0) << lint.out << lint.err;
  auto page = shell("mandoc -T ascii " CHNSW_SOURCE_DIR "/docs/man/chnsw.1 | col -b");
  for (const auto& command : kCommands)
    EXPECT_THAT(page.out, testing::ContainsRegex("\n +" + command + "[ \n]")) << command;
}

// ---- The check of the docs, which would be worth nothing if it could not fail ----

TEST_F(CommandLine, DocsCheckAcceptsWhatTheToolPrints) {
  write("page.md", "```console\n$ chnsw --version\nchnsw " CHNSW_VERSION "\n$ ls examples | wc -l\n5\n```\n");
  auto result = shell(CHNSW_SOURCE_DIR "/scripts/check-docs \"$(dirname '" CHNSW_TOOL "')\" page.md");
  EXPECT_EQ(result.out, "2 commands in 1 pages, 0 print something else than the page says\n");
  EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(CommandLine, DocsCheckRefusesWhatTheToolDoesNotPrint) {
  const std::string check = CHNSW_SOURCE_DIR "/scripts/check-docs \"$(dirname '" CHNSW_TOOL "')\" page.md";
  write("page.md", "```console\n$ chnsw --version\nchnsw 0\n```\n");
  auto other = shell(check);
  EXPECT_EQ(other.status, 1);
  EXPECT_THAT(other.out, HasSubstr("page.md:2: $ chnsw --version\n"));
  EXPECT_THAT(other.out, HasSubstr("-chnsw 0\n+chnsw " CHNSW_VERSION "\n"));
  write("page.md", "```console\n$ true\nmore\n```\n");
  EXPECT_EQ(shell(check).status, 1);
  write("page.md", "nothing to run\n");
  EXPECT_EQ(shell(check).status, 1);
  write("page.md", "```console\n$ true\n");
  EXPECT_EQ(shell(check).status, 1);
}

} // namespace
} // namespace chnsw_test
