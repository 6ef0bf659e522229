// What the tests of answers share.
#ifndef TESTS_INSPECT_INSPECT_TEST_H
#define TESTS_INSPECT_INSPECT_TEST_H

#include <functional>
#include <string>

#include "inspect/error.h"

namespace inspect_test {

// The bytes of hexadecimal digits; blanks do not count.
std::string bytes(const std::string& digits);

// What is thrown as a question error; a text that says so when nothing is, or a failure of another kind.
std::string complaint(const std::function<void()>& question);

// The same for a failure of the platform.
std::string platform_failure(const std::function<void()>& question);

} // namespace inspect_test

#endif
