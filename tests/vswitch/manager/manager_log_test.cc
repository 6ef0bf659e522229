// Lines of the manager's log.
#include <gmock/gmock.h>
#include <vswitch/manager/manager.h>

namespace {

using vswitch::text_of;

TEST(ManagerLog, LineHasTimePeerWhatAndResult) {
  EXPECT_EQ(text_of({1420448823000003, 4, "port map of fc1/1", 0x4085004A}),
            "2015-01-05T09:07:03.000003Z peer 4: port map of fc1/1: 0x4085004A");
}

TEST(ManagerLog, LineWithoutAPeerIsTheManagers) {
  EXPECT_EQ(text_of({1999999, 0, "serves", 0}), "1970-01-01T00:00:01.999999Z manager: serves: 0x00000000");
}

} // namespace
