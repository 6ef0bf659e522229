#include "test_switch.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <vswitch/interface_index.h>

extern char** environ;

namespace vswitch_test {

namespace {

std::string made_name(const char* pattern) {
  std::string name = std::filesystem::temp_directory_path() / pattern;
  const int file = mkstemp(name.data());
  if (file < 0) throw std::runtime_error("no temporary file");
  close(file);
  return name;
}

std::vector<char*> pointers_to(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environment_with(const std::vector<std::string>& added) {
  std::vector<std::string> all;
  for (char** variable = environ; *variable != nullptr; ++variable)
    if (std::string_view(*variable).rfind("CHNSW_", 0) != 0) all.emplace_back(*variable);
  all.insert(all.end(), added.begin(), added.end());
  return all;
}

} // namespace

temporary_folder::temporary_folder() : path_(std::filesystem::temp_directory_path() / "vswitch-test-XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

temporary_folder::~temporary_folder() {
  std::filesystem::remove_all(path_);
}

std::string temporary_folder::path(const std::string& name) const {
  return name.empty() ? path_ : path_ + "/" + name;
}

std::string temporary_folder::file(const std::string& name, const std::string& text) const {
  std::ofstream(path(name), std::ios::binary) << text;
  return path(name);
}

std::string text_of_file(const std::string& path) {
  std::ostringstream text;
  std::ifstream file(path, std::ios::binary);
  if (file.peek() != std::ifstream::traits_type::eof()) text << file.rdbuf();
  return text.str();
}

running_process start(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
  running_process process{0, made_name("vswitch-out-XXXXXX"), made_name("vswitch-err-XXXXXX")};
  auto arguments = command;
  auto variables = environment_with(environment);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, process.output_file.c_str(), O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, process.error_file.c_str(), O_WRONLY, 0);
  const int error = posix_spawn(&process.pid, arguments[0].c_str(), &files, nullptr, pointers_to(arguments).data(),
                                pointers_to(variables).data());
  posix_spawn_file_actions_destroy(&files);
  if (error != 0) throw std::runtime_error("cannot start " + command[0]);
  return process;
}

process_result finish(const running_process& process) {
  int status = 0;
  waitpid(process.pid, &status, 0);
  process_result result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of_file(process.output_file),
                        text_of_file(process.error_file)};
  std::filesystem::remove(process.output_file);
  std::filesystem::remove(process.error_file);
  return result;
}

process_result run(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
  return finish(start(command, environment));
}

vswitch::chassis_description small_switch() {
  using vswitch::fc_port_index;
  using vswitch::logical_index;
  vswitch::chassis_description chassis;
  chassis.name = "small";
  chassis.platform_record = {1, 2, 10, 4, 5, 6, 7, 8};
  chassis.type = 32;
  chassis.supervisors = {5, 6};
  chassis.line_cards = {{1, 48, "first"}, {2, 16, ""}, {7, 24, "behind the supervisors"}};
  chassis.interfaces = {{logical_index(vswitch::kManagementPort, 0), {}},
                        {logical_index(IF_TYPE_PORT_CHANNEL, 5), {fc_port_index(1, 3), fc_port_index(1, 4)}},
                        {logical_index(IF_TYPE_FCIP, 3), {}}};
  chassis.vsans = {{10, "production"}, {20, ""}};
  chassis.map.port_to_pn[0] = {0, 0x20, {10}};
  chassis.map.port_to_vsan[0] = 10;
  chassis.map.pa_to_pn[0x20] = 0;
  chassis.map.pn_to_if[240] = logical_index(IF_TYPE_FCIP, 3);
  chassis.map.vsan_array[31] = 0x5A;
  chassis.change_counter = 7;
  return chassis;
}

vswitch::port_map map_of(uint16_t number) {
  vswitch::port_map map;
  map.port_to_pn.fill({number, number, {number, number, number, number, number, number, number, number}});
  map.port_to_vsan.fill(number);
  map.pa_to_pn.fill(number);
  map.pn_to_if.fill(number);
  map.vsan_array.fill(static_cast<uint8_t>(number));
  return map;
}

int number_of(const vswitch::port_map& map) {
  const uint16_t number = map.port_to_vsan[0];
  return map == map_of(number) ? number : -1;
}

} // namespace vswitch_test
