#include "port_map_comparison.h"

#include <algorithm>
#include <random>
#include <utility>

#include "compared_switch.h"
#include "comparison_report.h"
#include "drawn_values.h"
#include "operation_call.h"
#include "operations.h"

namespace chnsw_test {
namespace {

// The first byte of a step tells what it is: below the first of these a change of the map, below the next one of an
// interface, and so on.
enum : unsigned { kInterfaceChanges = 56, kPlatformChanges = 80, kNumberingChanges = 92, kCalls = 96 };

step step_at(const std::vector<uint8_t>& bytes, size_t at) {
  return {bytes.data() + at, std::min(bytes.size() - at, kStepBytes)};
}

void take(step from, compared_switch& both, operation_caller& caller) {
  const unsigned kind = from.byte();
  if (kind < kInterfaceChanges) return both.change_map(from);
  if (kind < kPlatformChanges) return both.change_interface(from);
  if (kind < kNumberingChanges) return both.change_platform(from);
  if (kind < kCalls) return caller.change_numbering(from);
  caller.draw(from);
  call_drawn_operation(caller);
  both.end_disturbances();
}

// Whether all was alike.
bool compare(const std::vector<uint8_t>& bytes, comparison_report& report, compared* what) {
  compared_switch both(step_at(bytes, 0), report);
  operation_caller caller(both, report, what);
  for (size_t at = kStepBytes; at < bytes.size() && !report.differs(); at += kStepBytes)
    take(step_at(bytes, at), both, caller);
  make_library_fresh();
  both.platform().reset();
  if (what != nullptr) what->decided.insert(both.model().decided.begin(), both.model().decided.end());
  return !report.differs();
}

bool is_alike(const std::vector<uint8_t>& bytes, compared* what) {
  comparison_report report(false);
  return compare(bytes, report, what);
}

} // namespace

std::string compare_port_map(const std::vector<uint8_t>& bytes, compared* what) {
  if (is_alike(bytes, what)) return {};
  comparison_report report(true);
  compare(bytes, report, nullptr);
  return report.text();
}

std::vector<uint8_t> shrunk(std::vector<uint8_t> bytes) {
  for (bool smaller = true; smaller;) {
    smaller = false;
    for (size_t at = bytes.size() / kStepBytes * kStepBytes; at > 0; at -= kStepBytes) {
      std::vector<uint8_t> without = bytes;
      const auto first = without.begin() + static_cast<ptrdiff_t>(at);
      without.erase(first, first + static_cast<ptrdiff_t>(std::min(kStepBytes, without.size() - at)));
      if (without.size() == bytes.size() || is_alike(without, nullptr)) continue;
      bytes = std::move(without);
      smaller = true;
    }
  }
  return bytes;
}

std::vector<uint8_t> bytes_of_seed(uint64_t seed, size_t steps) {
  constexpr size_t kCrowd = 32; // changes of the map and of interfaces that everything begins with
  std::mt19937_64 numbers(seed);
  std::vector<uint8_t> bytes(steps * kStepBytes);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(numbers() >> 32);
  for (size_t n = 1; n <= kCrowd && n < steps; ++n)
    bytes[n * kStepBytes] = n % 8 == 0 ? uint8_t{kInterfaceChanges} : uint8_t{0};
  return bytes;
}

} // namespace chnsw_test
