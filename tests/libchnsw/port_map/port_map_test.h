/* The fixture of the translations: 254 port numbers on a 10-slot chassis, debug output switched on, and a record of the
 * reports and traces of a call. */
#ifndef TESTS_PORT_MAP_PORT_MAP_TEST_H
#define TESTS_PORT_MAP_PORT_MAP_TEST_H

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "library_test.h"

namespace chnsw_test {

// Statuses, as clients know them.
inline constexpr uint32_t kNoMemory = 1;
inline constexpr uint32_t kNotFcPort = 11;
inline constexpr uint32_t kInvalidArg = 0x40850003;
inline constexpr uint32_t kPlatform = 0x4085000A; // 1082458122 in decimal
inline constexpr uint32_t kPaRange = 0x40850018;
inline constexpr uint32_t kPnRange = 0x40850019;
inline constexpr uint32_t kLagMember = 0x4085001A;
inline constexpr uint32_t kNotAssociated = 0x4085003E;
inline constexpr uint32_t kNoIf = 0x4085004A;
inline constexpr uint32_t kMultiIf = 0x40850052;

// Statuses of the services behind the library.
inline constexpr int kLagmapNotMember = 0x40470006;
inline constexpr int kPortidxNoPort = 0x40460002;

// The fetches of a library that knows of 254 ports, as the log shows them: the first of a table, and every later one.
inline const std::vector<std::string> kFirstInterfaceFetch = {"memacct_alloc(206, 3, 1016)",
                                                              "elemdb_lookup_element(1, 2, 4, key 2, 1016)"};
inline const std::vector<std::string> kFirstPortFetch = {"memacct_alloc(206, 5, 25600)",
                                                         "elemdb_lookup_element(1, 2, 4, key 3, 25600)"};
inline const std::vector<std::string> kFirstVsanFetch = {"elemdb_lookup_element(1, 2, 4, key 4, 32)",
                                                         "memacct_alloc(206, 5, 2560)",
                                                         "elemdb_lookup_element(1, 2, 4, key 5, 2560)"};
inline const std::vector<std::string> kInterfaceFetch = {"elemdb_lookup_element(1, 2, 4, key 2, 1016)"};
inline const std::vector<std::string> kPortFetch = {"elemdb_lookup_element(1, 2, 4, key 3, 25600)"};
inline const std::vector<std::string> kVsanFetch = {"elemdb_lookup_element(1, 2, 4, key 4, 32)",
                                                    "elemdb_lookup_element(1, 2, 4, key 5, 2560)"};
// The first conversion of a line card or slot, and every later one.
inline const std::vector<std::string> kFirstSlotConversion = {"get_platform_info()", "memacct_alloc(206, 5, 8)",
                                                              "hwinv_get_chassis_type(-1)"};
inline const std::vector<std::string> kSlotConversion = {"hwinv_get_chassis_type(-1)"};

// Several pieces of a log, one behind the other.
inline std::vector<std::string> sequence(std::initializer_list<std::vector<std::string>> pieces) {
  std::vector<std::string> all;
  for (const auto& piece : pieces) all.insert(all.end(), piece.begin(), piece.end());
  return all;
}

class PortMapTest : public LibraryTest {
 protected:
  PortMapTest() {
    know_ports(254);
    platform.debug_flags = {102, 103};
    map.install();
  }

  // What a call reports: "error ..." and "trace ..." in order, then "printed ..." with all that it left on standard output. The
  // event history and the debug output must have got the same.
  std::vector<std::string> reports_of(const std::function<void()>& call) {
    const size_t events_before = platform.history().size();
    const size_t texts_before = platform.debug_output().size();
    const std::string printed = output_of(call);
    std::vector<std::string> reports;
    std::vector<std::string> in_history;
    std::vector<std::string> in_debug_output;
    for (size_t i = events_before; i < platform.history().size(); ++i) {
      const history_event& event = platform.history()[i];
      EXPECT_EQ(event.id, 0x730000u);
      EXPECT_EQ(event.length, event.text.size() + 5);
      reports.push_back((event.subtype == 102 ? "error " : event.subtype == 103 ? "trace " : "other ") + event.text);
      in_history.push_back(event.text);
    }
    for (size_t i = texts_before; i < platform.debug_output().size(); ++i) {
      in_debug_output.push_back(platform.debug_output()[i].text);
    }
    EXPECT_EQ(in_history, in_debug_output);
    if (!printed.empty()) reports.push_back("printed " + printed);
    return reports;
  }

  // Makes the platform unable to tell how many ports there are.
  void hide_ports() {
    know_ports(0);
    platform.info_answer = {-1, 5};
  }
};

} // namespace chnsw_test

#endif
