// What the tests of the virtual switch share: folders and files that vanish, processes, and a small switch.
#ifndef TESTS_VSWITCH_TEST_SWITCH_H
#define TESTS_VSWITCH_TEST_SWITCH_H

#include <sys/types.h>
#include <vswitch/chassis_description.h>

#include <string>
#include <vector>

namespace vswitch_test {

// A folder that is gone, with all that is in it, when the test ends.
class temporary_folder {
 public:
  temporary_folder();
  ~temporary_folder();
  temporary_folder(const temporary_folder&) = delete;
  temporary_folder& operator=(const temporary_folder&) = delete;

  std::string path(const std::string& name = "") const;
  std::string file(const std::string& name, const std::string& text) const; // writes it, and returns its path

 private:
  std::string path_;
};

std::string text_of_file(const std::string& path);

struct process_result {
  int exit_code;      // -1 when a signal ended it
  std::string output; // standard output
  std::string errors; // standard error
};

// Runs a program to its end. environment holds "NAME=value"; no CHNSW_ variable of this process reaches it.
process_result run(const std::vector<std::string>& command, const std::vector<std::string>& environment = {});

// The same without waiting for the end, which finish() does. Standard output and standard error go to files.
struct running_process {
  pid_t pid;
  std::string output_file;
  std::string error_file;
};
running_process start(const std::vector<std::string>& command, const std::vector<std::string>& environment = {});
process_result finish(const running_process& process);

// Ten slots, supervisors in 5 and 6, cards in 1 (48 ports), 2 (16 ports) and 7 (24 ports), port-channel 5 of fc1/3 and fc1/4,
// fcip3, mgmt0, VSANs 10 and 20; fc1/1 is PN 0, PA 0x20, in VSAN 10.
vswitch::chassis_description small_switch();

// A map in which every element says the same number, so that two maps that were mixed would show.
vswitch::port_map map_of(uint16_t number);

// The number that a whole map says, or -1 when it is a mixture.
int number_of(const vswitch::port_map& map);

} // namespace vswitch_test

#endif
