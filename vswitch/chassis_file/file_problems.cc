// What is wrong with a chassis file, as text.
#include <utility>

#include "vswitch/chassis_file.h"

namespace vswitch {

namespace {

std::string joined(const std::vector<file_problem>& problems) {
  std::string text;
  for (const auto& problem : problems) text += (text.empty() ? "" : "\n") + problem.text();
  return text;
}

} // namespace

std::string file_problem::text() const {
  if (line == 0) return file + ": " + what;
  return file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + what;
}

chassis_file_error::chassis_file_error(std::vector<file_problem> problems)
    : std::runtime_error(joined(problems)), problems_(std::move(problems)) {}

} // namespace vswitch
