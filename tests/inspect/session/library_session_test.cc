// One session a process: the second is refused, the next one and those of child processes are not.
#include "inspect/session/library_session.h"

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "asked_switch.h"
#include "inspect/port_map/port_answer.h"
#include "vswitch/switch_store.h"

namespace inspect_test {
namespace {

using inspect::failure;
using inspect::library_session;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// What a child process answers: 0 when ask is true there.
bool is_true_in_child(const std::function<bool()>& ask) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(ask() ? 0 : 1);
  int status = -1;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Whether the library answers for an example, which its highest port number tells.
bool answers_for(const char* name, int32_t highest_port_number) {
  const library_session session(example(name));
  return ficon_cmi_get_max_portnumber() == highest_port_number;
}

TEST(LibrarySession, SecondIsRefusedAndTheFirstGoesOn) {
  library_session first(opened(campus()));
  const auto error = error_of([] { library_session second(opened(campus())); });
  EXPECT_EQ(error.failed, failure::question);
  EXPECT_THAT(error.message, HasSubstr("another switch is open in this process"));
  EXPECT_EQ(answer_number(first, 48, {}).if_index, vswitch::fc_port_index(2, 1));
}

TEST(LibrarySession, NextOneAfterTheFirstAnswersForItsOwnSwitch) {
  EXPECT_TRUE(answers_for("director-10", 253));
  EXPECT_TRUE(answers_for("director-13", 237));
  EXPECT_TRUE(answers_for("director-10", 253));
}

TEST(LibrarySession, NextOneHasTablesOfItsOwnLength) {
  for (int round = 0; round < 2; ++round) {
    {
      const library_session narrow(example("director-13"));
      EXPECT_EQ(narrow.ports(), 238U);
      EXPECT_EQ(answer_address(narrow, 238, {}).status, uint32_t{FICON_RC_PA_RANGE});
    }
    const library_session wide(example("director-10"));
    EXPECT_EQ(wide.ports(), 254U);
    EXPECT_EQ(wide.pn_to_if()[242], 0x0A000002U);
    EXPECT_EQ(wide.pa_to_pn()[0xF2], 242);
    EXPECT_EQ(answer_number(wide, 242, {}).pa, 0xF2U);
  }
}

TEST(LibrarySession, ChassisFileIsRefusedWhileOneIsOpenSinceItsCardsAreAskedFor) {
  const library_session session(opened(campus()));
  const auto error = error_of([] { example("director-10"); });
  EXPECT_EQ(error.failed, failure::question);
  EXPECT_THAT(error.message, HasSubstr("another switch is open in this process"));
  EXPECT_EQ(session.ports(), 254U);
}

TEST(LibrarySession, FolderIsReadWhileOneIsOpen) {
  char folder[] = "/tmp/inspect_session_XXXXXX";
  ASSERT_NE(::mkdtemp(folder), nullptr);
  auto other = campus();
  other.name = "other";
  vswitch::switch_store::create(folder, other);
  const library_session session(opened(campus()));
  const auto read = inspect::open_switch(folder);
  std::filesystem::remove_all(folder);
  EXPECT_TRUE(read.is_folder);
  EXPECT_EQ(read.chassis.name, "other");
  EXPECT_EQ(session.chassis().name, "campus");
}

TEST(LibrarySession, WrongChassisFileLeavesNoneOpen) {
  char path[] = "/tmp/inspect_session_XXXXXX";
  const int file = ::mkstemp(path);
  ASSERT_NE(file, -1);
  ::close(file);
  std::ofstream(path) << "[chassis]\nslots = 10\ntype = 32\nsupervisors = []\n\n[[line_card]]\nslot = 5\nports = 8\n";
  const auto error = error_of([&path] { inspect::open_switch(path); });
  std::filesystem::remove(path);
  EXPECT_EQ(error.failed, failure::file);
  EXPECT_THAT(error.message, HasSubstr(":7:8: slot 5 is no line-card slot of a chassis of 10 slots and type 32"));
  EXPECT_TRUE(answers_for("director-10", 253));
}

TEST(LibrarySession, ManySwitchesAreSharedAmongChildren) {
  EXPECT_TRUE(is_true_in_child([] { return answers_for("director-10", 253); }));
  EXPECT_TRUE(is_true_in_child([] { return answers_for("director-13", 237); }));
}

TEST(LibrarySession, ChildOpensItsOwnBesideThatOfItsParent) {
  const library_session parent(example("director-10"));
  EXPECT_TRUE(is_true_in_child([] { return answers_for("director-13", 237); }));
  EXPECT_TRUE(is_true_in_child([] {
    const library_session session(opened(campus()));
    return error_of([] { library_session second(opened(campus())); }).failed == failure::question;
  }));
  EXPECT_EQ(answer_address(parent, 0x60, {}).if_index, vswitch::fc_port_index(3, 1));
}

TEST(LibrarySession, WhatIsNoSwitchIsThePlatformsFailure) {
  EXPECT_EQ(error_of([] { inspect::open_switch("/nowhere/at/all.toml"); }).failed, failure::platform);
}

TEST(LibrarySession, EventsAreThoseOfTheQuestionAlone) {
  const library_session session(opened(campus()));
  const auto ask = [&session] { answer_address(session, 0, {10U, false}); };
  ask();
  const auto events = inspect::events_during(ask);
  EXPECT_THAT(events, Not(IsEmpty()));
  EXPECT_EQ(inspect::events_during(ask), events);
  EXPECT_THAT(inspect::events_during([] {}), IsEmpty());
}

TEST(LibrarySession, NobodyWatchesAfterAQuestionThatFailed) {
  const library_session session(opened(campus()));
  EXPECT_THROW(inspect::events_during([] { throw std::runtime_error("failed"); }), std::runtime_error);
  EXPECT_EQ(answer_address(session, 0, {10U, false}).status, 0U); // would write into what is gone
}

} // namespace
} // namespace inspect_test
