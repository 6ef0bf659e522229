// How a command ends: its exit codes, and the errors that end it early.
#ifndef CHNSW_TOOL_ERROR_H
#define CHNSW_TOOL_ERROR_H

#include <stdexcept>
#include <string>

namespace chnsw_tool {

enum exit_code {
  kFound = 0,    // also: nothing wrong, no difference
  kNotFound = 1, // also: findings, differences
  kUsage = 2,    // a wrong command line, or a wrong chassis file
  kPlatform = 3  // a folder, a service or an output that failed
};

// Ends the command: the message goes to standard error, and nothing to standard output.
class tool_error : public std::runtime_error {
 public:
  tool_error(exit_code code, const std::string& message) : std::runtime_error(message), code_(code) {}
  exit_code code() const { return code_; }

  // Whether the message begins with the place that it is about, "FILE:LINE:COLUMN: ", as editors read it.
  bool names_place() const { return names_place_; }

 protected:
  tool_error(exit_code code, const std::string& message, bool names_place)
      : std::runtime_error(message), code_(code), names_place_(names_place) {}

 private:
  exit_code code_;
  bool names_place_ = false;
};

// A wrong chassis file: one line a problem.
class file_error : public tool_error {
 public:
  explicit file_error(const std::string& problems) : tool_error(kUsage, problems, true) {}
};

inline tool_error usage_error(const std::string& message) {
  return {kUsage, message};
}
inline tool_error platform_error(const std::string& message) {
  return {kPlatform, message};
}

} // namespace chnsw_tool

#endif
