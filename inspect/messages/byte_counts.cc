#include "inspect/messages/byte_counts.h"

#include <fmt/format.h>

namespace inspect {

std::string counted_bytes(size_t count) {
  return fmt::format("{} byte{}", count, count == 1 ? "" : "s");
}

std::string missing_bytes(size_t count) {
  return counted_bytes(count) + (count == 1 ? " is missing" : " are missing");
}

} // namespace inspect
