// Processes, files and formats for the tool's tests.
#include "tool_test.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

namespace chnsw_test {

namespace {

std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

int status_of(int waited) {
  return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

int open_output(const std::string& path) {
  return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

// In the child: everything that the caller's own environment might say to the tool is taken away first.
void set_environment(const std::map<std::string, std::string>& environment) {
  for (const char* name :
       {"CHNSW_SWITCH", "CHNSW_DEBUG", "CHNSW_DEBUG_OUTPUT", "CHNSW_EVENT_HISTORY", "CHNSW_REFUSE_ALLOC", "NO_COLOR"})
    ::unsetenv(name);
  for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
}

[[noreturn]] void become(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const auto& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  ::execv(arguments[0], arguments.data());
  ::_exit(127);
}

pid_t spawn(const std::string& folder, int output, int error, const std::vector<std::string>& command,
            const std::map<std::string, std::string>& environment) {
  pid_t child = ::fork();
  if (child != 0) return child;
  ::dup2(output, STDOUT_FILENO);
  ::dup2(error, STDERR_FILENO);
  if (::chdir(folder.c_str()) != 0) ::_exit(126);
  set_environment(environment);
  become(command);
}

std::vector<std::string> tool_command(const std::vector<std::string>& arguments) {
  std::vector<std::string> command = {CHNSW_TOOL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

} // namespace

tool_test::tool_test() {
  std::string name = (std::filesystem::temp_directory_path() / "chnsw-test-XXXXXX").string();
  folder_ = ::mkdtemp(name.data());
  write("campus.toml", kCampus);
}

tool_test::~tool_test() {
  std::filesystem::remove_all(folder_);
}

tool_result tool_test::run_into(int output, const std::vector<std::string>& arguments,
                                const std::map<std::string, std::string>& environment) const {
  int error = open_output(path(".err"));
  tool_result result;
  result.status = wait_for(spawn(folder_, output, error, tool_command(arguments), environment));
  ::close(error);
  result.err = contents(path(".err"));
  std::filesystem::remove(path(".err"));
  return result;
}

tool_result tool_test::run(const std::vector<std::string>& arguments,
                           const std::map<std::string, std::string>& environment) const {
  int output = open_output(path(".out"));
  tool_result result = run_into(output, arguments, environment);
  ::close(output);
  result.out = contents(path(".out"));
  std::filesystem::remove(path(".out"));
  return result;
}

tool_result tool_test::ask(const std::vector<std::string>& arguments) const {
  return run(arguments, {{"CHNSW_SWITCH", "campus.toml"}});
}

pid_t tool_test::start(const std::string& name, const std::vector<std::string>& arguments) const {
  int output = open_output(path("out_" + name));
  int error = open_output(path("err_" + name));
  pid_t tool = spawn(folder_, output, error, tool_command(arguments), {});
  ::close(output);
  ::close(error);
  return tool;
}

int tool_test::wait_for(pid_t tool) const {
  int waited = 0;
  EXPECT_EQ(::waitpid(tool, &waited, 0), tool);
  return status_of(waited);
}

tool_result tool_test::shell(const std::string& command) const {
  int output = open_output(path(".out"));
  int error = open_output(path(".err"));
  tool_result result;
  std::string with_path = "PATH=\"$(dirname '" CHNSW_TOOL "'):$PATH\"; " + command;
  result.status = wait_for(spawn(folder_, output, error, {"/bin/bash", "-c", with_path}, {}));
  ::close(output);
  ::close(error);
  result.out = contents(path(".out"));
  result.err = contents(path(".err"));
  std::filesystem::remove(path(".out"));
  std::filesystem::remove(path(".err"));
  return result;
}

void tool_test::write(const std::string& name, const std::string& text) const {
  std::ofstream file(path(name), std::ios::binary);
  file << text;
}

std::string tool_test::read(const std::string& name) const {
  return contents(path(name));
}

std::vector<std::string> tool_test::listing() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string tool_test::campus_with(const std::string& text, const std::string& replacement) {
  std::string campus = kCampus;
  size_t place = campus.find(text);
  EXPECT_NE(place, std::string::npos) << text;
  return place == std::string::npos ? campus : campus.replace(place, text.size(), replacement);
}

nlohmann::json parse_json(const std::string& text) {
  auto parsed = nlohmann::json::parse(text, nullptr, false);
  EXPECT_FALSE(parsed.is_discarded()) << text;
  return parsed;
}

std::vector<nlohmann::json> parse_json_lines(const std::string& text) {
  std::vector<nlohmann::json> objects;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) objects.push_back(parse_json(line));
  return objects;
}

std::vector<std::vector<std::string>> parse_csv(const std::string& text) {
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> row;
  std::string field;
  bool quoted = false;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (quoted && c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
      field += c;
      ++i;
    } else if (c == '"') {
      quoted = !quoted;
    } else if (!quoted && (c == ',' || c == '\n')) {
      row.push_back(field);
      field.clear();
      if (c == '\n') rows.push_back(std::exchange(row, {}));
    } else {
      field += c;
    }
  }
  EXPECT_TRUE(field.empty() && row.empty() && !quoted) << "does not end with a line end";
  return rows;
}

} // namespace chnsw_test
