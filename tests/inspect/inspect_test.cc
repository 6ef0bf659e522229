#include "inspect_test.h"

namespace inspect_test {

namespace {

std::string failure_of(inspect::failure expected, const std::function<void()>& question) {
  try {
    question();
  } catch (const inspect::error& error) {
    return error.failed() == expected ? error.what() : std::string("(another failure) ") + error.what();
  }
  return "(nothing is wrong)";
}

} // namespace

std::string bytes(const std::string& digits) {
  std::string result;
  std::string byte;
  for (char digit : digits) {
    if (digit == ' ') continue;
    byte += digit;
    if (byte.size() < 2) continue;
    result += static_cast<char>(std::stoul(byte, nullptr, 16));
    byte.clear();
  }
  return result;
}

std::string complaint(const std::function<void()>& question) {
  return failure_of(inspect::failure::question, question);
}

std::string platform_failure(const std::function<void()>& question) {
  return failure_of(inspect::failure::platform, question);
}

} // namespace inspect_test
