#include "inspect/messages/manager_client.h"

#include <gtest/gtest.h>

#include "inspect/messages/manager_questions.h"
#include "inspect_test.h"
#include "test_switch.h"
#include "vswitch/switch_store.h"

namespace inspect {
namespace {

using inspect_test::platform_failure;

TEST(ManagerClient, SaysThatNoManagerServes) {
  const vswitch_test::temporary_folder folder;
  const std::string path = folder.path("d");
  vswitch::switch_store::create(path, vswitch_test::small_switch());
  manager_client manager(path, 0.1);
  EXPECT_EQ(manager.chassis().slots(), 10u);
  const std::string expected = "no manager serves " + path + "; start one with: chnsw manager " + path;
  EXPECT_EQ(platform_failure([&] { ask_port_map(manager, 0x01000000); }), expected);
  EXPECT_EQ(platform_failure([&] { manager.connect_to_notices(); }), expected);
}

TEST(ManagerClient, NeedsASwitch) {
  const vswitch_test::temporary_folder folder;
  EXPECT_NE(platform_failure([&] { manager_client(folder.path("nothing"), 1); }), "(nothing is wrong)");
}

} // namespace
} // namespace inspect
