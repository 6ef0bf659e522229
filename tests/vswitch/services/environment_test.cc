// Processes that are served by the switch that their environment names: libvswitch.so linked, or preloaded.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vswitch/switch_store.h>
#include <vswitch/vswitch.h>

#include "test_switch.h"

namespace {

using namespace vswitch;
using vswitch_test::run;
using vswitch_test::small_switch;

constexpr const char* kExample = CHNSW_EXAMPLES "/director-10.toml";

class SwitchOfEnvironment : public ::testing::Test {
 protected:
  vswitch_test::temporary_folder folder_;
};

TEST_F(SwitchOfEnvironment, ChassisFileAnswersThroughTheLibrary) {
  const std::string variable = std::string("CHNSW_SWITCH=") + kExample;
  EXPECT_EQ(run({VSWITCH_CLIENT, "pa", "0x60"}, {variable}).output, "status 0x00000000 pn 96\n");
  EXPECT_EQ(run({VSWITCH_CLIENT, "pa", "0x05", "20"}, {variable}).output, "status 0x00000000 pn 53\n");
  EXPECT_EQ(run({VSWITCH_CLIENT, "pa", "0x05"}, {variable}).output, "status 0x40850052 pn 65535\n");
}

TEST_F(SwitchOfEnvironment, FolderAnswersThroughTheLibrary) {
  switch_store::create(folder_.path("switch"), small_switch());
  const auto result = run({VSWITCH_CLIENT, "pa", "0x20", "10"}, {"CHNSW_SWITCH=" + folder_.path("switch")});
  EXPECT_EQ(result.output, "status 0x00000000 pn 0\n");
  EXPECT_EQ(result.errors, "");
}

TEST_F(SwitchOfEnvironment, TimeReferenceThatIsSetIsTheNextTimeStampOfAnyClient) {
  switch_store::create(folder_.path("switch"), small_switch());
  auto store = switch_store::open(folder_.path("switch"));
  const std::string variable = "CHNSW_SWITCH=" + folder_.path("switch");
  const std::vector<std::string> question = {VSWITCH_CLIENT, "time", "10", "1420448824", "100000"};
  EXPECT_EQ(run(question, {variable}).output, "status 0x4085000a no text\n");
  store->set_time_reference(10, time_reference{{1420448823, 900000}, 0xCE4F44C4E9760000});
  EXPECT_EQ(run(question, {variable}).output, "status 0x00000000 Mon Jan 5 09:07:04.899804 2015\n");
  store->set_time_reference(10, std::nullopt);
  EXPECT_EQ(run(question, {variable}).output, "status 0x4085000a no text\n");
}

TEST_F(SwitchOfEnvironment, PreloadedSwitchServesAProgramThatKnowsNothingOfIt) {
  const std::string variable = std::string("CHNSW_SWITCH=") + kExample;
  // A sanitizer wants to be the first library of a process, which a preloaded one comes before.
  const auto result = run({VSWITCH_PRELOADED_CLIENT, "pa", "0x60"},
                          {variable, VSWITCH_PRELOADED, "LD_BIND_NOW=1", "ASAN_OPTIONS=verify_asan_link_order=0"});
  EXPECT_EQ(result.output, "status 0x00000000 pn 96\n");
  EXPECT_EQ(result.errors, "");
}

TEST_F(SwitchOfEnvironment, ProgramWithoutTheServicesDoesNotStart) {
  EXPECT_EQ(run({VSWITCH_PRELOADED_CLIENT, "pa", "0x60"}, {"LD_BIND_NOW=1"}).exit_code, 127);
}

constexpr const char* kAllServicesFail =
    "get_platform_info 0x40440002 errno 19 slots 0\n"
    "hwinv_get_chassis_type 0x40440002 errno 19 type -1\n"
    "type 0x40480005\nslot 0x40480005\nport 0x40480005\ninit 0x40480005\n"
    "portidx 0x40460003\nlagmap 0x40470003\n"
    "elemdb 0x40450003 errno 19 counter 0\n";

TEST_F(SwitchOfEnvironment, WithoutOneEveryServiceFailsAndTheReasonIsToldOnce) {
  const auto result = run({VSWITCH_CLIENT, "services", "0x0A000003"});
  EXPECT_EQ(result.output, kAllServicesFail);
  EXPECT_EQ(result.errors, "CHNSW_SWITCH is not set; it names a switch's folder or a chassis file\n");
}

std::string with_errno(int number) {
  std::string text = kAllServicesFail;
  for (size_t at = 0; (at = text.find("errno 19", at)) != std::string::npos;)
    text.replace(at, 8, "errno " + std::to_string(number));
  return text;
}

TEST_F(SwitchOfEnvironment, PathThatIsNotThere) {
  const auto result = run({VSWITCH_CLIENT, "services", "0x0A000003"}, {"CHNSW_SWITCH=" + folder_.path("none.toml")});
  EXPECT_EQ(result.output, with_errno(2));
  EXPECT_EQ(result.errors, "CHNSW_SWITCH: " + folder_.path("none.toml") + ": cannot be read: No such file or directory\n");
}

TEST_F(SwitchOfEnvironment, ChassisFileThatIsWrongIsToldWhole) {
  const std::string file = folder_.file("wrong.toml", "[chassis]\nslots = 0\ntype = \"x\"\n");
  const auto result = run({VSWITCH_CLIENT, "services", "0x0A000003"}, {"CHNSW_SWITCH=" + file});
  EXPECT_EQ(result.output, with_errno(22));
  EXPECT_EQ(result.errors, "CHNSW_SWITCH: " + file + ":2:9: slots is 0; allowed are 1 to 255\n" + file +
                               ":3:8: type is \"x\"; expected is a whole number, -2147483648 to 2147483647\n");
}

TEST_F(SwitchOfEnvironment, FolderThatIsNoSwitch) {
  const auto result = run({VSWITCH_CLIENT, "services", "0x0A000003"}, {"CHNSW_SWITCH=" + folder_.path()});
  EXPECT_EQ(result.output, with_errno(22));
  EXPECT_EQ(result.errors, "CHNSW_SWITCH: " + folder_.path() + ": is not a switch: there is no data.mdb in it\n");
}

TEST_F(SwitchOfEnvironment, RefusalsAreOrdered) {
  const auto result = run({VSWITCH_CLIENT, "allocate", "5", "4"}, {"CHNSW_REFUSE_ALLOC=206/5:1,206/5:3,206/4:*"});
  EXPECT_EQ(result.output, "refused\ngranted\nrefused\ngranted\n");
  EXPECT_EQ(run({VSWITCH_CLIENT, "allocate", "4", "2"}, {"CHNSW_REFUSE_ALLOC=206/4:*"}).output, "refused\nrefused\n");
}

TEST_F(SwitchOfEnvironment, OrderOfARefusalThatIsWrongIsToldAndTheOthersHold) {
  for (const std::string wrong : {"206", "206/5", "206/5:0", "206/5:1x", "x/5:1", "206/5:-1", "206/5:"}) {
    const auto result = run({VSWITCH_CLIENT, "allocate", "5", "2"}, {"CHNSW_REFUSE_ALLOC=" + wrong + ",206/5:2"});
    EXPECT_EQ(result.output, "granted\nrefused\n");
    EXPECT_EQ(result.errors, "CHNSW_REFUSE_ALLOC: \"" + wrong +
                                 "\" is not an order; expected is LIBRARY/TYPE:WHICH as in 206/5:1, which from 1 or * for "
                                 "every one\n");
  }
}

// A client that runs on while the switch is replaced asks the new one at its next call.
TEST_F(SwitchOfEnvironment, RunningClientNoticesThatTheSwitchWasReplaced) {
  const std::string folder = folder_.path("switch");
  switch_store::create(folder, small_switch());
  int questions[2];
  int answers[2];
  ASSERT_EQ(pipe(questions) | pipe(answers), 0);
  const pid_t client = fork();
  if (client == 0) {
    dup2(questions[0], STDIN_FILENO);
    dup2(answers[1], STDOUT_FILENO);
    for (int end : {questions[0], questions[1], answers[0], answers[1]}) close(end);
    setenv("CHNSW_SWITCH", folder.c_str(), 1);
    execl(VSWITCH_CLIENT, VSWITCH_CLIENT, "type", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(questions[0]);
  close(answers[1]);
  auto answer = [&] {
    char text[3] = "";
    EXPECT_EQ(read(answers[0], text, 3), 3);
    return std::string(text, 2);
  };
  EXPECT_EQ(answer(), "32");
  auto other = small_switch();
  other.type = 38;
  switch_store::create(folder, other);
  ASSERT_EQ(write(questions[1], "\n", 1), 1);
  EXPECT_EQ(answer(), "38");
  close(questions[1]);
  close(answers[0]);
  int status = 0;
  waitpid(client, &status, 0);
  EXPECT_EQ(status, 0);
}

} // namespace
