// How a question to a switch fails: what was wrong, in words for who asked.
#ifndef INSPECT_ERROR_H
#define INSPECT_ERROR_H

#include <stdexcept>
#include <string>

namespace inspect {

enum class failure {
  question, // it cannot be asked like that
  file,     // a wrong chassis file: a line a problem, each begins with its place as editors read it, "FILE:LINE:COLUMN: "
  platform  // a folder, a service or the library failed
};

class error : public std::runtime_error {
 public:
  error(failure what_failed, const std::string& message) : std::runtime_error(message), failed_(what_failed) {}

  failure failed() const { return failed_; }

 private:
  failure failed_;
};

inline error question_error(const std::string& message) {
  return {failure::question, message};
}
inline error file_error(const std::string& problems) {
  return {failure::file, problems};
}
inline error platform_error(const std::string& message) {
  return {failure::platform, message};
}

} // namespace inspect

#endif
