// The process time of chnsw for one question to a chassis file: started, the file read, the library asked, the row printed.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "ratio.h"
#include "virtual_switch_benchmarks.h"

namespace {

constexpr double kWithinMs = 20;

class output_to_nowhere {
 public:
  output_to_nowhere() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  ~output_to_nowhere() { posix_spawn_file_actions_destroy(&actions_); }
  output_to_nowhere(const output_to_nowhere&) = delete;
  output_to_nowhere& operator=(const output_to_nowhere&) = delete;

  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

pid_t start(char* const* command) {
  const output_to_nowhere output;
  pid_t process = 0;
  const int error = posix_spawn(&process, command[0], output.actions(), nullptr, command, environ);
  if (error != 0) throw std::system_error(error, std::generic_category(), command[0]);
  return process;
}

double in_ms(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

// User and system time of the process from start to end.
double process_ms(char* const* command) {
  const pid_t process = start(command);
  int status = 0;
  rusage usage{};
  if (wait4(process, &status, 0, &usage) != process) throw std::system_error(errno, std::generic_category(), "wait4");
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error("chnsw does not answer the question");
  return in_ms(usage.ru_utime) + in_ms(usage.ru_stime);
}

double ask_one_question() {
  char tool[] = CHNSW_TOOL;
  char subject[] = "pa";
  char address[] = "20";
  char vsan_option[] = "--vsan";
  char vsan[] = "10";
  char switch_option[] = "--switch";
  char file[] = CHNSW_EXAMPLE;
  char* const command[] = {tool, subject, address, vsan_option, vsan, switch_option, file, nullptr};
  return process_ms(command);
}

} // namespace

void bench::add_single_question() {
  add_process_time("chnsw answers one question (process time)", ask_one_question, kWithinMs);
}
