// The manager's log, as lines.
#include <array>
#include <cstdio>
#include <ctime>

#include "vswitch/manager/manager.h"

namespace vswitch {

std::string text_of(const manager_event& event) {
  constexpr int64_t kSecond = 1000000;
  const auto seconds = static_cast<time_t>(event.when_usec / kSecond);
  std::tm utc = {};
  gmtime_r(&seconds, &utc);
  std::array<char, 32> day{};
  std::strftime(day.data(), day.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::array<char, 24> moment{};
  std::snprintf(moment.data(), moment.size(), ".%06dZ", static_cast<int>(event.when_usec % kSecond));
  std::array<char, 16> result{};
  std::snprintf(result.data(), result.size(), ": 0x%08X", event.result);
  const std::string peer = event.peer == 0 ? " manager: " : " peer " + std::to_string(event.peer) + ": ";
  return std::string(day.data()) + moment.data() + peer + event.what + result.data();
}

} // namespace vswitch
