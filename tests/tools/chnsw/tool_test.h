// Running the built tool as a process: its two streams, its exit status, and the files that it works on.
#ifndef TESTS_CHNSW_TOOL_TEST_H
#define TESTS_CHNSW_TOOL_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "campus_switch.h"

namespace chnsw_test {

struct tool_result {
  int status = -1; // exit status, or 128 + signal
  std::string out;
  std::string err;
};

inline const std::string& kCampus = campus_switch::kWhole; // campus.toml of every test

class tool_test : public testing::Test {
 protected:
  tool_test();
  ~tool_test() override;

  // Runs the tool in the test's own folder, with no switch and no colour setting in its environment but what is given here.
  tool_result run(const std::vector<std::string>& arguments,
                  const std::map<std::string, std::string>& environment = {}) const;
  // The same with a switch that the test wrote down.
  tool_result ask(const std::vector<std::string>& arguments) const;
  // With standard output on a given file descriptor.
  tool_result run_into(int output, const std::vector<std::string>& arguments,
                       const std::map<std::string, std::string>& environment = {}) const;
  // Started, and not waited for; its output goes to files out_NAME and err_NAME.
  pid_t start(const std::string& name, const std::vector<std::string>& arguments) const;
  int wait_for(pid_t tool) const;
  // Any command, with the tool on the PATH.
  tool_result shell(const std::string& command) const;

  // Files of the test's own folder.
  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  void write(const std::string& name, const std::string& text) const;
  std::string read(const std::string& name) const;
  std::vector<std::string> listing() const;

  // kCampus with one text replaced; a test fails when the text is not there.
  static std::string campus_with(const std::string& text, const std::string& replacement);

 private:
  std::string folder_;
};

nlohmann::json parse_json(const std::string& text);
std::vector<nlohmann::json> parse_json_lines(const std::string& text);
// Rows of fields by RFC 4180, the header first.
std::vector<std::vector<std::string>> parse_csv(const std::string& text);

} // namespace chnsw_test

#endif
